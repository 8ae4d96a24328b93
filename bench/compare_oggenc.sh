#!/bin/sh
# Converts the same sound with Kelvaris (bench_audio --convert), oggenc -q 4
# and ffmpeg's libvorbis at -q:a 4, and prints the running time and peak
# memory of each. Build bench_audio in Release first.
#
#   bench/compare_oggenc.sh [BUILD_DIR] [SECONDS]
#
# SECONDS is the length of the test tone (default 180; 3600 for the hour-long
# memory check). The last line is "RESULT music KELVARIS_MS OGGENC_MS", the
# best wall times of the WAV conversions.
set -eu

build=${1:-build-release}
seconds=${2:-180}
bench="$build/bench/bench_audio"
[ -x "$bench" ] || { echo "missing $bench; configure with -DKELVARIS_BUILD_BENCH=ON" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

ffmpeg -nostdin -v error -y -f lavfi \
    -i "sine=frequency=440:sample_rate=44100:duration=$seconds" -ac 2 -c:a pcm_s16le "$work/in.wav"
ffmpeg -nostdin -v error -y -i "$work/in.wav" -c:a libmp3lame -b:a 192k "$work/in.mp3"

# Runs a command five times and prints its best wall time, its best CPU time
# (user + system, what counts on a busy machine) and its peak memory.
measure() {
    label=$1
    shift
    best_wall=""
    best_cpu=""
    peak=0
    for run in 1 2 3 4 5; do
        /usr/bin/time -f "%e %U %S %M" -o "$work/time" "$@" >/dev/null 2>&1 || {
            echo "$label: failed"
            return
        }
        read -r wall user system kilobytes <"$work/time"
        cpu=$(awk "BEGIN { print $user + $system }")
        best_wall=$(awk "BEGIN { b = \"$best_wall\"; print (b == \"\" || $wall < b + 0) ? $wall : b }")
        best_cpu=$(awk "BEGIN { b = \"$best_cpu\"; print (b == \"\" || $cpu < b + 0) ? $cpu : b }")
        [ "$kilobytes" -gt "$peak" ] && peak=$kilobytes
    done
    printf '%-36s %7s s wall %7s s CPU %8s KB peak\n' "$label" "$best_wall" "$best_cpu" "$peak"
    last_wall=$best_wall
}

echo "Stereo 44.1 kHz tone, $seconds seconds"
measure "kelvaris WAV -> ogg" "$bench" --convert "$work/in.wav" "$work/k.ogg"
ours=$last_wall
measure "oggenc -q 4 WAV -> ogg" oggenc -Q -q 4 -o "$work/o.ogg" "$work/in.wav"
theirs=$last_wall
measure "ffmpeg libvorbis -q:a 4 WAV -> ogg" ffmpeg -nostdin -v error -y -i "$work/in.wav" \
    -c:a libvorbis -q:a 4 "$work/f.ogg"
measure "kelvaris mp3 -> ogg" "$bench" --convert "$work/in.mp3" "$work/k2.ogg"
measure "ffmpeg libvorbis -q:a 4 mp3 -> ogg" ffmpeg -nostdin -v error -y -i "$work/in.mp3" \
    -c:a libvorbis -q:a 4 "$work/f2.ogg"
ls -l "$work"/*.ogg | awk '{ printf "%-12s %10d bytes\n", $NF, $5 }' | sed "s|$work/||"
awk -v o="$ours" -v t="$theirs" 'BEGIN { printf "RESULT music %.0f %.0f\n", o * 1000, t * 1000 }'
