# Makes small changes to the sources, one at a time, and reports which of them the tests notice.
#
# See script/mutate for its use. Every worker has a copy of the sources and two builds of it: one quick to make, and one
# under AddressSanitizer and UBSan for the changes that the first lets live. A change that does not compile counts for
# nothing; one that makes a test fail, crash or run for ever is killed. A survivor is a gap in the tests, unless it is
# named in equivalent.txt, which says why nobody can tell it from the source as it was.

import argparse, collections, concurrent.futures, os, pathlib, queue, random, resource, shutil, subprocess, sys, time

from mutants import mutants_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
COPIED = ["CMakeLists.txt", "LICENSE", "README.md", "arbor", "cmake", "data", "examples", "tests", "tools"]
QUICK = "-O0 -w -D_GLIBCXX_ASSERTIONS"
BUILDS = {"quick": QUICK, "sanitize": QUICK + " -fsanitize=address,undefined -fno-sanitize-recover=all"}
TESTS = {  # the tests that can notice a change, the fastest first
    "core": ["core_test", "record_fuzz", "domain_fuzz", "allocation_test"],
    "rooms": ["rooms_test", "csv_fuzz", "model_file_fuzz", "text_fuzz", "program_test", "rooms_allocation_test"],
    "tools": ["program_test"],
}


def suite_of(path):
    return "tools" if path.startswith("tools/") else "core" if path.startswith(("arbor/utils", "arbor/model")) else "rooms"


# The entries (path, text) whose text is in the changed lines, as they were or as they are.
def named(mutant, entries):
    return [e for e in entries if e[0] == mutant.path and (e[1] in mutant.before or e[1] in mutant.after)]


class Worker:
    def __init__(self, place):
        self.place, self.source = place, place / "source"
        self.patience = {}  # seconds that a test may run, by build and name
        for name in COPIED:  # what differs, so that an earlier run's builds stay of use
            for origin in [p for p in [ROOT / name, *(ROOT / name).rglob("*")] if p.is_file()]:
                target = self.source / origin.relative_to(ROOT)
                target.parent.mkdir(parents=True, exist_ok=True)
                if not target.exists() or target.read_bytes() != origin.read_bytes():
                    shutil.copy(origin, target)

    def prepare(self, build, suite):
        command = ["cmake", "-G", "Ninja", "-S", self.source, "-B", self.place / build, "-DARBOR_CORPUS=ON",
                   "-DCMAKE_BUILD_TYPE=None", f"-DCMAKE_CXX_FLAGS={BUILDS[build]}"]  # fmt: skip
        if not self.runs(command, 600) or not self.builds(build, suite):
            sys.exit(f"the {build} build fails without any change")
        for test in TESTS[suite]:
            begin = time.monotonic()
            if not self.passes(build, test, 600):
                sys.exit(f"{test} fails without any change")
            self.patience[build, test] = 10 + 5 * (time.monotonic() - begin)

    def builds(self, build, suite):
        return self.runs(["cmake", "--build", self.place / build, "-j", "1", "--target", *TESTS[suite]], 900)

    def passes(self, build, test, seconds):
        folder = self.place / build / "tests"
        corpus = self.source / "tests/fuzz/corpus" / test
        limit = 6 << 30 if build == "quick" else resource.RLIM_INFINITY  # bytes; a sanitizer reserves more than there is
        return self.runs([folder / "fuzz" / test, corpus] if corpus.exists() else [folder / test], seconds, limit)

    def runs(self, command, seconds, memory=resource.RLIM_INFINITY):
        environment = {**os.environ, "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1", "TMPDIR": str(self.place),
                       "LSAN_OPTIONS": f"suppressions={self.source}/tests/support/leaks.supp"}  # fmt: skip
        try:
            return subprocess.run(
                command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL, timeout=seconds,
                env=environment, cwd=self.place, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (memory, memory)),
            ).returncode == 0  # fmt: skip
        except subprocess.TimeoutExpired:
            return False

    def verdict(self, mutant):
        suite = suite_of(mutant.path)
        for build in BUILDS:
            if (build, TESTS[suite][-1]) not in self.patience:
                self.prepare(build, suite)
        changed = self.source / mutant.path
        source = changed.read_text()
        changed.write_text(source[: mutant.start] + mutant.text + source[mutant.end :])
        try:
            for build in BUILDS:
                if not self.builds(build, suite):
                    return "not compiled"
                if not all(self.passes(build, test, self.patience[build, test]) for test in TESTS[suite]):
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
    end = time.monotonic() + 60 * arguments.minutes
    idle, tallies = queue.SimpleQueue(), collections.defaultdict(collections.Counter)
    for number in range(os.cpu_count()):
        idle.put(Worker(ROOT / "build/mutate" / str(number)))

    def judge(mutant):
        if time.monotonic() > end:
            return
        worker = idle.get()
        verdict = worker.verdict(mutant)
        idle.put(worker)
        if verdict == "survived" and named(mutant, equivalent):
            verdict = "equivalent"
        tallies[mutant.path][verdict] += 1
        if verdict == "survived":
            print(f"{mutant.path}:{mutant.line}\n- {mutant.before}\n+ {mutant.after}\n", flush=True)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        list(pool.map(judge, mutants[: arguments.count]))
    total = sum(tallies.values(), collections.Counter())
    for path, tally in [*sorted(tallies.items()), ("all", total)]:
        share = tally["killed"] / max(1, tally["killed"] + tally["survived"])
        print(f"{path:<40}{share:>5.0%} killed;", ", ".join(f"{count} {verdict}" for verdict, count in tally.items()))
    return 1 if total["survived"] else 0


parser = argparse.ArgumentParser(prog="script/mutate", description="Makes small changes, and reports which the tests notice.")
parser.add_argument("places", nargs="*", help="only these files or folders, or lines as FILE:LINE; by default all")
parser.add_argument("--minutes", type=float, default=20, help="how long to begin new changes (%(default)s)")
parser.add_argument("--seed", type=int, default=1, help="of the order in which they are tried (%(default)s)")
parser.add_argument("--count", type=int, help="how many to try at most")
sys.exit(run(parser.parse_args()))
