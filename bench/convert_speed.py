#!/usr/bin/env python3
"""Measures `vxr texture convert` of many textures beside oiiotool; fails where the goal is missed or the pictures differ.

convert_speed.py VXR PLUGIN_FOLDER [TEXTURES]

Both write PNG files from textures of 512 x 512 pixels, RGB and alpha: vxr with as many at a time as there are processors,
oiiotool, with the plug-in for textures, one after the other in one process. Medians of three runs in turns, in wall time. The
textures are one file under many names: nobody reads a file less for it.
"""

import os
import statistics
import subprocess
import sys
import tempfile
import time

RUNS = 3
GOAL = 0.45


def seconds(words, **settings):
    began = time.monotonic()
    done = subprocess.run(words, check=False, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, **settings)
    if done.returncode:
        sys.exit(f"{' '.join(words)[:200]}: exit code {done.returncode}\n{done.stderr[:2000]}")
    return time.monotonic() - began


def make_textures(vxr, folder, count):
    picture, texture = os.path.join(folder, "picture.png"), os.path.join(folder, "0000.txl")
    # Opaque: oiiotool divides the colour of a PNG by its alpha, and vxr keeps every byte.
    seconds(["oiiotool", "--pattern", "fill:topleft=.1,.5,.2:topright=.9,.4,.1:bottomleft=.3,.3,.9:bottomright=0,0,.1", "512x512", "3",
             "--noise:type=gaussian:stddev=0.01:seed=1", "--clamp:min=0:max=1", "--ch", "R,G,B,A=1.0", "-d", "uint8", "-o", picture])
    seconds([vxr, "texture", "convert", picture, "-o", texture])
    names = [texture] + [os.path.join(folder, f"{i:04}.txl") for i in range(1, count)]
    for name in names[1:]:
        os.link(texture, name)
    return names


def main(vxr, plugin_folder, count="1000"):
    vxr, count = os.path.abspath(vxr), int(count)
    with tempfile.TemporaryDirectory() as folder:
        names = make_textures(vxr, folder, count)
        ours, theirs = os.path.join(folder, "ours"), os.path.join(folder, "theirs")
        os.mkdir(theirs)
        chain = ["oiiotool"]
        for name in names:
            chain += [name, "-o", os.path.join(theirs, os.path.basename(name)[:-4] + ".png")]
        environment = {**os.environ, "OIIO_LIBRARY_PATH": os.path.abspath(plugin_folder)}
        times = {"vxr": [], "oiiotool": []}
        for _ in range(RUNS):
            times["vxr"].append(seconds([vxr, "texture", "convert", "--jobs", "0", "--to", "png", "--out-dir", ours, *names]))
            times["oiiotool"].append(seconds(chain, env=environment))
        for i in (0, count - 1):
            seconds(["idiff", os.path.join(ours, f"{i:04}.png"), os.path.join(theirs, f"{i:04}.png")])
    medians = {way: statistics.median(spent) for way, spent in times.items()}
    ratio = medians["vxr"] / medians["oiiotool"]
    print(f"{count} textures to PNG on {os.cpu_count()} processors: vxr {medians['vxr']:.1f} s, oiiotool {medians['oiiotool']:.1f} s,"
          f" {ratio:.2f} x; load {os.getloadavg()[0]:.1f}")
    if ratio > GOAL:
        sys.exit(f"error: the goal is {GOAL} x")


main(*sys.argv[1:])
