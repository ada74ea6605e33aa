"""scikit-learn's decision tree. Only numbers: it gets them in single precision, as it needs them, and by columns, which
it reads fastest.

usage: sklearn_tree.py as-it-is|coded TABLE
"""

import sys

import numpy
from sklearn.tree import DecisionTreeClassifier

import phase

attributes, classes = phase.table(sys.argv[2], sys.argv[1] == "coded")
problems = []
if attributes.apply(phase.is_text).any():
    problems.append("text values")
if attributes.isna().to_numpy().any():
    problems.append("unknown values")
if problems:
    phase.refuse(", ".join(problems))
rows = numpy.asfortranarray(attributes.to_numpy(numpy.float32))
del attributes


def tree(**options):
    return DecisionTreeClassifier(criterion="entropy", min_samples_leaf=2, random_state=1, **options).fit(rows, classes)


figures, _ = phase.measure("rate", lambda: tree(max_depth=1))
phase.report(figures)
figures, grown = phase.measure("grow", tree)
phase.report(figures, leaves=int(grown.get_n_leaves()), accuracy=grown.score(rows, classes))
figures, _ = phase.measure("classify", lambda: grown.predict(rows))
phase.report(figures)
