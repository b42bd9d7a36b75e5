#!/usr/bin/env python3
"""Measures vxr batch run beside `xargs -P` with the same processes on 10,000 textures; fails where a goal is missed.

batch_speed.py VXR [TEXTURES]

Both run one `vxr texture check` for each texture, in turns, as many at a time as there are processors. A round of each
comes first and is not counted. Overhead is the wall time beyond that of xargs, times the processors, for each item.
"""

import os
import resource
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile
import time
import zlib

ROUNDS = 3
OVERHEAD_GOAL_ms = 3
BUSY_GOAL = 0.9


def busy_share(before, after):
    """Of all processors of the machine between two lines of /proc/stat, whoever used them."""
    spent = [b - a for a, b in zip(before, after)]
    return 1 - (spent[3] + spent[4]) / sum(spent)


def processor_times():
    with open("/proc/stat", encoding="ascii") as file:
        return [int(number) for number in file.readline().split()[1:9]]


def measured(words, **settings):
    """Wall seconds, processor seconds of all its processes, and how busy the machine was."""
    usage, times, begin = resource.getrusage(resource.RUSAGE_CHILDREN), processor_times(), time.monotonic()
    subprocess.run(words, check=True, stdout=subprocess.DEVNULL, **settings)
    wall = time.monotonic() - begin
    busy = busy_share(times, processor_times())
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return wall, after.ru_utime + after.ru_stime - usage.ru_utime - usage.ru_stime, busy


def make_textures(vxr, folder, count):
    rows = b"".join(b"\0" + bytes((x * y) % 251 for x in range(64 * 3)) for y in range(64))
    picture = os.path.join(folder, "picture.png")
    with open(picture, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        for kind, content in ((b"IHDR", struct.pack(">IIBBBBB", 64, 64, 8, 2, 0, 0, 0)), (b"IDAT", zlib.compress(rows)),
                              (b"IEND", b"")):
            file.write(struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content)))
    texture = os.path.join(folder, "texture.txl")
    subprocess.run([vxr, "texture", "convert", picture, "-o", texture], check=True, stdout=subprocess.DEVNULL)
    os.mkdir(os.path.join(folder, "in"))
    names = []
    for i in range(count):
        names.append(os.path.join(folder, "in", f"{i:06}.txl"))
        shutil.copyfile(texture, names[-1])
        os.utime(names[-1], (time.time() - 3600,) * 2)
    return names


def main(vxr, count=10000):
    vxr, count, processors = os.path.abspath(vxr), int(count), os.cpu_count()
    with tempfile.TemporaryDirectory(prefix="vxr-batch-") as folder:
        names = "\0".join(make_textures(vxr, folder, count)).encode()
        with open(os.path.join(folder, "job.toml"), "w", encoding="ascii") as file:
            file.write("[[task]]\nverb = 'texture check'\nfiles = ['in']\n")
        job = os.path.join(folder, "job.batch")
        ours, peer = [], []
        for number in range(ROUNDS + 1):
            shutil.rmtree(job, ignore_errors=True)
            subprocess.run([vxr, "batch", "plan", os.path.join(folder, "job.toml")], check=True,
                           stdout=subprocess.DEVNULL)
            pair = (measured([vxr, "batch", "run", "--quiet", job]),
                    measured(["xargs", "-0", "-n", "1", "-P", str(processors), vxr, "texture", "check", "--"],
                             input=names))
            if number > 0:
                ours.append(pair[0])
                peer.append(pair[1])
            print(f"round {number}: batch {pair[0][0]:.2f} s, processors {pair[0][1]:.2f} s, machine busy {pair[0][2]:.1%}; "
                  f"xargs {pair[1][0]:.2f} s, processors {pair[1][1]:.2f} s, machine busy {pair[1][2]:.1%}; "
                  f"load {os.getloadavg()[0]:.1f}", flush=True)
        again = measured([vxr, "batch", "run", "--quiet", job])[0]
        wall = statistics.median(a[0] - b[0] for a, b in zip(ours, peer)) * processors / count * 1000
        work = statistics.median(a[1] - b[1] for a, b in zip(ours, peer)) / count * 1000
        busy = statistics.median(one[2] for one in ours)
        print(f"{count} textures on {processors} processors: {wall:.2f} ms of wall time and {work:.2f} ms of processor time "
              f"for each item beyond xargs -P; processors busy {busy:.1%}; a run with nothing to do takes {again:.2f} s")
        if wall > OVERHEAD_GOAL_ms or busy < BUSY_GOAL:
            sys.exit(f"error: the goals are {OVERHEAD_GOAL_ms} ms and {BUSY_GOAL:.0%}")


if __name__ == "__main__":
    main(*sys.argv[1:])
