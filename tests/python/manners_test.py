"""The package behaves as scikit-learn's users expect, also where something goes wrong."""

import copy
import decimal
import doctest
import os
import pathlib
import pickle
import re
import signal
import subprocess
import sys
import threading
import time

import joblib
import numpy
import pandas
import pytest
from sklearn.base import clone
from sklearn.exceptions import NotFittedError
from sklearn.model_selection import GridSearchCV, cross_val_score
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import FunctionTransformer
from sklearn.utils.estimator_checks import parametrize_with_checks

import arbor
from arbor import ArborClassifier

ROOT = pathlib.Path(__file__).resolve().parents[2]
GOLF = pandas.read_csv(ROOT / "data/golf.csv")
X, Y = GOLF.drop(columns="play"), GOLF["play"]


@parametrize_with_checks([ArborClassifier()])
def test_scikit_learn(estimator, check):
    check(estimator)


def large_table(rows=300_000):
    random = numpy.random.default_rng(1)
    return random.normal(size=(rows, 8)), random.integers(0, 2, rows)


def same(a, b):
    assert (a.predict_proba(X) == b.predict_proba(X)).all() and (a.classes_ == b.classes_).all()


def test_copies_predict_the_same(tmp_path):
    fitted = ArborClassifier(min_weight=1).fit(X, Y)
    for made in (pickle.loads(pickle.dumps(fitted)), copy.deepcopy(fitted), clone(fitted).fit(X, Y)):
        same(made, fitted)
    joblib.dump(fitted, tmp_path / "dumped")
    same(joblib.load(tmp_path / "dumped"), fitted)
    fitted.save(tmp_path / "ümlaut model")
    same(arbor.load_model(tmp_path / "ümlaut model"), fitted)
    assert pickle.dumps(fitted.tree_._model).count((tmp_path / "ümlaut model").read_bytes()) == 1


def test_tools_of_scikit_learn():
    table = pandas.read_csv(ROOT / "data/housevotes84.csv")
    attributes, party = table.iloc[:, :-1], table.iloc[:, -1]
    assert cross_val_score(ArborClassifier(), attributes, party, cv=3, n_jobs=2).mean() > 0.9
    pipeline = make_pipeline(FunctionTransformer(lambda rows: rows), ArborClassifier())
    search = GridSearchCV(pipeline, {"arborclassifier__min_weight": [2, 200]}, cv=3).fit(attributes, party)
    assert search.best_params_ == {"arborclassifier__min_weight": 2}


def test_columns_are_found_by_name():
    fitted = ArborClassifier(min_weight=1).fit(X, Y)
    expected = fitted.predict_proba(X)
    assert (fitted.predict_proba(GOLF[GOLF.columns[::-1]]) == expected).all()
    assert (fitted.predict_proba(X.to_numpy()) == expected).all()
    assert fitted.feature_names_in_.tolist() == X.columns.tolist()
    assert fitted.feature_importances_.sum() == pytest.approx(1)
    unseen = fitted.predict_proba(X.assign(outlook="hail"))
    assert (unseen == fitted.predict_proba(X.assign(outlook=None))).all()
    categories = X.assign(outlook=pandas.Categorical(X.outlook, ["hail", *X.outlook.unique()]))
    assert (fitted.predict_proba(categories) == expected).all()


def test_arrays_of_any_layout_grow_the_same_tree():
    rows, classes = large_table(20_000)
    classes = classes + (rows[:, 3] > 0.5)
    trees = {ArborClassifier(n_jobs=jobs).fit(made, classes).tree_.to_json()
             for made, jobs in ((rows, 1), (numpy.asfortranarray(rows), 3), (rows[:, ::-1][:, ::-1], -1),
                                (rows.astype(">f8"), -2), (rows.astype(object), None))}
    assert len(trees) == 1
    predicted = {tuple(ArborClassifier(n_jobs=jobs).fit(rows, classes).predict_proba(rows).ravel()) for jobs in (1, 3)}
    assert len(predicted) == 1


@pytest.mark.parametrize("labels", [
    numpy.array([3, 5], "uint8"), numpy.array([-2**62, -2**62 + 1]), numpy.array([2**63, 2**63 + 1], "uint64"),
    numpy.array([False, True]), numpy.array(["no", "yes"]), numpy.array([0.0, 2.0]), numpy.array([1, 2], object),
    pandas.array([1, 2], "Int64"), pandas.array([False, True], "boolean"), pandas.array(["no", "yes"], "string"),
    pandas.Categorical([7, 9])], ids=lambda labels: f"{type(labels).__name__}-{labels.dtype}")
