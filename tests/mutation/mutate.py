# Makes small changes to the sources, one at a time, and reports which of them the tests notice.
#
# See script/mutate for its use. Every worker has a copy of the sources and a build of it under AddressSanitizer and UBSan.
# A change that does not compile counts for nothing; one that makes a test fail, crash or run for ever is killed. A survivor
# is a gap in the tests, unless it is named in equivalent.txt, which says why nobody can tell it from the source as it was.

import argparse, collections, concurrent.futures, os, pathlib, queue, random, subprocess, sys, time

from mutants import mutants_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
COPIED = ["CMakeLists.txt", "LICENSE", "README.md", "arbor", "cmake", "data", "examples", "tests", "tools"]
FLAGS = "-O0 -w -D_GLIBCXX_ASSERTIONS -fsanitize=address,undefined -fno-sanitize-recover=all"
PROGRAM, LIBRARY = ["program_test"], ["core_test", "record_fuzz", "allocation_test"]
ROOMS = ["rooms_test", "csv_fuzz", "model_file_fuzz", "text_fuzz", "program_test", "rooms_allocation_test"]


# The tests that can notice a change of a file, the fastest first.
def tests_of(path):
    return PROGRAM if path.startswith("tools/") else LIBRARY if path.startswith(("arbor/utils", "arbor/model")) else ROOMS


# The entries (path, text) whose text is in the changed lines, as they were or as they are.
def named(mutant, entries):
    return [e for e in entries if e[0] == mutant.path and (e[1] in mutant.before or e[1] in mutant.after)]


class Worker:
    def __init__(self, place):
        self.place, self.source, self.build = place, place / "source", place / "build"
        self.source.mkdir(parents=True, exist_ok=True)  # an earlier run's copy and build stay of use
        subprocess.run(["rsync", "-a", "--checksum", "--delete", *[ROOT / name for name in COPIED], self.source], check=True)

    # Builds and runs the tests without a change, and notes how many seconds each may run.
    def prepare(self, tests):
        self.patience = dict.fromkeys(tests, 600)
        configure = ["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, "-DARBOR_CORPUS=ON",
                     "-DCMAKE_BUILD_TYPE=None", f"-DCMAKE_CXX_FLAGS={FLAGS}"]  # fmt: skip
        for test in tests:
            if not self.runs(configure, 600) or not self.builds(test):
                sys.exit(f"{test} cannot be built without any change")
            begin = time.monotonic()
            if not self.passes(test):
                sys.exit(f"{test} fails without any change")
            self.patience[test] = 10 + 5 * (time.monotonic() - begin)
        return self

    def builds(self, test):
        return self.runs(["cmake", "--build", self.build, "-j", "1", "--target", test], 1800)

    def passes(self, test):
        corpus = self.source.glob(f"tests/fuzz/corpus/{test}/*")
        return self.runs([*self.build.glob(f"tests/**/{test}"), *corpus], self.patience[test])

    def runs(self, command, seconds):
        environment = {**os.environ, "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1", "TMPDIR": str(self.place),
                       "ASAN_OPTIONS": "hard_rss_limit_mb=6000",
                       "LSAN_OPTIONS": f"suppressions={self.source}/tests/support/leaks.supp:print_suppressions=0"}  # fmt: skip
        null = subprocess.DEVNULL
        with subprocess.Popen(command, stdout=null, stderr=null, stdin=null, env=environment, cwd=self.place,
                              start_new_session=True) as process:  # fmt: skip
            try:
                return process.wait(seconds) == 0
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, 9)  # with the programs that a test has started
                return False

    def verdict(self, mutant):
        changed = self.source / mutant.path
        source = changed.read_text()
        changed.write_text(source[: mutant.start] + mutant.text + source[mutant.end :])
        try:
            for test in tests_of(mutant.path):
                if not self.builds(test):
                    return "not compiled"
                if not self.passes(test):
                    return "killed"
            return "survived"
        finally:
            changed.write_text(source)


def run(arguments):
    files = sorted(p for room in ("arbor", "tools") for p in (ROOT / room).rglob("*.*") if p.suffix in (".h", ".cpp"))
    everything = [m for p in files for m in mutants_of(str(p.relative_to(ROOT)), p.read_text())]
    lines = (ROOT / "tests/mutation/equivalent.txt").read_text().splitlines()[1:]
    equivalent = [tuple(line.split("  # ")[0].split(": ", 1)) for line in lines]
    for entry in set(equivalent).difference(*([*named(m, equivalent)] for m in everything)):
        print("equivalent.txt names no change that can be made:", *entry)
    places = tuple(arguments.places) or ("",)
    mutants = [m for m in everything if m.path.startswith(places) or f"{m.path}:{m.line}" in places]
    random.Random(arguments.seed).shuffle(mutants)
    mutants = mutants[: arguments.count]
    tests = [*dict.fromkeys(test for mutant in mutants for test in tests_of(mutant.path))]
    idle, tallies = queue.SimpleQueue(), collections.defaultdict(collections.Counter)

    def judge(mutant):
        if time.monotonic() > end:
            return
        worker = idle.get()
        verdict = worker.verdict(mutant)
        idle.put(worker)
        if verdict == "survived" and named(mutant, equivalent):
            verdict = "equivalent"
        for folder in (os.path.dirname(mutant.path), "all"):
            tallies[folder][verdict] += 1
        if verdict == "survived":
            print(f"{mutant.path}:{mutant.line}\n- {mutant.before}\n+ {mutant.after}\n", flush=True)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        workers = [Worker(ROOT / "build/mutate" / str(number)) for number in range(os.cpu_count())]
        for worker in pool.map(lambda worker: worker.prepare(tests), workers):
            idle.put(worker)
        end = time.monotonic() + 60 * arguments.minutes  # the builds have taken a time of their own
        list(pool.map(judge, mutants))
    for folder, tally in sorted(tallies.items()):
        share = tally["killed"] / max(1, tally["killed"] + tally["survived"])
        print(f"{folder:<24}{share:>5.0%} killed;", ", ".join(f"{count} {verdict}" for verdict, count in tally.items()))
    return 1 if tallies["all"]["survived"] else 0


parser = argparse.ArgumentParser(prog="script/mutate", description="Makes small changes, and reports which the tests notice.")
parser.add_argument("places", nargs="*", help="only these files or folders, or lines as FILE:LINE; by default all")
parser.add_argument("--minutes", type=float, default=20, help="how long to begin new changes (%(default)s)")
parser.add_argument("--seed", type=int, default=1, help="of the order in which they are tried (%(default)s)")
parser.add_argument("--count", type=int, help="how many to try at most")
sys.exit(run(parser.parse_args()))
