#!/usr/bin/env python3
"""Lets the stand-in for After Effects answer the questions of `vxr proof --for-after-effects`:
run_measurements.py VXR BUNDLE NODE DUK NODE_MODULES.

Expected numbers are worked out here, on paper, from docs/handover.md and the rules of ae_expressions.js; none is from a run.
"""

import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
VXR, BUNDLE, NODE, DUK, MODULES = sys.argv[1:6]
VERSIONS = ["8.0", "26.0"]

# Seen at 90 degrees from the origin, 400 pixels are 200 wide at a depth of 200: f is 200. The null at (100, 50, 1000) is
# at (200 + 200 * 100 / 1000, 150 - 200 * 50 / 1000) = (220, 140).
PLAIN = """VORTAN XR COMPOSITION
RESOLUTION 400 300 FROM 3 TO 5 RANGE 9 FPS 25
COMPOSITION NRM "Plain" { }
CAMERA "c" {
KEY 3 0 0 0 0 0 0 90 1000
}
NULL "n" {
KEY 3 100 50 1000 0 0 0
}
"""

failures = []


def expect(what, holds, seen=""):
    if not holds:
        failures.append(f"{what} {seen}")


def run(command, allowed=(0,)):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True)
    if done.returncode not in allowed:
        sys.exit(f"{' '.join(map(str, command[:4]))} ended with {done.returncode}\n{done.stdout[-4000:]}{done.stderr[-4000:]}")
    return done.stdout


def write_script(folder, scene):
    script = folder / (scene.stem + ".jsx")
    run([VXR, "proof", scene, "--bundle", BUNDLE, "--for-after-effects", script])
    return script


def measured(folder, script, name, rules=None):
    """The table that After Effects writes if it does as the rules say."""
    table = folder / f"{script.stem}.{name}.tsv"
    run([NODE, HERE / "run_measurement.js", MODULES, script, table, json.dumps(rules or {})])
    return table


def rows(table, *begin):
    lines = [line.split("\t") for line in table.read_text().splitlines()]
    return [line[len(begin):] for line in lines if tuple(line[:len(begin)]) == begin]


def near(cells, *wanted):
    return len(cells) == len(wanted) and all(abs(float(one) - two) < 1e-6 for one, two in zip(cells, wanted))


def check_plain(folder):
    scene = folder / "plain.aec"
    scene.write_text(PLAIN)
    table = measured(folder, write_script(folder, scene), "usual")
    for target in ("corrected", "imported"):
        points = rows(table, "point", target, "0", "0")
        expect(f"the null of the {target} scene is at 220, 140", near(points[-1][1:], 220, 140), points[-1])
        # The grid is as many points along each side, and then the corners at half the distance: left and low first.
        corner = points[-1 - 12]
        expect(f"the corner of the {target} scene is at 0, 300", near(corner[1:], 0, 300), corner)
        expect("at least 200 points", len(rows(table, "point", target)) >= 200)
    lines = table.read_text().splitlines()
    expect("the last line counts those before it", lines[-1] == f"end\t{len(lines) - 1}", lines[-1])


def check_without_camera(folder):
    scene = folder / "nothing.aec"
    scene.write_text(PLAIN.split("CAMERA")[0])
    script = write_script(folder, scene)
    table = measured(folder, script, "usual")
    expect("without a camera there are trials", not rows(table, "point") and len(rows(table, "trial")) == 8)
    # The smallest script, because duk is slow in what a stand-in needs.
    if DUK and "NOTFOUND" not in DUK:
        check_duk(folder, script, table)


def check_types(folder, script):
    """Types are comments in the script, so that the script is its own typed twin."""
    twin = folder / "twin.js"
    twin.write_bytes(script.read_bytes())
    for version in VERSIONS:
        config = folder / f"types-{version}.json"
        config.write_text(json.dumps({
            "compilerOptions": {"noLib": True, "checkJs": True, "allowJs": True, "noEmit": True, "types": [],
                                "strict": False, "target": "es5", "ignoreDeprecations": "5.0"},
            "files": [str(twin), f"{Path(MODULES).resolve()}/types-for-adobe/AfterEffects/{version}/index.d.ts"]}))
        run([NODE, f"{MODULES}/typescript/lib/tsc.js", "-p", config])


def check_duk(folder, script, table):
    """node is not the only engine. Its numbers may differ in the last digits."""
    runner = folder / "duk.js"
    runner.write_text(
        (HERE / "ae_mock.js").read_text() + (HERE / "ae_expressions.js").read_text() +
        "\nvar host = makeHost({expressions: makeExpressions({add: 'mixed', multiply: 'mixed'})});\nhost.run(" +
        json.dumps(script.read_text(encoding="ascii")) + ");\nprint(host.state.written['/scripts/scene-measured.tsv']);\n")
    other = run([DUK, runner]).strip().splitlines()
    lines = table.read_text().splitlines()
    rounded = lambda text: re.sub(r"-?\d+\.\d+(e-\d+)?", lambda number: f"{float(number[0]):.6f}", text)
    expect("duk writes the same table", list(map(rounded, other)) == list(map(rounded, lines)), other[:3])


def main():
    with tempfile.TemporaryDirectory(prefix="measure") as temporary:
        folder = Path(temporary).resolve()
        check_plain(folder)
        check_without_camera(folder)
        courtyard = write_script(folder, ROOT / "examples/square/courtyard_020.aec")
        measured(folder, courtyard, "forbidden", {"host": {"writingForbidden": True}})
        check_types(folder, courtyard)
    for failure in failures:
        print(failure, file=sys.stderr)
    print(f"measured in the stand-in, {len(failures)} failures")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
