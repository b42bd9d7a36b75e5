"""Frames of made scenes, drawn by vxr preview and by a compositor of its own with exact fractions.

preview_test.py VXR

The compositor here walks the scene that it wrote, one pixel at a time, by the rules of docs/command-line.md.
"""

import os
import random
import subprocess
import sys
import tempfile
import unittest
import zlib
from fractions import Fraction
from functools import reduce

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "support"))
from picture_files import png_file, rgba_pixels  # noqa: E402

VXR = sys.argv.pop(1)
ONE, ZERO = Fraction(1), Fraction(0)


class Image:
    """A picture of random bytes."""

    def __init__(self, seed, width=8, height=6, channels=4):
        noise = random.Random(seed)
        self.width, self.height, self.channels = width, height, channels
        ends = (0, 0, 255, 255)  # more often than chance has them
        self.data = [noise.choice(ends) if noise.random() < 0.2 else noise.randrange(256)
                     for _ in range(width * height * channels)]

    def file(self):
        length = self.width * self.channels
        rows = [bytes(self.data[y * length:(y + 1) * length]) for y in range(self.height)]
        kind = {1: 0, 2: 4, 3: 2, 4: 6}[self.channels]
        return png_file((self.width, self.height, self.channels, rows), kind)

    def pixel(self, x, y):
        at = (y * self.width + x) * self.channels
        values = self.data[at:at + self.channels]
        colour = values[:1] * 3 if self.channels < 3 else values[:3]
        return colour + [values[-1] if self.channels in (2, 4) else None]


class Footage:
    def __init__(self, blend, alpha, name, images):
        """`images` is a picture, or pictures by number."""
        self.blend, self.alpha, self.name, self.images = blend, alpha, name, images

    def written(self):
        word = "FSEQ" if isinstance(self.images, dict) else "FILE"
        return f'{word} {self.blend} {self.alpha} "C:\\x\\{self.name}"\n'

    def save(self, folder):
        files = {}
        if isinstance(self.images, dict):
            stem, extension = self.name.split("0", 1)[0], self.name.rsplit(".", 1)[1]
            files = {f"{stem}{number:04}.{extension}": image for number, image in self.images.items()}
        elif self.images:
            files = {self.name: self.images}
        for name, image in files.items():
            with open(os.path.join(folder, name), "wb") as file:
                file.write(image.file())

    def image_at(self, frame):
        if not isinstance(self.images, dict):
            return self.images
        number = min(self.images) + frame
        if frame < 0 or number > max(self.images):
            return None
        while number not in self.images:
            number -= 1
        return self.images[number]


class Comp:
    def __init__(self, blend, name, children):
        self.blend, self.name, self.children = blend, name, children

    def written(self):
        return f'COMPOSITION {self.blend} "{self.name}" {{\n' + "".join(c.written() for c in self.children) + "}\n"

    def save(self, folder):
        for child in self.children:
            child.save(folder)


