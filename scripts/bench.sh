#!/usr/bin/env bash
# Builds and runs the benchmarks: bench.sh <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release -DMAPANCHOR_BUILD_BENCH=ON >/dev/null
programs="bench_read bench_coord_sys bench_pdf bench_pdf_write"
# shellcheck disable=SC2086 # a list of words
cmake --build --preset release -j "$1" --target $programs
for program in $programs; do
    build/release/bin/"$program" --benchmark_repetitions="${BENCH_REPETITIONS:-5}" \
        --benchmark_report_aggregates_only=true \
        --benchmark_out="build/release/$program.json" --benchmark_out_format=json
done
