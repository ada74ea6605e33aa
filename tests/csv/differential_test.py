"""Compares what the program reads from seeded random files with Python's csv and decimal modules.

usage: differential_test.py ARBOR [SEEDS [FIRST_SEED]]

Every file has a random table in a random shape. The program has to find the same cells in it, the
same data types, and the same values in the same order.
"""

import csv
import gzip
import io
import json
import math
import random
import re
import struct
import subprocess
import sys
import tempfile
from decimal import Decimal
from fractions import Fraction

PARTS = ["a", "B", " ", "  ", ",", ";", "|", "\t", '"', '""', "\n", "\r\n", "\n\n", "#", "é", "漢", "'",
         "1", ".5", "-", "%", "\\", "x=y", "NA", "nan"]


def known_texts(dice):
    """Returns texts that are unlike numbers and unknown values."""
    texts = ["".join(dice.choices(PARTS, k=dice.randint(1, 4))) for _ in range(6)] + ["yes", dice.choice(["no", ""])]
    return [t for t in texts if t not in ("?", "NA") and all(number(t.strip(), m) is None for m in ".,")]


def decimals(dice, places, least, greatest):
    return [str(Decimal(dice.randint(least, greatest)).scaleb(-places)) for _ in range(8)]


RANGES = [(0, -50, 50), (0, -2 ** 31 + 1, 2 ** 31 - 1), (0, 0, 2 ** 32 - 1), (0, 2 ** 63 - 400, 2 ** 63),
          (0, -2 ** 63, 2 ** 64), (0, 1699999200123, 1703999200123), (2, -50, 123456789), (7, -1800000000, 1800000000)]
MAKERS = [lambda d: decimals(d, *d.choice(RANGES))] * 5 + [
    lambda d: [str(s * 2 ** 31 + d.randint(-2, 2)) for s in (-1, 1, 2, 0)],
    lambda d: [f"{d.randint(-99, 99)}{d.choice(['', '.5', '.250'])}{d.choice('eE')}"
               f"{d.choice(['', '+', '-'])}{d.randint(0, d.choice([3, 30]))}" for _ in range(6)],
    lambda d: [d.choice(["", "+", "-"]) + d.choice(["0", "00", ""]) + str(d.randint(1, 12))
               + d.choice(["", ".", ".0", ".500"]) for _ in range(7)] + ["0", "-0", "0.0"],
    lambda d: [str(d.randint(0, 9)) + "." + str(d.getrandbits(d.randint(1, 110))) for _ in range(3)],
    lambda d: [str(Decimal(d.randint(-99999, 99999)).scaleb(-3))],
    lambda d: known_texts(d)[:2] + decimals(d, 1, 0, 90) + ["07", "7.0", "7"],
    known_texts,
    lambda d: []]


def number(text, mark):
    """Returns the number that a text is, None if it is none."""
    if mark == ",":
        whole = re.fullmatch(r"([+-]?)(\d{1,3}(?:\.\d{3})+|\d*)((?:,\d*)?(?:[eE][+-]?\d+)?)", text)
        text = whole[1] + whole[2].replace(".", "") + whole[3].replace(",", ".") if whole else ""
    return Decimal(text) if re.fullmatch(r"[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?", text) else None


def as_float(value):
    return struct.unpack("f", struct.pack("f", float(value)))[0]


def data_type(numbers, texts):
    low, high = min(numbers), max(numbers)
    if all(re.fullmatch(r"[+-]?\d+", t) for t in texts):
        if -2 ** 31 < low and high < 2 ** 31:
            return "integer"
        if low >= 0 and high < 2 ** 32 and not any(t.startswith("-") for t in texts):
            return "uinteger"
    fractions = [Fraction(n) for n in numbers]
    scale = math.lcm(*(f.denominator for f in fractions))
    places = max(0, *(-n.normalize().as_tuple().exponent for n in numbers))
    step = math.gcd(*(int((f - fractions[0]) * scale) for f in fractions))
    fits = (high - low) * scale <= (2 ** 32 - 1) * max(step, 1)
    return "decimal" if fits and max(-low, high).scaleb(places) < Decimal(10) ** 37 else "float"


def meant(texts, mark):
    """Returns kind, data type and sorted values of a column with these known texts."""
    if not texts:
        return "ignore", "", []
    numbers = [number(t, mark) for t in texts]
    if None in numbers:
        return "discrete", "string", sorted(set(texts), key=str.encode)
    kind = data_type(set(numbers), [t.replace(".", "") if mark == "," else t for t in texts])
    return "continuous", kind, sorted(set(map(as_float, numbers) if kind == "float" else numbers))


def localized(dice, text):
    """Writes a number with a decimal comma, perhaps with points between its thousands."""
    value = number(text, ".")
    if value is None:
        return text
    if "e" not in text.lower() and dice.random() < 0.3:
        text = f"{value:,}"
    return text.translate({ord("."): ",", ord(","): "."})


