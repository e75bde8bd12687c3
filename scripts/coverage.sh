#!/usr/bin/env bash
# Tests with coverage and prints the share of lines that ran, by source: coverage.sh <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/preset-test.sh coverage "$1" >build-coverage.log 2>&1 || { tail -50 build-coverage.log; exit 1; }
rm -f build-coverage.log
cd build/coverage
find src tools -name '*.gcda' -print0 | xargs -0 gcov --no-output 2>/dev/null |
    awk -v root="$(cd ../.. && pwd)/" '
        /^File / { file = $2; gsub(/\047/, "", file) }
        /^Lines executed/ && index(file, root) == 1 {
            split($0, part, /[:% ]+/); lines = $NF; ran = part[3] * lines / 100
            name = substr(file, length(root) + 1)
            if (lines > total[name]) total[name] = lines
            if (ran > hit[name]) hit[name] = ran
        }
        END {
            for (name in total) {
                printf "%6.1f%%  %s\n", 100 * hit[name] / total[name], name
                all += total[name]; seen += hit[name]
            }
            printf "%6.1f%%  all\n", 100 * seen / all
        }' | sort -k2
