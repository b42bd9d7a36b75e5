"""Walks a folder and writes a table of its scenes: one row each, for a spreadsheet.

    python3 scene_table.py FOLDER > scenes.csv
"""

import csv
import pathlib
import sys

import vortanxr as vx

table = csv.writer(sys.stdout)
table.writerow(["scene", "verdict", "size", "frames", "fps", "cameras", "keys", "footage", "missing"])
for path in sorted(pathlib.Path(sys.argv[1]).rglob("*.aec")):
    try:
        scene = vx.read_scene(path)
    except vx.SceneError as error:
        table.writerow([path, f"refused: {error}"])
        continue
    missing = [one for one in scene.footage if one.finding is None or one.finding.outcome != "found"]
    table.writerow(
        [
            path,
            "incomplete" if missing else "ok",
            f"{scene.width}x{scene.height}",
            f"{scene.first_frame}-{scene.last_frame}",
            scene.fps,
            len(scene.cameras),
            sum(len(one.frames) for one in scene.objects),
            len(scene.footage),
            len(missing),
        ]
    )
