"""Measures what it costs to rate and grow over several processes, and predicts what it would cost on a cluster.

Each run grows an unpruned tree on a synthetic table (function 7, 5% noise) and reads what --statistics prints. A model
of the cost, whose constants come from these runs, says what is to be expected in each of them and on larger clusters.
Times are processor time: the processes of a run share the cores of this machine.
"""

import argparse
import datetime
import math
import os
import pathlib
import platform
import resource
import subprocess
import tempfile
from collections import OrderedDict

# Of the synthetic table: the number of distinct values of each attribute, at most, and the bytes of its code.
DOMAINS = {"salary": 130001, "commission": 65002, "age": 61, "elevel": 5, "car": 20, "zipcode": 9, "hvalue": 625472,
           "hyears": 30, "loan": 500001}
ATTRIBUTES = len(DOMAINS)
CLASS_CODES = 3  # two classes, and the unknown one
EXACT = 1 << 24  # cases of weight 1 that float adds up without rounding


def code_bytes(values):
    return 1 if values < 256 else 2 if values < 65536 else 4


MOVED_BYTES = sum(code_bytes(values) for values in DOMAINS.values()) + 1  # of a case: its codes and its class


def expected_values(values, rows):
    """How many of so many equally likely values occur among the rows."""
    return values * -math.expm1(-rows / values)


def level_bytes(rows, nodes=1):
    """What each process sends so that all nodes of a level, of `rows` cases together, are rated."""
    tables = cases = 0
    for values in DOMAINS.values():
        occurring = expected_values(values, rows)
        if occurring * 3 > rows / nodes:
            cases += 8 * rows
        else:
            tables += nodes * 4 * CLASS_CODES * (occurring + 1)
    return tables, cases


class Run:
    def __init__(self, text):
        self.phases = OrderedDict()  # name: [processor seconds, bytes, messages] of all processes
        self.most = 0.0  # processor seconds of a process
        for line in text.splitlines():
            fields = line.rsplit(maxsplit=5)
            if len(fields) < 6 or not fields[1].isdigit():
                continue
            phase = fields[0].strip()
            if phase == "total":
                self.most = max(self.most, float(fields[3]))
                continue
            sums = self.phases.setdefault(phase, [0.0, 0, 0])
            for i, number in enumerate((float(fields[3]), int(fields[4]), int(fields[5]))):
                sums[i] += number

    def seconds(self, *phases):
        return sum(sums[0] for name, sums in self.phases.items() if not phases or name.startswith(phases))

    def bytes(self, *phases):
        return sum(sums[1] for name, sums in self.phases.items() if not phases or name.startswith(phases))


def processor_seconds(command, **options):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, **options)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime


def measure(options, table, folder):
    grow = ["grow", table, "--no-pruning", "--threads", "1", "--force"]
    single = min(processor_seconds([options.build / "bin/arbor", *grow, "--model", folder / "one.model"])
                 for _ in range(options.repetitions))
    environment = {**os.environ, "OMPI_ALLOW_RUN_AS_ROOT": "1", "OMPI_ALLOW_RUN_AS_ROOT_CONFIRM": "1"}
    runs = {}
    for processes in options.processes:
        for _ in range(options.repetitions):
            command = ["mpirun", "--oversubscribe", "-n", str(processes), options.build / "bin/arbor-mpi", *grow,
                       "--model", folder / "several.model", "--statistics"]
            text = subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                                  env=environment).stderr
            if (folder / "one.model").read_bytes() != (folder / "several.model").read_bytes():
                raise SystemExit(f"{processes} processes grow another tree")
            run = Run(text)
            if processes not in runs or run.seconds() < runs[processes].seconds():
                runs[processes] = run
    return single, runs


def report(options, size, single, runs):
    rows = options.rows
    print(f"{rows:,} rows, {size / 1e6:.0f} MB of CSV, {rows * MOVED_BYTES / 1e6:.0f} MB of codes; arbor alone: "
          f"{single:.2f} s of processor time; all models are the same bytes\n")
    print("processes  processor s  of arbor's  most of one  MB sent    reading  domains  levels  moving    rest")
    for processes, run in runs.items():
        parts = [run.bytes("reading"), run.bytes("domains"), run.bytes("level"), run.bytes("moving")]
        parts.append(run.bytes() - sum(parts))
        sent = "".join(f"{part / 1e6:8.1f}" for part in parts)
        print(f"{processes:9}  {run.seconds():11.2f}  {run.seconds() / single:10.2f}  {run.most:11.2f}  "
              f"{run.bytes() / 1e6:7.1f}   {sent}")
    for processes, run in runs.items():
        levels = [(name, sums) for name, sums in run.phases.items() if name.startswith("level")]
        if levels:
            print(f"\n{processes} processes: MB sent for each level of the tree: " +
                  ", ".join(f"{sums[1] / 1e6:.1f}" for _, sums in levels) + "; messages: " +
                  ", ".join(str(sums[2]) for _, sums in levels))
            tables, cases = level_bytes(rows)
            expected = tables * (processes - 1) + cases * (processes - 1) / processes
            print(f"  expected at the root: {expected / 1e6:.1f}; to move all cases: "
                  f"{rows * MOVED_BYTES * (processes - 1) / processes / 1e6:.1f}, measured "
                  f"{run.bytes('moving') / 1e6:.1f}")


