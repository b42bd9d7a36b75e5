#!/usr/bin/env python3
"""images_test.py VXR: images through Windows' imaging component, as Wine has it. Pixels are compared with those that the
test itself put into the files or reads from them."""
import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from picture_files import bmp_file, bmp_picture, png_file, png_picture, tga_pixels, tiff_file, tiff_picture

WINE = Path(__file__).resolve().parents[2] / "script" / "wine"
VXR = str(Path(sys.argv.pop()).resolve())
WIDTH, HEIGHT = 5, 4


def picture(channels, alpha_above_colour=False):
    """Every sample differs from its neighbours. With alpha, colour is below or above it: premultiplied or straight."""
    rows = []
    for y in range(HEIGHT):
        row = bytearray()
        for x in range(WIDTH):
            colour = [10 + 9 * x + 23 * y, 90 - 5 * x + 7 * y, 3 + x * y, 0][:channels - (channels in (2, 4))]
            row += bytes(colour)
            if channels in (2, 4):
                row.append(40 * x if alpha_above_colour else 255 - 11 * x)
        rows.append(bytes(row))
    return WIDTH, HEIGHT, channels, rows


def widened(one):
    """The same picture in numbers of 16 bits that round to it: lowest byte first."""
    width, height, channels, rows = one
    return width, height, channels, [b"".join((value * 257 + (-128 if value else 0)).to_bytes(2, "little") for value in row)
                                     for row in rows]


def swapped(one):
    width, height, channels, rows = one
    return width, height, channels, [b"".join(row[i:i + 2][::-1] for i in range(0, len(row), 2)) for row in rows]


