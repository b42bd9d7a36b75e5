"""Scenes: by hand-made values, and against `vxr check`."""

import copy
import gc
import json
import math
import os
import pathlib
import pickle
import signal
import sys
import threading

import numpy as np
import pytest

import vortanxr as vx
from conftest import HEAD, by_night

SCENE = (
    HEAD
    + b"""ASPECT 2
LOCAL
FIELDS ODD
COMPOSITION NRM "Main" {
  FILE ADD STRAIGHT "C:\\renders\\wall.tif"
  COMPOSITION MUL "Inner" {
    FSEQ NRM PREMUL "glow0001.tif"
  }
}
FSEQ <-> PREMUL "special.tif"
CAMERA "Cam" {
  KEY 3 1 2 3 40 50 60 35
  KEY 5 -1.5 0x10 1e99 -40 -50 -60 36 250
}
LIGHT "Key" {
  TYPE PSPOT
  SHADOW AREA
  COLOR 1 0.5 1e99
  INTENSITY 0.25
  ANGLE 45
  KEY 4 7 8 9 10 11 12
}
NULL "Empty" {
}
CAMERA "Second" {
}
"""
)


@pytest.fixture
def path(write):
    return write("shot.aec", SCENE)


@pytest.fixture
def scene(path):
    return vx.read_scene(path)


def test_the_settings(scene, path):
    assert scene.path == str(path)
    assert (scene.width, scene.height, scene.fps) == (640, 360, 24)
    assert (scene.first_frame, scene.last_frame, scene.frame_range) == (3, 12, 10)
    assert (scene.pixel_aspect, scene.local, scene.fields) == (2.0, True, "odd")


def test_the_keys_of_a_camera(scene):
    camera = scene.cameras[0]
    assert (camera.name, camera.line, camera.column) == ("Cam", 17, 8)
    np.testing.assert_array_equal(camera.frames, np.array([3, 5], np.int32), strict=True)
    position = np.array([[1, 2, 3], [-1.5, 16, math.inf]], np.float32)
    np.testing.assert_array_equal(camera.position, position, strict=True)
    np.testing.assert_array_equal(camera.rotation, np.array([[40, 50, 60], [-40, -50, -60]], np.float32), strict=True)
    np.testing.assert_array_equal(camera.field_of_view, np.array([35, 36], np.float32), strict=True)
    # A distance that is left out is 1000.
    np.testing.assert_array_equal(camera.target_distance, np.array([1000, 250], np.float32), strict=True)


def test_a_light(scene):
    (light,) = scene.lights
    assert (light.name, light.type, light.shadow) == ("Key", "parallel-spot", "area")
    assert (light.color, light.intensity, light.cone_angle) == ((1.0, 0.5, math.inf), 0.25, 45.0)
    np.testing.assert_array_equal(light.position, np.array([[7, 8, 9]], np.float32), strict=True)


def test_objects_without_keys_have_empty_arrays_of_the_same_type(scene):
    (null,) = scene.nulls
    assert (null.frames.shape, null.frames.dtype) == ((0,), np.int32)
    assert (null.position.shape, null.position.dtype) == ((0, 3), np.float32)
    second = scene.cameras[1]
    assert (second.field_of_view.shape, second.field_of_view.dtype) == ((0,), np.float32)


def test_objects_are_in_the_order_of_the_file(scene):
    assert [one.name for one in scene.objects] == ["Cam", "Key", "Empty", "Second"]


def test_compositions_and_their_footage(scene):
    main, inner = scene.compositions
    assert (main.name, main.blend, main.parent) == ("Main", "normal", None)
    assert (inner.name, inner.blend, inner.parent) == ("Inner", "multiply", 0)
    wall, nested = main.entries
    assert (wall.written, wall.blend, wall.alpha) == ("C:\\renders\\wall.tif", "add", "straight")
    assert (wall.is_sequence, wall.top_level, wall.line, wall.column) == (False, False, 11, 21)
    assert nested == vx.Nested(1)
    assert inner.entries == (scene.footage[1],)
    assert (scene.footage[1].is_sequence, scene.footage[1].alpha) == (True, "premultiplied")
    assert (scene.footage[2].top_level, scene.footage[2].blend) == (True, None)


