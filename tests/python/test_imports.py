"""Imports: by hand-made values, and against `vxr import --json`."""

import copy
import json
import pickle
import shutil
import threading
from fractions import Fraction

import numpy as np
import pytest

import vortanxr as vx
from conftest import HEAD, by_night

SCENE = (
    HEAD
    + b"""COMPOSITION NRM "Main" {
  FILE ADD STRAIGHT "C:\\renders\\wall.tif"
}
CAMERA "Cam" {
  KEY 3 1 2 3 0 0 0 90
  KEY 9 4 5 6 90 0 0 90 500
}
LIGHT "Key" {
  TYPE SPOT
}
"""
)


@pytest.fixture
def path(write):
    return write("shot.aec", SCENE)


def test_what_the_plug_in_builds(path):
    project = vx.import_scene(path)
    (composition,) = project.compositions
    assert (composition.name, composition.width, composition.height) == ("Main", 640, 360)
    # RANGE 10 at FPS 24.
    assert (composition.duration, composition.frame_rate) == (Fraction(10, 24), 24)
    assert project.items[composition.item - 1].content == composition.id
    # New layers go on top, and the last object is added first.
    assert [(layer.name, layer.kind) for layer in composition.layers] == [
        ("Cam", "camera"),
        ("Key", "light"),
        ("wall.tif", "footage"),
    ]
    camera, light, wall = composition.layers
    assert (light.light_type, light.label, wall.blend, wall.label) == ("spot", "spot light", "add", "MISSING")
    assert camera.looks_at_point_of_interest and camera.is_3d
    (missing,) = project.missing_footage
    assert (missing.path, missing.placeholder) == ("C:\\renders\\wall.tif", "wall.tif")
    assert [one.kind for one in project.footage] == ["placeholder"]


def test_keys_are_arrays_in_seconds(path):
    camera = vx.import_scene(path).compositions[0].layers[0]
    # The layer's time begins at FROM only with LOCAL.
    position = camera.streams["position"]
    np.testing.assert_allclose(position.times - position.times[0], [0, 6 / 24], rtol=0, atol=1e-12)
    # One scene unit is one pixel, and y points down.
    np.testing.assert_array_equal(position.values, np.array([[1.0, -2, 3], [4, -5, 6]]), strict=True)
    # Looking along +z from (1, 2, 3), then along -x from (4, 5, 6).
    np.testing.assert_allclose(
        camera.streams["anchor_point"].values, [[1, -2, 1003], [4 - 500, -5, 6]], rtol=0, atol=1e-4
    )
    # 90 degrees in 640 pixels.
    np.testing.assert_allclose(camera.streams["zoom"].values, [[320], [320]], rtol=0, atol=1e-4)
    assert camera.streams["zoom"].value.shape == (1,)
    for array in (position.times, position.values, position.value):
        assert not array.flags.writeable and not array.flags.owndata


@pytest.mark.parametrize("host", ["today", pytest.param("classic", marks=by_night), "9.31"])
@pytest.mark.parametrize(
    "example", [pytest.param("interlaced/lantern_010.aec", marks=by_night), "square/courtyard_020.aec"]
)
def test_the_project_is_that_of_the_command_line(host, example, examples, vxr):
    document = json.loads(vxr("import", "--json", "--host", host, examples / example))
    project = vx.import_scene(examples / example, host=host)
    assert [(one.id, one.kind, one.name, one.parent_folder, one.content) for one in project.items] == [
        (one["id"], one["kind"], one["name"], one["parent_folder"], one["content"]) for one in document["items"]
    ]
    for ours, theirs in zip(project.footage, document["footage"], strict=True):
        assert (ours.path, ours.width, ours.height, ours.channels) == (
            theirs["path"], theirs["width"], theirs["height"], theirs["channels"]
        )  # fmt: skip
        aspect = theirs["interpretation"]["pixel_aspect"]
        assert ours.pixel_aspect == Fraction(aspect["num"], aspect["den"])
        assert (ours.sequence is None) == (theirs["sequence"] is None)
        if ours.sequence is not None:
            assert (ours.sequence.pattern, ours.sequence.count) == (
                theirs["sequence"]["pattern"], theirs["sequence"]["count"]
            )  # fmt: skip
    keys = 0
    for ours, theirs in zip(project.compositions, document["compositions"], strict=True):
        for layer, told in zip(ours.layers, theirs["layers"], strict=True):
            assert (layer.id, layer.name, layer.source_item) == (told["id"], told["name"], told["source_item"])
            assert layer.in_point == Fraction(told["in_point"]["value"], told["in_point"]["scale"])
            assert list(layer.streams) == [stream["name"] for stream in told["streams"]]
            for stream in told["streams"]:
                expected = [[key[0] / key[1], *key[2:]] for key in stream["keyframes"]]
                read = layer.streams[stream["name"]]
                assert np.column_stack([read.times, read.values]).tolist() == expected
                keys += len(expected)
    assert (keys > 0) == (host != "9.31")


