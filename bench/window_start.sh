#!/bin/sh
# Wall time from starting the program to the end of its window's first
# paint, whole process against whole process: Kelvaris's window (ended by
# KELVARIS_EXIT_AFTER_FIRST_PAINT=1 once painted) beside a bare Qt widget of
# the same size (bench_bare_window). Both on Qt's offscreen platform, with a
# player's settings store naming a game folder.
# Usage: sh bench/window_start.sh [build dir] [runs]
# The last line is "RESULT window_start KELVARIS_MS BARE_MS" (medians).
set -eu
build=${1:-build-release}
runs=${2:-20}
kelvaris=$(cd "$build" && pwd)/src/kelvaris
bare=$(cd "$build" && pwd)/bench/bench_bare_window
for program in "$kelvaris" "$bare"; do
    [ -x "$program" ] || { echo "no $program: build the benchmarks first" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$work/game/data" "$work/config/kelvaris"
printf 'REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n"CohPath"="%s"\r\n' \
    "$work/game" >"$work/config/kelvaris/registry.reg"
export QT_QPA_PLATFORM=offscreen LC_ALL=C HOME="$work" XDG_CONFIG_HOME="$work/config" \
    XDG_CACHE_HOME="$work/cache" XDG_RUNTIME_DIR="$work"

# The median wall time in milliseconds of running the command `runs` times,
# after one run that is not counted (it brings the libraries into memory).
median_ms() {
    timeout 30 "$@" >/dev/null 2>&1 || { echo "failed: $*" >&2; exit 1; }
    n=0
    times=""
    while [ "$n" -lt "$runs" ]; do
        start=$(date +%s%N)
        timeout 30 "$@" >/dev/null 2>&1
        times="$times $(( ($(date +%s%N) - start) / 1000 ))"
        n=$((n + 1))
    done
    echo "$times" | tr ' ' '\n' | grep . | sort -n |
        awk '{ t[NR] = $1 } END { printf "%.1f", t[int((NR + 1) / 2)] / 1000 }'
}

ours=$(
    export KELVARIS_EXIT_AFTER_FIRST_PAINT=1
    median_ms "$kelvaris"
)
floor=$(median_ms "$bare")
echo "Kelvaris's window, start to first paint: $ours ms (median of $runs)"
echo "A bare Qt widget, start to first paint:   $floor ms"
awk -v o="$ours" -v f="$floor" 'BEGIN { printf "Kelvaris / bare: %.2fx\n", o / f }'
echo "RESULT window_start $ours $floor"
