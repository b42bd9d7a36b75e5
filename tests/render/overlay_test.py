"""What vxr preview --overlay draws, found again by its colours.

overlay_test.py VXR EXAMPLES

Where nulls must be seen is worked out by hand for the first scene, and by another program for the examples.
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

for room in ("scene3d", "support"):
    sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / room))
import scene_truth  # noqa: E402
from picture_files import rgba_pixels  # noqa: E402

EXAMPLES = pathlib.Path(sys.argv.pop(2))
VXR = sys.argv.pop(1)

HEAD = """VORTAN XR COMPOSITION
RESOLUTION 400 200
FROM 10
TO 20
RANGE 11
FPS 25
{}
COMPOSITION NRM "Main" {{ }}
"""
# With 90 degrees over 400 pixels, what is 200 away and 1 unit aside is 1 pixel aside.
CAMERA = 'CAMERA "Eye" { KEY 10 0 0 -200 0 0 0 90 200 }\n'


def null(name, x, y, z):
    return f'NULL "{name}" {{ KEY 10 {x} {y} {z} 0 0 0 }}\n'


class Drawn:
    """A picture with the overlay of a scene."""

    def __init__(self, scene, overlay, *options):
        with tempfile.TemporaryDirectory() as folder:
            if isinstance(scene, str):
                path = pathlib.Path(folder, "shot.aec")
                path.write_text(scene)
                scene = path
            out = pathlib.Path(folder, "out.png")
            run = subprocess.run([VXR, "preview", scene, "--overlay", overlay, "-o", out, *options],
                                 capture_output=True, text=True)
            assert run.returncode in (0, 4), run.stderr
            self.width, self.height, self.rows = rgba_pixels(out)

    def pixel(self, x, y):
        return self.rows[y][x]

    def yellow(self, x, y):
        """How much of a cross a pixel shows."""
        red, green, blue, alpha = self.pixel(x, y)
        return max(0, min(red, green) - blue - 40) * alpha

    def centre(self, x, y, size=12):
        """The centroid of what is yellow around a place. The arms are shorter than this."""
        sums = [0, 0, 0]
        for row in range(max(0, int(y) - size), min(self.height, int(y) + size + 1)):
            for column in range(max(0, int(x) - size), min(self.width, int(x) + size + 1)):
                weight = self.yellow(column, row)
                sums[0] += weight
                sums[1] += weight * (column + 0.5)
                sums[2] += weight * (row + 0.5)
        return (sums[1] / sums[0], sums[2] / sums[0]) if sums[0] else None

    def opaque(self):
        return sum(1 for row in self.rows for pixel in row if pixel[3] > 0)


class Nulls(unittest.TestCase):
    def assert_centre(self, drawn, x, y, what):
        found = drawn.centre(x, y)
        self.assertIsNotNone(found, f"{what}: no cross near {x}, {y}")
        self.assertLess(max(abs(found[0] - x), abs(found[1] - y)), 0.1, f"{what}: {found} instead of {x}, {y}")

    def test_by_hand(self):
        cases = [
            # what, settings, camera, null, where its cross is
            ("in the middle", "", CAMERA, (0, 0, 0), (200, 100)),
            ("to the right", "", CAMERA, (100, 0, 0), (300, 100)),
            ("up", "", CAMERA, (0, 50, 0), (200, 50)),
            ("between pixels", "", CAMERA, (-60.25, -30.5, 0), (139.75, 130.5)),
            ("twice as far", "", CAMERA, (100, 50, 200), (250, 75)),
            ("banked by a quarter clockwise: up is seen at the left",
             "", 'CAMERA "Eye" { KEY 10 0 0 -200 0 0 90 90 200 }\n', (0, 60, 0), (140, 100)),
            ("turned left by a quarter", "", 'CAMERA "Eye" { KEY 10 0 0 0 90 0 0 90 200 }\n', (-200, 0, 50), (250, 100)),
            # 800 square pixels are shown for 400 wide ones; up is twice as many rows as square ones would have.
            ("wide pixels", "ASPECT 2.0", CAMERA, (100, 20, 0), (600, 60)),
        ]
        for what, settings, camera, at, (x, y) in cases:
            with self.subTest(what=what):
                self.assert_centre(Drawn(HEAD.format(settings) + camera + null("N", *at), "nulls"), x, y, what)

    def test_raw_pixels_stay(self):
        drawn = Drawn(HEAD.format("ASPECT 2.0") + CAMERA + null("N", 100, 20, 0), "nulls", "--raw")
        self.assert_centre(drawn, 300, 60, "raw")

    def test_behind_the_camera_is_nothing(self):
        self.assertEqual(Drawn(HEAD.format("") + CAMERA + null("N", 0, 0, -300), "nulls").opaque(), 0)

    def test_frames_begin_at_from_or_are_local(self):
        moving = 'NULL "N" { KEY 10 0 0 0 0 0 0 KEY 20 100 0 0 0 0 0 }\n'
        for settings, frame, x in (("", 5, 250), ("LOCAL", 5, 200), ("LOCAL\nRANGE 30", 15, 250)):
            with self.subTest(settings=settings, frame=frame):
                drawn = Drawn(HEAD.format(settings) + CAMERA + moving, "nulls", "--frame", str(frame))
                self.assert_centre(drawn, x, 100, "frame")

    def test_examples_by_another_program(self):
        for name, frames in (("keyframes/orbit_030.aec", (37,)), ("square/courtyard_020.aec", (4,)),
                             ("interlaced/lantern_010.aec", (22,))):
            path = EXAMPLES / name
            scene = scene_truth.Scene(path)
            local = b"LOCAL" in path.read_bytes()
            found = 0
            for frame in frames:
                pose = scene_truth.Track(scene.of_kind("CAMERA")[0]).at(frame)
                right, up, view = scene_truth.axes(pose)
                focal = scene.width / 2 / scene_truth.math.tan(scene_truth.math.radians(pose["angle"]) / 2)
                drawn = Drawn(path, "nulls", "--raw", "--frame", str(frame if local else frame - scene.begin))
                for keys in scene.of_kind("NULL"):
                    if not keys:
                        continue
                    at = scene_truth.Track(keys).at(frame)
                    way = [at[axis] - pose[axis] for axis in "xyz"]
                    depth = sum(a * b for a, b in zip(way, view))
                    x = scene.width / 2 + focal * sum(a * b for a, b in zip(way, right)) / depth
                    y = scene.height / 2 - focal * scene.aspect * sum(a * b for a, b in zip(way, up)) / depth
                    if depth <= 0 or not (0 <= x < scene.width and 0 <= y < scene.height):
                        continue
                    self.assert_cross(drawn, x, y)
                    found += 1
            self.assertGreater(found, 0, f"{name}: no null was seen")

    def assert_cross(self, drawn, x, y):
        """All four arms are yellow near their ends: footage below makes centroids worthless."""
        arm = 6 * max(1, drawn.height // 360)
        for across, down in ((1, 0), (-1, 0), (0, 1), (0, -1)):
            column, row = int(x + across * (arm - 1)), int(y + down * (arm - 1))
            if 0 <= column < drawn.width and 0 <= row < drawn.height:
                red, green, blue, _ = drawn.pixel(column, row)
                self.assertGreater(min(red, green) - blue, 60, f"no arm at {column}, {row}")


class Others(unittest.TestCase):
    def test_safe_frames(self):
        drawn = Drawn(HEAD.format(""), "safe")
        # 5 and 10 percent from each edge of 400 x 200.
        for x, y in ((20, 100), (380, 100), (200, 10), (200, 190), (40, 100), (360, 100), (200, 20), (200, 180)):
            with self.subTest(x=x, y=y):
                self.assertGreater(sum(drawn.pixel(a, b)[3] for a in (x - 1, x) for b in (y - 1, y)), 255)
        self.assertEqual(drawn.pixel(200, 100)[3], 0)

    def test_grid_lies_on_the_ground(self):
        # From 100 above it, straight ahead: nothing of it above the horizon, which is in the middle.
        camera = 'CAMERA "Eye" { KEY 10 0 100 -200 0 0 0 90 200 }\n'
        drawn = Drawn(HEAD.format("") + camera, "grid")
        above = sum(1 for y in range(90) for x in range(0, 180) if drawn.pixel(x, y)[3])
        below = sum(1 for y in range(110, 200) for x in range(0, 180) if drawn.pixel(x, y)[3])
        self.assertEqual(above, 0)
        self.assertGreater(below, 1000)

    def test_horizon_and_text(self):
        # Looking down by 45 degrees, the horizon is 200 pixels above the middle: outside. By 14.036 it is 50 above.
        camera = 'CAMERA "Eye" {{ KEY 10 0 100 -200 0 {} 0 90 200 }}\n'
        drawn = Drawn(HEAD.format("") + camera.format(-14.0362435), "camera")
        for x in (50, 200, 350):
            self.assertGreater(drawn.pixel(x, 50)[3] + drawn.pixel(x, 49)[3], 200)
            self.assertEqual(drawn.pixel(x, 60)[3], 0)
        self.assertGreater(sum(1 for x in range(4, 200) if drawn.pixel(x, 192)[3]), 20, "the line of text")
        lower = Drawn(HEAD.format("") + camera.format(-45), "camera")
        self.assertEqual(sum(1 for y in range(0, 80) for x in range(400) if lower.pixel(x, y)[3]), 0)

    def test_wild_numbers_are_drawn_in_time(self):
        for number in ("1e38", "0"):
            with self.subTest(number=number):
                key = " ".join([number] * 6)
                scene = HEAD.format("") + f'CAMERA "C" {{ KEY 10 {key} 179.99 {number} }}\n' + null("N" * 2000, number, number, number)
                self.assertIsNotNone(Drawn(scene, "camera,nulls,safe,grid"))

    def test_what_is_refused(self):
        for words, scene, reason in (("grids", CAMERA, "grids"), ("nulls,", CAMERA, "knows no"),
                                     ("nulls", "", "no camera has a key")):
            with self.subTest(words=words), tempfile.TemporaryDirectory() as folder:
                path = pathlib.Path(folder, "shot.aec")
                path.write_text(HEAD.format("") + scene)
                run = subprocess.run([VXR, "preview", path, "--overlay=" + words, "-o", path.with_suffix(".png")],
                                     capture_output=True, text=True)
                self.assertEqual(run.returncode, 2, run.stderr)
                self.assertIn(reason, run.stderr)


if __name__ == "__main__":
    unittest.main()
