#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# The libraries carry their SONAMEs, export what is public with its type information, and nothing else.
set -euo pipefail
failed=0
fail() {
    echo "$1" >&2
    failed=1
}

exported() { nm -DC --defined-only "$1" | sed -E 's/^[0-9a-f]+ . //'; }

for name in "$LIBRARY" kelp-platform; do
    soname=$(objdump -p "$BUILD/lib/lib$name.so" | awk '$1 == "SONAME" { print $2 }')
    [ "$soname" = "lib$name.so.1" ] || fail "lib$name.so has the SONAME $soname"
done

# The platform library: the functions and variables that its headers declare, all of them, and no more.
declared=$(grep -hoE '\b(tarn|navigator|pps|devicefs|aselector)_[a-z_0-9]+\(' "$SOURCE"/platform/include/*/*.h | tr -d '(' | sort -u)
declared=$(for name in $declared; do grep -qhE "PLATFORM_EXPORT [^;]*\b$name\(" "$SOURCE"/platform/include/*/*.h && echo "$name"; done)
variables=$(grep -hoP 'PLATFORM_EXPORT extern [^;]*?\K\w+(?=;)' "$SOURCE"/platform/include/*/*.h)
difference=$(diff <(sort -u <<<"$declared"$'\n'"$variables") <(exported "$BUILD/lib/libkelp-platform.so" | sort -u)) ||
    fail "libkelp-platform exports other names than its headers declare: $difference"

# libkelp: what the public headers name.
symbols=$(exported "$BUILD/lib/lib$LIBRARY.so")
public=$(grep -hoE 'class KELP_EXPORT [A-Za-z]+' "$SOURCE"/kelp/*.h | awk '{ print $3 }' | paste -sd '|')
printers='kelp::operator<<(QDebug, QFlags<kelp::PpsAttributeFlag::Type>)
kelp::operator<<(QDebug, kelp::ImageData const&)
kelp::operator<<(QDebug, kelp::PixelFormat::Type)
kelp::operator<<(QDebug, kelp::PpsAttribute const&)'
stray=$(grep -vE "^((typeinfo|typeinfo name|vtable) for )?(non-virtual thunk to )?kelp::($public)(::|$)" <<<"$symbols" |
    grep -vxF "$printers" || true)
stray+=$(grep 'Private::' <<<"$symbols" || true)
[ -z "$stray" ] || fail "lib$LIBRARY exports what is not public: $stray"
for class in AbstractTarnEventHandler Application ApplicationInfo ApplicationSupport FileSystemInfo MemoryInfo PackageInfo PpsObject UIToolkitSupport; do
    grep -qx "typeinfo for kelp::$class" <<<"$symbols" || fail "kelp::$class has no typeinfo"
done
[ "$(grep -xF "$printers" <<<"$symbols" | LC_ALL=C sort)" = "$printers" ] ||
    fail "lib$LIBRARY does not export all printers of its types"

# The platform's functions are looked up when the library is loaded, so that others can take their place.
objdump -p "$BUILD/lib/lib$LIBRARY.so" | grep -qE 'SYMBOLIC' && fail "lib$LIBRARY is bound to its own symbols"
grep -q ' navigator_request_events' <<<"$(nm -D --undefined-only "$BUILD/lib/lib$LIBRARY.so")" ||
    fail "lib$LIBRARY does not look up navigator_request_events"
exit "$failed"
