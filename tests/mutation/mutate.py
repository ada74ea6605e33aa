"""Makes small changes to the library, one at a time, and tells which of them the tests notice.

See script/mutate for its use. Every worker has a copy of the sources and two builds of it: one quick to make, and one
under AddressSanitizer and UBSan for the changes that the first lets live. A change that does not compile counts for
nothing; one that makes a test fail, crash or run for ever is killed. A survivor is a gap in the tests, unless it is
named in equivalent.txt, which says why nobody can tell it from the source as it was.
"""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import queue
import random
import resource
import shutil
import subprocess
import sys
import time

from mutants import mutants_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
COPIED = ["CMakeLists.txt", "LICENSE", "README.md", "arbor", "cmake", "examples", "tests"]
QUICK = "-O0 -w -D_GLIBCXX_ASSERTIONS"
BUILDS = {"quick": QUICK, "sanitize": QUICK + " -fsanitize=address,undefined -fno-sanitize-recover=all"}
BUILD_SECONDS = 300
MEMORY = 6 << 30  # bytes of a quick test; a sanitizer reserves more than there is


EQUIVALENT = ROOT / "tests/mutation/equivalent.txt"
SURVIVORS = ROOT / "build/mutate/survivors.txt"


def changes_in(file):
    """The changes that a file lists, as (path, line before, line after); "any change" stands for every one."""
    named = set()
    path = before = None
    for line in file.read_text().splitlines():
        if line.startswith("arbor/"):
            path = line.partition(":")[0]
        elif line.startswith("- "):
            before = line[2:]
        elif line.startswith("+"):
            named.add((path, before, line[2:]))
    return named


def is_named(mutant, named):
    return any((mutant.path, mutant.before, after) in named for after in (mutant.after, "any change"))


class Worker:
    """A copy of the sources, in which one file at a time differs."""

    def __init__(self, place):
        self.source = place / "source"
        self.builds = {name: place / name for name in BUILDS}
        self.place = place
        self.patience = {}  # seconds that a program may run

    def prepare(self):
        for name in COPIED:
            self.copy(ROOT / name)
        for name, flags in BUILDS.items():
            definitions = [f"-DCMAKE_CXX_FLAGS={flags}", "-DCMAKE_BUILD_TYPE=None", "-DARBOR_PROGRAM=OFF",
                           "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]  # fmt: skip
            command = ["cmake", "-G", "Ninja", "-S", self.source, "-B", self.builds[name], *definitions]
            subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
            if not self.build(name):
                sys.exit(f"the {name} build fails without any change")
            for command in self.tests(name, ""):
                begin = time.monotonic()
                if not self.passes(name, command, 600):
                    sys.exit(f"{command[0]} fails without any change")
                self.patience[name, command[0]] = 10 + 5 * (time.monotonic() - begin)

    def copy(self, origin):
        """Copies what differs, so that an earlier run's builds stay of use."""
        if origin.is_dir():
            for child in origin.iterdir():
                self.copy(child)
            return
        target = self.source / origin.relative_to(ROOT)
        target.parent.mkdir(parents=True, exist_ok=True)
        if not target.exists() or target.read_bytes() != origin.read_bytes():
            shutil.copyfile(origin, target)

    def build(self, name):
        command = ["cmake", "--build", self.builds[name], "-j", "1"]
        return self.runs(command, BUILD_SECONDS)

    def tests(self, name, path):
        """The commands of all tests, those nearest to the path first."""
        layer = path.split("/")[1] if path else ""
        tests = sorted(self.builds[name].glob("tests/*_test"), key=lambda p: (not p.name.startswith(layer), p.name))
        replays = sorted(self.builds[name].glob("tests/fuzz/*_fuzz"))
        return [[p] for p in tests] + [[p, self.source / "tests/fuzz/corpus" / p.name] for p in replays]

    def passes(self, name, command, seconds):
        limit = MEMORY if name == "quick" else resource.RLIM_INFINITY
        return self.runs(command, seconds, lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))

    def runs(self, command, seconds, before=None):
        suppressions = f"suppressions={self.source}/tests/support/leaks.supp:print_suppressions=0"
        environment = {**os.environ, "GTEST_FAIL_FAST": "1", "LSAN_OPTIONS": suppressions, "TMPDIR": str(self.place)}
        try:
            done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL,
                                  timeout=seconds, env=environment, preexec_fn=before, cwd=self.place)  # fmt: skip
            return done.returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def verdict(self, mutant):
        changed = self.source / mutant.path
        source = changed.read_text()
        changed.write_text(mutant.applied_to(source))
        try:
            for name in BUILDS:
                if not self.build(name):
                    return "not compiled" if name == "quick" else "killed"
                for command in self.tests(name, mutant.path):
                    if not self.passes(name, command, self.patience[name, command[0]]):
                        return "killed"
            return "survived"
        finally:
            changed.write_text(source)


