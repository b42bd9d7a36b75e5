"""Small PNG files, written and read with nothing but zlib."""

import struct
import zlib


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(width, height, channels, data):
    """The bytes of a PNG with 8 bits a channel: 1 grey, 2 grey and alpha, 3 RGB, 4 RGB and alpha."""
    colour = {1: 0, 2: 4, 3: 2, 4: 6}[channels]
    row = width * channels
    raw = b"".join(b"\0" + bytes(data[y * row:(y + 1) * row]) for y in range(height))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, colour, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


def read_png(path):
    """Width, height, and rows of (r, g, b, a); for PNGs of 8 bits with RGB and alpha."""
    with open(path, "rb") as file:
        content = file.read()
    assert content[:8] == b"\x89PNG\r\n\x1a\n", path
    at, packed = 8, b""
    while at < len(content):
        length, kind = struct.unpack(">I4s", content[at:at + 8])
        data = content[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", data[:10])
            assert (depth, colour) == (8, 6), f"{path}: depth {depth}, colour type {colour}"
        elif kind == b"IDAT":
            packed += data
        at += 12 + length
    raw = zlib.decompress(packed)
    rows, before, row_bytes = [], bytes(width * 4), width * 4
    for y in range(height):
        kind = raw[y * (row_bytes + 1)]
        row = bytearray(raw[y * (row_bytes + 1) + 1:(y + 1) * (row_bytes + 1)])
        for i in range(row_bytes):
            left = row[i - 4] if i >= 4 else 0
            up = before[i]
            corner = before[i - 4] if i >= 4 else 0
            if kind == 4:
                guess = left + up - corner
                nearest = min((abs(guess - left), 0, left), (abs(guess - up), 1, up), (abs(guess - corner), 2, corner))
                row[i] = (row[i] + nearest[2]) % 256
            else:
                row[i] = (row[i] + (0, left, up, (left + up) // 2)[kind]) % 256
        rows.append([tuple(row[4 * x:4 * x + 4]) for x in range(width)])
        before = bytes(row)
    return width, height, rows
