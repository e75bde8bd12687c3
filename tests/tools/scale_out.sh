#!/usr/bin/env bash
# Runs a recipe of docs/scale-out.md as it is written there and compares its rows with those of
# one plain run: scale_out.sh <tool> <document> <recipe>. 77: the engine is not installed.
set -euo pipefail
tool=$(realpath "$1")
recipe=$3
scratch=$(mktemp -d)
source "$(dirname "$0")/slurm.sh"
trap 'slurm_stop; rm -rf "$scratch"' EXIT
case $recipe in
    parallel) command -v parallel >/dev/null || { echo "SKIPPED: GNU parallel is not installed"; exit 77; } ;;
    dask) /usr/bin/python3 -c 'import distributed' 2>/dev/null || { echo "SKIPPED: python3-distributed is not installed"; exit 77; } ;;
    slurm) slurm_is_installed || { echo "SKIPPED: slurmctld, slurmd or munge is not installed"; exit 77; } ;;
esac
awk -v wanted="<!-- recipe: $recipe -->" '
    $0 == wanted { armed = 1; next }
    /^```/ && armed { inside = !inside; if (!inside) exit; next }
    inside { print }' "$2" >"$scratch/recipe"
[ -s "$scratch/recipe" ] || { echo "FAILED: no recipe $recipe"; exit 1; }

export ARCHIVE=$scratch/archive PATH=$(dirname "$tool"):$PATH HOME=$scratch
mkdir -p "$ARCHIVE/deep"
for name in a b c "d e" deep/f deep/g; do printf '1\n0\n0\n-1\n%d\n5\n' ${#name} >"$ARCHIVE/$name.tfw"; done
echo 'no numbers' >"$ARCHIVE/deep/bad.tfw"
mapanchor batch --quiet "$ARCHIVE" >"$scratch/wanted" || [ $? -le 5 ]

cd "$scratch"
[ "$recipe" != slurm ] || slurm_start "$scratch/slurm"
case $recipe in
    dask) /usr/bin/python3 recipe ;;
    *) bash -euo pipefail recipe ;;
esac
diff <(sort wanted) <(sort rows.jsonl)
[ "$(wc -l <rows.jsonl)" = 7 ] || { echo "FAILED: $(wc -l <rows.jsonl) rows"; exit 1; }
echo "scale-out: $recipe gives the same rows"
