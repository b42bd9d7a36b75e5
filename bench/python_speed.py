"""python_speed.py SCENE_READING_TIME: reading a million keys into arrays beside reading them in C++.

Writes scenes with a million keys in few and in many objects, and prints for each the least of several times. Fails where
Python takes more than 1.2 times as long for scenes with 1,000 objects or fewer.
"""

import random
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import vortanxr as vx

KEYS = 1_000_000
MOST = 1.2


def write_scene(path, objects):
    dice = random.Random(objects)
    with open(path, "w", encoding="ascii") as file:
        file.write("VORTAN XR COMPOSITION\nRESOLUTION 640 360\nFROM 0\nTO 999\nRANGE 1000\nFPS 25\n")
        file.write('COMPOSITION NRM "Main" {\n}\n')
        for number in range(objects):
            camera = number % 3 == 0
            file.write(f'{("CAMERA", "LIGHT", "NULL")[number % 3]} "Object {number}" {{\n')
            for frame in range(KEYS // objects):
                values = " ".join(f"{dice.uniform(-999, 999):.4f}" for _ in range(6))
                file.write(f"  KEY {frame} {values}{' 40.0 1000.0' if camera else ''}\n")
            file.write("}\n")


def least_seconds(path, check):
    least = 1e9
    for _ in range(7):
        begin = time.perf_counter()
        scene = vx.read_scene(path, check=check)
        least = min(least, time.perf_counter() - begin)
        assert sum(len(one.frames) for one in scene.objects) == KEYS
    return least


def main():
    failed = False
    with tempfile.TemporaryDirectory() as folder:
        for objects in (100, 1000, 10000):
            path = Path(folder) / "scene.aec"
            write_scene(path, objects)
            measured = subprocess.run([sys.argv[1], path], stdout=subprocess.PIPE, text=True, check=True).stdout
            for what, native, check in zip(("read", "read and checked"), map(float, measured.split()), (False, True)):
                ours = least_seconds(path, check)
                ratio = ours / native
                print(f"{objects} objects, {what}: C++ {native:.3f} s, Python {ours:.3f} s, {ratio:.2f} x")
                failed = failed or (objects <= 1000 and ratio > MOST)
    return 1 if failed else 0


sys.exit(main())
