"""Scenes written for other places, and compared with them."""

from __future__ import annotations

from collections.abc import Callable, Iterable, Mapping
from dataclasses import dataclass
from typing import Any

from . import _native
from ._calls import (
    Cancel,
    Path,
    Progress,
    Watch,
    bundle_bytes,
    folder_list,
    map_list,
    members_of,
    number_of,
    optional_path_bytes,
    path_bytes,
)
from ._diagnostics import Diagnostic, diagnostics_of
from ._errors import OutputError, PluginError, SceneError
from ._scene import Finding, _preference

_DONE = (0, 4, 5)  # exit codes of vxr: done, also with missing footage or with a difference


@dataclass(frozen=True)
class RelinkedPath:
    """A footage path of a relinked scene."""

    written: str
    """The path in the scene that was read."""
    line: int
    """Of the path, from 1."""
    column: int
    """In bytes, from 1."""
    is_sequence: bool
    finding: Finding
    """Where it is today. A path that was not found stays as it is written."""


@dataclass(frozen=True)
class Relinked:
    """What became of a scene whose footage was looked for. True in conditions when every path was found."""

    output: str | None
    """The new scene; None if none was asked for."""
    paths: tuple[RelinkedPath, ...]
    """In the order of the file."""

    def __bool__(self) -> bool:
        return all(path.finding.outcome == "found" for path in self.paths)


@dataclass(frozen=True)
class Correction:
    """A difference between what the scene says and what the plug-in builds, which the export corrects."""

    name: str
    """``"square-pixels"``, ``"linear-keys"``, ..."""
    reason: str
    count: int
    example: str
    """The first of them."""


@dataclass(frozen=True)
class Export:
    """What was written for another program."""

    output: str | None
    """The file; None if none was asked for."""
    corrections: tuple[Correction, ...]
    losses: tuple[Diagnostic, ...]
    """Where the other program will differ from the scene."""
    footage_missing: bool
    """Whether placeholders stand in for footage."""


@dataclass(frozen=True)
class Deviation:
    """How far a target puts points from where a camera of the scene sees them."""

    camera: str
    target: str
    """``"imported"``, ``"corrected"``, ``"glTF"``, ``"USD"``, ..."""
    judged: bool
    """Whether the target is to say what the scene says."""
    meets_goal: bool
    largest_px: float | None
    """Pixels, at whole frames; None where there is nothing to compare."""
    mean_px: float | None
    """Pixels."""
    problem: str | None
    """Why there is nothing to compare."""


@dataclass(frozen=True)
class Proof:
    """A scene compared with what arrives elsewhere. True in conditions when every judged target meets the goal."""

    goal_px: float
    """What judged targets may be off by."""
    deviations: tuple[Deviation, ...]
    """For each camera, one for each target."""
    document: Mapping[str, Any]
    """All of it: the document of ``vxr proof --json``."""

    def __bool__(self) -> bool:
        return all(one.meets_goal for one in self.deviations if one.judged)


def answer_of(call: Callable[[], str]) -> dict[str, Any]:
    """The document of a call. Raises for a scene that was refused, and for what did not happen."""
    try:
        document = members_of(call())
    except RuntimeError as error:
        raise PluginError((str(error),)) from error
    diagnostics = diagnostics_of(document["diagnostics"])
    if diagnostics and diagnostics[0].severity == "error":
        raise SceneError(diagnostics[0], diagnostics)
    if document["exit_code"] not in _DONE:
        raise PluginError(tuple(document["problems"]), None, diagnostics)
    return document


def _written(call: Callable[[], str]) -> dict[str, Any]:
    """The same for a call that may write."""
    try:
        return answer_of(call)
    except ValueError as refusal:
        raise OutputError(str(refusal)) from None


def _relinked_path(members: dict[str, Any]) -> RelinkedPath:
    found = members["outcome"] == "found"
    finding = Finding(
        outcome=members["outcome"],
        rule=members["rule"] if found else None,
        path=members["result"],
        candidates=tuple(one["path"] for one in members["candidates"]),
    )
    return RelinkedPath(members["written"], members["line"], members["column"], members["sequence"], finding)


