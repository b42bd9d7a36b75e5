"""Shared by script/bench and script/reliability: running a benchmark program, and the part of a document that a script writes."""

import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def say(text):
    print(f"==> {text}", flush=True)


def die(text):
    sys.exit(f"error: {text}")


def run(*command):
    """Runs a command from the project's root; what it prints is shown only when it fails."""
    done = subprocess.run(command, cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        sys.stderr.write(done.stdout)
        die(f"{' '.join(command)} failed")


class Medians:
    """The medians of one run of a benchmark program. Times are in milliseconds."""

    def __init__(self, program, pattern, repetitions, least_seconds):
        # Repetitions of all rows take turns, so that a disturbance affects a row and its peer alike.
        with tempfile.TemporaryDirectory() as folder:
            out = Path(folder) / "medians.json"
            run(f"build/release/bin/{program}", f"--benchmark_filter={pattern}",
                f"--benchmark_repetitions={repetitions}", f"--benchmark_min_time={least_seconds}",
                "--benchmark_enable_random_interleaving=true", f"--benchmark_out={out}",
                "--benchmark_out_format=json")
            rows = json.loads(out.read_text(encoding="utf-8"))["benchmarks"]
        self.rows = {row["run_name"]: row for row in rows if row.get("aggregate_name") == "median"}
        for row in self.rows.values():
            assert row["time_unit"] == "ms", row["time_unit"]

    def has(self, name):
        return name in self.rows

    def cpu(self, name):
        """Processor time, which other programs disturb least: of the one thread that works or, for a row that times a
        whole process, of that process. The time that elapses for a row on several threads."""
        elapsed = name.endswith("/manual_time") or name.endswith("/real_time")
        return self.rows[name]["real_time" if elapsed else "cpu_time"]

    def wall(self, name):
        return self.rows[name]["real_time"]

    def counter(self, name, counter):
        return self.rows[name][counter]


def three_digits(value):
    """A number with three significant digits, or its whole part if that is longer: 1510, 151, 15.1, 1.51, 0.151."""
    return f"{value:.0f}" if value >= 100 else f"{value:.1f}" if value >= 10 else f"{value:.3g}"


def time_text(milliseconds):
    if milliseconds >= 1000:
        return f"{three_digits(milliseconds / 1000)} s"
    if milliseconds >= 0.1:
        return f"{three_digits(milliseconds)} ms"
    return f"{three_digits(milliseconds * 1000)} us"


def factor_text(factor):
    return f"{three_digits(factor)} x"


def size_text(size_bytes):
    return f"{three_digits(size_bytes / 1e6)} MB" if size_bytes >= 1e5 else f"{three_digits(size_bytes / 1e3)} kB"


def table(head, rows):
    """A Markdown table; the first column is text, the others are numbers."""
    ruler = ["---"] + ["---:"] * (len(head) - 1)
    return "".join("| " + " | ".join(cells) + " |\n" for cells in [head, ruler, *rows])


def processor():
    for line in Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return " ".join(line.split(":", 1)[1].split())
    return os.uname().machine


def load():
    return f"{os.getloadavg()[0]:.1f}"


class MarkedPart:
    """The lines of a document between `<!-- NAME:begin -->` and `<!-- NAME:end -->`, each alone on its line."""

    def __init__(self, document, name):
        self.path = ROOT / document
        if not self.path.is_file():
            die(f"there is no {document}")
        self.text = self.path.read_text(encoding="utf-8")
        lines = self.text.splitlines(keepends=True)
        places = []
        for marker in (f"<!-- {name}:begin -->", f"<!-- {name}:end -->"):
            found = [number for number, line in enumerate(lines) if line.rstrip("\n") == marker]
            if len(found) != 1:
                die(f"{document} has {len(found)} lines {marker} instead of one")
            places.append(found[0])
        begin, end = places
        if end < begin:
            die(f"{document} has the end of its part {name} before the beginning")
        self.before, self.content, self.after = lines[:begin + 1], "".join(lines[begin + 1:end]), lines[end:]

    def write(self, content):
        self.path.write_text("".join([*self.before, "\n", content, "\n", *self.after]), encoding="utf-8")
