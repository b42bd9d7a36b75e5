"""What C++ does for this package. Paths are bytes, documents are JSON, arrays belong to what was read."""

from typing import Callable

import numpy as np
import numpy.typing as npt

_Bytes = npt.NDArray[np.uint8]
_Doubles = npt.NDArray[np.float64]

version: str

def set_own_program(program: str) -> None: ...
def is_path_map(text: bytes) -> bool: ...
def read_scene(
    path: bytes,
    search: list[bytes],
    maps: list[bytes],
    prefer: str,
    check: bool,
    read_pixels: bool,
    columns: bool,
    told: Callable[[float], None],
) -> tuple[str, list[tuple[npt.NDArray[np.generic], ...]]]: ...
def is_host(text: str) -> bool: ...
def is_name_encoding(text: str) -> bool: ...
def import_scene(
    path: bytes,
    search: list[bytes],
    maps: list[bytes],
    bundle: bytes,
    host: str,
    name_encoding: str,
    told: Callable[[float], None],
) -> tuple[str, list[tuple[int, _Doubles, _Doubles, _Doubles]]]: ...
def relink_scene(path: bytes, search: list[bytes], maps: list[bytes], prefer: str, output: bytes) -> str: ...
def export_scene(
    path: bytes,
    search: list[bytes],
    maps: list[bytes],
    bundle: bytes,
    to: str,
    output: bytes,
    package: bool,
    corrected: bool,
    without: list[str],
    fps: float | None,
    scale: float,
    undo_safe: bool,
    told: Callable[[float], None],
) -> str: ...
def prove_scene(
    path: bytes, bundle: bytes, grid_points: int, at: list[float], told: Callable[[float], None]
) -> str: ...
def draw_frames(
    path: bytes,
    search: list[bytes],
    maps: list[bytes],
    bundle: bytes,
    frames: list[int],
    composition: bytes,
    raw: bool,
    linear: bool,
    fields: str,
    overlay: str,
    threads: int,
    told: Callable[[float], None],
) -> tuple[str, list[tuple[_Bytes, _Bytes]]]: ...
def write_report(
    paths: list[bytes],
    search: list[bytes],
    maps: list[bytes],
    bundle: bytes,
    output: bytes,
    pictures: int,
    threads: int,
    told: Callable[[float], None],
) -> str: ...
def printable(text: bytes) -> str: ...
def read_texture(path: bytes) -> tuple[str, _Bytes | None, list[tuple[bytes, _Bytes]]]: ...
def write_texture(path: bytes, color: _Bytes, alphas: list[tuple[bytes, _Bytes]]) -> str: ...
