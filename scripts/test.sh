#!/usr/bin/env bash
# Runs the tests of one preset and closes with their number: test.sh <preset> <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
log=build/$1/test.log
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp:print_suppressions=0"
# Where the block of a module's thread-locals begins at a certain place in a page, LeakSanitizer takes it for
# one with a header, and reads where nothing is. The blocks are on the heap, where it finds them by itself.
export ASAN_OPTIONS="intercept_tls_get_addr=0${ASAN_OPTIONS:+:$ASAN_OPTIONS}"
export TSAN_OPTIONS="suppressions=$PWD/scripts/tsan.supp"
ctest --preset "$1" -j "$2" | tee "$log"
sed -n 's/^100% tests passed, 0 tests failed out of \([0-9]*\)$/\1 tests passed/p' "$log"
