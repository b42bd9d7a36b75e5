#!/usr/bin/env python3
"""Has Blender run examples/python/blender_scene.py and compares where its cameras put points with where the scenes do:
blender_example_test.py PACKAGE PROJECT, where PACKAGE is the folder with the module.

At keys only: between them Blender moves and turns cameras in its own way.
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


def check_words(example, folder, package):
    """Relative paths, and what the example refuses: with a message, a code and no file."""
    scene = folder / "turned.aec"
    (folder / "link.blend").symlink_to(scene)
    (folder / "broken.aec").write_text(TURNED[:-2])
    before = sorted(folder.iterdir())
    for words, message in (
        (["turned.aec", "turned.aec"], "turned.aec is the scene itself"),
        (["turned.aec", "link.blend"], "link.blend is the scene itself"),
        (["broken.aec", "out.blend"], "SceneError: broken.aec"),
        (["none.aec", "out.blend"], "SceneError: none.aec"),
        (["turned.aec", "none/out.blend"], "none/out.blend"),
        (["turned.aec"], "usage:"),
    ):
        done = run_blender(example, *words, folder=folder, PYTHONPATH=str(package))
        if done.returncode == 0 or message not in done.stdout + done.stderr:
            sys.exit(f"error: {words} ends with {done.returncode} and without {message!r}: {done.stdout}{done.stderr}")
        if sorted(folder.iterdir()) != before or scene.read_text() != TURNED:
            sys.exit(f"error: {words} leaves {sorted(folder.iterdir())}, or another scene")
    done = run_blender(example, "turned.aec", "out.blend", folder=folder, PYTHONPATH=str(package))
    if done.returncode != 0 or not (folder / "out.blend").is_file():
        sys.exit(f"error: relative paths: {done.stdout}{done.stderr}")


def main():
    package, project = (Path(word).absolute() for word in sys.argv[1:3])
    example = project / "examples/python/blender_scene.py"
    comparison = Comparison()
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        (folder / "turned.aec").write_text(TURNED)
        check_words(example, folder, package)
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
            done = run_blender(example, path, built, PYTHONPATH=str(package))
            if done.returncode != 0:
                sys.exit(f"error: the example failed for {path.name}: {done.stdout[-2000:]}{done.stderr[-2000:]}")
            # A file of Blender has its size, aspect and rate in it, and its frames are those of the scene.
            comparison.add(built, {"width": scene.width, "height": scene.height, "first": 0, "cameras": cameras}, truth)
    comparison.judge(100)


if __name__ == "__main__":
    main()
