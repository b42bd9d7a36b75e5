"""Compares what a corrected script built with what the scene's text says, worked out here.

The script ran in the stand-in for After Effects; built_project.js wrote down what it made. The scene is read by
scene_text.py, the motion of its cameras by tests/scene3d/scene_truth.py. No program under test has a part in what is
expected; the sizes and alpha of pictures come from their files.
"""

import math
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "scene3d"))
import scene_truth  # noqa: E402
from scene_text import Composition, SceneText, last_component  # noqa: E402

ANCHOR, POSITION, ORIENTATION = "ADBE Anchor Point", "ADBE Position", "ADBE Orientation"
ROTATIONS = ["ADBE Rotate X", "ADBE Rotate Y", "ADBE Rotate Z"]
ZOOM, CONE, FEATHER = "ADBE Camera Zoom", "ADBE Light Cone Angle", "ADBE Light Cone Feather 2"
BLENDS = {"NRM": "NORMAL", "ADD": "ADD", "MUL": "MULTIPLY"}
LIGHTS = {"OMNI": "POINT", "TUBE": "POINT", "AREA": "POINT", "SPOT": "SPOT", "PAR": "PARALLEL", "PSPOT": "PARALLEL"}
FIELDS = {"NONE": "OFF", "EVEN": "UPPER_FIELD_FIRST", "ODD": "LOWER_FIELD_FIRST"}
# What a corrected project may be off from the scene, everywhere.
PIXELS = 0.05
# Nobody looks through a light: its aim is judged as if through a lens of 53 degrees, in a picture of the scene's width.
# And so far may a light or a null be from its place.
UNITS = 1e-3


def near(a, b, within=1e-9):
    return a is not None and b is not None and abs(a - b) <= within * max(1, abs(a), abs(b))


# ---- After Effects' camera, as a matrix for column vectors: T(position) LookAt Orientation RX RY RZ.


def product(a, b):
    return [[sum(a[i][k] * b[k][j] for k in range(3)) for j in range(3)] for i in range(3)]


def turn(axis, degrees):
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    i, j = (axis + 1) % 3, (axis + 2) % 3
    made = [[float(r == k) for k in range(3)] for r in range(3)]
    made[i][i], made[i][j], made[j][i], made[j][j] = c, -s, s, c
    return made


def normal(vector):
    """Not a number without a direction: straight up or down, nothing is level."""
    length = math.sqrt(sum(one * one for one in vector)) or math.nan
    return [one / length for one in vector]


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


def value_at(track, time):
    """Straight between keys, or held; the first and last value beyond them."""
    keys = track["keys"]
    if not keys:
        return track["value"]
    if time <= keys[0]["time"]:
        return keys[0]["value"]
    low, high = 0, len(keys)
    while high - low > 1:
        middle = (low + high) // 2
        low, high = (middle, high) if keys[middle]["time"] <= time else (low, middle)
    # A whole frame is where its key is, whatever the last bit of its time.
    if low + 1 < len(keys) and keys[low + 1]["time"] - time < 1e-9:
        low += 1
    if low + 1 == len(keys) or keys[low]["out"] == "HOLD":
        return keys[low]["value"]
    a, b = keys[low], keys[low + 1]
    part = max(0, (time - a["time"]) / (b["time"] - a["time"]))
    if isinstance(a["value"], list):
        return [p + part * (q - p) for p, q in zip(a["value"], b["value"])]
    return a["value"] + part * (b["value"] - a["value"])


