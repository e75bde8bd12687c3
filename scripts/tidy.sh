#!/usr/bin/env bash
# Runs clang-tidy over the library and the tool: tidy.sh <build folder> <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files 'src/*.cpp' 'tools/*.cpp' | xargs -P "$2" -n 4 clang-tidy --quiet --warnings-as-errors='*' -p "$1" 2>/dev/null
echo "tidy: clean"
