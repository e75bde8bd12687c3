#!/usr/bin/env bash
# Installs the packages of packages.txt that are missing, as root or with sudo: setup.sh [tool]
# With "tool" only those that the command line needs, which are listed above the line of dashes.
set -euo pipefail
cd "$(dirname "$0")"

last='$'
[ "${1:-}" != tool ] || last='/^# ---/'
mapfile -t wanted < <(sed -n "1,${last}p" packages.txt | sed 's/#.*//; s/[[:space:]]*$//' | grep -v '^$')
missing=()
for package in "${wanted[@]}"; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then exit 0; fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: missing ${missing[*]}; install them as root" >&2; exit 1; }
    as_root=(sudo)
fi
echo "setup: installing ${missing[*]}"
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
