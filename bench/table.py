"""table.py [--check] FOLDER RESULT: prints what the rounds in FOLDER measured, and the goals; writes RESULT."""

import itertools
import json
import math
import pathlib
import statistics
import sys

TOLERANCE = 0.2
CHECK = "--check" in sys.argv
FOLDER, RESULT = map(pathlib.Path, sys.argv[-2:])
PEERS = ("naive", "libxml2", "fwrite")
OURS = "PmReportWriter"


def read_rounds():
    """What was measured, by the bench's name: a list with an entry for each round, its quickest repetition."""
    measured = {}
    for file in sorted(FOLDER.glob("*.json"), key=lambda path: int(path.suffixes[0][1:])):
        quickest = {}
        for run in json.loads(file.read_text())["benchmarks"]:
            name = run["name"].split("/iterations:")[0].removesuffix("/manual_time")
            if run["run_type"] == "iteration":
                quickest[name] = min(run, quickest.get(name, run), key=lambda each: each["real_time"])
        for name, run in quickest.items():
            measured.setdefault(name, []).append(run)
    return measured


ROUNDS = read_rounds()


def in_rounds(name, key="real_time", per=None):
    """A figure of each round, by unit where `per` names a counter. Times are in ns."""
    return [run[key] / (run[per] if per else 1) for run in ROUNDS[name]]


def median(name, key="real_time", per=None):
    return statistics.median(in_rounds(name, key, per))


def ratio(name, other, key="real_time", per=None):
    quotients = (a / b for a, b in zip(in_rounds(name, key, per), in_rounds(other, key, per)))
    return statistics.median(quotients)


def times_faster(case, peer):
    return ratio(f"writer/{case}/{peer}", f"writer/{case}/{OURS}")


def cell_text(cell):
    return cell if isinstance(cell, str) else f"{cell:{',.0f' if cell >= 100 else '.3g'}}"


def print_table(heads, rows):
    """In Markdown."""
    rows = [heads, *([cell_text(cell) for cell in row] for row in rows)]
    widths = [max(map(len, column)) for column in zip(*rows)]
    rows.insert(1, ["-" * width for width in widths])
    print()
    for row in rows:
        print("|", " | ".join(text.ljust(width) for text, width in zip(row, widths)), "|")


def print_benches(prefix, heads, cells):
    """A row for each bench with the prefix that has cells."""
    rows = [[name.removeprefix(prefix).removesuffix("/" + OURS), *values]
            for name in ROUNDS if name.startswith(prefix) and (values := cells(name))]
    if rows:
        print_table(heads, rows)


def writer_cells(name):
    case, way = name.split("/")[1:]
    if way != OURS:
        return None
    peers = ((median(f"writer/{case}/{p}", per="values"), f"{times_faster(case, p):.2f}") for p in PEERS)
    return median(name, per="values"), 1e3 / median(name, per="bytes"), *itertools.chain(*peers)


def publishing_cells(name):
    size = ROUNDS[name][0].get("bytes")
    return median(name) / 1e6, size * 1e3 / median(name) if size else ""


def peak(name):
    return max(in_rounds(name, "peak KiB"))


def print_tables():
    print_benches("writer/", ("a report of values that are", "ns for each", "MB/s",
                              *itertools.chain(*((peer, "times") for peer in PEERS))), writer_cells)
    print_benches("publish/", ("publishing 50 MB; the end of a phase with so many reports", "ms", "MB/s"),
                  publishing_cells)
    print_benches("intake/", ("intake, by threads (and seconds after the GP's end), ns", "p50", "p99", "p99.9"),
                  lambda name: [median(name, key) for key in ("p50", "p99", "p99.9")])
    print_benches("housekeeping/", ("housekeeping, by reports in the folder", "ms", "µs for each"),
                  lambda name: (median(name) / 1e6, median(name, per="files") / 1e3))
    print_benches("road/", ("the road, by objects of a GP, ten values each", "GPs per s", "values per s"),
                  lambda name: [1e9 / median(name, per=unit) for unit in ("gps", "values")])
    print_benches("growth/", ("growth, by", "ns each", "peak, KiB"),
                  lambda name: (median(name, per="units"), peak(name)))


GOALS = [
    ("writer, mixed: times faster than naive", ">=", 10, lambda: times_faster("mixed", "naive")),
    ("writer, integers: times faster than naive", ">=", 12, lambda: times_faster("integers", "naive")),
    ("writer, 5 % missing: times faster than naive", ">=", 8, lambda: times_faster("mixed, 5 % missing", "naive")),
    ("writer, names equal by content: times faster than naive", ">=", 9,
     lambda: times_faster("mixed, names equal by content", "naive")),
    ("writer, tiny GPs: times faster than naive", ">=", 4.5, lambda: times_faster("mixed, tiny GPs", "naive")),
    ("writer, mixed: times faster than libxml2", ">=", 7, lambda: times_faster("mixed", "libxml2")),
    ("writer, mixed: its time by that of one fwrite", "<=", 8.5, lambda: 1 / times_faster("mixed", "fwrite")),
    ("naive, mixed: its time by that of libxml2", "<=", 1.7,
     lambda: ratio("writer/mixed/naive", "writer/mixed/libxml2")),
    ("ns per value at 10^7 values by that at 10^4", "<=", 1.25,
     lambda: ratio("growth/values/10000000", "growth/values/10000", per="units")),
    ("gzip publishing: its time by that of gzip -6", "<=", 0.95, lambda: ratio("publish/gzip", "publish/gzip -6")),
    ("pushGp, one thread, p50: by that of its bare parts", "<=", 2,
     lambda: ratio("intake/pushGp/1/0", "intake/bare parts/1", "p50")),
    ("peak memory of a report of 10^7 values, MiB", "<=", 1, lambda: peak("growth/values/10000000") / 1024),
]


def compare_with_goals():
    outcomes = []
    for text, sign, goal, measure in GOALS:
        try:
            value = measure()
        except KeyError:  # of a part that did not run
            continue
        # What the kernel did not tell is not reached.
        share = -math.inf if math.isnan(value) else value / goal if sign == ">=" else 2 - value / goal
        outcomes.append({"goal": text, "limit": f"{sign} {goal}", "measured": value,
                         "reached": share >= 1, "nearly": share >= 1 - TOLERANCE})
    print_table(("goal", "", "measured", ""),
                [(each["goal"], each["limit"], f"{each['measured']:.2f}", "reached" if each["reached"] else "MISSED")
                 for each in outcomes])
    return outcomes


print_tables()
goals = compare_with_goals()
RESULT.write_text(json.dumps({"goals": goals, "rounds": ROUNDS}, indent=1))
if CHECK:
    missed = [outcome["goal"] for outcome in goals if not outcome["nearly"]]
    print("\nmissed by more than a fifth:", *(missed or ["nothing"]), sep="\n  ")
    sys.exit(1 if missed else 0)
