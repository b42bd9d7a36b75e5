"""The exceptions of this package. Each carries what it says as data."""

from __future__ import annotations

from typing import TYPE_CHECKING

from ._diagnostics import Diagnostic, printable

if TYPE_CHECKING:
    from ._project import Project


class Error(Exception):
    """A file was refused, or could not be read or written.

    ``diagnostic`` says why, and ``diagnostics`` holds it and everything else that is known about the file. The
    attributes ``code``, ``line``, ``column``, ``reason`` and ``file`` are those of ``diagnostic``.
    """

    def __init__(self, diagnostic: Diagnostic, diagnostics: tuple[Diagnostic, ...] = ()) -> None:
        super().__init__(diagnostic, diagnostics)
        self.diagnostic = diagnostic
        self.diagnostics = diagnostics or (diagnostic,)

    def __str__(self) -> str:
        return str(self.diagnostic)

    @property
    def code(self) -> str:
        """The code, which stays the same in all versions: ``"expected-number"``."""
        return self.diagnostic.code

    @property
    def line(self) -> int | None:
        """The line, from 1; None for a binary file, and for a file as a whole."""
        return self.diagnostic.line

    @property
    def column(self) -> int | None:
        """The column in bytes, from 1; None if ``line`` is None."""
        return self.diagnostic.column

    @property
    def reason(self) -> str:
        """What was found and what is allowed."""
        return self.diagnostic.reason

    @property
    def file(self) -> str:
        """The file as it was named."""
        return self.diagnostic.file


class SceneError(Error):
    """After Effects imports nothing from the composition file, or it cannot be read (code ``cannot-read``)."""


class TextureError(Error):
    """The texture cannot be read or written; a file that was to be replaced is unchanged."""


class PluginError(Exception):
    """An import did not finish, there is no plug-in, or a file could not be written. What an import built before it
    ended stays in ``project``."""

    def __init__(
        self, problems: tuple[str, ...], project: Project | None = None, diagnostics: tuple[Diagnostic, ...] = ()
    ) -> None:
        super().__init__(problems, project, diagnostics)
        self.problems = problems
        """What did not happen, one sentence each."""
        self.project = project
        self.diagnostics = diagnostics
        """What may be the reason."""

    def __str__(self) -> str:
        return "; ".join(map(printable, self.problems))


class PathError(ValueError):
    """A path is empty or contains a zero byte, or ``search`` names something that is not a folder."""


class OutputError(ValueError):
    """The output is a file that the call also reads, or the name of a format or correction is unknown."""


class ArrayError(ValueError):
    """An array of a shape or type that textures do not have."""


class Cancelled(Exception):
    """``cancel`` ended the call. Nothing was written."""
