"""Writes and reads image files by the rules of the formats, without an image library, so that tests of image libraries do
not depend on one. A picture is (width, height, channels, rows): one bytes object per row, channels interleaved."""
import struct
import zlib


def png_file(picture, kind, depth=8, palette=b"", transparency=b""):
    """`kind` is PNG's: 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGBA. Rows hold samples as they are stored."""
    width, height, _, rows = picture

    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    data = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, kind, 0, 0, 0))
    data += chunk(b"PLTE", palette) if palette else b""
    data += chunk(b"tRNS", transparency) if transparency else b""
    return data + chunk(b"IDAT", zlib.compress(b"".join(b"\0" + row for row in rows))) + chunk(b"IEND", b"")


def png_picture(data):
    """The picture in a PNG file of 8 bits per channel, and the file's kind."""
    at, packed = 8, b""
    while at < len(data):
        size, name = struct.unpack_from(">I4s", data, at)
        body = data[at + 8:at + 8 + size]
        if name == b"IHDR":
            width, height, depth, kind, _, _, interlaced = struct.unpack(">IIBBBBB", body)
        elif name == b"IDAT":
            packed += body
        at += size + 12
    if depth != 8 or interlaced:
        raise ValueError(f"{depth} bits, interlaced {interlaced}")
    channels = {0: 1, 2: 3, 4: 2, 6: 4}[kind]
    raw, length, rows = zlib.decompress(packed), width * channels, []
    before = bytes(length)
    for y in range(height):
        how, filtered = raw[y * (length + 1)], raw[y * (length + 1) + 1:(y + 1) * (length + 1)]
        if how == 0:
            before = filtered
            rows.append(before)
            continue
        row = bytearray()
        for x, value in enumerate(filtered):
            left = row[x - channels] if x >= channels else 0
            corner = before[x - channels] if x >= channels else 0
            guess = left + before[x] - corner
            nearest = min((left, before[x], corner), key=lambda one, guess=guess: abs(one - guess))
            row.append((value + [0, left, before[x], (left + before[x]) // 2, nearest][how]) & 0xFF)
        before = bytes(row)
        rows.append(before)
    return (width, height, channels, rows), kind


def rgba_pixels(path):
    """Width, height, and rows of (r, g, b, a) of a PNG file with RGB and alpha."""
    with open(path, "rb") as file:
        (width, height, _, rows), kind = png_picture(file.read())
    assert kind == 6, f"{path}: kind {kind}"
    return width, height, [[tuple(row[4 * x:4 * x + 4]) for x in range(width)] for row in rows]


def tiff_file(picture, alpha=0, bits=8):
    """`alpha` is TIFF's: 1 associated, 2 unassociated, 0 without. Numbers of 16 bits have their lowest byte first."""
    width, height, channels, rows = picture
    pixels = b"".join(rows)
    colours = channels - (alpha != 0)
    entries = [(256, 4, [width]), (257, 4, [height]), (258, 3, [bits] * channels), (259, 3, [1]),
               (262, 3, [1 if colours == 1 else 2]), (273, 4, [8]), (277, 3, [channels]), (278, 4, [height]),
               (279, 4, [len(pixels)]), (284, 3, [1])] + ([(338, 3, [alpha])] if alpha else [])
    directory = 8 + len(pixels) + len(pixels) % 2
    behind = directory + 2 + 12 * len(entries) + 4
    table, extra = struct.pack("<H", len(entries)), b""
    for tag, kind, values in entries:
        packed = b"".join(struct.pack("<H" if kind == 3 else "<I", value) for value in values)
        if len(packed) > 4:
            extra, packed = extra + packed, struct.pack("<I", behind + len(extra))
        table += struct.pack("<HHI", tag, kind, len(values)) + packed.ljust(4, b"\0")
    return b"II\x2a\0" + struct.pack("<I", directory) + pixels + bytes(len(pixels) % 2) + table + bytes(4) + extra


def tiff_picture(data):
    """The picture in an uncompressed TIFF file of 8 bits per channel, and the kind of its alpha."""
    order = "<" if data[:2] == b"II" else ">"
    directory, = struct.unpack_from(order + "I", data, 4)
    count, = struct.unpack_from(order + "H", data, directory)
    tags = {}
    for i in range(count):
        tag, kind, values = struct.unpack_from(order + "HHI", data, directory + 2 + 12 * i)
        form = {1: "B", 3: "H", 4: "I"}.get(kind)
        if form is None:
            continue
        at = directory + 2 + 12 * i + 8
        if struct.calcsize(form) * values > 4:
            at, = struct.unpack_from(order + "I", data, at)
        tags[tag] = struct.unpack_from(f"{order}{values}{form}", data, at)
    if tags.get(259, (1,)) != (1,) or set(tags[258]) != {8}:
        raise ValueError(f"compression {tags.get(259)}, bits {tags[258]}")
    width, height, channels = tags[256][0], tags[257][0], tags[277][0]
    pixels = b"".join(data[at:at + size] for at, size in zip(tags[273], tags[279], strict=True))
    row = width * channels
    picture = (width, height, channels, [pixels[y * row:(y + 1) * row] for y in range(height)])
    return picture, tags.get(338, (0,))[0]


def bmp_picture(data):
    """The picture in a BMP file of 24 bits, as RGB."""
    at, = struct.unpack_from("<I", data, 10)
    width, height, _, bits = struct.unpack_from("<iiHH", data, 18)
    if bits != 24:
        raise ValueError(f"{bits} bits")
    stride = (width * 3 + 3) // 4 * 4
    rows = []
    for y in range(abs(height)):
        row = data[at + y * stride:at + y * stride + width * 3]
        rows.append(b"".join(row[x:x + 3][::-1] for x in range(0, len(row), 3)))
    return width, abs(height), 3, rows[::-1] if height > 0 else rows


def bmp_file(picture):
    """An RGB picture as a BMP file of 24 bits, rows from the bottom."""
    width, height, _, rows = picture
    stored = [b"".join(row[x:x + 3][::-1] for x in range(0, len(row), 3)) for row in rows[::-1]]
    pixels = b"".join(row.ljust((len(row) + 3) // 4 * 4, b"\0") for row in stored)
    return (b"BM" + struct.pack("<IHHI", 54 + len(pixels), 0, 0, 54) +
            struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, len(pixels), 0, 0, 0, 0) + pixels)


def tga_pixels(data):
    """Width, height, bits a pixel and the rows of a TGA file, packed or not, rows from the top, colour as blue, green, red."""
    kind, width, height, bits = data[2], int.from_bytes(data[12:14], "little"), int.from_bytes(data[14:16], "little"), data[16]
    size, at, pixels = bits // 8, 18 + data[0], bytearray()
    while len(pixels) < width * height * size:
        if kind < 8:
            pixels += data[at:at + width * height * size]
            break
        count = (data[at] & 0x7F) + 1
        if data[at] & 0x80:
            pixels += data[at + 1:at + 1 + size] * count
            at += 1 + size
        else:
            pixels += data[at + 1:at + 1 + count * size]
            at += 1 + count * size
    row = width * size
    rows = [bytes(pixels[y * row:(y + 1) * row]) for y in range(height)]
    return width, height, bits, rows if data[17] & 0x20 else rows[::-1]
