"""What all calls share: paths, documents, and how long calls are watched."""

from __future__ import annotations

import json
import os
from collections.abc import Callable, Iterable, Mapping
from typing import Any, Protocol, TypeAlias

from . import _native
from ._errors import Cancelled, PathError

Path: TypeAlias = "str | bytes | os.PathLike[str] | os.PathLike[bytes]"


class Event(Protocol):
    """What has a method ``is_set``, such as ``threading.Event``."""

    def is_set(self) -> bool: ...


Progress: TypeAlias = Callable[[float], object]
Cancel: TypeAlias = "Event | Callable[[], object]"


def path_bytes(path: Path) -> bytes:
    """The bytes of a path. Raises PathError if it is empty or contains a zero byte, TypeError if it is not a path."""
    encoded = os.fsencode(path)
    if not encoded:
        raise PathError("the path is empty")
    if b"\0" in encoded:
        raise PathError(f"the path contains a zero byte: {encoded!r}")
    # The command line reads the standard input for this name.
    return b"./-" if encoded == b"-" else encoded


def optional_path_bytes(path: Path | None) -> bytes:
    """The bytes of a path; empty without one."""
    return path_bytes(path) if path is not None else b""


def bundle_bytes(bundle: Path | None) -> bytes:
    """The chosen plug-in; empty for the one of this installation."""
    return optional_path_bytes(bundle if bundle is not None else os.environ.get("VXR_BUNDLE") or None)


def path_list(paths: Iterable[Path], name: str, kind: str) -> list[bytes]:
    """The bytes of paths. ``name`` is that of the parameter, ``kind`` a word for what it takes."""
    if isinstance(paths, (str, bytes, os.PathLike)):
        raise TypeError(f"{name} takes a list of {kind}s; for one {kind} write [{kind}]")
    return [path_bytes(path) for path in paths]


def folder_list(search: Iterable[Path]) -> list[bytes]:
    folders = path_list(search, "search", "folder")
    for folder in folders:
        if not os.path.isdir(folder):
            raise PathError(f"search names a path that is not a folder: {os.fsdecode(folder)!r}")
    return folders


def map_list(maps: Mapping[str, Path]) -> list[bytes]:
    """The maps as the command line takes them."""
    texts = []
    for beginning, folder in maps.items():
        encoded = os.fsencode(beginning)
        if b"=" in encoded:
            raise PathError(f"the beginning of a path in maps contains an equals sign: {beginning!r}")
        text = encoded + b"=" + path_bytes(folder)
        if b"\0" in encoded or not _native.is_path_map(text):
            raise PathError(f"the beginning of a path in maps is empty or contains a zero byte: {beginning!r}")
        texts.append(text)
    return texts


def text_of(encoded: bytes) -> str:
    """A text of a file. Bytes that are not UTF-8 are kept as in the names of files: os.fsencode() gives them back."""
    return encoded.decode("utf-8", "surrogateescape")


def text_bytes(text: str) -> bytes:
    """The other direction of text_of()."""
    return text.encode("utf-8", "surrogateescape")


def _text_or_members(members: dict[str, Any]) -> Any:
    # This is how a document holds a text that is not UTF-8.
    return text_of(bytes.fromhex(members["bytes"])) if members.keys() == {"bytes"} else members


def members_of(document: str) -> dict[str, Any]:
    # The hook is a call for each of thousands of objects, and hardly any document needs it.
    hook = _text_or_members if '{"bytes":' in document else None
    members: dict[str, Any] = json.loads(document, object_hook=hook)
    return members


def number_of(value: float | str) -> float:
    """A real number of a document, where JSON has no infinite numbers."""
    return float(value)


class Watch:
    """Tells ``progress`` how much of a call is done, and ends the call when ``cancel`` says so."""

    def __init__(self, progress: Progress | None, cancel: Cancel | None) -> None:
        self._progress = progress
        is_set = getattr(cancel, "is_set", None)
        self._cancelled: Callable[[], object] | None = is_set if callable(is_set) else cancel  # type: ignore[assignment]
        for name, call in (("progress", progress), ("cancel", self._cancelled)):
            if call is not None and not callable(call):
                raise TypeError(f"{name} is not callable: {call!r}")

    def __call__(self, fraction: float) -> None:
        if self._cancelled is not None and self._cancelled():
            raise Cancelled("cancelled by the caller")
        if self._progress is not None:
            self._progress(min(max(fraction, 0.0), 1.0))
