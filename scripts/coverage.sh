#!/usr/bin/env bash
# Tests with coverage and prints the shares of lines and branches that ran, by source;
# fails below 90 and 80 per cent. Branches that only an exception takes out of a call do
# not count: coverage.sh <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/preset-test.sh coverage "$1" >build-coverage.log 2>&1 || { tail -50 build-coverage.log; exit 1; }
rm -f build-coverage.log
find build/coverage -name '*.gcda' -path '*/tests/*' -delete
gcovr -j "$1" --filter src/ --filter tools/ --exclude-throw-branches --exclude-unreachable-branches \
    --json build/coverage/coverage.json build/coverage
for kind in lines branches; do
    echo "== $kind"
    gcovr -a build/coverage/coverage.json $([ "$kind" = lines ] || echo --branches) --txt -
done
gcovr -a build/coverage/coverage.json --print-summary --fail-under-line 90 --fail-under-branch 80 >/dev/null
