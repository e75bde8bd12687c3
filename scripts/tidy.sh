#!/usr/bin/env bash
# Runs clang-tidy and cppcheck over the library and the tool: tidy.sh <build folder> <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files 'src/*.cpp' 'tools/*.cpp' | xargs -P "$2" -n 4 clang-tidy --quiet --warnings-as-errors='*' -p "$1" 2>/dev/null
echo "clang-tidy: clean"
git ls-files 'src/*.cpp' 'tools/*.cpp' | cppcheck --file-list=- --quiet -j "$2" --language=c++ --std=c++20 \
    --enable=warning,performance,portability --error-exitcode=1 \
    -I "$1/include" -I src/formats -I src/pdf -I tools/mapanchor
echo "cppcheck: clean"
