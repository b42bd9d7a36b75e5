#!/usr/bin/env python3
"""first_run_test.py VXR: the package for the first run in After Effects.

The pictures in it are computed from the scenes' numbers with a pinhole camera. Here the scenes are imported, and the nulls
are looked at through the imported camera as After Effects documents its cameras: both must agree.
"""
import csv
import io
import json
import re
import subprocess
import sys
import tempfile
import unittest
import zipfile
from functools import cache
from math import cos, hypot, radians, sin
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "tests" / "support"))
from picture_files import png_picture, tga_pixels

VXR = str(Path(sys.argv.pop()).resolve())
FIRST_RUN = PROJECT / "first_run"
PAGE = (PROJECT / "docs" / "first-run.md").read_text(encoding="utf-8")
WHITE = (255, 255, 255)
BLUE = bytes((80, 160, 255))


def run(*command):
    return subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          check=False)


@cache
def imported(scene):
    done = run(VXR, "import", "--json", FIRST_RUN / scene)
    assert done.returncode == 0, done.stderr
    return json.loads(done.stdout)


def composition(project, name):
    [item] = [item["content"] for item in project["items"] if item["kind"] == "composition" and item["name"] == name]
    [found] = [one for one in project["compositions"] if one["id"] == item]
    return found


def value(layer, stream, frame, fps=25):
    """What a stream has at a frame: the key there, or the last one before it."""
    [found] = [one for one in layer["streams"] if one["name"] == stream]
    keys = [(time * fps / scale, content[0] if len(content) == 1 else tuple(content))
            for time, scale, *content in found["keyframes"]]
    if not keys:
        keys = [(0, found["value"])]
    one = [content for time, content in keys if time <= frame + 1e-6][-1]
    return tuple(one[axis] for axis in "xyz" if axis in one) if isinstance(one, dict) else one


