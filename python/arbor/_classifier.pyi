import os
from collections.abc import Mapping
from typing import Any

import numpy
from numpy.typing import NDArray

from ._tree import Tree

MOST_DEPTH: int

class ArborClassifier:
    min_weight: float
    max_depth: int | None
    prune: bool
    confidence: float
    kinds: Mapping[str, str] | None
    n_jobs: int | None
    table_name: str
    classes_: NDArray[Any]
    n_features_in_: int
    feature_names_in_: NDArray[Any]
    tree_: Tree
    remarks_: list[str]
    def __init__(
        self,
        min_weight: float = 2,
        max_depth: int | None = None,
        prune: bool = True,
        confidence: float = 0.1,
        kinds: Mapping[str, str] | None = None,
        n_jobs: int | None = None,
        table_name: str = "DataFrame",
    ) -> None: ...
    def fit(self, X: Any, y: Any, sample_weight: Any = None) -> ArborClassifier: ...
    def predict(self, X: Any) -> NDArray[Any]: ...
    def predict_proba(self, X: Any) -> NDArray[numpy.float64]: ...
    def predict_log_proba(self, X: Any) -> NDArray[numpy.float64]: ...
    def score(self, X: Any, y: Any, sample_weight: Any = None) -> float: ...
    def get_params(self, deep: bool = True) -> dict[str, Any]: ...
    def set_params(self, **params: Any) -> ArborClassifier: ...
    @property
    def feature_importances_(self) -> NDArray[numpy.float64]: ...
    def save(self, path: str | os.PathLike[str]) -> None: ...
    def __sklearn_is_fitted__(self) -> bool: ...

def load_model(path: str | os.PathLike[str]) -> ArborClassifier: ...