def constants(options, runs):
    """Seconds of processor time for a row, a distinct value, and a byte of a table in each process."""
    rows = options.rows
    one, few, many = runs[min(runs)], runs[sorted(runs)[1]], runs[max(runs)]
    distinct = sum(expected_values(values, rows) for values in DOMAINS.values())
    few_processes = sorted(runs)[1]
    table = ((many.phases["level 0"][0] - few.phases["level 0"][0]) / (max(runs) - few_processes)
             / level_bytes(rows)[0]) if max(runs) > few_processes else 0.0
    return {
        "read": one.seconds("reading", "start") / rows,
        "domain": many.seconds("domains") / max(runs) / distinct,
        "grow": one.seconds("subtrees") / rows,
        "level": few.phases["level 0"][0] / rows - few_processes * table * level_bytes(rows)[0] / rows,
        "table": max(table, 0.0),
        "move": few.seconds("moving") / rows,
    }


def levels_of(processes):
    """How many levels have nodes for all processes: branches are uneven, as measured with 4 and 8."""
    return math.ceil(math.log2(processes)) + 3


def work(cost, rows, processes):
    """Processor seconds of all processes together, to load and to grow."""
    distinct = sum(expected_values(values, rows) for values in DOMAINS.values())
    load = rows * cost["read"] + processes * distinct * cost["domain"]
    if processes == 1:
        return load, rows * cost["grow"]
    levels = levels_of(processes)
    tables = sum(level_bytes(rows, 2 ** level)[0] for level in range(levels))
    below = max(0.3 * cost["grow"], cost["grow"] - math.log2(processes) * cost["level"])
    return load, (rows * (levels * cost["level"] * 0.7 + cost["move"] + below) +  # 0.7: some nodes have moved by then
                  processes * tables * cost["table"])


def predict(cost, rows, processes, gigabits):
    """Seconds to load and to grow, and the GB that a process sends."""
    bandwidth = gigabits * 1e9 / 8
    latency = 20e-6
    steps = math.ceil(math.log2(processes))
    load, growing = (seconds / processes for seconds in work(cost, rows, processes))
    cells = 10 / 64 * sum(DOMAINS.values())  # bytes: neighbouring numbers are sent as bits
    load += 2 * steps * cells / bandwidth
    sent = 2 * cells
    for level in range(levels_of(processes)):
        nodes = 2 ** level
        tables, cases = level_bytes(rows, nodes)
        if rows / nodes > EXACT:  # float sums pass from process to process, attribute after attribute
            growing += (processes + ATTRIBUTES * nodes) * (tables / ATTRIBUTES / nodes / bandwidth + latency)
        else:
            growing += 2 * tables / bandwidth
        growing += cases / bandwidth + nodes * 10 * steps * latency
        sent += tables + cases / processes
    moved = rows / processes * MOVED_BYTES
    return load, growing + 2 * moved / bandwidth, (sent + moved) / 1e9


def print_predictions(cost):
    print("\nconstants in ns: " + ", ".join(f"{name} {value * 1e9:.3g}" for name, value in cost.items()))
    print("\npredicted          processes  Gbit/s  load s   grow s  GB sent by a process  GB of memory in each")
    for rows in (10 ** 9, 10 ** 10):
        for processes in (10, 100, 1000):
            for gigabits in (10, 100):
                load, growing, sent = predict(cost, rows, processes, gigabits)
                domains = sum(DOMAINS.values())
                memory = (rows / processes * (3 * MOVED_BYTES + 16) + 64 * domains) / 1e9
                print(f"10^{round(math.log10(rows)):<2} rows         {processes:9}  {gigabits:6}  {load:6.1f}  {growing:7.1f}"
                      f"  {sent:20.2f}  {memory:20.1f}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=pathlib.Path, required=True, help="where bin/arbor-mpi is built")
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--processes", type=lambda text: [int(part) for part in text.split(",")], default=[1, 2, 4, 8])
    parser.add_argument("--repetitions", type=int, default=3, help="the run of the least processor time counts")
    options = parser.parse_args()
    if min(options.processes) != 1 or max(options.processes) == 1:
        parser.error("--processes: the cost is compared with that of 1 process, so name 1 and a greater number")
    print(f"{platform.processor() or platform.machine()}, {os.cpu_count()} cores, {datetime.date.today()}")
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        table = folder / "people.csv"
        with table.open("w") as out:
            subprocess.run([options.build / "bin/arbor_make_table", "--rows", str(options.rows), "--function", "7",
                            "--noise", "0.05"], check=True, stdout=out)
        single, runs = measure(options, table, folder)
        report(options, table.stat().st_size, single, runs)
        cost = constants(options, runs)
        print("\nprocessor s to load and grow, expected and measured: " +
              ", ".join(f"{processes} processes {sum(work(cost, options.rows, processes)):.2f} "
                        f"{run.seconds() - run.seconds('evaluation'):.2f}" for processes, run in runs.items()))
        print_predictions(cost)


main()
