"""Layered textures (``.txl``)."""

from __future__ import annotations

from collections.abc import Mapping
from dataclasses import dataclass
from typing import Any, TypeAlias

import numpy as np
import numpy.typing as npt

from . import _native
from ._arrays import HoldsArrays
from ._calls import Path, members_of, path_bytes, text_bytes, text_of
from ._diagnostics import Diagnostic, diagnostic_of, diagnostics_of
from ._errors import ArrayError, TextureError

Bytes: TypeAlias = "npt.NDArray[np.uint8]"

_MOST_PIXELS = 2**30


@dataclass(frozen=True, eq=False, repr=False)
class Texture(HoldsArrays):
    """A texture with every byte as it is stored: colour is not multiplied with alpha, nor divided by it."""

    color: Bytes
    """(h, w, 1) or (h, w, 3) uint8: grey, or red, green and blue; rows from top to bottom."""
    alphas: dict[str, Bytes]
    """(h, w) uint8 each, in the order of the file, by the names of their layers; 0 is transparent."""
    diagnostics: tuple[Diagnostic, ...] = ()
    """What was repaired or skipped."""

    def __repr__(self) -> str:
        height, width, channels = self.color.shape
        kind = "grey" if channels == 1 else "RGB"
        return f"<Texture {width} x {height}, {kind}, alphas: {list(self.alphas)}>"


def read_texture(path: Path) -> Texture:
    """Read a texture. Its arrays show the memory that was read, without a copy, and can be changed.

    An alpha channel without a name is called ``"Alpha"``, and one with the name of an earlier channel gets ``.2``,
    ``.3`` and so on. Raises TextureError for a file that is refused or cannot be read.
    """
    text, color, alphas = _native.read_texture(path_bytes(path))
    document = members_of(text)
    diagnostics = diagnostics_of(document["diagnostics"])
    if color is None:
        raise TextureError(diagnostic_of(document["error"]), diagnostics)
    return Texture(color, {text_of(name): values for name, values in alphas}, diagnostics)


def _plane(array: object, name: str) -> npt.NDArray[Any]:
    if not isinstance(array, np.ndarray):
        raise ArrayError(f"{name} is not a NumPy array: {type(array).__name__}")
    if array.dtype != np.uint8:
        raise ArrayError(
            f"{name} has the type {array.dtype.str} ({array.dtype}); textures hold uint8, so convert it first"
        )
    return array


def _color(color: object) -> npt.NDArray[Any]:
    plane = _plane(color, "color")
    if plane.ndim == 2:
        plane = plane[:, :, np.newaxis]
    if plane.ndim != 3 or plane.shape[2] not in (1, 3):
        raise ArrayError(f"color has the shape {plane.shape}; it takes (h, w), (h, w, 1) or (h, w, 3)")
    if 0 in plane.shape or plane.shape[0] * plane.shape[1] > _MOST_PIXELS:
        raise ArrayError(f"color has the shape {plane.shape}; a texture has 1 to {_MOST_PIXELS} pixels")
    return plane


def write_texture(
    path: Path, color: npt.NDArray[np.uint8], alphas: Mapping[str, npt.NDArray[np.uint8]] | None = None
) -> tuple[Diagnostic, ...]:
    """Write a texture; a file at ``path`` is replaced when the new one is complete.

    ``color`` is (h, w), (h, w, 1) or (h, w, 3) uint8, each of ``alphas`` (h, w) uint8, all with any strides. Other
    types and shapes raise ArrayError. The format does not store the names of alpha channels: they read back as
    ``"Alpha"``, ``"Alpha.2"`` and so on. The result is a warning about the names that are lost, or empty.

    Raises TextureError when the file cannot be written; one that was there before is unchanged.
    """
    encoded = path_bytes(path)
    plane = _color(color)
    channels: list[tuple[bytes, Bytes]] = []
    for name, values in ({} if alphas is None else alphas).items():
        mask = _plane(values, f"the alpha channel {name!r}")
        if mask.shape != plane.shape[:2]:
            raise ArrayError(f"the alpha channel {name!r} has the shape {mask.shape}; color has {plane.shape[:2]}")
        channels.append((text_bytes(name), np.ascontiguousarray(mask)))
    document = members_of(_native.write_texture(encoded, np.ascontiguousarray(plane), channels))
    diagnostics = diagnostics_of(document["diagnostics"])
    if document["error"] is not None:
        raise TextureError(diagnostic_of(document["error"]), diagnostics)
    return diagnostics