def test_deep_compositions_are_read_compared_and_pickled(write):
    levels = 1000
    text = HEAD + b'COMPOSITION NRM "c" {\n' * levels + b"}" * levels + b"\n"
    scene = vx.read_scene(write("deep.aec", text))
    assert [one.parent for one in scene.compositions] == [None, *range(levels - 1)]
    assert pickle.loads(pickle.dumps(scene)) == scene


def test_footage_is_found_where_it_is_today(path, tmp_path):
    folder = tmp_path / "store" / "renders"
    folder.mkdir(parents=True)
    (folder / "wall.tif").write_bytes(b"")
    assert vx.read_scene(path).footage[0].finding.outcome == "missing"
    searched = vx.read_scene(path, search=[tmp_path / "store"])
    assert searched.footage[0].finding == vx.Finding("found", "tail", str(folder / "wall.tif"), ())
    assert searched.search == (str(tmp_path / "store"),)
    mapped = vx.read_scene(path, maps={"C:": tmp_path / "store"})
    assert mapped.footage[0].finding.rule == "map"
    assert mapped.maps == {"C:": str(tmp_path / "store")}


def test_a_choice_of_several_files(path, tmp_path):
    names = [tmp_path / side / "wall.tif" for side in ("a", "b")]
    for size, name in enumerate(names):
        name.parent.mkdir()
        name.write_bytes(b"x" * size)
    undecided = vx.read_scene(path, search=[tmp_path]).footage[0].finding
    assert (undecided.outcome, undecided.path) == ("ambiguous", None)
    assert sorted(undecided.candidates) == list(map(str, names))
    largest = vx.read_scene(path, search=[tmp_path], prefer="largest").footage[0].finding
    assert (largest.outcome, largest.path) == ("found", str(names[1]))


@pytest.mark.parametrize(
    "example",
    [
        "keyframes/orbit_030.aec",
        *(pytest.param(f"{name}.aec", marks=by_night) for name in ("interlaced/lantern_010", "square/courtyard_020")),
    ],
)
def test_diagnostics_are_those_of_the_command_line(example, examples, vxr):
    path = examples / example
    (document,) = json.loads(vxr("check", "--json", path))["files"]
    checked = vx.check(path)
    assert (checked.path, checked.verdict) == (str(path), document["verdict"])
    assert len(checked.diagnostics) > 0
    assert vx.read_scene(path).diagnostics == checked.diagnostics
    for ours, theirs in zip(checked.diagnostics, document["diagnostics"], strict=True):
        assert (ours.code, ours.severity, ours.reason) == (theirs["code"], theirs["severity"], theirs["reason"])
        assert (ours.line, ours.column) == (theirs["at"]["line"], theirs["at"]["column"])
        assert (list(ours.effects), ours.count) == (theirs["effects"], theirs["count"])


def test_without_a_check_there_are_no_diagnostics(path):
    assert vx.read_scene(path, check=False).diagnostics == ()


def test_a_refused_file_raises_its_place(write):
    with pytest.raises(vx.SceneError) as caught:
        vx.read_scene(write("shot.aec", b'VORTAN XR COMPOSITION\n  FPS "abc"\n'))
    error = caught.value
    assert (error.line, error.column, error.code) == (2, 7, "expected-number")
    assert error.reason == 'expected a number after FPS, found the text "abc"'
    assert error.diagnostic.source_line == '  FPS "abc"'
    assert str(error) == f"{error.file}:2:7: error: {error.reason} [expected-number]"
    again = pickle.loads(pickle.dumps(error))
    assert (type(again), again.diagnostic, again.diagnostics) == (vx.SceneError, error.diagnostic, error.diagnostics)


def test_a_refused_file_is_a_verdict_of_a_check(write):
    checked = vx.check(write("shot.aec", b"VORTAN XR NOTHING\n"))
    assert (checked.verdict, checked.diagnostics[0].severity, bool(checked)) == ("refused", "error", False)


@pytest.mark.parametrize("name", ["missing.aec", ".", "-"])
def test_what_cannot_be_read(name, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)  # "-" is a file here, never the standard input
    with pytest.raises(vx.SceneError) as caught:
        vx.read_scene(name)
    assert (caught.value.code, caught.value.line) == ("cannot-read", None)


