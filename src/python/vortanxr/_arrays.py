"""What objects with arrays have in common."""

from __future__ import annotations

import dataclasses
from typing import Any

import numpy as np


def _equal(one: Any, other: Any) -> bool:
    if isinstance(one, np.ndarray) or isinstance(other, np.ndarray):
        if not (isinstance(one, np.ndarray) and isinstance(other, np.ndarray)) or one.dtype != other.dtype:
            return False
        return np.array_equal(one, other, equal_nan=one.dtype.kind == "f")
    if isinstance(one, dict) and isinstance(other, dict):
        return list(one) == list(other) and all(_equal(one[key], other[key]) for key in one)
    if isinstance(one, tuple) and isinstance(other, tuple):
        return len(one) == len(other) and all(map(_equal, one, other))
    return bool(one == other) or (one != one and other != other)


class HoldsArrays:
    """Compares by value, arrays included; NaN equals itself. Cannot be a key of a dictionary.

    Copies made with ``copy.deepcopy()`` and by pickling have arrays of their own, which can be changed.
    """

    def __eq__(self, other: object) -> bool:
        if type(other) is not type(self):
            return NotImplemented
        return all(
            _equal(getattr(self, field.name), getattr(other, field.name))
            for field in dataclasses.fields(self)
        )

    __hash__ = None  # type: ignore[assignment]
