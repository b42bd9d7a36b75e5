"""Frames of scenes, against those that the command line writes."""

import threading

import numpy as np
import pytest

import vortanxr as vx
from conftest import HEAD, by_night


@pytest.fixture
def scene(examples):
    return examples / "square" / "courtyard_020.aec"


@pytest.fixture
def small(examples):
    return examples / "textured" / "shelf_040.aec"


def written_frame(vxr, scene, tmp_path, *arguments):
    """A frame as `vxr preview` writes it: (color, alpha)."""
    picture, texture = tmp_path / "frame.png", tmp_path / "frame.txl"
    vxr("preview", scene, "-o", picture, *arguments)
    vxr("texture", "convert", picture, "-o", texture)
    read = vx.read_texture(texture)
    return read.color, read.alphas["Alpha"]


@pytest.mark.parametrize(
    ("example", "number", "options", "arguments"),
    [
        pytest.param("square/courtyard_020", 2, {"linear": True, "threads": 2}, ["--linear"], marks=by_night),
        ("square/courtyard_020", 2, {"composition": "Shadow pass", "overlay": ["nulls"]},
         ["--comp", "Shadow pass", "--overlay", "nulls"]),
        pytest.param("interlaced/lantern_010", 18, {"fields": "upper"}, ["--fields", "upper"], marks=by_night),
    ],
)  # fmt: skip
def test_frames_are_those_of_the_command_line(example, number, options, arguments, examples, tmp_path, vxr):
    scene = examples / f"{example}.aec"
    preview = vx.draw_frames(scene, [number], **options)
    color, alpha = written_frame(vxr, scene, tmp_path, "--frame", number, *arguments)
    (frame,) = preview.frames
    assert frame.number == number
    np.testing.assert_array_equal(frame.color, color, strict=True)
    np.testing.assert_array_equal(frame.alpha, alpha, strict=True)


def test_what_there_is_to_know(scene):
    preview = vx.draw_frames(scene, [])
    # RESOLUTION 640 360, RANGE 9, FPS 24.
    assert (preview.width, preview.height, preview.frame_count, preview.fps) == (640, 360, 9, 24)
    assert (preview.composition, preview.pixel_aspect, preview.frames) == ("Courtyard 020", 1, ())


def test_frames_in_the_order_in_which_they_were_asked_for(small):
    several = vx.draw_frames(small, [5, 0, 5])
    assert [frame.number for frame in several.frames] == [5, 0, 5]
    assert np.array_equal(several.frames[0].color, several.frames[2].color)
    assert several.frames[1] == vx.draw_frames(small).frames[0]
    assert repr(several.frames[0]) == "<Frame 5, 240 x 135>"
    several.frames[0].color[:] = 0  # an array of its own
    assert several.frames[2].color.any()


def test_pixels_are_square_unless_they_are_raw(examples):
    wide = examples / "interlaced" / "lantern_010.aec"
    square, raw = vx.draw_frames(wide, []), vx.draw_frames(wide, [], raw=True)
    # 720 pixels of the aspect 1.06, to which the plug-in cuts 1.0667.
    assert (raw.width, raw.height, square.width, square.height) == (720, 576, 763, 576)
    assert vx.draw_frames(wide).frames[0].alpha.shape == (576, 763)


def test_a_frame_tells_what_is_missing(write):
    path = write("shot.aec", HEAD + b'COMPOSITION NRM "Main" {\n  FILE NRM STRAIGHT "/nowhere/gone.tif"\n}\n')
    first, second = vx.draw_frames(path, [0, 1]).frames
    assert ["gone.tif" in one.reason for one in first.diagnostics] == [True]
    assert second.diagnostics == ()


@pytest.mark.parametrize(
    ("arguments", "options", "error", "named"),
    [
        (([9],), {}, ValueError, "there is no frame 9: the composition has the frames 0 to 8"),
        (([-1],), {}, ValueError, "there is no frame -1"),
        (([0.5],), {}, TypeError, "incompatible"),
        ((), {"fields": "odd"}, ValueError, 'fields is "odd"'),
        ((), {"threads": -1}, ValueError, "threads is -1"),
        ((), {"overlay": "grid"}, TypeError, "list of words"),
        ((), {"overlay": ["bananas"]}, ValueError, "bananas"),
        ((), {"composition": "Nothing"}, vx.PluginError, "Nothing"),
        ((), {"bundle": "/none.so"}, vx.PluginError, "the plug-in was not loaded"),
        ((), {"cancel": lambda: True}, vx.Cancelled, "cancelled"),
    ],
)
def test_wrong_requests_are_refused_by_name(arguments, options, error, named, scene):
    with pytest.raises(error, match=named):
        vx.draw_frames(scene, *arguments, **options)


def test_a_refused_scene_raises_its_place(write):
    with pytest.raises(vx.SceneError) as caught:
        vx.draw_frames(write("shot.aec", HEAD + b"COMPOSITION 5\n"), overlay=["grid"])
    assert (caught.value.line, caught.value.code) == (7, "expected-blend-mode")


def test_cancelling_between_frames_frees_the_host(small):
    asked = []

    def cancel():
        asked.append(None)
        return len(asked) > 3

    with pytest.raises(vx.Cancelled):
        vx.draw_frames(small, [0] * 2000, cancel=cancel)
    assert vx.draw_frames(small, []).frame_count == 25


def test_a_call_within_a_call_is_refused_and_not_waited_for(small):
    refused = []

    def progress(fraction):
        if 0.1 <= fraction < 1:  # the scene has been read
            with pytest.raises(vx.PluginError, match="cannot import") as caught:
                vx.import_scene(small)
            refused.append(caught.value)
            raise KeyError("enough")

    with pytest.raises(KeyError):
        vx.draw_frames(small, [0] * 2000, progress=progress)
    assert len(refused) == 1
    assert len(vx.import_scene(small).compositions) > 0


def test_two_threads_draw(small):
    expected = vx.draw_frames(small, [0, 4])
    results = []
    threads = [threading.Thread(target=lambda: results.append(vx.draw_frames(small, [0, 4]))) for _ in range(2)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == [expected] * 2
