#!/usr/bin/env python3
"""Measures vxr preview beside oiiotool, and its memory; fails where a goal is missed or the pictures differ.

preview_speed.py VXR

Every number is the median of five runs of whole processes, in turns, in wall time. The pictures are smooth gradients under noise,
as rendered pictures are, with alpha, as TIFF with LZW.
"""

import os
import statistics
import subprocess
import sys
import tempfile
import time

RUNS = 5
LAYERS = 8
FRAMES = 10
# Of the time of oiiotool doing the same, and of reading the pictures alone.
PEER_GOAL, READING_GOAL = 0.5, 1.5
PASSES = 500
MEMORY_GOAL_bytes = 1 << 30


def run(*words):
    """Wall time in seconds and peak memory in bytes of a process and its children."""
    before = time.monotonic()
    process = subprocess.Popen(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        sys.exit(f"{' '.join(words)[:200]}: exit code {process.returncode}")
    return time.monotonic() - before, usage.ru_maxrss * 1024


def make_picture(path, width, height, seed):
    """Premultiplied, as renderers write it."""
    corners = [f"{(seed * 37 + i * 53) % 100 / 100:.2f}" for i in range(16)]
    colours = ":".join(f"{corner}={','.join(corners[4 * i:4 * i + 4])}"
                       for i, corner in enumerate(("topleft", "topright", "bottomleft", "bottomright")))
    subprocess.run(["oiiotool", "--pattern", f"fill:{colours}", f"{width}x{height}", "4",
                    f"--noise:type=gaussian:stddev=0.01:seed={seed}", "--clamp:min=0:max=1", "--premult", "-d", "uint8",
                    "--compression", "lzw", "-o", path], check=True, capture_output=True)


def write_scene(path, width, height, entries, frames=1):
    with open(path, "w", encoding="ascii") as file:
        file.write(f"VORTAN XR COMPOSITION\nRESOLUTION {width} {height}\nFROM 0\nTO {frames - 1}\nRANGE {frames}\n"
                   f'FPS 25\nCOMPOSITION NRM "Main" {{\n{entries}}}\n')


def largest_difference(folder):
    """Between the first frames in parts of 255."""
    answer = subprocess.run(["oiiotool", os.path.join(folder, "ours.0000.tif"), os.path.join(folder, "peer.0000.tif"),
                             "--diff"], check=False, capture_output=True, text=True).stdout
    for line in answer.splitlines():
        if "Max error" in line:
            return float(line.split("=")[1].split()[0]) * 255
    if "PASS" not in answer:
        sys.exit(f"oiiotool compared nothing: {answer}")
    return 0.0


def measure_layers(vxr, folder):
    layers = [os.path.join(folder, f"layer{i}.") for i in range(LAYERS)]
    for seed, layer in enumerate(layers):
        make_picture(layer + "0000.tif", 1920, 1080, seed + 1)
        for frame in range(1, FRAMES):
            # Another name for the same bytes: nobody reads a file less for it.
            os.link(layer + "0000.tif", f"{layer}{frame:04}.tif")
    scene = os.path.join(folder, "shot.aec")
    write_scene(scene, 1920, 1080, "".join(f'FSEQ NRM PREMUL "C:\\x\\layer{i}.0000.tif"\n' for i in range(LAYERS)),
                FRAMES)
    over = [layers[0] + "#.tif"]
    for layer in layers[1:]:
        # oiiotool takes the upper picture first.
        over += [layer + "#.tif", "--swap", "--over"]
    # A number sign of oiiotool stands for four digits.
    frames = ("oiiotool", "--frames", f"0-{FRAMES - 1}")
    # TGA without compression, whose writing costs least.
    ways = {
        "vxr preview": (vxr, "preview", scene, "-o", os.path.join(folder, "ours.####.tga")),
        "oiiotool --over": (*frames, *over, "-d", "uint8", "--compression", "none", "-o",
                            os.path.join(folder, "peer.#.tga")),
        "reading alone": (*frames, *(word for layer in layers for word in ("-i:now=1", layer + "#.tif"))),
    }
    times = {way: [] for way in ways}
    for _ in range(RUNS):
        for way, words in ways.items():
            times[way].append(run(*words)[0])
    medians = {way: statistics.median(spent) for way, spent in times.items()}
    for way, seconds in medians.items():
        print(f"1920 x 1080, {LAYERS} layers, {FRAMES} frames, {way}: {seconds:.3f} s")
    # Compared as TIFF, which says whether its colour is multiplied by alpha.
    run(vxr, "preview", scene, "--frame", "0", "-o", os.path.join(folder, "ours.0000.tif"))
    run("oiiotool", "--frames", "0", *over, "-d", "uint8", "-o", os.path.join(folder, "peer.#.tif"))
    return medians


def measure_memory(vxr, folder):
    """500 passes of 4K: files of the same picture, each read for itself, nested in ten compositions."""
    picture = os.path.join(folder, "pass0.tif")
    make_picture(picture, 3840, 2160, 7)
    for i in range(1, PASSES):
        os.link(picture, os.path.join(folder, f"pass{i}.tif"))
    scene = os.path.join(folder, "passes.aec")
    entries = [f'FILE NRM PREMUL "C:\\x\\pass{i}.tif"\n' for i in range(PASSES)]
    write_scene(scene, 3840, 2160, "".join(
        f'COMPOSITION ADD "Group {i}" {{\n{"".join(entries[i::10])}}}\n' for i in range(10)))
    seconds, peak_bytes = run(vxr, "preview", scene, "-o", os.path.join(folder, "passes.png"))
    print(f"3840 x 2160, {PASSES} passes: {seconds:.1f} s, {peak_bytes / (1 << 20):.0f} MiB")
    return peak_bytes


def main():
    vxr = sys.argv[1]
    missed = []
    with tempfile.TemporaryDirectory() as folder:
        medians = measure_layers(vxr, folder)
        difference = largest_difference(folder)
        print(f"largest difference from oiiotool: {difference:.2f} of 255")
        if difference > 1.01:
            missed.append("the pictures differ")
        for peer, goal in (("oiiotool --over", PEER_GOAL), ("reading alone", READING_GOAL)):
            ratio = medians["vxr preview"] / medians[peer]
            print(f"vxr preview takes {ratio:.2f} of {peer}; the goal is {goal}")
            if ratio > goal:
                missed.append(f"{ratio:.2f} of {peer}")
        if measure_memory(vxr, folder) > MEMORY_GOAL_bytes:
            missed.append("more than 1 GiB")
    if missed:
        sys.exit("missed: " + "; ".join(missed))


main()
