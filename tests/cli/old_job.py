#!/usr/bin/env python3
"""Makes a job as it comes from an archive: old_job.py FOLDER [SCENES].

FOLDER/job has the scenes, with the paths of Windows, of servers, of classic Mac OS and of Unix in three encodings. FOLDER/disk
has their pictures where they are today. FOLDER/expected.json says what has become of every path, which this script knows
because it put it there: outcome, rule and file. FOLDER/planted.json says how many places of each code a check of the job
as it lies there must find.
"""

import json
import sys
from collections import Counter
import unicodedata
from pathlib import Path

ROOTS = [("C:\\Renders\\", "\\"), ("\\\\FARM\\renders\\", "\\"), ("Macintosh HD:Renders:", ":"), ("/net/renders/", "/")]
PICTURE = bytes([0, 0, 2] + [0] * 9 + [4, 0, 4, 0, 24, 0]) + bytes(48)


class Job:
    def __init__(self, folder):
        self.folder = folder
        self.expected = {}
        # Of footage, only what lies beside its scene is found without a search.
        self.planted = Counter()
        (folder / "job").mkdir(parents=True)

    def picture(self, *parts):
        path = self.folder.joinpath(*parts)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(PICTURE)
        return str(path)

    def scene(self, i):
        """One scene: its text, and what is expected of each path."""
        root, separator = ROOTS[i % len(ROOTS)]
        shot = [f"show{i % 7}", f"shot_{i:03}"]
        entries = []

        def add(kind, names, outcome, rule=None, result=None, written=None):
            path = written if written is not None else (root + separator.join(names)).encode()
            entries.append((kind, path, {"written": path.hex(), "outcome": outcome, "rule": rule, "result": result}))

        def found(kind, name, rule, on_disk=None, written=None):
            result = self.picture("disk", "archive", *shot, on_disk or name)
            add(kind, [*shot, name], "found", rule, result, written)

        found("FILE", f"bg_{i:03}.tga", "tail")
        # One name in every shot: only its folder tells which.
        found("FILE", "plate.tga", "tail")
        if i % 5 == 0:
            self.picture("disk", "archive", *shot, "glow.0004.tga")
            found("FSEQ", "glow.0001.tga", "other-frame", "glow.0003.tga")
        else:
            self.picture("disk", "archive", *shot, "glow.0002.tga")
            found("FSEQ", "glow.0001.tga", "tail")
        accents = f"K\u00fcche {i:03}.tga"
        encoding = ["utf-8", "mac_roman", "cp1252"][i % 3]
        rule = ["unicode-form", "mac-roman", "windows-1252"][i % 3]
        on_disk = unicodedata.normalize("NFD", accents) if i % 3 == 0 else accents
        found("FILE", accents, rule, on_disk, (root + separator.join([*shot, accents])).encode(encoding))
        if i % 10 == 3:
            found("FILE", f"LOGO_{i:03}.TGA", "letter-case", f"logo_{i:03}.tga")
        if i % 10 == 4:
            found("FILE", f"Plate of shot {i:03} for#1A2B.tga", "cut-name", f"Plate of shot {i:03} for the new version.tga")
        if i % 10 == 7:
            add("FILE", [*shot, f"gone_{i:03}.tga"], "missing")
        if i % 10 == 8:
            self.picture("disk", "archive", "x", f"twin_{i:03}.tga")
            self.picture("disk", "backup", "y", f"twin_{i:03}.tga")
            add("FILE", [*shot, f"twin_{i:03}.tga"], "ambiguous", "tail")
        if i % 6 == 1:
            result = self.picture("disk", "vault", str(i), f"matte_{i:03}.tga")
            add("FILE", [], "found", "map", result, f"Q:\\Vault\\{i}\\matte_{i:03}.tga".encode())
        if i % 6 == 2:
            result = self.picture("job", f"note_{i:03}.tga")
            add("FILE", [*shot, f"note_{i:03}.tga"], "found", "beside-scene", result)
        rate, aspect, lights = b"25", b"", b""
        if i % 12 == 1:
            rate = b"29.97"
            self.planted["value-changed"] += 1
        if i % 15 == 2:
            aspect = b"ASPECT 1.0667\n"
            self.planted["aspect-cut"] += 1
        if i % 6 == 3:
            lights = b'LIGHT "Key" { TYPE SPOT SHADOW SOFT KEY 0 0 0 0 0 0 0 }\n'
            self.planted["shadow-kind-not-sent"] += 1
        self.planted["footage-missing"] += sum(expected["rule"] != "beside-scene" for _, _, expected in entries)
        text = b"VORTAN XR COMPOSITION\nRESOLUTION 4 4\n" + aspect
        text += b"FROM 0 TO 7 RANGE 8 FPS " + rate + b"\nCOMPOSITION NRM \"Main\" {\n"
        for kind, path, _ in entries:
            text += kind.encode() + b' NRM STRAIGHT "' + path + b'"\n'
        name = f"scene_{i:03}.aec"
        (self.folder / "job" / name).write_bytes(text + b"}\n" + lights)
        self.expected[name] = [expected for _, _, expected in entries]


def main():
    folder = Path(sys.argv[1])
    job = Job(folder)
    for i in range(int(sys.argv[2]) if len(sys.argv) > 2 else 300):
        job.scene(i)
    (folder / "planted.json").write_text(json.dumps(job.planted), encoding="utf-8")
    (folder / "expected.json").write_text(json.dumps(job.expected), encoding="utf-8")


main()
