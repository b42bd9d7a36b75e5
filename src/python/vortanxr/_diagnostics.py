"""Diagnostics: what is wrong with a file, or worth knowing about it."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any

from . import _native



def printable(text: str) -> str:
    """The text on one line, as ``vxr`` shows it: control characters and bytes that are not UTF-8 as ``\\xNN``."""
    return _native.printable(text.encode("utf-8", "surrogateescape"))


@dataclass(frozen=True)
class MissingFootage:
    """Footage that is not where a scene says."""

    path: str
    """As it is written in the scene."""
    tried: tuple[str, ...]
    """Where it was looked for, in this order."""
    placeholder: str
    """The name of what replaces it in After Effects."""


@dataclass(frozen=True)
class Diagnostic:
    """Something that is worth knowing about a file. ``str()`` gives it on one line, as ``vxr`` shows it."""

    code: str
    """Stays the same in all versions: ``"expected-number"``, ``"footage-missing"``."""
    severity: str
    """``"error"``: the file is refused. ``"loss"``: the picture or the motion will differ from what the file says.
    ``"warning"``: only you can tell. ``"note"``: harmless."""
    reason: str
    """What was found, and what is allowed."""
    file: str
    """As it was named."""
    line: int | None = None
    """In text files, from 1."""
    column: int | None = None
    """In bytes, from 1."""
    offset_bytes: int | None = None
    """From the start of the file."""
    within: tuple[str, ...] = ()
    """The blocks or chunks around the place, outermost first."""
    effects: tuple[str, ...] = ()
    """What will happen, and what to do; one sentence each."""
    count: int = 1
    """How often it occurs; the place is the first."""
    source_line: str | None = None
    """The line of an error, without its line end."""
    limit: str | None = None
    """The limit that the file exceeds, as ``vxr limits`` names it."""
    missing_footage: MissingFootage | None = None
    """If it is about such footage."""

    def __str__(self) -> str:
        place = "".join(f":{number}" for number in (self.line, self.column) if number is not None)
        return f"{printable(self.file)}{place}: {self.severity}: {printable(self.reason)} [{self.code}]"


def missing_footage_of(document: dict[str, Any]) -> MissingFootage:
    return MissingFootage(document["path"], tuple(document["tried"]), document["placeholder"])


def diagnostic_of(document: dict[str, Any]) -> Diagnostic:
    at = document["at"]
    return Diagnostic(
        code=document["code"],
        severity=document["severity"],
        reason=document["reason"],
        file=at["file"],
        line=at["line"],
        column=at["column"],
        offset_bytes=at["offset_bytes"],
        within=tuple(document["within"]),
        effects=tuple(document["effects"]),
        count=document["count"],
        source_line=document["source_line"],
        limit=document["limit"]["id"] if document["limit"] is not None else None,
        missing_footage=missing_footage_of(document) if "tried" in document else None,
    )


def diagnostics_of(documents: list[dict[str, Any]]) -> tuple[Diagnostic, ...]:
    return tuple(diagnostic_of(one) for one in documents)
