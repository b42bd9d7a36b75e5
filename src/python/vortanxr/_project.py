"""What the plug-in builds from a composition file."""

from __future__ import annotations

from collections.abc import Iterable, Iterator, Mapping
from dataclasses import dataclass
from fractions import Fraction
from typing import Any, TypeAlias

import numpy as np
import numpy.typing as npt

from . import _native
from ._arrays import HoldsArrays
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
    path_bytes,
)
from ._diagnostics import MissingFootage, diagnostic_of, diagnostics_of, missing_footage_of
from ._errors import PluginError, SceneError
from ._scene import Scene

Doubles: TypeAlias = "npt.NDArray[np.float64]"


@dataclass(frozen=True)
class Item:
    """A line of the project window."""

    id: int
    """From 1, in the order of creation. Item 1 is the root folder, which has no name."""
    kind: str
    """``"folder"``, ``"footage"`` or ``"composition"``."""
    name: str
    parent_folder: int | None
    """The id of an item; None for the root folder."""
    content: int | None
    """The id of its footage or composition; None for folders."""


@dataclass(frozen=True)
class FrameSequence:
    """The numbered files of a sequence."""

    pattern: str
    """The file's name with one ``#`` for each digit."""
    first: int
    last: int
    count: int
    """Files that exist."""
    padding: int
    """The least number of digits."""
    gaps: tuple[tuple[int, int], ...]
    """Missing numbers, the first and the last of each gap."""


@dataclass(frozen=True)
class ProjectFootage:
    """Footage as the host interprets it."""

    id: int
    kind: str
    """``"file"``, ``"sequence"``, ``"module_file"`` for a texture, or ``"placeholder"`` for what is missing."""
    item: int | None
    """The id of its item."""
    path: str
    """Empty for placeholders."""
    name: str
    width: int
    """Pixels."""
    height: int
    """Pixels."""
    channels: int
    """Including alpha; 0 for placeholders."""
    bits_per_channel: int
    alpha: str
    """``"straight"``, ``"premultiplied"``, ``"ignored"`` or ``"none"``."""
    fields: str
    """``"progressive"``, ``"upper first"`` or ``"lower first"``."""
    pixel_aspect: Fraction
    fps: float
    """Frames per second."""
    duration: Fraction
    """Seconds; 0 for stills."""
    sequence: FrameSequence | None


@dataclass(frozen=True, eq=False, repr=False)
class Stream(HoldsArrays):
    """A property of a layer with its ``n`` keys, whose values are ``k`` numbers each. The arrays cannot be changed."""

    name: str
    """``"position"``, ``"anchor_point"``, ``"zoom"``, ..."""
    value: Doubles
    """(k,) float64: used while there are no keys."""
    times: Doubles
    """(n,) float64: seconds from the layer's start, rising."""
    values: Doubles
    """(n, k) float64: one number, x and y, x, y and z, or alpha, red, green and blue."""

    def __repr__(self) -> str:
        if len(self.times) == 0:
            return f"<Stream {self.name}, {self.value.tolist()}>"
        return f"<Stream {self.name}, {len(self.times)} keys from {self.times[0]:g} s to {self.times[-1]:g} s>"


@dataclass(frozen=True)
class Layer:
    """A layer of a composition."""

    id: int
    kind: str
    """``"footage"``, ``"composition"``, ``"camera"``, ``"light"`` or ``"null"``."""
    label: str
    """What ``vxr import`` shows: ``"spot light"``, ``"still"``, ``"MISSING"``, ..."""
    name: str
    source_item: int | None
    """The id of an item; None for cameras, lights and nulls."""
    blend: str
    """``"normal"``, ``"add"`` or ``"multiply"``."""
    in_point: Fraction
    """Seconds."""
    duration: Fraction
    """Seconds."""
    offset: Fraction
    """Seconds."""
    is_3d: bool
    looks_at_point_of_interest: bool
    """Of cameras and lights: whether the layer turns towards its anchor point."""
    light_type: str | None
    """``"point"``, ``"spot"``, ``"parallel"`` or ``"ambient"``; None for other layers."""
    streams: Mapping[str, Stream]
    """By their names."""


@dataclass(frozen=True)
class ProjectComposition:
    """A composition of the project."""

    id: int
    item: int
    """The id of its item."""
    name: str
    width: int
    """Pixels."""
    height: int
    """Pixels."""
    pixel_aspect: Fraction
    duration: Fraction
    """Seconds."""
    frame_rate: Fraction
    """Frames per second."""
    layers: tuple[Layer, ...]
    """From top to bottom."""


@dataclass(frozen=True, repr=False)
class Project:
    """What an import leaves in the project. Objects refer to each other by the ids of items."""

    items: tuple[Item, ...]
    """The item with the id n is at n - 1."""
    footage: tuple[ProjectFootage, ...]
    compositions: tuple[ProjectComposition, ...]
    missing_footage: tuple[MissingFootage, ...]
    messages: tuple[str, ...]
    """What After Effects would have shown."""
    violations: tuple[str, ...]
    """The rules of the host that the plug-in broke."""
    notes: tuple[str, ...]
    """Worth knowing; nothing is wrong."""

    def __repr__(self) -> str:
        return (
            f"<Project, compositions: {len(self.compositions)}, footage: {len(self.footage)}, "
            f"missing: {len(self.missing_footage)}>"
        )


