from collections.abc import Mapping
from typing import Any

def rate(
    X: Any,
    y: Any,
    sample_weight: Any = None,
    min_weight: float = 2,
    kinds: Mapping[str, str] | None = None,
    n_jobs: int | None = None,
) -> Any: ...
