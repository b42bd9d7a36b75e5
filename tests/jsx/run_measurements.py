#!/usr/bin/env python3
"""Lets the stand-in for After Effects answer the questions of `vxr proof --for-after-effects`:
run_measurements.py VXR BUNDLE NODE DUK NODE_MODULES.

Expected numbers are worked out here, on paper, from docs/handover.md and the rules of ae_expressions.js; none is from a run.
"""

import json
import re
import struct
import subprocess
import sys
import tempfile
import zlib
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


def measured(folder, script, *rules):
    """The tables that After Effects writes if it does as each of the rules says; without rules as it is thought of."""
    tables = [folder / f"{script.stem}.{number}.tsv" for number in range(max(len(rules), 1))]
    runs = [[str(table), rule] for table, rule in zip(tables, rules or ({},))]
    run([NODE, HERE / "run_measurement.js", MODULES, script, json.dumps(runs)])
    return tables


def rows(table, *begin):
    lines = [line.split("\t") for line in table.read_text().splitlines()]
    return [line[len(begin):] for line in lines if tuple(line[:len(begin)]) == begin]


def compared(scene, table, codes):
    """The member "measured" of what `vxr proof --compare` says."""
    document = json.loads(run([VXR, "proof", scene, "--bundle", BUNDLE, "--compare", table, "--json"], codes))
    return document["measured"]


def near(cells, *wanted):
    return len(cells) == len(wanted) and all(abs(float(one) - two) < 1e-6 for one, two in zip(cells, wanted))


def check_plain(folder):
    scene = folder / "plain.aec"
    scene.write_text(PLAIN)
    table = measured(folder, write_script(folder, scene))[0]
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
    table = measured(folder, script)[0]
    expect("without a camera there are trials", not rows(table, "point") and len(rows(table, "trial")) == 8)
    # The smallest script, because duk is slow in what a stand-in needs.
    if DUK and "NOTFOUND" not in DUK:
        check_duk(folder, script, table)


# What After Effects may do, and what is then the answer to each of the open questions. A star marks what this system does
# not take it to be.
DECISIONS = [
    ({}, {"space-aspect": "pixels", "bank-sense": "clockwise", "new-camera": "aimed", "partial-add": "mixed",
          "partial-multiply": "mixed", "texture-alpha": "premultiplied"}),
    ({"stretch": True, "host": {"newCameras": "one-node"}, "add": "summed", "multiply": "inside", "textureAlpha": "straight"},
     {"space-aspect": "stretched", "bank-sense": "clockwise", "new-camera": "straight", "partial-add": "*summed",
      "partial-multiply": "*inside", "texture-alpha": "*straight"}),
    ({"bank": "other", "add": "covered", "textureAlpha": "ignored"},
     {"space-aspect": "pixels", "bank-sense": "*counter-clockwise", "new-camera": "aimed", "partial-add": "*covered",
      "partial-multiply": "mixed", "texture-alpha": "*ignored"}),
]

# An expression that fails, or a setting, and the questions to which the table then says nothing.
SILENCES = [
    ({"failing": "sampleImage"}, {"partial-add", "partial-multiply", "texture-alpha"}),
    ({"host": {"linearBlending": True}}, {"partial-add", "partial-multiply", "texture-alpha"}),
    ({"failing": "toComp"}, {"space-aspect", "bank-sense", "new-camera"}),
    ({"files": {}}, {"texture-alpha"}),
]

HALF = (60, 90, 20, 120)


def write_texture(folder):
    """8 x 8 pixels, half covered, premultiplied."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    image = folder / "half.png"
    image.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 8, 8, 8, 6, 0, 0, 0)) +
                      chunk(b"IDAT", zlib.compress((b"\0" + bytes(HALF) * 8) * 8)) + chunk(b"IEND", b""))
    run([VXR, "texture", "convert", image, "-o", folder / "half.txl"])
    return folder / "half.txl"


def check_answers(folder):
    texture = write_texture(folder)
    scene = folder / "banked.aec"
    # Pixels that are not square, and a camera that is turned and banks: what is corrected depends on the bank alone.
    scene.write_text(PLAIN.replace("FPS 25", "FPS 25 ASPECT 1.5").replace('"Plain" { }', '"Plain" {\nFILE NRM PREMUL "half.txl"\n}')
                     .replace("KEY 3 0 0 0 0 0 0 90", "KEY 3 0 0 0 20 10 15 90"))
    script = write_script(folder, scene)
    stored = [number / 255 for number in HALF]
    files = {str(texture): {"width": 8, "height": 8, "alpha": True, "texel": stored}}
    tables = measured(folder, script, *({"files": files, **rules} for rules, _ in DECISIONS + SILENCES))
    for table, (rules, answers) in zip(tables, DECISIONS):
        starred = any(answer.startswith("*") for answer in answers.values())
        result = compared(scene, table, (5,) if starred else (0,))
        for one in result["questions"]:
            seen = (one["verdict"], ("*" if one["contradicts"] else "") + one["answer"])
            expect(f"{rules}: {one['question']}", seen == ("settled", answers[one["question"]]), seen)
        corrected, imported = result["cameras"][0]["targets"]
        banks = rules.get("bank") == "other"
        expect(f"{rules}: what is corrected depends on the bank alone", corrected["meets_goal"] != banks, corrected)
        if not banks:
            models = {model["model"]: model["largest_px"] for model in imported["models"]}
            fitting = "imported, stretched" if rules.get("stretch") else "imported"
            expect(f"{rules}: the model '{fitting}' is what was measured", models.pop(fitting) < 1e-6, imported)
            expect(f"{rules}: and the other one is not", min(models.values()) > 1, imported)
    for table, (rules, silent) in zip(tables[len(DECISIONS):], SILENCES):
        result = compared(scene, table, (5,) if rules.get("failing") == "toComp" else (0,))
        untold = {one["question"] for one in result["questions"] if one["verdict"] == "untold"}
        expect(f"{rules} leaves open", untold == silent, untold)
    # Something that nobody has thought of.
    other = re.sub(r"^(color\tadd-partial\tblack\t)[^\t]*", r"\g<1>0.45", tables[0].read_text(), flags=re.MULTILINE)
    (folder / "other.tsv").write_text(other)
    another = {one["question"]: one["verdict"] for one in compared(scene, folder / "other.tsv", (5,))["questions"]}
    expect("another Add is said", another["partial-add"] == "another" and another["partial-multiply"] == "settled", another)
    # The script of a scene does not fit another one, nor the scene after a change.
    elsewhere = folder / "elsewhere.aec"
    elsewhere.write_text(scene.read_text())
    for changed, reason in ((elsewhere, "line 2: the table belongs to another scene"), (scene, "line 3: the scene or this program has changed")):
        if changed == scene:
            scene.write_text(scene.read_text().replace("1000\n", "1001\n"))
        done = subprocess.run([VXR, "proof", changed, "--bundle", BUNDLE, "--compare", folder / "other.tsv"], capture_output=True, text=True)
        expect(reason, done.returncode == 1 and reason in done.stderr and not done.stdout, done.stderr)


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
        check_answers(folder)
        courtyard = write_script(folder, ROOT / "examples/square/courtyard_020.aec")
        measured(folder, courtyard, {}, {"host": {"writingForbidden": True}})
        check_types(folder, courtyard)
    for failure in failures:
        print(failure, file=sys.stderr)
    print(f"measured in the stand-in, {len(failures)} failures")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
