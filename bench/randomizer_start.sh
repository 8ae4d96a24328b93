#!/bin/sh
# Wall time from starting "kelvaris -randomizer" to the chat client's start,
# against a game folder whose library halves hold 1000 images each. The
# client is a stand-in "wine" that notes the time it was started. Beside it,
# the floor: a bare Qt program that starts, copies one 4 MiB library entry
# to two places a megabyte at a time and ends (bench_bare_start).
# Usage: bench/randomizer_start.sh [build dir] [runs]. With today's refresh
# done no display is needed. The last lines are
# "RESULT randomizer_start KELVARIS_MS FLOOR_MS" and
# "RESULT randomizer_lifetime KELVARIS_MS BARE_START_MS" (medians).
set -eu
build=${1:-build-release}
runs=${2:-20}
kelvaris=$(cd "$build" && pwd)/src/kelvaris
bare=$(cd "$build" && pwd)/bench/bench_bare_start
[ -x "$bare" ] || { echo "no $bare: build the benchmarks first" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

game="$work/game"
mkdir -p "$game/Kelvaris/RandomHL" "$game/Kelvaris/RandomHC" "$work/bin" "$work/config/kelvaris"
head -c $((128 + 1025 * 4096)) /dev/zero >"$work/entry.dds"
i=0
while [ $i -lt 1000 ]; do
    # Hard links: regular files as a player's library holds them, without
    # taking 8 GB of disk.
    ln "$work/entry.dds" "$game/Kelvaris/RandomHL/image $i.dds"
    ln "$work/entry.dds" "$game/Kelvaris/RandomHC/image $i.dds"
    i=$((i + 1))
done
printf 'MZ' >"$game/paragonchat.exe"
cat >"$work/bin/wine" <<WINE
#!/bin/sh
date +%s%N >"$work/started"
WINE
chmod +x "$work/bin/wine"
# Today's refresh is done: "LastOnlineUpdate" holds today's date as Kelvaris
# writes it, in the C locale the runs below use ("23 Nov 2026"), and a slot is
# bound, as a player's is.
export LC_ALL=C
printf 'REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n"CohPath"="%s"\r\n"LastOnlineUpdate"="%s"\r\n"webName0"="Login screen (1024x1024)"\r\n"webLink0"="http://127.0.0.1:9/x.png"\r\n' \
    "$game" "$(date +'%-d %b %Y')" >"$work/config/kelvaris/registry.reg"

times=""
lifetimes=""
n=0
while [ $n -lt "$runs" ]; do
    rm -f "$work/started"
    start=$(date +%s%N)
    PATH="$work/bin:$PATH" XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache" \
        "$kelvaris" -randomizer -x 1
    ended=$(date +%s%N)
    while [ ! -s "$work/started" ]; do sleep 0.01; done
    times="$times $(( ($(cat "$work/started") - start) / 1000 ))"
    lifetimes="$lifetimes $(( (ended - start) / 1000 ))"
    n=$((n + 1))
done
echo "$lifetimes" | tr ' ' '\n' | grep . | sort -n | awk '
    { t[NR] = $1 }
    END { printf "whole randomizer process over %d runs: median %.1f ms\n", NR, t[int((NR + 1) / 2)] / 1000 }'
echo "$times" | tr ' ' '\n' | grep . | sort -n | awk '
    { t[NR] = $1 }
    END { printf "randomizer start to client launch over %d runs: median %.1f ms, best %.1f ms, worst %.1f ms\n",
          NR, t[int((NR + 1) / 2)] / 1000, t[1] / 1000, t[NR] / 1000 }'
ours=$(echo "$times" | tr ' ' '\n' | grep . | sort -n | awk '{ t[NR] = $1 } END { printf "%.1f", t[int((NR + 1) / 2)] / 1000 }')

# The floor starts the same stand-in client after its copies, so that both
# sides pay for starting it.
floors=""
n=0
while [ $n -lt "$runs" ]; do
    rm -f "$work/started"
    start=$(date +%s%N)
    "$bare" "$work/entry.dds" "$work/copy1.dds" "$work/copy2.dds"
    "$work/bin/wine"
    floors="$floors $((($(cat "$work/started") - start) / 1000))"
    n=$((n + 1))
done
floor=$(echo "$floors" | tr ' ' '\n' | grep . | sort -n | awk '{ t[NR] = $1 } END { printf "%.1f", t[int((NR + 1) / 2)] / 1000 }')
echo "bare Qt program copying 4 MiB twice, then the client, over $runs runs: median $floor ms"

# The whole process beside a bare Qt program that only starts and ends.
: >"$work/empty"
bares=""
n=0
while [ $n -lt "$runs" ]; do
    start=$(date +%s%N)
    "$bare" "$work/empty" "$work/copy1.dds" "$work/copy2.dds"
    bares="$bares $((($(date +%s%N) - start) / 1000))"
    n=$((n + 1))
done
bare_start=$(echo "$bares" | tr ' ' '\n' | grep . | sort -n | awk '{ t[NR] = $1 } END { printf "%.1f", t[int((NR + 1) / 2)] / 1000 }')
lifetime=$(echo "$lifetimes" | tr ' ' '\n' | grep . | sort -n | awk '{ t[NR] = $1 } END { printf "%.1f", t[int((NR + 1) / 2)] / 1000 }')
echo "bare Qt program starting and ending over $runs runs: median $bare_start ms"
echo "RESULT randomizer_start $ours $floor"
echo "RESULT randomizer_lifetime $lifetime $bare_start"
