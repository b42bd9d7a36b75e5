"""Composition files of VORTAN XR (``.aec``) and layered textures of Texalon (``.txl``) in Python.

    import vortanxr as vx

    scene = vx.read_scene("shot.aec", search=["/mnt/renders"])
    for camera in scene.cameras:
        print(camera.name, camera.frames, camera.position)

Functions read and check with the code of the plug-in for After Effects and of the command line ``vxr``. Long calls let
other threads run. Paths are ``str``, ``bytes`` or ``os.PathLike``.
"""

from ._calls import Cancel, Event, Path, Progress
from ._diagnostics import Diagnostic, MissingFootage
from ._errors import (
    ArrayError,
    Cancelled,
    Error,
    OutputError,
    PathError,
    PluginError,
    SceneError,
    TextureError,
)
from ._handover import (
    Correction,
    Deviation,
    Export,
    Proof,
    Relinked,
    RelinkedPath,
    export_scene,
    prove_scene,
    relink_scene,
)
from ._native import version as _native_version
from ._place import find_own_files
from ._preview import Frame, Preview, draw_frames
from ._project import (
    FrameSequence,
    Item,
    Layer,
    Project,
    ProjectComposition,
    ProjectFootage,
    Stream,
    import_scene,
)
from ._report import ReportedScene, write_report
from ._scene import (
    Camera,
    Check,
    Composition,
    Finding,
    Footage,
    Light,
    Nested,
    Null,
    Scene,
    SceneObject,
    check,
    read_scene,
)
from ._texture import Texture, read_texture, write_texture
from ._version import __version__

__all__ = [
    "ArrayError",
    "Camera",
    "Cancel",
    "Cancelled",
    "Check",
    "Composition",
    "Correction",
    "Deviation",
    "Diagnostic",
    "Error",
    "Event",
    "Export",
    "Finding",
    "Footage",
    "Frame",
    "FrameSequence",
    "Item",
    "Layer",
    "Light",
    "MissingFootage",
    "Nested",
    "Null",
    "OutputError",
    "Path",
    "PathError",
    "PluginError",
    "Preview",
    "Progress",
    "Project",
    "ProjectComposition",
    "ProjectFootage",
    "Proof",
    "Relinked",
    "RelinkedPath",
    "ReportedScene",
    "Scene",
    "SceneError",
    "SceneObject",
    "Stream",
    "Texture",
    "TextureError",
    "check",
    "draw_frames",
    "export_scene",
    "import_scene",
    "prove_scene",
    "read_scene",
    "read_texture",
    "relink_scene",
    "write_report",
    "write_texture",
]

if _native_version != __version__:
    raise ImportError(
        f"vortanxr is version {__version__}, but its library is version {_native_version}; "
        "install both again"
    )

find_own_files()