def test_footage_is_imported_from_where_it_is_today(path, tmp_path, examples):
    renders = tmp_path / "store" / "renders"
    renders.mkdir(parents=True)
    shutil.copy(next(examples.glob("square/*.tif")), renders / "wall.tif")
    for project in (
        vx.import_scene(path, search=[tmp_path / "store"]),
        vx.import_scene(vx.read_scene(path, search=[tmp_path / "store"])),
        vx.import_scene(vx.read_scene(path, maps={"C:": tmp_path / "store"})),
    ):
        assert project.missing_footage == ()
        assert [(one.kind, one.path) for one in project.footage] == [("file", str(renders / "wall.tif"))]
    assert len(vx.import_scene(vx.read_scene(path, search=[tmp_path]), search=[]).missing_footage) == 1


def test_names_in_other_encodings(write):
    path = write("shot.aec", HEAD + b'COMPOSITION NRM "caf\x8e" {\n}\n')
    assert vx.import_scene(path, host="classic").compositions[0].name == "caf\udc8e"
    assert vx.import_scene(path, host="classic", name_encoding="mac-roman").compositions[0].name == "caf\u00e9"


def test_a_refused_scene_raises_its_place(write):
    with pytest.raises(vx.SceneError) as caught:
        vx.import_scene(write("shot.aec", b'VORTAN XR COMPOSITION\n  FPS "abc"\n'))
    assert (caught.value.line, caught.value.code) == (2, "expected-number")


def test_without_a_plug_in(path, tmp_path, monkeypatch):
    for choose in (lambda: {"bundle": tmp_path / "none.so"}, lambda: monkeypatch.setenv("VXR_BUNDLE", "/none.so") or {}):
        with pytest.raises(vx.PluginError, match="the plug-in was not loaded") as caught:
            vx.import_scene(path, **choose())
        assert (len(caught.value.problems), caught.value.project.compositions) == (1, ())
        again = pickle.loads(pickle.dumps(caught.value))
        assert (again.problems, again.project) == (caught.value.problems, caught.value.project)


@pytest.mark.parametrize(
    ("options", "error", "named"),
    [
        ({"host": "tomorrow"}, ValueError, "host is 'tomorrow'"),
        ({"host": "today\0"}, ValueError, "host is"),
        ({"name_encoding": "latin"}, ValueError, "name_encoding is 'latin'"),
        ({"bundle": "a\0"}, vx.PathError, "zero byte"),
        ({"search": "folder"}, TypeError, "list of folders"),
    ],
)
def test_wrong_options_are_refused_by_name(options, error, named, path):
    with pytest.raises(error, match=named):
        vx.import_scene(path, **options)


def test_projects_are_values(path):
    project = vx.import_scene(path)
    for again in (copy.deepcopy(project), pickle.loads(pickle.dumps(project)), vx.import_scene(path)):
        assert again == project
    assert project != vx.import_scene(path, host="9.31")
    assert repr(project) == "<Project, compositions: 1, footage: 1, missing: 1>"
    streams = project.compositions[0].layers[0].streams
    assert repr(streams["zoom"]).startswith("<Stream zoom, 2 keys from ")
    assert repr(project.compositions[0].layers[1].streams["intensity"]) == "<Stream intensity, [100.0]>"


def test_a_function_cancels_before_the_work(path):
    with pytest.raises(vx.Cancelled):
        vx.import_scene(path, cancel=lambda: True)


def test_four_threads_import(examples):
    path = examples / "square" / "courtyard_020.aec"
    expected = vx.import_scene(path)
    results = []
    threads = [threading.Thread(target=lambda: results.append(vx.import_scene(path))) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == [expected] * 4
