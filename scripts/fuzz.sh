#!/bin/sh
# Builds the libFuzzer targets with clang into build-fuzz and runs each one
# for a short while on a scratch copy of its seed corpus (fuzz/corpus/<name>/),
# so the committed corpora stay as they are. Fails when any target crashes,
# hangs, allocates past its bound or breaks one of its own checks; the input
# that did it is kept in build-fuzz/fuzz-artifacts/.
#   KELVARIS_FUZZ_SECONDS  seconds per target (default 30)
#   KELVARIS_FUZZ_TARGETS  which targets to run (default: all of them)
#   KELVARIS_FUZZ_SEED     the fuzzer's seed (default 1; 0 lets it choose)
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
build="$top/build-fuzz"
seconds=${KELVARIS_FUZZ_SECONDS:-30}
# A fixed seed by default, so a run can be repeated; KELVARIS_FUZZ_SEED=0
# lets libFuzzer pick one.
seed=${KELVARIS_FUZZ_SEED:-1}
targets=${KELVARIS_FUZZ_TARGETS:-archive_directory tga_decoder regedit4 wine_hive catalogue \
textures_reg_import download_response launcher_files texture_reader}

CC=clang CXX=clang++ cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DKELVARIS_BUILD_FUZZ=ON -DKELVARIS_BUILD_TESTS=OFF -DKELVARIS_BUILD_BENCH=OFF >/dev/null
executables=""
for t in $targets; do
    executables="$executables fuzz_$t"
done
# shellcheck disable=SC2086 # one word per target
cmake --build "$build" -j2 --target $executables

# The settings store syncs every change to disk; in memory that costs nothing,
# which keeps the import target fast.
base=/dev/shm
[ -d "$base" ] && [ -w "$base" ] || base=${TMPDIR:-/tmp}
scratch=$(mktemp -d "$base/kelvaris-fuzz.XXXXXX")
trap 'rm -rf "$scratch"' EXIT INT TERM
artifacts="$build/fuzz-artifacts"
mkdir -p "$artifacts"
# Temporary folders the targets make go to the scratch folder too, so a
# target that dies leaves nothing behind.
export TMPDIR="$scratch"
export QT_QPA_PLATFORM=offscreen
# Qt's process-wide objects are never freed, so leaks are not looked for.
export ASAN_OPTIONS=detect_leaks=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

failed=""
for t in $targets; do
    # A picture may legitimately take the decoder's whole 64 MiB budget.
    case $t in
    tga_decoder) malloc_mb=256 ;;
    *) malloc_mb=64 ;;
    esac
    corpus="$scratch/corpus-$t"
    cp -R "$top/fuzz/corpus/$t" "$corpus"
    log="$scratch/$t.log"
    if "$build/fuzz/fuzz_$t" -max_total_time="$seconds" -timeout=10 -seed="$seed" \
        -malloc_limit_mb="$malloc_mb" -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$artifacts/$t-" "$corpus" >"$log" 2>&1; then
        runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
        rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
        echo "fuzz_$t: ${seconds} s, $runs runs, $rate per second, nothing found"
    else
        echo "fuzz_$t FAILED:"
        grep -v '^INFO:\|^#[0-9]' "$log" | tail -n 60
        failed="$failed $t"
    fi
done
if [ -n "$failed" ]; then
    echo "Fuzz targets that failed:$failed (inputs in $artifacts)"
    exit 1
fi
