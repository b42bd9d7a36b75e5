"""The file types as they are installed, asked of the real shared-mime-info and of GLib, in a database of their own.

file_types_test.py CMAKE INSTALL_SCRIPT PROJECT
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(sys.argv.pop(3))
INSTALL = pathlib.Path(sys.argv.pop(2))
CMAKE = sys.argv.pop(1)

TEXTURE, SCENE = "image/x-texalon-texture", "application/x-vortanxr-composition"
TINY = (PROJECT / "examples/textures/tiny.txl").read_bytes()
ORBIT = (PROJECT / "examples/keyframes/orbit_030.aec").read_bytes()

CASES = [
    # what it is, name, content, type
    ("a texture", "bark.txl", TINY, TEXTURE),
    ("a texture in capitals, as DOS wrote names", "BARK.TXL", TINY, TEXTURE),
    ("a texture without its extension is known by its first bytes", "bark", TINY, TEXTURE),
    ("eight bytes are enough", "bark", b"AVXRTexa", TEXTURE),
    ("seven are not", "bark", b"AVXRTex\0", "application/octet-stream"),
    ("another kind of the same container is no texture", "bark", b"AVXRMesh" + TINY[8:], "application/octet-stream"),
    ("the magic counts at the beginning only", "bark", b"\0" + TINY, "application/octet-stream"),
    ("a scene", "shot.aec", ORBIT, SCENE),
    ("a scene without its extension", "shot", ORBIT, SCENE),
    ("nine bytes are enough, whatever follows", "shot", b"VORTAN XR", SCENE),
    ("a blank line before them is one too many", "shot", b"\nVORTAN XR COMPOSITION\n", "text/plain"),
    ("a renamed texture without known extension is known, too", "bark.bak2", TINY, TEXTURE),
    ("other pictures stay what they are", "bark.png", b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR", "image/png"),
]


class FileTypes(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        subprocess.run([CMAKE, f"-DCMAKE_INSTALL_PREFIX={cls.folder}", "-P", INSTALL], check=True, capture_output=True)
        cls.data = cls.folder / "share"
        cls.environment = {**os.environ, "XDG_DATA_HOME": str(cls.data), "LC_ALL": "C"}
        made = subprocess.run(["update-mime-database", cls.data / "mime"], capture_output=True, text=True,
                              env=cls.environment)
        cls.complaints = made.stdout + made.stderr
        assert made.returncode == 0, cls.complaints

    def type_of(self, path):
        told = subprocess.run(["gio", "info", "-a", "standard::content-type", path], capture_output=True, text=True,
                              check=True, env=self.environment).stdout
        return told.split("standard::content-type:")[1].split()[0]

    def test_the_database_accepts_the_file_without_a_word(self):
        self.assertEqual(self.complaints, "")

    def test_the_entry_for_thumbnails_is_installed_where_desktops_look(self):
        self.assertEqual((self.data / "thumbnailers/vortanxr.thumbnailer").read_text(),
                         (PROJECT / "src/desktop/vortanxr.thumbnailer").read_text())

    def test_names_and_first_bytes_give_the_type(self):
        for reason, name, content, expected in CASES:
            with self.subTest(reason):
                path = self.folder / name
                path.write_bytes(content)
                self.assertEqual(self.type_of(path), expected)

    def test_a_scene_is_text_so_that_editors_open_it(self):
        parents = (self.data / "mime/subclasses").read_text().splitlines()
        self.assertIn(f"{SCENE} text/plain", parents)


if __name__ == "__main__":
    unittest.main()
