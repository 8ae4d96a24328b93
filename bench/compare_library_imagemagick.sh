#!/bin/sh
# Adding 100 1920x1080 JPEGs to the randomizer library, whole process
# against whole process: "kelvaris library add login FOLDER" beside one
# ImageMagick process doing the same conversion to every picture in turn
# (decode, bilinear resize to 1024x768 with -interpolative-resize,
# uncompressed 32-bit 1024x1024 DDS; one picture in memory at a time). The pictures are copies of one
# photograph-like JPEG (see make_photo in bench/timing.sh).
# Usage: sh bench/compare_library_imagemagick.sh [build dir] [runs]
# The last line is "RESULT library_batch OURS_MS IMAGEMAGICK_MS".
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
. "$top/bench/timing.sh"
build=${1:-build-release}
runs=${2:-3}
kelvaris=$(cd "$build" && pwd)/src/kelvaris
convert=/usr/bin/convert # ImageMagick itself, not another program of that name
[ -x "$kelvaris" ] || { echo "no $kelvaris: build first" >&2; exit 1; }
[ -x "$convert" ] || { echo "ImageMagick is not installed (apt-get install imagemagick)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/pictures" "$work/config" "$work/cache"
export XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache" HOME="$work" LC_ALL=C

make_photo "$work/photo.jpg"
i=0
while [ $i -lt 100 ]; do
    cp "$work/photo.jpg" "$work/pictures/photo$i.jpg"
    i=$((i + 1))
done

# Every run starts from an empty library and an empty output folder.
fresh() { rm -rf "$work/game" "$work/out" && mkdir -p "$work/game" "$work/out"; }
warm=0
between=fresh
ours=$(median_ms "$kelvaris" library add login "$work/pictures" --game "$work/game")
ours_bytes=$(du -sb "$work/game/Kelvaris" | cut -f1)
# One convert: each picture read, converted, written and dropped in turn.
set --
for picture in "$work"/pictures/*.jpg; do
    name=$(basename "$picture" .jpg)
    set -- "$@" '(' "$picture" -interpolate bilinear -interpolative-resize '1024x768!' \
        -background black -gravity north -extent 1024x1024 -alpha set \
        -define dds:compression=none -define dds:mipmaps=0 -write "$work/out/$name.dds" +delete ')'
done
theirs=$(median_ms "$convert" "$@" -size 1x1 xc:black null:)
theirs_bytes=$(du -sb "$work/out" | cut -f1)
echo "100 photograph-like 1920x1080 JPEGs into the library, median of $runs"
echo "Kelvaris (whole process):        $ours ms ($ours_bytes bytes written)"
echo "ImageMagick (one process):       $theirs ms ($theirs_bytes bytes written)"
awk -v o="$ours" -v t="$theirs" 'BEGIN { printf "Kelvaris / ImageMagick: %.2fx\n", o / t }'
echo "RESULT library_batch $ours $theirs"
