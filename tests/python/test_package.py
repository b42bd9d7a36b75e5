"""The package as a whole: its documents, its help, and what it says about a library of another version."""

import inspect
import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest
import vortanxr as vx
from conftest import PROJECT

PACKAGE = pathlib.Path(vx.__file__).parent


def test_the_blocks_of_the_documents_run_as_printed(tmp_path, monkeypatch, examples):
    renders = tmp_path / "renders"
    shutil.copytree(examples / "square", renders)
    shutil.copy(examples / "square" / "courtyard_020.aec", tmp_path / "shot.aec")
    shutil.copy(examples / "keyframes" / "orbit_030.aec", tmp_path / "old.aec")
    shutil.copy(next(examples.glob("textured/*.txl")), tmp_path / "cloth.txl")
    monkeypatch.chdir(tmp_path)
    names: dict[str, object] = {}
    for document, count in (("README.md", 1), ("docs/python.md", 5)):
        text = (PROJECT / document).read_text(encoding="utf-8")
        blocks = re.findall(r"^```python\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
        assert len(blocks) == count, document
        for block in blocks:
            # The one thing that a test has elsewhere.
            exec(compile(block.replace("/mnt/renders", str(renders)), document, "exec"), names)
    assert (vx.read_texture("negative.txl").color == 255 - vx.read_texture("cloth.txl").color).all()
    assert pathlib.Path("shot.glb").read_bytes().startswith(b"glTF")
    assert names["relinked"]
    assert pathlib.Path("shots.html").read_text(encoding="utf-8").startswith("<!doctype html>")


def test_everything_has_help_and_types():
    for name in vx.__all__:
        thing = getattr(vx, name)
        if inspect.isfunction(thing):
            signature = inspect.signature(thing)
            assert signature.return_annotation is not signature.empty, name
            assert all(one.annotation is not one.empty for one in signature.parameters.values()), name
        if inspect.isfunction(thing) or inspect.isclass(thing):
            # What a dataclass writes itself begins with its name.
            assert thing.__doc__ and not thing.__doc__.startswith(f"{name}("), name
    assert (PACKAGE / "py.typed").exists()


def test_the_document_says_of_every_verb_where_it_is_in_python(vxr):
    verbs = re.findall(r"^  (\S+(?: \S+)?)  ", vxr("--help").split("Verbs:")[1].split("Help:")[0], re.MULTILINE)
    assert {"check", "texture info", "batch plan", "help"} < set(verbs)
    document = (PROJECT / "docs/python.md").read_text(encoding="utf-8")
    section = document.split("## Verbs of the command line\n")[1].split("\n## ")[0]
    rows = [line.split("|")[1:3] for line in section.splitlines() if line.startswith("| `vxr ")]
    assert sorted(re.findall(r"`vxr ([^`]+)`", " ".join(row[0] for row in rows))) == sorted(verbs)
    for verb, place in rows:
        functions = re.findall(r"`(\w+)\(\)`", place)
        assert functions or "no function" in place, verb
        assert all(inspect.isfunction(getattr(vx, name, None)) for name in functions), place


def test_a_library_of_another_version_is_refused_by_name(tmp_path):
    shutil.copytree(PACKAGE, tmp_path / "vortanxr")
    (tmp_path / "vortanxr" / "_version.py").write_text('__version__ = "0.0.1"\n')
    ended = subprocess.run(
        [sys.executable, "-c", "import vortanxr"],
        env={**os.environ, "PYTHONPATH": str(tmp_path)},
        stderr=subprocess.PIPE,
        text=True,
    )
    assert ended.returncode == 1
    assert f"vortanxr is version 0.0.1, but its library is version {vx.__version__}; install both again" in ended.stderr


@pytest.mark.parametrize(
    ("source", "message"),
    [
        pytest.param(
            'unsigned table[64] = {999};\nextern "C" const void* vxr_image_functions() { return table; }',
            r"vxr_image_library\.so has version 999 of the functions; this program needs version \d+",
            id="another version",
        ),
        pytest.param(
            "int nothing_of_ours;",
            r"vxr_image_library\.so has no function vxr_image_functions: it belongs to another version",
            id="one that has none of our functions",
        ),
    ],
)
def test_an_image_library_of_another_version_is_named(tmp_path, examples, source, message):
    shutil.copytree(PACKAGE, tmp_path / "python/vortanxr", symlinks=False)
    (tmp_path / "lib").mkdir()
    shutil.copy(PACKAGE.parents[1] / "lib/VORTANXR_AE.so", tmp_path / "lib")
    (tmp_path / "library.cpp").write_text(source)
    plain = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
    made = tmp_path / "lib/vxr_image_library.so"
    subprocess.run(["c++", "-shared", "-fPIC", tmp_path / "library.cpp", "-o", made], env=plain, check=True)
    program = """
import sys
import pytest
import vortanxr as vx
try:
    vx.import_scene(sys.argv[1])
except vx.PluginError as error:
    print(error)
print(len(vx.read_scene(sys.argv[1], check=False).cameras), "camera")
"""
    # Only the library knows what a PNG is that is named like a TIFF.
    shutil.copy(examples / "square/contact.png", tmp_path / "picture.tif")
    (tmp_path / "shot.aec").write_text(
        "VORTAN XR COMPOSITION\nRESOLUTION 64 36\nFROM 0\nTO 0\nRANGE 1\nFPS 25\n"
        'COMPOSITION NRM "Main" {\n  FILE NRM STRAIGHT "picture.tif"\n}\nCAMERA "Lens" {\n}\n'
    )
    ended = subprocess.run(
        [sys.executable, "-c", program, tmp_path / "shot.aec"],
        env={**os.environ, "PYTHONPATH": str(tmp_path / "python")},
        capture_output=True,
        text=True,
    )
    assert ended.returncode == 0, ended.stderr
    assert re.fullmatch(message + r"[^\n]*\n1 camera\n", ended.stdout), ended.stdout
