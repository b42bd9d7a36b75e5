"""Pages about scenes, for anyone with a browser."""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from dataclasses import dataclass

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
    path_bytes,
    path_list,
)
from ._diagnostics import Diagnostic, diagnostics_of
from ._errors import OutputError, PluginError


@dataclass(frozen=True)
class ReportedScene:
    """What a page says about a scene. True in conditions when it imports and no footage is missing."""

    file: str
    """As it was named."""
    exit_code: int
    """As of ``vxr report``: 0 imports, 1 refused, 3 cannot be read, 4 footage is missing."""
    verdict: str
    """A sentence."""
    missing_footage: int
    """Files."""
    diagnostics: tuple[Diagnostic, ...]

    def __bool__(self) -> bool:
        return self.exit_code == 0


def write_report(
    paths: Iterable[Path],
    output: Path,
    *,
    pictures: int = 12,
    threads: int = 1,
    search: Iterable[Path] = (),
    maps: Mapping[str, Path] = {},
    bundle: Path | None = None,
    progress: Progress | None = None,
    cancel: Cancel | None = None,
) -> tuple[ReportedScene, ...]:
    """Write one HTML page that shows scenes to anyone with a browser, as ``vxr report`` does.

    A scene that is refused or cannot be read stands in the page, too. ``pictures`` (0 to 100) is how many frames of a
    scene are drawn at most, with many scenes fewer, and ``threads`` how many processors draw them, 0 for all.

    ``progress`` and ``cancel`` are called before each scene; they must not import anything. For ``search`` and ``maps``
    see read_scene(), for the other parameters import_scene().

    Raises OutputError for an output that is a file that is read, PluginError for one that cannot be written.
    """
    if not 0 <= pictures <= 100:
        raise ValueError(f"pictures is {pictures}; it takes 0 to 100")
    if not 0 <= threads <= 256:
        raise ValueError(f"threads is {threads}; it takes 0 to 256")
    watch = Watch(progress, cancel)
    scenes = path_list(paths, "paths", "scene")
    if not scenes:
        raise ValueError("paths names no scene")
    arguments = (
        scenes,
        folder_list(search),
        map_list(maps),
        bundle_bytes(bundle),
        path_bytes(output),
        pictures,
        threads,
        watch,
    )
    watch(0.0)
    try:
        document = members_of(_native.write_report(*arguments))
    except ValueError as refusal:
        raise OutputError(str(refusal)) from None
    except RuntimeError as error:
        raise PluginError((str(error),)) from error
    watch(1.0)
    return tuple(
        ReportedScene(
            file=one["file"],
            exit_code=one["exit_code"],
            verdict=one["verdict"],
            missing_footage=one["missing_footage"],
            diagnostics=diagnostics_of(one["diagnostics"]),
        )
        for one in document["scenes"]
    )
