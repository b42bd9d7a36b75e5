"""Relinking, exports and proofs: by hand-made values, and against the command line, byte for byte."""

import json
import pickle
import threading
import zipfile

import pytest

import vortanxr as vx
from conftest import HEAD, by_night

SCENE = HEAD + b"""COMPOSITION NRM "Main" {
  FILE ADD STRAIGHT "C:\\renders\\wall.tif"
  FILE NRM STRAIGHT "/nowhere/gone.tif"
}
CAMERA "Cam" {
  KEY 3 1 2 3 0 0 0 90
  KEY 9 4 5 6 90 0 0 90 500
}
"""


@pytest.fixture
def path(write):
    return write("shot.aec", SCENE)


@pytest.fixture
def wall(tmp_path):
    path = tmp_path / "store" / "renders" / "wall.tif"
    path.parent.mkdir(parents=True)
    path.write_bytes(b"")
    return path


def test_a_relinked_scene_has_new_paths_and_else_the_same_bytes(path, wall, tmp_path):
    output = tmp_path / "new" / "shot.aec"
    relinked = vx.relink_scene(path, output, search=[tmp_path / "store"])
    assert output.read_bytes() == SCENE.replace(b"C:\\renders\\wall.tif", str(wall).encode())
    assert path.read_bytes() == SCENE
    found, gone = relinked.paths
    assert (found.written, found.line, found.column) == ("C:\\renders\\wall.tif", 8, 21)
    assert found.finding == vx.Finding("found", "tail", str(wall), ())
    assert gone.finding == vx.Finding("missing", None, None, ())
    assert (relinked.output, bool(relinked)) == (str(output), False)


def test_without_an_output_nothing_is_written(path, wall, tmp_path):
    before = sorted(tmp_path.rglob("*"))
    relinked = vx.relink_scene(path, maps={"C:": tmp_path / "store", "/nowhere": tmp_path / "store" / "renders"})
    assert (relinked.output, [one.finding.rule for one in relinked.paths]) == (None, ["map", None])
    assert sorted(tmp_path.rglob("*")) == before


def test_no_scene_is_written_onto_what_is_read(path, wall, tmp_path):
    link = tmp_path / "link.aec"
    link.hardlink_to(path)
    for output in (path, link, wall):
        with pytest.raises(vx.OutputError, match="shot.aec"):
            vx.relink_scene(path, output, search=[tmp_path / "store"])
    for output in (path, link):
        with pytest.raises(vx.OutputError):
            vx.export_scene(path, output, to="glb")
    assert (path.read_bytes(), wall.read_bytes()) == (SCENE, b"")


@pytest.mark.parametrize(
    ("to", "options", "arguments"),
    [
        ("jsx", {}, []),
        pytest.param("jsx", {"undo_safe": True}, ["--undo-safe"], marks=by_night),
        pytest.param("jsx", {"corrected": False}, ["--as", "imported"], marks=by_night),
        pytest.param("gltf", {}, [], marks=by_night),
        ("glb", {"scale": 1}, ["--scale", "1"]),
        ("usda", {"fps": 23.976}, ["--fps", "23.976"]),
    ],
)
def test_exports_are_those_of_the_command_line(to, options, arguments, examples, tmp_path, vxr):
    scene = examples / "interlaced" / "lantern_010.aec"
    theirs, ours = tmp_path / "theirs" / f"a.{to}", tmp_path / "ours" / f"a.{to}"
    document = json.loads(vxr("export", scene, "--to", to, "-o", theirs, "--json", *arguments))
    (expected,) = document["scenes"]
    export = vx.export_scene(scene, ours, to=to, **options)
    assert ours.read_bytes() == theirs.read_bytes()
    assert export.output == str(ours)
    assert [one.name for one in export.corrections] == [one["name"] for one in expected["corrections"]]
    assert [one.code for one in export.losses] == [one["code"] for one in expected["losses"]]
    # Its footage dust0017.tif is not there.
    assert export.footage_missing


def test_what_would_be_exported(path, tmp_path):
    before = sorted(tmp_path.rglob("*"))
    names = {one.name for one in vx.export_scene(path, to="jsx").corrections}
    assert {"linear-keys", "key-noise"} <= names
    without = vx.export_scene(path, to="jsx", without=["key-noise"])
    assert {one.name for one in without.corrections} == names - {"key-noise"}
    assert vx.export_scene(path, to="jsx", corrected=False).corrections == ()
    assert "frame-rate" in {one.name for one in vx.export_scene(path, to="jsx", fps=23.976).corrections}
    assert sorted(tmp_path.rglob("*")) == before


