#!/usr/bin/env bash
# Compares the man page and the completions with what --help lists, and completes in a
# real bash and, where there is one, a real zsh: generated.sh <tool>
set -euo pipefail
tool=$(realpath "$1")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }

for kind in man bash zsh; do "$tool" --generate $kind >"$scratch/$kind"; done
sed 's/\\-/-/g; s/\\f[BIR]//g' "$scratch/man" >"$scratch/man.plain"
mapfile -t commands < <("$tool" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]\+\)  .*/\1/p')
[ ${#commands[@]} -ge 12 ] || fail "--help lists ${#commands[@]} commands"

man=$(cat "$scratch/man.plain")
bash=$(cat "$scratch/bash")
zsh=$(cat "$scratch/zsh")
for command in "" "${commands[@]}"; do
    # shellcheck disable=SC2086
    ! "$tool" $command --help | grep -E '.{81}|[{}]|->|REQUIRED' || fail "$command --help is too wide or shows the parser"
    [[ -z $command || $man == *$'\n'".SS $command"$'\n'* ]] || fail "$command is not in the man page"
    in_zsh=${zsh#*"_mapanchor_${command:-without}()"}
    in_bash=${bash#*"${command:-info}) _mapanchor_words '"}
    # shellcheck disable=SC2086
    for option in $("$tool" $command --help | grep -oP '^ {2,6}-\S+(, --\S+)?' | tr ',' ' '); do
        [[ $man =~ $'\n'[^$'\n']*"$option"[$'\n'\ ,] ]] || fail "$command $option is not in the man page"
        [[ ${in_zsh%%$'\n}'*} == *"$option["* ]] || fail "$command $option is not in the zsh completion"
        [[ "'${in_bash%%\'*} " == *[\'\ ]"$option "* ]] || fail "$command $option is not in the bash completion"
    done
done
! command -v man >/dev/null || [ -z "$(MANROFFOPT='-ww' man --warnings -E UTF-8 -l "$scratch/man" 2>&1 >/dev/null)" ] ||
    fail "the man page has warnings"

mkdir "$scratch/files"
cd "$scratch/files"
touch 'map one.tfw' chart.kap
# Each row: the words up to the cursor, and what is offered, sorted.
complete() {
    # shellcheck disable=SC2016
    bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _mapanchor
             printf "%s\n" "${COMPREPLY[@]}" | sort | paste -sd "|"' bash "$scratch/bash" "$@"
}
expect() {
    local wanted=$1 offered
    shift
    offered=$(complete "$@")
    [ "$offered" = "$wanted" ] || fail "'$*' offers '$offered', not '$wanted'"
}
expect 'convert' mapanchor con
expect 'map one.tfw' mapanchor ma
expect 'chart.kap|map one.tfw' mapanchor info ''
expect 'chart.kap' mapanchor --json convert c
expect 'projective' mapanchor --fit pr
expect 'poly2|poly3' mapanchor info --fit po
expect 'poly2|poly3' mapanchor info --fit = po
expect 'tab|tif' mapanchor convert --to t
expect '' mapanchor info --size ''
expect '--overwrite' mapanchor convert --overw
expect '' mapanchor formats --ov
expect '' mapanchor crs c

if command -v zsh >/dev/null; then
    cp "$scratch/zsh" "$scratch/_mapanchor"
    offered=$(cd "$scratch/files" && zsh -f -c '
        zmodload zsh/zpty
        zpty shell zsh -f -i
        zpty -w shell "PS1=; fpath=($1 \$fpath); autoload -U compinit; compinit -u -D; print re\"\"ady"
        zpty -r shell line "*ready*"
        zpty -w -n shell "mapanchor convert --overw"$'"'\t'"'" --to ti"$'"'\t'"'" chart"$'"'\t'"'
        zpty -r -t shell line
        sleep 2
        while zpty -r -t shell more; do line+=$more; done
        print -r -- $line' zsh "$scratch" | tr -d '\r')
    [[ $offered == *'--overwrite'*'tif'*'chart.kap'* ]] || fail "zsh completes '$offered'"
fi
[ $failures = 0 ]
echo "man page and completions: ${#commands[@]} commands hold"
