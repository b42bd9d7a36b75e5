#!/usr/bin/env python3
"""Lets Blender read glTF files and compares where it puts points with where the scene does: blender_test.py VXR PROJECT.

The examples and generated scenes, at frames with keys and between them. Of cameras whose angle of view changes only the first
frame is compared, because Blender reads no KHR_animation_pointer.
"""

import json
import math
import os
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from scene_truth import Scene, Track, frame_points, moments  # noqa: E402

GOAL_PX = 0.05


def main():
    vxr, project = (Path(word).absolute() for word in sys.argv[1:3])
    compared, worst = 0, (0, "")
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        subprocess.run([sys.executable, "-B", project / "tests/support/generated_scenes.py", folder / "scenes", "12"], check=True)
        for path in sorted((project / "examples").glob("*/*.aec")) + sorted((folder / "scenes").glob("*/*.aec")):
            scene = Scene(path)
            subprocess.run([vxr, "export", path, "--to", "gltf", "--out-dir", folder], capture_output=True, check=False)
            file = folder / f"{path.stem}.gltf"
            document = json.loads(file.read_text())
            scale = document["asset"]["extras"]["scale"]
            nodes = [node for node in document.get("nodes", []) if "camera" in node]
            cameras, truth = [], []
            for node, keys in zip(nodes, scene.of_kind("CAMERA"), strict=True):
                if not keys:
                    continue
                track = Track(keys)
                stands = len({key[7] for key in keys}) == 1
                asked = []
                for frame in moments(track, scene) if stands else [scene.begin]:
                    points = list(frame_points(scene, track.at(frame)))
                    asked.append({"frame": frame, "points": [[scale * x, scale * y, -scale * z] for (x, y, z), _ in points]})
                    truth += [(wanted, f"{path.name} at frame {frame}") for _, wanted in points]
                cameras.append({"id": node["extras"]["id"], "moments": asked})
            if not cameras:
                continue
            wanted = folder / "points.json"
            wanted.write_text(json.dumps({"width": scene.width, "height": scene.height, "aspect": scene.aspect,
                                          "rate": scene.rate, "first": scene.begin, "cameras": cameras}))
            # Blender takes its modules from beside the first python3 in PATH, which must be the system's.
            system = {**os.environ, "PATH": "/usr/bin:/bin"}
            done = subprocess.run(["blender", "-b", "--factory-startup", "-P", Path(__file__).parent / "blender_read.py", "--",
                                   file, wanted], capture_output=True, text=True, check=False, env=system)
            lines = [line for line in done.stdout.splitlines() if line.startswith("RESULT ")]
            if not lines:
                sys.exit(f"error: Blender did not read {file.name}: {done.stdout[-2000:]}{done.stderr[-2000:]}")
            for shown, (place, where) in zip(json.loads(lines[0][7:]), truth, strict=True):
                compared += 1
                worst = max(worst, (math.dist(shown, place), where))
    print(f"{compared} points; largest distance {worst[0]:.5f} px, {worst[1]}")
    if compared < 500 or not worst[0] <= GOAL_PX:
        sys.exit(f"error: more than {GOAL_PX} px")


if __name__ == "__main__":
    main()
