"""Compares two builds of the program by how well their trees predict: see script/quality.

Every table is split ten times into rows to grow a tree on and rows to predict, by the same seeds as any other program
could: Python's random.Random(1000 + split).shuffle(order); the first 70% of the order train; both parts keep the order
of the table. The class is the last column, and "?" is the unknown value.
"""

import argparse
import collections
import concurrent.futures
import csv
import math
import pathlib
import random
import re
import statistics
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
UNKNOWN = "?"
LEAST_PROBABILITY = 0.001
TRAINING_SHARE = 0.7
FEW_ROWS = 50  # too few to say anything about the rules of a tree

NOTES = """\
Of each table, {share:.0%} of the rows train and the others are predicted; means over {splits} seeded splits, before and
after, and the change with its standard error over the splits. Log-loss is in bits a row, with probabilities of at least
{least}; the Brier score is from 0 to 2. A "+" marks what became better by more than two standard errors, a "-" what
became worse. The splits of a table share rows, so on new rows the errors would be somewhat larger. The means over the
tables are printed without those of fewer than {few} rows.

before: {before}
after:  {after}"""
VARIANT_NOTES = {
    "plain": "the tables as they are",
    "identifier": "with an added text column of a value of its own for each row, but that one row in ten has the value "
                  "of another row instead",
    "unknown5": "with 5% of all attribute cells made unknown",
    "unknown20": "with 20% of all attribute cells made unknown",
}

Score = collections.namedtuple("Score", "accuracy log_loss brier leaves")
HEADINGS = Score("accuracy, %", "log-loss, bits", "Brier score", "leaves")
DECIMALS = Score(2, 3, 3, 1)
BETTER = Score(1, -1, -1, 0)  # the sign of a change for the better; neither more nor fewer leaves are better

Table = collections.namedtuple("Table", "name header rows")


def read_table(path):
    with open(path, newline="", encoding="latin-1") as file:
        header, *rows = csv.reader(file)
    return Table(path.stem, header, rows)


def with_identifier(table, chance):
    values = [f"row {row}" for row in range(len(table.rows))]
    for row in chance.sample(range(len(values)), len(values) // 10):
        values[row] = values[chance.randrange(len(values))]
    return Table(table.name, ["added identifier"] + table.header,
                 [[value] + row for value, row in zip(values, table.rows)])


def with_unknown(table, chance, share):
    def cells(row):
        return [UNKNOWN if chance.random() < share else cell for cell in row[:-1]] + row[-1:]
    return Table(table.name, table.header, [cells(row) for row in table.rows])


def variant_of(table, variant, split):
    chance = random.Random(2000 + split)
    if variant == "identifier":
        return with_identifier(table, chance)
    if variant.startswith("unknown"):
        return with_unknown(table, chance, int(variant[len("unknown"):]) / 100)
    return table


def parts(table, split):
    order = list(range(len(table.rows)))
    random.Random(1000 + split).shuffle(order)
    training = set(order[:int(TRAINING_SHARE * len(order))])
    return ([row for i, row in enumerate(table.rows) if i in training],
            [row for i, row in enumerate(table.rows) if i not in training])


def write_table(path, header, rows):
    with open(path, "w", newline="", encoding="latin-1") as file:
        csv.writer(file, lineterminator="\n").writerows([header, *rows])


def run(*command):
    done = subprocess.run([str(word) for word in command], capture_output=True, encoding="latin-1")
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}:\n{done.stdout}{done.stderr}")
    return done.stdout


def scores_of_prediction(path, width):
    """Accuracy, log-loss and Brier score of a classified table whose own columns are the first `width`."""
    with open(path, newline="", encoding="latin-1") as file:
        header, *rows = csv.reader(file)
    classes = [re.fullmatch(r"P\((.*)\)", name, re.DOTALL).group(1) for name in header[width + 1:]]
    correct = bits = brier = 0
    for row in rows:
        actual, predicted, probabilities = row[width - 1], row[width], [float(p) for p in row[width + 1:]]
        of_actual = sum(p for p, name in zip(probabilities, classes) if name == actual)
        correct += predicted == actual
        bits -= math.log2(max(of_actual, LEAST_PROBABILITY))
        brier += sum(p * p for p in probabilities) - 2 * of_actual + 1
    return 100 * correct / len(rows), bits / len(rows), brier / len(rows)


def score(build, folder, width):
    """Grows a tree on train.csv and predicts test.csv, both in `folder`."""
    program, options = build
    model, predicted = folder / "model", folder / "predicted.csv"
    report = run(program, "grow", folder / "train.csv", "--model", model, "--threads", 1, "--unknown", UNKNOWN,
                 *options)
    leaves = int(re.search(r"^\d+ nodes?, (\d+) lea(?:f|ves),", report, re.MULTILINE).group(1))
    run(program, "classify", model, folder / "test.csv", "--output", predicted, "--probability", "--unknown", UNKNOWN)
    return Score(*scores_of_prediction(predicted, width), leaves)


def compare(table, variant, split, builds):
    """The scores of each build on one split."""
    changed = variant_of(table, variant, split)
    training, predicted = parts(changed, split)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        write_table(folder / "train.csv", changed.header, training)
        write_table(folder / "test.csv", changed.header, predicted)
        return [score(build, folder, len(changed.header)) for build in builds]


def standard_error(values):
    return statistics.stdev(values) / math.sqrt(len(values)) if len(values) > 1 else math.nan


