"""Composition files (``.aec``)."""

from __future__ import annotations

import functools
from collections.abc import Iterable, Mapping
from dataclasses import dataclass, field
from typing import Any, TypeAlias

import numpy as np
import numpy.typing as npt

from . import _native
from ._arrays import HoldsArrays
from ._calls import Cancel, Path, Progress, Watch, folder_list, map_list, members_of, number_of, path_bytes, text_of
from ._diagnostics import Diagnostic, diagnostic_of, diagnostics_of
from ._errors import SceneError

Ints: TypeAlias = "npt.NDArray[np.int32]"
Floats: TypeAlias = "npt.NDArray[np.float32]"


@dataclass(frozen=True, eq=False, repr=False)
class SceneObject(HoldsArrays):
    """A camera, light or null with its ``n`` keys, in the order of the file: neither sorted nor without repetition.

    The arrays show memory that belongs to what was read, without a copy, and cannot be changed; they keep it alive.
    The axes of a scene: x to the right, y up, z away from the viewer. One scene unit is one pixel in After Effects.
    """

    name: str
    line: int
    """Of the name, from 1."""
    column: int
    """In bytes, from 1."""
    frames: Ints
    """(n,) int32: frame numbers on the scene's timeline."""
    position: Floats
    """(n, 3) float32: x, y, z in scene units."""
    rotation: Floats
    """(n, 3) float32, degrees: heading, pitch and bank of cameras and lights; about x, y and z of nulls."""

    def __repr__(self) -> str:
        keys = "no keys"
        if len(self.frames) > 0:
            count = "1 key" if len(self.frames) == 1 else f"{len(self.frames)} keys"
            keys = f"{count} from frame {self.frames.min()} to {self.frames.max()}"
        return f"<{type(self).__name__} {self.name!r}, {keys}>"


@dataclass(frozen=True, eq=False, repr=False)
class Camera(SceneObject):
    """A camera. Its heading 0 looks along +z; a growing heading turns left, a positive pitch looks up."""

    field_of_view: Floats
    """(n,) float32, degrees: the horizontal angle of view."""
    target_distance: Floats
    """(n,) float32, scene units: from the camera to its point of interest; 1000 where the file has none."""


@dataclass(frozen=True, eq=False, repr=False)
class Light(SceneObject):
    """A light. It looks as a camera does. Only its position and rotation have keys."""

    type: str
    """``"omni"``, ``"spot"``, ``"parallel"``, ``"parallel-spot"``, ``"tube"`` or ``"area"``."""
    shadow: str
    """``"none"``, ``"soft"``, ``"hard"`` or ``"area"``."""
    color: tuple[float, float, float]
    """Red, green, blue; usually 0 to 1."""
    intensity: float
    """1 for 100 %."""
    cone_angle: float
    """Degrees."""


@dataclass(frozen=True, eq=False, repr=False)
class Null(SceneObject):
    """A null object."""


@dataclass(frozen=True)
class Finding:
    """Where footage is today."""

    outcome: str
    """``"found"``, ``"ambiguous"`` or ``"missing"``."""
    rule: str | None
    """How it was found: ``"as-written"``, ``"beside-scene"``, ``"tail"``, ...; None unless it was."""
    path: str | None
    """The full path of the file, or of one file of the sequence; None unless it was found."""
    candidates: tuple[str, ...]
    """The files that may be meant, when ``outcome`` is ``"ambiguous"`` or ``prefer`` decided."""


@dataclass(frozen=True)
class Footage:
    """A footage entry: a file or a numbered sequence."""

    written: str | None
    """The path as the scene has it, from any system; None for an entry at top level without a quoted path."""
    is_sequence: bool
    blend: str | None
    """``"normal"``, ``"add"`` or ``"multiply"``; None at top level."""
    alpha: str
    """``"premultiplied"`` or ``"straight"``."""
    line: int
    """Of the path, from 1."""
    column: int
    """In bytes, from 1."""
    finding: Finding | None
    """Where it is today; None without a path."""
    top_level: bool
    """Whether it is in no composition, as special passes are."""


@dataclass(frozen=True)
class Nested:
    """A composition as an entry of another one: ``scene.compositions[nested.index]``."""

    index: int