def test_classes_come_back_as_they_were(labels, tmp_path):
    numbers = numpy.array([[0], [1]] * 7)
    classes = labels[numbers[:, 0]]
    fitted = ArborClassifier().fit(numbers, classes)
    assert fitted.classes_.tolist() == [*labels] and fitted.score(numbers, classes) == 1
    fitted.save(tmp_path / "model")
    for made in (pickle.loads(pickle.dumps(fitted)), arbor.load_model(tmp_path / "model")):
        assert (made.predict(numbers) == fitted.predict(numbers)).all() and made.score(numbers, classes) == 1


def test_unknown_values_of_any_kind():
    hidden = numpy.ma.MaskedArray([[1], [2]] * 7, mask=[[True], [False]] * 7)
    for unknown in (None, pandas.NA, pandas.NaT, numpy.float32("nan"), decimal.Decimal("nan"), "", " ? "):
        table = numpy.array([[unknown], [2]] * 7, object)
        assert arbor.rate(table, Y).unknown.tolist() == [0.5]
    assert arbor.rate(hidden, Y).unknown.tolist() == [0.5]


def refusal(error, *arguments, **options):
    with pytest.raises(error) as caught:
        ArborClassifier(**options).fit(*arguments)
    return str(caught.value)


def test_refusals_name_the_column():
    number = X.assign(outlook=1)
    surrogate = pandas.Categorical.from_codes([0] * 14, ["a\ud800"])
    for message, found in {
        '"outlook"': refusal(ValueError, X, Y, kinds={"outlook": "continuous"}),
        'did you mean "outlook"?': refusal(ValueError, X, Y, kinds={"outlok": "ignore"}),
        "kinds: ": refusal(ValueError, X, Y, kinds={"outlook": "strange"}),
        'row 3: column "play": the unknown value': refusal(ValueError, X, Y.mask(Y.index == 3)),
        "zero byte": refusal(ValueError, X.assign(windy="a\0b"), Y),
        'column "windy", row 0: argument must be a string or a number': refusal(TypeError, X.assign(windy=[[]] * 14), Y),
        'column "windy", row 0: a text has a surrogate': refusal(ValueError, X.assign(windy="\ud800"), Y),
        "column 'windy': 'a\\ud800' has": refusal(ValueError, X.assign(windy=surrogate), Y),
        "name of a column: '\\ud800'": refusal(ValueError, X.rename(columns={"windy": "\ud800"}), Y),
        '"1" and "01" would be one': refusal(ValueError, X, ["1", "01"] * 7),
        "the unknown value": refusal(ValueError, X, numpy.ma.MaskedArray([0, 1] * 7, mask=[False, True] * 7)),
        "no order: 1, 'a'": refusal(ValueError, X, numpy.array([1, "a"] * 7, object)),
        "two columns have the name": refusal(ValueError, pandas.concat([number, number["windy"]], axis=1), Y),
        "negative weight": refusal(ValueError, X, Y, -numpy.ones(14)),
        "every row has the weight 0": refusal(ValueError, X, Y, numpy.zeros(14)),
        "not a finite number above 0": refusal(ValueError, X, Y, numpy.full(14, 1e39)),
        "are equal": refusal(ValueError, X, [*range(2**62, 2**62 + 13), 0]),
    }.items():
        assert message in found
    wrong = {"max_depth": [-1, 1.5, "a"], "min_weight": [float("nan"), None], "confidence": [0, "a"], "n_jobs": [0, 1.5],
             "prune": ["no"], "kinds": ["a", {"windy": 3}], "table_name": ["\ud800"]}
    for name, values in wrong.items():
        assert all(refusal(ValueError, X, Y, **{name: value}).startswith(name + ": ") for value in values)
    with pytest.raises(ValueError, match="lacks columns that fit had: 'windy'"):
        ArborClassifier().fit(X, Y).predict(X.drop(columns="windy"))
    with pytest.raises(NotFittedError):
        ArborClassifier().predict(X)