def _time(members: dict[str, int]) -> Fraction:
    return Fraction(members["value"], members["scale"])


def _ratio(members: dict[str, int]) -> Fraction:
    return Fraction(members["num"], members["den"])


def _item(members: dict[str, Any]) -> Item:
    return Item(**members)


def _footage(members: dict[str, Any]) -> ProjectFootage:
    interpretation = members["interpretation"]
    sequence = members["sequence"]
    if sequence is not None:
        gaps = tuple((gap["first"], gap["last"]) for gap in sequence.pop("gaps"))
        sequence = FrameSequence(gaps=gaps, **sequence)
    conformed = number_of(interpretation["conform_fps"])
    return ProjectFootage(
        pixel_aspect=_ratio(interpretation["pixel_aspect"]),
        fps=conformed if conformed > 0 else number_of(interpretation["native_fps"]),
        duration=_time(members["duration"]),
        sequence=sequence,
        **{
            name: members[name]
            for name in (
                "id", "kind", "item", "path", "name", "width", "height", "channels", "bits_per_channel", "alpha", "fields"
            )
        },
    )  # fmt: skip


def _layer(members: dict[str, Any], streams: Iterator[tuple[int, Doubles, Doubles, Doubles]]) -> Layer:
    made = {}
    for stream in members["streams"]:
        kind, value, times, values = next(streams)
        assert kind == stream["kind"]
        made[stream["name"]] = Stream(stream["name"], value, times, values)
    return Layer(
        in_point=_time(members["in_point"]),
        duration=_time(members["duration"]),
        offset=_time(members["offset"]),
        streams=made,
        **{
            name: members[name]
            for name in (
                "id", "kind", "label", "name", "source_item", "blend", "is_3d", "looks_at_point_of_interest", "light_type"
            )
        },
    )  # fmt: skip


def _composition(
    members: dict[str, Any], streams: Iterator[tuple[int, Doubles, Doubles, Doubles]]
) -> ProjectComposition:
    return ProjectComposition(
        pixel_aspect=_ratio(members["pixel_aspect"]),
        duration=_time(members["duration"]),
        frame_rate=_ratio(members["frame_rate"]),
        layers=tuple(_layer(layer, streams) for layer in members["layers"]),
        **{name: members[name] for name in ("id", "item", "name", "width", "height")},
    )


def _project(document: dict[str, Any], columns: list[tuple[int, Doubles, Doubles, Doubles]]) -> Project:
    streams = iter(columns)
    return Project(
        items=tuple(map(_item, document["items"])),
        footage=tuple(map(_footage, document["footage"])),
        compositions=tuple(_composition(one, streams) for one in document["compositions"]),
        missing_footage=tuple(map(missing_footage_of, document["import"]["missing_footage"])),
        messages=tuple(message["text"] for message in document["messages"]),
        violations=tuple(finding["text"] for finding in document["discipline"]["problems"]),
        notes=tuple(document["import"]["notes"]),
    )


def import_scene(
    scene: Scene | Path,
    *,
    host: str = "today",
    search: Iterable[Path] | None = None,
    maps: Mapping[str, Path] | None = None,
    name_encoding: str | None = None,
    bundle: Path | None = None,
    progress: Progress | None = None,
    cancel: Cancel | None = None,
) -> Project:
    """Have the plug-in import a composition file into a small host, and return the project.

    The plug-in reads the file itself, now; of a Scene only ``path``, ``search`` and ``maps`` are used. ``search`` and
    ``maps`` say where footage is today, as for read_scene(). ``host`` is ``"today"``, ``"classic"`` or a version such
    as ``"9.31"``. ``name_encoding``, ``"windows-1252"`` or ``"mac-roman"``, is the encoding of
    names that are not UTF-8. ``bundle`` is the plug-in; without it the environment variable VXR_BUNDLE names one, or it is the one
    of this installation.

    ``progress`` and ``cancel`` are as for read_scene(). They are called until the plug-in begins, and ``progress`` at
    the end. One import of a process runs at a time; others wait.

    Raises SceneError for a file from which nothing is imported, PluginError for an import that does not finish.
    """
    path = scene.path if isinstance(scene, Scene) else scene
    if isinstance(scene, Scene):
        search = scene.search if search is None else search
        maps = scene.maps if maps is None else maps
    encoded, folders, mapped = path_bytes(path), folder_list(search or ()), map_list(maps or {})
    if "\0" in host or not _native.is_host(host):
        raise ValueError(f'host is {host!r}; it takes "classic", "today", a version, or both as in "today:25.3"')
    if name_encoding is not None and not _native.is_name_encoding(name_encoding):
        raise ValueError(f'name_encoding is {name_encoding!r}; it takes "windows-1252", "mac-roman" or None')
    watch = Watch(progress, cancel)
    watch(0.0)
    try:
        text, columns = _native.import_scene(
            encoded,
            folders,
            mapped,
            bundle_bytes(bundle),
            host,
            name_encoding or "",
            watch,
        )
    except RuntimeError as error:
        raise PluginError((str(error),)) from error
    document = members_of(text)
    run = document["import"]
    if document["error"] is not None:
        raise SceneError(diagnostic_of(document["error"]), diagnostics_of(run["diagnostics"]))
    project = _project(document, columns)
    if not run["finished"]:
        raise PluginError(tuple(run["problems"]), project, diagnostics_of(run["diagnostics"]))
    watch(1.0)
    return project
