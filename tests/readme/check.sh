#!/usr/bin/env bash
# Compares the README's C++ block with the example that is compiled and run by the
# tests, and runs its commands: check.sh <source folder> <tool>
set -euo pipefail
source=$(realpath "$1")
tool=$(realpath "$2")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/p" "$source/README.md" | sed '1d;$d'; }

block cpp >"$scratch/shown.cpp"
diff -u "$scratch/shown.cpp" <(sed -n '/^int main/,$p' "$source/examples/read_reference.cpp")

mkdir "$scratch/bin" "$scratch/work"
ln -s "$tool" "$scratch/bin/mapanchor"
cp "$source"/examples/innsbruck.* "$scratch/work"
block console >"$scratch/shown"
cd "$scratch/work"
sed -n 's/^\$ //p' "$scratch/shown" | while IFS= read -r command; do
    printf '$ %s\n' "$command"
    PATH="$scratch/bin:$PATH" bash -c "$command"
done >"$scratch/happened"
diff -u "$scratch/shown" "$scratch/happened"
[ "$(grep -c '^\$ ' "$scratch/shown")" -ge 3 ]
echo "README: the examples hold"
