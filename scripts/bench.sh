#!/usr/bin/env bash
# Builds and runs the benchmarks, those of processes and archives as well, into docs/performance.md or against it:
# bench.sh <jobs> [--compare]
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release -DMAPANCHOR_BUILD_BENCH=ON >/dev/null
cmake --build --preset release -j "$1" --target bench_read bench_coord_sys bench_pdf bench_pdf_write \
    bench_fit_report gdal_loop mapanchor
shift
scripts/performance.py "$@" build/release/bin docs/performance.md
case " $* " in
    *" --compare "*) ;;
    *) scripts/bench-archive.py build/release/bin docs/performance.md ;;
esac
