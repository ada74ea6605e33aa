"""The classifier, with scikit-learn's manners."""

import os

import numpy
import pandas
from sklearn.base import BaseEstimator, ClassifierMixin
from sklearn.utils.validation import check_is_fitted

from . import _columns, _core, _training
from ._tree import Tree

MOST_DEPTH = 2**32 - 1


class ArborClassifier(ClassifierMixin, BaseEstimator):
    """A decision tree by gain ratio, pruned, which takes texts, numbers and unknown values as they are.

    The tree is that of the program ``arbor grow`` for the file that ``to_csv(index=False)`` writes of the same table
    with the class last, to the byte of the model file.

    Parameters
    ----------
    min_weight : float, default=2
        The least weight of two branches of a discrete test, or of both sides of a threshold. From 0 up.
    max_depth : int, default=None
        The most tests above a leaf. None: any number.
    prune : bool, default=True
        Whether tests whose branches are not expected to make fewer errors are replaced by leaves.
    confidence : float, default=0.1
        Of pruning, above 0 and up to 0.5: the lower, the smaller the tree.
    kinds : dict of str to {"discrete", "continuous", "ignore"}, default=None
        The kinds of some attributes, by name, where the values would give another one: numbers are continuous, texts
        discrete. The attributes of an array are called x0, x1 and so on.
    n_jobs : int, default=None
        The number of threads in fit and predict. None means one on each core, as does -1; -2 means one less. The
        result is the same for any number.
    table_name : str, default="DataFrame"
        The name of the table that the model has as its origin, and that messages begin with. With the name of the
        file, the bytes of the model are those of ``arbor grow``.

    Attributes
    ----------
    classes_ : ndarray of shape (n_classes,)
        The classes, in ascending order.
    n_features_in_ : int
        The number of columns of X in fit.
    feature_names_in_ : ndarray of shape (n_features_in_,)
        The names of the columns, if they are all strings.
    feature_importances_ : ndarray of shape (n_features_in_,)
        The share (0 to 1) of each column in what the tests of the tree tell about the class, in bits. They add up to
        1, or are all 0 if the tree is a single leaf.
    tree_ : Tree
        The tree, to be looked at.
    remarks_ : list of str
        What a person should know about how the table was read: columns whose numbers are rounded, for example.

    Examples
    --------
    >>> golf = pandas.read_csv("data/golf.csv")
    >>> classifier = ArborClassifier().fit(golf.drop(columns="play"), golf["play"])
    >>> classifier.score(golf, golf["play"])
    1.0
    """

    def __init__(self, min_weight=2, max_depth=None, prune=True, confidence=0.1, kinds=None, n_jobs=None,
                 table_name="DataFrame"):
        self.min_weight = min_weight
        self.max_depth = max_depth
        self.prune = prune
        self.confidence = confidence
        self.kinds = kinds
        self.n_jobs = n_jobs
        self.table_name = table_name

    def fit(self, X, y, sample_weight=None):
        """Grow the tree.

        Parameters
        ----------
        X : DataFrame or array-like of shape (n_samples, n_features)
            The attributes, column by column: numbers, texts, booleans, categories, nullable types, or objects. None,
            NaN, NA, NaT and what a masked array hides are unknown values. A text means what it means in a CSV file:
            one that is a number is that number if all others of its column are numbers too, blanks around it do not
            count, and "" and "?" are unknown values.
        y : array-like of shape (n_samples,)
            The class of each row, none of them unknown. Labels keep their type. Two that are the same cell of a CSV
            file, such as "1" and "01", are refused.
        sample_weight : array-like of shape (n_samples,), default=None
            The weight of each row, from 0 up: a row of weight 3 counts as three rows, one of weight 0 is as if it
            were absent. None: each weighs 1.

        Returns
        -------
        ArborClassifier
            This object.

        Raises
        ------
        ValueError
            If the data or a parameter are refused; the message names the column or the parameter.
        TypeError
            If a cell is neither a string nor a number nor another scalar.
        MemoryError
            If memory is short.
        KeyboardInterrupt
            On Ctrl-C. The classifier is then as it was before, as after any other exception.
        """
        options = self._options()
        table = _training.TrainingTable(X, y, sample_weight)
        model, rows, remarks = _core.grow(columns=table.columns, weights=table.weights, **options)
        values = table.classes.iloc[rows] if isinstance(table.classes, pandas.Series) else table.classes[rows]
        try:
            classes, order = numpy.unique(numpy.asarray(values), return_inverse=True)
        except TypeError:
            raise ValueError("y has classes that have no order: " + ", ".join(map(repr, values))[:200]) from None
        labels = X.columns if isinstance(X, pandas.DataFrame) else []
        has_names = len(labels) > 0 and all(isinstance(label, str) for label in labels)
        self._take(model, classes, order, table.names)
        self.remarks_ = remarks
        self._is_named = isinstance(X, pandas.DataFrame)
        if has_names:
            self.feature_names_in_ = numpy.asarray(labels, dtype=object)
        elif hasattr(self, "feature_names_in_"):
            del self.feature_names_in_
        return self

    def _options(self):
        depth = MOST_DEPTH if self.max_depth is None else self.max_depth
        if not (isinstance(depth, (int, numpy.integer)) and 0 <= depth <= MOST_DEPTH):
            raise ValueError(f"max_depth: {depth!r} is neither None nor an integer from 0 to {MOST_DEPTH}")
        if not (_training.is_number(self.confidence) and 0 < self.confidence <= 0.5):
            raise ValueError(f"confidence: {self.confidence!r} is not above 0 and up to 0.5")
        if not isinstance(self.prune, (bool, numpy.bool_)):
            raise ValueError(f"prune: {self.prune!r} is neither True nor False")
        return {"min_weight": _training.least_weight(self.min_weight), "max_depth": int(depth),
                "prune": bool(self.prune), "confidence": float(self.confidence),
                "name": _columns.to_bytes(str(self.table_name), "table_name"),
                "kinds": _training.kinds_by_name(self.kinds), "threads": _training.thread_count(self.n_jobs)}

    # `order` has the place in `classes` of each class of the model. `names` are those of the columns in fit.
    def _take(self, model, classes, order, names):
        self.classes_ = classes
        self._order = order
        self._names = names
        self.n_features_in_ = len(names)
        self.tree_ = Tree(model)

    def predict(self, X):
        """Predict the class of each row.

        Parameters
        ----------
        X : DataFrame or array-like of shape (n_samples, n_features)
            The attributes. The columns of a DataFrame are found by name, in any order, if fit had one; those of an
            array have the order of fit. A text or category that fit has not seen goes down every branch, like an
            unknown value.

        Returns
        -------
        ndarray of shape (n_samples,)
            For each row the class with the greatest probability, of equal ones the first.

        Raises
        ------
        sklearn.exceptions.NotFittedError
            Before fit.
        ValueError
            If columns are missing or refused.
        """
        check_is_fitted(self)
        return self.classes_[self._order[self._classify(X, False)[0]]]

    def predict_proba(self, X):
        """Estimate the probability of each class for each row.

        Parameters
        ----------
        X : DataFrame or array-like of shape (n_samples, n_features)
            See `predict`.

        Returns
        -------
        ndarray of shape (n_samples, n_classes)
            Probabilities from 0 to 1, in the order of `classes_`: the shares of the training cases at the leaf,
            smoothed toward those of the nodes above it. As numpy.float32 they are those of ``arbor classify``.

        Raises
        ------
        sklearn.exceptions.NotFittedError, ValueError
            See `predict`.
        """
        check_is_fitted(self)
        probabilities = self._classify(X, True)[1]
        if (self._order == numpy.arange(len(self._order))).all():
            return probabilities
        ordered = numpy.empty_like(probabilities)
        ordered[:, self._order] = probabilities
        return ordered

    def score(self, X, y, sample_weight=None):
        """The accuracy of `predict`.

        Parameters
        ----------
        X : DataFrame or array-like of shape (n_samples, n_features)
            See `predict`.
        y : array-like of shape (n_samples,)
            The class of each row.
        sample_weight : array-like of shape (n_samples,), default=None
            The weight of each row. None: each weighs 1.

        Returns
        -------
        float
            The share of the weight of the rows whose class is predicted, from 0 to 1.
        """
        return super().score(X, _training.read_classes(y), sample_weight)

    def predict_log_proba(self, X):
        """The natural logarithms of `predict_proba`.

        Parameters
        ----------
        X : DataFrame or array-like of shape (n_samples, n_features)
            See `predict`.

        Returns
        -------
        ndarray of shape (n_samples, n_classes)
            From -inf to 0.
        """
        with numpy.errstate(divide="ignore"):
            return numpy.log(self.predict_proba(X))

    def _classify(self, X, with_probabilities):
        X = _columns.read_table(X)
        wanted = self.tree_.attribute_names
        columns = _core.Columns()
        for name, place in zip(wanted, self._places(X, wanted)):
            _columns.add_column(columns, name, _columns.column_of(X, place))
        return _core.classify(
            model=self.tree_._model, columns=columns, places=list(range(len(wanted))), rows=X.shape[0],
            with_probabilities=with_probabilities, threads=_training.thread_count(self.n_jobs))

    def _places(self, X, wanted):
        """Where the wanted columns are in X."""
        names = _columns.column_names(X)
        if self._names is not None and not (self._is_named and isinstance(X, pandas.DataFrame)):
            if len(names) != self.n_features_in_:
                raise ValueError(f"X has {len(names)} features, but {type(self).__name__} is expecting "
                                 f"{self.n_features_in_} features as input.")
            names = self._names
        places = {}
        for place, name in enumerate(names):
            if places.setdefault(name, place) != place and name in wanted:
                raise ValueError(f"X has two columns of the name {name!r}")
        missing = [name for name in self._names or wanted if name not in places]
        if missing:
            raise ValueError("X lacks columns that fit had: " + ", ".join(map(repr, missing[:5])) +
                             (f" and {len(missing) - 5} more" if len(missing) > 5 else ""))
        return [places[name] for name in wanted]

    @property
    def feature_importances_(self):
        check_is_fitted(self)
        names = self._names or self.tree_.attribute_names
        importances = numpy.zeros(len(names))
        importance = dict(zip(self.tree_.attribute_names, self.tree_._model.importance()))
        for place, name in enumerate(names):
            importances[place] = importance.get(name, 0)
        total = importances.sum()
        return importances / total if total > 0 else importances

    def save(self, path):
        """Save the tree to a model file, which ``arbor show`` and ``arbor classify`` read.

        A file that is there is replaced as a whole, or stays as it was if the new one cannot be written.

        Parameters
        ----------
        path : str or os.PathLike
            The file.

        Raises
        ------
        sklearn.exceptions.NotFittedError
            Before fit.
        OSError
            If the file cannot be written.
        """
        check_is_fitted(self)
        self.tree_._model.save(os.fsencode(path))

    def __sklearn_is_fitted__(self):
        return hasattr(self, "tree_")

    def _more_tags(self):
        return {"allow_nan": True, "X_types": ["2darray", "string"]}


