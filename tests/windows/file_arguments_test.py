#!/usr/bin/env python3
"""file_arguments_test.py VXR: names with wildcards, which Windows leaves to the program."""
import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
WINE = PROJECT / "script" / "wine"
VXR = str(Path(sys.argv.pop()).resolve())
SCENE = "VORTAN XR COMPOSITION\nRESOLUTION 4 4\nFROM 0\nTO 0\nRANGE 1\nFPS 25\nCOMPOSITION NRM \"A\" { }\n"
NAMES = ["a.aec", "B.AEC", "c1.aec", "c[1].aec", ".left.aec", "\u00fc.aec", "\U0001f600.aec", "longer.aecx", "notes.txt"]


def vxr(folder, *arguments):
    done = subprocess.run([WINE, VXR, *arguments], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
                          check=False)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


class FileArguments(unittest.TestCase):
    def setUp(self):
        self.kept = tempfile.TemporaryDirectory()
        self.addCleanup(self.kept.cleanup)
        self.folder = Path(self.kept.name)
        for name in NAMES:
            (self.folder / name).write_text(SCENE, encoding="utf-8")
        (self.folder / "folder.aec").mkdir()
        (self.folder / "folder.aec" / "inner.aec").write_text(SCENE, encoding="utf-8")

    def checked(self, *patterns):
        code, out, err = vxr(self.folder, "check", "--quiet", *patterns)
        self.assertEqual((code, err), (0, ""), patterns)
        self.assertTrue(all(line.endswith(": ok") for line in out.splitlines()), out)
        return [line.removesuffix(": ok") for line in out.splitlines()]

    def test_a_name_with_wildcards_stands_for_the_files_that_it_matches(self):
        for reason, pattern, files in [
            ("in order, in any case, without names that begin with a full stop, folders and longer extensions",
             "*.aec", ["a.aec", "B.AEC", "c1.aec", "c[1].aec", "\u00fc.aec", "\U0001f600.aec"]),
            ("a full stop matches one", ".*.aec", [".left.aec"]),
            ("a question mark is one character", "?.AEC", ["a.aec", "B.AEC", "\u00fc.aec", "\U0001f600.aec"]),
            ("brackets are ordinary beside a wildcard", "c[1]*", ["c[1].aec"]),
            ("brackets are ordinary alone", "c[1].aec", ["c[1].aec"]),
            ("a star may be nothing, and there may be several", "**c*1*.a*c*", ["c1.aec", "c[1].aec"]),
            ("in a folder, with either separator", "folder.aec/*.aec", ["folder.aec/inner.aec"]),
            ("in a folder, with either separator", "folder.aec\\i*", ["folder.aec\\inner.aec"]),
        ]:
            with self.subTest(reason):
                self.assertEqual(self.checked(pattern), files)

    def test_patterns_and_names_may_be_mixed(self):
        self.assertEqual(self.checked("c1.aec", "a*.aec", "c1.aec"), ["c1.aec", "a.aec", "c1.aec"])

    def test_what_matches_nothing_is_an_error_and_the_rest_is_still_read(self):
        code, out, err = vxr(self.folder, "check", "*.zzz", "a.aec")
        self.assertEqual(code, 3)
        self.assertIn("*.zzz: error: no file matches this name [cannot-read]", err)
        self.assertIn("a.aec: ok", out)
        # Each verb in the words that it has for any file that is not there.
        for verb, reason in [
            (["import"], "*.zzz: error: no file matches this name [cannot-read]"),
            (["texture", "info"], "*.zzz: error: the file does not exist [cannot-open]"),
            (["texture", "check"], "*.zzz: error: the file does not exist [cannot-open]"),
            (["texture", "convert", "--to", "txl"], "*.zzz: error: no file matches this name [cannot-open]"),
            (["frame", "-o", "f.tga"], "*.zzz: no file matches this name"),
            (["doctor"], "*.zzz: error: No such file or directory [cannot-read]"),
        ]:
            with self.subTest(verb):
                code, out, err = vxr(self.folder, *verb, "*.zzz")
                self.assertEqual(code, 3, err)
                self.assertIn(reason, out + err)

    def test_a_verb_for_one_file_takes_a_pattern_with_one_match_only(self):
        for name in ("d1.txl", "d[1].txl"):
            shutil.copy(PROJECT / "examples" / "textures" / "tiny.txl", self.folder / name)
        code, out, err = vxr(self.folder, "frame", "d[*.txl", "-o", "f.tga")
        self.assertEqual(code, 0, err)
        self.assertIn("d[1].txl", out)
        code, out, err = vxr(self.folder, "frame", "d*.txl", "-o", "f.tga")
        self.assertEqual((code, out), (2, ""))
        self.assertIn("d*.txl matches 2 files; one is needed", err)

    def test_a_verb_for_several_files_takes_every_match(self):
        code, out, err = vxr(self.folder, "import", "c*.aec")
        self.assertEqual(code, 0, err)
        self.assertIn("c1.aec: 1 composition", out)
        self.assertIn("c[1].aec: 1 composition", out)

    def test_an_options_value_is_no_pattern(self):
        shutil.copy(PROJECT / "examples" / "textures" / "tiny.txl", self.folder)
        (self.folder / "kept.tga").write_bytes(b"kept")
        code, _, _ = vxr(self.folder, "texture", "convert", "t*.txl", "-o", "k*.tga")
        self.assertNotEqual(code, 0)
        self.assertEqual((self.folder / "kept.tga").read_bytes(), b"kept")

    def test_json_names_every_match(self):
        code, out, _ = vxr(self.folder, "check", "--json", "c*.aec")
        self.assertEqual(code, 0)
        self.assertEqual([one["file"] for one in json.loads(out)["files"]], ["c1.aec", "c[1].aec"])


if __name__ == "__main__":
    unittest.main()
