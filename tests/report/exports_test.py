"""Runs the exports of trees, and compares their predictions with those of the program.

usage: exports_test.py ARBOR DATA DOCS

Trees are grown on tables with unknown values, numbers of each type and hostile names. The rows to
classify have values at thresholds and next to them, values that are unknown and values that are new.
"""

import csv
import ctypes
import decimal
import json
import math
import random
import re
import sqlite3
import struct
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml

ARBOR, DATA, DOCS = sys.argv[1:]
DICE = random.Random(1)
HOSTILE = ["plain", "two words", "'", '"', "\\", "*/", "/*", '"""', "'''", "]]>", "--", "??/", "a\nb", "<&>", "%d{}@",
           "\u202e", "Z\u00fcrich", "\U0001f333", "'; DROP", "$(id)", "-1e", "nan", "\\n", "int", "a\tb"]


def run(*command):
    return subprocess.run(command, check=True, capture_output=True).stdout


def write(path, names, rows):
    with open(path, "w", newline="", encoding="utf-8", errors="surrogateescape") as file:
        csv.writer(file).writerows([names] + rows)


def read(path):
    with open(path, newline="", encoding="utf-8") as file:
        return list(csv.reader(file))


def single(number):
    try:
        return struct.unpack("f", struct.pack("f", number))[0]
    except OverflowError:
        return math.copysign(math.inf, number)


class Python:
    def __init__(self, source):
        self.module = {}
        exec(compile(source, "export", "exec"), self.module)
        self.attributes = [(name, reader.__name__) for name, reader, _ in self.module["_ATTRIBUTES"]]
        self.classes = self.module["CLASSES"]

    def __call__(self, case):
        return self.module["predict"](case)


class C:
    """The shared library of an export, which is called as its head says."""

    def __init__(self, folder, source, like):
        path = folder + "/export.c"
        with open(path, "wb") as file:
            file.write(source)
        warnings = ["-O1", "-Wall", "-Wextra", "-Wpedantic", "-Werror", path]
        run("g++", "-fsyntax-only", "-x", "c++", *warnings)
        library = tempfile.mktemp(".so", dir=folder)
        run("gcc", "-std=c99", "-shared", "-fPIC", "-o", library, *warnings)
        name, classes, nodes = re.search(r"(\w+)_class_count = (\d+), \w+_node_count = (\d+)", source.decode()).groups()
        self.like, self.classes = like, int(classes)
        self.work = ctypes.create_string_buffer(16 * int(nodes))
        self.predict = getattr(ctypes.CDLL(library), "predict_" + name)
        self.case = type("Case", (ctypes.Structure,), {"_fields_": [
            (f"a{i}", ctypes.c_char_p if reader == "str" else ctypes.c_double)
            for i, (_, reader) in enumerate(like.attributes)]})

    def value(self, text, reader):
        if reader == "str":
            return None if text is None else text.encode("utf-8", "surrogateescape")
        return math.nan if text is None else as_double(text)

    def __call__(self, case):
        values = self.case(*[self.value(case[name], reader) for name, reader in self.like.attributes])
        probabilities = (ctypes.c_double * self.classes)()
        predicted = self.predict(ctypes.byref(values), probabilities, self.work)
        return self.like.classes[predicted], list(probabilities)


def as_double(text):
    try:
        return float(text)
    except ValueError:
        return math.nan


class Pmml:
    """Applies a TreeModel by the rules of PMML 4.4 for missing values and their weighted confidence."""

    def __init__(self, document):
        self.root = xml.fromstring(document)
        for element in self.root.iter():
            element.tag = element.tag.split("}")[1]
        model = self.root.find("TreeModel")
        assert model.get("missingValueStrategy") == "weightedConfidence"
        assert model.get("noTrueChildStrategy") == "returnLastPrediction"
        self.tree = model.find("Node")
        self.types = {}
        for field in self.root.find("DataDictionary"):
            values = [value.get("value") for value in field]
            read_value = {"string": str, "double": as_double, "float": lambda t: single(as_double(t))}[field.get("dataType")]
            self.types[field.get("name")] = read_value, {read_value(value) for value in values}
        mining = [field.get("name") for field in model.find("MiningSchema")]
        assert mining == [field.get("name") for field in self.root.find("DataDictionary")]

    def value(self, case, name):
        read_value, valid = self.types[name]
        value = None if case[name] is None else read_value(case[name])
        return None if value != value or (valid and value not in valid) else value

    def truth(self, node, case):
        predicate = node.find("SimplePredicate")
        name = predicate.get("field")
        value, limit = self.value(case, name), self.types[name][0](predicate.get("value"))
        if value is None:
            return None
        operator = predicate.get("operator")
        return value == limit if operator == "equal" else (value <= limit) == (operator == "lessOrEqual")

    def __call__(self, case):
        """Returns the class and its confidence; None if a value is new to a test."""
        sums, nodes = {}, [(self.tree, 1.0)]
        for node, weight in nodes:
            children = node.findall("Node")
            if not children:
                for score in node.findall("ScoreDistribution"):
                    sums[score.get("value")] = sums.get(score.get("value"), 0) + weight * float(score.get("confidence"))
                continue
            truths = [self.truth(child, case) for child in children]
            if True in truths:
                nodes.append((children[truths.index(True)], weight))
            elif None in truths:
                total = sum(float(child.get("recordCount")) for child in children)
                nodes += [(child, weight * float(child.get("recordCount")) / total) for child in children]
            else:
                return None
        return max(sums, key=sums.get), max(sums.values())


