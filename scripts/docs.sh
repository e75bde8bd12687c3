#!/usr/bin/env bash
# Makes the API reference of the installed headers; an undocumented public symbol or a
# comment that Doxygen cannot follow is an error: docs.sh <build folder> <output folder>
set -euo pipefail
export LC_ALL=C.UTF-8  # Doxygen turns names into lower case by the locale
cd "$(dirname "$0")/.."
stage=$(realpath "$1")/include
mkdir -p "$2"
output=$(realpath "$2")
inputs=$(sed "s|.*|\"$stage/&\"|" "$1/public-headers.txt" | tr '\n' ' ')
cat docs/Doxyfile - <<SETTINGS | doxygen - 2>"$output/warnings.log" || { sed "s|$stage/||" "$output/warnings.log"; exit 1; }
PROJECT_NUMBER      = $(sed -n 's/^project(MapAnchor VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
INPUT               = docs/api.dox $inputs
OUTPUT_DIRECTORY    = "$output"
STRIP_FROM_PATH     = "$stage"
STRIP_FROM_INC_PATH = "$stage"
SETTINGS
echo "API reference: $output/html/index.html, of $(wc -l <"$1/public-headers.txt") headers"
