#!/bin/sh
# Every comparison of bench/ in one run, printed as one table of ratios:
# what Kelvaris takes beside an anchor (another program doing the same work,
# whole process against whole process) or a floor (the least that work can
# cost on this machine). A few minutes on the 2-core build machine.
# Needs a Release build with the benchmarks:
#   cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release -DKELVARIS_BUILD_BENCH=ON
#   cmake --build build-release -j2
# and ImageMagick, nvcompress, oggenc and ffmpeg.
# Usage: sh bench/compare.sh BUILD_DIR
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:?usage: sh bench/compare.sh BUILD_DIR}" && pwd)
results=$(mktemp)
log=$(mktemp)
trap 'rm -f "$results" "$log"' EXIT

# Runs one comparison, keeps its RESULT lines and its whole output for a
# failure's sake.
run() {
    echo "running $1..." >&2
    if ! sh "$top/bench/$1" "$build" "$2" >"$log" 2>&1; then
        echo "$1 failed:" >&2
        cat "$log" >&2
        exit 1
    fi
    grep '^RESULT ' "$log" >>"$results"
}

run compare_imagemagick.sh 10
run compare_library_imagemagick.sh 3
run compare_oggenc.sh 180
run randomizer_start.sh 20
run window_start.sh 20

echo "running bench_catalogue..." >&2
"$build/bench/bench_catalogue" --benchmark_filter='BuildCatalogueFromGame/|ReadArchivesFromCache/' \
    --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
    --benchmark_format=json 2>/dev/null | python3 -c '
import json, sys
runs = json.load(sys.stdin)["benchmarks"]
median = {b["run_name"].replace("/real_time", ""): b["real_time"]
          for b in runs if b.get("aggregate_name") == "median"}
build = {n: median["BM_BuildCatalogueFromGame/%d" % n] for n in (5000, 10000, 20000)}
floor = median["BM_ReadArchivesFromCache/20000"]
print("RESULT catalogue %.1f %.1f" % (build[20000], floor))
print("PER_TEXTURE " + " ".join("%d:%.2f" % (n, build[n] * 1000 / n) for n in sorted(build)))
' >>"$results"

# The library's own two goals, in process: one picture beside its floor (the
# JPEG decode plus an entry-sized durable write), and a folder prepared on
# every core beside one picture at a time.
echo "running bench_texture and bench_randomizer..." >&2
"$build/bench/bench_texture" --benchmark_filter='BM_LibraryPicture' --benchmark_repetitions=5 \
    --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
    awk -F, '/_median"?,/ { gsub(/"/, "", $1); t[$1] = $4 } END {
        printf "RESULT library_picture %.2f %.2f\n", t["BM_LibraryPicture_median"],
            t["BM_LibraryPictureFloor_median"] }' >>"$results"
"$build/bench/bench_randomizer" --benchmark_filter='BM_AddFolderToLibrary' \
    --benchmark_format=csv 2>/dev/null |
    awk -F, '/BM_AddFolderToLibrary\/1\// { alone = $3 } /BM_AddFolderToLibrary\/0\// { all = $3 }
        END { printf "RESULT library_parallel %.1f %.1f\n", all, alone }' >>"$results"

python3 - "$results" <<'PY'
import sys
rows = {}
extra = {}
for line in open(sys.argv[1]):
    parts = line.split()
    if parts[0] == "RESULT":
        rows[parts[1]] = (float(parts[2]), float(parts[3]))
    else:
        extra[parts[0]] = parts[1:]
per = ", ".join("%s: %s us" % tuple(p.split(":")) for p in extra.get("PER_TEXTURE", []))
table = [
    # key, work, anchor or floor, goal as (kind, value)
    ("login_screen", "login screen, 1920x1080 JPEG to 1024x1024 DDS, uncompressed",
     "ImageMagick convert, -interpolative-resize", None),
    ("compressed_write", "login screen with compression",
     "nvcompress alone + the same write uncompressed", ("over", 20.0)),
    ("library_batch", "100 JPEGs into the library",
     "ImageMagick, one process, same conversion", None),
    ("library_picture", "one library picture, in process (CPU)",
     "floor: JPEG decode + a durable entry-sized write", ("ratio", 1.5)),
    ("library_parallel", "a 100-picture folder on every core",
     "the same folder one picture at a time", ("ratio", 1 / 1.7)),
    ("music", "3-minute WAV to Ogg Vorbis", "oggenc -q 4", ("ratio", 1.05)),
    ("randomizer_start", "randomizer start to chat client",
     "floor: bare Qt start + copying 4 MiB twice + starting the client", ("ratio", 2.0)),
    ("randomizer_lifetime", "whole randomizer process, start to end",
     "a bare Qt program starting and ending", ("ratio", 2.5)),
    ("catalogue", "catalogue from 20,000 textures in 4 archives",
     "floor: reading the archives once (page cache)", ("ratio", 5.0)),
    ("window_start", "window start to first paint (offscreen)",
     "floor: bare QWidget shown and painted", ("ratio", 3.0)),
]
print("| work | Kelvaris | anchor/floor | ratio | goal |")
print("|---|---|---|---|---|")
for key, work, anchor, goal in table:
    if key not in rows:
        continue
    ours, theirs = rows[key]
    ratio = ours / theirs
    if goal is None:
        verdict = "none set"
    elif goal[0] == "ratio":
        verdict = "<= %.2fx: %s" % (goal[1], "met" if ratio <= goal[1] else "not met")
    else:
        verdict = "<= +%.0f ms: %+.0f ms, %s" % (goal[1], ours - theirs,
                                                  "met" if ours - theirs <= goal[1] else "not met")
    print("| %s | %.1f ms | %s: %.1f ms | %.2fx | %s |" % (work, ours, anchor, theirs, ratio, verdict))
if per:
    print()
    print("Catalogue build per texture (5k, 10k, 20k textures): " + per)
PY
