"""Where the cameras of a scene put points, worked out from the text of the scene alone.

Between two keys every number changes linearly. From one frame to the next, angles take the short way, and a turn of the
view or of the bank of more than 60 degrees is a cut: the numbers stay until the next key.
"""

import math
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent / "support"))
from scene_text import SceneText  # noqa: E402

CUT_DEGREES = 60
FIELDS = ["x", "y", "z", "heading", "pitch", "bank", "angle"]


class Scene:
    def __init__(self, path):
        text = SceneText(path)
        self.width, self.height = text.settings["RESOLUTION"]
        self.begin, self.end = text.settings.get("FROM", 0), text.settings.get("TO", 0)
        self.rate = text.settings.get("FPS", 0)
        self.aspect = text.settings["ASPECT"]
        self.objects = text.objects

    def of_kind(self, kind):
        return [one.keys for one in self.objects if one.word == kind]


class Track:
    """The keys of one object by rising frame, and of one frame the one written last."""

    def __init__(self, keys):
        last = {int(key[0]): key[1:8] for key in keys}
        self.keys = [(frame, dict(zip(FIELDS, last[frame]))) for frame in sorted(last)]

    def at(self, frame):
        keys = self.keys
        if frame <= keys[0][0]:
            return keys[0][1]
        if frame >= keys[-1][0]:
            return keys[-1][1]
        i = max(i for i, key in enumerate(keys) if key[0] <= frame)
        (a_frame, a), (b_frame, b) = keys[i], keys[i + 1]
        part = (frame - a_frame) / (b_frame - a_frame)
        way = {name: b[name] - a[name] for name in b}
        if b_frame - a_frame == 1:
            for name in ("heading", "pitch", "bank"):
                way[name] = math.remainder(way[name], 360)
            cosine = sum(p * q for p, q in zip(axes(a)[2], axes(b)[2]))
            if math.degrees(math.acos(max(-1, min(1, cosine)))) > CUT_DEGREES or abs(way["bank"]) > CUT_DEGREES:
                return a
        return {name: a[name] + part * way[name] for name in a if name in way}


def axes(pose):
    """Right, up and view."""
    h, p, b = (math.radians(pose[name]) for name in ("heading", "pitch", "bank"))
    view = (-math.cos(p) * math.sin(h), math.sin(p), math.cos(p) * math.cos(h))
    right = (math.cos(h), 0, math.sin(h))
    up = (math.sin(p) * math.sin(h), math.cos(p), -math.sin(p) * math.cos(h))
    turned_right = tuple(r * math.cos(b) - u * math.sin(b) for r, u in zip(right, up))
    turned_up = tuple(u * math.cos(b) + r * math.sin(b) for r, u in zip(right, up))
    return turned_right, turned_up, view


def frame_points(scene, pose):
    """Points of the scene that lie on a grid over the picture, at three depths, with where they are in it."""
    right, up, view = axes(pose)
    focal = scene.width / 2 / math.tan(math.radians(pose["angle"]) / 2)
    for depth in (50, 700, 20000):
        for x in (0, 0.5, 1):
            for y in (0, 0.5, 1):
                across = (x - 0.5) * scene.width / focal * depth
                upwards = (0.5 - y) * scene.height / (focal * scene.aspect) * depth
                point = tuple(pose[name] + across * right[i] + upwards * up[i] + depth * view[i]
                              for i, name in enumerate("xyz"))
                yield point, (x * scene.width, y * scene.height)


def moments(track, scene):
    """Every key, a few moments between keys, the first frame and the last."""
    frames = [frame for frame, _ in track.keys]
    some = set(frames[:40]) | {scene.begin, scene.end}
    for a, b in list(zip(frames, frames[1:]))[:40]:
        some |= {a + part * (b - a) for part in (0.21, 0.5, 0.77)}
    return sorted(frame for frame in some if scene.begin <= frame)
