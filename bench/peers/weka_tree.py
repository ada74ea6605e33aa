"""weka's tree, unpruned, with at least 2 cases in a branch. Its time is what growing it takes beyond the majority class,
each in a process of its own that reads the table; peak memory is that of the process.

usage: weka_tree.py TABLE
"""

import os
import re
import resource
import subprocess
import sys

import phase

LARGEST = 3 << 20  # bytes; the time rises faster than the table


def run(learner, *options):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    command = ["java", "-Xmx6g", "-cp", "/usr/share/java/weka.jar", f"weka.classifiers.{learner}", "-t", sys.argv[1],
               "-no-cv", *options]
    printed = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True, text=True).stdout
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, printed


if os.path.getsize(sys.argv[1]) > LARGEST:
    phase.refuse("the table is too large")
tree = ("trees.J48", "-U", "-M", "2")
seconds = [-run("rules.ZeroR", "-v")[0] + run(*tree, "-v")[0] for _ in range(3)]
_, printed = run(*tree)
peak = 1024 * resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
phase.report({"phase": "grow", "seconds": seconds, "clock": seconds, "before": 0, "peak": peak},
             leaves=int(re.search(r"Number of Leaves\s*:\s*(\d+)", printed).group(1)),
             accuracy=float(re.search(r"Correctly Classified Instances.*?([\d.]+) +%", printed).group(1)) / 100)