class Placed:
    """A camera or light of After Effects at one moment."""

    def __init__(self, layer, time):
        def of(name, default):
            track = layer["properties"].get(name)
            return value_at(track, time) if track else default

        self.position = of(POSITION, [0, 0, 0])
        turned = [[float(r == k) for k in range(3)] for r in range(3)]
        if layer["aimed"]:
            forward = normal([a - p for a, p in zip(of(ANCHOR, [0, 0, 0]), self.position)])
            # Upright: the right side stays level. y points down.
            right = normal(cross([0, 1, 0], forward))
            down = cross(forward, right)
            turned = [[right[i], down[i], forward[i]] for i in range(3)]
        orientation = of(ORIENTATION, [0, 0, 0])
        angles = [of(name, 0) for name in ROTATIONS]
        for axis, degrees in list(enumerate(orientation)) + list(enumerate(angles)):
            turned = product(turned, turn(axis, degrees))
        self.right, self.down, self.forward = ([turned[i][k] for i in range(3)] for k in range(3))
        if layer["aimed"] and not any(orientation[:2] + angles[:2]):
            self.forward = forward  # a bank does not move it
        self.zoom = of(ZOOM, None)

    def project(self, point, size):
        way = [a - b for a, b in zip(point, self.position)]
        depth = sum(a * b for a, b in zip(way, self.forward))
        across, down = (sum(a * b for a, b in zip(way, side)) for side in (self.right, self.down))
        return size[0] / 2 + self.zoom * across / depth, size[1] / 2 + self.zoom * down / depth


# ---- What the scene asks for.


class Expected:
    def __init__(self, scene, path):
        self.text = scene
        self.of = scene.settings
        self.truth = scene_truth.Scene(path)
        self.width, self.height = self.of["RESOLUTION"]
        self.first, self.last, self.rate, self.aspect = self.of["FROM"], self.of["TO"], self.of["FPS"], self.of["ASPECT"]
        self.base = self.first if self.of["LOCAL"] else 0
        self.span = self.last - self.first + 1

    def seconds(self, frame):
        """When a frame of the scene is, in its compositions."""
        return (self.base + frame - self.first) / self.rate

    def square_height(self):
        """So many square pixels as show the whole height: rounded up to a number that is odd or even like it."""
        height = math.ceil(self.height / float(self.of["WRITTEN ASPECT"]) - 1e-9)
        return height + (height - self.height) % 2


def numbered_files(file):
    """The numbers that are there beside the file, and what is around them in the names."""
    head, digits, tail = re.fullmatch(r"(.*?)(\d+)(\.[^.]*)", file.name).groups()
    numbers = set()
    for other in file.parent.iterdir():
        match = re.fullmatch(re.escape(head) + r"(\d+)" + re.escape(tail), other.name)
        if match:
            numbers.add(int(match[1]))
    return head, len(digits), tail, sorted(numbers)


