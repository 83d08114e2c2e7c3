"""Plants the defects of tests/defects.toml in a copy of the project, one at a time, and sees that a test fails.

Started by scripts/defects. Exit status: 0 every defect was caught, 1 not, 2 the arguments or the table are unusable.
"""

import argparse
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tomllib
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent
TABLE = Path('/tmp/d/probe.toml')
SOURCE = PROJECT / "build/defects/source"
TREE = PROJECT / "build/defects/tree"
OUTPUT = PROJECT / "build/defects/last-run.txt"
KEYS = {"what", "file", "old", "new", "tests"}
# A defect that hangs its tests so long, in seconds, is caught as well.
LONGEST_TEST_RUN = 300


class Unusable(Exception):
    pass


def faults_of(row):
    """What keeps a row from being planted."""
    if row.keys() != KEYS:
        return [f"has the keys {', '.join(sorted(row))}; write {', '.join(sorted(KEYS))}"]
    file = PROJECT / row["file"]
    if not file.is_file():
        return [f"{row['file']} is not a file"]
    times = file.read_text(encoding="utf-8").count(row["old"])
    faults = [] if times == 1 else [f"its old text stands {times} times in {row['file']}; it has to stand once"]
    return faults + ([] if row["old"] != row["new"] else ["its old and new text are the same"])


def read_table():
    try:
        rows = tomllib.loads(TABLE.read_text(encoding="utf-8"))["defect"]
    except (tomllib.TOMLDecodeError, KeyError) as fault:
        raise Unusable(f"{TABLE}: {fault}") from fault
    faults = [f"{row.get('what', 'a row without what')}: {fault}" for row in rows for fault in faults_of(row)]
    names = [row.get("what") for row in rows]
    faults += [f"{name}: is there twice" for name in sorted({n for n in names if n and names.count(n) > 1})]
    if faults:
        raise Unusable("\n".join(faults))
    return rows


def select(rows, patterns):
    """The rows whose `what`, file or tests match one of the patterns; all when there is no pattern."""
    chosen = [row for row in rows
              if not patterns or any(re.search(p, row[key]) for p in patterns for key in ("what", "file", "tests"))]
    if not chosen:
        raise Unusable("no defect matches " + " ".join(patterns))
    return chosen


def copy_project():
    """Copies what differs only, so that a tree that was built before is built on."""
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=PROJECT, check=True, capture_output=True, text=True)
    names = {name for name in listed.stdout.split("\0") if (PROJECT / name).is_file()}
    for name in names:
        original, copy = PROJECT / name, SOURCE / name
        if not copy.is_file() or copy.read_bytes() != original.read_bytes():
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(original, copy)
    for copy in [path for path in SOURCE.rglob("*") if path.is_file()]:
        if str(copy.relative_to(SOURCE)) not in names:
            copy.unlink()


def run(*command, limit=None):
    """True when the command ends well; its output is kept. `subprocess.TimeoutExpired` ends all that it started."""
    with OUTPUT.open("w") as output:
        process = subprocess.Popen(command, cwd=SOURCE, stdout=output, stderr=subprocess.STDOUT, start_new_session=True)
        try:
            return process.wait(limit) == 0
        except BaseException:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            raise


def build(programs=()):
    """The tests' programs, all without names."""
    targets = ["--target", *programs] if programs else []
    return run("cmake", "--build", str(TREE), *targets)


def test(pattern):
    """The test that failed first, or none."""
    ctest = ["ctest", "--test-dir", str(TREE), "--tests-regex", pattern, "--parallel", str(os.cpu_count())]
    try:
        if run(*ctest, "--stop-on-failure", "--no-tests=error", limit=LONGEST_TEST_RUN):
            return None
    except subprocess.TimeoutExpired:
        return f"a time limit of {LONGEST_TEST_RUN} s"
    failed = re.findall(r"^\t *\d+ - (\S+) ", OUTPUT.read_text(encoding="utf-8"), re.MULTILINE)
    return failed[0] if failed else "no test"


def configure_and_build():
    # Quick to build; what a defect leaves unused is no error.
    options = ["-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0"]
    if not run("cmake", "-S", str(SOURCE), "-B", str(TREE), *options) or not build():
        raise Unusable(OUTPUT.read_text(encoding="utf-8") + "the project does not build without a defect")


def programs_by_test():
    """The program that runs each test; none for a script."""
    shown = subprocess.run(["ctest", "--test-dir", str(TREE), "--show-only=json-v1"], check=True, capture_output=True)
    tests = json.loads(shown.stdout)["tests"]
    return {t["name"]: Path(t["command"][0]).name for t in tests if Path(t["command"][0]).is_relative_to(TREE)}


def programs_of(row, programs):
    found = {program for name, program in programs.items() if re.search(row["tests"], name)}
    if not found:
        raise Unusable(f"{row['what']}: no test matches {row['tests']}")
    return sorted(found)


def plant(row, programs):
    """The test that caught the defect, or the reason why none did, in capitals."""
    file = SOURCE / row["file"]
    text = file.read_text(encoding="utf-8")
    file.write_text(text.replace(row["old"], row["new"]))
    try:
        if not build(programs):
            return False, "DOES NOT BUILD"
        failed = test(row["tests"])
        return (False, "SURVIVED " + row["tests"]) if failed is None else (True, "caught by " + failed)
    finally:
        file.write_text(text)


def plant_all(rows):
    copy_project()
    configure_and_build()
    programs = programs_by_test()
    needed = [programs_of(row, programs) for row in rows]
    if failed := test("|".join(sorted({row["tests"] for row in rows}))):
        raise Unusable(OUTPUT.read_text(encoding="utf-8") + f"{failed} fails without a defect")
    caught = 0
    for row, its_programs in zip(rows, needed):
        good, verdict = plant(row, its_programs)
        caught += good
        print(f"{verdict}: {row['what']}", flush=True)
    print(f"defects: {len(rows)} planted, {caught} caught, {len(rows) - caught} not")
    return 0 if caught == len(rows) else 1


def main():
    parser = argparse.ArgumentParser(prog="scripts/defects", description="Plants defects, and sees that tests fail.")
    parser.add_argument("--verify", action="store_true", help="only look whether each defect can be planted")
    parser.add_argument("pattern", nargs="*", help="plant what matches: text, file or tests; all without a pattern")
    arguments = parser.parse_args()
    try:
        rows = select(read_table(), arguments.pattern)
        if not arguments.verify:
            return plant_all(rows)
        print(f"defects: {len(rows)} can be planted")
        return 0
    except (Unusable, re.error) as fault:
        print(f"scripts/defects: {fault}", file=sys.stderr)
        return 2
    except KeyboardInterrupt:
        return 130


sys.exit(main())
