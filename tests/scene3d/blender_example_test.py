#!/usr/bin/env python3
"""Has Blender run examples/python/blender_scene.py and compares where its cameras put points with where the scenes do:
blender_example_test.py PACKAGE PROJECT, where PACKAGE is the folder with the module.

At keys only: between them Blender turns cameras in its own way.
"""

import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from blender_points import Comparison, run_blender  # noqa: E402
from scene_truth import Scene, Track, frame_points  # noqa: E402

# Turns about all three axes, pixels that are not square, and an angle of view that changes.
TURNED = """VORTAN XR COMPOSITION
RESOLUTION 720 576
ASPECT 1.0667
FROM 10
TO 40
RANGE 31
FPS 25
COMPOSITION NRM "Main" {
}
CAMERA "Lens" {
  KEY 10 1 2 -3 0 0 0 60 5
  KEY 25 40 -8 90 -75 20 33 35 5
  KEY 40 -3 7 11 160 -50 -120 90 5
}
"""


def main():
    package, project = (Path(word).absolute() for word in sys.argv[1:3])
    comparison = Comparison()
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        (folder / "turned.aec").write_text(TURNED)
        for path in [folder / "turned.aec", *sorted((project / "examples").glob("*/*.aec"))]:
            scene = Scene(path)
            cameras, truth = [], []
            for camera in (one for one in scene.objects if one.word == "CAMERA"):
                asked = []
                for frame, pose in Track(camera.keys).keys:
                    points = list(frame_points(scene, pose))
                    asked.append({"frame": frame, "points": [[x, y, -z] for (x, y, z), _ in points]})
                    truth += [(place, f"{path.name} at frame {frame}") for _, place in points]
                cameras.append({"id": camera.name, "moments": asked})
            built = folder / "built.blend"
            done = run_blender(project / "examples/python/blender_scene.py", path, built, PYTHONPATH=str(package))
            if done.returncode != 0:
                sys.exit(f"error: the example failed for {path.name}: {done.stdout[-2000:]}{done.stderr[-2000:]}")
            # A file of Blender has its size, aspect and rate in it, and its frames are those of the scene.
            comparison.add(built, {"width": scene.width, "height": scene.height, "first": 0, "cameras": cameras}, truth)
    comparison.judge(100)


if __name__ == "__main__":
    main()