@pytest.mark.parametrize("kind", [str, os.fsencode, pathlib.Path, os.fspath])
def test_paths_of_every_kind(kind, path):
    assert vx.read_scene(kind(path)).path == str(path)


def test_names_that_are_not_utf8_keep_their_bytes(write):
    name = b"caf\xe9"
    path = write("shot.aec", HEAD + b'COMPOSITION NRM "' + name + b'" {\n}\n')
    renamed = os.fsencode(path.parent) + b"/" + name + b".aec"
    os.rename(path, renamed)
    scene = vx.read_scene(renamed)
    assert os.fsencode(scene.path) == renamed
    assert os.fsencode(scene.compositions[0].name) == name


@pytest.mark.parametrize(
    ("arguments", "error", "named"),
    [
        ((b"a\0b",), vx.PathError, "zero byte"),
        (("",), vx.PathError, "empty"),
        ((3,), TypeError, "int"),
    ],
)
def test_wrong_paths_are_refused_by_name(arguments, error, named):
    with pytest.raises(error, match=named):
        vx.read_scene(*arguments)
    with pytest.raises(error, match=named):
        vx.check(*arguments)


@pytest.mark.parametrize(
    ("options", "error", "named"),
    [
        ({"search": "folder"}, TypeError, "list of folders"),
        ({"search": ["a\0"]}, vx.PathError, "zero byte"),
        ({"search": ["/nowhere"]}, vx.PathError, "not a folder: '/nowhere'"),
        ({"maps": {"": "a"}}, vx.PathError, "empty"),
        ({"maps": {"a=b": "c"}}, vx.PathError, "equals sign"),
        ({"maps": {"a\0": "c"}}, vx.PathError, "zero byte"),
        ({"prefer": "best"}, ValueError, "newest"),
        ({"progress": 3}, TypeError, "progress is not callable"),
        ({"cancel": 3}, TypeError, "cancel is not callable"),
    ],
)
def test_wrong_options_are_refused_by_name(options, error, named, path):
    with pytest.raises(error, match=named):
        vx.read_scene(path, **options)


# --- values


def test_objects_print_what_they_are(scene):
    assert repr(scene.cameras[0]) == "<Camera 'Cam', 2 keys from frame 3 to 5>"
    assert repr(scene.lights[0]) == "<Light 'Key', 1 key from frame 4 to 4>"
    assert repr(scene.nulls[0]) == "<Null 'Empty', no keys>"
    assert "640 x 360, frames 3 to 12 at 24 a second" in repr(scene)
    assert "cameras: 2, lights: 1, nulls: 1" in repr(scene)


def test_objects_compare_by_value(scene, path, write):
    assert vx.read_scene(path) == scene
    other = vx.read_scene(write("shot.aec", SCENE.replace(b"KEY 4 7 8 9", b"KEY 4 7 8 8")))
    assert (other.cameras, other == scene) == (scene.cameras, False)
    assert scene.cameras[0] != scene.cameras[1] != scene.nulls[0]


@pytest.mark.parametrize("copied", [copy.deepcopy, lambda one: pickle.loads(pickle.dumps(one))])
def test_copies_are_equal_and_have_arrays_of_their_own(copied, scene):
    again = copied(scene)
    assert again == scene
    again.cameras[0].position[0, 0] = 9
    assert (scene.cameras[0].position[0, 0], again == scene) == (1, False)


def test_a_shallow_copy_shares_the_arrays(scene):
    again = copy.copy(scene.cameras[0])
    assert again == scene.cameras[0]
    assert again.position is scene.cameras[0].position


# --- memory


def test_arrays_are_shown_and_cannot_be_changed(scene):
    camera = scene.cameras[0]
    for array in (camera.frames, camera.position, camera.rotation, camera.field_of_view, camera.target_distance):
        assert array.base is not None and not array.flags.owndata
        assert array.flags.c_contiguous and array.flags.aligned
        with pytest.raises(ValueError, match="read-only"):
            array[0] = 0
    assert camera.position is camera.position


