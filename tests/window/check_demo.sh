#!/usr/bin/env bash
# Runs the demonstration program and checks the frequency, level and noise
# density it prints against expected values and tolerances.
#   check_demo.sh FREQ FTOL LEVEL LTOL DENSITY DTOL -- [EMULATOR...] DEMO [demo arguments...]
set -euo pipefail
freq=$1 ftol=$2 level=$3 ltol=$4 density=$5 dtol=$6
shift 6
[ "${1:-}" = -- ] && shift
out=$("$@")
echo "$out"
echo "$out" | awk -v f="$freq" -v ft="$ftol" -v l="$level" -v lt="$ltol" -v d="$density" -v dt="$dtol" '
    function off(x, want, tol) { return x == "" || x - want > tol || want - x > tol }
    /^frequency:/ { fr = $2 }
    /^level:/ { lv = $2 }
    /^noise density:/ { nd = $3 }
    END {
        bad = 0
        if (off(fr, f, ft)) { print "frequency " fr " Hz, expected " f " +- " ft; bad = 1 }
        if (off(lv, l, lt)) { print "level " lv " dB, expected " l " +- " lt; bad = 1 }
        if (off(nd, d, dt)) { print "noise density " nd " dB/Hz, expected " d " +- " dt; bad = 1 }
        exit bad
    }'
