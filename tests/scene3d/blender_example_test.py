#!/usr/bin/env python3
"""Has Blender run examples/python/blender_scene.py and compares where its cameras put points with where the scenes do:
blender_example_test.py PACKAGE PROJECT, where PACKAGE is the folder with the module.

At keys only: between them Blender turns cameras in its own way.
"""

import json
import math
import os
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from scene_truth import Scene, SceneText, Track, frame_points  # noqa: E402

GOAL_PX = 0.05


def in_blender(script, *words, package):
    # Blender takes its modules from beside the first python3 in PATH, which must be the system's.
    system = {**os.environ, "PATH": "/usr/bin:/bin", "PYTHONPATH": str(package), "PYTHONDONTWRITEBYTECODE": "1"}
    done = subprocess.run(["blender", "-b", "--factory-startup", "--python-use-system-env", "--python-exit-code", "1", "-P",
                           script, "--", *words], capture_output=True, text=True, check=False, env=system)
    if done.returncode != 0:
        sys.exit(f"error: {script} failed for {words[0]}: {done.stdout[-2000:]}{done.stderr[-2000:]}")
    return done.stdout


def main():
    package, project = (Path(word).absolute() for word in sys.argv[1:3])
    # Turns about all three axes, pixels that are not square, and an angle of view that changes.
    turned = (
        "VORTAN XR COMPOSITION\nRESOLUTION 720 576\nASPECT 1.0667\nFROM 10\nTO 40\nRANGE 31\nFPS 25\nCOMPOSITION NRM \"Main\" {\n}\n"
        'CAMERA "Lens" {\n  KEY 10 1 2 -3 0 0 0 60 5\n  KEY 25 40 -8 90 -75 20 33 35 5\n  KEY 40 -3 7 11 160 -50 -120 90 5\n}\n'
    )
    compared, worst = 0, (0, "")
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        (folder / "turned.aec").write_text(turned)
        scenes = [path for path in sorted((project / "examples").glob("*/*.aec")) if any(Scene(path).of_kind("CAMERA"))]
        for path in [folder / "turned.aec", *scenes]:
            scene = Scene(path)
            cameras, truth = [], []
            for camera in (one for one in SceneText(path).objects if one.word == "CAMERA"):
                asked = []
                for frame, pose in Track(camera.keys).keys:
                    points = list(frame_points(scene, pose))
                    asked.append({"frame": frame, "points": [[x, y, -z] for (x, y, z), _ in points]})
                    truth += [(wanted, f"{path.name} at frame {frame}") for _, wanted in points]
                cameras.append({"id": camera.name, "moments": asked})
            built, wanted = folder / "built.blend", folder / "points.json"
            in_blender(project / "examples/python/blender_scene.py", path, built, package=package)
            wanted.write_text(json.dumps({"width": scene.width, "height": scene.height, "aspect": scene.aspect, "first": 0,
                                          "cameras": cameras}))
            shown = in_blender(project / "tests/scene3d/blender_read.py", built, wanted, package=package)
            result = json.loads(next(line for line in shown.splitlines() if line.startswith("RESULT "))[7:])
            for place, (expected, where) in zip(result, truth, strict=True):
                compared += 1
                worst = max(worst, (math.dist(place, expected), where))
    print(f"{compared} points; largest distance {worst[0]:.5f} px, {worst[1]}")
    if compared < 100 or not worst[0] <= GOAL_PX:
        sys.exit(f"error: more than {GOAL_PX} px")


if __name__ == "__main__":
    main()
