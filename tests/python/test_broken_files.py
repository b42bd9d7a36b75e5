"""Files with damage: an answer or a named exception, and nothing else."""

import random

import pytest

import vortanxr as vx
from conftest import NIGHT

COUNT = 1000 if NIGHT else 50


def damaged(content: bytes, dice: random.Random) -> bytes:
    damage = bytearray(content)
    for _ in range(dice.randint(1, 8)):
        place = dice.randrange(len(damage))
        kind = dice.randrange(4)
        if kind == 0:
            damage[place] = dice.randrange(256)
        elif kind == 1:
            damage[place] ^= 1 << dice.randrange(8)
        elif kind == 2:
            del damage[place : place + dice.randint(1, 20)]
        else:
            damage[place:place] = dice.randbytes(dice.randint(1, 20))
        damage = damage or bytearray(b"V")
    return bytes(damage[: dice.randint(1, len(damage))] if dice.random() < 0.2 else damage)


def outcomes(paths, read, error, tmp_path, suffix):
    dice = random.Random(18)
    contents = [path.read_bytes() for path in paths]
    path = tmp_path / f"broken{suffix}"
    counts = {"read": 0, "refused": 0}
    for _ in range(COUNT):
        path.write_bytes(damaged(dice.choice(contents), dice))
        try:
            read(path)
            counts["read"] += 1
        except error as refused:
            assert refused.code and refused.reason and refused.file == str(path)
            counts["refused"] += 1
    return counts


def test_broken_scenes(examples, tmp_path):
    def read(path):
        checked = vx.check(path)
        try:
            scene = vx.read_scene(path)
        except vx.SceneError as error:
            assert checked.diagnostics[0] == error.diagnostic
            raise
        for one in scene.objects:
            assert len(one.position) == len(one.frames) == len(one.rotation)
            repr(one)
        assert scene == scene

    counts = outcomes(sorted(examples.glob("*/*.aec")), read, vx.SceneError, tmp_path, ".aec")
    assert min(counts.values()) > 0, counts


def test_broken_textures(examples, tmp_path):
    def read(path):
        texture = vx.read_texture(path)
        assert texture.color.shape[2] in (1, 3)
        for alpha in texture.alphas.values():
            assert alpha.shape == texture.color.shape[:2]
        texture.color.sum()

    counts = outcomes(sorted(examples.glob("*/*.txl")), read, vx.TextureError, tmp_path, ".txl")
    assert min(counts.values()) > 0, counts


def test_a_message_is_one_line_whatever_the_name(tmp_path):
    path = tmp_path / "two\nlines\x1b[2J\udcff.aec"
    path.write_bytes(b"no scene")
    with pytest.raises(vx.SceneError) as raised:
        vx.read_scene(path)
    assert "two\\x0alines\\x1b[2J\\xff.aec:1:1: error: " in str(raised.value)
    assert str(raised.value).isprintable()
    assert raised.value.file == str(path)
    problem = vx.PluginError(("cannot read a\nb",))
    assert str(problem) == "cannot read a\\x0ab"
