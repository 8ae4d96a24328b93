#!/bin/sh
# Installs whatever Debian packages of scripts/packages.txt are missing.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
missing=""
for pkg in $(grep -v '^#' "$here/packages.txt"); do
    if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed"; then
        missing="$missing $pkg"
    fi
done
[ -z "$missing" ] && exit 0
echo "Installing:$missing"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends $missing
