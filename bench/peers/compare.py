"""Compares Arbor with other tree learners and table readers: time, memory, leaves and training accuracy.

Every system runs in a process of its own, on one core and in one thread, and prints a line of JSON for each phase; see
bench/measure_table.cpp for what is in it.
"""

import argparse
import dataclasses
import datetime
import json
import os
import pathlib
import re
import resource
import statistics
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
PYTHON, R = "/usr/bin/python3", "Rscript"
PACKAGES = ["python3", "python3-pandas", "python3-sklearn", "python3-xgboost", "r-base-core", "r-cran-data.table",
            "r-cran-ranger", "r-cran-rpart", "weka"]
EXACT = ["scikit-learn", "ranger", "rpart"]  # try every threshold, as Arbor does
MEMORY_LIMIT = 12 << 30

NOTES = """\
Time is the median of three runs, of more when they are short and fewer when they take minutes, in seconds of processor
time (that of the clock is the same on a core that has nothing else to do; "share" is how much of it the runs got;
when that is little, neighbours slow down the memory too). "/ Arbor" is above 1 where Arbor is faster; the trees differ,
as their numbers of leaves show. Memory is that of the whole process, before the phase's first run and at its peak.

load      reading the CSV file into columns. Arbor finds each column's distinct values and codes them, which pandas does
          with categories only; data.table codes texts alone.
rate      Arbor: the best split of every attribute; others: growing a tree of one test.
grow      the whole tree, unpruned, with at least 2 cases in a leaf: Arbor by gain ratio with a branch for each text;
          scikit-learn by entropy; ranger and rpart by Gini's index, ranger without dividing fewer than 4 cases, rpart
          at most 30 deep and with cp=0, which takes back what does not lessen the training errors; weka by gain ratio,
          as the difference of two processes, and small tables only.
classify  the rows of the training table, in memory, by the whole tree. Arbor also counts the confusion matrix.
quantise  xgboost puts numbers into 256 bins, and then rates and grows on these: not the exact tree. One round, eta=1,
          lambda=0, grow_policy=depthwise, max_depth=0 (any), min_child_weight as of 2 cases; of more than two classes
          each has a tree of its own.
coded     texts became numbers by the alphabet, and unknown values a number below all others, before the time began,
          for a system that cannot use the table as it is."""

RATIO_NOTE = """\
How many times as long as Arbor others take; xgboost's time is that of the bins and of the tree together."""
MEMORY_NOTE = """\
Arbor's memory, without that of the process before it loads, for tables of at least 10,000 rows: what a cell takes once
the table is loaded, without the cases, compared with what its code and its column's distinct values need; then the peak
of loading, what is resident before growing, and the peak of growing, compared with the aim of twice the columns and the
cases."""


@dataclasses.dataclass
class Job:
    system: str
    phases: list
    command: list  # what stands before the table's path
    coded_command: list = None  # to try when that fails


def jobs_of(build):
    measure = str(build / "bin" / "arbor_measure_table")

    def peer(system, phases, *script):
        return Job(system, phases, [*script, "as-it-is"], [*script, "coded"])

    return [
        Job("Arbor", ["load"], [measure, "load"]),
        Job("pandas, categories", ["load"], [PYTHON, "pandas_load.py", "categories"]),
        Job("pandas, columns", ["load"], [PYTHON, "pandas_load.py", "columns"]),
        Job("data.table", ["load"], [R, "fread_load.R"]),
        Job("Arbor", ["rate"], [measure, "rate"]),
        Job("Arbor", ["grow"], [measure, "grow"]),
        Job("Arbor", ["classify"], [measure, "classify"]),
        peer("scikit-learn", ["rate", "grow", "classify"], PYTHON, "sklearn_tree.py"),
        peer("ranger", ["rate", "grow", "classify"], R, "ranger_tree.R"),
        peer("rpart", ["rate", "grow", "classify"], R, "rpart_tree.R"),
        peer("xgboost", ["quantise", "rate", "grow"], PYTHON, "xgboost_tree.py"),
        Job("weka", ["grow"], [PYTHON, "weka_tree.py"]),
    ]


def run(command, table, options):
    """The figures that a command printed for its phases, and why it printed no more."""
    names = ("OMP_NUM_THREADS", "OMP_THREAD_LIMIT", "OPENBLAS_NUM_THREADS", "PYTHONDONTWRITEBYTECODE")
    environment = {**os.environ, **{name: "1" for name in names}}
    try:
        done = subprocess.run(
            ["taskset", "-c", str(options.core), *command, str(table)], cwd=HERE, env=environment,
            text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=options.limit,
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT)))
        printed, problem = done.stdout, None
        if done.returncode < 0:
            problem = f"ended by signal {-done.returncode}"
        elif done.returncode > 0:
            problem = (done.stderr.strip().splitlines() or ["no message"])[-1].strip()
    except subprocess.TimeoutExpired as expired:
        printed, problem = (expired.stdout or b"").decode(), f"not within {options.limit} s"
    return [json.loads(line) for line in printed.splitlines() if line.startswith("{")], problem


