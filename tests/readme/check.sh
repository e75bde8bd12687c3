#!/usr/bin/env bash
# Compares the README's C++ block with the example that is compiled and run by the tests,
# runs the commands and the Python sessions of the documents, each document in a folder of
# its own, and compares the README's picture with the one that its commands draw:
# check.sh <source folder> <tool> [<folder of the Python package> <python>]
# With RENEW_PICTURE=1 the picture is stored instead.
set -euo pipefail
source=$(realpath "$1")
tool=$(realpath "$2")
package=${3:+$(realpath "$3")}
python=${4:-python3}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/bin"
ln -s "$tool" "$scratch/bin/mapanchor"

block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/{s/.*//};p}" "$source/$2"; }

# runs <document> <least number of commands>
runs() {
    local document=$1 least=$2 work=$scratch/${1//\//_}
    mkdir "$work"
    cp "$source"/examples/{innsbruck,sheet,yosemite}.* "$work"
    block console "$document" | sed '/^$/d' >"$work.shown"
    (
        cd "$work"
        sed -n 's/^\$ //p' "$work.shown" | while IFS= read -r command; do
            printf '$ %s\n' "$command"
            PATH="$scratch/bin:$PATH" bash -c "$command" </dev/null || :  # a failure shows in the text
        done | sed '/^$/d'
    ) >"$work.happened"
    diff -u "$work.shown" "$work.happened"
    [ "$(grep -c '^\$ ' "$work.shown")" -ge "$least" ]
    echo "$document: $(grep -c '^\$ ' "$work.shown") commands hold"
}

# sessions <document>: its Python, in the folder that its commands have left
sessions() {
    [ -n "$package" ] || { echo "$1: no Python package, its sessions are not run"; return; }
    local work=$scratch/${1//\//_}
    block pycon "$1" >"$work.doctest"
    grep -q '^>>> ' "$work.doctest"
    rm -f "$work"/copy.*
    (cd "$work" && PYTHONDONTWRITEBYTECODE=1 PYTHONPATH=$package "$python" -m doctest "$work.doctest")
    echo "$1: $(grep -c '^>>> ' "$work.doctest") lines of Python hold"
}

# The picture's thumbnail depends on the version of libpng: only its drawing is compared.
drawing() { sed -E 's/base64,[^"]*//' "$1"; }

block cpp README.md | sed '1d;$d' >"$scratch/shown.cpp"
diff -u "$scratch/shown.cpp" <(sed -n '/^int main/,$p' "$source/examples/read_reference.cpp")
for document in README.md docs/cookbook.md; do
    runs "$document" 10
    sessions "$document"
done
if [ -n "${RENEW_PICTURE:-}" ]; then
    cp "$scratch/README.md/yosemite.svg" "$source/docs/yosemite.svg"
else
    diff -u <(drawing "$source/docs/yosemite.svg") <(drawing "$scratch/README.md/yosemite.svg")
fi
