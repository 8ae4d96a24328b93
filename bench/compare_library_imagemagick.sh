#!/bin/sh
# Adding 100 1920x1080 JPEGs to the randomizer library: Kelvaris's batch
# (bench_randomizer) side by side with ImageMagick doing the same conversion
# one picture at a time (decode, bilinear resize to 1024x768, uncompressed
# 1024x1024 DDS). Usage: bench/compare_library_imagemagick.sh [build dir].
set -eu
build=${1:-build-release}
magick=/usr/bin/convert
[ -x "$magick" ] || { echo "ImageMagick is not installed (apt-get install imagemagick)"; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT


# One picture both sides convert, 100 times each.
ffmpeg -loglevel error -f lavfi -i testsrc2=size=1920x1080 -frames:v 1 -q:v 3 "$work/photo.jpg"
# Kelvaris's batch both ways: one picture after the other, and as the
# Randomizer tab runs it, pictures prepared on one thread per core.
times=$(KELVARIS_BENCH_JPEG="$work/photo.jpg" "$build/bench/bench_randomizer" \
    --benchmark_filter=AddFolder --benchmark_format=csv 2>/dev/null)
alone=$(echo "$times" | awk -F, '/BM_AddFolderToLibrary\/1\// { print $3 }')
ours=$(echo "$times" | awk -F, '/BM_AddFolderToLibrary\/0\// { print $3 }')
start=$(date +%s%N)
i=0
while [ $i -lt 100 ]; do
    "$magick" "$work/photo.jpg" -filter Triangle -resize '1024x768!' -background black \
        -gravity north -extent 1024x1024 -alpha set -define dds:compression=none \
        -define dds:mipmaps=0 "$work/out$i.dds"
    i=$((i + 1))
done
theirs=$(( ($(date +%s%N) - start) / 1000000 ))
awk -v alone="$alone" -v ours="$ours" -v theirs="$theirs" 'BEGIN {
    printf "Kelvaris, one at a time: %.1f ms for 100 pictures (%.1f images/s)\n", alone, 100000 / alone
    printf "Kelvaris: %.1f ms for 100 pictures (%.1f images/s)\n", ours, 100000 / ours
    printf "ImageMagick: %d ms for 100 pictures (%.1f images/s)\n", theirs, 100000 / theirs
    printf "Kelvaris is %.2f times as fast\n", theirs / ours }'