@dataclass(frozen=True)
class Composition:
    """A composition. The tree of compositions is kept as a list, ``Scene.compositions``, because it may be deep."""

    name: str
    blend: str
    """How it is composited as a layer of its parent: ``"normal"``, ``"add"`` or ``"multiply"``."""
    parent: int | None
    """The place of its parent in ``Scene.compositions``; None for the root."""
    entries: tuple[Footage | Nested, ...]
    """Each becomes a layer above those before it."""
    line: int
    """Of the name, from 1."""
    column: int
    """In bytes, from 1."""


@dataclass(frozen=True, repr=False)
class Scene:
    """A composition file. Objects compare by value, and can be copied and pickled."""

    path: str
    """The full path. Like all texts of files, it keeps bytes that are not UTF-8 as ``os.fsdecode()`` does."""
    width: int
    """Pixels."""
    height: int
    """Pixels."""
    first_frame: int
    last_frame: int
    frame_range: int
    """The length of compositions, in frames."""
    fps: int
    """Frames per second."""
    pixel_aspect: float
    """The width of a pixel, divided by its height."""
    local: bool
    """Whether layers begin at ``first_frame``."""
    fields: str
    """``"none"``, ``"even"`` or ``"odd"``."""
    compositions: tuple[Composition, ...]
    """The root first, and every composition before those in it."""
    footage: tuple[Footage, ...]
    """All footage entries, in the order of the file."""
    objects: tuple[SceneObject, ...]
    """Cameras, lights and nulls, in the order of the file."""
    diagnostics: tuple[Diagnostic, ...]
    """What ``vxr check`` reports; empty when the scene was read with ``check=False``."""
    search: tuple[str, ...] = ()
    """The folders in which footage was looked for."""
    maps: Mapping[str, str] = field(default_factory=dict)
    """The beginnings of paths that were mapped to folders."""

    @functools.cached_property
    def cameras(self) -> tuple[Camera, ...]:
        """The cameras, in the order of the file."""
        return tuple(one for one in self.objects if isinstance(one, Camera))

    @functools.cached_property
    def lights(self) -> tuple[Light, ...]:
        """The lights, in the order of the file."""
        return tuple(one for one in self.objects if isinstance(one, Light))

    @functools.cached_property
    def nulls(self) -> tuple[Null, ...]:
        """The nulls, in the order of the file."""
        return tuple(one for one in self.objects if isinstance(one, Null))

    def __repr__(self) -> str:
        return (
            f"<Scene {self.path!r}, {self.width} x {self.height}, frames {self.first_frame} to {self.last_frame} "
            f"at {self.fps} a second, compositions: {len(self.compositions)}, footage: {len(self.footage)}, "
            f"cameras: {len(self.cameras)}, lights: {len(self.lights)}, nulls: {len(self.nulls)}, "
            f"diagnostics: {len(self.diagnostics)}>"
        )


@dataclass(frozen=True)
class Check:
    """The result of a check of a composition file. True in conditions when nothing is wrong."""

    path: str
    """As it was named."""
    verdict: str
    """``"ok"``, ``"incomplete"`` where footage is missing, ``"refused"`` or ``"unreadable"``."""
    diagnostics: tuple[Diagnostic, ...]
    """The error first if there is one, then everything that will arrive differently, in the order of the file."""

    def __bool__(self) -> bool:
        return self.verdict == "ok"


_PREFERENCES = ("newest", "largest", "first")


def _preference(prefer: str | None) -> str:
    if prefer is not None and prefer not in _PREFERENCES:
        raise ValueError(f"prefer is {prefer!r}; it takes {', '.join(_PREFERENCES)} or None")
    return prefer or ""


def _footage(entry: dict[str, Any]) -> Footage:
    found = entry.pop("finding")
    if found is None:
        return Footage(finding=None, **entry)
    candidates = tuple(found.pop("candidates"))
    return Footage(finding=Finding(candidates=candidates, **found), **entry)


def _composition(entry: dict[str, Any], footage: tuple[Footage, ...]) -> Composition:
    entries = tuple(
        footage[one["footage"]] if "footage" in one else Nested(one["composition"]) for one in entry.pop("entries")
    )
    return Composition(entries=entries, **entry)


