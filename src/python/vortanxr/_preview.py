"""Frames of scenes as pictures."""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from dataclasses import dataclass

import numpy as np
import numpy.typing as npt

from . import _native
from ._arrays import HoldsArrays
from ._calls import Cancel, Path, Progress, Watch, bundle_bytes, folder_list, map_list, path_bytes, text_bytes
from ._diagnostics import Diagnostic, diagnostics_of
from ._handover import answer_of


@dataclass(frozen=True, eq=False, repr=False)
class Frame(HoldsArrays):
    """A frame of a composition. Its colour is straight: not multiplied with alpha. The arrays can be changed."""

    number: int
    """From 0, on the composition's own timeline."""
    color: npt.NDArray[np.uint8]
    """(h, w, 3) uint8: red, green, blue; rows from top to bottom."""
    alpha: npt.NDArray[np.uint8]
    """(h, w) uint8; 0 is transparent."""
    diagnostics: tuple[Diagnostic, ...]
    """What it does not show as the scene says; each is told by the first frame that it concerns."""

    def __repr__(self) -> str:
        height, width = self.alpha.shape
        return f"<Frame {self.number}, {width} x {height}>"


@dataclass(frozen=True)
class Preview:
    """Frames of a composition, and what there is to know about it."""

    composition: str
    width: int
    """Pixels of the frames, which are square unless ``raw`` was asked for."""
    height: int
    """Pixels."""
    frame_count: int
    """Of the composition."""
    fps: float
    """Frames per second."""
    pixel_aspect: float
    """Of the composition."""
    frames: tuple[Frame, ...]
    """As they were asked for."""


def draw_frames(
    path: Path,
    frames: Iterable[int] = (0,),
    *,
    composition: str | None = None,
    raw: bool = False,
    linear: bool = False,
    fields: str = "both",
    overlay: Iterable[str] = (),
    threads: int = 1,
    search: Iterable[Path] = (),
    maps: Mapping[str, Path] = {},
    bundle: Path | None = None,
    progress: Progress | None = None,
    cancel: Cancel | None = None,
) -> Preview:
    """Draw frames of a scene's composition as the plug-in builds it, as ``vxr preview`` does.

    ``frames`` are numbers from 0. ``composition`` is its name; without it the outermost one. With ``raw`` a pixel of
    the composition is a pixel of the picture, whatever its aspect. ``linear`` blends light and not stored values;
    ``fields`` is ``"both"``, ``"upper"`` or ``"lower"``. ``overlay`` draws ``"camera"``, ``"nulls"``, ``"safe"`` and
    ``"grid"`` over the frames. ``threads`` is how many processors to use, 0 for all; the frames are the same.

    ``progress`` and ``cancel`` are called before each frame, too; they must not import anything. For the other
    parameters see import_scene().

    Raises SceneError for a scene that is refused, PluginError for one that does not arrive whole or has no such
    composition, ValueError for a frame that the composition does not have.
    """
    if isinstance(overlay, str):
        raise TypeError("overlay takes a list of words; for one word write [word]")
    if not 0 <= threads <= 256:
        raise ValueError(f"threads is {threads}; it takes 0 to 256")
    watch = Watch(progress, cancel)
    arguments = (
        path_bytes(path),
        folder_list(search),
        map_list(maps),
        bundle_bytes(bundle),
        list(frames),
        text_bytes(composition or ""),
        raw,
        linear,
        fields,
        ",".join(overlay),
        threads,
        watch,
    )
    watch(0.0)
    pictures: list[tuple[npt.NDArray[np.uint8], npt.NDArray[np.uint8]]] = []

    def draw() -> str:
        text, drawn = _native.draw_frames(*arguments)
        pictures.extend(drawn)
        return text

    document = answer_of(draw)
    watch(1.0)
    drawn_frames = tuple(
        Frame(frame["number"], color, alpha, diagnostics_of(frame["diagnostics"]))
        for frame, (color, alpha) in zip(document.pop("frames"), pictures)
    )
    names = ("composition", "width", "height", "frame_count", "fps", "pixel_aspect")
    return Preview(frames=drawn_frames, **{name: document[name] for name in names})
