"""Measures how the time of loading a table and of growing a tree rises with the size of the table.

Each of five sizes takes four values while all else stays as it is. Every measurement runs in a process of its own, on
one core and in one thread, in several rounds; its time is the median of the runs, in seconds of processor time.
"""

import argparse
import datetime
import json
import math
import os
import pathlib
import platform
import statistics
import subprocess
import tempfile
from dataclasses import dataclass, field

NOTES = """\
{processor}, core {core}, {date}; medians of at least {runs} runs in seconds of processor time

Synthetic people of function 7 with 5% noise (bench/agrawal.h): {rows:,} rows and nine attributes, unless a heading
says otherwise. The trees are unpruned, with at least 2 cases in a branch. "slope" is the exponent of the step from the
line above, 1 where the time rises as the size does; "ns" those of a row and attribute; "peak" the most memory of the
whole process while it loads or grows. A "~" marks a time whose runs are far apart, the quartiles by more than 10% of
it; of all times they are {spread:.0f}% apart in the median."""
HEADINGS = {
    "rows": "rows",
    "attributes": "attributes: the nine of 1, 2, 4 and 8 people in a row, the group that of the first; half the rows",
    "distinct values": "distinct values of salary, commission, house value and loan, rounded to about as many",
    "classes": "classes: the group, and which of 1, 2, 4 or 8 equal parts of the range of salaries",
    "depth": "depth: the most tests one below the other that the tree may have; the table is the same",
}
RANGES = {0: (20000, 150000), 1: (10000, 75000), 6: (50000, 1350000), 8: (0, 500000)}  # of the columns with many values
PHASES = {"load": "#0072b2", "grow": "#d55e00"}


@dataclass
class Point:
    axis: str
    size: int
    table: pathlib.Path
    rows: int
    attributes: int = 9
    depth: int = 1000  # of the tree at most; no tree comes to as many
    seconds: dict = field(default_factory=lambda: {phase: [] for phase in PHASES})
    nodes: int = 0
    peak: int = 0

    def time(self, phase):
        return statistics.median(self.seconds[phase])

    def spread(self, phase):
        runs = self.seconds[phase] * 2  # one alone would have no quartiles
        low, middle, high = statistics.quantiles(runs, n=4, method="inclusive")
        return 100 * (high - low) / middle


def rounded(fields, count):
    for column, (low, high) in RANGES.items():
        step = max(1, (high - low) / count)
        fields[column] = str(round(low + step * math.floor((int(fields[column]) - low) / step)))
    return fields