_KINDS: dict[str, type[SceneObject]] = {"camera": Camera, "light": Light, "null": Null}
_COLUMNS = ("frames", "position", "rotation", "field_of_view", "target_distance")


def _object(entry: dict[str, Any], columns: tuple[Any, ...]) -> SceneObject:
    kind = _KINDS[entry.pop("kind")]
    if kind is Light:
        red, green, blue = entry["color"]
        entry["color"] = (number_of(red), number_of(green), number_of(blue))
        entry["intensity"] = number_of(entry["intensity"])
        entry["cone_angle"] = number_of(entry["cone_angle"])
    entry.update(zip(_COLUMNS, columns))
    # A frozen class is given each attribute by a call of its own; scenes have thousands of objects.
    made = object.__new__(kind)
    made.__dict__.update(entry)
    return made


def _scene(
    document: dict[str, Any], columns: list[tuple[Any, ...]], search: list[bytes], maps: list[bytes]
) -> Scene:
    scene = document["scene"]
    footage = tuple(_footage(entry) for entry in scene.pop("footage"))
    return Scene(
        compositions=tuple(_composition(entry, footage) for entry in scene.pop("compositions")),
        footage=footage,
        objects=tuple(map(_object, scene.pop("objects"), columns)),
        pixel_aspect=number_of(scene.pop("pixel_aspect")),
        diagnostics=diagnostics_of(document["diagnostics"]),
        search=tuple(text_of(folder) for folder in search),
        maps={text_of(one): text_of(other) for one, _, other in (text.partition(b"=") for text in maps)},
        **scene,
    )


def read_scene(
    path: Path,
    *,
    search: Iterable[Path] = (),
    maps: Mapping[str, Path] = {},
    prefer: str | None = None,
    check: bool = True,
    progress: Progress | None = None,
    cancel: Cancel | None = None,
) -> Scene:
    """Read a composition file as the plug-in does, and look for its footage.

    Footage that is neither where the file says nor beside the file is looked for in the folders ``search`` and
    everything below them, and by ``maps``, which gives folders for the beginnings of paths, such as
    ``{"C:": "/mnt/c"}``. ``prefer`` takes the ``"newest"``, the ``"largest"`` or the ``"first"`` of several files
    that may be meant.

    With ``check``, ``Scene.diagnostics`` says what will arrive differently in After Effects; this opens the footage.

    ``progress`` is called with a fraction from 0 to 1. ``cancel`` is an event or a function; once it is set or
    returns true, the call raises Cancelled. Both are asked several times a second, on the thread of the call, which
    lets other threads run meanwhile. What they raise ends the call.

    Raises SceneError for a file from which After Effects imports nothing, and for one that cannot be read.
    """
    encoded, folders, mapped = path_bytes(path), folder_list(search), map_list(maps)
    watch = Watch(progress, cancel)
    watch(0.0)
    text, columns = _native.read_scene(encoded, folders, mapped, _preference(prefer), check, False, True, watch)
    document = members_of(text)
    if document["error"] is not None:
        raise SceneError(diagnostic_of(document["error"]), diagnostics_of(document["diagnostics"]))
    scene = _scene(document, columns, folders, mapped)
    watch(1.0)
    return scene


def check(
    path: Path,
    *,
    search: Iterable[Path] = (),
    maps: Mapping[str, Path] = {},
    read_pixels: bool = False,
    progress: Progress | None = None,
    cancel: Cancel | None = None,
) -> Check:
    """Report mistakes in a composition file, and what an import will change, as ``vxr check`` does.

    Raises nothing for a file that is refused or cannot be read: the error is the first of the diagnostics.
    ``read_pixels`` also reads whole pictures and every frame of sequences. For the other parameters see read_scene().
    """
    encoded, folders, mapped = path_bytes(path), folder_list(search), map_list(maps)
    watch = Watch(progress, cancel)
    watch(0.0)
    text, _ = _native.read_scene(encoded, folders, mapped, "", True, read_pixels, False, watch)
    document = members_of(text)
    watch(1.0)
    return Check(text_of(encoded), document["verdict"], diagnostics_of(document["diagnostics"]))
