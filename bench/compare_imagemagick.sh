#!/bin/sh
# Times Kelvaris's login-screen conversion (a 1920 x 1080 JPEG loaded,
# resampled bilinearly to 1024 x 768 and written as an uncompressed 32-bit
# DDS in a 1024 x 1024 texture) against the same conversion by ImageMagick,
# and prints both and their ratio. Needs a Release build with benchmarks:
#   cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release -DKELVARIS_BUILD_BENCH=ON
#   cmake --build build-release -j2
# Usage: sh bench/compare_imagemagick.sh [build folder] [runs]
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-"$top/build-release"}
runs=${2:-10}
bench="$build/bench/bench_texture"
convert=/usr/bin/convert # ImageMagick itself, not another program of that name

[ -x "$bench" ] || { echo "no $bench: build the benchmarks first" >&2; exit 1; }
[ -x "$convert" ] || { echo "no $convert: install Debian's imagemagick" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$convert" -size 1920x1080 gradient:'#203060-#e0c080' \
    \( -size 1920x1080 xc: -fx 'sin(i/20)*cos(j/33)/2+0.5' \) \
    -compose overlay -composite -quality 90 "$work/in.jpg"

now_ms() { date +%s%N | cut -c1-13; }

# Kelvaris: the benchmark's own per-run wall time for the same picture.
ours=$(KELVARIS_BENCH_JPEG="$work/in.jpg" "$bench" \
    --benchmark_filter=BM_LoadAndWriteLoginScreen --benchmark_repetitions="$runs" \
    --benchmark_format=json 2>/dev/null |
    python3 -c 'import json,sys
d=json.load(sys.stdin)
times=[b["real_time"] for b in d["benchmarks"] if b.get("aggregate_name")=="median"]
print("%.1f" % times[0])')

start=$(now_ms)
i=0
while [ "$i" -lt "$runs" ]; do
    "$convert" "$work/in.jpg" -filter Triangle -resize '1024x768!' -background black \
        -extent 1024x1024 -alpha set -define dds:compression=none -define dds:mipmaps=0 \
        "$work/out.dds"
    i=$((i + 1))
done
end=$(now_ms)
theirs=$(python3 -c "print('%.1f' % (($end - $start) / $runs))")

echo "Kelvaris (load, resample, write texture): $ours ms"
echo "ImageMagick convert (same conversion):     $theirs ms"
python3 -c "print('ImageMagick / Kelvaris: %.1fx' % ($theirs / $ours))"
