"""What the scripts of the peers written in Python have in common: they measure a phase as arbor_measure_table does."""

import gc
import json
import math
import sys
import time

import pandas


def process_bytes(entry):
    with open("/proc/self/status") as status:
        return next(int(line.split()[1]) * 1024 for line in status if line.startswith(entry + ":"))


def measure(phase, work):
    """Runs the work three times; more often when that takes less than a second in all, less often when it takes more
    than a minute. Work that is too short for the clocks is repeated within a run. Returns the figures to report, and
    the result of the last run."""
    shortest_run = 0.05
    gc.collect()
    with open("/proc/self/clear_refs", "w") as peak:
        peak.write("5")  # the peak starts again
    figures = {"phase": phase, "before": process_bytes("VmRSS"), "seconds": [], "clock": []}
    beginning = time.perf_counter()
    repeats = 1
    for run in range(25):
        taken = time.perf_counter() - beginning
        if run > 0 and taken > (60 if run < 3 else 1):
            break
        start, processor_start = time.perf_counter(), time.process_time()
        for _ in range(repeats):
            result = None  # freed before the next
            result = work()
        seconds = (time.process_time() - processor_start) / repeats
        clock = (time.perf_counter() - start) / repeats
        if run == 0:
            figures["peak"] = process_bytes("VmHWM")
            repeats = max(1, math.ceil(shortest_run / clock))
            if repeats > 1:
                continue  # too short to count
        figures["seconds"].append(seconds)
        figures["clock"].append(clock)
    return figures, result


def report(figures, **more):
    print(json.dumps({**figures, **more}), flush=True)


def read(path, **options):
    """The table as pandas reads it: numbers and texts as they are, "?" and the empty cell unknown."""
    return pandas.read_csv(path, na_values=["?"], keep_default_na=False, **options)


def table(path, coded):
    """The attributes and the class, the latter as numbers from 0 up. With `coded` the attributes are all numbers: a
    text its place in the alphabet, an unknown value one that is below all others."""
    data = read(path, low_memory=False)
    attributes, classes = data.iloc[:, :-1], pandas.Categorical(data.iloc[:, -1]).codes
    if coded:
        attributes = attributes.apply(as_numbers)
    return attributes, classes


def as_numbers(column):
    if not is_text(column):
        return column.fillna(column.min() - 1)
    return pandas.Series(pandas.Categorical(column).codes, column.index)  # -1 if unknown


def is_text(column):
    return column.dtype == object


def refuse(reason):
    sys.exit(reason)
