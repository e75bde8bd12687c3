#!/usr/bin/env bash
# Shows the main job on real input: run.sh <path of the tool>
set -euo pipefail
tool=$(realpath "$1")
cd "$(dirname "$0")"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

show() {
    printf '\n$ mapanchor %s\n' "$*"
    "$tool" "$@"
}
show info innsbruck.tfw
cp innsbruck.* "$scratch" && cd "$scratch"
show convert innsbruck.tfw copy.jgw
show info --json copy.jgw
show ext orthophoto.tif