def cross_product(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def dot_product(a, b):
    return sum(p * q for p, q in zip(a, b))


def difference(a, b):
    return tuple(p - q for p, q in zip(a, b))


def unit(vector):
    return tuple(one / dot_product(vector, vector) ** 0.5 for one in vector)


def through_camera(shot, camera, point, frame):
    """Where a two-node camera shows a point: x to the right, y down, z away; the camera looks at its point of interest with
    its y axis as near to down as that allows, and is then turned about its view by the orientation's z."""
    position = value(camera, "position", frame)
    view = unit(difference(value(camera, "anchor_point", frame), position))
    right = unit(cross_product((0, 1, 0), view))
    down = cross_product(view, right)
    orientation = value(camera, "orientation", frame)
    assert orientation[:2] == (0, 0), orientation
    turn = radians(orientation[2])
    turned_right = tuple(r * cos(turn) + d * sin(turn) for r, d in zip(right, down))
    turned_down = tuple(d * cos(turn) - r * sin(turn) for r, d in zip(right, down))
    way = difference(point, position)
    factor = value(camera, "zoom", frame) / dot_product(way, view)
    return (shot["width"] / 2 + factor * dot_product(way, turned_right),
            shot["height"] / 2 + factor * dot_product(way, turned_down))


def shown(project, name, frame):
    """Where each null of a composition is seen through its camera."""
    shot = composition(project, name)
    [camera] = [layer for layer in shot["layers"] if layer["kind"] == "camera"]
    return {layer["name"]: through_camera(shot, camera, value(layer, "position", frame), frame)
            for layer in shot["layers"] if layer["kind"] == "null"}


def pixel(picture, x, y):
    row = picture[3][int(y // 1)]
    return tuple(row[3 * int(x // 1):3 * int(x // 1) + 3])


def painted(path):
    return png_picture((FIRST_RUN / path).read_bytes())[0]


def table_rows(heading):
    """The rows of the tables of one section of the page, without their heads."""
    section = re.search(rf"^## {re.escape(heading)}\n(.*?)(?=^## |\Z)", PAGE, re.MULTILINE | re.DOTALL)[1]
    rows = [[cell.strip() for cell in line.strip("|").split("|")] for line in re.findall(r"^\|.*\|$", section, re.MULTILINE)]
    return [row for row in rows[1:] if set("".join(row)) != {"-"}]


class Pictures(unittest.TestCase):
    def assert_cross(self, picture, place, colour=WHITE):
        """A cross has arms from 3 to 11 pixels off, and an open middle."""
        x, y = place
        for dx, dy in ((5, 0), (-5, 0), (0, 5), (0, -5)):
            self.assertEqual(pixel(picture, x + dx, y + dy), colour, place)
        for dx, dy in ((12, 0), (-12, 0), (0, 12), (0, -12), (1, 0), (-1, 0), (0, 1), (0, -1)):
            self.assertNotEqual(pixel(picture, x + dx, y + dy), colour, place)

    def test_are_those_that_the_scripts_write(self):
        with tempfile.TemporaryDirectory() as folder:
            for script in ("make_scenes", "make_pictures"):
                done = run(sys.executable, "-B", FIRST_RUN / script, folder)
                self.assertEqual(done.returncode, 0, done.stderr)
            made = {path.relative_to(folder): path for path in Path(folder).rglob("*") if path.is_file()}
            kept = {path.relative_to(FIRST_RUN): path for path in FIRST_RUN.rglob("*")
                    if path.suffix in (".aec", ".png", ".txl")}
            self.assertEqual(set(made), set(kept))
            for name, path in kept.items():
                kept_bytes, made_bytes = path.read_bytes(), made[name].read_bytes()
                if name.suffix == ".png" and kept_bytes != made_bytes:  # another version of zlib packs differently
                    self.assertEqual(png_picture(kept_bytes), png_picture(made_bytes), name)
                elif name.suffix != ".png":
                    self.assertEqual(kept_bytes, made_bytes, name)

    def test_have_their_crosses_where_the_imported_camera_shows_the_nulls(self):
        project = imported("square/square_050.aec")
        for frame in range(25):
            plate = painted(f"square/plate{frame:04}.png")
            nulls = shown(project, "Square 050", frame)
            self.assertEqual(len(nulls), 7)
            for name, place in nulls.items():
                with self.subTest(frame=frame, null=name):
                    self.assert_cross(plate, place)

    def test_show_anamorphic_nulls_where_the_camera_composition_shows_them(self):
        project = imported("wide/wide_060.aec")
        nulls = shown(project, "Camera+Light", 0)
        self.assertEqual(sorted(nulls), ["Q1", "Q2", "Q3", "Q4", "Q5", "Q6"])
        layer = [one for one in composition(project, "Wide 060")["layers"] if one["name"] == "Camera+Light"][0]
        scale = value(layer, "scale", 0)
        inner, outer = painted("pictures/wide_camera_light.png"), painted("wide/plate_wide.png")
        for name, (x, y) in nulls.items():
            with self.subTest(name):
                self.assert_cross(inner, (x, y))
                self.assert_cross(outer, (360 + (x - 360) * scale[0] / 100, 288 + (y - 288) * scale[1] / 100))

    def test_tell_the_two_answers_about_anamorphic_pixels_apart(self):
        """Every ring is well away from every cross, or one look would not settle it."""
        rows = painted("pictures/wide_camera_light.png")[3]
        blue = [(x, y) for y, row in enumerate(rows) if BLUE in row for x in range(720) if row[3 * x:3 * x + 3] == BLUE]
        self.assertGreater(len(blue), 6 * 20)
        for name, place in shown(imported("wide/wide_060.aec"), "Camera+Light", 0).items():
            with self.subTest(name):
                self.assertGreater(min(hypot(x - place[0], y - place[1]) for x, y in blue), 6)

    def test_show_the_texture_as_its_reader_reads_it(self):
        with tempfile.TemporaryDirectory() as folder:
            done = run(VXR, "texture", "convert", "--alpha", "none", FIRST_RUN / "texture" / "card.txl", "-o",
                       Path(folder) / "card.tga")
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            width, height, bits, rows = tga_pixels((Path(folder) / "card.tga").read_bytes())
        self.assertEqual((width, height, bits), (321, 241, 24))
        rgb = [b"".join(row[x:x + 3][::-1] for x in range(0, len(row), 3)) for row in rows]
        self.assertEqual(rgb, painted("pictures/card.png")[3])
        done = run(VXR, "texture", "check", "--strict", FIRST_RUN / "texture" / "card.txl")
        self.assertEqual(done.returncode, 0, done.stderr)


class Page(unittest.TestCase):
    def test_gives_the_places_of_the_nulls(self):
        nulls = shown(imported("square/square_050.aec"), "Square 050", 0)
        rows = table_rows("4. The first frame through the camera")
        self.assertEqual(len(rows), len(nulls))
        for name, x, y in rows:
            self.assertAlmostEqual(float(x), nulls[name][0], delta=0.06)
            self.assertAlmostEqual(float(y), nulls[name][1], delta=0.06)

    def test_gives_the_values_of_camera_and_lights(self):
        layers = {layer["name"]: layer for layer in composition(imported("square/square_050.aec"), "Square 050")["layers"]}
        owner, checked = "", 0
        for name, property_name, shown_value in table_rows("6. Values"):
            owner = name or owner
            stream = {"Point of Interest": "anchor_point", "Position": "position", "Orientation": "orientation",
                      "Zoom": "zoom"}.get(property_name)
            if stream is not None:
                found = value(layers[owner], stream, 0)
                found = found if isinstance(found, tuple) else (found,)
                written = [float(number) for number in re.findall(r"-?\d+\.\d+", shown_value)]
                self.assertEqual(len(written), len(found), shown_value)
                for one, other in zip(found, written, strict=True):
                    self.assertAlmostEqual(one, other, delta=0.06)
                checked += 1
            elif property_name.startswith("Light Type"):
                kind, intensity = re.match(r"(\w+), (\d+) %", shown_value).groups()
                self.assertEqual(layers[owner]["light_type"], kind.lower())
                self.assertAlmostEqual(value(layers[owner], "intensity", 0), float(intensity), places=4)
                checked += 1
        self.assertEqual(checked, 9)

    def test_names_the_layers_in_order(self):
        layers = [layer["name"] for layer in composition(imported("square/square_050.aec"), "Square 050")["layers"]]
        step = " ".join(re.search(r"^## 3\..*?(?=^## )", PAGE, re.MULTILINE | re.DOTALL)[0].split())
        listed = re.search(r"from top to bottom: (.*?), and the plate", step)[1].split(", ")
        self.assertEqual(listed, layers[:-1])
        self.assertTrue(layers[-1].startswith("plate"), layers)

    def test_gives_names_that_are_in_the_scene(self):
        scene = (FIRST_RUN / "names" / "Küche_070.aec").read_text(encoding="utf-8")
        rows = table_rows("12. Names")
        self.assertEqual(len(rows), 4)
        for _, name in rows:
            self.assertIn(f'"{name}"', scene)
        self.assertEqual([len(name) for _, name in rows[1:]], [60, 60, 60])

    def test_says_for_every_step_what_must_be_seen(self):
        steps = re.split(r"^## (?=\d)", PAGE, flags=re.MULTILINE)[1:]
        self.assertEqual(len(steps), 15)
        for step in steps:
            self.assertEqual(step.count("**Must be seen:**"), 1, step.splitlines()[0])


class Scenes(unittest.TestCase):
    def test_are_accepted_and_arrive_as_the_page_says(self):
        for scene, footage in [("square/square_050.aec", "sequence"), ("wide/wide_060.aec", "file"),
                               ("names/Küche_070.aec", "file")]:
            with self.subTest(scene):
                self.assertEqual(run(VXR, "check", FIRST_RUN / scene).returncode, 0)
                self.assertEqual([one["kind"] for one in imported(scene)["footage"]], [footage])
        project = imported("missing/missing_080.aec")
        self.assertEqual({one["name"]: one["kind"] for one in project["footage"]},
                         {"delivered.png": "file", "lost0000.png": "placeholder"})
        self.assertEqual(project["messages"], [])
        self.assertEqual([step["name"] for step in project["undo_steps"]], ["Import media"])


class Package(unittest.TestCase):
    def setUp(self):
        self.kept = tempfile.TemporaryDirectory()
        self.addCleanup(self.kept.cleanup)
        self.folder = Path(self.kept.name)
        self.aex = self.folder / "made.aex"
        self.aex.write_bytes(b"MZ a library")
        self.bundle = self.folder / "made.plugin"
        for name, data in [("Contents/Info.plist", b"<plist/>"), ("Contents/PkgInfo", b"AEgxFXTC"),
                           ("Contents/MacOS/VORTANXR_AE", b"\xca\xfe\xba\xbe code"),
                           ("Contents/Resources/VORTANXR_AE.rsrc", b"resources")]:
            (self.bundle / name).parent.mkdir(parents=True, exist_ok=True)
            (self.bundle / name).write_bytes(data)

    def make(self, *more, name="a.zip"):
        return run(sys.executable, "-B", PROJECT / "script" / "first-run", "--windows", self.aex, "--macos", self.bundle,
                   "--vxr", VXR, "--output", self.folder / name, *more)

    def test_holds_everything_with_its_sums(self):
        done = self.make()
        self.assertEqual(done.returncode, 0, done.stderr)
        with zipfile.ZipFile(self.folder / "a.zip") as package:
            self.assertIsNone(package.testzip())
            found = {name.removeprefix("VORTANXR_AE-first-run/"): package.read(name) for name in package.namelist()}
            modes = {name: package.getinfo(name).external_attr >> 16 & 0o777 for name in package.namelist()}
        self.assertEqual(found["windows/VORTANXR_AE.aex"], b"MZ a library")
        self.assertEqual(found["macos/VORTANXR_AE.plugin/Contents/MacOS/VORTANXR_AE"], b"\xca\xfe\xba\xbe code")
        self.assertEqual({name for name, mode in modes.items() if mode != 0o644},
                         {"VORTANXR_AE-first-run/macos/VORTANXR_AE.plugin/Contents/MacOS/VORTANXR_AE"})
        for name in ("square/square_050.aec", "square/plate0024.png", "wide/wide_060.aec", "wide/plate_wide.png",
                     "names/Küche_070.aec", "names/Fläche groß.png", "missing/missing_080.aec", "texture/card.txl",
                     "pictures/square_frame_00.png", "pictures/wide_camera_light.png", "pictures/card.png",
                     "first-run.txt", "handover.txt", "hosts.txt", "in-after-effects.txt", "license.txt"):
            self.assertIn(name, found)
        self.assertNotIn("missing/lost0000.png", found)
        for name in ("measure/square_050.jsx", "measure/wide_060.jsx"):
            self.assertTrue(found[name].endswith(b"\nmeasure();\n})();\n"), name)
            self.assertNotIn(str(PROJECT).encode(), found[name], "a script names a folder of this machine")
        with tempfile.TemporaryDirectory() as folder:
            for name, data in found.items():
                (Path(folder) / name).parent.mkdir(parents=True, exist_ok=True)
                (Path(folder) / name).write_bytes(data)
            sums = subprocess.run(["sha256sum", "--strict", "--check", "checksums.txt"], cwd=folder, capture_output=True,
                                  text=True, check=False)
            self.assertEqual(sums.returncode, 0, sums.stdout)
            self.assertEqual(len(sums.stdout.splitlines()), len(found) - 1)

    def test_has_the_steps_as_a_table_to_fill_in(self):
        self.assertEqual(self.make().returncode, 0)
        with zipfile.ZipFile(self.folder / "a.zip") as package:
            text = package.read("VORTANXR_AE-first-run/results.csv").decode("utf-8-sig")
        rows = list(csv.reader(io.StringIO(text, newline=""), delimiter=";"))
        self.assertEqual([row[0] for row in rows[2:]], [str(number) for number in range(1, 16)])
        self.assertTrue(all(len(row) == 4 and len(row[1]) > 10 and row[2:] == ["", ""] for row in rows[2:]))

    def test_has_the_same_bytes_every_time(self):
        self.assertEqual(self.make(name="a.zip").returncode, 0)
        self.assertEqual(self.make(name="b.zip").returncode, 0)
        self.assertEqual((self.folder / "a.zip").read_bytes(), (self.folder / "b.zip").read_bytes())

    def test_is_not_made_without_its_parts(self):
        (self.folder / "a.zip").write_bytes(b"the last one")
        for reason, spoil, message in [
            ("the code for macOS is something else",
             lambda: (self.bundle / "Contents/MacOS/VORTANXR_AE").write_bytes(b"\x7fELF"), "is no code for macOS"),
            ("a file of the bundle is missing", (self.bundle / "Contents/PkgInfo").unlink, "has no Contents/PkgInfo"),
            ("the bundle for macOS is missing", lambda: self.bundle.rename(self.folder / "gone"), "script/macos"),
            ("the library is something else", lambda: self.aex.write_bytes(b"\x7fELF"), "is no library for Windows"),
            ("the library is missing", self.aex.unlink, "script/windows"),
        ]:
            with self.subTest(reason):
                spoil()
                done = self.make()
                self.assertEqual(done.returncode, 1)
                self.assertIn(message, done.stderr)
                self.assertEqual((self.folder / "a.zip").read_bytes(), b"the last one")
        self.assertEqual([path.name for path in self.folder.iterdir() if path.name.startswith(".")], [])

    def test_is_not_made_without_its_measuring_scripts(self):
        done = self.make("--vxr", self.folder / "none")
        self.assertEqual(done.returncode, 1)
        self.assertIn("script/build release vxr", done.stderr)
        self.assertFalse((self.folder / "a.zip").exists())

    def test_can_be_made_for_windows_alone(self):
        done = self.make("--windows-only")
        self.assertEqual(done.returncode, 0, done.stderr)
        with zipfile.ZipFile(self.folder / "a.zip") as package:
            self.assertFalse(any("/macos/" in name for name in package.namelist()))


if __name__ == "__main__":
    unittest.main()
