"""Classifies tables with the JSON of a tree alone, and compares with the program's probabilities.

usage: independent_classifier_test.py ARBOR TABLE...

Half of the rows grow the tree; all are classified, once as they are and once with a fifth of the
cells unknown.
"""

import csv
import decimal
import json
import random
import struct
import subprocess
import sys
import tempfile


def as_float32(text):
    return struct.unpack("f", struct.pack("f", float(text)))[0]


class Tree:
    def __init__(self, document):
        self.nodes = document["nodes"]
        self.classes = document["classes"]
        self.number = {a["name"]: as_float32 if a["type"] == "float" else decimal.Decimal
                       for a in document["attributes"]}
        self.probabilities = []
        for node in self.nodes:
            weights, n = node["weights"], sum(node["weights"])
            if "parent" in node:
                above = self.probabilities[node["parent"]]
                self.probabilities.append([(w + 2 * p) / (n + 2) for w, p in zip(weights, above)])
            else:
                self.probabilities.append([w / n for w in weights])

    def child_of(self, node, row):
        text = row[node["attribute"]]
        if text in ("", "?"):
            return None
        if "threshold" in node:
            number = self.number[node["attribute"]]
            text = "<=" if number(text) <= number(node["threshold"]) else ">"
        return next((c for c in node["children"] if self.nodes[c]["branch"] == text), None)

    def distribution(self, row, index=0):
        node = self.nodes[index]
        if "children" not in node:
            return self.probabilities[index]
        child = self.child_of(node, row)
        if child is not None:
            return self.distribution(row, child)
        sums = [0.0] * len(self.classes)
        for child in node["children"]:
            share = self.nodes[child]["share"]
            sums = [s + share * p for s, p in zip(sums, self.distribution(row, child))]
        return [s / sum(sums) for s in sums]


def write_table(path, names, rows):
    with open(path, "w", newline="") as file:
        csv.writer(file).writerows([names] + rows)


def compare(arbor, folder, names, rows, tree):
    """Returns the greatest difference between two probabilities of a class."""
    write_table(folder + "/rows.csv", names, rows)
    command = [arbor, "classify", folder + "/model", folder + "/rows.csv", "--probability"]
    printed = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    greatest = 0
    for answer, row in zip(csv.reader(printed.splitlines()[1:]), rows):
        expected = tree.distribution(dict(zip(names, row)))
        given = [float(text) for text in answer[len(names) + 1:]]
        assert len(given) == len(expected), answer
        assert answer[len(names)] == tree.classes[given.index(max(given))], answer
        greatest = max([greatest] + [abs(a - b) for a, b in zip(expected, given)])
    return greatest


def main():
    dice = random.Random(1)
    arbor, tables = sys.argv[1], sys.argv[2:]
    for path in tables:
        with open(path, newline="") as file, tempfile.TemporaryDirectory() as folder:
            names, *rows = csv.reader(file)
            holed = [[cell if dice.random() > 0.2 else "?" for cell in row[:-1]] + row[-1:] for row in rows]
            write_table(folder + "/half.csv", names, rows[::4] + holed[2::4])
            grow = [arbor, "grow", folder + "/half.csv", "--min-weight", "1", "--model", folder + "/model"]
            subprocess.run(grow, check=True, capture_output=True)
            show = [arbor, "show", folder + "/model", "--format", "json"]
            tree = Tree(json.loads(subprocess.run(show, check=True, capture_output=True).stdout))
            for these in (rows, holed):
                difference = compare(arbor, folder, names, these, tree)
                print(f"{path}: {len(these)} rows, differences up to {difference:.2g}")
                assert difference < 2e-6, path


if __name__ == "__main__":
    main()
