#!/bin/sh
# The login-screen conversion, whole process against whole process: Kelvaris
# ("kelvaris screen login PICTURE", a 1920x1080 JPEG loaded, resampled
# bilinearly to 1024x768 and written as an uncompressed 32-bit DDS in a
# 1024x1024 texture) beside ImageMagick doing the same conversion with its
# bilinear resize (-interpolative-resize). Then the compressed write: the
# same login screen with compression beside nvcompress alone compressing
# the same picture as Kelvaris hands it over.
# Needs a Release build: cmake -S . -B build-release -G Ninja
#   -DCMAKE_BUILD_TYPE=Release -DKELVARIS_BUILD_BENCH=ON && cmake --build build-release -j2
# Usage: sh bench/compare_imagemagick.sh [build folder] [runs]
# The last two lines are "RESULT login_screen OURS_MS IMAGEMAGICK_MS" and
# "RESULT compressed_write OURS_MS NVCOMPRESS_PLUS_UNCOMPRESSED_MS".
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
. "$top/bench/timing.sh"
build=${1:-"$top/build-release"}
runs=${2:-10}
kelvaris=$(cd "$build" && pwd)/src/kelvaris
convert=/usr/bin/convert # ImageMagick itself, not another program of that name
nvcompress=$(command -v nvcompress || true)

[ -x "$kelvaris" ] || { echo "no $kelvaris: build first" >&2; exit 1; }
[ -x "$convert" ] || { echo "no $convert: install Debian's imagemagick" >&2; exit 1; }
[ -n "$nvcompress" ] || { echo "no nvcompress: install Debian's libnvtt-bin" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/game" "$work/config" "$work/cache"
export XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache" HOME="$work" LC_ALL=C
make_photo "$work/photo.jpg"
texture="$work/game/data/texture_library/GUI/CREATION/HybridUI/LoginScreen/COH_LogInScreen_Background.texture"

ours=$(median_ms "$kelvaris" screen login "$work/photo.jpg" --game "$work/game" --no-compress)
ours_bytes=$(wc -c <"$texture")
theirs=$(median_ms "$convert" "$work/photo.jpg" -interpolate bilinear \
    -interpolative-resize '1024x768!' -background black -extent 1024x1024 -alpha set \
    -define dds:compression=none -define dds:mipmaps=0 "$work/out.dds")
theirs_bytes=$(wc -c <"$work/out.dds")

echo "Photograph-like 1920x1080 JPEG to the 1024x1024 login screen, median of $runs"
echo "Kelvaris (whole process):    $ours ms ($ours_bytes bytes written)"
echo "ImageMagick (whole process): $theirs ms ($theirs_bytes bytes written)"
awk -v o="$ours" -v t="$theirs" 'BEGIN { printf "Kelvaris / ImageMagick: %.2fx\n", o / t }'

# The compressed write: Kelvaris with compression, beside nvcompress alone on
# the picture Kelvaris left for it (with the options Kelvaris gives it) plus
# Kelvaris's own work without compression, so that what is left over is the
# cost of handing the picture to the tool and taking its result back.
compressed=$(median_ms "$kelvaris" screen login "$work/photo.jpg" --game "$work/game" --compress)
# Kelvaris removes its temporary picture: a stand-in found first on the
# PATH keeps a copy of it, once, outside the timing.
mkdir -p "$work/bin"
printf '#!/bin/sh
cp temp_tga.tga "%s/in.tga"
exec "%s" "$@"
' "$work" "$nvcompress" \
    >"$work/bin/nvcompress"
chmod +x "$work/bin/nvcompress"
PATH="$work/bin:$PATH" "$kelvaris" screen login "$work/photo.jpg" --game "$work/game" \
    --compress >/dev/null
alone=$(median_ms "$nvcompress" -bc1 -nomips "$work/in.tga" "$work/alone.dds")
echo "Kelvaris with compression (whole process): $compressed ms"
echo "nvcompress -bc1 -nomips alone:             $alone ms"
handover=$(awk -v a="$alone" -v o="$ours" 'BEGIN { printf "%.1f", a + o }')
echo "nvcompress alone + Kelvaris without compression: $handover ms"
awk -v o="$compressed" -v t="$handover" 'BEGIN { printf "Left over for the handover: %+.1f ms\n", o - t }'

echo "RESULT login_screen $ours $theirs"
echo "RESULT compressed_write $compressed $handover"
