"""The columns of a table as the library reads them.

A value means what it would mean in the file that pandas.DataFrame.to_csv makes of the table, so that the program arbor
grows the same tree on that file. Numbers do not become texts on their way.
"""

import csv
import io

import numpy
import pandas
from pandas.api import types
from sklearn.utils import check_array

UNKNOWNS = (pandas.NA, pandas.NaT)
BOOLEANS = ["False", "True"]


def read_table(X):
    """X as a DataFrame or an array of two dimensions, of any dtype, with at least one row and one column."""
    X = without_mask(X)
    if not isinstance(X, pandas.DataFrame):
        return check_array(X, dtype=None, force_all_finite=False)
    for count, what in ((X.shape[0], "sample(s)"), (X.shape[1], "feature(s)")):
        if count == 0:
            raise ValueError(f"Found array with 0 {what} (shape={X.shape}) while a minimum of 1 is required.")
    return X


def without_mask(values):
    """The values, with None for those that a masked array hides."""
    return values.astype(object).filled(None) if isinstance(values, numpy.ma.MaskedArray) else values


def column_names(X):
    """The names of the columns as a file has them; those of an array are x0, x1 and so on."""
    if isinstance(X, pandas.DataFrame):
        return [file_name(label) for label in X.columns]
    return [f"x{i}" for i in range(X.shape[1])]


def file_name(label):
    """The name of a column. Blanks around it are no part of it, unless a file would have it in quotes."""
    name = str(label)
    if "\0" in name:
        raise ValueError(f"the name {name!r} of a column has a zero byte")
    to_bytes(name, "the name of a column")
    return name if any(c in name for c in ',"\r\n') else name.strip(" \t")


def to_bytes(text, what):
    """The bytes of a text in a file. Surrogates that stand for bytes, as in names of files, become those."""
    try:
        return text.encode("utf-8", "surrogateescape")
    except UnicodeEncodeError:
        raise ValueError(f"{what}: {text!r} has a surrogate, which is no character") from None


def column_of(X, place):
    return X.iloc[:, place] if isinstance(X, pandas.DataFrame) else X[:, place]


def add_column(columns, name, values):
    """Adds a Series or an array of one dimension to _core.Columns."""
    _add(columns, to_bytes(name, "the name of a column"), values)


def _add(columns, name, values):
    dtype = values.dtype
    if isinstance(dtype, numpy.dtype):
        return _add_array(columns, name, values.to_numpy() if isinstance(values, pandas.Series) else values)
    if isinstance(dtype, pandas.CategoricalDtype):
        what = f"column {name.decode(errors='replace')!r}"
        texts = [to_bytes(text, what) for text in _texts_of_categories(values.cat.categories)]
        columns.add_texts(name, values.cat.codes.to_numpy(), texts)
    elif isinstance(dtype, pandas.SparseDtype):
        _add(columns, name, values.sparse.to_dense())
    elif types.is_bool_dtype(dtype):
        columns.add_texts(name, values.astype("Int8").to_numpy(numpy.int8, na_value=-1), BOOLEANS)
    elif types.is_integer_dtype(dtype):
        columns.add_numbers(name, values.to_numpy(dtype.numpy_dtype, na_value=0), values.isna().to_numpy())
    elif types.is_float_dtype(dtype):
        columns.add_numbers(name, values.to_numpy(numpy.float64, na_value=numpy.nan), None)
    elif types.is_string_dtype(dtype):
        _add_objects(columns, name, values.to_numpy(object))
    else:
        _add_objects(columns, name, _file_texts(values))


def _add_array(columns, name, values):
    kind, size = values.dtype.kind, values.dtype.itemsize
    if not values.dtype.isnative:
        values = values.astype(values.dtype.newbyteorder("="))
    if kind == "b":
        columns.add_texts(name, values.view(numpy.uint8), BOOLEANS)
    elif kind in "iu" or (kind == "f" and size in (4, 8)):
        columns.add_numbers(name, values, None)
    elif kind == "O":
        _add_objects(columns, name, values)
    elif kind == "U":
        _add_objects(columns, name, values.astype(object))
    elif kind == "c":
        raise ValueError(f"column {name.decode(errors='replace')!r}: Complex data not supported")
    else:
        _add_objects(columns, name, _file_texts(pandas.Series(values)))


def _add_objects(columns, name, values):
    columns.add_objects(name, values, UNKNOWNS, types.is_scalar)


def _texts_of_categories(categories):
    if types.infer_dtype(categories, skipna=False) == "string":
        return list(categories)
    return _file_texts(categories.to_series()).tolist()


def _file_texts(values):
    """The texts that a file would have, of a dtype for which there is no faster way: dates, for example."""
    rows = csv.reader(io.StringIO(values.to_csv(header=False, index=False), newline=""))
    texts = numpy.empty(len(values), object)
    texts[:] = [row[0] if row else "" for row in rows]
    return texts
