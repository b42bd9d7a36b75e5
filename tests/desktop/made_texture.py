"""Writes texture files by docs/texture-format.md, without the project's writer."""
import struct


def long(value):
    return b"\x0f" + struct.pack(">i", value)


def chunk(identifier, version, content):
    name = identifier if isinstance(identifier, bytes) else struct.pack(">i", identifier)
    return b"\x01" + name + struct.pack(">i", version) + content + b"\x02"


def block(content):
    return b"\x80" + struct.pack(">i", len(content)) + content


def rows(version, width, lines, channels):
    """`lines` have `channels` interleaved values a pixel; a file has the channels of a row one after the other."""
    head = long(0) + long(0) + long(width) + long(len(lines)) + long(channels)
    return chunk(b"TaVx", version, head + b"".join(
        b"\x0c\x00" + block(bytes(line[c::channels])) for line in lines for c in range(channels)))


def texture_file(width, colour, alphas=(), grey=False):
    """`colour` and each of `alphas` are lists of rows of bytes."""
    mode, channels = (2, 1) if grey else (4, 3)
    layers = b"".join(chunk(501, 0, chunk(b"TaLy", 0, long(2) + block(b"\0") + long(0) + b"\x13\x3f\x80\0\0" +
                                          b"\x15\0" + long(0) + long(0) + b"\x82\0\0\0\0" + long(0) + long(0) +
                                          b"\x15\0") +
                            rows(1, width, alpha, 1)) for alpha in alphas)
    content = chunk(b"TaTx", 1, long(width) + long(len(colour)) + long(mode)) + rows(2, width, colour, channels)
    content += chunk(599, 0, chunk(110100, 0, layers)) if alphas else b""
    return b"AVXRTexa" + chunk(502, 0, content)
