"""Runs the benchmarks of units on one core and reports how each compares with its bare loop.

    report.py BINARY [--quick] [--filter REGEX] [--json]

What is compared with its aim, in brackets, is the ratio of the two times, or their difference per value that occurs,
or the time itself. Each is the median of the repetitions; the spread is the distance of their quartiles, in percent of
it. Times are those on the processor. An aim is an upper bound; one that is missed is marked with an exclamation mark.
"""

import argparse
import json
import os
import platform
import re
import statistics
import subprocess
import sys
from collections import defaultdict

# What is compared with an aim, most telling first, and how it is written.
RESULTS = [("sweep_ns", "{:.1f} ns/value"), ("ratio", "{:.2f}"), ("unit_ns", "{:.0f} ns")]


def processor():
    with open("/proc/cpuinfo") as info:
        return next((line.split(":")[1].strip() for line in info if line.startswith("model name")), platform.machine())


def run(options, core, repetitions):
    command = [options.binary, "--benchmark_format=json", f"--benchmark_repetitions={repetitions}",
               f"--benchmark_min_time={0.01 if options.quick else 0.05}", f"--benchmark_filter={options.filter}"]
    stay = lambda: os.sched_setaffinity(0, {core})
    done = subprocess.run(command, stdout=subprocess.PIPE, preexec_fn=stay, check=True, text=True)
    if not done.stdout.strip():
        sys.exit(f"no benchmark is called {options.filter}")
    measured = json.loads(done.stdout)
    failed = {f"{b['name']}: {b['error_message']}" for b in measured["benchmarks"] if b.get("error_occurred")}
    if failed:
        sys.exit("\n".join(sorted(failed)))
    return measured["context"], [b for b in measured["benchmarks"] if b["run_type"] == "iteration"]


def summary(name, repetitions):
    """The medians of one benchmark, and what they are compared with."""
    group, _, rest = name.removesuffix("/manual_time").partition("/")
    result = {"group": group, "name": rest}
    for key in ("unit_ns", "bare_ns", "ratio", "sweep_ns"):
        if key in repetitions[0]:
            result[key] = statistics.median(r[key] for r in repetitions)
    result_key = next(key for key, _ in RESULTS if key in result)
    low, _, high = statistics.quantiles((r[result_key] for r in repetitions), n=4, method="inclusive")
    result |= {"result": result_key, "spread_percent": 100 * (high - low) / abs(result[result_key]),
               "aim": repetitions[0].get("aim_" + result_key)}
    return result


def table(summaries):
    name_of = lambda s: s["name"].replace("/", ", ")
    width = max(len(name_of(s)) for s in summaries)
    groups = defaultdict(list)
    for s in summaries:
        groups[s["group"]].append(s)
    for group, members in groups.items():
        print(f"\n{group}\n  {'':{width}} {'unit ns':>8} {'bare ns':>8} {'result':>14} {'aim':>7}  {'spread':>6}")
        for s in members:
            value = s[s["result"]]
            aim, missed = ("", " ") if s["aim"] is None else (f"({s['aim']:g})", "!" if value > s["aim"] else " ")
            bare = f"{s['bare_ns']:.4g}" if "bare_ns" in s else ""
            print(f"  {name_of(s):{width}} {s['unit_ns']:8.4g} {bare:>8} {dict(RESULTS)[s['result']].format(value):>14} "
                  f"{aim:>7}{missed} {s['spread_percent']:5.1f}%")


def main():
    parser = argparse.ArgumentParser(prog="script/bench", description="Times every unit of work and its bare loop.")
    parser.add_argument("binary", help=argparse.SUPPRESS)
    parser.add_argument("--quick", action="store_true", help="3 short repetitions in place of 12")
    parser.add_argument("--filter", metavar="REGEX", default=".", help="only benchmarks whose name matches")
    parser.add_argument("--json", action="store_true", help="for machines")
    options = parser.parse_args()

    core = max(os.sched_getaffinity(0))
    # In rounds, some minutes apart: what else the machine does in one of them does not decide a median.
    rounds, repetitions = (1, 3) if options.quick else (3, 4)
    runs = defaultdict(list)
    for _ in range(rounds):
        context, measured = run(options, core, repetitions)
        for b in measured:
            runs[b["run_name"]].append(b)
    summaries = [summary(name, r) for name, r in runs.items()]
    setting = {"processor": processor(), "core": core, "compiler": context["compiler"],
               "flags": re.sub(r"-W\S+\s*", "", context["flags"]), "files": context["files"],
               "repetitions": rounds * repetitions, "load": context["load_avg"][0]}
    if options.json:
        json.dump({"setting": setting, "benchmarks": summaries}, sys.stdout, indent=1)
        print()
        return
    print("{processor}, core {core}; {compiler}, {flags}; files in {files}; load {load:.1f}\n"
          "medians of {repetitions} repetitions, in nanoseconds per case (or row, cell, value, call)".format(**setting))
    table(summaries)


main()
