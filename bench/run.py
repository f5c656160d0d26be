#!/usr/bin/env python3
"""run.py [NAME...]: measures Skerrow beside other tools and exits with 1 when a limit is missed.

Every other *.py file here that has a function cases(bench) is run, or only those named. A time is
that of a whole process, its output included, and is the median of several runs after one that is
not counted. What is compared runs in turn, so that a busy machine slows both alike.
"""

import importlib
import json
import os
import resource
import statistics
import sys
import tempfile
import time
import traceback
from pathlib import Path

HERE = Path(__file__).resolve().parent
RUNS = 5
ROW = "{:<50} {:>12} {:>12} {:>8} {:>7}  {}"


class Bench:
    """What a file of cases works with: makes data, measures, and prints a row for each case."""

    skerrow = str(HERE.parent / "build/release/bin/skerrow")
    python = "/usr/bin/python3"
    jq = "jq"
    programs = HERE.parent / "build/release/bench"

    def __init__(self, folder):
        self.folder = Path(folder)
        self.output = self.folder / "output"
        self.memoryRows = []
        self.allWell = True
        # Without these, Python buffers its output and keeps its compiled modules, as it does for
        # people; with them it looks slower than it is.
        self.environment = {name: value for name, value in os.environ.items()
                            if name not in ("PYTHONUNBUFFERED", "PYTHONDONTWRITEBYTECODE")}

    def data(self, name, lines):
        """The path of a file with what lines() gives, each item JSON or a finished line of it."""
        path = self.folder / name

        def write():
            with open(path, "w", encoding="utf-8") as file:
                for line in lines():
                    file.write(line if isinstance(line, str)
                               else json.dumps(line, ensure_ascii=False, separators=(",", ":")))
                    file.write("\n")

        inChild(write)
        return str(path)

    def measure(self, command, stdin=os.devnull):
        """Runs a command: its seconds, and the most memory that it had, in bytes."""
        # The output file keeps its pages from run to run: new ones would cost more than writing.
        actions = [(os.POSIX_SPAWN_OPEN, 0, stdin, os.O_RDONLY, 0),
                   (os.POSIX_SPAWN_OPEN, 1, self.output, os.O_WRONLY | os.O_CREAT, 0o600)]
        start = time.perf_counter()
        process = os.posix_spawnp(command[0], command, self.environment, file_actions=actions)
        _, status, usage = os.wait4(process, 0)
        seconds = time.perf_counter() - start
        if status != 0:
            sys.exit(f"bench: this failed: {' '.join(command)}")
        return seconds, usage.ru_maxrss * 1024

    def compare(self, name, ours, peer, limit=None, memoryLimit=None, runs=RUNS, sameResult=True):
        """A command beside another that does the same; each limit is a part of the peer's figure."""
        if sameResult:
            self.requireSameResult(name, ours, peer)
        measured = [(self.measure(ours), self.measure(peer)) for _ in range(runs + 1)][1:]
        seconds, memory = ([statistics.median(run[side][what] for run in measured)
                            for side in (0, 1)] for what in (0, 1))
        self.print(name, *(f"{one * 1000:.1f} ms" for one in seconds), seconds[0] / seconds[1],
                   limit)
        if min(memory) > resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024:  # see inChild
            self.memoryRows.append((name, *(f"{one / 2**20:.0f} MB" for one in memory),
                                    memory[0] / memory[1], memoryLimit))

    def growth(self, name, eventsFor, limit, runs=RUNS):
        """How the time for an item grows from 10,000 to 1,000,000 items.

        eventsFor(count) is one event on that many items, as an object. Small events are sent
        several times to one process, whose start is taken off.
        """
        sizes = {10_000: 10, 100_000: 2, 1_000_000: 1}
        files = [os.devnull] + [
            self.data(f"events{count}", lambda: [json.dumps(eventsFor(count))] * times)
            for count, times in sizes.items()]
        rounds = [[self.stream(name, file) for file in files] for _ in range(runs + 1)][1:]
        start, *seconds = map(statistics.median, zip(*rounds))
        first, middle, last = ((all - start) / count / times * 1e9
                               for all, (count, times) in zip(seconds, sizes.items()))
        self.print(f"{name:<37} {first:>9.0f} ns", f"{middle:.0f} ns", f"{last:.0f} ns",
                   last / first, limit)

    def compareInside(self, name, program, arguments, limit=None, runs=RUNS):
        """Two ways within one process, which prints the seconds of ours and of the other's."""
        command = [str(self.programs / program), *arguments]

        def seconds():
            self.measure(command)
            with open(self.output, encoding="ascii") as file:
                return [float(one) for one in file.readline().split()]

        rounds = [seconds() for _ in range(runs + 1)][1:]
        ours, peer = map(statistics.median, zip(*rounds))
        self.print(name, *(f"{one * 1000:.1f} ms" for one in (ours, peer)), ours / peer, limit)

    def rate(self, name, event, count, limit=None):
        """How many small events one process answers in a second; the limit is the least."""
        events = self.data("events", lambda: [json.dumps(event)] * count)
        seconds = [self.stream(name, events) for _ in range(RUNS + 1)][1:]
        rate = count / statistics.median(seconds)
        isWell = limit is None or rate >= limit
        self.allWell = self.allWell and isWell
        self.printRow(name, f"{rate:,.0f} /s", "", "", "" if limit is None else f"{limit:,}",
                      "" if limit is None else "yes" if isWell else "NO")

    def table(self, *columns):
        """Begins a table: the heads of its first four columns."""
        print("\n" + ROW.format(*columns, "limit", "ok"), flush=True)

    def print(self, name, ours, peer="", ratio=None, limit=None):
        isWell = limit is None or ratio <= limit
        self.allWell = self.allWell and isWell
        self.printRow(name, ours, peer, "" if ratio is None else f"{ratio:.2f}×",
                      "" if limit is None else f"{limit:.1f}×",
                      "" if limit is None else "yes" if isWell else "NO")

    @staticmethod
    def printRow(*columns):
        print(ROW.format(*columns).rstrip(), flush=True)

    def requireSameResult(self, name, ours, peer):
        def check():
            results = []
            for command in (ours, peer):
                self.output.unlink(missing_ok=True)
                self.measure(command)
                results.append(json.loads(self.output.read_bytes()))
            if results[0] != results[1]:
                sys.exit(f"bench: {name}: the results differ")

        inChild(check)

    def stream(self, name, events):
        """The seconds that a process takes for a file of events, the first of which must go well."""
        seconds, _ = self.measure([self.skerrow, "perform", "--stdin"], stdin=events)
        with open(self.output, "rb") as file:
            if events != os.devnull and not file.read(20).startswith(b'{"result":'):
                sys.exit(f"bench: {name}: the answer is no result")
        return seconds


