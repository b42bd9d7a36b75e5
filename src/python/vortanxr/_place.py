"""Where the files are that are installed with this package: the plug-in, and the library for images."""

from pathlib import Path

from . import _native


def find_own_files() -> None:
    """Look for them beside the program ``vxr`` of the same build or installation."""
    package = Path(__file__).absolute().parent
    build = package.parents[1]  # of PREFIX/python/vortanxr
    prefix = build if package.parent.name == "python" and (build / "lib").is_dir() else package.parents[3]
    _native.set_own_program(str(prefix / "bin" / "vxr"))