def in_classes(fields, count):
    low, high = RANGES[0]
    fields[-1] += str((int(fields[0]) - low) * count // 2 // (high - low + 1))
    return fields


def make_points(build, folder, base_rows):
    def people(rows, seed=1):
        table = folder / f"{rows}-{seed}.csv"
        with open(table, "w") as out:
            subprocess.run([build / "bin" / "arbor_make_table", "--function=7", "--noise=0.05", f"--rows={rows}",
                            f"--seed={seed}"], stdout=out, check=True)
        return table

    def changed(name, change, size):
        with open(base) as lines, open(folder / f"{name}-{size}.csv", "w") as out:
            out.write(next(lines))
            out.writelines(",".join(change(line.strip().split(","), size)) + "\n" for line in lines)
        return pathlib.Path(out.name)

    def side_by_side(count):
        lines = zip(*[open(people(base_rows // 2, seed)) for seed in range(1, count + 1)])
        *names, group = next(lines)[0].split(",")
        with open(folder / f"{count}-people.csv", "w") as out:
            out.write(",".join([*(f"{name} {i + 1}" for i in range(count) for name in names), group]))
            out.writelines("".join(line.rpartition(",")[0] + "," for line in others) + first
                           for first, *others in lines)
        return pathlib.Path(out.name)

    base = people(base_rows)
    for rows in (base_rows // 4, base_rows, base_rows * 4, base_rows * 16):
        yield Point("rows", rows, base if rows == base_rows else people(rows), rows)
    for count in (1, 2, 4, 8):
        yield Point("attributes", 9 * count, side_by_side(count), base_rows // 2, attributes=9 * count)
    for count in (100, 1000, 10000, 100000):
        yield Point("distinct values", count, changed("rounded", rounded, count), base_rows)
    for count in (2, 4, 8, 16):
        yield Point("classes", count, changed("classes", in_classes, count), base_rows)
    for depth in (2, 4, 8, 16):
        yield Point("depth", depth, base, base_rows, depth=depth)


def measure(build, core, point):
    for phase in PHASES:
        command = [build / "bin" / "arbor_measure_table", phase, point.table]
        if phase == "grow":
            command.append(str(point.depth))
        result = json.loads(subprocess.check_output(command, preexec_fn=lambda: os.sched_setaffinity(0, {core})))
        # The first two pay for fresh memory. Counted, they would weigh more for large tables, which have fewer runs.
        point.seconds[phase] += result["seconds"][2:]
        point.peak = max(point.peak, result["peak"])
        point.nodes = result.get("nodes", point.nodes)


def slope(before, point, phase):
    return math.log(point.time(phase) / before.time(phase)) / math.log(point.size / before.size)


def print_table(axes):
    for axis, points in axes.items():
        print(f"\n{HEADINGS[axis]}\n       size   load s  slope     ns   grow s  slope      ns     nodes  peak MB")
        for before, point in zip([None, *points], points):
            line = f"  {point.size:9,}"
            for phase, width in (("load", 6), ("grow", 7)):
                rise = f"{slope(before, point, phase):.2f}" if before else ""
                cell = 1e9 * point.time(phase) / point.rows / point.attributes
                mark = "~" if point.spread(phase) > 10 else ""
                line += f"{mark + format(point.time(phase), '.3f'):>9} {rise:>6} {cell:{width}.1f}"
            print(f"{line} {point.nodes:9,} {point.peak / 1e6:8.1f}")


def short(number):
    return f"{number / 1e6:g}M" if number >= 1e6 else f"{number / 1e3:g}k" if number >= 1e3 else f"{number:g}"


def panel(points, left, top, low, high):
    """One size's curves; `low` and `high` are the decades of the seconds."""
    width, height = 230, 190
    first, last = math.log10(points[0].size), math.log10(points[-1].size)
    x = lambda size: left + 12 + (width - 24) * (math.log10(size) - first) / (last - first)
    y = lambda seconds: top + height * (high - math.log10(seconds)) / (high - low)
    yield f'<text class="title" x="{left}" y="{top - 10}">{points[0].axis}</text>'
    for decade in range(low, high + 1):
        yield f'<path class="grid" d="M{left} {y(10**decade):.1f}h{width}"/>'
        yield f'<text class="y" x="{left - 6}" y="{y(10**decade) + 4:.1f}">{10**decade:g}</text>'
    for point in points:
        yield f'<path class="grid" d="M{x(point.size):.1f} {top}v{height}"/>'
        yield f'<text class="x" x="{x(point.size):.1f}" y="{top + height + 16}">{short(point.size)}</text>'
    size, seconds = points[0].size, statistics.geometric_mean(points[0].time(phase) for phase in PHASES)
    rise = min(points[-1].size / size, 10**high / seconds)
    yield f'<path class="one" d="M{x(size):.1f} {y(seconds):.1f}L{x(size * rise):.1f} {y(seconds * rise):.1f}"/>'
    for phase, colour in PHASES.items():
        places = [(x(point.size), y(point.time(phase))) for point in points]
        yield f'<path class="curve" stroke="{colour}" d="M{"L".join(f"{a:.1f} {b:.1f}" for a, b in places)}"/>'
        yield from (f'<circle cx="{a:.1f}" cy="{b:.1f}" r="3.5" fill="{colour}"/>' for a, b in places)


def picture(axes):
    times = [point.time(phase) for points in axes.values() for point in points for phase in PHASES]
    low, high = math.floor(math.log10(min(times))), math.ceil(math.log10(max(times)))
    parts = ["""\
<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 900 540" font-family="sans-serif" font-size="12" fill="#333">
<title>Seconds of loading and of growing by the size of the table</title>
<style>.title{font-size:14px;font-weight:bold}.x{text-anchor:middle}.y{text-anchor:end}.grid{stroke:#ddd}
.one{stroke:#777;stroke-dasharray:5 4}.curve{fill:none;stroke-width:2}</style>
<rect width="900" height="540" fill="#fff"/>"""]
    for i, points in enumerate(axes.values()):
        parts += panel(points, 50 + 290 * (i % 3), 40 + 260 * (i // 3), low, high)
    keys = [(f'class="curve" stroke="{colour}"', phase) for phase, colour in PHASES.items()]
    for i, (look, text) in enumerate([*keys, ('class="one"', "slope 1: in proportion to the size")]):
        parts.append(f'<path {look} d="M650 {345 + 28 * i}h36"/><text x="696" y="{349 + 28 * i}">{text}</text>')
    parts.append('<text x="650" y="440">Seconds of processor time on one core</text>'
                 '<text x="650" y="458">by the size; both scales are logarithmic</text>')
    return "\n".join([*parts, "</svg>\n"])


def main():
    parser = argparse.ArgumentParser(prog="script/bench --scaling", description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, required=True, help=argparse.SUPPRESS)
    parser.add_argument("--picture", metavar="FILE.svg", type=pathlib.Path, help="draw the times there")
    parser.add_argument("--quick", action="store_true", help="a tenth of the rows, and one round in place of five")
    options = parser.parse_args()

    core = max(os.sched_getaffinity(0))
    rows = 25000 if options.quick else 250000
    with tempfile.TemporaryDirectory() as folder:
        points = list(make_points(options.build, pathlib.Path(folder), rows))
        # In rounds, about a minute apart: what else the machine does in one of them matters less.
        for _ in range(1 if options.quick else 5):
            for point in points:
                measure(options.build, core, point)
    axes = {axis: [point for point in points if point.axis == axis] for axis in HEADINGS}
    spreads = [point.spread(phase) for point in points for phase in PHASES]
    with open("/proc/cpuinfo") as info:
        processor = next((l.split(":")[1].strip() for l in info if l.startswith("model name")), platform.machine())
    print(NOTES.format(processor=processor, core=core, date=datetime.date.today(), rows=rows,
                       runs=min(len(point.seconds[phase]) for point in points for phase in PHASES),
                       spread=statistics.median(spreads)))
    print_table(axes)
    if options.picture:
        options.picture.write_text(picture(axes))


main()
