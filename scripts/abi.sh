#!/usr/bin/env bash
# Compares the public ABI with the one that is kept in abi/, or keeps the new one with
# --renew: abi.sh <build folder> <jobs> [--renew]. What is added is shown and passes; what
# is changed or taken away does not.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
new=$scratch/new.abi
kept=$scratch/kept.abi
cmake --build "$build" -j "$2" --target mapanchor_abi MapAnchor mapanchor_c >"$scratch/build.log" || { cat "$scratch/build.log"; exit 1; }

# The types of the installed headers and no others, and nothing that depends on the machine.
mkdir "$scratch/include"
(cd "$build/include" && xargs -I{} cp --parents -L {} "$scratch/include") <"$build/public-headers.txt"
abidw --headers-dir "$scratch/include" --drop-private-types --drop-undefined-syms --no-corpus-path \
    --no-comp-dir-path --no-show-locs --no-parameter-names --type-id-style hash --no-elf-needed \
    --suppressions abi/suppressions.ini "$build/lib/libmapanchor_abi.so" |
    sed -E "s/^ *//; s#path='[^']*/(src|capi)/#path='\1/#" >"$new"
if grep -q "$PWD\|$HOME/" "$new"; then
    echo "abi: the description names a folder of this machine" >&2
    exit 1
fi

# Whatever the libraries export of ours is in it, so that nothing escapes.
ours() { nm -D --defined-only "$@" | awk '{sub(/@.*/, "", $3); print $3}' | grep -E '^(_ZNK?(9MapAnchor|9Tellurion)|mapanchor_)' | sort -u; }
if comm -13 <(ours "$build/lib/libmapanchor_abi.so") <(ours "$build"/lib/lib{MapAnchor,Tellurion,mapanchor-c}.so) | grep .; then
    echo "abi: abi/CMakeLists.txt does not name the sources of what the libraries export" >&2
    exit 1
fi

symbols=$(grep -c '<elf-symbol' "$new")
if [ "${3:-}" = --renew ]; then
    xz -9e <"$new" >abi/mapanchor.abi.xz
    echo "abi: $symbols symbols kept"
    exit 0
fi
xz -d <abi/mapanchor.abi.xz >"$kept"
if ! abidiff --no-added-syms "$kept" "$new"; then
    echo "abi: the public ABI changed; CONTRIBUTING.md says what to do" >&2
    exit 1
fi
abidiff "$kept" "$new" || [ $(($? & 3)) -eq 0 ]  # 1 and 2 are abidiff's own failures
echo "abi: $symbols symbols, all that are kept among them"
