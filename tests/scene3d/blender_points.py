"""Where Blender's cameras put points, compared with where the scenes do."""

import json
import math
import os
import subprocess
import sys
from pathlib import Path

GOAL_PX = 0.05


def run_blender(script, *words, folder=None, **environment):
    """Runs a script in Blender, in `folder`; what it printed, its complaints and its exit code are in the result."""
    # Blender takes its modules from beside the first python3 in PATH, which must be the system's.
    system = {**os.environ, "PATH": "/usr/bin:/bin", **environment}
    return subprocess.run(["blender", "-b", "--factory-startup", "--python-use-system-env", "--python-exit-code", "1", "-P",
                           script, "--", *words], capture_output=True, text=True, check=False, env=system, cwd=folder)


class Comparison:
    """Counts points, and keeps the one that is farthest off."""

    def __init__(self):
        self.compared, self.worst = 0, (0, "")

    def add(self, file, wanted, truth):
        """Asks Blender about a file: `wanted` is what blender_read.py takes, `truth` the place in the picture, in pixels, and
        a word about each of its points."""
        points = Path(file).with_name("points.json")
        points.write_text(json.dumps(wanted))
        done = run_blender(Path(__file__).parent / "blender_read.py", file, points)
        lines = [line for line in done.stdout.splitlines() if line.startswith("RESULT ")]
        if done.returncode != 0 or not lines:
            sys.exit(f"error: Blender did not read {file.name}: {done.stdout[-2000:]}{done.stderr[-2000:]}")
        for shown, (place, where) in zip(json.loads(lines[0][7:]), truth, strict=True):
            self.compared += 1
            self.worst = max(self.worst, (math.dist(shown, place), where))

    def judge(self, least):
        """Ends with an error where fewer than `least` points were compared or one is off."""
        print(f"{self.compared} points; largest distance {self.worst[0]:.5f} px, {self.worst[1]}")
        if self.compared < least or not self.worst[0] <= GOAL_PX:
            sys.exit(f"error: fewer than {least} points, or more than {GOAL_PX} px")