def test_scale_reaches_the_file(path, tmp_path):
    places = []
    for scale in (1, 0.01):
        vx.export_scene(path, tmp_path / "a.gltf", to="gltf", scale=scale)
        nodes = json.loads((tmp_path / "a.gltf").read_text())
        # The camera's first key is at x = 1; glTF is in metres.
        places.append(next(n["translation"][0] for n in nodes["nodes"] if n.get("name") == "Cam"))
    assert places == [pytest.approx(1), pytest.approx(0.01)]


def test_a_package_holds_the_script_and_the_scene(path, tmp_path):
    vx.export_scene(path, tmp_path / "a.zip", to="jsx", package=True)
    with zipfile.ZipFile(tmp_path / "a.zip") as archive:
        names = archive.namelist()
    assert any(name.endswith(".jsx") for name in names) and any(name.endswith("shot.aec") for name in names)


@pytest.mark.parametrize(
    ("options", "error", "named"),
    [
        ({"to": "fbx"}, vx.OutputError, '"fbx" is not an export format'),
        ({"to": "jsx", "without": ["bananas"]}, vx.OutputError, '"bananas" is not the name of a correction'),
        ({"to": "jsx", "without": "turns"}, TypeError, "list of names"),
        ({"to": "jsx", "fps": 0}, ValueError, "fps is 0"),
        ({"to": "jsx", "fps": float("nan")}, ValueError, "fps is nan"),
        ({"to": "glb", "scale": float("inf")}, ValueError, "scale is inf"),
        ({"to": "glb", "package": True}, ValueError, "package"),
        ({"to": "jsx", "corrected": False, "fps": 25}, ValueError, "corrected"),
        ({"to": "jsx", "bundle": "/none.so"}, vx.PluginError, "the plug-in was not loaded"),
        ({"to": "jsx", "cancel": lambda: True}, vx.Cancelled, "cancelled"),
    ],
)
def test_wrong_exports_are_refused_by_name(options, error, named, path, tmp_path):
    with pytest.raises(error, match=named):
        vx.export_scene(path, tmp_path / "out", **options)
    assert not (tmp_path / "out").exists()


def test_what_cannot_be_written(path, tmp_path):
    (tmp_path / "file").write_bytes(b"")
    for write in (
        lambda: vx.relink_scene(path, tmp_path / "file" / "a.aec"),
        lambda: vx.export_scene(path, tmp_path / "file" / "a.glb", to="glb"),
    ):
        with pytest.raises(vx.PluginError) as caught:
            write()
        assert "file" in caught.value.problems[0]


@pytest.mark.parametrize(
    "call", [vx.relink_scene, lambda path: vx.export_scene(path, to="glb"), vx.prove_scene], ids=["relink", "export", "prove"]
)
def test_refused_scenes_raise_their_place(call, write):
    with pytest.raises(vx.SceneError) as caught:
        call(write("shot.aec", b'VORTAN XR COMPOSITION\n  FPS "abc"\n'))
    assert (caught.value.line, caught.value.code) == (2, "expected-number")
    with pytest.raises(vx.PathError, match="zero byte"):
        call("a\0")


def test_a_proof_is_that_of_the_command_line(examples, vxr):
    scene = examples / "square" / "courtyard_020.aec"
    proof = vx.prove_scene(scene, at=[3])
    assert proof.document == json.loads(vxr("proof", "--json", "--at", "3", scene))
    assert proof.goal_px == 0.05
    by_target = {one.target: one for one in proof.deviations}
    assert list(by_target) == proof.document["targets"]
    corrected = by_target["corrected"]
    assert (corrected.camera, corrected.judged, corrected.meets_goal) == ("Camera", True, True)
    assert corrected.largest_px < 0.05 < by_target["imported"].largest_px
    assert bool(proof)
    assert pickle.loads(pickle.dumps(proof)) == proof


def test_wrong_proofs_are_refused_by_name(path):
    with pytest.raises(ValueError, match="grid_points is 0"):
        vx.prove_scene(path, grid_points=0)


def test_exports_proofs_and_imports_at_the_same_time(examples):
    scene = examples / "square" / "courtyard_020.aec"
    calls = [
        lambda: vx.import_scene(scene),
        lambda: vx.export_scene(scene, to="glb"),
        lambda: vx.prove_scene(scene),
        lambda: vx.relink_scene(scene),
    ]
    expected = [call() for call in calls]
    results = [None] * len(calls)

    def run(slot):
        results[slot] = calls[slot]()

    threads = [threading.Thread(target=run, args=(slot,)) for slot in range(len(calls))]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == expected
