#!/usr/bin/env python3
"""Lets `vxr proof` compare generated scenes: generated_scenes_test.py VXR PROJECT COUNT.

What is corrected is within 0.05 pixels of the scene at every whole frame, for every camera, with every point there; in glTF,
where places and times have seven digits, or else `vxr export` names the camera with `handover-rounded`. Between whole frames,
which nobody judges but motion blur shows, the corrected project and USD are within 0.1 pixels.
"""

import json
import os
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

GOAL_PX = 0.05
BETWEEN_FRAMES_PX = 0.1
EXACT = ("corrected", "corrected, stretched", "USD")


def run(*words):
    done = subprocess.run([str(word) for word in words], capture_output=True, text=True, check=False)
    if not done.stdout:
        sys.exit(f"error: {words} ended with {done.returncode}: {done.stderr}")
    return json.loads(done.stdout)


def main():
    vxr, project = (Path(word).absolute() for word in sys.argv[1:3])
    count = int(sys.argv[3])
    faults, compared, named = [], 0, 0
    frames, between = {}, {}
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        subprocess.run([sys.executable, "-B", project / "tests/support/generated_scenes.py", folder / "scenes", str(count)], check=True)
        scenes = sorted((folder / "scenes").glob("*/*.aec"))
        exported = run(vxr, "export", *scenes, "--to", "glb", "--out-dir", folder / "glb", "--json")["scenes"]
        rounded = [[loss["reason"] for loss in one["losses"] if loss["code"] == "handover-rounded"] for one in exported]
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            proofs = list(pool.map(lambda path: run(vxr, "proof", path, "--json", "--points", "8"), scenes))
    for path, proof, reasons in zip(scenes, proofs, rounded, strict=True):
        if proof["problems"]:
            faults.append(f"{path.name}: {proof['problems']}")
        for camera in proof["cameras"]:
            for target in camera["targets"]:
                if not target["judged"] or not camera["keys"]:
                    continue
                name, where = target["target"], f"{path.name}, {camera['name']!r}, {target['target']}"
                if target["problem"] or target["lost"]:
                    faults.append(f"{where}: {target['problem']}, {target['lost']} points lost")
                    continue
                compared += target["compared"]
                largest = max(target["at_keys_px"], target["at_frames_px"])
                if name == "glTF" and any(f'"{camera["name"]}"' in reason for reason in reasons):
                    named += 1
                    continue
                frames[name] = max(frames.get(name, (0, "")), (largest, where))
                between[name] = max(between.get(name, (0, "")), (target["between_frames_px"], where))
                if not largest <= GOAL_PX:
                    faults.append(f"{where}: {largest} pixels")
                if name in EXACT and not target["between_frames_px"] <= BETWEEN_FRAMES_PX:
                    faults.append(f"{where}: {target['between_frames_px']} pixels between frames")
    print(f"{count} scenes, {compared} points compared, {named} cameras in glTF with a loss of digits that is named")
    for name in frames:
        print(f"{name}: at whole frames {frames[name][0]:.4f} px ({frames[name][1]}), between {between[name][0]:.4f} px ({between[name][1]})")
    if faults:
        sys.exit("\n".join(["error: not as the scene says:", *faults]))
    if compared < 500 * count or set(frames) != {"corrected", "corrected, stretched", "glTF", "USD"}:
        sys.exit("error: too little was compared")


if __name__ == "__main__":
    main()
