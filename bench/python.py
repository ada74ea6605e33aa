"""Compares the Python package with scikit-learn's DecisionTreeClassifier, from a DataFrame to the fitted tree.

    python.py BUILD [--rows N] [--runs N] [--cores N]

Every run is a process of its own, and the systems take turns. The table is that of function 7 of arbor_make_table, as
pandas reads it. scikit-learn gets the texts as the numbers of their places in the alphabet, which is timed with fit:
it takes no texts. Time is that of the clock for `fit` alone, and memory the greatest of the process, with and without
what it had before.
"""

import argparse
import json
import os
import pathlib
import resource
import statistics
import subprocess
import sys
import time

SYSTEMS = {
    "arbor": "ArborClassifier()",
    "arbor, 1 thread": "ArborClassifier(n_jobs=1)",
    "scikit-learn": "DecisionTreeClassifier()",
    "scikit-learn, min_samples_leaf=2": "DecisionTreeClassifier(criterion='entropy', min_samples_leaf=2)",
}


def measure(system, path):
    import pandas

    table = pandas.read_csv(path)
    attributes, classes = table.iloc[:, :-1], table.iloc[:, -1]
    if system.startswith("arbor"):
        from arbor import ArborClassifier
        model = eval(SYSTEMS[system], {"ArborClassifier": ArborClassifier})
    else:
        from sklearn.compose import make_column_selector, make_column_transformer
        from sklearn.pipeline import make_pipeline
        from sklearn.preprocessing import OrdinalEncoder
        from sklearn.tree import DecisionTreeClassifier
        codes = make_column_transformer((OrdinalEncoder(), make_column_selector(dtype_include=object)),
                                        remainder="passthrough")
        model = make_pipeline(codes, eval(SYSTEMS[system], {"DecisionTreeClassifier": DecisionTreeClassifier}))
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    start, processor = time.perf_counter(), time.process_time()
    model.fit(attributes, classes)
    figures = {"seconds": time.perf_counter() - start, "processor": time.process_time() - processor}
    peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    leaves = model.tree_.n_leaves if system.startswith("arbor") else model[-1].get_n_leaves()
    print(json.dumps({**figures, "peak": peak / 1e3, "more": (peak - before) / 1e3, "leaves": int(leaves)}))


def main():
    parser = argparse.ArgumentParser(prog="script/bench --python", description=__doc__.partition("\n")[0])
    parser.add_argument("build", type=pathlib.Path, help=argparse.SUPPRESS)
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--one", nargs=2, help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.one:
        return measure(*options.one)
    build = options.build.resolve()
    path = build / f"function7-{options.rows}.csv"
    with open(path, "w") as table:
        subprocess.run([build / "bin/arbor_make_table", "--function", "7", "--rows", str(options.rows)], stdout=table,
                       check=True)
    environment = {**os.environ, "PYTHONPATH": str(build / "python"), "PYTHONDONTWRITEBYTECODE": "1"}
    runs = {system: [] for system in SYSTEMS}
    for _ in range(options.runs):
        for system in SYSTEMS:
            done = subprocess.run([sys.executable, __file__, str(build), "--one", system, str(path)], env=environment,
                                  stdout=subprocess.PIPE, check=True)
            runs[system].append(json.loads(done.stdout))
    cpus = pathlib.Path("/proc/cpuinfo").read_text()
    processor = next(line.split(":")[1].strip() for line in cpus.splitlines() if line.startswith("model name"))
    print(f"{processor}, {os.cpu_count()} cores; {options.rows} rows; medians of {options.runs} runs; load "
          f"{os.getloadavg()[0]:.1f}\n")
    print(f"{'':34}{'fit s':>8}{'spread':>9}{'processor s':>13}{'peak MB':>9}{'of fit MB':>11}{'leaves':>8}{'/ arbor':>9}")
    first = statistics.median(run["seconds"] for run in runs["arbor"])
    for system, figures in runs.items():
        median = {key: statistics.median(run[key] for run in figures) for key in figures[0]}
        seconds = [run["seconds"] for run in figures]
        spread = 50 * (max(seconds) - min(seconds)) / median["seconds"]
        print(f"{system:34}{median['seconds']:8.2f}{f'+-{spread:.0f}%':>9}{median['processor']:13.2f}{median['peak']:9.0f}"
              f"{median['more']:11.0f}{median['leaves']:8.0f}{median['seconds'] / first:9.1f}")


main()
