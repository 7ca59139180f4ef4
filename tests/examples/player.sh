#!/usr/bin/env bash
# player.sh PLAYER SAMPLES WORK: what examples/player.c shows when, with its own clock and with a real one.
set -euo pipefail
player=$1 samples=$2 work=$3
mkdir -p "$work"

expect() { # WHY ARGUMENT...: standard input is what the player must print
    local why=$1
    shift
    cat >"$work/expected"
    "$player" "$@" | diff "$work/expected" - || { echo "$why"; exit 1; }
}

expect "captions come at their starts and go at their ends" "$samples/subrip-lf.avi" 0 0 "$work/last.ppm" <<'END'
   1000 ms  The lamp is lit at dusk.
   3500 ms  -
   4000 ms  It turns once in ten seconds,
and every ship counts along.
   6500 ms  -
   7000 ms  Nobody counts aloud.
   9000 ms  -
   9500 ms  By dawn the oil is low,
the log is full,
and the kettle is on.
  12000 ms  -
END
# The last caption is in the lower half of an 800 x 480 picture, and nothing is in the upper one.
head -c 15 "$work/last.ppm" | grep -qx 'P6 800 480 255'
[ "$(tail -c +16 "$work/last.ppm" | head -c 576000 | tr -d '\0' | wc -c)" -eq 0 ]
[ "$(tail -c 576000 "$work/last.ppm" | tr -d '\0' | wc -c)" -gt 3000 ]

expect "from 8 seconds on, the caption on screen then comes first" "$samples/subrip-lf.avi" 0 8000 <<'END'
   7000 ms  Nobody counts aloud.
   9000 ms  -
   9500 ms  By dawn the oil is low,
the log is full,
and the kettle is on.
  12000 ms  -
END
[ "$("$player" "$samples/sami-cp949.avi" 0 | head -n 1)" = "$("$player" "$samples/sami-utf16be.avi" 0 | head -n 1)" ]

# 12 seconds at 40 times the speed.
start=$(date +%s%N)
"$player" "$samples/subrip-lf.avi" 40 >"$work/clocked"
[ $((($(date +%s%N) - start) / 1000000)) -ge 295 ]
grep -q '^  12000 ms  -$' "$work/clocked"

if "$player" "$work/nothing.avi" 0 2>/dev/null; then exit 1; fi
