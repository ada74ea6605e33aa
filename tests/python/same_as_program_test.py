"""The package and the program learn and predict the same from the same table, to the byte."""

import io
import os
import pathlib
import subprocess

import numpy
import pandas
import pytest

import arbor

PROGRAM = os.environ["ARBOR_PROGRAM"]
DATA = pathlib.Path(__file__).resolve().parents[2] / "data"


def program(*arguments):
    done = subprocess.run([PROGRAM, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    return done.returncode, done.stdout, done.stderr


def compare(X, y, folder, kinds=None, weights=None, **options):
    """Grows a tree of a DataFrame and of its file; the model and its predictions must be the same."""
    path = folder / "table.csv"
    table = X.assign(**{y.name: y})
    flags = [flag for name, kind in (kinds or {}).items() for flag in ("--kind", f"{name}={kind}")]
    if weights is not None:
        table["the weights"] = weights
        flags += ["--weights", "the weights", "--class", y.name]
    table.to_csv(path, index=False)
    flags += [flag for name, value in options.items() for flag in ("--" + name.replace("_", "-"), value)]
    code, _, message = program("grow", path, "--model", folder / "model", "--delimiter", ",", *flags)
    classifier = arbor.ArborClassifier(table_name=str(path), kinds=kinds, **options)
    if code != 0:
        with pytest.raises(ValueError):
            classifier.fit(X, y, weights)
            print(message)
        return
    classifier.fit(X, y, weights)
    classifier.save(folder / "own model")
    assert (folder / "own model").read_bytes() == (folder / "model").read_bytes(), message
    code, rows, message = program("classify", folder / "model", path, "--probability", "--delimiter", ",")
    assert code == 0, message
    predicted = pandas.read_csv(io.StringIO(rows), dtype=str, keep_default_na=False).iloc[:, -len(classifier.classes_) - 1:]
    loaded = arbor.load_model(folder / "model")
    assert [*map(str, loaded.predict(X))] == [*predicted.iloc[:, 0]]
    of_program = predicted.iloc[:, 1:].astype(numpy.float32).to_numpy()
    assert (loaded.predict_proba(X).astype(numpy.float32) == of_program).all()
    assert (classifier.predict_proba(X) == loaded.predict_proba(X)).all()


@pytest.mark.parametrize("path", sorted(DATA.glob("*.csv")), ids=lambda path: path.stem)
def test_tables_that_pandas_reads(path, tmp_path):
    table = pandas.read_csv(path, low_memory=False).head(3000)
    last = table.columns[-1]
    table = table[table[last].notna()]
    compare(table.drop(columns=last), table[last], tmp_path)


TEXTS = ["red", "Blue", "zürich", "a,b", 'say "x"', " blank ", "x\ty", "", "?", "NA", "1", "01", "1.50", "-0", "1e5", "nan",
         "inf", "日本", "two\nlines", "<script>", "\x7f", "%", "$5", "True"]


def random_column(random, rows):
    """A column of one of the many types that pandas has, some of its values unknown."""
    scale = 10.0 ** random.integers(-8, 12)
    whole = random.integers(-5, 50, rows) * int(random.choice([1, 1, 7, 1000, 2**31, 2**40]))
    unknown = random.random(rows) < random.choice([0, 0.1])
    texts = random.choice(TEXTS, random.integers(1, 6))
    some = random.choice(texts, rows).astype(object)
    with_none = numpy.where(unknown, None, some)
    floats = numpy.where(unknown, numpy.nan, random.normal(size=rows) * scale)
    rounded = numpy.where(unknown, numpy.nan, numpy.round(random.normal(size=rows) * 100, random.integers(0, 6)))
    extremes = random.choice([0, -1, 2**63 - 1, -2**63, 2**53 + 1, 10**17, 10**17 - 1, 2**31 - 1, -2**31], rows)
    pick = random.integers(0, 21)
    return [
        lambda: whole, lambda: whole.astype(numpy.int8), lambda: abs(whole).astype(numpy.uint64) * 2**20,
        lambda: extremes.astype(numpy.int64), lambda: floats, lambda: floats.astype(numpy.float32), lambda: rounded,
        lambda: rounded.astype(numpy.float32), lambda: rounded.astype(numpy.float16),
        lambda: numpy.where(rounded > 50, -0.0, numpy.where(rounded < 0, 0.0, whole)),
        lambda: numpy.where(rounded > 150, numpy.inf, floats),
        lambda: numpy.where(unknown, numpy.nan, numpy.ldexp(random.normal(size=rows), random.integers(-1074, 900))),
        lambda: unknown, lambda: with_none,
        lambda: numpy.where(random.random(rows) < 0.5, with_none, numpy.array([*map(float, whole)], dtype=object)),
        lambda: pandas.Categorical(with_none, categories=sorted({*texts, "never"})),
        lambda: pandas.Categorical(numpy.where(unknown, None, whole.astype(object))),
        lambda: pandas.Series(whole, dtype="Int64").mask(unknown),
        lambda: pandas.Series(whole > 100, dtype="boolean").mask(unknown),
        lambda: pandas.Series(with_none, dtype="string"),
        lambda: pandas.to_datetime(pandas.Series(whole % 100, dtype="int64"), unit="D").mask(unknown),
    ][pick]()


NAMES = ["plain", "with blank", " padded", "a,b", 'quo"te', "ümlaut", "<b>", "2", "x=y", "|"]


@pytest.mark.parametrize("seed", range(int(os.environ.get("ARBOR_SEEDS", "60"))))
def test_random_tables(seed, tmp_path):
    random = numpy.random.default_rng(seed)
    rows = int(random.choice([1, 2, 30, 400]))
    names = random.permutation(NAMES)[:random.integers(1, 6)]
    X = pandas.DataFrame({name: random_column(random, rows) for name in names})
    y = pandas.Series(random.choice([lambda: random.choice(["a", "b", "ç"], rows), lambda: random.integers(-1, 3, rows),
                                     lambda: random.integers(0, 2, rows).astype(float),
                                     lambda: random.random(rows) < 0.5])(), name="the class")
    weights = random.choice([0, 1, 2.5, 0.1], rows) if seed % 3 == 0 else None
    compare(X, y, tmp_path, kinds={names[0].strip(): "discrete"} if seed % 4 == 0 else None, weights=weights,
            min_weight=float(random.choice([1, 2])), confidence=float(random.choice([0.1, 0.5])))


def test_ratings_are_those_of_the_program(tmp_path):
    table = pandas.read_csv(DATA / "iris.csv")
    code, text, message = program("rate", DATA / "iris.csv", "--format", "csv")
    assert code == 0, message
    of_program = pandas.read_csv(io.StringIO(text), float_precision="round_trip")
    own = arbor.rate(table.iloc[:, :-1], table.iloc[:, -1])
    pandas.testing.assert_frame_equal(own, of_program, check_dtype=False)
