"""Textures: round trips, arrays of every layout, and what is refused."""

import copy
import gc
import pickle

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st
from hypothesis.extra import numpy as arrays

import vortanxr as vx


@st.composite
def pictures(draw):
    """(color, alphas) of any size, the arrays in any layout of memory."""
    height, width = draw(st.integers(1, 9)), draw(st.integers(1, 9))
    channels = draw(st.sampled_from([None, 1, 3]))
    shape = (height, width) if channels is None else (height, width, channels)

    def plane(of):
        array = draw(arrays.arrays(np.uint8, of))
        layout = draw(st.sampled_from(["rows", "columns", "reversed", "every second", "read-only"]))
        if layout == "columns":
            return np.asfortranarray(array)
        if layout == "reversed":
            return np.flip(np.flip(array).copy())
        if layout == "every second":
            return np.repeat(np.repeat(array, 2, axis=0), 2, axis=1)[::2, ::2]
        if layout == "read-only":
            array.setflags(write=False)
        return array

    return plane(shape), [plane((height, width)) for _ in range(draw(st.integers(0, 3)))]


@given(pictures())
def test_every_byte_comes_back(tmp_path_factory, picture):
    color, masks = picture
    path = tmp_path_factory.getbasetemp() / "picture.txl"
    assert vx.write_texture(path, color, {f"Alpha{i or ''}": mask for i, mask in enumerate(masks)}) == ()
    texture = vx.read_texture(path)
    np.testing.assert_array_equal(texture.color, color.reshape(*color.shape[:2], -1), strict=True)
    assert list(texture.alphas) == ["Alpha", "Alpha.2", "Alpha.3"][: len(masks)]
    for read, mask in zip(texture.alphas.values(), masks, strict=True):
        np.testing.assert_array_equal(read, mask, strict=True)
    assert texture.diagnostics == ()


COLOR = np.arange(24, dtype=np.uint8).reshape(2, 4, 3)
MASK = np.arange(8, dtype=np.uint8).reshape(2, 4)


def test_names_that_are_lost_are_named(tmp_path):
    (lost,) = vx.write_texture(tmp_path / "a.txl", COLOR, {"Rust": MASK, "Dirt": MASK})
    assert lost.code == "names-left-out"
    assert '"Rust" and 1 more' in lost.reason


def test_names_are_read_as_they_are_stored(examples):
    names = {tuple(vx.read_texture(path).alphas) for path in examples.glob("*/*.txl")}
    assert ("cut-out", "Grünspan") in names


@pytest.mark.parametrize(
    ("color", "alphas", "named"),
    [
        ([[1]], {}, "color is not a NumPy array: list"),
        (COLOR.astype(np.float32), {}, "color has the type <f4"),
        (COLOR.astype(">u2"), {}, "color has the type >u2"),
        (COLOR.astype(np.int8), {}, r"color has the type \|i1"),
        (COLOR.astype(bool), {}, r"color has the type \|b1"),
        (COLOR.astype(object), {}, r"color has the type \|O"),
        (COLOR[0, 0], {}, r"color has the shape \(3,\)"),
        (COLOR[..., :2], {}, r"color has the shape \(2, 4, 2\)"),
        (COLOR[:0], {}, r"color has the shape \(0, 4, 3\)"),
        (COLOR[:, :0], {}, r"color has the shape \(2, 0, 3\)"),
        (COLOR[None], {}, r"color has the shape \(1, 2, 4, 3\)"),
        (np.broadcast_to(np.uint8(0), (2**16, 2**15, 1)), {}, "a texture has 1 to 1073741824 pixels"),
        (COLOR, {"a": MASK.T}, r"the alpha channel 'a' has the shape \(4, 2\); color has \(2, 4\)"),
        (COLOR, {"a": MASK[..., None]}, r"the alpha channel 'a' has the shape \(2, 4, 1\)"),
        (COLOR, {"a": MASK > 3}, r"the alpha channel 'a' has the type \|b1"),
        (COLOR, {"a": None}, "the alpha channel 'a' is not a NumPy array: NoneType"),
    ],
)
def test_other_arrays_are_refused_by_name(color, alphas, named, tmp_path):
    with pytest.raises(vx.ArrayError, match=named):
        vx.write_texture(tmp_path / "a.txl", color, alphas)
    assert list(tmp_path.iterdir()) == []


def test_a_refused_file_raises_why(tmp_path):
    path = tmp_path / "a.txl"
    path.write_bytes(b"no texture")
    with pytest.raises(vx.TextureError) as caught:
        vx.read_texture(path)
    assert (caught.value.file, caught.value.code, caught.value.line) == (str(path), "not-a-texture", None)
    vx.write_texture(path, COLOR)
    path.write_bytes(path.read_bytes()[:100])
    with pytest.raises(vx.TextureError) as caught:
        vx.read_texture(path)
    assert 0 < caught.value.diagnostic.offset_bytes <= 100
    with pytest.raises(vx.TextureError):
        vx.read_texture(tmp_path / "missing.txl")


def test_what_cannot_be_written_leaves_nothing(tmp_path):
    with pytest.raises(vx.TextureError) as caught:
        vx.write_texture(tmp_path / "missing" / "a.txl", COLOR)
    assert caught.value.code == "cannot-open"
    folder = tmp_path / "folder"
    folder.mkdir()
    with pytest.raises(vx.TextureError):
        vx.write_texture(folder, COLOR)
    assert list(tmp_path.iterdir()) == [folder]
    assert list(folder.iterdir()) == []


@pytest.mark.parametrize(("path", "named"), [("a\0b", "zero byte"), (b"", "empty")])
def test_wrong_paths_are_refused_by_name(path, named):
    with pytest.raises(vx.PathError, match=named):
        vx.read_texture(path)
    with pytest.raises(vx.PathError, match=named):
        vx.write_texture(path, COLOR)


def test_writing_onto_a_texture_that_was_read(tmp_path):
    path = tmp_path / "a.txl"
    vx.write_texture(path, COLOR, {"Alpha": MASK})
    texture = vx.read_texture(path)
    texture.color[0, 0] = 99
    vx.write_texture(path, texture.color, texture.alphas)
    assert vx.read_texture(path) == texture


def test_textures_are_values(tmp_path):
    path = tmp_path / "a.txl"
    vx.write_texture(path, COLOR, {"Alpha": MASK})
    texture = vx.read_texture(path)
    assert repr(texture) == "<Texture 4 x 2, RGB, alphas: ['Alpha']>"
    for again in (copy.deepcopy(texture), pickle.loads(pickle.dumps(texture)), vx.read_texture(path)):
        assert again == texture
        again.alphas["Alpha"][0, 0] = 77
        assert again != texture


def test_arrays_outlive_their_texture_in_any_order(tmp_path):
    path = tmp_path / "a.txl"
    vx.write_texture(path, COLOR, {"Alpha": MASK})
    for keep in (lambda texture: texture.color[1:], lambda texture: texture.alphas["Alpha"][1:]):
        texture = vx.read_texture(path)
        assert not texture.color.flags.owndata
        kept = keep(texture)
        expected = kept.tolist()
        del texture
        gc.collect()
        vx.read_texture(path)
        assert kept.tolist() == expected
