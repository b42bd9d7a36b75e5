#!/usr/bin/env python3
"""An array of 200 items on a real Slurm, with processes that crash, hang, take all memory and are killed, tasks that are
cancelled and a node daemon that is killed, submitted again until everything is fine: the results equal those of a local
run without faults, byte for byte.

    slurm_faults_test.py VXR PLANTED_FAULT

Needs root and the packages of `script/bootstrap farm`.
"""

import json
import os
import pathlib
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from slurm_farm import Farm, wait_until  # noqa: E402

ITEMS = 200
PARTS = 25
MOST_ROUNDS = 8
FAULTS = {"crash": 6, "hang": 3, "hog": 4, "killed": 6}
BATCH = b"""[limits]
seconds = 12
memory-mib = 900
[[task]]
verb = 'texture convert'
files = ['in']
out-dir = 'out'
extension = 'png'
"""


def png(width, height, pixel):
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))
    rows = (b"\0" + bytes(pixel) * width) * height
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def name_of(i):
    odd = {7: b"it's\na \"line\"", 77: b"\xff\xfe", 111: b"$HOME `x` %d \\", 150: b"-o"}
    return odd.get(i, b"%03d" % i) + b".txl"


def tree(folder):
    """Names and contents of all files."""
    return {path.relative_to(folder): path.read_bytes() for path in sorted(pathlib.Path(os.fsdecode(folder)).rglob("*"))
            if path.is_file()}


class Test:
    def __init__(self, vxr, fault, base, environment):
        self.vxr = os.path.abspath(vxr)
        self.fault = os.path.abspath(fault)
        self.base = base
        self.environment = environment

    def run(self, *words, codes=(0,), **settings):
        run = subprocess.run([self.vxr, *words], env=settings.pop("env", self.environment), stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, **settings)
        if run.returncode not in codes:
            raise SystemExit(f"error: {words}: exit code {run.returncode}\n{run.stderr.decode(errors='replace')}")
        return run.stdout

    def path(self, name):
        return os.path.join(self.base, name)

    def make_inputs(self):
        os.makedirs(self.path(b"in"))
        hour_ago = time.time() - 3600
        for i in range(ITEMS):
            picture = self.path(b"picture.png")
            pathlib.Path(os.fsdecode(picture)).write_bytes(png(8 + i % 7, 9, (i, 255 - i, i // 2)))
            texture = self.path(b"in/" + name_of(i))
            self.run("texture", "convert", "-o", texture, "--", picture)
            os.utime(texture, (hour_ago, hour_ago))
        pathlib.Path(os.fsdecode(self.path(b"job.toml"))).write_bytes(BATCH)

    def counts(self, job):
        return json.loads(self.run("batch", "status", "--json", job))["counts"]

    def run_here(self):
        job = self.path(b"here.batch")
        self.run("batch", "plan", self.path(b"job.toml"), "-o", job)
        self.run("batch", "run", "--quiet", job)
        results = tree(os.fsdecode(job + b"/results"))
        outputs = tree(os.fsdecode(self.path(b"out")))
        assert len(results) == ITEMS and len(outputs) == ITEMS, (len(results), len(outputs))
        shutil.rmtree(self.path(b"out"))
        return results, outputs

    def plant(self):
        os.makedirs(self.path(b"faults"))
        at = 7
        for kind, count in FAULTS.items():
            for _ in range(count):
                pathlib.Path(os.fsdecode(self.path(b"faults/" + name_of(at)))).write_text(kind)
                at += 10
        assert at <= ITEMS, at

    def run_on(self, farm):
        job = self.path(b"farm '1'\n\xff.batch")
        results = job + b"/results"
        self.run("batch", "plan", self.path(b"job.toml"), "-o", job)
        self.plant()
        faulty = dict(farm.environment, LD_PRELOAD=self.fault, VXR_TEST_FAULTS=self.path(b"faults"))
        seen = dict.fromkeys(("crashed", "too-long", "too-large", "not-done"), 0)
        for number in range(1, MOST_ROUNDS + 1):
            print(self.run("batch", "submit", job, "--on", "slurm", "--array-size", str(PARTS), "--partition", "night",
                           env=faulty).decode(errors="replace").strip(), flush=True)
            if number == 1:
                self.disturb(farm, os.fsdecode(results))
            wait_until("jobs are still there\n" + farm.ask("squeue"), farm.is_idle, 600)
            counts = self.counts(job)
            print(f"round {number}:", {name: count for name, count in counts.items() if count > 0}, flush=True)
            for name in seen:
                seen[name] += counts[name]
            if counts["fine"] == ITEMS:
                assert all(seen.values()), f"a kind of fault was not seen: {seen}"
                assert number > 1
                break
            self.run("batch", "retry", "--failed", job)
        else:
            raise SystemExit(f"error: not everything is fine after {MOST_ROUNDS} rounds")
        merged = self.run("batch", "merge", job)
        assert merged.endswith(b": %d items: %d fine\n" % (ITEMS, ITEMS)), merged
        return tree(os.fsdecode(results)), tree(os.fsdecode(self.path(b"out")))

    def disturb(self, farm, results):
        wait_until("the farm does nothing", lambda: len(tree(results)) >= 20, 120)
        farm.end("slurmd", signal.SIGKILL)
        print(f"killed the node daemon after {len(tree(results))} items", flush=True)
        time.sleep(3)
        farm.start_node()
        # A task that runs, and one that waits.
        running = farm.ask("squeue", "-h", "-r", "-t", "RUNNING", "-o", "%i").split()
        waiting = farm.ask("squeue", "-h", "-r", "-t", "PENDING", "-o", "%i").split()
        cancelled = running[:1] + waiting[-1:]
        print("cancelled", *cancelled, flush=True)
        assert cancelled, "the array was over too soon"
        farm.ask("scancel", *cancelled)


def differences(expected, found):
    return [repr(name) for name in sorted(expected.keys() | found.keys()) if expected.get(name) != found.get(name)]


def main(vxr, fault):
    with tempfile.TemporaryDirectory(prefix="vxr-farm-") as folder:
        environment = {name: value for name, value in os.environ.items() if not name.startswith(("SLURM", "SBATCH"))}
        base = os.path.join(os.fsencode(folder), b"it's a\n\"farm\"\xff")
        os.makedirs(base)
        test = Test(vxr, fault, base, environment)
        test.make_inputs()
        results, outputs = test.run_here()
        daemons = os.path.join(folder, "daemons")
        os.mkdir(daemons, 0o755)
        try:
            with Farm(daemons, environment) as farm:
                farm_results, farm_outputs = test.run_on(farm)
        except (SystemExit, AssertionError):
            for log in sorted(pathlib.Path(daemons).glob("*.log")):
                print(f"--- {log.name}", log.read_text(errors="replace")[-3000:], sep="\n")
            raise
        wrong = differences(results, farm_results) + differences(outputs, farm_outputs)
        if wrong:
            raise SystemExit("error: these files differ from those of the local run: " + ", ".join(wrong))
        print(f"{len(farm_results)} results and {len(farm_outputs)} outputs equal those of the local run")


if __name__ == "__main__":
    main(*sys.argv[1:])
