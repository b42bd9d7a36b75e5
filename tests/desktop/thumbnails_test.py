"""Thumbnails as a file manager has them made: by the line in the installed entry.

thumbnails_test.py VXR PROJECT
"""
import configparser
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from made_texture import chunk, long, texture_file  # noqa: E402
from picture_files import png_file, png_picture  # noqa: E402

PROJECT = pathlib.Path(sys.argv.pop(2))
VXR = pathlib.Path(sys.argv.pop(1))
ENTRY = PROJECT / "src/desktop/vortanxr.thumbnailer"


def entry():
    parser = configparser.ConfigParser(interpolation=None)
    parser.optionxform = str
    parser.read(ENTRY)
    return parser["Thumbnailer Entry"]


def thumbnail(source, target, size):
    """Runs the entry's line, as a shell would split it, with the program in PATH."""
    values = {"%i": str(source), "%o": str(target), "%s": str(size), "%u": pathlib.Path(source).as_uri(), "%%": "%"}
    command = [values.get(word, word) for word in shlex.split(entry()["Exec"])]
    return subprocess.run(command, capture_output=True, text=True, timeout=60,
                          env={**os.environ, "PATH": f"{VXR.parent}:{os.environ['PATH']}"})


def flat(width, height, *colour):
    return [bytes(colour) * width for _ in range(height)]


# Worked out by hand. More sizes and averages are in tests/render/picture_test.cpp.
MADE = [
    # reason, width, colour rows, alphas, grey, size, kind of PNG, width, rows
    ("a small one is not enlarged", 2, flat(2, 1, 1, 2, 3), [], False, 128, 2, 2, [bytes([1, 2, 3] * 2)]),
    ("a large one keeps its proportions", 8, flat(8, 4, 1, 2, 3), [], False, 4, 2, 4, flat(4, 2, 1, 2, 3)),
    # Colour above alpha, so it is straight; the transparent pixel has no say, and half of the area is covered.
    ("straight colour counts by its alpha", 2, [bytes([200, 100, 50, 255, 255, 255])], [[bytes([255, 0])]], False, 1, 6, 1,
     [bytes([200, 100, 50, 128])]),
    # No colour above alpha, so it was multiplied: 100 / 128 of 255 is 199.
    ("multiplied colour is divided, and of two alpha channels the first counts", 1, [bytes([100])],
     [[bytes([128])], [bytes([9])]], True, 1, 6, 1, [bytes([199, 199, 199, 128])]),
    ("alpha that leaves out everything is not shown", 2, [bytes([10, 20, 30] * 2)], [[bytes([0, 0])]], False, 2, 2, 2,
     [bytes([10, 20, 30] * 2)]),
]


def claims(width, height):
    """A texture that claims a size and holds no rows."""
    return b"AVXRTexa" + chunk(502, 0, chunk(b"TaTx", 1, long(width) + long(height) + long(4)))


TINY = (PROJECT / "examples/textures/tiny.txl").read_bytes()
REFUSED = [
    # reason, content, exit code, message
    ("an empty file", b"", 1, "the file is empty"),
    ("a picture of another format under our extension", png_file((1, 1, 3, [b"abc"]), 2), 1, "[not-a-texture]"),
    ("a scene under our extension", b"VORTAN XR COMPOSITION\n", 1, "[not-a-texture]"),
    ("cut in the header", TINY[:6], 1, "[not-a-texture]"),
    ("cut in a row", TINY[:80], 1, "ends"),
    ("more pixels than may be shown", claims(20000, 20000), 1, "at most 1073741824 are allowed"),
    ("more pixels than any texture has", claims(2000000, 2000000), 1, "pixels"),
    ("negative sizes", claims(-4, 4), 1, "negative"),
]


class Thumbnails(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def write(self, content, name="bark.txl"):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def picture(self, content, size, target="out.png"):
        run = thumbnail(self.write(content), self.folder / target, size)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "", ""))
        return png_picture((self.folder / target).read_bytes())

    def test_the_entry_is_for_the_type_that_textures_have(self):
        types = xml.etree.ElementTree.parse(PROJECT / "src/desktop/vortanxr.xml").getroot()
        space = "{http://www.freedesktop.org/standards/shared-mime-info}"
        of_textures = [one.get("type") for one in types if one.find(space + "glob").get("pattern") == "*.txl"]
        self.assertEqual(entry()["MimeType"].rstrip(";").split(";"), of_textures)
        self.assertEqual(entry()["TryExec"], shlex.split(entry()["Exec"])[0])

    def test_pictures(self):
        for reason, width, colour, alphas, grey, size, kind, made_width, expected in MADE:
            with self.subTest(reason):
                (found_width, _, _, found), found_kind = self.picture(texture_file(width, colour, alphas, grey), size)
                self.assertEqual((found_kind, found_width, found), (kind, made_width, expected))

    def test_the_output_is_png_under_any_name(self):
        # Some file managers make a file without an extension first, and name it.
        for name in ("thumbnail", "Ünïcode %i.jpg"):
            with self.subTest(name):
                (self.folder / name).write_bytes(b"")
                self.picture(TINY, 64, name)

    def test_what_is_no_texture_is_refused_in_plain_words_and_nothing_is_written(self):
        for reason, content, code, message in REFUSED:
            with self.subTest(reason):
                target = self.folder / "out.png"
                run = thumbnail(self.write(content), target, 128)
                self.assertEqual((run.returncode, run.stdout), (code, ""))
                self.assertIn(message, run.stderr)
                self.assertEqual(sorted(os.listdir(self.folder)), ["bark.txl"])

    def test_an_old_thumbnail_stays_when_there_is_no_new_one(self):
        target = self.write(b"old", "out.png")
        self.assertEqual(thumbnail(self.write(TINY[:80]), target, 128).returncode, 1)
        self.assertEqual(target.read_bytes(), b"old")

    def test_the_texture_itself_is_never_written(self):
        source = self.write(TINY)
        os.link(source, self.folder / "same.png")
        self.assertEqual(thumbnail(source, self.folder / "same.png", 128).returncode, 2)
        self.assertEqual(source.read_bytes(), TINY)

    def test_what_is_not_a_file_is_refused_at_once(self):
        os.mkfifo(self.folder / "pipe.txl")
        for name in ("pipe.txl", "missing.txl"):
            with self.subTest(name):
                self.assertEqual(thumbnail(self.folder / name, self.folder / "out.png", 128).returncode, 3)

    def test_sizes_that_are_none(self):
        for size in ("0", "4097", "large"):
            with self.subTest(size):
                self.assertEqual(thumbnail(self.write(TINY), self.folder / "out.png", size).returncode, 2)


if __name__ == "__main__":
    unittest.main()
