"""Shared by script/bench and script/reliability: running a benchmark program, whether the machine is quiet, and the part of a
document that a script writes."""

import json
import os
import resource
import statistics
import subprocess
import sys
import tempfile
import time
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
        self.times = {}
        for row in rows:
            if row["run_type"] == "iteration":
                self.times.setdefault(row["run_name"], []).append(row[self.clock(row["run_name"])])

    @staticmethod
    def clock(name):
        """Processor time, which other programs disturb least: of the one thread that works or, for a row that times a
        whole process, of that process. The time that elapses for a row on several threads."""
        return "real_time" if name.endswith(("/manual_time", "/real_time")) else "cpu_time"

    def has(self, name):
        return name in self.rows

    def cpu(self, name):
        return self.rows[name][self.clock(name)]

    def spread(self, name):
        """Half of the range that holds the middle half of the repetitions, as a share of the median."""
        low, median, high = statistics.quantiles(self.times[name], n=4)
        return (high - low) / 2 / median

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


class Disturbance:
    """What else the machine does from now on: processors that others keep busy, and the share of the processors' time
    that the machine below takes away."""

    def __init__(self):
        self.begin = self._now()

    @staticmethod
    def _now():
        with open("/proc/stat", encoding="ascii") as file:
            user, nice, system, idle, waiting, hard, soft, stolen = map(int, file.readline().split()[1:9])
        own = sum(usage.ru_utime + usage.ru_stime for usage in
                  (resource.getrusage(resource.RUSAGE_SELF), resource.getrusage(resource.RUSAGE_CHILDREN)))
        busy = user + nice + system + hard + soft
        return time.monotonic(), busy / os.sysconf("SC_CLK_TCK"), own, stolen, busy + idle + waiting + stolen

    def others(self):
        """Processors, on average. Children count as our own once they have ended."""
        (since, busy_before, own_before, _, _), (now, busy, own, _, _) = self.begin, self._now()
        return max((busy - busy_before - (own - own_before)) / (now - since), 0)

    def stolen(self):
        (*_, stolen_before, all_before), (*_, stolen, ticks) = self.begin, self._now()
        return (stolen - stolen_before) / max(ticks - all_before, 1)

    def complaint(self):
        """Why what was measured cannot be believed; empty when it can."""
        most_others, most_stolen = 0.3, 0.01
        if self.others() > most_others:
            return f"other programs keep {self.others():.1f} processors busy; {most_others} is the most"
        if self.stolen() > most_stolen:
            return f"the machine below takes {self.stolen():.1%} of the processors' time; {most_stolen:.0%} is the most"
        return ""


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
