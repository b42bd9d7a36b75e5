#!/usr/bin/env python3
"""Writes scenes as glTF and USD and reads them with programs of others: exported_scenes_test.py VXR NODE_MODULES PROJECT [COUNT].

A validator finds no error, and warnings only where an angle of view changes. The cameras of the files put the points of a
picture where the scene puts them, within 0.05 pixels, at keys and between them, or at whole frames alone where `vxr` names
a turn that is too fast; the scene is read and worked out here, and so are the files, of USD what another reader made of them.
"""

import base64
import json
import math
import re
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from scene_truth import Scene, Track, frame_points, moments  # noqa: E402

GOAL_PX = 0.05
HERE = Path(__file__).parent


def fail(text):
    sys.exit(f"error: {text}")


def run(*words):
    done = subprocess.run([str(word) for word in words], capture_output=True, text=True)
    return done.returncode, done.stdout, done.stderr


def rotate(q, v):
    x, y, z, w = q
    tx, ty, tz = 2 * (y * v[2] - z * v[1]), 2 * (z * v[0] - x * v[2]), 2 * (x * v[1] - y * v[0])
    return (v[0] + w * tx + y * tz - z * ty, v[1] + w * ty + z * tx - x * tz, v[2] + w * tz + x * ty - y * tx)


def slerp(a, b, part):
    cosine = sum(p * q for p, q in zip(a, b))
    if cosine < 0:
        a, cosine = [-p for p in a], -cosine
    if cosine > 0.9999:
        mixed = [p + part * (q - p) for p, q in zip(a, b)]
    else:
        angle = math.acos(cosine)
        mixed = [(math.sin((1 - part) * angle) * p + math.sin(part * angle) * q) / math.sin(angle) for p, q in zip(a, b)]
    size = math.hypot(*mixed)
    return [p / size for p in mixed]


def linear(a, b, part):
    return [p + part * (q - p) for p, q in zip(a, b)]


def sampled(times, values, time, mix):
    if time <= times[0]:
        return values[0]
    if time >= times[-1]:
        return values[-1]
    i = max(i for i, one in enumerate(times) if one <= time)
    return mix(values[i], values[i + 1], (time - times[i]) / (times[i + 1] - times[i]))


class Gltf:
    def __init__(self, path):
        content = path.read_bytes()
        if path.suffix == ".glb":
            magic, version, length, size, kind = struct.unpack("<4sIII4s", content[:20])
            if (magic, version, length, kind) != (b"glTF", 2, len(content), b"JSON"):
                fail(f"{path}: the head of the file is wrong")
            self.file = json.loads(content[20:20 + size])
            self.data = content[28 + size:]
        else:
            self.file = json.loads(content)
            uri = self.file["buffers"][0]["uri"] if "buffers" in self.file else ","
            self.data = base64.b64decode(uri.split(",")[1], validate=True)
        self.scale = self.file["asset"]["extras"]["scale"]
        self.tracks = {}
        for animation in self.file.get("animations", []):
            for channel in animation["channels"]:
                sampler = animation["samplers"][channel["sampler"]]
                target = channel["target"]
                key = target["extensions"]["KHR_animation_pointer"]["pointer"] if target["path"] == "pointer" else (
                    target["node"], target["path"])
                self.tracks[key] = [[one[0] for one in self.accessor(sampler["input"])], self.accessor(sampler["output"])]

    def accessor(self, index):
        accessor = self.file["accessors"][index]
        view = self.file["bufferViews"][accessor["bufferView"]]
        size = {"SCALAR": 1, "VEC3": 3, "VEC4": 4}[accessor["type"]]
        numbers = struct.unpack_from(f"<{size * accessor['count']}f", self.data, view["byteOffset"])
        return [numbers[i:i + size] for i in range(0, len(numbers), size)]

    def cameras(self):
        return [(i, node["camera"]) for i, node in enumerate(self.file.get("nodes", [])) if "camera" in node]

    def camera_at(self, camera, seconds):
        # The format's times are floats. Where a camera moves by its picture's width in a frame, the rounding shows.
        seconds = struct.unpack("<f", struct.pack("<f", seconds))[0]
        node_index, camera_index = camera
        node = self.file["nodes"][node_index]
        lens = self.file["cameras"][camera_index]["perspective"]
        place, turn, angle = node["translation"], node["rotation"], [lens["yfov"]]
        if (node_index, "translation") in self.tracks:
            place = sampled(*self.tracks[node_index, "translation"], seconds, linear)
        if (node_index, "rotation") in self.tracks:
            turn = sampled(*self.tracks[node_index, "rotation"], seconds, slerp)
        pointer = f"/cameras/{camera_index}/perspective/yfov"
        if pointer in self.tracks:
            angle = sampled(*self.tracks[pointer], seconds, linear)
        return place, turn, math.tan(angle[0] / 2) * lens["aspectRatio"], math.tan(angle[0] / 2)