def test_arrays_outlive_their_scene_in_any_order(path):
    for last in ("frames", "position", "field_of_view"):
        scene = vx.read_scene(path)
        camera = scene.cameras[0]
        array = getattr(camera, last)
        expected = array.tolist()
        kept = array[1:]
        del scene, camera
        gc.collect()
        del array
        gc.collect()
        vx.read_scene(path)  # takes memory that was given back
        assert kept.tolist() == expected[1:]


def test_reading_again_and_again_takes_no_more_memory(write):
    keys = b"".join(b"KEY %d 1 2 3 4 5 6 7\n" % frame for frame in range(400))
    path = write("shot.aec", HEAD + b'COMPOSITION NRM "a" {\n}\nCAMERA "c" {\n' + keys + b"}\n")
    broken = write("broken.aec", HEAD + b'COMPOSITION NRM "a" {\n}\nCAMERA "c" {\n' + keys + b"KEY\n")

    def read_all(times):
        for _ in range(times):
            vx.read_scene(path)
            with pytest.raises(vx.SceneError):
                vx.read_scene(broken)
        gc.collect()
        resident_pages = int(pathlib.Path("/proc/self/statm").read_text().split()[1])
        return sys.getallocatedblocks(), resident_pages * os.sysconf("SC_PAGESIZE")

    read_all(10)
    blocks, resident = read_all(10)
    more_blocks, more_resident = read_all(120)
    assert more_blocks < blocks + 120
    # The arrays of one scene have 14,400 bytes.
    assert more_resident < resident + 60 * 14_400


# --- long calls


@pytest.fixture(scope="module")
def long_path(tmp_path_factory):
    """A scene that takes a good part of a second to read."""
    path = tmp_path_factory.mktemp("long") / "long.aec"
    keys = b"".join(b"KEY %d 1 2 3 4 5 6 7\n" % frame for frame in range(1000))
    camera = b'CAMERA "c" {\n' + keys + b"}\n"
    path.write_bytes(HEAD + b'COMPOSITION NRM "a" {\n}\n' + camera * int(os.environ.get("VXR_LONG_CAMERAS", "1500")))
    return path


def test_progress_rises_from_0_to_1(long_path):
    fractions = []
    vx.read_scene(long_path, check=False, progress=fractions.append)
    assert (fractions[0], fractions[-1]) == (0.0, 1.0)
    assert len(fractions) > 3
    assert fractions == sorted(fractions)
    assert any(0.2 < fraction < 0.8 for fraction in fractions)


def test_progress_reaches_1_in_a_short_call(path):
    fractions = []
    vx.check(path, progress=fractions.append)
    assert (fractions[0], fractions[-1], len(fractions) <= 3) == (0.0, 1.0, True)


def test_what_progress_raises_ends_the_call(long_path):
    def stop(fraction):
        if fraction > 0:
            raise KeyError(fraction)

    with pytest.raises(KeyError):
        vx.read_scene(long_path, progress=stop)


def test_another_thread_cancels_and_runs_meanwhile(long_path):
    event = threading.Event()
    began = threading.Event()
    ended = []

    def read():
        try:
            vx.read_scene(long_path, progress=lambda fraction: began.set() if fraction > 0 else None, cancel=event)
        except vx.Cancelled as cancelled:
            ended.append(cancelled)

    thread = threading.Thread(target=read)
    thread.start()
    assert began.wait(60)
    event.set()
    thread.join(60)
    assert len(ended) == 1


def test_a_function_cancels_before_the_work(tmp_path):
    with pytest.raises(vx.Cancelled):
        vx.read_scene(tmp_path / "missing.aec", cancel=lambda: True)


def test_ctrl_c_ends_a_call(long_path):
    fractions = []
    timer = threading.Timer(0.1, lambda: signal.raise_signal(signal.SIGINT))
    timer.start()
    with pytest.raises(KeyboardInterrupt):
        vx.read_scene(long_path, progress=fractions.append)
    timer.join()
    assert fractions[-1] < 1


def test_four_threads_read_the_same_scenes(examples):
    paths = sorted(examples.glob("*/*.aec"))
    expected = [vx.read_scene(path) for path in paths]
    results = [None] * 4

    def read(slot):
        results[slot] = [vx.read_scene(path) for path in paths]

    threads = [threading.Thread(target=read, args=(slot,)) for slot in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(paths) >= 4
    assert all(result == expected for result in results)
