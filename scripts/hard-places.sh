#!/usr/bin/env bash
# Runs the tests where programs stumble: under locales with a comma and with a dotless i,
# in a host that takes the locale up; from a source and a build in a folder whose name has
# a blank and an umlaut; and with a working folder that takes no file, not even from root.
# hard-places.sh <build folder> <jobs> [locales] [folder] [read-only]
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "$1")
jobs=$2
shift 2
[ $# -gt 0 ] || set -- locales folder read-only
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

locales() {
    g++ -shared -fPIC -o "$scratch/host_locale.so" tests/support/HostLocale.cpp
    mkdir "$scratch/locales"
    for locale in de_DE tr_TR; do
        localedef -i "$locale" -f UTF-8 "$scratch/locales/$locale.UTF-8"
        echo "hard-places: under $locale"
        LOCPATH=$scratch/locales LC_ALL=$locale.UTF-8 LD_PRELOAD=$scratch/host_locale.so \
            ctest --test-dir "$build" -j "$jobs" --output-on-failure --no-tests=error | tail -n 40
    done
}

folder() {
    local tree="$scratch/Karten für alle"
    mkdir "$tree"
    git ls-files -z | xargs -0 cp --parents -t "$tree"
    echo "hard-places: in <$tree>"
    (
        cd "$tree"
        export CCACHE_BASEDIR=$tree CCACHE_NOHASHDIR=1
        cmake --preset release >/dev/null
        cmake --build --preset release -j "$jobs" >build.log || { tail -n 40 build.log; exit 1; }
        ctest --preset release -j "$jobs" --no-tests=error | tail -n 40
    )
}

# /proc refuses new files to everybody.
read-only() {
    local program
    echo "hard-places: with /proc as working folder"
    ctest --test-dir "$build" --show-only=json-v1 |
        python3 -c '
import json, sys
for test in json.load(sys.stdin)["tests"]:
    if any(word.startswith("--gtest_filter=") for word in test.get("command", [])):
        print(test["command"][0])' | sort -u >"$scratch/programs"
    [ -s "$scratch/programs" ]
    while IFS= read -r program; do
        (cd /proc && "$program" --gtest_brief=1)
    done <"$scratch/programs"
}

for place in "$@"; do "$place"; done
echo "hard-places: passed in $*"
