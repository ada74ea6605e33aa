"""xgboost's tree on 256 bins of each attribute: making the bins, and one round without shrinking or penalties, of any
depth, with two cases on each side of a split. Of more than two classes, each has a tree of its own.

usage: xgboost_tree.py as-it-is|coded TABLE
"""

import sys

import numpy
import xgboost

import phase

attributes, classes = phase.table(sys.argv[2], sys.argv[1] == "coded")
texts = [name for name in attributes if phase.is_text(attributes[name])]
attributes = attributes.astype({name: "category" for name in texts})
class_count = int(classes.max()) + 1
two = class_count == 2
per_case = 0.25 if two else 2 * (class_count - 1) / class_count**2  # the second derivative of the first round
options = {
    "tree_method": "hist", "max_bin": 256, "nthread": 1, "verbosity": 0,
    "grow_policy": "depthwise", "max_depth": 0, "min_child_weight": 2 * per_case, "eta": 1, "lambda": 0,
    **({"objective": "binary:logistic"} if two else {"objective": "multi:softprob", "num_class": class_count}),
}

figures, bins = phase.measure(
    "quantise", lambda: xgboost.QuantileDMatrix(attributes, classes, max_bin=256, nthread=1, enable_categorical=True))
phase.report(figures)
figures, _ = phase.measure("rate", lambda: xgboost.train({**options, "max_depth": 1}, bins, 1))
phase.report(figures)
figures, grown = phase.measure("grow", lambda: xgboost.train(options, bins, 1))
predicted = grown.predict(xgboost.DMatrix(attributes, nthread=1, enable_categorical=True))
predicted = predicted > 0.5 if two else predicted.argmax(axis=1)
leaves = sum(tree.count("leaf=") for tree in grown.get_dump())
phase.report(figures, leaves=leaves, accuracy=float(numpy.mean(predicted == classes)))