def vxr(*arguments):
    done = subprocess.run([WINE, VXR, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True, check=False)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


class Images(unittest.TestCase):
    def setUp(self):
        self.kept = tempfile.TemporaryDirectory()
        self.addCleanup(self.kept.cleanup)
        self.folder = Path(self.kept.name)

    def read(self, name, data, *options):
        """The picture that the program makes of an image, by way of a texture and a TGA."""
        (self.folder / name).write_bytes(data)
        code, out, err = vxr("texture", "convert", *options, self.folder / name, "-o", self.folder / "a.txl")
        self.assertEqual(code, 0, name + out + err)
        code, out, problems = vxr("texture", "convert", self.folder / "a.txl", "-o", self.folder / "a.tga")
        self.assertEqual(code, 0, name + out + problems)
        width, height, bits, rows = tga_pixels((self.folder / "a.tga").read_bytes())
        size = bits // 8
        if size >= 3:
            rows = [b"".join(row[x + 2:None if x == 0 else x - 1:-1] + row[x + 3:x + size]
                             for x in range(0, len(row), size)) for row in rows]
        return (width, height, size, rows), err

    def texture(self, one):
        """A texture with these pixels."""
        kind = {1: 0, 2: 4, 3: 2, 4: 6}[one[2]]
        self.assertEqual(self.read("source.png", png_file(one, kind))[0], one)
        return self.folder / "a.txl"

    def test_pixels_are_read_exactly(self):
        grey, grey_alpha, rgb, rgba = picture(1), picture(2), picture(3), picture(4)
        colours = b"".join(bytes([7 * i, 255 - 3 * i, i]) for i in range(20))
        indices = (WIDTH, HEIGHT, 1, [bytes(range(5 * y, 5 * y + 5)) for y in range(HEIGHT)])
        looked_up = (WIDTH, HEIGHT, 3, [b"".join(colours[3 * i:3 * i + 3] for i in row) for row in indices[3]])
        bits = (WIDTH, HEIGHT, 1, [b"\xA8", b"\x50", b"\xF8", b"\x00"])
        black_and_white = (WIDTH, HEIGHT, 1, [bytes(255 if row[0] >> (7 - x) & 1 else 0 for x in range(WIDTH))
                                              for row in bits[3]])
        cases = [
            ("PNG, grey", "a.png", png_file(grey, 0), grey),
            ("PNG, RGB", "a.png", png_file(rgb, 2), rgb),
            ("PNG, RGB and alpha: straight colour stays as it is stored", "a.png", png_file(rgba, 6), rgba),
            ("PNG, colour above alpha stays, too", "a.png", png_file(picture(4, True), 6), picture(4, True)),
            ("PNG, grey and alpha", "a.png", png_file(grey_alpha, 4), grey_alpha),
            ("PNG, a palette", "a.png", png_file(indices, 3, palette=colours), looked_up),
            ("PNG, one bit", "a.png", png_file(bits, 0, depth=1), black_and_white),
            ("TIFF, grey", "a.tif", tiff_file(grey), grey),
            ("TIFF, RGB", "a.tiff", tiff_file(rgb), rgb),
            ("TIFF, associated alpha", "a.tif", tiff_file(rgba, alpha=1), rgba),
            ("TIFF, unassociated alpha", "a.tif", tiff_file(rgba, alpha=2), rgba),
            ("BMP", "a.bmp", bmp_file(rgb), rgb),
            ("the content decides, not the extension", "a.bmp", png_file(rgb, 2), rgb),
        ]
        for reason, name, data, expected in cases:
            with self.subTest(reason):
                found, err = self.read(name, data)
                self.assertEqual((found, err), (expected, ""))

    def test_16_bits_are_rounded_with_a_warning(self):
        for reason, name, data, expected in [
            ("PNG, RGB", "a.png", png_file(swapped(widened(picture(3))), 2, depth=16), picture(3)),
            ("PNG, grey", "a.png", png_file(swapped(widened(picture(1))), 0, depth=16), picture(1)),
            ("PNG, RGB and alpha", "a.png", png_file(swapped(widened(picture(4))), 6, depth=16), picture(4)),
            ("TIFF, RGB", "a.tif", tiff_file(widened(picture(3)), bits=16), picture(3)),
        ]:
            with self.subTest(reason):
                found, err = self.read(name, data)
                self.assertEqual(found, expected)
                self.assertIn("[depth-reduced]", err)

    def test_files_of_other_programs_are_read(self):
        """oiiotool and tiffcp write what this test does not: compressed TIFF, tiles, and JPEG."""
        rgb = picture(3)
        source, made = self.folder / "source.tif", self.folder / "made.tif"
        source.write_bytes(tiff_file(rgb))
        for options in (["-c", "lzw"], ["-c", "zip"], ["-c", "packbits"], ["-t", "-w", "16", "-l", "16"], ["-B"]):
            with self.subTest(options):
                subprocess.run(["tiffcp", *options, source, made], check=True)
                self.assertEqual(self.read("a.tif", made.read_bytes())[0], rgb)
        for name in ("made.png", "made.bmp"):
            with self.subTest(name):
                subprocess.run(["oiiotool", source, "-o", self.folder / name], check=True, capture_output=True)
                self.assertEqual(self.read(name, (self.folder / name).read_bytes())[0], rgb)
        subprocess.run(["oiiotool", "--pattern", "constant:color=.5,.2,.8", "16x16", "3", "-d", "uint8", "--compression",
                        "jpeg:100", "-o", self.folder / "made.jpg"], check=True)
        (width, height, channels, rows), _ = self.read("a.jpg", (self.folder / "made.jpg").read_bytes())
        self.assertEqual((width, height, channels), (16, 16, 3))
        for value, expected in zip(b"".join(rows), [128, 51, 204] * 256, strict=True):
            self.assertLessEqual(abs(value - expected), 2)  # a JPEG of one colour is within rounding

    def test_what_is_written_is_what_other_programs_read(self):
        for channels in (1, 3, 4):
            one = picture(channels)
            texture = self.texture(one)
            with self.subTest(channels):
                self.assertEqual(vxr("texture", "convert", texture, "-o", self.folder / "o.png")[0], 0)
                self.assertEqual(png_picture((self.folder / "o.png").read_bytes()), (one, {1: 0, 3: 2, 4: 6}[channels]))
                self.assertEqual(vxr("texture", "convert", texture, "-o", self.folder / "o.tif")[0], 0)
                subprocess.run(["tiffcp", "-c", "none", self.folder / "o.tif", self.folder / "plain.tif"], check=True)
                found, alpha = tiff_picture((self.folder / "plain.tif").read_bytes())
                self.assertEqual((found, alpha), (one, 1 if channels == 4 else 0))
        self.assertEqual(vxr("texture", "convert", self.texture(picture(3)), "-o", self.folder / "o.bmp")[0], 0)
        self.assertEqual(bmp_picture((self.folder / "o.bmp").read_bytes()), picture(3))

    def test_jpeg_is_written_with_little_loss(self):
        flat = (16, 16, 3, [bytes([128, 51, 204]) * 16] * 16)
        code, _, err = vxr("texture", "convert", self.texture(flat), "-o", self.folder / "o.jpg")
        self.assertEqual(code, 0, err)
        subprocess.run(["oiiotool", self.folder / "o.jpg", "-o", self.folder / "o.bmp"], check=True, capture_output=True)
        width, height, _, rows = bmp_picture((self.folder / "o.bmp").read_bytes())
        self.assertEqual((width, height), (16, 16))
        for value, expected in zip(b"".join(rows), [128, 51, 204] * 256, strict=True):
            self.assertLessEqual(abs(value - expected), 2)

    def test_straight_alpha_is_converted_only_when_asked(self):
        straight = (3, 1, 4, [bytes([200, 100, 50, 128, 255, 255, 255, 0, 10, 20, 30, 255])])
        multiplied = (3, 1, 4, [bytes([100, 50, 25, 128, 0, 0, 0, 0, 10, 20, 30, 255])])
        self.assertEqual(self.read("a.png", png_file(straight, 6), "--convert-alpha")[0], multiplied)
        self.assertEqual(self.read("a.tif", tiff_file(multiplied, alpha=1), "--convert-alpha")[0], multiplied)
        code, _, err = vxr("texture", "convert", "--convert-alpha", self.texture(multiplied), "-o", self.folder / "o.png")
        self.assertEqual(code, 0, err)
        divided = (3, 1, 4, [bytes([199, 100, 50, 128, 0, 0, 0, 0, 10, 20, 30, 255])])
        self.assertEqual(png_picture((self.folder / "o.png").read_bytes()), (divided, 6))

    def test_what_has_no_room_is_refused_and_nothing_is_written(self):
        grey_alpha = self.texture(picture(2))
        for name in ("o.png", "o.tif", "o.jpg", "o.bmp"):
            with self.subTest(name):
                code, _, err = vxr("texture", "convert", grey_alpha, "-o", self.folder / name)
                self.assertEqual(code, 1, err)
                self.assertIn("[channels-without-room]", err)
                self.assertFalse((self.folder / name).exists())
        code, _, err = vxr("texture", "convert", grey_alpha, "-o", self.folder / "o.exr")
        self.assertEqual(code, 2, err)

    def test_a_file_that_is_cut_or_changed_is_refused_or_read(self):
        rgba = picture(4)
        files = {"png": png_file(rgba, 6), "tif": tiff_file(rgba, alpha=1), "bmp": bmp_file(picture(3))}
        inputs = []
        for extension, data in files.items():
            for length in range(0, len(data), max(1, len(data) // 40)):
                inputs.append(self.folder / f"{extension}{length}.{extension}")
                inputs[-1].write_bytes(data[:length])
            for place in range(0, len(data), max(1, len(data) // 40)):
                inputs.append(self.folder / f"{extension}{place}x.{extension}")
                inputs[-1].write_bytes(data[:place] + bytes([data[place] ^ 0xFF]) + data[place + 1:])
        code, out, err = vxr("texture", "convert", "--json", "--to", "txl", *inputs)
        told = json.loads(out)["files"]
        self.assertEqual(len(told), len(inputs), err)
        self.assertIn(code, (1, 3))
        for one in told:
            self.assertEqual(one["converted"], (self.folder / one["output"].split("\\")[-1]).exists(), one)
            self.assertTrue(one["converted"] or one["diagnostics"], one)
        refused = sum(not one["converted"] for one in told)
        self.assertGreater(refused, len(inputs) // 3)
        self.assertLess(refused, len(inputs))


if __name__ == "__main__":
    unittest.main()