def predictions_in_sql(expression, attributes, cases):
    def value(text, reader):
        if text is None or reader == "str":
            return text
        return int(text) if re.fullmatch("-?[0-9]{1,18}", text) else as_double(text)

    table = sqlite3.connect(":memory:")
    columns = ", ".join('"' + name.replace('"', '""') + '"' for name, _ in attributes)
    table.execute(f"CREATE TABLE cases ({columns})")
    marks = ", ".join("?" * len(attributes))
    table.executemany(f"INSERT INTO cases VALUES ({marks})",
                      [[value(case[name], reader) for name, reader in attributes] for case in cases])
    return [row[0] for row in table.execute(f"SELECT {expression} FROM cases ORDER BY rowid")]


def next_to(threshold, kind):
    """Texts of numbers at a threshold and near it."""
    if kind == "_exact_number":
        number = decimal.Decimal(threshold)
        steps = ("-1", "1") + (("-.001", "0.001") if len(threshold) < 12 else ())  # C and SQL have doubles
        return [threshold] + [str(number + decimal.Decimal(step)) for step in steps]
    number = float(threshold)
    bits = struct.unpack("i", struct.pack("f", number))[0]
    other = struct.unpack("f", struct.pack("i", bits + 1))[0]
    middle = (single(number) + other) / 2
    return [threshold] + [repr(x) for x in (other, middle, math.nextafter(middle, -math.inf) if hasattr(math, "nextafter")
                                            else middle, math.nextafter(middle, math.inf), 1e39, -1e39)]


def cases_of(rows, names, attributes, thresholds):
    """The rows; the same with unknown and new values; and with numbers near thresholds."""
    cases = [dict(zip(names, row)) for row in rows]
    for row in rows:
        case = dict(zip(names, row))
        for name, _ in attributes:
            if DICE.random() < 0.25:
                case[name] = DICE.choice(["", "", "new"])
        cases.append(case)
    for name, threshold in thresholds:
        for text in next_to(threshold, dict(attributes)[name]):
            cases.append({**dict(zip(names, DICE.choice(rows))), name: text})
    return cases


def compare(folder, name, names, rows, *options, sql=True, most_cases=150):
    """Compares all exports of a tree that half of the rows grow."""
    write(folder + "/half.csv", names, rows[::2])
    model = folder + "/model"
    run(ARBOR, "grow", folder + "/half.csv", "--model", model, "--force", *options)
    exported = {form: run(ARBOR, "show", model, "--format", form)
                for form in ("rules", "c", "python") + (("sql", "pmml") if sql else ())}
    tree = json.loads(run(ARBOR, "show", model, "--format", "json"))
    assert exported["rules"].count(b"\nif ") >= sum("children" not in node for node in tree["nodes"])
    python = Python(exported["python"])
    thresholds = sorted({(node["attribute"], node["threshold"]) for node in tree["nodes"] if "threshold" in node})
    cases = cases_of(rows, names, python.attributes, thresholds)
    cases = DICE.sample(cases, min(len(cases), most_cases))
    write(folder + "/rows.csv", names, [[case[n] for n in names] for case in cases])
    run(ARBOR, "classify", model, folder + "/rows.csv", "--probability", "--output", folder + "/out.csv", "--force")
    with open(folder + "/out.csv", newline="", encoding="utf-8", errors="surrogateescape") as file:
        answers = [row[len(names):] for row in csv.reader(file)][1:]
    assert len(answers) == len(cases)
    for case in cases:
        case.update({n: None for n, _ in python.attributes if case[n] in ("", "?")})
    c = C(folder, exported["c"], python)
    sql_answers = predictions_in_sql(exported["sql"].decode(), python.attributes, cases) if sql else None
    pmml = Pmml(exported["pmml"]) if sql else None
    applied = 0
    for i, (case, (expected, *texts)) in enumerate(zip(cases, answers)):
        predicted, probabilities = python(case)
        place = f"{name}: row {i}: {case}"
        assert predicted == expected, place
        assert [single(p) for p in probabilities] == [single(float(t)) for t in texts], place
        assert c(case) == (predicted, probabilities), place
        first, second = sorted(probabilities)[:-3:-1] if len(probabilities) > 1 else (1, 0)
        if sql and first - second > 1e-9:
            assert sql_answers[i] == expected, (place, sql_answers[i])
            answer = pmml(case)
            if answer is not None and first - second > 1e-5:
                assert answer[0] == expected and abs(answer[1] - first) < 1e-5, (place, answer)
                applied += 1
    print(f"{name}: {len(tree['nodes'])} nodes, {len(cases)} cases, {applied} of them in PMML")
    assert not sql or applied > len(cases) / 5


