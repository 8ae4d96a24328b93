#!/bin/sh
# Installs what is missing, builds Kelvaris and starts it. Arguments are passed
# on (for example: scripts/run.sh -randomizer).
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/scripts/install-deps.sh"
cmake -S "$top" -B "$top/build-release" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DKELVARIS_BUILD_TESTS=OFF >/dev/null
cmake --build "$top/build-release" --target kelvaris
exec "$top/build-release/src/kelvaris" "$@"
