#!/usr/bin/env bash
# Builds the fuzz targets and runs each on its seeds, <jobs> at a time: fuzz.sh <jobs>.
# FUZZ_SECONDS (60) says how long. With FUZZ_ROUNDS, each runs that many times the count of
# inputs in fuzz/counts.txt instead, from the seeds alone, so that two runs with one
# FUZZ_SEED try the same inputs. What a target finds is kept in build/fuzz/found/<target>,
# and printed, since a build machine keeps nothing.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$1"

# Seed 0 is a new one each time.
export FUZZ_SECONDS=${FUZZ_SECONDS:-60} FUZZ_SEED=${FUZZ_SEED:-0} FUZZ_ROUNDS=${FUZZ_ROUNDS:-}
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp"
# Inputs are kept by the ways that the program takes, which depend on addresses and on
# hashes. A container may forbid to fix the addresses.
export QT_HASH_SEED=0 FIXED=
if setarch -R true 2>/dev/null; then FIXED='setarch -R'; fi
run_one() {
    local reader=$1 log=build/fuzz/$1.log corpus=build/fuzz/corpus/$1 limits=(-max_total_time="$FUZZ_SECONDS") status=0
    local seeds=("fuzz/seeds/$reader")
    if [ -n "$FUZZ_ROUNDS" ]; then
        local count
        count=$(sed -n "s/^$reader //p" fuzz/counts.txt)
        [ -n "$count" ] || { echo "fuzz: $reader has no line in fuzz/counts.txt"; return 1; }
        # What the program compares has times and numbers of files in it.
        limits=(-runs=$((count * FUZZ_ROUNDS)) -use_cmp=0)
        corpus=build/fuzz/fresh/$reader
        rm -rf "$corpus"
        printf '%s\n' "fuzz/seeds/$reader"/* | paste -sd, >"build/fuzz/$reader.seeds"
        seeds=(-seed_inputs="@build/fuzz/$reader.seeds")
    fi
    # The commands must do with little memory. They reach so much code that a look for leaks
    # and the weights of what is covered would take most of the time.
    if [ "$reader" = frontdoor ]; then
        limits+=(-rss_limit_mb=512 -entropic=0 -detect_leaks=0)
        export ASAN_OPTIONS=quarantine_size_mb=16
    fi
    mkdir -p "$corpus" "build/fuzz/found/$reader"
    touch "build/fuzz/$reader.start"
    $FIXED "build/fuzz/bin/${reader}_fuzzer" "${limits[@]}" -timeout=60 -max_len=4096 -seed="$FUZZ_SEED" -print_final_stats=1 \
        -close_fd_mask=1 -artifact_prefix="build/fuzz/found/$reader/" \
        "$corpus" "${seeds[@]}" >"$log" 2>&1 || status=$?
    echo "fuzz: $reader, $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs"
    if [ "$status" -ne 0 ]; then
        grep -E 'ERROR|SUMMARY|Test unit written|^    #[0-9]' "$log" || tail -5 "$log"
        find "build/fuzz/found/$reader" -newer "build/fuzz/$reader.start" -type f -print -exec base64 {} \;
    fi
    return "$status"
}
export -f run_one
basename -a build/fuzz/bin/*_fuzzer | sed 's/_fuzzer$//' | xargs -P "$1" -I{} bash -c 'run_one {}'
