#!/usr/bin/env python3
"""Runs the benchmarks and sets ours, the peer's and the floor side by side.

performance.py BIN TABLE            measures everything and writes it into TABLE (Markdown), below its
                                    heading "Single operations"
performance.py --only RE BIN TABLE  measures the operations that match, keeps the other rows
performance.py --compare BIN TABLE  measures the times and prints which ratio got worse than
                                    the one kept in TABLE by more than a tenth; a row counts
                                    as worse when its instructions grew as well, since the
                                    clock of a shared machine is noisy. Ends with 1 then.
"""

import argparse
import collections
import datetime
import json
import os
import re
import statistics
import subprocess
import sys

PROGRAMS = ("bench_read", "bench_coord_sys", "bench_pdf", "bench_pdf_write", "bench_fit_report")
PEERS = {"gdal": "GDAL", "podofo": "PoDoFo", "walk": "plain walk", "named": "read by name"}
HEADING = "## Single operations"
COLD_PROGRAM, COLD = "bench_coord_sys", "^ours/first"
ON_CLOCK = "/real_time$"
WORSE = 1.1
# Of operations below so many nanoseconds many rounds are counted: a start varies by thousands.
CHEAP, MANY_ROUNDS, FEW_ROUNDS = 1e6, 100, 5

# What takes a peer longer is not counted: under Cachegrind it takes fifty times as long.
LONG_FOR_A_PEER = 1e8

# `ours` and `peer` are Timings, `peer` and `floor` None where there is none.
Timing = collections.namedtuple("Timing", "nanoseconds program name")
Row = collections.namedtuple("Row", "operation ours peer peer_name floor counted peer_counted")


def names_of(entry):
    """'ours/read rsf/4/iterations:1' is ('ours', 'read rsf'); who waits is timed on the clock, and says so."""
    who, operation = entry["run_name"].split("/", 1)
    operation = re.sub(ON_CLOCK, ", on the clock", operation)
    return who, re.sub(r"/(iterations:)?\d+\b", "", operation)


