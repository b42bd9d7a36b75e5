#!/usr/bin/env python3
"""What a file server sees of a large batch: counts the metadata operations of vxr for an item with strace, fails where they
are not those of the plan, performs those of a part of the plan here, and writes the figures of docs/batch.md.

batch_metadata.py VXR [ITEMS [NODES [PERFORMED]]]

By default a million items on a hundred nodes, of which those of 100,000 items are performed.
"""

import collections
import multiprocessing
import os
import re
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from batch_speed import make_textures  # noqa: E402

# What one item costs, in calls that name a file: in the job folder and of the input, not of the verb itself.
# "miss" is a look for a file that is not there.
FIRST_RUN = {"create": 1.0, "miss": 5.0, "open": 2.0, "rename": 1.0, "stat": 6.0}
DONE_BEFORE = {"open": 1.0, "stat": 5.0}
ITEMS_PER_FILE = 1000
SHARDS = 256
PROCESSORS_PER_NODE = 16
ARRAY_SIZE = 1000
TRACED_ITEMS = 40
# "12 openat(AT_FDCWD, "name", FLAGS...) = 3", with the number of the process, names as strace quotes them
CALL = re.compile(r'^(\d+) +(\w+)\((.*)\) += (-?\d+)(.*)$')


def kind_of(call, words, result):
    if int(result) < 0:
        return "miss" if "ENOENT" in words else "failed"
    if call.startswith(("rename", "unlink", "mkdir")):
        return call.replace("at2", "").replace("at", "")
    if call.startswith("open"):
        return "create" if "O_CREAT" in words else "open"
    return "stat"


def traced(vxr, job, marks, folder):
    """The calls of the runner for each item, without those of the processes that it starts."""
    log = os.path.join(folder, "strace.log")
    subprocess.run(["strace", "-f", "-qq", "-s", "4096", "-e", "trace=%file,clone,clone3,vfork,execve", "-o", log, vxr, "batch",
                    "run", "--quiet", "--jobs", "1", job], check=True, stdout=subprocess.DEVNULL)
    with open(log, encoding="utf-8", errors="replace") as file:
        lines = file.read().splitlines()
    first = lines[0].split()[0]
    # A process that executes another program is no thread of the runner.
    started = {line.split()[0] for line in lines if " execve(" in line} - {first}
    counts = collections.Counter()
    for line in lines:
        call = CALL.match(line)
        if call and call[1] not in started and any(mark in call[3] for mark in marks):
            counts[kind_of(call[2], call[3] + call[5], call[4])] += 1
    return {kind: count / TRACED_ITEMS for kind, count in sorted(counts.items())}


def count_operations(vxr):
    with tempfile.TemporaryDirectory(prefix="vxr-metadata-") as folder:
        make_textures(vxr, folder, TRACED_ITEMS)
        with open(os.path.join(folder, "job.toml"), "w", encoding="ascii") as file:
            file.write("[[task]]\nverb = 'texture check'\nfiles = ['in']\n")
        subprocess.run([vxr, "batch", "plan", os.path.join(folder, "job.toml")], check=True, stdout=subprocess.DEVNULL)
        job = os.path.join(folder, "job.batch")
        marks = (os.path.join(job, "results"), os.path.join(job, "logs"), os.path.join(folder, "in/"))
        return traced(vxr, job, marks, folder), traced(vxr, job, marks, folder)


def perform(folder, begin, end):
    """The calls of FIRST_RUN in the job folder, for some items, and one more look at each."""
    for i in range(begin, end):
        name = f"{(i * 0x9E3779B97F4A7C15) % (1 << 64):016x}"
        result = f"{folder}/results/{name[:2]}/{name}.json"
        temporary = f"{folder}/results/{name[:2]}/.{name}.1234.json"
        for path in (result,) * 4 + (f"{folder}/logs/{name[:2]}/{name}.log",):
            try:
                os.stat(path)
            except FileNotFoundError:
                pass
        os.close(os.open(temporary, os.O_CREAT | os.O_EXCL | os.O_WRONLY, 0o600))
        with open(temporary, "wb") as file:
            file.write(b"x" * 500)
        os.rename(temporary, result)
        for _ in range(6):
            os.stat(result)


def simulate(items):
    """Operations a second, and the number of files in the largest folder."""
    with tempfile.TemporaryDirectory(prefix="vxr-metadata-") as folder:
        for kind in ("results", "logs"):
            for shard in range(SHARDS):
                os.makedirs(f"{folder}/{kind}/{shard:02x}")
        count = os.cpu_count()
        parts = [(folder, items * i // count, items * (i + 1) // count) for i in range(count)]
        begin = time.monotonic()
        with multiprocessing.Pool(count) as pool:
            pool.starmap(perform, parts)
        seconds = time.monotonic() - begin
        largest = max(len(os.listdir(f"{folder}/results/{shard:02x}")) for shard in range(SHARDS))
    return items * sum(FIRST_RUN.values()) / seconds, largest


def main(vxr, items=1000000, nodes=100, performed=100000):
    vxr, items, nodes, performed = os.path.abspath(vxr), int(items), int(nodes), int(performed)
    first, again = count_operations(vxr)
    print("first run, for an item:", first)
    print("done before, for an item:", again)
    if first != FIRST_RUN or again != DONE_BEFORE:
        sys.exit(f"error: the plan says {FIRST_RUN} and {DONE_BEFORE}")
    each, each_again = int(sum(FIRST_RUN.values())), int(sum(DONE_BEFORE.values()))
    processors = nodes * PROCESSORS_PER_NODE
    parts = min(items, ARRAY_SIZE)
    print(f"{items:,} items, {nodes} nodes of {PROCESSORS_PER_NODE} processors")
    print(f"  item lists: {-(-items // ITEMS_PER_FILE):,} files; results: {items:,} files, "
          f"{items // SHARDS:,} in each of {SHARDS} folders")
    print(f"  array: {parts:,} tasks of {-(-items // parts):,} items; {parts * 3:,} files read to begin")
    print(f"  operations: {items * each:,} for everything, {items * each_again:,} when all is done")
    for seconds in (1, 10, 60):
        print(f"  items of {seconds} s: {processors / seconds * each:,.0f} operations a second, "
              f"{items * seconds / processors / 3600:.1f} h in all")
    rate, largest = simulate(performed)
    print(f"performed for {performed:,} items on this machine: {rate:,.0f} operations a second, {largest:,} files in the "
          f"largest folder; load {os.getloadavg()[0]:.1f}")


if __name__ == "__main__":
    main(*sys.argv[1:])
