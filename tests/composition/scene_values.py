#!/usr/bin/env python3
"""Prints the numbers that the tests of cameras, lights and nulls expect, as hexadecimal doubles.

Independent of the code under test and of every mathematics library: sines, cosines and tangents are summed up in 60
decimal digits and rounded once; the other operations are IEEE doubles, written in the order of the rules.
"""

import decimal
import struct
from decimal import Decimal

decimal.getcontext().prec = 60
PI = 3.141592653589793  # the double nearest to pi


def single(text):
    """The single-precision value that a number in a file becomes, as a double."""
    return struct.unpack("<f", struct.pack("<f", float(text)))[0]


def series(x, term, n):
    total = Decimal(0)
    while abs(term) > Decimal(10) ** -58:
        total += term
        n += 2
        term = -term * x * x / (n * (n - 1))
    return total


def exact_sin(x):
    return series(Decimal(x), Decimal(x), 1)


def exact_cos(x):
    return series(Decimal(x), Decimal(1), 0)


def sin(x):
    return float(exact_sin(x)) if x else x


def cos(x):
    return float(exact_cos(x))


def tan(x):
    return float(exact_sin(x) / exact_cos(x)) if x else x


def point_of_interest(position, rotation, distance):
    px, py, pz = (single(v) for v in position)
    h = single(rotation[0]) * PI / 180
    p = single(rotation[1]) * PI / 180
    d = single(distance)
    x = (-cos(p) * sin(h)) * d + (px + 0.0)
    y = 0.0 - (sin(p) * d + py)
    z = (cos(p) * cos(h)) * d + pz
    return x, y, z


def zoom(width, fov):
    return (width * 0.5) / tan((single(fov) * PI / 180) * 0.5)


def show(name, *numbers):
    print(f"{name:44}", ", ".join(f"{n.hex()} ({n!r})" for n in numbers))


if __name__ == "__main__":
    for position, rotation, distance in [
        (("0", "100", "0"), ("0", "0", "0"), "1000"),
        (("0", "0", "0"), ("90", "0", "0"), "1000"),
        (("0", "0", "0"), ("0", "90", "0"), "1000"),
        (("12.5", "-340.25", "77.1"), ("33.3", "-12.7", "5.5"), "812.75"),
        (("-250.4", "1.1", "-9000"), ("-200.5", "61", "-3"), "0.1"),
        (("0", "0", "0"), ("720", "0", "0"), "1e6"),
    ]:
        show(f"poi {position} {rotation} {distance}"[:43], *point_of_interest(position, rotation, distance))
        show("  position", *(single(v) for v in position))
    for width, fov in [(640, "90"), (720, "40"), (721, "55.5"), (1, "179.9"), (1920, "-30")]:
        show(f"zoom {width} {fov}", zoom(width, fov))
    for value in ["0.1", "33.3", "0.9", "5.5"]:
        show(f"single {value}", single(value))
    for value in ["0.7", "1.2", "0.5", "1.1"]:
        percent = struct.unpack("<f", struct.pack("<f", single(value) * 100.0))[0]
        show(f"intensity {value}", percent)
    show("scale 1.0667", single("1.0667") * 100.0)