def load_model(path):
    """Load a model file of ``arbor grow`` or `ArborClassifier.save`.

    The model has the columns that the tree tests, and the texts of the classes, which become what pandas would make of
    them: whole numbers int64 (or uint64), other numbers float64, False and True bool, all others str. The parameters of
    the classifier are the defaults.

    Parameters
    ----------
    path : str or os.PathLike
        The file.

    Returns
    -------
    ArborClassifier
        Fitted. Its columns are found by name in a DataFrame; those of an array are called x0, x1 and so on.

    Raises
    ------
    OSError
        If the file cannot be read.
    ValueError
        If it is not a model, or damaged.
    """
    with open(path, "rb") as file:
        saved = file.read()
    model = _core.Model.from_bytes(saved, os.fsencode(path))
    classifier = ArborClassifier()
    classes, order = numpy.unique(_labels(model), return_inverse=True)
    classifier._take(model, classes, order, model.attribute_names())
    classifier._names = None  # only those that the tree tests are known
    classifier._is_named = True
    classifier.feature_names_in_ = numpy.array(model.attribute_names(), dtype=object)
    classifier.remarks_ = []
    return classifier


def _labels(model):
    """The classes of a model, by code."""
    texts = model.class_values()
    labels = numpy.array(texts, dtype=object)
    if model.class_type() != "string":
        is_whole = all(text.lstrip("-").isdigit() for text in texts)
        numbers = numpy.array([int(text) for text in texts]) if is_whole else labels.astype(numpy.float64)
        if len(numpy.unique(numbers)) == len(texts):  # else they have more digits than such a number
            return numbers
    return labels == "True" if set(texts) <= {"False", "True"} else labels
