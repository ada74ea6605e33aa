"""Ratings of the splits that attributes would make."""

import io

import pandas

from . import _core, _training


def rate(X, y, sample_weight=None, min_weight=2, kinds=None, n_jobs=None):
    """Rate the split that each attribute of a table would make.

    Parameters
    ----------
    X : DataFrame or array-like of shape (n_samples, n_features)
        The attributes; see `ArborClassifier.fit`.
    y : array-like of shape (n_samples,)
        The class of each row.
    sample_weight : array-like of shape (n_samples,), default=None
        The weight of each row, from 0 up; a row of weight 0 is left out. None: each weighs 1.
    min_weight : float, default=2
        The least weight of both sides of a threshold, or of two branches of a discrete split.
    kinds : dict of str to {"discrete", "continuous", "ignore"}, default=None
        The kinds of some attributes, by name, where the values would give another one.
    n_jobs : int, default=None
        The number of threads; None means one on each core.

    Returns
    -------
    DataFrame of shape (n_features, 12)
        A row for each attribute, the best gain ratio first, with the columns of ``arbor rate --format csv``:
        attribute, kind, type, values (how many different ones), unknown (the share of rows, 0 to 1), gain and
        split_info (in bits per unit of weight), gain_ratio, branches, threshold, no_split (why there is none), and
        judged_gain (in bits, after a charge for many values). What does not apply is NaN or NA.

    Raises
    ------
    ValueError
        If the data are refused; the message names the column.
    TypeError
        If a cell is neither a string nor a number nor another scalar.

    Examples
    --------
    >>> golf = pandas.read_csv("data/golf.csv")
    >>> arbor.rate(golf.drop(columns="play"), golf["play"])[["attribute", "gain"]].head(2)
      attribute      gain
    0   outlook  0.246750
    1     windy  0.048127
    """
    table = _training.TrainingTable(X, y, sample_weight)
    text = _core.rate(
        columns=table.columns, name=b"DataFrame", weights=table.weights, kinds=_training.kinds_by_name(kinds),
        min_weight=_training.least_weight(min_weight), threads=_training.thread_count(n_jobs))
    texts = ("attribute", "kind", "type", "no_split")
    ratings = pandas.read_csv(
        io.StringIO(text), keep_default_na=False,
        dtype={**dict.fromkeys(texts, object), "unknown": float, "branches": "Int64"},
        na_values={name: [""] for name in
                   ("gain", "split_info", "gain_ratio", "branches", "threshold", "judged_gain", "no_split")},
        float_precision="round_trip")
    return ratings