def results_of(job, table, options):
    """A line of the report for each phase; those that failed, and then those of the coded table if there are any."""
    lines = []
    for suffix, command in (("", job.command), (", coded", job.coded_command)):
        if command is None:
            break
        print(f"{table.stem}: {job.system}{suffix}: {', '.join(job.phases)}", file=sys.stderr)
        figures, problem = run(command, table, options)
        lines += [{"system": job.system + suffix, **result} for result in figures]
        missing = [phase for phase in job.phases if phase not in [result["phase"] for result in figures]]
        lines += [{"system": job.system + suffix, "phase": phase, "no": problem} for phase in missing]
        if not missing:
            break
    for line in lines:
        if "seconds" in line:
            line["median"] = statistics.median(line["seconds"])
    return lines


def find(lines, phase, system):
    """The line of a system that did the phase, on the table as it is or else coded."""
    names = (system, system + ", coded")
    return next((line for line in lines
                 if line["system"] in names and line["phase"] == phase and "median" in line), None)


def ratios_of(lines):
    """How many times as long as Arbor the others take."""
    def over_arbor(phase, *others):
        arbor = find(lines, phase, "Arbor")
        return sum(line["median"] for line in others) / arbor["median"] if arbor and all(others) else None

    ratios = {}
    for phase in ("grow", "rate", "classify"):
        ratios[f"{phase}: scikit-learn"] = over_arbor(phase, find(lines, phase, "scikit-learn"))
        exact = [line for line in (find(lines, phase, system) for system in EXACT) if line]
        fastest = min(exact, key=lambda line: line["median"], default=None)
        ratios[f"{phase}: fastest exact"] = over_arbor(phase, fastest)
        ratios[f"{phase}: which"] = fastest and fastest["system"].partition(",")[0]
        if phase != "classify":
            bins_and_tree = find(lines, "quantise", "xgboost"), find(lines, phase, "xgboost")
            ratios[f"{phase}: xgboost"] = over_arbor(phase, *bins_and_tree)
    ratios["load: pandas categories"] = over_arbor("load", find(lines, "load", "pandas, categories"))
    return ratios


def memory_of(lines):
    """What Arbor's table and growing take, in bytes, and what they need."""
    load, grow = find(lines, "load", "Arbor"), find(lines, "grow", "Arbor")
    if not load or not grow:
        return None
    cells = load["rows"] * (load["attributes"] + 1)
    columns = load["codes"] + load["domains"]
    return {
        "per cell": (load["after"] - load["before"] - load["cases"]) / cells,
        "codes per cell": load["codes"] / cells,
        "domains per cell": load["domains"] / cells,
        "load peak": load["peak"] - load["before"],
        "before growing": grow["before"] - load["before"],
        "growing": grow["peak"] - load["before"],
        "aim": 2 * (columns + load["cases"]),
    }


# The report


def duration(seconds):
    for unit, scale in (("s", 1), ("ms", 1e3), ("us", 1e6)):
        if seconds * scale >= 1 or unit == "us":
            return f"{seconds * scale:.{max(0, 3 - len(str(int(seconds * scale))))}f} {unit}"


def megabytes(size):
    return f"{size / 1e6:.1f}" if size < 10e6 else f"{size / 1e6:.0f}"


def times(ratio):
    return "-" if ratio is None else f"{ratio:.2f}" if ratio < 10 else f"{ratio:.0f}"


def text_table(rows, left):
    """Rows of cells, the first the heads; the first `left` columns flush left, the others right. What stands in a
    row's last cell beyond those of the heads goes over the columns that are left."""
    width = [max(len(row[i]) for row in rows if len(row) == len(rows[0])) for i in range(len(rows[0]))]
    width[:left] = [max(len(row[i]) for row in rows) for i in range(left)]
    return "\n".join("  ".join(cell.ljust(width[i]) if i < left else cell.rjust(width[i]) if len(row) == len(rows[0])
                               else cell for i, cell in enumerate(row)).rstrip() for row in rows)


def phase_table(lines):
    rows = [["phase", "system", "median", "spread", "runs", "share", "/ Arbor", "before MB", "peak MB", "leaves",
             "accuracy"]]
    for phase in ("load", "rate", "quantise", "grow", "classify"):
        arbor = find(lines, phase, "Arbor")
        for line in lines:
            if line["phase"] != phase:
                continue
            if "no" in line:
                rows.append([phase, line["system"], "no: " + line["no"]])
                continue
            seconds, median = line["seconds"], line["median"]
            rows.append([
                phase, line["system"], duration(median),
                f"+-{50 * (max(seconds) - min(seconds)) / median:.0f}%" if median else "-", str(len(seconds)),
                f"{100 * sum(seconds) / sum(line['clock']):.0f}%", times(median / arbor["median"] if arbor else None),
                megabytes(line["before"]), megabytes(line["peak"]), str(line.get("leaves", "")),
                f"{100 * line['accuracy']:.2f}%" if "accuracy" in line else ""])
    return text_table(rows, left=2)


