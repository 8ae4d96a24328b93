#!/bin/sh
# Installs what is missing, builds Kelvaris with AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs every test.
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/scripts/install-deps.sh"
# The code's formatting is part of the house rules: a file clang-format would
# change fails the run before anything is built.
(cd "$top" && find src tests bench fuzz \( -name '*.cpp' -o -name '*.h' \) -print |
    xargs clang-format --dry-run -Werror)
build="$top/build-sanitize"
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKELVARIS_SANITIZE=ON \
    -DKELVARIS_BUILD_TESTS=ON -DKELVARIS_BUILD_BENCH=OFF
cmake --build "$build" -j"$(nproc)"

# A short run of every fuzz target first (scripts/fuzz.sh), so that the
# tests' summary closes the output. The targets need clang; without clang++
# on PATH this step is skipped.
if command -v clang++ >/dev/null 2>&1; then
    sh "$top/scripts/fuzz.sh"
else
    echo "clang++ not found: the fuzz targets were skipped."
fi

export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
cd "$build"
ctest --output-on-failure -j"$(nproc)" --timeout 600