def number_table():
    """Numbers of each type that are compared: integers, decimals, identifiers, floats; some are texts to a test."""
    names = ["whole", "money", "id", "float", "small", "few", "class"]
    rows = []
    for _ in range(400):
        whole, few = DICE.randrange(-50, 50), DICE.choice(["-inf", "1e-40", "2e-40", "2"])
        floating = DICE.uniform(-1, 1) * 10 ** DICE.randrange(-30, 30)
        money = f"{DICE.randrange(10 ** 6) / 100:.2f}"
        number = DICE.randrange(9007199254740000, 9007199254749999)
        kind = (whole > 7) + 2 * (floating > 1e-3) + (float(money) > 5000) * (few == "2") + (number % 10000 > 4000)
        rows.append([str(whole), money, str(number), repr(floating), repr(DICE.random() / 7), few, f"k{kind}"])
    return names, rows


def hostile_table(values):
    names = ["int", "a\"b", "NULL", "a b", "a_b", "9*/", "'\"\"\"\n\\", "Z\u00fcrich??/", "]]>--%1", "c*/ \u202e"]
    rows = []
    for _ in range(600):
        row = [DICE.choice(values[i % 5::5]) for i in range(len(names) - 1)]
        kind = sum(map(len, row[:3])) % 5 + (row[3] > row[8])
        rows.append(row + [values[kind]])
    return names, rows


def identity_table(size):
    """A tree as deep as the table is wide."""
    rows = [[str(int(i == j)) for j in range(size)] + [f"c{i % 7}"] for i in range(size)]
    return [f"a{j}" for j in range(size)] + ["c"], [row for row in rows for _ in range(2)]


def members(document):
    """The names of all members, at any depth."""
    if isinstance(document, list):
        return set().union(*map(members, document))
    return set(document).union(*map(members, document.values())) if isinstance(document, dict) else set()


def check_documents(folder):
    """What docs/exports.md prints is what is exported, and docs/json.md names the members that there are."""
    model = folder + "/golf.model"
    subprocess.run([ARBOR, "grow", "golf.csv", "--model", model], cwd=DATA, check=True, capture_output=True)
    with open(DOCS + "/exports.md", encoding="utf-8") as file:
        exports = file.read()
    for language, form in (("text", "rules"), ("sql", "sql")):
        block = re.search(f"```{language}\n(.*?)```", exports, re.DOTALL).group(1)
        assert run(ARBOR, "show", model, "--format", form).decode().startswith(block), form
    example = Python(run(ARBOR, "show", model, "--format", "python")).module["predict"]
    assert repr(example({"outlook": "sunny", "humidity": 80, "windy": None})) in exports
    with open(DOCS + "/json.md", encoding="utf-8") as file:
        sections = file.read().split("\n## ")
    common, *described = [set(re.findall("^\\| `(\\w+)` \\|", section, re.MULTILINE)) for section in sections]
    commands = (["show", model], ["rate", DATA + "/golf.csv"], ["validate", DATA + "/golf.csv", "--importance"])
    for command, names in zip(commands, described):
        document = json.loads(run(ARBOR, *command, "--format", "json"))
        assert list(document)[:2] == ["format", "version"]
        assert members(document) - {"format", "version"} == names - {"class_weights"}, command
    assert common == {"format", "version", "long_texts"}


def main():
    with tempfile.TemporaryDirectory() as folder:
        check_documents(folder)
        for name in ("golf", "housevotes84", "pima2", "soybean"):
            names, *rows = read(f"{DATA}/{name}.csv")
            compare(folder, name, names, rows, "--no-pruning", "--min-weight", "1")
        names, rows = number_table()
        kinds = ["--kind", "few=discrete", "--type", "float=float", "--type"]
        compare(folder, "numbers", names, rows, "--no-pruning", "--min-weight", "1", *kinds, "few=float")
        compare(folder, "codes", names, rows, "--no-pruning", "--min-weight", "1", *kinds, "few=double", "--type",
                "small=float", "--kind", "small=discrete", "--kind", "whole=discrete", "--kind", "money=discrete")
        compare(folder, "hostile", *hostile_table(HOSTILE), "--no-pruning", "--min-weight", "1")
        compare(folder, "long", *hostile_table(HOSTILE[:9] + [text * 5000 for text in "abcd\u00e9"] + ["\udcff?\udc80", "\x01"]),
                "--no-pruning", "--min-weight", "1", sql=False)
        compare(folder, "deep", *identity_table(60), "--no-pruning", "--min-weight", "1")
        compare(folder, "leaf", ["a", "c"], [["1", "x"]] * 5, sql=False)


if __name__ == "__main__":
    main()