class Scene:
    def __init__(self, root, width=8, height=6, start=0, to=9, length=10, more=""):
        self.root, self.width, self.height, self.more = root, width, height, more
        self.start, self.to, self.length = start, to, length
        self.local = "LOCAL" in more

    def save(self, folder):
        self.root.save(folder)
        path = os.path.join(folder, "shot.aec")
        with open(path, "w", encoding="ascii") as file:
            file.write(f"VORTAN XR COMPOSITION\nRESOLUTION {self.width} {self.height}\nFROM {self.start}\nTO {self.to}\n"
                       f"RANGE {self.length}\nFPS 25\n{self.more}\n{self.root.written()}")
        return path

    def expected(self, comp, frame, x, y, rows=None):
        """Straight colour and coverage of one pixel of a composition at a frame."""
        colour, coverage = [ZERO] * 3, ZERO
        for child in comp.children:
            if isinstance(child, Comp):
                layer = self.expected(child, frame, x, y, rows) if 0 <= frame < self.length else None
            else:
                layer = self.footage(child, frame, x, y, rows)
            if layer:
                colour, coverage = self.over(child.blend, layer, (colour, coverage))
        return colour, coverage

    def footage(self, footage, frame, x, y, rows):
        own = frame - (self.start if self.local else 0)
        if not 0 <= own <= self.to - self.start:
            return None
        image = footage.image_at(own)
        if image is None:
            return None
        # In the middle; half a pixel that is over goes to the right and to the bottom.
        x -= -((image.width - self.width) // 2)
        y -= -((image.height - self.height) // 2)
        if not (0 <= x < image.width and 0 <= y < image.height):
            return None
        *values, alpha = image.pixel(x, rows(y) if rows else y)
        if alpha is None:
            return [Fraction(v, 255) for v in values], ONE
        if footage.alpha == "PREMUL":
            return [min(ONE, Fraction(v, alpha)) if alpha else ZERO for v in values], Fraction(alpha, 255)
        return [Fraction(v, 255) for v in values], Fraction(alpha, 255)

    @staticmethod
    def over(blend, layer, below):
        (cs, a_s), (cb, a_b) = layer, below
        coverage = a_s + a_b - a_s * a_b
        rule = {"NRM": lambda s, b: s, "MUL": lambda s, b: s * b, "ADD": lambda s, b: min(ONE, s + b)}[blend]
        mixed = [a_s * a_b * rule(s, b) + a_s * (1 - a_b) * s + (1 - a_s) * a_b * b for s, b in zip(cs, cb)]
        return [c / coverage if coverage else ZERO for c in mixed], coverage


def noise(seed, **size):
    return Image(seed, **size)


def sequence(numbers, seed, **size):
    return {number: Image(1000 * seed + number, **size) for number in numbers}


def two(blend, alpha, channels=4):
    return Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "below.png", noise(1)),
                                Footage(blend, alpha, "layer.png", noise(2, channels=channels))])


# The reason for the case, the scene, and the frames that are compared.
CASES = [
    ("every mode and kind of alpha, one on the other",
     Scene(Comp("NRM", "Main", [Footage(blend, alpha, f"{blend}{alpha}.png", noise(f"{blend}{alpha}"))
                                for alpha in ("STRAIGHT", "PREMUL") for blend in ("NRM", "ADD", "MUL")])), [0]),
    ("grey with alpha is grey colour", Scene(two("ADD", "PREMUL", channels=2)), [0]),
    ("a picture without alpha covers, whatever the scene says", Scene(two("MUL", "PREMUL", channels=3)), [0]),
    ("nested compositions are blended as a whole",
     Scene(Comp("NRM", "Main", [
         Footage("NRM", "STRAIGHT", "plate.png", noise(3, channels=3)),
         Comp("MUL", "Shadows", [Footage("NRM", "STRAIGHT", "s1.png", noise(4)),
                                 Footage("MUL", "PREMUL", "s2.png", noise(5))]),
         Comp("ADD", "Lights", [Comp("ADD", "Inner", [Footage("ADD", "PREMUL", "l1.png", noise(6))]),
                                Comp("NRM", "Nothing", []),
                                Footage("ADD", "STRAIGHT", "l2.png", noise(7))])])), [0]),
    ("a composition alone on nothing is itself, in every mode",
     Scene(Comp("NRM", "Main", [Comp("MUL", "Only", [Footage("ADD", "STRAIGHT", "o.png", noise(8))])])), [0]),
    ("smaller and larger pictures lie in the middle, odd ones to the right and to the bottom",
     Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "large.png", noise(9, width=13, height=11)),
                                Footage("ADD", "STRAIGHT", "small.png", noise(10, width=3, height=3)),
                                Footage("NRM", "STRAIGHT", "wide.png", noise(11, width=20, height=1))])), [0]),
    ("sequences show their first file at 0 and nothing past the last",
     Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "a0005.png", sequence(range(5, 9), 1)),
                                Footage("ADD", "PREMUL", "b0001.png", sequence(range(1, 3), 2))]), length=12),
     [0, 1, 2, 3, 4, 11]),
    ("LOCAL puts footage at FROM, and it ends with TO",
     Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "still.png", noise(12)),
                                Comp("ADD", "Inner", [Footage("NRM", "STRAIGHT", "a0001.png",
                                                              sequence(range(1, 9), 3))])]),
           start=3, to=5, length=10, more="LOCAL"), [2, 3, 5, 6]),
    ("a file that is missing shows the one before it",
     Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "g0001.png", sequence((1, 2, 5), 4))])), [1, 2, 3, 4]),
    ("two hundred levels are as good as one",
     Scene(reduce(lambda inner, i: Comp("ADD", f"c{i}", [inner]), range(200),
                                          Comp("NRM", "Deepest", [Footage("NRM", "STRAIGHT", "d.png", noise(13))]))),
     [0]),
]


