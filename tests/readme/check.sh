#!/usr/bin/env bash
# Compares the README's C++ block with the example that is compiled and run by the tests,
# and runs the commands of the documents, each document in a folder of its own:
# check.sh <source folder> <tool>
set -euo pipefail
source=$(realpath "$1")
tool=$(realpath "$2")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/bin"
ln -s "$tool" "$scratch/bin/mapanchor"

block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;p}" "$source/$2"; }

# runs <document> <least number of commands>
runs() {
    local document=$1 least=$2 work=$scratch/${1//\//_}
    mkdir "$work"
    cp "$source"/examples/innsbruck.* "$work"
    block console "$document" >"$work.shown"
    (
        cd "$work"
        sed -n 's/^\$ //p' "$work.shown" | while IFS= read -r command; do
            printf '$ %s\n' "$command"
            PATH="$scratch/bin:$PATH" bash -c "$command" </dev/null || :  # a failure shows in the text
        done
    ) >"$work.happened"
    diff -u "$work.shown" "$work.happened"
    [ "$(grep -c '^\$ ' "$work.shown")" -ge "$least" ]
    echo "$document: $(grep -c '^\$ ' "$work.shown") commands hold"
}

block cpp README.md >"$scratch/shown.cpp"
diff -u "$scratch/shown.cpp" <(sed -n '/^int main/,$p' "$source/examples/read_reference.cpp")
runs README.md 3
runs docs/cookbook.md 15
