from ._classifier import ArborClassifier as ArborClassifier
from ._classifier import load_model as load_model
from ._rating import rate as rate
from ._tree import Tree as Tree

__all__ = ["ArborClassifier", "Tree", "load_model", "rate"]
__version__: str