class Preview(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.out = os.path.join(self.folder.name, "out.png")

    def run_preview(self, scene, output, *options, code=0):
        ran = subprocess.run([VXR, "preview", scene, "-o", output, *map(str, options)], capture_output=True, text=True,
                             check=False)
        self.assertEqual(ran.returncode, code, ran.stderr)
        self.said = ran.stderr

    def preview(self, scene, *options, code=0):
        self.run_preview(scene, self.out, *options, code=code)
        return rgba_pixels(self.out) if code in (0, 4) else None

    def compare(self, scene, found, frame, rows=None):
        width, height, pixels = found
        self.assertEqual((width, height), (scene.width, scene.height))
        for y in range(height):
            for x in range(width):
                colour, coverage = scene.expected(scene.root, frame, x, y, rows)
                exact = [c * 255 for c in colour] + [coverage * 255]
                for got, wanted in zip(pixels[y][x], exact):
                    self.assertLessEqual(abs(got - wanted), 1, f"frame {frame}, pixel {x}, {y}: {pixels[y][x]}, "
                                         f"exactly {[float(e) for e in exact]}")

    def test_frames_are_what_the_rules_say(self):
        for reason, scene, frames in CASES:
            with self.subTest(reason), tempfile.TemporaryDirectory() as folder:
                self.run_preview(scene.save(folder), os.path.join(folder, "out.##.png"), "--frames",
                                 f"{min(frames)}-{max(frames)}")
                for frame in frames:
                    self.compare(scene, rgba_pixels(os.path.join(folder, f"out.{frame:02}.png")), frame)

    def test_fields(self):
        scene = Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "f.png", noise(20, height=7)),
                                           Footage("ADD", "STRAIGHT", "t.png", noise(21, height=1))]),
                      height=7, more="FIELDS EVEN")
        path = scene.save(self.folder.name)
        self.compare(scene, self.preview(path), 0)
        # Rows 0, 2, 4, 6, each twice; the last has no second.
        self.compare(scene, self.preview(path, "--fields", "upper"), 0, lambda y: y - y % 2)
        # Rows 1, 3, 5; the last row has no lower one, so it shows the one above. A single row shows itself.
        lower = {0: 1, 1: 1, 2: 3, 3: 3, 4: 5, 5: 5, 6: 5}
        only_field = Scene(Comp("NRM", "Main", scene.root.children[:1]), height=7, more="FIELDS EVEN")
        self.compare(only_field, self.preview(only_field.save(self.folder.name), "--fields", "lower"), 0, lower.get)

    def test_whole_frames_have_no_fields(self):
        scene = Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "f.png", noise(22))]))
        self.compare(scene, self.preview(scene.save(self.folder.name), "--fields", "upper"), 0)

    def test_a_composition_by_its_name(self):
        inner = Comp("ADD", "Inner one", [Footage("ADD", "STRAIGHT", "i.png", noise(23))])
        scene = Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "p.png", noise(24)), inner]))
        path = scene.save(self.folder.name)
        found = self.preview(path, "--comp", "Inner one")
        scene.root = inner
        self.compare(scene, found, 0)
        self.preview(path, "--comp", "Inner", code=2)
        self.assertIn('there are "Main", "Inner one"', self.said)

    def test_pixels_are_shown_square(self):
        flat = Image(0, width=10, height=2, channels=4)
        flat.data = [200, 100, 50, 128] * 20
        scene = Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "flat.png", flat)]), width=10, height=2,
                      more="ASPECT 1.4222")
        path = scene.save(self.folder.name)
        width, height, pixels = self.preview(path)
        self.assertEqual((width, height), (14, 2))  # 10 x 1.42
        self.assertEqual({pixel for row in pixels for pixel in row}, {(200, 100, 50, 128)})
        self.assertEqual(self.preview(path, "--raw")[:2], (10, 2))

    def test_wide_pixels_are_interpolated_and_narrow_ones_averaged(self):
        steps = Image(0, width=4, height=1, channels=3)
        steps.data = [v for value in (0, 100, 100, 200) for v in [value] * 3]
        root = Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "steps.png", steps)])
        # Twice as wide: centres at a quarter and three quarters of each pixel.
        scene = Scene(root, width=4, height=1, more="ASPECT 2")
        pixels = self.preview(scene.save(self.folder.name))[2]
        self.assertEqual([pixel[0] for pixel in pixels[0]], [0, 25, 75, 100, 100, 125, 175, 200])
        scene.more = "ASPECT 0.5"
        pixels = self.preview(scene.save(self.folder.name))[2]
        self.assertEqual([pixel[0] for pixel in pixels[0]], [50, 150])

    def test_what_is_missing_is_shown_as_bars(self):
        scene = Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "lost.png", None)]), width=70, height=40)
        path = scene.save(self.folder.name)
        pixels = self.preview(path, code=4)[2]
        self.assertIn('"lost.png" is missing [placeholder-shown]', self.said)
        bars = [(191, 191, 191), (191, 191, 0), (0, 191, 191), (0, 191, 0), (191, 0, 191), (191, 0, 0), (0, 0, 191)]
        for row in (pixels[0], pixels[39]):
            self.assertEqual([pixel[:3] for pixel in row], [bars[x // 10] for x in range(70)])
        middle = {pixel for row in pixels[11:29] for pixel in row}
        self.assertEqual(middle, {(0, 0, 0, 255), (255, 255, 255, 255)})

    def test_a_picture_that_lies_is_shown_as_bars(self):
        liar = bytearray(noise(25).file())
        liar[16:24] = (30000).to_bytes(4, "big") * 2
        liar[29:33] = zlib.crc32(bytes(liar[12:29])).to_bytes(4, "big")
        # A TGA of 200 x 100 pixels that ends after ten of them.
        short = bytes([0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 200, 0, 100, 0, 24, 0]) + bytes(30)
        names = {"large.png": liar, "short.tga": short}
        scene = Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", name, noise(25)) for name in names]))
        path = scene.save(self.folder.name)
        for name, content in names.items():
            with open(os.path.join(self.folder.name, name), "wb") as file:
                file.write(content)
        self.preview(path, code=4)
        self.assertRegex(self.said, r"large.png: loss: it has 30000 x 30000 pixels.*\[picture-too-large\]")
        self.assertRegex(self.said, r"short.tga: loss: .*\[picture-unreadable\]")

    def test_a_frame_past_the_end_is_refused(self):
        scene = Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "p.png", noise(27))]), length=10)
        path = scene.save(self.folder.name)
        self.preview(path, "--frame", 9)
        os.remove(self.out)
        self.preview(path, "--frame", 10, code=2)
        self.assertIn("has the frames 0 to 9", self.said)
        self.assertFalse(os.path.exists(self.out))

    def test_footage_is_not_overwritten(self):
        scene = Scene(Comp("NRM", "Main", [Footage("NRM", "STRAIGHT", "out.png", noise(28))]))
        path = scene.save(self.folder.name)
        before = noise(28).file()
        self.preview(path, code=2)
        with open(self.out, "rb") as file:
            self.assertEqual(file.read(), before)


unittest.main()
