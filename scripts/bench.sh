#!/usr/bin/env bash
# Builds and runs the benchmarks: bench.sh <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release -DMAPANCHOR_BUILD_BENCH=ON >/dev/null
cmake --build --preset release -j "$1" --target bench_read bench_pdf
build/release/bin/bench_read --benchmark_repetitions="${BENCH_REPETITIONS:-5}" \
    --benchmark_report_aggregates_only=true --benchmark_out=build/release/bench.json --benchmark_out_format=json
build/release/bin/bench_pdf --benchmark_repetitions="${BENCH_REPETITIONS:-5}" --benchmark_report_aggregates_only=true
