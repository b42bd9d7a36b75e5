#!/usr/bin/env python3
"""Lets Blender read glTF files and compares where it puts points with where the scene does: blender_test.py VXR PROJECT.

The examples and generated scenes, at frames with keys and between them. Of cameras whose angle of view changes only the first
frame is compared, because Blender reads no KHR_animation_pointer.
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from blender_points import Comparison  # noqa: E402
from scene_truth import Scene, Track, frame_points, moments  # noqa: E402


def main():
    vxr, project = (Path(word).absolute() for word in sys.argv[1:3])
    comparison = Comparison()
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
            comparison.add(file, {"width": scene.width, "height": scene.height, "aspect": scene.aspect, "rate": scene.rate,
                                  "first": scene.begin, "cameras": cameras}, truth)
    comparison.judge(500)


if __name__ == "__main__":
    main()
