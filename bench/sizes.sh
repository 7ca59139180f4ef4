#!/usr/bin/env bash
# sizes.sh: text and data of the library for several flags, as 32-bit ARM code (script/arm has fetched what that needs) and
# for this machine, with the instructions a byte that two files of 100 KB take here.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
export PYTHONDONTWRITEBYTECODE=1
mapfile -t files < <(python3 bench/make_corpus.py build/bench/corpus 100k srt-utf8 smi-utf8)

make_library() { # FOLDER CMAKE-OPTION...: prints text and data
    cmake -S . -B "$1" -G Ninja -DCMAKE_BUILD_TYPE=Release -DZYR_TOOLS=OFF "${@:2}" >/dev/null
    cmake --build "$1" --target zyrsubtitle >/dev/null
    size "$1/lib/libZYRsubtitle.so" | awk 'NR == 2 { print $1 + $2 }'
}
count() { # FOLDER FILE: instructions a byte
    LD_LIBRARY_PATH=$1/lib valgrind --tool=callgrind --callgrind-out-file=/dev/null --collect-atstart=no \
        --toggle-collect=Run_Measured build/bench/bin/engine_bench read "$2" 1 2>&1 |
        awk -v bytes="$(stat -c %s "$2")" '/Collected/ { printf "%.1f", $NF / bytes }'
}
row() { # TITLE CMAKE-OPTION...
    local arm own here=build/sizes/here
    arm=$(make_library build/sizes/arm -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/armhf.cmake" -DZYR_TARGET=ON "${@:2}")
    own=$(make_library "$here" "${@:2}")
    echo "| $1 | $arm | $own | $(count "$here" "${files[0]}") | $(count "$here" "${files[1]}") |"
}
echo "| flags | ARM | x86-64 | SubRip | SAMI |"
echo "|---|---|---|---|---|"
row "-O3" -DZYR_LTO=OFF -DZYR_SMALL=OFF "-DCMAKE_CXX_FLAGS_RELEASE=-O3 -DNDEBUG"
row "-O3, LTO (desktop and packages)" -DZYR_LTO=ON -DZYR_SMALL=OFF "-DCMAKE_CXX_FLAGS_RELEASE=-O3 -DNDEBUG"
row "-O2, LTO" -DZYR_LTO=ON -DZYR_SMALL=OFF "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNDEBUG"
row "-Os, LTO" -DZYR_LTO=ON -DZYR_SMALL=OFF "-DCMAKE_CXX_FLAGS_RELEASE=-Os -DNDEBUG"
row "by source, LTO (the preset \`target\`)" -DZYR_LTO=ON -DZYR_SMALL=ON "-DCMAKE_CXX_FLAGS_RELEASE=-O3 -DNDEBUG"
