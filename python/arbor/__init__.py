"""Decision trees with scikit-learn's manners.

>>> import pandas
>>> from arbor import ArborClassifier
>>> golf = pandas.read_csv("data/golf.csv")
>>> classifier = ArborClassifier().fit(golf.drop(columns="play"), golf["play"])
>>> classifier.predict(golf.head(2))
array(['no', 'no'], dtype=object)
"""

from ._classifier import ArborClassifier, load_model
from ._rating import rate
from ._tree import Tree

__all__ = ["ArborClassifier", "Tree", "load_model", "rate"]
__version__ = "0.1.0"
