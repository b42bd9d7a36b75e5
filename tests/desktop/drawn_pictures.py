"""Reads pictures back from what a terminal was sent, without the project's code. A picture is a list of rows of
(red, green, blue)."""
import base64
import pathlib
import re
import subprocess
import tempfile


def kitty_picture(data):
    """By the rules of the protocol: the first sequence has the keys, all have at most 4096 bytes and say if more follow."""
    pieces = re.findall(rb"\x1b_G([^;]*);([^\x1b]*)\x1b\\", data)
    keys = dict(pair.split(b"=") for pair in pieces[0][0].split(b","))
    assert (keys[b"a"], keys[b"f"], keys[b"q"]) == (b"T", b"24", b"2"), keys
    for i, (head, body) in enumerate(pieces):
        assert len(body) <= 4096 and (len(body) % 4 == 0), len(body)
        assert head.endswith(b"m=0" if i + 1 == len(pieces) else b"m=1"), head
        assert i == 0 or head.startswith(b"m="), head
    width, height = int(keys[b"s"]), int(keys[b"v"])
    pixels = base64.b64decode(b"".join(body for _, body in pieces), validate=True)
    assert len(pixels) == width * height * 3, len(pixels)
    return [[tuple(pixels[(y * width + x) * 3:(y * width + x) * 3 + 3]) for x in range(width)] for y in range(height)]


def sixel_picture(data):
    """By libsixel's decoder, and by ffmpeg for the PNG that it writes."""
    sixels = re.search(rb"\x1bP[^\x1b]*\x1b\\", data).group()
    with tempfile.TemporaryDirectory() as folder:
        stored, decoded = pathlib.Path(folder, "a.six"), pathlib.Path(folder, "a.png")
        stored.write_bytes(sixels)
        subprocess.run(["sixel2png", "-i", stored, "-o", decoded], check=True, capture_output=True)
        plain = subprocess.run(["ffmpeg", "-v", "error", "-i", decoded, "-f", "image2pipe", "-c:v", "ppm", "-pix_fmt",
                                "rgb24", "-"], check=True, capture_output=True).stdout
    head = re.match(rb"P6\s(\d+)\s(\d+)\s255\s", plain)
    width, height, pixels = int(head[1]), int(head[2]), plain[head.end():]
    return [[tuple(pixels[(y * width + x) * 3:(y * width + x) * 3 + 3]) for x in range(width)] for y in range(height)]


def numbered(number):
    """Of the 256 colours of xterm, without the first 16."""
    if number >= 232:
        return (8 + 10 * (number - 232),) * 3
    levels = (0, 95, 135, 175, 215, 255)
    return tuple(levels[(number - 16) // step % 6] for step in (36, 6, 1))


def block_picture(data):
    """Two rows for each line; without a colour behind the last line, its lower row is not there."""
    rows = []
    for line in data.decode().split("\n"):
        if "▀" not in line:
            continue
        upper, lower, fore, behind = [], [], None, None
        for codes, block in re.findall("\x1b\\[([0-9;]*)m|(▀)", line):
            if block:
                upper.append(fore)
                lower.append(behind)
                continue
            numbers = [int(n) for n in codes.split(";")]
            colour = numbered(numbers[2]) if numbers[1:2] == [5] else tuple(numbers[2:])
            if numbers[0] == 38:
                fore = colour
            elif numbers[0] == 48:
                behind = colour
            else:
                assert numbers == [0], numbers
        rows.append(upper)
        if lower[0] is not None:
            rows.append(lower)
    return rows
