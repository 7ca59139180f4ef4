#!/usr/bin/env bash
# consume.sh cmake|pkgconfig BUILD SAMPLES: install the build folder BUILD for /opt/zyr, move the tree somewhere else,
# and build and run a program against it.
set -euo pipefail
how=$1 build=$2 samples=$3
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
examples=$(readlink -f "$here/../../examples")
work=$build/consume-$how
rm -rf "$work"
mkdir -p "$work/out"
DESTDIR=$work/stage cmake --install "$build" --prefix /opt/zyr >/dev/null
mv "$work/stage/opt/zyr" "$work/moved"

case $how in
cmake)
    cmake -S "$here/cmake" -B "$work/out" -DCMAKE_PREFIX_PATH="$work/moved" -DEXAMPLES="$examples" >/dev/null
    cmake --build "$work/out" >/dev/null
    ;;
pkgconfig)
    pc=$(dirname "$(find "$work/moved" -name zyrhost.pc)")
    PKG_CONFIG_PATH=$pc make -s -C "$here/pkgconfig" OUT="$work/out" EXAMPLES="$examples"
    ;;
esac
for host in host host_static; do
    "$work/out/with_$host" "$samples/subrip-lf.avi" | tee "$work/output"
    grep -qx '4 frames, caption shown' "$work/output"
done
# Of a program that links the list alone, the loader finds the rest from the list's own place.
"$work/out/with_captions" "$samples/subrip-lf.avi" >"$work/output"
grep -qx 'The lamp is lit at dusk.' "$work/output"
# The static form must really be inside: the program brings the layer's calls itself.
nm -D --defined-only "$work/out/with_host_static" >"$work/output"
grep -q ' T ZYR_fopen$' "$work/output"
nm -D --defined-only "$work/out/with_host" >"$work/output"
if grep -q ' T ZYR_fopen$' "$work/output"; then exit 1; fi
"$work/moved/bin/zyrsub" info "$samples/subrip-lf.srt" >/dev/null
