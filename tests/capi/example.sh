#!/usr/bin/env bash
# Runs one example of docs/c.md on a world file and compares what it prints with what the tool does; 77 when
# the language's tools are missing: example.sh <source folder> <tool> <folder of the libraries> <language>
set -euo pipefail
source=$(realpath "$1")
tool=$(realpath "$2")
libraries=$(realpath "$3")
language=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$source"/examples/innsbruck.* "$scratch"
cd "$scratch"
export LD_LIBRARY_PATH=$libraries

needs() {
    for program in "$@"; do
        command -v "$program" >/dev/null || { echo "skipped: $program is not installed"; exit 77; }
    done
}
# block <language> <number>: that example of the page
block() { awk -v open="\`\`\`$1" -v want="$2" '/^```/ { inside = ($0 == open && ++n == want); next } inside' "$source/docs/c.md"; }
same() { diff "$1" happened; }
link=(-I"$source/capi" -L"$libraries" -lmapanchor-c)

"$tool" info --json innsbruck.tfw >json
read -r epsg x y < <("$tool" info --print epsg,affine innsbruck.tfw | awk '{ printf "%s %.3f %.3f\n", $1, $4, $7 }')
case $language in
c)
    needs gcc
    block c 1 >where.c
    { printf '#include <mapanchor.h>\n#include <stdio.h>\nint main(void) {\n'; block c 2; printf 'return 0;\n}\n'; } >save.c
    for name in where save; do gcc -std=c99 -pedantic -Wall -Wextra -Werror $name.c "${link[@]}" -o $name; done
    ./where innsbruck.tfw >happened
    echo "WLD $epsg $x $y" >expected
    same expected
    ./save | grep '^read back'
    [ "$("$tool" info --print epsg scan.tfw)" = EPSG:32632 ]
    ! ./where missing.tfw 2>why
    grep missing.tfw why
    ;;
python)
    needs python3
    block python 1 >where.py
    python3 where.py innsbruck.tfw | awk '{ printf "%s %s %.3f %.3f\n", $1, $2, $3, $4 }' >happened
    echo "WLD $epsg $x $y" >expected
    same expected
    ;;
rust)
    needs rustc
    block rust 1 >where.rs
    rustc -D warnings -L "native=$libraries" where.rs
    ./where innsbruck.tfw >happened
    same json
    ;;
r)
    needs R Rscript
    block c 3 >glue.c
    block r 1 >where.R
    PKG_CPPFLAGS="-I$source/capi" PKG_LIBS="-L$libraries -lmapanchor-c" R CMD SHLIB glue.c >shlib.log || { cat shlib.log; exit 1; }
    Rscript where.R innsbruck.tfw >happened
    same json
    ;;
julia)
    needs julia
    block julia 1 >where.jl
    julia where.jl innsbruck.tfw >happened
    same json
    ;;
csharp)
    needs mcs mono
    block csharp 1 >Where.cs
    mcs -warnaserror Where.cs
    mono Where.exe innsbruck.tfw >happened
    same json
    ;;
esac
