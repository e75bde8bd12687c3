#!/usr/bin/env bash
# Builds the fuzz targets and runs each for FUZZ_SECONDS on its seeds, <jobs> at a time:
# fuzz.sh <jobs>. What a target finds is kept in build/fuzz/found/<target>.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$1"

# Seed 0 is a new one each time.
export FUZZ_SECONDS=${FUZZ_SECONDS:-60} FUZZ_SEED=${FUZZ_SEED:-0} LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp"
run_one() {
    local reader=$1 log=build/fuzz/$1.log
    mkdir -p "build/fuzz/corpus/$reader" "build/fuzz/found/$reader"
    local status=0
    "build/fuzz/bin/${reader}_fuzzer" -max_total_time="$FUZZ_SECONDS" -max_len=4096 -seed="$FUZZ_SEED" -print_final_stats=1 \
        -close_fd_mask=1 -artifact_prefix="build/fuzz/found/$reader/" \
        "build/fuzz/corpus/$reader" "fuzz/seeds/$reader" >"$log" 2>&1 || status=$?
    echo "fuzz: $reader, $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs"
    if [ "$status" -ne 0 ]; then grep -E 'ERROR|SUMMARY|Test unit written' "$log" || tail -5 "$log"; fi
    return "$status"
}
export -f run_one
basename -a build/fuzz/bin/*_fuzzer | sed 's/_fuzzer$//' | xargs -P "$1" -I{} bash -c 'run_one {}'
