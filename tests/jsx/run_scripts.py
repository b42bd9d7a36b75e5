#!/usr/bin/env python3
"""Runs the scripts of scenes in the stand-in for After Effects: run_scripts.py VXR BUNDLE NODE DUK NODE_MODULES COUNT [SEED].

The scenes are the examples and COUNT generated ones. `vxr export` writes the scripts, `vxr import --json` the projects that
the plug-in builds; check_scripts.js runs them and compares the imported ones, in one process for all; corrected_project.py
compares the corrected ones with what the scenes' text says. tsc checks some of the scripts against the
typings of four versions of After Effects, and duk runs the same ones, because node is not the only engine.
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

import corrected_project

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
VERSIONS = ["8.0", "13.8", "22.0", "26.0"]


def run(command, allowed=(0,)):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True)
    if done.returncode not in allowed:
        sys.exit(f"{command[0]} ended with {done.returncode}\n{done.stdout[-4000:]}{done.stderr[-4000:]}")
    return done.stdout


def check_types(node, modules, folder, scripts):
    """Types are comments in the script, so that the script is its own typed twin."""
    for version in VERSIONS:
        files = []
        for script in scripts:
            twin = folder / "typed" / (script.stem + ".js")
            twin.parent.mkdir(exist_ok=True)
            # Each a module's worth of names: the scripts declare nothing outside their function.
            twin.write_bytes(script.read_bytes())
            files.append(str(twin))
        typings = Path(modules) / "types-for-adobe" / "AfterEffects" / version / "index.d.ts"
        config = folder / f"types-{version}.json"
        config.write_text(json.dumps({
            "compilerOptions": {"noLib": True, "checkJs": True, "allowJs": True, "noEmit": True, "types": [],
                                "strict": False, "target": "es5", "ignoreDeprecations": "5.0"},
            "files": files + [str(typings)]}))
        run([node, Path(modules) / "typescript" / "lib" / "tsc.js", "-p", config])


def check_duk(duk, folder, scripts):
    for script in scripts:
        runner = folder / "duk.js"
        text = script.read_text(encoding="ascii")
        runner.write_text((HERE / "ae_mock.js").read_text() +
                          "\nvar host = makeHost({files: {}});\nhost.run(" + json.dumps(text) + ");\n"
                          "var first = host.state.changes;\nhost.run(" + json.dumps(text) + ");\n"
                          "if (host.state.changes !== first) { throw new Error('the second run changed something'); }\n"
                          "print(host.state.items.length, first, host.state.alerts[0].split('\\n')[0]);\n")
        if "has arrived" not in run([duk, runner]):
            sys.exit(f"{script.name}: duk did not rebuild it")


def write_scripts(vxr, bundle, output, scenes):
    """In one process for all; 4: placeholders stand in for missing footage, as in many of the generated scenes."""
    for version in ("imported", "corrected"):
        (output / (version + ".json")).write_text(run(
            [vxr, "export", "--to", "jsx", "--as", version, "--json", "--bundle", bundle, "--out-dir", output / version] + scenes, (0, 4)))
    documents = run([vxr, "import", "--json", "--bundle", bundle] + scenes, (0, 4))
    (output / "projects").mkdir()
    at = 0
    for scene in scenes:
        # One after the other.
        at = documents.index("{", at)
        document, at = json.JSONDecoder().raw_decode(documents, at)
        (output / "projects" / (scene.stem + ".json")).write_text(json.dumps(document))


def check_corrected(folder, scenes):
    failed, points, worst = [], 0, 0.0
    exported = json.loads((folder / "corrected.json").read_text())["scenes"]
    for scene, said in zip(scenes, exported, strict=True):
        assert said["scene"] == str(scene)
        built = json.loads((folder / "corrected" / (scene.stem + ".json")).read_text())
        found, count, distance = corrected_project.compare(scene, built, said["losses"])
        points += count
        worst = max(worst, distance)
        if found:
            failed.append("\n    ".join([str(scene)] + found[:10]))
    print(f"{len(scenes) - len(failed)} of {len(scenes)} corrected scripts built what the scene says; "
          f"{points} points are at most {worst:.4f} pixels away")
    if failed:
        sys.exit("\n".join(failed))
    if points == 0:
        sys.exit("no camera was compared")


def main():
    vxr, bundle, node, duk, modules, count = sys.argv[1:7]
    modules = Path(modules).resolve()
    seed = sys.argv[7] if len(sys.argv) > 7 else "1"
    with tempfile.TemporaryDirectory(prefix="jsx") as temporary:
        folder = Path(temporary).resolve()
        generated = folder / "scenes"
        generated.mkdir()
        run([sys.executable, ROOT / "tests/support/generated_scenes.py", generated, count, seed])
        scenes = sorted((ROOT / "examples").glob("*/*.aec")) + sorted(generated.glob("*/*.aec"))
        if len(scenes) < int(count) + 4:
            sys.exit(f"{len(scenes)} scenes are too few")
        output = folder / "out"
        write_scripts(vxr, bundle, output, scenes)
        (output / "scenes.txt").write_text("\n".join(map(str, scenes)) + "\n")
        print(run([node, HERE / "check_scripts.js", modules, output]), end="")
        check_corrected(output, scenes)
        # The examples, and a share of the others.
        some = [output / "imported" / (scene.stem + ".jsx") for scene in scenes[:4] + scenes[4::25]]
        # The runtime is the same in all.
        check_types(node, modules, output, some[:1])
        if duk and "NOTFOUND" not in duk:
            check_duk(duk, output, some)


if __name__ == "__main__":
    main()
