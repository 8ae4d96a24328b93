# Whole-process timing shared by the comparison scripts; source it.

# median_ms CMD...: runs the command once unmeasured (unless warm=0), then
# `runs` times (default 10), and prints the median wall time in
# milliseconds. When `between` names a command, it runs before every
# measured run, outside the time. Fails when the command fails.
median_ms() {
    if [ "${warm:-1}" != 0 ]; then
        ${between:+$between}
        timeout 600 "$@" >/dev/null 2>&1 || { echo "failed: $1" >&2; return 1; }
    fi
    _n=0
    _times=""
    while [ "$_n" -lt "${runs:-10}" ]; do
        ${between:+$between}
        _start=$(date +%s%N)
        timeout 600 "$@" >/dev/null 2>&1 || { echo "failed: $1" >&2; return 1; }
        _times="$_times $((($(date +%s%N) - _start) / 1000))"
        _n=$((_n + 1))
    done
    echo "$_times" | tr ' ' '\n' | grep . | sort -n |
        awk '{ t[NR] = $1 } END { printf "%.1f", t[int((NR + 1) / 2)] / 1000 }'
}

# make_photo FILE: a 1920x1080 JPEG that behaves like a photograph for a
# decoder and a resampler (there is no camera picture to hand): a fractal
# plasma with Gaussian grain and hard-edged shapes, the same every time.
make_photo() {
    /usr/bin/convert -seed 42 -size 1920x1080 plasma:fractal -blur 0x1 \
        \( -size 1920x1080 xc:gray50 -seed 7 +noise Gaussian -colorspace gray \) \
        -compose overlay -composite -fill none -stroke '#202020' -strokewidth 6 \
        -draw 'rectangle 300,200 900,700' -draw 'circle 1400,500 1600,700' \
        -quality 90 "$1"
}
