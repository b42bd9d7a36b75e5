"""`vxr texture view` and `vxr preview --show` in a terminal that answers by a script.

terminal_test.py VXR PROJECT
"""
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

from drawn_pictures import block_picture, kitty_picture, sixel_picture
from made_texture import texture_file
from scripted_terminal import KITTY, PLAIN, SIXEL, interrupt, run_in_terminal, terminate

PROJECT = pathlib.Path(sys.argv.pop(2))
VXR = pathlib.Path(sys.argv.pop(1))

TRUE = {"COLORTERM": "truecolor"}
# On the levels of sixels, so that no dither changes them: multiples of 51, and of 255 for green.
COLOURS = [[(255, 0, 51), (0, 255, 102)], [(153, 0, 204), (255, 255, 255)], [(0, 0, 0), (51, 255, 0)]]


def stored(rows):
    return texture_file(len(rows[0]), [bytes(sum(row, ())) for row in rows])


class InATerminal(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def write(self, content, name="bark.txl"):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def view(self, content, *options, **terminal):
        return run_in_terminal([VXR, "texture", "view", self.write(content), *options], **terminal)

    def test_it_draws_as_the_terminal_answers(self):
        cases = [
            # reason, terminal, how the picture is read back
            ("kitty", {"answer": KITTY}, kitty_picture),
            ("kitty that knows sixels, too", {"answer": KITTY.replace(b"22", b"4")}, kitty_picture),
            ("kitty that refuses", {"answer": KITTY.replace(b"OK", b"ENOTSUPPORTED"), "environment": TRUE},
             block_picture),
            ("sixels", {"answer": SIXEL}, sixel_picture),
            ("a 4 within another number is no 4", {"answer": b"\x1b[?64;14;41c", "environment": TRUE}, block_picture),
            ("neither", {"answer": PLAIN, "environment": TRUE}, block_picture),
            ("a slow one, byte by byte", {"answer": KITTY, "pieces": len(KITTY), "delay": 0.02}, kitty_picture),
            ("keys that were typed before the answer", {"answer": b"ls -l\x1b[A" + SIXEL}, sixel_picture),
            ("a size of characters that is none", {"answer": b"\x1b[6;0;99999999999999t" + KITTY}, kitty_picture),
        ]
        for reason, terminal, read in cases:
            with self.subTest(reason):
                run = self.view(stored(COLOURS), **terminal)
                self.assertEqual((run.exit_code, run.err), (0, ""))
                self.assertTrue(run.restored)
                self.assertEqual(read(run.drawn), COLOURS)
                self.assertTrue(run.drawn.endswith(b"bark.txl: 2 x 3, RGB, no alpha\n"), run.drawn[-60:])

    def test_a_terminal_that_does_not_answer_gets_blocks_after_a_second(self):
        for reason, answer in (("never", b""), ("half an answer", KITTY[:9])):
            with self.subTest(reason):
                run = self.view(stored(COLOURS), answer=answer, environment=TRUE)
                self.assertEqual((run.exit_code, run.restored), (0, True))
                self.assertEqual(block_picture(run.drawn), COLOURS)
                self.assertGreater(run.seconds, 0.9)

    def test_nobody_is_asked_who_cannot_answer(self):
        cases = [
            # reason, options, terminal
            ("a dumb terminal", [], {"environment": {"TERM": "dumb"}}),
            ("the console of Linux", [], {"environment": {"TERM": "linux"}}),
            ("answers would not arrive", [], {"stdin": subprocess.DEVNULL}),
            ("blocks need no answer", ["--protocol", "blocks"], {}),
            ("the system knows how large a character is", ["--protocol", "sixel"], {"cell": (8, 16)}),
        ]
        for reason, options, terminal in cases:
            with self.subTest(reason):
                run = self.view(stored(COLOURS), *options, **terminal)
                self.assertEqual((run.exit_code, run.asked), (0, False))

    def test_colours_of_blocks(self):
        near = [[(95, 135, 175), (8, 8, 8), (128, 128, 128)], [(97, 130, 180), (0, 0, 0), (255, 0, 0)]]
        # The nearest that xterm has.
        numbered = [[(95, 135, 175), (8, 8, 8), (128, 128, 128)], [(95, 135, 175), (0, 0, 0), (255, 0, 0)]]
        shades = [[(0, 0, 0), (60, 60, 60), (120, 120, 120), (200, 200, 200), (255, 255, 255)]] * 2
        self.assertEqual(block_picture(self.view(stored(near), "--protocol", "blocks", environment=TRUE).drawn), near)
        self.assertEqual(block_picture(self.view(stored(near), "--protocol", "blocks").drawn), numbered)
        for environment in ({**TRUE, "NO_COLOR": "1"}, {"TERM": "dumb"}):
            drawn = self.view(stored(shades), "--protocol", "blocks", environment=environment).drawn
            self.assertEqual(drawn.decode().splitlines()[0], " ░▒▓█")

    def test_it_fits(self):
        wide = texture_file(400, [bytes([9, 99, 199]) * 400] * 200)
        cases = [
            # reason, options, terminal, width, height
            ("a character is a pixel wide", ["--protocol", "blocks"], {"columns": 40}, 40, 20),
            ("two lines are for text", ["--protocol", "blocks"], {"columns": 200, "rows": 12}, 40, 20),
            ("pixels as the system says", ["--protocol", "kitty"], {"answer": PLAIN, "cell": (4, 8), "columns": 20}, 80, 40),
            ("pixels as the terminal says", [], {"answer": b"\x1b[6;10;5t" + KITTY, "columns": 20}, 100, 50),
            ("never enlarged", [], {"answer": KITTY, "cell": (20, 40), "rows": 50}, 400, 200),
            ("a terminal without a size", ["--protocol", "blocks"], {"columns": 0, "rows": 0}, 80, 40),
        ]
        for reason, options, terminal, width, height in cases:
            with self.subTest(reason):
                run = self.view(wide, *options, **terminal)
                read = block_picture if "blocks" in options else kitty_picture
                picture = read(run.drawn)
                self.assertEqual((len(picture[0]), len(picture)), (width, height))

    def test_what_is_transparent_shows_squares(self):
        red = texture_file(4, [bytes([255, 0, 0] * 4)], [[bytes([255, 128, 0, 0])]])
        squares = [[(255, 0, 0), (196, 68, 68), (104, 104, 104), (104, 104, 104)]]
        colour = [[(255, 0, 0)] * 4]
        for options, expected in (([], squares), (["--alpha", "none"], colour)):
            self.assertEqual(block_picture(self.view(red, "--protocol", "blocks", *options, environment=TRUE).drawn),
                             expected)
        self.assertEqual(self.view(red, "--protocol", "blocks", "--alpha", "2").exit_code, 1)

    def test_a_signal_leaves_the_terminal_as_it_was(self):
        noise = texture_file(400, [bytes((x * y * 7 + x) % 251 for x in range(1200)) for y in range(300)])

        def late(how):
            def stop(process, master):
                time.sleep(0.2)  # until nothing fits into the terminal any more
                how(process, master)
            return stop
        for reason, how, code in (("Ctrl-C", interrupt, 130), ("SIGTERM", terminate, 143)):
            with self.subTest(reason + " while the terminal is asked"):
                run = self.view(noise, then=how)
                self.assertEqual((run.exit_code, run.restored), (code, True))
            with self.subTest(reason + " while a picture is drawn"):
                run = self.view(noise, "--protocol", "sixel", then=late(how), called_at=1000,
                                cell=(8, 16))
                self.assertEqual((run.exit_code, run.restored), (code, True))
                self.assertTrue(run.drawn.endswith(b"\x1b\\\x1b[0m\n"), run.drawn[-40:])

    def test_what_cannot_be_shown_is_said_in_plain_words(self):
        cases = [
            ("another file under our extension", b"\x89PNG\r\n", 1, "[not-a-texture]"),
            ("an empty file", b"", 1, "empty"),
        ]
        for reason, content, code, message in cases:
            with self.subTest(reason):
                run = self.view(content, "--protocol", "blocks")
                self.assertEqual((run.exit_code, run.drawn), (code, b""))
                self.assertIn(message, run.err)

    def test_files_and_pipes_need_a_protocol(self):
        command = [VXR, "texture", "view", self.write(stored(COLOURS))]
        run = subprocess.run(command, capture_output=True, text=True)
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        self.assertIn("the standard output is not a terminal; --protocol", run.stderr)
        written = subprocess.run([*command, "--protocol", "sixel"], capture_output=True, check=True).stdout
        self.assertEqual(sixel_picture(written), COLOURS)

    def test_frames_of_scenes(self):
        self.write(b"VORTAN XR COMPOSITION\nRESOLUTION 4 2\nFROM 0\nTO 1\nRANGE 2\nFPS 25\n"
                   b'COMPOSITION NRM "Main" {\n FILE NRM STRAIGHT "plate.txl"\n}\n', "shot.aec")
        self.write(texture_file(2, [bytes([255, 0, 51] * 2)] * 2), "plate.txl")
        run = run_in_terminal([VXR, "preview", self.folder / "shot.aec", "--show"], answer=KITTY)
        self.assertEqual((run.exit_code, run.err, run.restored), (0, "", True))
        light = (136, 136, 136)  # around the plate nothing covers the squares
        self.assertEqual(kitty_picture(run.drawn), [[light, (255, 0, 51), (255, 0, 51), light]] * 2)
        for options in (["-o", "a.png"], ["--json"], ["--frames", "0-1"], ["--frame", "2"]):
            with self.subTest(options):
                run = run_in_terminal([VXR, "preview", self.folder / "shot.aec", "--show", "--protocol", "blocks",
                                       *options])
                self.assertEqual((run.exit_code, run.drawn), (2, b""))
        run = subprocess.run([VXR, "preview", self.folder / "shot.aec"], capture_output=True, text=True)
        self.assertEqual(run.returncode, 2)
        self.assertIn("-o FILE or --show is required", run.stderr)


if __name__ == "__main__":
    unittest.main()