def inChild(work):
    """Works in a process of its own, so that this one stays small: the system counts the memory of
    the process that starts another as memory that the other had."""
    sys.stdout.flush()
    process = os.fork()
    if process == 0:
        status = 1
        try:
            work()
            status = 0
        except SystemExit as end:
            print(end.code, file=sys.stderr)
        except Exception:
            traceback.print_exc()
        os._exit(status)
    if os.waitpid(process, 0)[1] != 0:
        sys.exit(1)


def main(names):
    if not Path(Bench.skerrow).exists():
        sys.exit(f"bench: there is no {Bench.skerrow} yet; please run “make build” first")
    names = names or sorted(path.stem for path in HERE.glob("*.py"))
    memory = Path("/dev/shm")  # if there is room: reading and writing then cost the least
    space = os.statvfs(memory) if memory.is_dir() else None
    isRoomy = space is not None and space.f_bavail * space.f_frsize > 2**29
    with tempfile.TemporaryDirectory(prefix="skerrow-bench-",
                                     dir=memory if isRoomy else None) as folder:
        bench = Bench(folder)
        for name in names:
            module = importlib.import_module(name)
            if hasattr(module, "cases"):
                module.cases(bench)
        if bench.memoryRows:
            bench.table("most memory", "ours", "peer", "ratio")
            for row in bench.memoryRows:
                bench.print(*row)
    return 0 if bench.allWell else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
