#!/bin/sh
# Installs the build into a staging folder and checks what a desktop needs:
# every file in its place, the desktop entry and the AppStream file accepted
# by their validators, the icon well-formed and the manual page free of roff
# warnings. Exits 77 (skipped) when the validators are not installed.
# Usage: check-install.sh BUILD-FOLDER STAGING-FOLDER
set -eu
build=$1
stage=$2
id=io.github.kelvaris.Kelvaris

for tool in desktop-file-validate appstreamcli; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "SKIPPED: $tool is not installed (apt-get install desktop-file-utils appstream)."
        exit 77
    fi
done

rm -rf "$stage"
cmake --install "$build" --prefix "$stage" >/dev/null

failed=0
fail() {
    echo "FAILED: $*"
    failed=1
}

for file in bin/kelvaris share/kelvaris/kelvaris.csv "share/applications/$id.desktop" \
    "share/metainfo/$id.metainfo.xml" "share/icons/hicolor/scalable/apps/$id.svg" \
    share/man/man1/kelvaris.1 lib/kelvaris/kelvaris-front-ends.so; do
    [ -s "$stage/$file" ] || fail "$file is not installed"
done
[ -x "$stage/bin/kelvaris" ] || fail "bin/kelvaris is not executable"
# The installed program finds its front ends where they were installed.
"$stage/bin/kelvaris" --version >/dev/null || fail "the installed program does not run"

desktop-file-validate "$stage/share/applications/$id.desktop" || fail "the desktop entry"
appstreamcli validate --no-net "$stage/share/metainfo/$id.metainfo.xml" || fail "the metainfo"

# The entry names the icon that is installed and the program in bin/.
grep -qx "Icon=$id" "$stage/share/applications/$id.desktop" || fail "the entry's Icon"
grep -qx "Exec=kelvaris" "$stage/share/applications/$id.desktop" || fail "the entry's Exec"
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" \
    "$stage/share/metainfo/$id.metainfo.xml" || fail "the metainfo's launchable"

if command -v xmllint >/dev/null 2>&1; then
    xmllint --noout "$stage/share/icons/hicolor/scalable/apps/$id.svg" || fail "the icon's XML"
fi
if command -v groff >/dev/null 2>&1; then
    warnings=$(groff -man -Tutf8 -ww -z "$stage/share/man/man1/kelvaris.1" 2>&1)
    [ -z "$warnings" ] || fail "the manual page: $warnings"
fi

[ "$failed" -eq 0 ] && echo "Installed files are complete and valid."
exit "$failed"
