#!/usr/bin/env bash
# Runs the tests of one preset and closes with their number: test.sh <preset> <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
log=build/$1/test.log
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp:print_suppressions=0"
export TSAN_OPTIONS="suppressions=$PWD/scripts/tsan.supp"
ctest --preset "$1" -j "$2" | tee "$log"
sed -n 's/^100% tests passed, 0 tests failed out of \([0-9]*\)$/\1 tests passed/p' "$log"
