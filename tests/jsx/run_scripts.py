#!/usr/bin/env python3
"""Runs the scripts of scenes in the stand-in for After Effects: run_scripts.py VXR BUNDLE NODE DUK NODE_MODULES COUNT [SEED].

The scenes are the examples and COUNT generated ones. `vxr export` writes the scripts, `vxr import --json` the projects that
the plug-in builds; check_scripts.js runs and compares, in one process for all. tsc checks some of the scripts against the
typings of four versions of After Effects, and duk runs the same ones, because node is not the only engine.
"""

import json
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

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
        output.mkdir()
        # 4: footage is missing and placeholders stand in, as in many of the generated scenes.
        def write(scene):
            run([vxr, "export", "--to", "jsx", "--as", "imported", "--bundle", bundle, "-o", output / (scene.stem + ".jsx"), scene],
                (0, 4))
            run([vxr, "export", "--to", "jsx", "--bundle", bundle, "-o", output / (scene.stem + ".corrected.jsx"), scene], (0, 4))
            (output / (scene.stem + ".json")).write_text(run([vxr, "import", "--json", "--bundle", bundle, scene], (0, 4)))

        with ThreadPoolExecutor(2) as workers:
            list(workers.map(write, scenes))
        (output / "scenes.txt").write_text("\n".join(map(str, scenes)) + "\n")
        print(run([node, HERE / "check_scripts.js", modules, output]), end="")
        some = [output / (scene.stem + ".jsx") for scene in scenes[:4]]
        # The runtime is the same in all.
        check_types(node, modules, output, some[:1])
        if duk and "NOTFOUND" not in duk:
            check_duk(duk, output, some)


if __name__ == "__main__":
    main()
