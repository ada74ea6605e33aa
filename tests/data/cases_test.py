"""Loads the files of this folder, and compares with what cases.txt says of them.

usage: cases_test.py ARBOR

Each file is loaded twice: as it is, for the kinds and data types, and with all attributes discrete,
which shows the values of numbers exactly.
"""

import csv
import json
import os
import shlex
import subprocess
import sys
import tempfile
from decimal import Decimal


def loaded(arguments, types):
    """Returns the number of rows, that of unknown cells, and the lines of --save-types."""
    run = subprocess.run(arguments + ["--format", "json", "--save-types", types, "--force"],
                         capture_output=True, text=True)
    assert run.returncode == 0, run.stderr
    table = json.loads(run.stdout)["table"]
    with open(types, encoding="utf-8", newline="") as file:
        lines = list(csv.reader(file))
    return table["rows"], table["unknown_cells"], [c for c in lines[1:] if c[1] != "ignore"]


def same(value, expected, is_text):
    return value == expected if is_text else Decimal(value) == Decimal(expected)


def check(arbor, types, words, rows, unknown, expected):
    counts_and_columns = loaded([arbor, "rate"] + words, types)
    assert counts_and_columns[:2] == (rows, unknown), counts_and_columns
    kinds = [column[:3] for column in counts_and_columns[2]]
    assert kinds == [column[:3] for column in expected], kinds
    for name, kind, _ in kinds:
        if kind != "class":
            words = words + ["--kind", name + "=discrete"]
    for column, meant in zip(loaded([arbor, "rate"] + words, types)[2], expected):
        assert len(column) == len(meant), column
        is_text = meant[2] == "string"
        assert all(same(v, e, is_text) for v, e in zip(column[3:], meant[3:])), column


def main():
    arbor = os.path.abspath(sys.argv[1])
    os.chdir(os.path.dirname(os.path.abspath(__file__)))
    with open("cases.txt", encoding="utf-8", newline="") as file:
        lines = [line for line in file.read().splitlines() if line and line[0] != "#"]
    meant = {column[0]: column[1:] for column in csv.reader(l for l in lines if " => " not in l)}
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        for line in (line for line in lines if " => " in line):
            words, result = line.split(" => ")
            rows, unknown, columns = result.split(" ", 2)
            expected = []
            for column in columns.split(","):
                name, _, key = column.rpartition("=")
                expected.append([name or key.split("/")[0]] + meant[key])
            try:
                check(arbor, folder + "/types", shlex.split(words), int(rows), int(unknown), expected)
            except AssertionError as error:
                failures += 1
                print(words, error, sep=": ")
    sys.exit(failures > 0)


main()
