#!/bin/sh
# Remakes the README's pictures of every tab: starts Kelvaris in a virtual
# display against a small demonstration game (a library of three pictures, a
# replaced login screen, one song), shows each tab in turn and saves it as
# docs/screenshots/<n>-<tab>.png.
#
#   sh scripts/screenshots.sh [BUILD-FOLDER]
#
# BUILD-FOLDER defaults to build-release (as scripts/run.sh makes it). Needs
# xvfb-run, xdotool, ImageMagick's import and ffmpeg:
#   apt-get install xvfb xauth xdotool imagemagick ffmpeg
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$top/build-release}
kelvaris="$build/src/kelvaris"
[ -x "$kelvaris" ] || { echo "no $kelvaris: build Kelvaris first" >&2; exit 2; }
out="$top/docs/screenshots"
mkdir -p "$out"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM
export HOME="$work/home" XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache"
export LC_ALL=C
mkdir -p "$HOME"
game="$work/game"
mkdir -p "$game"
for pattern in mandelbrot testsrc2 "life=s=320x240:mold=10:r=1:ratio=0.1"; do
    n=$((${n:-0} + 1))
    ffmpeg -v error -f lavfi -i "$pattern" -frames:v 1 -s 1280x720 "$work/picture$n.png" -y
done
ffmpeg -v error -f lavfi -i sine=frequency=440:duration=95 -c:a libvorbis "$work/song.ogg" -y
"$kelvaris" --game "$game" library add login "$work/picture1.png" "$work/picture2.png" >/dev/null
"$kelvaris" --game "$game" library add character "$work/picture3.png" >/dev/null
"$kelvaris" --game "$game" screen login "$work/picture2.png" >/dev/null
"$kelvaris" --game "$game" music "$work/song.ogg" hero-login >/dev/null
"$kelvaris" settings set CohPath "$game"
"$kelvaris" settings set RandomHL picture1.png.dds

cat >"$work/shoot.sh" <<SHOOT
"$kelvaris" &
program=\$!
sleep 3
window=\$(xdotool search --name '^Kelvaris' | head -n 1)
# A click on the first tab gives the tab bar the keyboard; Right moves on.
xdotool mousemove --window "\$window" 30 24 click 1
i=1
for tab in screens randomizer music textures online installed settings credits; do
    sleep 1
    import -window "\$window" "$out/\$i-\$tab.png"
    xdotool key Right
    i=\$((i + 1))
done
kill \$program
SHOOT
xvfb-run -a -s "-screen 0 1024x900x24" sh "$work/shoot.sh"
ls "$out"