def chosen(arguments):
    files = sorted(p for layer in ("utils", "model") for p in (ROOT / "arbor" / layer).iterdir())
    mutants = []
    for file in files:
        path = str(file.relative_to(ROOT))
        mutants += mutants_of(path, file.read_text())
    random.Random(arguments.seed).shuffle(mutants)
    if arguments.again:
        listed = changes_in(SURVIVORS)
        mutants = [m for m in mutants if is_named(m, listed)]
    places = arguments.places
    if places:
        mutants = [m for m in mutants if m.path in places or f"{m.path}:{m.line}" in places]
    return mutants[: arguments.count]


def run(arguments):
    mutants, named = chosen(arguments), changes_in(EQUIVALENT)
    end = time.monotonic() + 60 * arguments.minutes
    idle = queue.SimpleQueue()
    workers = [Worker(ROOT / "build/mutate" / str(number)) for number in range(os.cpu_count())]
    tallies = collections.defaultdict(collections.Counter)
    survivors = []  # as they are printed

    def judged(mutant):
        if time.monotonic() > end:
            return
        worker = idle.get()
        try:
            verdict = worker.verdict(mutant)
        finally:
            idle.put(worker)
        if verdict == "survived" and is_named(mutant, named):
            verdict = "equivalent"
        tallies[mutant.path][verdict] += 1
        if verdict == "survived":
            survivors.append(f"{mutant.path}:{mutant.line}\n- {mutant.before}\n+ {mutant.after}\n")
            print(survivors[-1], end="", flush=True)

    with concurrent.futures.ThreadPoolExecutor(len(workers)) as pool:
        list(pool.map(Worker.prepare, workers))
        for worker in workers:
            idle.put(worker)
        list(pool.map(judged, mutants))
    SURVIVORS.write_text("".join(survivors))
    return report(tallies, len(mutants))


def report(tallies, chosen_count):
    total = sum(tallies.values(), collections.Counter())
    print(f"\n{'file':<36}{'killed':>8}{'of':>8}{'share':>8}{'equivalent':>12}{'not compiled':>14}")
    for path, tally in [*sorted(tallies.items()), ("all", total)]:
        of = tally["killed"] + tally["survived"]
        share = f"{tally['killed'] / of:.0%}" if of else "-"
        print(f"{path:<36}{tally['killed']:>8}{of:>8}{share:>8}{tally['equivalent']:>12}{tally['not compiled']:>14}")
    print(f"{sum(total.values())} of {chosen_count} changes tried")
    return total["survived"]


def main():
    parser = argparse.ArgumentParser(prog="script/mutate", description=__doc__.partition("\n")[0])
    parser.add_argument("places", nargs="*", help="only these files, or lines as FILE:LINE; by default all of the library")
    parser.add_argument("--minutes", type=float, default=20, help="how long to begin new changes (%(default)s)")
    parser.add_argument("--seed", type=int, default=1, help="of the order in which they are tried (%(default)s)")
    parser.add_argument("--again", action="store_true", help="only what survived in the last run")
    parser.add_argument("--count", type=int, help="how many to try at most")
    sys.exit(1 if run(parser.parse_args()) else 0)


main()
