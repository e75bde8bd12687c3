#!/usr/bin/env bash
# Builds the fuzz targets and runs each for FUZZ_SECONDS on its seeds: fuzz.sh <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$1"
for target in build/fuzz/bin/*_fuzzer; do
    reader=$(basename "$target" _fuzzer)
    mkdir -p "build/fuzz/corpus/$reader"
    echo "fuzz: $reader"
    "$target" -max_total_time="${FUZZ_SECONDS:-60}" -max_len=4096 -print_final_stats=1 -close_fd_mask=1 \
        "build/fuzz/corpus/$reader" "fuzz/seeds/$reader" 2>&1 | grep -E 'stat::number_of_executed|ERROR|SUMMARY' || exit 1
done