class Case:
    def __init__(self, dice, folder):
        self.mark = dice.choice("..,")
        self.delimiter = dice.choice(",;\t|")
        self.options = dice.choice([[], ["--delimiter", self.delimiter.replace("\t", "tab")]])
        self.options = self.options + (["--decimal", ","] if self.mark == "," else [])
        unknown = dice.choice([["?", ""], ["NA"], ["NA", ""]])
        self.options += [o for u in unknown for o in ("--unknown", u)] if "NA" in unknown else []
        pools = [dice.choice(MAKERS)(dice) for _ in range(dice.randint(1, 6))]
        if self.mark == ",":
            pools = [[localized(dice, text) for text in pool] for pool in pools]
        holes = dice.choice([0, 0.2])
        self.rows = [[dice.choice(p) if p and dice.random() >= holes else None for p in pools]
                     + [dice.choice("xyz")] for _ in range(dice.randint(2, 30))]
        self.names = dice.sample(["a", "b c", "d;e", 'f"g', "h,i", "ö", "k"], len(pools)) + ["class"]
        self.shown = [[dice.choice(unknown) if c is None else c for c in row] for row in self.rows]
        self.write(dice, folder)

    def write(self, dice, folder):
        """Writes the table plainly for Python's csv module, and with all that is skipped for the program."""
        end = dice.choice(["\n", "\r\n"])
        padded, comments, empty_lines = (dice.random() < 0.3 for _ in range(3))
        self.options += ["--comment", "#"] if comments else []
        quoted_share = dice.choice([0, 0.1, 1])

        def line(cells, row, blanks):
            result = []
            for text, value in zip(cells, row):
                if value is not None and (dice.random() < quoted_share or not text or self.delimiter in text
                                          or re.search(r'[\s"#]', text)):
                    text = '"' + text.replace('"', '""') + '"'
                result.append(dice.choice(blanks) + text + dice.choice(blanks))
            return self.delimiter.join(result) + end

        def lines(first, last, decorated):
            blanks = ["", " ", "  "] if decorated and padded else [""]
            yield line(self.names, self.names, blanks)
            for cells, row in zip(self.shown[first:last], self.rows[first:last]):
                yield dice.choice(["# ,;\"" + end, ""]) if decorated and comments else ""
                yield dice.choice([end, ""]) if decorated and empty_lines else ""
                yield line(cells, row, blanks)

        plain = io.StringIO("".join(lines(0, len(self.rows), False)), newline="")
        assert list(csv.reader(plain, delimiter=self.delimiter, strict=True)) == [self.names] + self.shown
        cuts = [0] + dice.sample(range(1, len(self.rows)), dice.choice([0, 0, 1])) + [len(self.rows)]
        self.paths = []
        for first, last in zip(cuts, cuts[1:]):
            text = dice.choice(["", "", "\ufeff"]) + "".join(lines(first, last, True))
            self.paths.append(f"{folder}/{first}.csv")
            with dice.choice([open, open, gzip.open])(self.paths[-1], "wb") as file:
                file.write(text[:-len(end) if dice.random() < 0.2 else None].encode())

    def check(self, arbor, folder):
        def run(*words):
            done = subprocess.run([arbor, *words, *self.options], capture_output=True)
            assert done.returncode == 0, done.stderr.decode()
            return done.stdout.decode()

        def load(*kinds):
            types = folder + "/types"
            report = json.loads(run("rate", *self.paths, "--format", "json", "--save-types", types, "--force", *kinds))
            with open(types, encoding="utf-8", newline="") as file:
                return report["table"], list(csv.reader(file))[1:]

        table, columns = load()
        assert table["rows"] == len(self.rows), table
        assert table["unknown_cells"] == sum(row.count(None) for row in self.rows), table
        expected = [meant([t for t in texts if t is not None], self.mark) for texts in zip(*self.rows)]
        expected[-1] = ("class",) + expected[-1][1:]
        assert len(columns) == len(expected), columns
        for column, name, wanted in zip(columns, self.names, expected):
            assert column[:3] == [name, *wanted[:2]], (column, name, wanted)
        discrete = [o for n, e in zip(self.names, expected) if e[1] and e[0] != "class"
                    for o in ("--kind", n + "=discrete")]
        for (name, _, kind, *values), (_, _, wanted) in zip(load(*discrete)[1], expected):
            read = {"string": str, "float": as_float}.get(kind, Decimal)
            assert [read(v) for v in values] == wanted, (name, kind, values, wanted)
        rows = io.StringIO(run("classify", folder + "/model", *self.paths), newline="")
        lines = list(csv.reader(rows, delimiter=self.delimiter, strict=True))
        assert [r[:-2] for r in lines] == [self.names] + self.shown, lines


def main():
    arbor, failed = sys.argv[1], 0
    seeds, first = map(int, sys.argv[2:] + ["40", "0"][len(sys.argv) - 2:])
    with tempfile.TemporaryDirectory() as folder:
        # A tree without tests classifies any table.
        subprocess.run([arbor, "grow", "-", "--model", folder + "/model"], check=True, capture_output=True,
                       input=b"none,class\n,x\n,x\n,y\n,z\n")
        for seed in range(first, first + seeds):
            case = Case(random.Random(seed), folder)
            try:
                case.check(arbor, folder)
            except AssertionError as error:
                failed += 1
                print(f"seed {seed}, {case.paths} {case.options}: {error}")
    sys.exit(failed > 0)


main()
