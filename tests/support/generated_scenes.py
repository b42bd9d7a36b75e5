#!/usr/bin/env python3
"""Writes scenes with their footage: generated_scenes.py FOLDER COUNT [SEED].

FOLDER/0000/s0000.aec and so on, each in a folder of its own. The same numbers give the same bytes. Every scene is valid and
stays within what After Effects accepts (4 to 30,000 pixels, at most 99 frames a second), so that every difference between
two programs is worth a look. Together they use every word of the language: nested compositions, blend and alpha words,
stills and sequences that are there, missing, short, offset or have gaps; square and other pixels, LOCAL, fields; cameras
that stand, move between few keys, turn on every frame, jump from 180 to -180 degrees, cut, zoom, and look straight up or
down; lights of every kind; nulls; names with quotes, accents, marks of HTML and of right-to-left text.
"""

import math
import random
import sys
from pathlib import Path

RATES = [24, 25, 25, 29, 30, 12, 50, 60]
ASPECTS = [None, None, "1.0", "1.0667", "0.9", "1.4222", "1.2121", "2.0"]
SIZES = [(640, 360), (720, 576), (720, 486), (1920, 1080), (321, 241), (4096, 2304), (64, 48)]
BLENDS = ["NRM", "ADD", "MUL"]
LIGHTS = ["OMNI", "SPOT", "PAR", "PSPOT", "TUBE", "AREA"]
SHADOWS = ["NONE", "SOFT", "HARD", "AREA"]
NAMES = ["Main", "Beauty", "Shadow pass", 'The "hero" pot', "K\u00fcche", "</script>", "<b>bold</b>", "a*/b", "\u05d0\u05d1\u05d2",
         "line\u2028separator", "100% sure", "back\\slash", "it's", "&amp;", "\U0001f3a5 camera", "x" * 60]


def picture(width, height, channels):
    """An uncompressed TGA of one colour."""
    head = bytes([0, 0, 2] + [0] * 9) + width.to_bytes(2, "little") + height.to_bytes(2, "little")
    return head + bytes([8 * channels, 8 if channels == 4 else 0]) + bytes([40, 90, 160, 128][:channels]) * (width * height)


