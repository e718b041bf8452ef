#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# A program of somebody else's finds the installed library through CMake and through pkg-config, and runs without a
# device.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset KELP_DEVICE

"$CMAKE" --install "$BUILD" --prefix "$work/prefix" >/dev/null
here=$(cd "$(dirname "$0")" && pwd)/consumer
"$CMAKE" -G Ninja -S "$here" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_CXX_COMPILER="$CXX" \
    -DCMAKE_CXX_FLAGS="$FLAGS" -DLIBRARY="$LIBRARY" >"$work/log" 2>&1 &&
    "$CMAKE" --build "$work/build" >>"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
# The application asks for events, finds no device, and runs all the same.
LD_LIBRARY_PATH=$work/prefix/lib "$work/build/consumer"

libdir=$(dirname "$(find "$work/prefix" -name "$LIBRARY.pc")")
export PKG_CONFIG_PATH=$libdir
flags=$(pkg-config --cflags --libs "$LIBRARY" kelp-platform)
# shellcheck disable=SC2086 # lists of words
"$CXX" -std=c++17 -fPIC $FLAGS "$here/main.cpp" -o "$work/by-pkg-config" $flags -Wl,-rpath,"$(dirname "$libdir")"
"$work/by-pkg-config"
