#!/usr/bin/env python3
"""same_on_both.py VXR_HERE VXR_FOR_WINDOWS: compares what the program makes of the examples here and under Wine, byte for byte.

The host passes the full path of a scene to the plug-in, and each system spells the folder in its own way: "/somewhere/"
here, "Z:\\somewhere\\" there. Only this difference is removed before the comparison; it must occur, or nothing was
compared.
"""
import json
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from picture_files import tga_pixels

PROJECT = pathlib.Path(__file__).resolve().parents[2]
HERE, THERE = (str(pathlib.Path(program).resolve()) for program in sys.argv[1:3])
WINE = str(PROJECT / "script" / "wine")


def run(command):
    done = subprocess.run(command, cwd=PROJECT, stdin=subprocess.DEVNULL, capture_output=True, check=False)
    return done.returncode, done.stdout, done.stderr.decode("utf-8", "replace")


def in_json(text):
    return json.dumps(text, ensure_ascii=False)[1:-1].encode()


def spelt_as_here(document, folder):
    """The document with the folder of a scene and the separator after it written as on this system, and how many there were."""
    there = in_json("Z:" + str(folder).replace("/", "\\") + "\\")
    return document.replace(there, in_json(str(folder) + "/")), document.count(there)


def hosts():
    """The option for each generation of hosts that the program knows."""
    _, text, _ = run([HERE, "import", "--help"])
    return [["--host", "classic"], ["--host", "today"]] if b"--host " in text else [[]]


def compare_imports():
    wrong = 0
    scenes = sorted(PROJECT.glob("examples/*/*.aec"))
    for scene in scenes:
        name = str(scene.relative_to(PROJECT))
        for host in hosts():
            code_here, here, _ = run([HERE, "import", "--json", *host, name])
            code_there, there, said = run([WINE, THERE, "import", "--json", *host, name])
            there, found = spelt_as_here(there, scene.parent)
            same = code_here == code_there == 0 and here == there and found > 0
            wrong += not same
            what = " ".join([name, *host])
            print(f"{'same' if same else 'NOT THE SAME'}: project of {what}, {len(here)} bytes, {found} paths")
            if not same:
                print(f"exit codes {code_here} and {code_there}; {said}")
                show_first_difference(here, there)
    return wrong, len(scenes)


def compare_textures():
    wrong = 0
    textures = sorted(PROJECT.glob("examples/*/*.txl"))
    with tempfile.TemporaryDirectory() as folder:
        for texture in textures:
            name = str(texture.relative_to(PROJECT))
            made = []
            # The texture read and written again, and what the module tells a host and draws.
            for number, program in enumerate(([HERE], [WINE, THERE])):
                copy = pathlib.Path(folder) / f"{number}.txl"
                codes = [run([*program, "texture", "convert", name, "-o", str(copy)])[0]]
                frame = pathlib.Path(folder) / f"{number}.tga"
                code, text, _ = run([*program, "frame", name, "-o", str(frame)])
                codes.append(code)
                made.append((codes, copy.read_bytes(), text.replace(str(frame).encode(), b""), tga_pixels(frame.read_bytes())))
            same = made[0] == made[1] and made[0][0] == [0, 0]
            wrong += not same
            print(f"{'same' if same else 'NOT THE SAME'}: copy and frame of {name}")
    return wrong, len(textures)


def show_first_difference(here, there):
    for line, (one, other) in enumerate(zip(here.splitlines(), there.splitlines()), 1):
        if one != other:
            print(f"line {line}\n  here:  {one.decode()}\n  there: {other.decode()}")
            return


def main():
    wrong_scenes, scenes = compare_imports()
    wrong_textures, textures = compare_textures()
    if not scenes or not textures or wrong_scenes or wrong_textures:
        sys.exit(f"error: {wrong_scenes} of {scenes} scenes and {wrong_textures} of {textures} textures differ")


if __name__ == "__main__":
    main()
