#!/usr/bin/env bash
# Builds and tests one preset: preset-test.sh <preset> <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset "$1" >/dev/null
cmake --build --preset "$1" -j "$2"
scripts/test.sh "$1" "$2"