def ratio_table(data):
    heads = [head for head in data[0]["ratios"] if not head.endswith("which")]
    rows = [["table", *heads]]
    for table in data:
        ratios = table["ratios"]
        which = {head: ratios.get(head.replace("fastest exact", "which")) for head in heads if "fastest" in head}
        rows.append([table["name"], *(times(ratios[head]) + (f" ({which[head]})" if which.get(head) else "")
                                      for head in heads)])
    return text_table(rows, left=1)


def memory_table(data):
    rows = [["table", "bytes a cell", "codes", "values", "load peak MB", "before growing MB", "growing MB", "aim MB"]]
    per_cell = ("per cell", "codes per cell", "domains per cell")
    whole = ("load peak", "before growing", "growing", "aim")
    for table in data:
        memory = table["memory"]
        if memory is None or table["rows"] < 10000:
            continue
        rows.append([table["name"], *(f"{memory[key]:.2f}" for key in per_cell),
                     *(megabytes(memory[key]) for key in whole)])
    return text_table(rows, left=1)


def first_match(pattern, text):
    found = re.search(pattern, text, re.MULTILINE)
    return found.group(1).strip() if found else "unknown"


def output_of(*command):
    return subprocess.run(command, text=True, stdout=subprocess.PIPE, cwd=ROOT).stdout.strip()


def about(build, options):
    cache = (build / "CMakeCache.txt").read_text()
    compiler = first_match(r"^CMAKE_CXX_COMPILER:.*?=(.*)$", cache)
    flags = [first_match(rf"^{name}:.*?=(.*)$", cache) for name in ("CMAKE_CXX_FLAGS", "CMAKE_CXX_FLAGS_RELEASE")]
    cpus = pathlib.Path("/proc/cpuinfo").read_text()
    release = first_match(r'^PRETTY_NAME="(.*)"$', pathlib.Path("/etc/os-release").read_text())
    return {
        "date": datetime.datetime.now().astimezone().isoformat(sep=" ", timespec="minutes"),
        "processor": first_match(r"^model name\s*: (.*)$", cpus),
        "cores": f"{os.cpu_count()}, of which number {options.core} was used",
        "load average": "{:.1f} {:.1f} {:.1f}".format(*os.getloadavg()),
        "system": f"{release}, Linux {os.uname().release}",
        "compiler": output_of(compiler, "--version").partition("\n")[0],
        "flags": " ".join(flags) + " -ffp-contract=off",
        "Arbor": output_of("git", "describe", "--always", "--dirty"),
        **{package: output_of("dpkg-query", "-W", "-f", "${Version}", package) for package in PACKAGES},
    }


def made_tables(build, rows):
    folder = build / "tables"
    folder.mkdir(exist_ok=True)
    clean = [(function, noise, 0, rows) for function in (2, 7) for noise in (0, 0.05)]
    for function, noise, unknown, count in [*clean, (7, 0.05, 0.02, rows // 20)]:
        path = folder / f"function{function}-noise{noise}-unknown{unknown}-{count}.csv"
        if not path.exists():
            with open(path.with_suffix(".part"), "w") as part:
                subprocess.run([build / "bin" / "arbor_make_table", "--function", str(function), "--noise", str(noise),
                                "--unknown", str(unknown), "--rows", str(count)], stdout=part, check=True)
            path.with_suffix(".part").rename(path)
        yield path


def arguments():
    parser = argparse.ArgumentParser(prog="bench/peers/run", description=__doc__.partition("\n")[0])
    parser.add_argument("--quick", action="store_true", help="generate tables of 100,000 rows, not of 1,000,000")
    parser.add_argument("--json", metavar="FILE", type=pathlib.Path, help="write all that was measured to a file too")
    parser.add_argument("--limit", metavar="SECONDS", type=int, default=300, help="for each system (default: 300)")
    parser.add_argument("--core", metavar="N", type=int, default=max(os.sched_getaffinity(0)),
                        help="the one to run on (default: the last)")
    parser.add_argument("--build", type=pathlib.Path, default="build/bench", help=argparse.SUPPRESS)
    return parser.parse_args()


def main():
    options = arguments()
    build = options.build.resolve()
    setup = about(build, options)
    width = max(map(len, setup))
    print("\n".join(f"{key:{width}}  {value}" for key, value in setup.items()) + "\n\n" + NOTES)
    data = []
    for path in [*made_tables(build, 100_000 if options.quick else 1_000_000), *sorted((ROOT / "data").glob("*.csv"))]:
        lines = [line for job in jobs_of(build) for line in results_of(job, path, options)]
        load = find(lines, "load", "Arbor") or {}
        facts = {key: load.get(key) for key in ("rows", "attributes", "classes")}
        data.append({"name": path.stem, **facts, "results": lines, "ratios": ratios_of(lines),
                     "memory": memory_of(lines)})
        print(f"\n{path.stem}: " + ", ".join(f"{value} {key}" for key, value in facts.items()) + "\n")
        print(phase_table(lines), flush=True)
    print("\n" + RATIO_NOTE + "\n\n" + ratio_table(data))
    print("\n" + MEMORY_NOTE + "\n\n" + memory_table(data))
    if options.json:
        options.json.write_text(json.dumps({"about": setup, "tables": data}, indent=1) + "\n")


main()