class Usd:
    """A file as another reader printed it."""

    def __init__(self, text):
        self.cameras = []
        self.units = float(re.search(r"metersPerUnit = (\S+)", text)[1])
        for block in re.split(r"\n    def ", text)[1:]:
            if block.startswith("Camera "):
                self.cameras.append({name: self.attribute(block, name) for name in (
                    "focalLength", "horizontalAperture", "verticalAperture", "xformOp:translate", "xformOp:rotateZXY")})

    @staticmethod
    def numbers(text):
        return [float(one) for one in text.strip("() ").split(",")]

    def attribute(self, block, name):
        constant = self.numbers(re.search(rf"{name} = (.+)", block)[1])
        samples = re.search(rf"{name}\.timeSamples = \{{(.*?)\}}", block, re.S)
        if not samples:
            return [0], [constant]
        pairs = re.findall(r"\n\s*([^\s:]+): (.+),", samples[1])
        return [float(time) for time, _ in pairs], [self.numbers(value) for _, value in pairs]

    def camera_at(self, camera, frame):
        values = {name: sampled(*camera[name], frame, linear) for name in camera}
        x, y, z = (math.radians(one) for one in values["xformOp:rotateZXY"])

        def about(axis, angle):
            half = [0, 0, 0, math.cos(angle / 2)]
            half[axis] = math.sin(angle / 2)
            return half

        # The operation turns about z first, then x, then y.
        turns = [about(2, z), about(0, x), about(1, y)]
        focal = values["focalLength"][0]
        return (values["xformOp:translate"], turns, values["horizontalAperture"][0] / 2 / focal,
                values["verticalAperture"][0] / 2 / focal)


def put(point, place, turns, across, upwards, width, height):
    """Where a camera that looks along -z shows a point. The last of its turns comes first."""
    seen = [p - q for p, q in zip(point, place)]
    for turn in turns:
        seen = rotate([-turn[0], -turn[1], -turn[2], turn[3]], seen)
    return (width / 2 * (1 + seen[0] / (-seen[2] * across)), height / 2 * (1 - seen[1] / (-seen[2] * upwards)))


def largest_distance(scene, cameras_at, whole_frames=False):
    worst = (0, None)
    for index, keys in enumerate(scene.of_kind("CAMERA")):
        if not keys:
            continue
        track = Track(keys)
        for frame in moments(track, scene):
            pose = track.at(frame)
            if whole_frames and frame != int(frame):
                continue
            if not 1 < pose["angle"] < 170:
                continue
            place, turns, across, upwards, scale = cameras_at(index, frame)
            for point, wanted in frame_points(scene, pose):
                shown = put([scale * point[0], scale * point[1], -scale * point[2]], place, turns, across, upwards,
                            scene.width, scene.height)
                distance = math.dist(shown, wanted)
                if not distance <= worst[0]:
                    worst = (distance, f"camera {index} at frame {frame}")
    return worst


def main():
    vxr, modules, project = (Path(word).absolute() for word in sys.argv[1:4])
    count = sys.argv[4] if len(sys.argv) > 4 else "40"
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        code, _, err = run(sys.executable, "-B", project / "tests/support/generated_scenes.py", folder / "scenes", count)
        if code != 0:
            fail(err)
        scenes = sorted((folder / "scenes").glob("*/*.aec")) + sorted((project / "examples").glob("*/*.aec"))
        too_fast = {}
        for kind in ("gltf", "glb", "usda"):
            code, out, err = run(vxr, "export", *scenes, "--to", kind, "--out-dir", folder / kind, "--json")
            # Footage of some scenes is missing on purpose.
            if code not in (0, 4):
                fail(f"vxr export --to {kind} ended with {code}: {err}")
            too_fast[kind] = {Path(one["scene"]).stem for one in json.loads(out)["scenes"] for loss in one["losses"]
                              if loss["code"] == "handover-turn-too-fast"}
        files = [folder / kind / f"{scene.stem}.{kind}" for scene in scenes for kind in ("gltf", "glb")]
        code, out, err = run("node", HERE / "validate_gltf.mjs", modules, *files)
        if code != 0:
            fail(f"the validator did not run: {err}")
        for report in json.loads(out):
            animated = "KHR_animation_pointer" in Gltf(Path(report["file"])).file.get("extensionsUsed", [])
            if report["errors"] or (report["warnings"] and not animated):
                fail(f"the validator says {report['errors'] + report['warnings']} about {report['file']}")
        code, out, err = run("node", HERE / "read_usd.mjs", modules, *[folder / "usda" / f"{scene.stem}.usda" for scene in scenes])
        if code != 0:
            fail(f"the USD reader did not run: {err}")
        texts = [one.get("text") or fail(f"{one['file']}: {one['error']}") for one in json.loads(out)]
        worst = {"gltf": (0, ""), "glb": (0, ""), "usda": (0, "")}
        cameras = 0
        for path, text in zip(scenes, texts):
            scene = Scene(path)
            cameras += sum(1 for keys in scene.of_kind("CAMERA") if keys)
            for kind in ("gltf", "glb"):
                file = Gltf(folder / kind / f"{path.stem}.{kind}")
                found = file.cameras()
                if len(found) != len(scene.of_kind("CAMERA")):
                    fail(f"{path}: {len(found)} cameras in {kind}")

                def at(index, frame, file=file, found=found):
                    place, turn, across, upwards = file.camera_at(found[index], (frame - scene.begin) / scene.rate)
                    return place, [turn], across, upwards, file.scale

                worst[kind] = max(worst[kind], (*largest_distance(scene, at, path.stem in too_fast[kind]), path.name), key=lambda one: one[0])
            usd = Usd(text)

            def usd_at(index, frame, usd=usd):
                place, turns, across, upwards = usd.camera_at(usd.cameras[index], frame)
                return place, turns[::-1], across, upwards, 1

            worst["usda"] = max(worst["usda"], (*largest_distance(scene, usd_at, path.stem in too_fast["usda"]), path.name), key=lambda one: one[0])
        if any(len(scenes_of) > len(scenes) / 10 for scenes_of in too_fast.values()):
            fail("more than a tenth of the scenes turns too fast")
        print(f"{len(scenes)} scenes, {cameras} cameras with keys; largest distances {worst}")
        if cameras < 10 or any(not distance[0] <= GOAL_PX for distance in worst.values()):
            fail(f"more than {GOAL_PX} pixels")


if __name__ == "__main__":
    main()
