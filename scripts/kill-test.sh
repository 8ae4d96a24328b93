#!/bin/sh
# Kills "kelvaris -randomizer" with SIGKILL at random moments, many times over,
# and checks that nothing the player has is lost: after every kill the login
# and character textures are either the game's (absent here) or a whole copy
# of one library entry, and the settings still hold the game folder. A last,
# undisturbed run must find the lock of a killed run stale, remove the
# temporaries the killed runs left, and start the chat client.
#
#   sh scripts/kill-test.sh [BUILD-FOLDER] [ROUNDS]
#
# BUILD-FOLDER defaults to build-release (as scripts/run.sh makes it), ROUNDS
# to 200. Needs no display. Not part of the test command: it takes minutes.
set -eu
top=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$top/build-release}
rounds=${2:-200}
kelvaris="$build/src/kelvaris"
[ -x "$kelvaris" ] || { echo "no $kelvaris: build Kelvaris first" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM
game="$work/game"
export HOME="$work/home" XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache"
export WINEPREFIX="$work/wine" QT_QPA_PLATFORM=offscreen
mkdir -p "$HOME" "$game/Kelvaris/RandomHL" "$game/Kelvaris/RandomHC" "$work/bin"
: >"$game/paragonchat.exe"
# A stand-in for Wine that only notes that the client was started.
printf '#!/bin/sh\necho started >>"%s"\n' "$work/client-starts" >"$work/bin/wine"
chmod +x "$work/bin/wine"
export PATH="$work/bin:$PATH"

# Four library entries of 4 MiB each in each half, each a different byte.
for half in RandomHL RandomHC; do
    for n in 1 2 3 4; do
        head -c 4194432 /dev/zero | tr '\0' "\\00$n" >"$game/Kelvaris/$half/entry$n.dds"
    done
done
mkdir -p "$XDG_CONFIG_HOME/kelvaris"
printf 'REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n"CohPath"="%s"\r\n' \
    "$game" >"$XDG_CONFIG_HOME/kelvaris/registry.reg"

textures="$game/data/texture_library/GUI/CREATION/HybridUI"
check_texture() {
    # Absent, or a 32-byte header, the name, then one whole library entry.
    file=$1
    [ -e "$file" ] || return 0
    size=$(stat -c %s "$file")
    name_end=$(($(head -c 4 "$file" | od -An -tu4 | tr -d ' ')))
    if [ $((size - name_end)) -ne 4194432 ]; then
        echo "half-written texture: $file ($size bytes)" >&2
        return 1
    fi
    distinct=$(tail -c 4194432 "$file" | od -An -v -tx1 | tr ' ' '\n' | sed '/^$/d' | sort -u |
        wc -l)
    [ "$distinct" -eq 1 ] || { echo "mixed texture: $file" >&2; return 1; }
}

failures=0
i=0
while [ "$i" -lt "$rounds" ]; do
    i=$((i + 1))
    "$kelvaris" -randomizer -skipupdate >/dev/null 2>&1 &
    pid=$!
    # Somewhere between the start and a little after the writes.
    sleep "0.0$(od -An -N1 -tu1 /dev/urandom | tr -d ' ' | cut -c1)$(od -An -N1 -tu1 \
        /dev/urandom | tr -d ' ' | cut -c1)"
    kill -9 "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
    for t in "$textures/LoginScreen/COH_LogInScreen_Background.texture" \
        "$textures/CharacterCreationUI/background.texture"; do
        check_texture "$t" || failures=$((failures + 1))
    done
    if ! grep -q "\"CohPath\"=\"$game\"" "$XDG_CONFIG_HOME/kelvaris/registry.reg"; then
        echo "round $i: the settings lost the game folder" >&2
        failures=$((failures + 1))
    fi
done

left=$(find "$game" "$XDG_CONFIG_HOME" -name '*.kelvaris-*' | wc -l)
echo "$rounds kills; $left temporary file(s) left by them"
# Age the leftovers past the time a running Kelvaris could still own them.
find "$game" "$XDG_CONFIG_HOME" -name '*.kelvaris-*' -exec touch -d '10 minutes ago' {} +
rm -f "$work/client-starts"
"$kelvaris" -randomizer -skipupdate >/dev/null 2>&1 || true
if [ ! -s "$work/client-starts" ]; then
    echo "the last run did not start the chat client" >&2
    failures=$((failures + 1))
fi
still=$(find "$game" "$XDG_CONFIG_HOME" -name '*.kelvaris-*' | wc -l)
if [ "$still" -ne 0 ]; then
    echo "$still stale temporary file(s) were not removed" >&2
    failures=$((failures + 1))
fi
if [ "$failures" -ne 0 ]; then
    echo "kill test: $failures failure(s)"
    exit 1
fi
echo "kill test: every texture whole, the settings kept, no temporary file left"
