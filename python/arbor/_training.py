"""What fit and rate have in common: X, y and the weights become the columns of a table."""

import numbers
import os
from collections.abc import Mapping

import numpy
import pandas
from sklearn.utils import check_consistent_length, column_or_1d
from sklearn.utils.validation import _check_sample_weight

from . import _columns, _core


MOST_THREADS = 1024  # a greater number is a mistake, not a machine


class TrainingTable:
    """A table to learn from, of the rows that weigh something.

    columns : _core.Columns, the class last
    names : list of str, of the attributes
    weights : None or array of float32
    """

    def __init__(self, X, y, sample_weight):
        X = _columns.read_table(X)
        y = read_classes(y)
        check_consistent_length(X, y)
        self.weights = None
        if sample_weight is not None:
            X, y = self._weigh(X, y, sample_weight)
        self.attributes, self.classes = X, y
        self.names = _columns.column_names(X)
        class_name = _columns.file_name(getattr(y, "name", None) or "class")
        while class_name in self.names:
            class_name += "_"
        self.columns = _core.Columns()
        for place, name in enumerate(self.names):
            _columns.add_column(self.columns, name, _columns.column_of(X, place))
        _columns.add_column(self.columns, class_name, y)

    def _weigh(self, X, y, sample_weight):
        weights = _check_sample_weight(sample_weight, X, dtype=numpy.float64)
        if (weights < 0).any():
            raise ValueError("sample_weight has a negative weight")
        with numpy.errstate(over="ignore"):  # a weight that is infinite as float is refused below
            weights = weights.astype(numpy.float32)
        heavy = weights > 0
        if not heavy.any():
            raise ValueError("sample_weight: every row has the weight 0")
        self.weights = weights[heavy]
        return (X, y) if heavy.all() else (X[heavy], y[heavy])


def read_classes(y):
    """y as a Series or an array of one dimension; known numbers and booleans as those of numpy."""
    if y is None:
        raise ValueError("requires y to be passed, but the target y is None")
    if isinstance(y, pandas.DataFrame) and y.shape[1] == 1:
        y = y.iloc[:, 0]
    elif isinstance(y, pandas.api.extensions.ExtensionArray):
        y = pandas.Series(y)
    if not isinstance(y, pandas.Series):
        y = column_or_1d(numpy.asarray(_columns.without_mask(y)), warn=True)
    plain = getattr(y.dtype, "numpy_dtype", y.dtype)  # of a nullable dtype
    if plain == object:
        y = y.infer_objects() if isinstance(y, pandas.Series) else pandas.Series(y).infer_objects().to_numpy()
    elif plain != y.dtype and not y.isna().any():
        y = y.astype(plain)
    if isinstance(y.dtype, numpy.dtype) and y.dtype.kind == "f":
        numbers = numpy.asarray(y)
        if not numpy.isfinite(numbers).all():
            raise ValueError("Input y contains NaN or infinity.")
        if (numbers != numpy.floor(numbers)).any():
            raise ValueError("Unknown label type: 'continuous'; divide the numbers into a few classes first")
    return y


def thread_count(n_jobs):
    """The number of threads that n_jobs stands for, 0 for one on each core."""
    if n_jobs is None:
        return 0
    if not isinstance(n_jobs, numbers.Integral) or n_jobs == 0:
        raise ValueError(f"n_jobs: {n_jobs!r} is neither None nor an integer other than 0")
    if n_jobs == -1:
        return 0
    return min(int(n_jobs), MOST_THREADS) if n_jobs > 0 else max(1, (os.cpu_count() or 1) + 1 + int(n_jobs))


def least_weight(min_weight):
    """min_weight as the library takes it."""
    if not (is_number(min_weight) and 0 <= min_weight <= float(numpy.finfo(numpy.float32).max)):
        raise ValueError(f"min_weight: {min_weight!r} is not a finite number from 0 up")
    return float(min_weight)


def kinds_by_name(kinds):
    """kinds as the library takes them."""
    if kinds is None:
        return {}
    if not isinstance(kinds, Mapping):
        raise ValueError(f"kinds: {kinds!r} is neither None nor a dict")
    for name, kind in kinds.items():
        if not isinstance(kind, str):
            raise ValueError(f"kinds: {kind!r} of column {name!r} is not a text")
    return {_columns.to_bytes(_columns.file_name(name), "kinds"): _columns.to_bytes(kind, "kinds")
            for name, kind in kinds.items()}


def is_number(value):
    return isinstance(value, numbers.Real) and not isinstance(value, bool)