def relink_scene(
    path: Path,
    output: Path | None = None,
    *,
    search: Iterable[Path] = (),
    maps: Mapping[str, Path] = {},
    prefer: str | None = None,
) -> Relinked:
    """Find the footage of an old scene again, and write the scene with paths that lead to it, as ``vxr relink`` does.

    Without ``output`` nothing is written. Paths that were not found, or that several files may be meant by, stay. For
    ``search``, ``maps`` and ``prefer`` see read_scene().

    Raises SceneError for a scene that is refused, OutputError for an output that is a file that is read, PluginError
    for one that cannot be written.
    """
    arguments = (
        path_bytes(path),
        folder_list(search),
        map_list(maps),
        _preference(prefer),
        optional_path_bytes(output),
    )
    document = _written(lambda: _native.relink_scene(*arguments))
    return Relinked(document["output"], tuple(map(_relinked_path, document["paths"])))


def export_scene(
    path: Path,
    output: Path | None = None,
    *,
    to: str,
    corrected: bool = True,
    without: Iterable[str] = (),
    fps: float | None = None,
    scale: float = 0.01,
    undo_safe: bool = False,
    package: bool = False,
    search: Iterable[Path] = (),
    maps: Mapping[str, Path] = {},
    bundle: Path | None = None,
    progress: Progress | None = None,
    cancel: Cancel | None = None,
) -> Export:
    """Write a scene for programs without the plug-in, as ``vxr export`` does.

    ``to`` is ``"jsx"``, a script for any After Effects, or ``"gltf"``, ``"glb"`` or ``"usda"`` with its cameras, lights
    and nulls. Without ``output`` nothing is written, and the result says what would be. ``corrected=False`` hands over
    exactly what the plug-in builds; ``without`` names corrections to leave out, ``fps`` (1 to 99) the rate of scenes
    written with whole frames a second. ``scale`` is how many metres a scene unit is, for 3D programs. ``undo_safe`` has
    a script ask, ``package`` writes a ZIP archive with the script and its footage.

    For ``search`` and ``maps`` see read_scene(), for the other parameters import_scene().

    Raises SceneError for a scene that is refused, OutputError for an unknown name, or an output that is a file that is
    read, PluginError for one that does not arrive whole or cannot be written.
    """
    if isinstance(without, str):
        raise TypeError("without takes a list of names; for one name write [name]")
    left_out = list(without)
    if fps is not None and not 1 <= fps <= 99:
        raise ValueError(f"fps is {fps}; it takes 1 to 99 or None")
    if not 1e-6 <= scale <= 1e6:
        raise ValueError(f"scale is {scale}; it takes 0.000001 to 1000000")
    if not corrected and (fps is not None or left_out):
        raise ValueError("fps and without are for corrected scenes")
    if to != "jsx" and (undo_safe or package):
        raise ValueError('undo_safe and package are for to="jsx"')
    watch = Watch(progress, cancel)
    arguments = (
        path_bytes(path),
        folder_list(search),
        map_list(maps),
        bundle_bytes(bundle),
        to,
        optional_path_bytes(output),
        package,
        corrected,
        left_out,
        fps,
        float(scale),
        undo_safe,
        watch,
    )
    watch(0.0)
    document = _written(lambda: _native.export_scene(*arguments))
    watch(1.0)
    return Export(
        output=document["output"],
        corrections=tuple(Correction(**one) for one in document["corrections"]),
        losses=diagnostics_of(document["losses"]),
        footage_missing=document["exit_code"] == 4,
    )


def _number_or_none(value: float | str | None) -> float | None:
    return None if value is None else number_of(value)


def prove_scene(
    path: Path,
    *,
    grid_points: int = 27,
    at: Iterable[float] = (),
    bundle: Path | None = None,
    progress: Progress | None = None,
    cancel: Cancel | None = None,
) -> Proof:
    """Compare where points are seen by the scene's cameras and by what is handed over, as ``vxr proof`` does.

    ``grid_points`` (1 to 1000) is how many test points lie around each camera's aim; ``at`` names frames at which the
    document lists every point. For the other parameters see import_scene(). Raises as export_scene() does.
    """
    if not 1 <= grid_points <= 1000:
        raise ValueError(f"grid_points is {grid_points}; it takes 1 to 1000")
    watch = Watch(progress, cancel)
    arguments = (path_bytes(path), bundle_bytes(bundle), grid_points, [float(frame) for frame in at], watch)
    watch(0.0)
    document = answer_of(lambda: _native.prove_scene(*arguments))
    watch(1.0)
    deviations = tuple(
        Deviation(
            camera=camera["name"],
            target=target["target"],
            judged=target["judged"],
            meets_goal=target["meets_goal"],
            largest_px=_number_or_none(target["largest_px"]),
            mean_px=_number_or_none(target["mean_px"]),
            problem=target["problem"],
        )
        for camera in document["cameras"]
        for target in camera["targets"]
    )
    return Proof(document["goal_px"], deviations, document)
