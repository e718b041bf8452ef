#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Every public header compiles by itself: those of the platform as C and as C++.
set -euo pipefail
warnings=(-Wall -Wextra -Wpedantic -Werror -fsyntax-only)

for header in "$SOURCE"/platform/include/*/*.h; do
    name=${header#"$SOURCE"/platform/include/}
    for language in c++ c; do
        [ $language = c ] && compiler=("$CC" -std=c11) || compiler=("$CXX" -std=c++17)
        printf '#include <%s>\ntypedef int not_empty;\n' "$name" | "${compiler[@]}" "${warnings[@]}" -I "$SOURCE/platform/include" -x $language - ||
            { echo "$name does not compile as $language" >&2; exit 1; }
    done
done

read -ra flags <<<"$(pkg-config --cflags "Qt${QT}Core") -fPIC"
for header in "$BUILD"/include/kelp/*; do
    echo "#include <kelp/${header##*/}>" |
        "$CXX" -std=c++17 "${warnings[@]}" "${flags[@]}" -I "$SOURCE" -I "$BUILD/include" -x c++ - ||
        { echo "${header##*/} does not compile by itself" >&2; exit 1; }
done
