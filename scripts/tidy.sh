#!/usr/bin/env bash
# Runs clang-tidy and cppcheck over the library and the tool: tidy.sh <build folder> <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# The precompiled headers are GCC's.
sed -E 's/-Winvalid-pch|-include [^ ]*cmake_pch\.hxx//g' "$1/compile_commands.json" >"$scratch/compile_commands.json"
git ls-files 'src/*.cpp' 'tools/*.cpp' |
    xargs -P "$2" -n 4 clang-tidy --quiet --warnings-as-errors='*' -p "$scratch" 2>"$scratch/counts" ||
    { grep -v 'warnings generated' "$scratch/counts" >&2; exit 1; }
echo "clang-tidy: clean"
git ls-files 'src/*.cpp' 'tools/*.cpp' | cppcheck --file-list=- --quiet -j "$2" --language=c++ --std=c++20 \
    --enable=warning,performance,portability --error-exitcode=1 \
    -I "$1/include" -I src/formats -I src/pdf -I tools/mapanchor
echo "cppcheck: clean"
