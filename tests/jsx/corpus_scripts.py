#!/usr/bin/env python3
"""Runs what the fuzzers keep through the writers: corpus_scripts.py VXR BUNDLE NODE NODE_MODULES FUZZ [MOST].

FUZZ is the folder of the fuzzers. Their inputs for `composition` and, behind three bytes of options, for `handover` are scenes.
Each that the plug-in imports is written as a script, imported and corrected, and as glTF. The scripts are parsed and run twice in
the stand-in for After Effects, and gltf-validator reads the glTF. At most MOST scenes are taken, spread over the inputs.
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
SECONDS = 60


def run(command):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, errors="replace", timeout=SECONDS)
    return done.returncode, done.stdout + done.stderr


def main():
    vxr, bundle, node, modules, fuzz = sys.argv[1:6]
    modules = Path(modules).resolve()
    most = int(sys.argv[6]) if len(sys.argv) > 6 else 300
    inputs = [(path, options) for target, options in (("composition", 0), ("handover", 3)) for part in ("corpus", "regress")
              for path in sorted((Path(fuzz) / part / target).glob("*")) if path.is_file()]
    inputs = inputs[:: 1 + (len(inputs) - 1) // most]
    written, failures = 0, []
    with tempfile.TemporaryDirectory(prefix="corpus") as temporary:
        folder = Path(temporary).resolve()
        scene = folder / "scene.aec"
        for one, options in inputs:
            scene.write_bytes(one.read_bytes()[options:])
            for form, version in (("jsx", "imported"), ("jsx", "corrected"), ("gltf", "corrected")):
                out = folder / f"out.{form}"
                out.unlink(missing_ok=True)
                code, said = run([vxr, "export", "--to", form, "--as", version, "--bundle", bundle, "-o", out, scene])
                # 1 and 3: the scene is refused, which is said; 4: footage is missing.
                if code not in (0, 1, 3, 4) or out.exists() != (code in (0, 4)) or (code in (1, 3) and not said):
                    failures.append(f"{one.name}: vxr export --to {form} --as {version} ended with {code}: {said[-500:]}")
                if not out.exists():
                    continue
                written += 1
                if form == "jsx":
                    code, said = run([node, HERE / "run_script.js", modules, out])
                    sound = code == 0 and '"changesOfSecondRun":0' in said
                else:
                    code, said = run([node, HERE.parent / "scene3d/validate_gltf.mjs", modules, out])
                    sound = code == 0 and json.loads(said)[0]["errors"] == []
                if not sound:
                    failures.append(f"{one.name}: the {version} {form} is not sound: {said[-500:]}")
    print(f"{len(inputs)} inputs, {written} files written and read, {len(failures)} failures")
    if failures or written == 0:
        sys.exit("\n".join(failures[:20]) or "nothing was written")


if __name__ == "__main__":
    main()
