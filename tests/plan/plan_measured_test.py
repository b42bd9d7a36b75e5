"""Plans of scenes, measured as a person measures them: by the numbers along the edges of the maps.

plan_measured_test.py VXR

Where things must be follows from the text of the scenes below, by hand.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

VXR = sys.argv.pop(1)
SVG = "{http://www.w3.org/2000/svg}"

HEAD = """VORTAN XR COMPOSITION
RESOLUTION 200 100
FROM 10
TO 20
RANGE 11
FPS 25
COMPOSITION NRM "Main" { }
"""

# A picture twice as wide as high; an angle of view of 90 degrees sees as far to either side as ahead.
SCENE = HEAD + """
CAMERA "Eye" {
  KEY 10 0 50 -300 0 0 0 90 200
  KEY 20 100 150 -300 0 0 0 90 200
}
LIGHT "Lamp" {
  TYPE OMNI
  COLOR 1 0.5 0
  INTENSITY 0.75
  KEY 10 -150 250 100 0 0 0
}
NULL "Mark" { KEY 10 60 20 -40 0 0 0 }
NULL "Mover" {
  KEY 0 0 0 0 0 0 0
  KEY 40 80 40 -40 0 0 0
}
"""


def plan(text, expect=0):
    with tempfile.TemporaryDirectory() as folder:
        scene = pathlib.Path(folder, "shot.aec")
        scene.write_text(text, "utf-8")
        out = pathlib.Path(folder, "plan.svg")
        run = subprocess.run([VXR, "preview", scene, "--plan", "-o", out], capture_output=True, text=True)
        assert run.returncode == expect, run.stderr
        return ElementTree.fromstring(out.read_bytes()) if out.exists() else run.stderr


def path(element):
    return [tuple(map(float, spot)) for spot in re.findall(r"[ML](-?[\d.]+) (-?[\d.]+)", element.get("d"))]


def of_class(element, name, tag="*"):
    return [one for one in element.iter(SVG + tag if tag != "*" else None)
            if one.get("class") == name]


class Map:
    """A map with the scale that its edges state."""

    def __init__(self, root, view):
        self.root = next(one for one in of_class(root, "map") if one.get("data-view") == view)
        self.across = self.scale("tick-across", "x")
        self.up = self.scale("tick-up", "y")

    def scale(self, name, attribute):
        ticks = [(float(one.text), float(one.get(attribute))) for one in of_class(self.root, name)]
        (a, at_a), (b, at_b) = min(ticks), max(ticks)
        assert a < b, "a scale needs two numbers"
        return lambda px: a + (px - at_a) * (b - a) / (at_b - at_a)

    def point(self, spot):
        return self.across(spot[0]), self.up(spot[1])

    def circle(self, name, within=None):
        one = of_class(within if within is not None else self.root, name, "circle")[0]
        return self.point((float(one.get("cx")), float(one.get("cy"))))


class MeasuredPlan(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.root = plan(SCENE)
        cls.above = Map(cls.root, "above")
        cls.side = Map(cls.root, "side")

    def assert_near(self, found, expected, what):
        # A hundredth of a pixel at either end of a scale, and in between, in units.
        for a, b in zip(found, expected):
            self.assertAlmostEqual(a, b, delta=0.1, msg=f"{what}: {found} instead of {expected}")

    def test_camera_at_both_ends(self):
        self.assert_near(self.above.circle("first"), (0, -300), "first, x and z")
        self.assert_near(self.above.circle("last"), (100, -300), "last, x and z")
        self.assert_near(self.side.circle("first"), (-300, 50), "first, z and y")
        self.assert_near(self.side.circle("last"), (-300, 150), "last, z and y")

    def test_way_of_the_camera(self):
        camera = of_class(self.above.root, "camera")[0]
        ways = [[self.above.point(spot) for spot in path(one)] for one in of_class(camera, "way")]
        self.assert_near(ways[0][0], (0, -300), "begin")
        self.assert_near(ways[-1][-1], (100, -300), "end")
        for one in sum(ways, []):
            self.assert_near((one[1],), (-300,), "straight between the keys")

    def test_frustum_of_the_first_frame(self):
        # 200 ahead: 200 to either side, and half of that up and down.
        for view, corners in (("above", {(0, -300), (-200, -100), (200, -100)}),
                              ("side", {(-300, 50), (-100, 150), (-100, -50)})):
            with self.subTest(view=view):
                one = Map(self.root, view)
                outline = next(path(a) for a in of_class(one.root, "frustum") if a.get("data-frame") == "10")
                found = [one.point(spot) for spot in outline]
                self.assertEqual(len(found), len(corners))
                for corner in corners:
                    nearest = min(found, key=lambda spot: abs(spot[0] - corner[0]) + abs(spot[1] - corner[1]))
                    self.assert_near(nearest, corner, "corner")

    def test_aim(self):
        aims = of_class(self.side.root, "aim", "circle")
        found = [self.side.point((float(one.get("cx")), float(one.get("cy")))) for one in aims]
        self.assert_near(found[0], (-100, 50), "first")
        self.assert_near(found[-1], (-100, 150), "last")

    def test_nulls(self):
        for number, x, y, z in ((0, 60, 20, -40), (1, 20, 10, -10)):  # a quarter of its way at FROM
            for one, expected in ((self.above, (x, z)), (self.side, (z, y))):
                null = of_class(one.root, "null")[number]
                spots = sum((path(arm) for arm in of_class(null, "cross")), [])
                middle = [sum(axis) / len(spots) for axis in zip(*spots)]
                self.assert_near(one.point(middle), expected, f"null {number}")

    def test_light(self):
        self.assert_near(self.above.circle("lamp"), (-150, 100), "x and z")
        self.assert_near(self.side.circle("lamp"), (100, 250), "z and y")
        lamp = of_class(self.above.root, "lamp", "circle")[0]
        self.assertEqual(lamp.get("fill"), "rgb(255,128,0)")
        strip = of_class(self.root, "intensity")[0]
        self.assertEqual([one.text for one in of_class(strip, "value")], ["0.75"])

    def test_curves(self):
        # What the ends of each curve say, and how it goes: up, down or not at all.
        expected = [("x", "0", "100", 1), ("y", "50", "150", 1), ("z", "-300", None, 0),
                    ("x", "0", "100", 1), ("y", "50", "150", 1), ("z", "-100", None, 0), ("distance", "200", None, 0),
                    ("heading", "0", None, 0), ("pitch", "0", None, 0), ("bank", "0", None, 0), ("view", "90", None, 0)]
        curves = of_class(self.root, "curve")
        self.assertEqual([one.get("data-channel") for one in curves], [one[0] for one in expected])
        for curve, (name, low, high, way) in zip(curves, expected):
            spots = sum((path(one) for one in of_class(curve, "values")), [])
            values = [one.text for kind in ("value", "low", "high") for one in of_class(curve, kind)]
            self.assertEqual(values, [low] + ([high] if high else []), name)
            rise = spots[0][1] - spots[-1][1]
            self.assertEqual((rise > 5) - (rise < -5), way, name)

    def test_names_and_note(self):
        texts = ["".join(one.itertext()) for one in self.root.iter(SVG + "text")]
        for name in ("Eye, frame 20", "frame 10", "Mark", "Mover", "Lamp", "shot.aec"):
            self.assertIn(name, texts)
        self.assertIn("2 keys lie before FROM or after TO and are not shown.", texts)


class Cuts(unittest.TestCase):
    def test_cut_breaks_the_way(self):
        root = plan(HEAD + 'CAMERA "C" { KEY 10 0 0 0 0 0 0 50 100 KEY 14 10 0 0 0 0 0 50 100 '
                    'KEY 15 200 0 300 -170 0 0 50 100 KEY 20 210 0 300 -170 0 0 50 100 }\n')
        above = Map(root, "above")
        ways = [[above.point(spot) for spot in path(one)] for one in of_class(of_class(above.root, "camera")[0], "way")]
        self.assertLess(max(x for way in ways for x, z in way if z < 150), 10.2)
        self.assertGreater(min(x for way in ways for x, z in way if z > 150), 199.8)
        cuts = of_class(above.root, "cut")
        self.assertEqual(len(cuts), 1)
        begin, end = (above.point(spot) for spot in path(cuts[0]))
        for found, expected in zip(begin + end, (10, 0, 200, 300)):
            self.assertAlmostEqual(found, expected, delta=0.1)

    def test_cut_that_looks_different(self):
        root = plan(HEAD + 'CAMERA "C" { KEY 10 0 0 0 0 0 0 50 100 KEY 14 100 0 0 0 0 0 50 100 '
                    'KEY 15 200 0 300 -170 0 0 50 100 KEY 20 300 0 300 -170 0 0 50 100 }\n')
        frames = {one.get("data-frame") for one in of_class(Map(root, "above").root, "frustum")}
        self.assertLessEqual({"10", "14", "15", "20"}, frames)


class Names(unittest.TestCase):
    def test_names_are_text(self):
        name = "<script>&amp; \u05d0\u05d1"
        root = plan(HEAD + f'NULL "{name}" {{ KEY 10 0 0 0 0 0 0 }}\n')
        texts = ["".join(one.itertext()) for one in of_class(Map(root, "above").root, "names")[0].iter(SVG + "text")]
        self.assertEqual(texts, ["\u2068" + name + "\u2069"])
        self.assertFalse(list(root.iter(SVG + "script")))


class Refusals(unittest.TestCase):
    def run_vxr(self, *arguments):
        return subprocess.run([VXR, "preview", *arguments], capture_output=True, text=True)

    def test_output_is_svg(self):
        with tempfile.TemporaryDirectory() as folder:
            scene = pathlib.Path(folder, "shot.aec")
            scene.write_text(SCENE)
            run = self.run_vxr(scene, "--plan", "-o", pathlib.Path(folder, "plan.png"))
            self.assertEqual(run.returncode, 2)
            self.assertIn("ends in .svg", run.stderr)

    def test_plan_has_no_frames(self):
        for option in (["--frame", "1"], ["--overlay", "safe"], ["--comp", "Main"], ["--json"]):
            with self.subTest(option=option):
                run = self.run_vxr("shot.aec", "--plan", "-o", "plan.svg", *option)
                self.assertEqual(run.returncode, 2, run.stderr)
                self.assertIn("--plan excludes", run.stderr)

    def test_broken_scene_leaves_the_old_plan(self):
        with tempfile.TemporaryDirectory() as folder:
            scene = pathlib.Path(folder, "shot.aec")
            scene.write_text(HEAD + 'CAMERA "C" { KEY 1 2 }\n')
            out = pathlib.Path(folder, "plan.svg")
            out.write_text("old")
            run = self.run_vxr(scene, "--plan", "-o", out)
            self.assertEqual(run.returncode, 1, run.stderr)
            self.assertEqual(out.read_text(), "old")
            self.assertEqual(len(list(pathlib.Path(folder).iterdir())), 2)

    def test_scene_is_not_overwritten(self):
        with tempfile.TemporaryDirectory() as folder:
            scene = pathlib.Path(folder, "shot.svg")
            scene.write_text(SCENE)
            run = self.run_vxr(scene, "--plan", "-o", scene)
            self.assertEqual(run.returncode, 2, run.stderr)
            self.assertEqual(scene.read_text(), SCENE)


if __name__ == "__main__":
    unittest.main()