def change_text(before, after, decimals, better):
    """The means of one score over the splits, before and after, and the change."""
    changes = [new - old for old, new in zip(before, after)]
    change, error = statistics.mean(changes), standard_error(changes)
    mark = " "
    if abs(change) > 2 * error:
        mark = {1: "+", 0: " ", -1: "-"}[better if change > 0 else -better]
    return (f"{statistics.mean(before):8.{decimals}f}{statistics.mean(after):8.{decimals}f}"
            f"{change:+8.{decimals}f} ± {error:<5.{decimals}f} {mark}")


def line(name, pairs):
    """The line of a table, from its scores (before, after) on each split."""
    texts = [change_text([before[i] for before, _ in pairs], [after[i] for _, after in pairs], DECIMALS[i], BETTER[i])
             for i in range(len(HEADINGS))]
    return f"{name:<16}" + " ".join(texts)


def mean_pairs(pairs_of_tables):
    """The means over the tables, (before, after) on each split."""
    return [tuple(Score(*map(statistics.mean, zip(*scores))) for scores in zip(*pairs))
            for pairs in zip(*pairs_of_tables)]


def heading():
    groups = " ".join(f"{name:^34}" for name in HEADINGS)
    columns = " ".join(f"{'before':>8}{'after':>8}{'change':>8}{'':10}" for _ in HEADINGS)
    return f"{'':16}{groups}\n{'table':<16}{columns}"


def accuracy_lost(plain, changed):
    """The means over the splits of the accuracy that the trees after lose by a changed table."""
    return {name: statistics.mean(whole[1].accuracy - part[1].accuracy for whole, part in zip(plain[name], pairs))
            for name, pairs in changed.items()}


def print_variant(variant, results, tables):
    print(f"\n{VARIANT_NOTES[variant].capitalize()}:\n\n{heading()}")
    scores = results[variant]
    for table in tables:
        print(line(table.name, scores[table.name]).rstrip())
    counted = [scores[table.name] for table in tables if len(table.rows) >= FEW_ROWS]
    if counted:
        print(line(f"mean of {len(counted)}", mean_pairs(counted)).rstrip())
    if variant == "identifier" and "plain" in results:
        lost = accuracy_lost(results["plain"], scores)
        name = max(lost, key=lost.get)
        print(f"\nThe added column takes {statistics.mean(lost.values()):.2f} points of accuracy from the trees after, "
              f"at most {lost[name]:.2f} ({name}).")


def built(revision):
    """The program of a revision of this repository, built in a folder of its own."""
    found = subprocess.run(["git", "-C", ROOT, "rev-parse", "--verify", "--quiet", revision + "^{commit}"],
                           capture_output=True, text=True)
    if found.returncode != 0:
        sys.exit(f"--before: this clone has no revision \"{revision}\"; fetch its whole history, "
                 "as by git fetch --unshallow")
    commit = found.stdout.strip()
    folder = ROOT / "build" / "quality" / commit
    folder.mkdir(parents=True, exist_ok=True)
    # The files get the time of the commit, so nothing is built twice.
    archive = subprocess.run(["git", "-C", ROOT, "archive", commit], stdout=subprocess.PIPE, check=True)
    subprocess.run(["tar", "-x", "-C", folder], input=archive.stdout, check=True)
    subprocess.run(["cmake", "--preset", "program"], cwd=folder, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "build/program"], cwd=folder, check=True, stdout=sys.stderr)
    return folder / "build" / "program" / "bin" / "arbor"


def arguments():
    parser = argparse.ArgumentParser(prog="script/quality", description="Compares how well the trees of two builds "
                                     "predict, on every CSV file of a folder; the class is the last column.")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--before", default="fe8ba68", metavar="REVISION", help="the build to compare with (default: "
                        "%(default)s, the last one that took the gain of many values as it is)")
    parser.add_argument("--before-option", action="append", default=[], metavar="OPTION",
                        help="an option of grow for the trees before, as --before-option=--no-pruning; repeatable")
    parser.add_argument("--after-option", action="append", default=[], metavar="OPTION", help="one for those after")
    parser.add_argument("--splits", type=int, default=10, metavar="N", help="splits of each table (default: 10)")
    parser.add_argument("--variants", default=",".join(VARIANT_NOTES), metavar="NAMES",
                        help="which of the variants of the tables to measure (default: %(default)s)")
    parsed = parser.parse_args()
    parsed.variants = parsed.variants.split(",")
    for variant in parsed.variants:
        if variant not in VARIANT_NOTES:
            parser.error(f"--variants: \"{variant}\" is none of {', '.join(VARIANT_NOTES)}")
    if parsed.splits < 2:
        parser.error("--splits: a standard error needs at least 2")
    return parsed


def main():
    chosen = arguments()
    tables = [read_table(path) for path in sorted(chosen.folder.glob("*.csv"))]
    if not tables:
        sys.exit(f"{chosen.folder}: no CSV file")
    builds = [(built(chosen.before), chosen.before_option),
              (ROOT / "build" / "program" / "bin" / "arbor", chosen.after_option)]
    labels = [" ".join([name, *options]) for name, (_, options) in zip([chosen.before, "this build"], builds)]
    print(NOTES.format(share=TRAINING_SHARE, splits=chosen.splits, least=LEAST_PROBABILITY, few=FEW_ROWS,
                       before=labels[0], after=labels[1]))
    results = {}
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for variant in chosen.variants:
            waiting = {table.name: [pool.submit(compare, table, variant, split, builds)
                                    for split in range(1, chosen.splits + 1)] for table in tables}
            results[variant] = {name: [future.result() for future in futures] for name, futures in waiting.items()}
            print_variant(variant, results, tables)
            sys.stdout.flush()


if __name__ == "__main__":
    main()
