"""rest.py [--seconds N] [--json] VOR-NODE: what a node costs at rest, beside collectd, in one run of N seconds (600).

Both measure processor, memory, load, disks and interfaces every 60 s and write files, with no terminal. Printed are the
time that all threads of a process ran, by the kernel's account in ns, and how often they were woken: how often they gave
the processor up of their own accord. Threads that end in between are counted up to the last look, a second before.
"""

import argparse
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

COLLECTD = """
Interval 60
BaseDir "{folder}"
PIDFile "{folder}/collectd.pid"
LoadPlugin cpu
LoadPlugin memory
LoadPlugin load
LoadPlugin disk
LoadPlugin interface
LoadPlugin csv
<Plugin csv>
  DataDir "{folder}/csv"
</Plugin>
"""
SETTLING_TIME = 5


class Threads:
    """The threads of a process: what each has cost so far."""

    def __init__(self, process):
        self._tasks = pathlib.Path(f"/proc/{process.pid}/task")
        self._costs = {}
        self.look()
        self._before = dict(self._costs)

    def look(self):
        for task in self._tasks.iterdir():
            try:
                run_time = int((task / "schedstat").read_text().split()[0])
                status = (task / "status").read_text()
            except OSError:
                continue
            wake_ups = int(status.split("\nvoluntary_ctxt_switches:")[1].split()[0])
            self._costs[task.name] = (run_time, wake_ups)

    def spent(self):
        """Run time in ns and wake-ups since the start."""
        nothing = (0, 0)
        pairs = [(now, self._before.get(task, nothing)) for task, now in self._costs.items()]
        return tuple(sum(now[i] - before[i] for now, before in pairs) for i in range(2))


def start(command, folder):
    with open(folder / "output.txt", "ab") as output:
        return subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=output)


def measure(processes, seconds):
    time.sleep(SETTLING_TIME)
    threads = {name: Threads(process) for name, process in processes.items()}
    begin = time.monotonic()
    while time.monotonic() < begin + seconds:
        time.sleep(1)
        for name, process in processes.items():
            if process.poll() is not None:
                sys.exit(f"rest.py: {name} ended with status {process.returncode}")
            threads[name].look()
    elapsed = time.monotonic() - begin
    results = {}
    for name in processes:
        run_time, wake_ups = threads[name].spent()
        results[name] = {"run_time_ns": run_time, "percent_of_a_core": run_time / elapsed / 1e7,
                         "wake_ups_per_second": wake_ups / elapsed}
    return results


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seconds", type=int, default=600)
    parser.add_argument("--json", action="store_true", help="print JSON instead of a table")
    parser.add_argument("node", metavar="VOR-NODE")
    options = parser.parse_args()
    collectd = shutil.which("collectd", path="/usr/sbin:/usr/bin") or sys.exit("rest.py: collectd is not installed")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "collectd.conf").write_text(COLLECTD.format(folder=folder))
        processes = {
            "vor-node": start([options.node, "run", "--root", folder / "root", "--log-level", "4"], folder),
            "collectd": start([collectd, "-f", "-C", folder / "collectd.conf"], folder),
        }
        try:
            results = measure(processes, options.seconds)
        finally:
            for process in processes.values():
                process.terminate()
                process.wait()
    if options.json:
        print(json.dumps(results, indent=2))
        return
    print(f"| at rest, over {options.seconds} s | run time, ms | % of a core | wake-ups a second |")
    print("| --- | --- | --- | --- |")
    for name, cost in results.items():
        print(f"| {name} | {cost['run_time_ns'] / 1e6:.1f} | {cost['percent_of_a_core']:.4f} |"
              f" {cost['wake_ups_per_second']:.2f} |")


main()