class Comparison:
    def __init__(self, path, built, losses):
        # Objects that are said to turn too fast for keys between frames: only their whole frames are right.
        self.too_fast = {loss["at"]["line"] for loss in losses if loss["code"] == "handover-turn-too-fast"}
        self.expected = Expected(SceneText(path), path)
        self.items = built["items"]
        self.found = []
        self.worst = 0.0
        self.points = 0

    def same(self, where, what, got, wanted):
        if got != wanted:
            self.found.append(f"{where}: {what} is {got!r}, not {wanted!r}")

    def near(self, where, what, got, wanted, within=1e-9):
        if not near(got, wanted, within):
            self.found.append(f"{where}: {what} is {got!r}, not {wanted!r}")

    def run(self):
        want = self.expected
        self.same("project", "the ids that are there once", len(set(self.ids())), len(self.ids()))
        self.used = set()
        self.composition(-1, want.text.root, True)
        if want.text.passes:
            folder = self.take("folder", "Special Passes", -1)
            for one in want.text.passes:
                self.footage(folder, one, False)
        self.same("project", "the number of items", len(self.items), len(self.used))
        return self.found

    def ids(self):
        things = [item for item in self.items] + [
            layer for item in self.items if item["composition"] for layer in item["composition"]["layers"]]
        return [re.search(r"\{(vxr-[0-9a-f]{16}) ", thing["comment"])[1] for thing in things]

    def take(self, kind, name, folder):
        """The first item of the folder that was not taken. After Effects shows it in another order, but makes it in this."""
        for i, item in enumerate(self.items):
            if i not in self.used and item["folder"] == folder and item["kind"] == kind and item["name"] == name:
                self.used.add(i)
                return i
        self.found.append(f"project: there is no {kind} {name!r} in folder {folder}")
        raise LookupError

    def composition(self, parent, scene, root):
        """The item of the composition."""
        want = self.expected
        folder = self.take("folder", scene.name, parent)
        item = self.take("composition", scene.name, folder)
        made = self.items[item]["composition"]
        where = f"composition {scene.name!r}"
        self.settings(where, made, [want.width, want.height], want.aspect)
        layers = []
        for entry in scene.entries:
            if isinstance(entry, Composition):
                layers.append((entry.blend, self.composition(folder, entry, False), entry.name, None))
            else:
                own, shown = self.footage(folder, entry, True)
                layers.append((entry.blend, own, self.items[own]["name"], shown))
        layers.reverse()
        got = made["layers"]
        if root and want.text.objects:
            if want.aspect == 1:
                count = len(want.text.objects)
                self.objects(where, got[:count], [want.width, want.height])
                got = got[count:]
            else:
                camera_item = self.take("composition", "Camera+Light", folder)
                camera = self.items[camera_item]["composition"]
                size = [want.width, want.square_height()]
                self.settings("Camera+Light", camera, size, 1)
                self.objects("Camera+Light", camera["layers"], size)
                layers.insert(0, ("NRM", camera_item, "Camera+Light", "objects"))
        self.same(where, "the number of its other layers", len(got), len(layers))
        for i, (layer, (blend, source, name, shown)) in enumerate(zip(got, layers)):
            self.picture_layer(f"{where}, picture layer {i + 1}", layer, blend, source, name, shown)
        return item

    def settings(self, where, made, size, aspect):
        want = self.expected
        self.same(where, "its size", made["size"], size)
        self.near(where, "its pixel aspect", made["aspect"], aspect, 1e-7)
        self.near(where, "its length", made["seconds"], want.of["RANGE"] / want.rate)
        self.near(where, "its rate", made["rate"], want.rate)
        marks = [[want.seconds(want.first), f"FROM {want.first}"]]
        if want.last > want.first:
            marks.append([want.seconds(want.last), f"TO {want.last}"])
        self.same(where, "its markers", [mark[1] for mark in made["markers"]], [mark[1] for mark in marks])
        for got, mark in zip(made["markers"], marks):
            self.near(where, "the time of " + mark[1], got[0], mark[0])

    def picture_layer(self, where, layer, blend, source, name, shown):
        want = self.expected
        self.same(where, "its kind", layer["kind"], "footage" if isinstance(shown, tuple) else "composition")
        self.same(where, "what it shows", layer["item"], source)
        self.same(where, "its name", layer["name"], name)
        self.same(where, "its blend mode", layer["blend"], BLENDS[blend])
        self.same(where, "being in space", layer["threeD"], False)
        if shown == "objects":
            scale = layer["properties"].get("ADBE Scale", {}).get("value") or [0, 0, 0]
            for got, wanted in zip(scale, [100 * want.aspect, 100 * want.aspect, 100]):
                self.near(where, "its scale", got, wanted, 1e-7)
        if isinstance(shown, tuple):
            first, last = shown
            self.near(where, "its start", layer["start"], want.seconds(first))
            self.near(where, "its in-point", layer["in"], want.seconds(first))
            self.near(where, "its out-point", layer["out"], want.seconds(last + 1))
        else:
            self.near(where, "its start", layer["start"], 0)
            self.near(where, "its in-point", layer["in"], 0)
            self.near(where, "its out-point", layer["out"], want.of["RANGE"] / want.rate)

    def footage(self, folder, scene, layered):
        """The item, and the first and last frame of the scene that it is shown at."""
        want = self.expected
        whole = (want.first, want.last)
        if scene.path is None:
            item = self.take("footage", last_component(scene.written), folder)
            source, numbers, file = "placeholder", None, None
        elif not scene.numbered:
            item = self.take("footage", scene.path.name, folder)
            source, numbers, file = "file", None, scene.path
        else:
            head, digits, tail, there = numbered_files(scene.path)
            # File N at frame N, if any file is within FROM and TO.
            inside = [one for one in there if want.first <= one <= want.last] if layered else []
            # "From 0 to 0" is how a script asks for all files. The layer shows the first one alone.
            asked = inside if inside not in ([], [0]) else there
            numbers = [asked[0], asked[-1]]
            whole = (inside[0], inside[-1]) if inside else whole
            source, file = "sequence", scene.path.with_name(f"{head}{numbers[0]:0{digits}}{tail}")
            item = self.take("footage", f"{head}[{numbers[0]:0{digits}}-{numbers[1]:0{digits}}]{tail}", folder)
        self.source(f"footage {self.items[item]['name']!r}", self.items[item]["footage"], scene, source, numbers, file)
        return item, whole

    def source(self, where, made, scene, source, numbers, file):
        want = self.expected
        self.same(where, "its source", made["source"], source)
        self.same(where, "its numbers", made["numbers"], numbers)
        self.same(where, "its file", made["file"], file and str(file.resolve()))
        self.near(where, "its pixel aspect", made["aspect"], want.aspect, 1e-7)
        if source == "placeholder":
            self.same(where, "its size", made["size"], [want.width, want.height])
            self.near(where, "its length", made["seconds"], want.span / want.rate)
        if source != "file":
            self.near(where, "its rate", made["rate"], want.rate)
            self.same(where, "its fields", made["fields"], FIELDS[want.of["FIELDS"]])
        if made["alpha"] is not None:
            alpha = {"PREMUL": "PREMULTIPLIED", "STRAIGHT": "STRAIGHT"}[scene.alpha]
            if file and file.suffix.lower() in (".rla", ".rpf") and file.read_bytes()[22:24] == b"\0\0":
                alpha = "IGNORE"
            self.same(where, "its alpha", made["alpha"], alpha)
            if alpha == "PREMULTIPLIED":
                self.same(where, "the colour under its alpha", made["over"], [0, 0, 0])

    # ---- Cameras, lights and nulls.

    def objects(self, where, layers, size):
        want = self.expected
        wanted = want.text.objects
        self.same(where, "the objects", [layer["name"] for layer in layers], [one.name for one in wanted])
        for layer, one in zip(layers, wanted):
            self.object(f"{where}, {one.word} {one.name!r}", layer, one, scene_truth.Track(one.keys) if one.keys else None, size)

    def object(self, where, layer, one, track, size):
        want = self.expected
        self.same(where, "its kind", layer["kind"], one.word.lower())
        self.near(where, "its start", layer["start"], want.base / want.rate)
        self.near(where, "its in-point", layer["in"], want.base / want.rate)
        # A scene of frame 0 alone is a still, and what is in it lasts as long as its composition.
        still = want.first == want.last == 0
        self.near(where, "its out-point", layer["out"], (want.of["RANGE"] if still else want.base + want.span) / want.rate)
        for name, held in layer["properties"].items():
            for key in held["keys"]:
                if not key["straight"] or key["into"] != "LINEAR" or key["out"] not in ("LINEAR", "HOLD"):
                    self.found.append(f"{where}: {name} has a key that is not straight: {key}")
                    break
        if one.word == "NULL":
            self.null(where, layer, one, track)
            return
        self.same(where, "its centre", layer["center"], [side // 2 for side in size])
        if one.word == "LIGHT":
            self.light(where, layer, one, track)
        elif track:
            self.camera(where, layer, one, track, size)
        else:
            self.same(where, "what is set", list(layer["properties"]), [])

    def moments(self, one, layer, track):
        """Every whole frame from FROM to TO, keys of the scene and of the layer, and moments between keys."""
        want = self.expected
        some = set(range(want.first, want.last + 1)) | set(scene_truth.moments(track, want.truth))
        for held in layer["properties"].values():
            keys = held["keys"][:: 1 + len(held["keys"]) // 400]
            some |= {round(key["time"] * want.rate - want.base + want.first, 6) for key in keys}
        return sorted(frame for frame in some if one.line not in self.too_fast or frame == int(frame))

    def camera(self, where, layer, one, track, size):
        want = self.expected
        worst, at = 0.0, None
        for frame in self.moments(one, layer, track):
            camera = Placed(layer, want.seconds(frame))
            for point, (x, y) in scene_truth.frame_points(want.truth, track.at(frame)):
                got = camera.project((point[0], -point[1], point[2]), size)
                # The composition of square pixels is laid over the scene's: its middle stays, its pixels become the scene's.
                wide = (got[0], (got[1] - size[1] / 2) * want.aspect + want.height / 2)
                away = math.hypot(wide[0] - x, wide[1] - y)
                self.points += 1
                if not away <= worst:
                    worst, at = away, frame
        self.worst = max(self.worst, worst)
        if not worst <= PIXELS:
            self.found.append(f"{where}: at frame {at:g} a point is {worst:.4f} pixels beside where the scene has it")

    def light(self, where, layer, one, track):
        kind = LIGHTS[one.light["TYPE"]]
        self.same(where, "its kind of light", layer["light"], kind)
        properties = layer["properties"]

        def value(name):
            return properties.get(name, {}).get("value")

        self.near(where, "its intensity", value("ADBE Light Intensity"), 100 * one.light["INTENSITY"], 1e-7)
        self.same(where, "its colour", value("ADBE Light Color"), one.light["COLOR"] + [1])
        self.same(where, "casting shadows", value("ADBE Casts Shadows"), int(one.light["SHADOW"] != "NONE"))
        self.same(where, "its cone", value(CONE), one.light["ANGLE"] if kind == "SPOT" else None)
        self.same(where, "the feather of its cone", value(FEATHER), 0 if kind == "SPOT" else None)
        if not track:
            return
        for frame in self.moments(one, layer, track):
            pose = track.at(frame)
            placed = Placed(layer if kind != "POINT" else {**layer, "aimed": False}, self.expected.seconds(frame))
            place = [pose["x"], -pose["y"], pose["z"]]
            if math.dist(placed.position, place) > UNITS:
                self.found.append(f"{where}: at frame {frame:g} it is at {placed.position}, not {place}")
                return
            if kind == "POINT":
                continue
            view = scene_truth.axes({**pose})[2]
            view = [view[0], -view[1], view[2]]
            away = math.dist(view, placed.forward) * self.expected.width
            if not away <= PIXELS:
                self.found.append(f"{where}: at frame {frame:g} it aims {away:.4f} pixels beside {view}")
                return

    def null(self, where, layer, one, track):
        self.same(where, "being in space", layer["threeD"], True)
        self.same(where, "its anchor point", layer["properties"].get(ANCHOR, {}).get("value"), [0, 0, 0])
        if not track:
            return
        for frame in self.moments(one, layer, track):
            pose = track.at(frame)
            placed = value_at(layer["properties"][POSITION], self.expected.seconds(frame))
            place = [pose["x"], -pose["y"], pose["z"]]
            if math.dist(placed, place) > UNITS:
                self.found.append(f"{where}: at frame {frame:g} it is at {placed}, not {place}")
                return
        for frame, pose in track.keys:
            angles = [pose["heading"], -pose["pitch"], pose["bank"]]
            for name, angle in zip(ROTATIONS, angles):
                got = value_at(layer["properties"][name], self.expected.seconds(frame))
                if abs(math.remainder(got - angle, 360)) > 1e-4:
                    self.found.append(f"{where}: at frame {frame} {name} is {got}, not {angle}")
                    return


def compare(path, built, losses):
    """What is wrong, a sentence each; the number of points and the largest distance in pixels.

    `losses` are those that `vxr export --json` names.
    """
    comparison = Comparison(path, built, losses)
    try:
        comparison.run()
    except LookupError:
        pass  # it is among what was found
    return comparison.found, comparison.points, comparison.worst
