"""table.py [--check] FOLDER RESULT: prints what the rounds in FOLDER measured, and the goals; writes RESULT."""

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


def print_rows(title, heads, prefix, cells):
    """A row for each bench with the prefix that has cells."""
    rows = [(name.removeprefix(prefix), cells(name)) for name in ROUNDS if name.startswith(prefix)]
    if rows:
        print(f"\n{title:<31}", *(f"{head:>13}" for head in heads))
    for name, values in rows:
        if values:
            print(f"{name.removesuffix('/' + OURS):<31}",
                  *(f"{v:>13}" if isinstance(v, str) else f"{v:13.4g}" for v in values))


def writer_cells(name):
    case, way = name.split("/")[1:]
    if way != OURS:
        return None
    peers = (f"{median(f'writer/{case}/{p}', per='values'):.0f} ({times_faster(case, p):.2f})" for p in PEERS)
    return median(name, per="values"), 1e3 / median(name, per="bytes"), *peers


def publishing_cells(name):
    size = ROUNDS[name][0].get("bytes")
    return median(name) / 1e6, size * 1e3 / median(name) if size else ""


def peak(name):
    return max(in_rounds(name, "peak KiB"))


def print_tables():
    heads = ("writer", "MB/s", *(f"{peer} (times)" for peer in PEERS))
    print_rows("writing a report, ns per value", heads, "writer/", writer_cells)
    print_rows("publishing", ("ms", "MB/s"), "publish/", publishing_cells)
    print_rows("intake/threads[/seconds], ns", ("p50", "p99", "p99.9"), "intake/",
               lambda name: [median(name, key) for key in ("p50", "p99", "p99.9")])
    print_rows("housekeeping, by reports", ("ms", "us each"), "housekeeping/",
               lambda name: (median(name) / 1e6, median(name, per="files") / 1e3))
    print_rows("the road, by objects of a GP", ("GPs per s", "values per s"), "road/",
               lambda name: [1e9 / median(name, per=unit) for unit in ("gps", "values")])
    print_rows("growth", ("ns each", "peak KiB"), "growth/", lambda name: (median(name, per="units"), peak(name)))


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
    print(f"\n{'goal':<55} {'':>7} {'measured':>9}")
    for text, sign, goal, measure in GOALS:
        try:
            value = measure()
        except KeyError:  # of a part that did not run
            continue
        # What the kernel did not tell is not reached.
        share = -math.inf if math.isnan(value) else value / goal if sign == ">=" else 2 - value / goal
        outcomes.append({"goal": text, "limit": f"{sign} {goal}", "measured": value,
                         "reached": share >= 1, "nearly": share >= 1 - TOLERANCE})
        print(f"{text:<55} {sign} {goal:<5} {value:8.2f} {'reached' if share >= 1 else 'MISSED'}")
    return outcomes


print_tables()
goals = compare_with_goals()
RESULT.write_text(json.dumps({"goals": goals, "rounds": ROUNDS}, indent=1))
if CHECK:
    missed = [outcome["goal"] for outcome in goals if not outcome["nearly"]]
    print("\nmissed by more than a fifth:", *(missed or ["nothing"]), sep="\n  ")
    sys.exit(1 if missed else 0)