def run_benchmarks(folder, program, *options):
    """(who, operation, nanoseconds, full name) of each result."""
    run = subprocess.run([os.path.join(folder, program), "--benchmark_format=json", *options],
                         check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    scale = {"ns": 1, "us": 1e3, "ms": 1e6}
    # A program in which nothing matches the filter prints nothing.
    for entry in json.loads(run.stdout or '{"benchmarks": []}')["benchmarks"]:
        if entry.get("aggregate_name", "median") == "median" and not entry.get("error_occurred"):
            time = entry["real_time" if re.search(ON_CLOCK, entry["run_name"]) else "cpu_time"]
            yield (*names_of(entry), time * scale[entry["time_unit"]], entry["run_name"])


def measure(folder, repetitions, only):
    """{operation: {who: Timing}}"""
    found = {}
    for program in PROGRAMS:
        for who, operation, time, name in run_benchmarks(
                folder, program, f"--benchmark_filter={only or f'-{COLD}'}", "--benchmark_min_time=0.2",
                "--benchmark_enable_random_interleaving=true", f"--benchmark_repetitions={repetitions}",
                "--benchmark_report_aggregates_only=true"):
            found.setdefault(operation, {})[who] = Timing(time, program, name)
    if only:
        return found
    # What a process does once is measured in a process of its own.
    names = subprocess.run([os.path.join(folder, COLD_PROGRAM), "--benchmark_list_tests",
                            f"--benchmark_filter={COLD}"], check=True, stdout=subprocess.PIPE, text=True)
    for name in names.stdout.split("\n")[:-1]:
        times = [result for _ in range(repetitions)
                 for result in run_benchmarks(folder, COLD_PROGRAM, f"--benchmark_filter=^{name}$")]
        who, operation, _, name = times[0]
        found[operation] = {who: Timing(statistics.median(time for _, _, time, _ in times), COLD_PROGRAM, name)}
    return found


def count_instructions(folder, timing):
    """Of one round, as the difference of runs that differ in their rounds."""
    counts = []
    name = re.sub(ON_CLOCK, "", timing.name)
    more = MANY_ROUNDS if timing.nanoseconds < CHEAP else FEW_ROUNDS
    for rounds in (1, 1 + more):
        run = subprocess.run(
            ["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
             os.path.join(folder, timing.program), f"--benchmark_filter=^{name}(/iterations:[0-9]+)?({ON_CLOCK})?$"],
            env={**os.environ, "MAPANCHOR_BENCH_ROUNDS": str(rounds)}, stdout=subprocess.DEVNULL,
            stderr=subprocess.PIPE, text=True, check=False)
        # Processes that a benchmark forks tell theirs too, and earlier.
        found = re.findall(r"I\s+refs:\s+([\d,]+)", run.stderr)
        if not found:
            return None
        counts.append(int(found[-1].replace(",", "")))
    return (counts[1] - counts[0]) // more


def rows_of(found):
    rows = []
    for operation, times in sorted(found.items()):
        if "ours" not in times:
            continue
        peer = next((who for who in PEERS if who in times), None)
        rows.append(Row(operation, times["ours"], times.get(peer), PEERS.get(peer), times.get("floor"), None,
                        None))
    return rows


def with_counts(folder, row):
    if row.operation.startswith("first"):
        return row
    countable = row.peer and row.peer.nanoseconds < LONG_FOR_A_PEER
    return row._replace(counted=count_instructions(folder, row.ours),
                        peer_counted=count_instructions(folder, row.peer) if countable else None)


def time_text(timing):
    if timing is None:
        return ""
    nanoseconds = timing.nanoseconds
    for unit, scale in (("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= scale:
            return f"{nanoseconds / scale:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def ratio_text(above, below):
    return f"{above.nanoseconds / below.nanoseconds:.2f}" if above and below else ""


def version(*command):
    run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
    return run.stdout.split("\n")[0].strip()


def row_text(row):
    peer = f"{time_text(row.peer)} ({row.peer_name})" if row.peer else ""
    return (f"| {row.operation} | {time_text(row.ours)} | {peer} | {ratio_text(row.peer, row.ours)} | "
            f"{time_text(row.floor)} | {ratio_text(row.ours, row.floor)} | "
            f"{row.counted or ''} | {row.peer_counted or ''} |")


def table_text(lines_by_operation):
    lines = [
        HEADING, "",
        "Times are medians of processor time for one operation, on the clock where it says so; a peer and the",
        "floor ran in the same process, in turn. \"Peer / ours\" says how many times faster than the",
        "peer we are (below 1: slower); the floor opens the file, reads its numbers and closes it.",
        "Of a TAB file of 10,000 points GDAL does not read the end: it finds no system there.",
        "Instructions are those of one operation, by Cachegrind; where there are none, none were counted.",
        "`make bench-compare` shows which ratio is worse than the one stored here by more than a tenth.",
        "",
        f"{datetime.date.today().isoformat()}, {version('uname', '-m')}, "
        f"{version('c++', '--version')}, GDAL {version('gdal-config', '--version')}", "",
        "| Operation | Ours | Peer | Peer / ours | Floor | Ours / floor | Our instructions | The peer's |",
        "|---|---:|---:|---:|---:|---:|---:|---:|"]
    lines += [line for _, line in sorted(lines_by_operation.items())]
    return "\n".join(lines) + "\n"


def kept_lines(path):
    """{operation: line}"""
    with open(path, encoding="utf-8") as table:
        operations = table.read().split(HEADING)[1]
    lines = [line for line in operations.split("\n") if line.startswith("| ")]
    return {line.split(" | ")[0][2:]: line for line in lines[1:]}


def kept_rows(path):
    """{operation: (peer / ours, ours / floor, instructions)}, None where there is none."""
    kept = {}
    for operation, line in kept_lines(path).items():
        cells = [cell.strip() for cell in line[1:-1].split("|")]
        kept[operation] = tuple(float(cells[i]) if cells[i] else None for i in (3, 5, 6))
    return kept


def got_worse(row, kept):
    by_peer, by_floor, _ = kept
    if by_peer and row.peer:
        return by_peer / (row.peer.nanoseconds / row.ours.nanoseconds) > WORSE
    if by_floor and row.floor:
        return (row.ours.nanoseconds / row.floor.nanoseconds) / by_floor > WORSE
    return False


def compare(folder, rows, kept):
    worse = 0
    for row in rows:
        if row.operation not in kept:
            print(f"new       {row.operation}")
            continue
        if not got_worse(row, kept[row.operation]):
            continue
        before = kept[row.operation][2]
        now = count_instructions(folder, row.ours)
        if before and now and now / before <= WORSE:
            print(f"noise     {row.operation}: slower by the clock, {now} instructions, {before:.0f} before")
            continue
        worse += 1
        print(f"worse     {row.operation}: peer / ours {ratio_text(row.peer, row.ours)}, ours / floor "
              f"{ratio_text(row.ours, row.floor)}, {now} instructions, before {kept[row.operation]}")
    for operation in kept.keys() - {row.operation for row in rows}:
        print(f"missing   {operation}")
    print(f"{len(rows)} operations compared, {worse} worse")
    return 1 if worse else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--compare", action="store_true")
    parser.add_argument("--only", default=os.environ.get("BENCH_ONLY"))
    parser.add_argument("--repetitions", type=int, default=int(os.environ.get("BENCH_REPETITIONS", "5")))
    parser.add_argument("folder")
    parser.add_argument("table")
    options = parser.parse_args()
    rows = rows_of(measure(options.folder, options.repetitions, options.only))
    if options.compare:
        return compare(options.folder, rows, kept_rows(options.table))
    lines = kept_lines(options.table) if options.only else {}
    lines.update({row.operation: row_text(with_counts(options.folder, row)) for row in rows})
    with open(options.table, encoding="utf-8") as table:
        before = table.read().split(HEADING)[0]
    with open(options.table, "w", encoding="utf-8") as table:
        table.write(before + table_text(lines))
    return 0


if __name__ == "__main__":
    sys.exit(main())