class Scene:
    def __init__(self, number, seed, folder):
        self.random = random.Random(f"{seed}/{number}")
        self.folder = folder
        self.number = number
        self.files = 0
        self.lines = []
        self.depth = 0

    def add(self, text):
        self.lines.append("  " * self.depth + text)

    def quoted(self, name):
        """A name as a string of the language, in which a quote is written with a dollar sign before it."""
        return '"' + name.replace('"', '$"') + '"'

    def number_text(self, value):
        return f"{value:.{self.random.choice([0, 1, 3, 6])}f}"

    def text(self):
        choose = self.random
        self.width, self.height = choose.choice(SIZES)
        self.begin = choose.choice([0, 0, 1, 17, 101, 1001])
        self.end = self.begin + choose.choice([0, 1, 7, 24, 60])
        length = self.end - self.begin + 1
        self.add("VORTAN XR COMPOSITION")
        self.add(f"RESOLUTION {self.width} {self.height} FROM {self.begin} TO {self.end}")
        self.add(f"RANGE {choose.choice([length, length, length + 5, max(1, length - 2), 100])} FPS {choose.choice(RATES)}")
        aspect = choose.choice(ASPECTS)
        if aspect:
            self.add(f"ASPECT {aspect}")
        if choose.random() < 0.4:
            self.add("LOCAL")
        if choose.random() < 0.5:
            self.add(f"FIELDS {choose.choice(['NONE', 'EVEN', 'ODD'])}")
        self.composition(0)
        for _ in range(choose.choice([0, 0, 1, 2])):
            self.footage(True)
        for index in range(choose.choice([0, 1, 1, 1, 2])):
            self.camera(index)
        for index in range(choose.choice([0, 1, 3])):
            self.light(index)
        for index in range(choose.choice([0, 1, 3])):
            self.null(index)
        return "\n".join(self.lines) + "\n"

    def composition(self, depth):
        choose = self.random
        self.add(f"COMPOSITION {choose.choice(BLENDS)} {self.quoted(choose.choice(NAMES))} {{")
        self.depth += 1
        for _ in range(choose.choice([0, 1, 2, 4]) if depth else choose.choice([1, 2, 4])):
            if depth < 3 and choose.random() < 0.3:
                self.composition(depth + 1)
            else:
                self.footage(False)
        self.depth -= 1
        self.add("}")

    def footage(self, top_level):
        choose = self.random
        self.files += 1
        blend = "<->" if top_level else choose.choice(BLENDS)
        alpha = choose.choice(["PREMUL", "STRAIGHT"])
        channels = choose.choice([3, 4])
        name = choose.choice(["plate", "glow pass", "k\u00fcche", "50%25", "a#b"]) + f"_{self.files}"
        root = choose.choice(["Macintosh HD:Renders:", "C:\\renders\\", "/net/renders/", ""])
        content = picture(choose.choice([self.width if self.width <= 720 else 8, 4, 16]), choose.choice([4, 9]), channels)
        if choose.random() < 0.5:
            if choose.random() < 0.8:
                (self.folder / f"{name}.tga").write_bytes(content)
            self.add(f'FILE {blend} {alpha} "{root}{name}.tga"')
            return
        first = choose.choice([self.begin, self.begin, 0, 1, self.begin + 2, self.end + 50])
        count = choose.choice([self.end - self.begin + 1, 3, 1])
        kept = [first + i for i in range(count) if i == 0 or choose.random() < 0.9]
        if choose.random() < 0.85:
            for frame in kept:
                (self.folder / f"{name}.{frame:04}.tga").write_bytes(content)
        self.add(f'FSEQ {blend} {alpha} "{root}{name}.{first:04}.tga"')

    def frames(self):
        """The frames with keys: none, one, few, every one, beyond both ends, or in disorder."""
        choose = self.random
        kind = choose.choice(["none", "one", "few", "few", "every", "every", "beyond", "disorder"])
        span = range(self.begin, self.end + 1)
        if kind == "none":
            return []
        if kind == "one":
            return [choose.choice(span)]
        if kind == "every":
            return list(span)
        if kind == "beyond":
            return [self.begin - 5, self.begin + 1, self.end + 9]
        few = sorted(choose.sample(span, min(len(span), choose.choice([2, 3, 5]))))
        return few[::-1] + few[:1] if kind == "disorder" else few

    def motion(self):
        """A function from a frame to position and angles."""
        choose = self.random
        kind = choose.choice(["still", "straight", "orbit", "wrap", "cut", "down", "hold", "wild"])
        at = [choose.uniform(-800, 800) for _ in range(3)]
        step = [choose.uniform(-20, 20) for _ in range(3)]
        heading, pitch, bank = choose.uniform(-170, 170), choose.uniform(-40, 40), choose.choice([0, 0, choose.uniform(-30, 30)])
        middle = (self.begin + self.end) // 2

        def value(frame):
            t = frame - self.begin
            if kind == "straight":
                return [a + s * t for a, s in zip(at, step)] + [heading + 0.5 * t, pitch, bank]
            if kind == "orbit":
                angle = math.radians(heading + 2 * t)
                return [600 * math.sin(angle), 150, -600 * math.cos(angle), heading + 2 * t, -14, bank]
            if kind == "wrap":
                turned = (170 + 3 * t + 180) % 360 - 180
                return at + [turned, pitch, bank]
            if kind == "cut":
                return at + [heading + (140 if frame > middle else 0) + 0.1 * t, pitch, bank]
            if kind == "down":
                return at + [heading, -70 - 2.5 * t, bank]
            if kind == "hold":
                return [a + (s * 10 if frame > middle else 0) for a, s in zip(at, step)] + [heading, pitch, bank]
            if kind == "wild":
                return [choose.uniform(-1000, 1000) for _ in range(3)] + [choose.uniform(-180, 180), choose.uniform(-80, 80), bank]
            return at + [heading, pitch, bank]

        return value

    def keys(self, more=lambda frame: []):
        motion = self.motion()
        self.depth += 1
        for frame in self.frames():
            self.add(" ".join(["KEY", str(frame)] + [self.number_text(value) for value in motion(frame) + more(frame)]))
        self.depth -= 1

    def camera(self, index):
        choose = self.random
        self.add(f"CAMERA {self.quoted(choose.choice(NAMES) + (str(index) if index else ''))} {{")
        angle, zooms = choose.uniform(15, 100), choose.random() < 0.3
        distance = choose.choice([None, 1000, 612.5, 3])
        self.keys(lambda frame: [angle + (0.7 * (frame - self.begin) if zooms else 0)] + ([distance] if distance else []))
        self.add("}")

    def light(self, index):
        choose = self.random
        self.add(f"LIGHT {self.quoted(choose.choice(NAMES) + str(index))} {{")
        if choose.random() < 0.9:
            self.add(f"  TYPE {choose.choice(LIGHTS)} SHADOW {choose.choice(SHADOWS)}")
            self.add(f"  COLOR {choose.random():.3f} {choose.random():.3f} {choose.random():.3f}")
            self.add(f"  INTENSITY {choose.choice([0, 0.5, 1.25, 3])} ANGLE {choose.choice([1, 30, 45.5, 120])}")
        self.keys()
        self.add("}")

    def null(self, index):
        self.add(f"NULL {self.quoted(self.random.choice(NAMES) + str(index))} {{")
        self.keys()
        self.add("}")


def main():
    folder, count = Path(sys.argv[1]), int(sys.argv[2])
    seed = sys.argv[3] if len(sys.argv) > 3 else "1"
    for number in range(count):
        own = folder / f"{number:04}"
        own.mkdir(parents=True, exist_ok=True)
        (own / f"s{number:04}.aec").write_bytes(Scene(number, seed, own).text().encode())


if __name__ == "__main__":
    main()