def test_hostile_files_and_names(tmp_path):
    hostile = X.rename(columns={"outlook": "<script>alert(1)</script>"})
    fitted = ArborClassifier(min_weight=1).fit(hostile, Y.replace("no", "</ul><img src=x>"))
    page = fitted.tree_._repr_html_()
    assert "<script" not in page and "<img" not in page and page.count("<details") == page.count("</details>") > 1
    fitted.save(tmp_path / "model")
    saved = (tmp_path / "model").read_bytes()
    (tmp_path / "model").write_bytes(saved[:-1])
    with pytest.raises(ValueError, match="model: damaged"):
        arbor.load_model(tmp_path / "model")
    table = pandas.DataFrame({"caf\udce9": ["\udce4", "b"] * 9, "class": ["\udcf6", "d"] * 9})  # of Latin-1
    ArborClassifier().fit(table[["caf\udce9"]], table["class"]).save(tmp_path / "model")
    loaded = arbor.load_model(tmp_path / "model")
    assert loaded.predict(table).tolist() == table["class"].tolist() and "\\xE4" in loaded.tree_.text()
    (tmp_path / "model").write_text("a table")
    with pytest.raises(ValueError, match="not a model"):
        arbor.load_model(tmp_path / "model")
    with pytest.raises(FileNotFoundError):
        arbor.load_model(tmp_path / "none")
    with pytest.raises(OSError, match="nowhere"):
        fitted.save(tmp_path / "nowhere" / "model")


def test_other_threads_go_on():
    rows, classes = large_table()
    beats, done = [], threading.Event()

    def beat():
        while not done.wait(0.01):
            beats.append(time.perf_counter())

    thread = threading.Thread(target=beat)
    thread.start()
    fitted = ArborClassifier(prune=False).fit(rows, classes)
    fitted.predict(rows)
    done.set()
    thread.join()
    assert max(b - a for a, b in zip(beats, beats[1:])) < 0.5


def test_process_ends_while_a_daemon_fits():
    code = ("import threading, numpy, arbor; rows = numpy.random.default_rng(1).normal(size=(200_000, 8))\n"
            "def fit(): arbor.ArborClassifier(prune=False).fit(rows, rows[:, 0] > rows[:, 1]); fit()\n"
            "threading.Thread(target=fit, daemon=True).start(); import time; time.sleep(0.1)")
    done = subprocess.run([sys.executable, "-c", code], stderr=subprocess.PIPE, text=True)
    assert (done.returncode, done.stderr) == (0, "")


def test_interrupt_ends_a_fit():
    rows, classes = large_table()
    fitted = ArborClassifier(prune=False).fit(rows[:100], classes[:100])
    before = dict(vars(fitted))
    sent = []

    def interrupt():
        sent.append(time.perf_counter())
        os.kill(os.getpid(), signal.SIGINT)

    timer = threading.Timer(0.3, interrupt)
    timer.start()
    with pytest.raises(KeyboardInterrupt):
        while True:
            ArborClassifier.fit(fitted, rows, classes)
            before = dict(vars(fitted))
    taken = time.perf_counter() - sent[0]
    timer.join()
    assert taken < 1  # a fifth of that where nothing else runs
    assert vars(fitted) == before


def test_numbers_have_a_point_in_any_locale():
    # Of its own, since a locale is the process's.
    code = ("import locale, numpy, arbor; locale.setlocale(locale.LC_NUMERIC, '{}');"
            "print(arbor.ArborClassifier().fit([[.5], [1.5]] * 50, [0, 1] * 50).tree_.to_json())")
    names = subprocess.run(["locale", "-a"], stdout=subprocess.PIPE, text=True).stdout.split()
    with_comma = next((name for name in names if re.match("(de|fr)_", name)), None)
    if with_comma is None:
        pytest.skip("there is no locale with a comma")
    shown = {subprocess.run([sys.executable, "-c", code.format(name)], stdout=subprocess.PIPE, check=True).stdout
             for name in ("C", with_comma)}
    assert len(shown) == 1


def test_memory_stays_the_same():
    rows, classes = large_table(5_000)
    table = pandas.DataFrame(rows).assign(text=numpy.where(classes, "änderung", "b").astype(object))

    def work(times):
        for _ in range(times):
            fitted = ArborClassifier().fit(table, classes)
            fitted.predict_proba(table)
            pickle.loads(pickle.dumps(fitted))
        with open("/proc/self/statm") as memory:
            return int(memory.read().split()[1]) * 4096

    before = work(20)
    assert work(40) - before < 4e6


def test_examples_of_the_documentation(monkeypatch):
    monkeypatch.chdir(ROOT)
    names = {"pandas": pandas, "arbor": arbor, "ArborClassifier": ArborClassifier,
             "classifier": ArborClassifier().fit(X, Y)}
    modules = [arbor, arbor._classifier, arbor._rating, arbor._tree]
    for module in modules:
        assert doctest.testmod(module, extraglobs=names).failed == 0
    if (ROOT / "docs/python.md").exists():
        assert doctest.testfile(str(ROOT / "docs/python.md"), module_relative=False).failed == 0
