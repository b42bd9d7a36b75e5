#!/usr/bin/env python3
"""version_test.py CMAKELISTS BUNDLE VXR: what Windows shows under Properties, Details, is the version of the project."""
import re
import struct
import subprocess
import sys
import unittest
from pathlib import Path

from portable_executable import PortableExecutable

WINE = Path(__file__).resolve().parents[2] / "script" / "wine"
VERSION = re.search(r"^project\(\S+ VERSION (\d+\.\d+\.\d+)", Path(sys.argv[1]).read_text(encoding="utf-8"), re.MULTILINE)[1]
FILES = {"VORTANXR_AE.aex": sys.argv[2], "vxr.exe": sys.argv[3]}
LIBRARY, PROGRAM = 2, 1
VERSION_RESOURCE = 16


def block(data, at=0):
    """A block of a version resource: its name, its own bytes, the blocks in it, and where the next one begins."""
    length, value_length, is_text = struct.unpack_from("<HHH", data, at)
    name_end = at + 6
    while data[name_end:name_end + 2] != b"\0\0":
        name_end += 2
    name = data[at + 6:name_end].decode("utf-16-le")
    value_at = (name_end + 2 + 3) // 4 * 4
    value = data[value_at:value_at + value_length * (2 if is_text else 1)]
    child, blocks = (value_at + len(value) + 3) // 4 * 4, []
    while child < at + length:
        inner = block(data, child)
        blocks.append(inner)
        child = (inner[3] + 3) // 4 * 4
    return name, value, blocks, at + length


def version_of(path):
    resources = PortableExecutable(path).resources()
    [data] = [data for (kind, number, _), data in resources.items() if (kind, number) == (VERSION_RESOURCE, 1)]
    name, fixed, blocks, _ = block(data)
    inner = {one[0]: one for one in blocks}
    [table] = inner["StringFileInfo"][2]
    texts = {text: value.decode("utf-16-le").rstrip("\0") for text, value, _, _ in table[2]}
    return name, struct.unpack("<13I", fixed), texts, table[0], inner["VarFileInfo"][2][0]


class Version(unittest.TestCase):
    def test_both_files_have_the_version_of_the_project(self):
        high, middle, low = map(int, VERSION.split("."))
        for file, path in FILES.items():
            with self.subTest(file):
                name, fixed, texts, language, (_, translation, _, _) = version_of(path)
                self.assertEqual(name, "VS_VERSION_INFO")
                self.assertEqual(fixed[0], 0xFEEF04BD)
                self.assertEqual(fixed[2:6], (high << 16 | middle, low << 16) * 2)
                self.assertEqual(fixed[9], LIBRARY if file.endswith(".aex") else PROGRAM)
                self.assertEqual((language, translation), ("040904B0", struct.pack("<HH", 0x0409, 0x04B0)))
                self.assertEqual(texts["FileVersion"], VERSION)
                self.assertEqual(texts["ProductVersion"], VERSION)
                self.assertEqual(texts["OriginalFilename"], file)
                self.assertEqual(texts["ProductName"], "VORTANXR_AE")
                self.assertIn("VORTAN XR", texts["FileDescription"])

    def test_the_program_says_the_same(self):
        done = subprocess.run([WINE, FILES["vxr.exe"], "--version"], stdin=subprocess.DEVNULL, capture_output=True, check=True)
        version, build = done.stdout.decode().replace("\r", "").splitlines()
        self.assertEqual(version, f"vxr {VERSION}")
        self.assertRegex(build, r"^commit [0-9a-f]{12}\+?, Release, GNU [0-9.]+, Windows ")


unittest.main(argv=sys.argv[:1])
