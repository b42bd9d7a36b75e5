#!/usr/bin/env python3
"""Prints the table of numbers_test.cpp: what scenes/numbers.aec comes to, computed without the importer.

The texts of the file are rounded to single precision from their exact decimal value, once. Sine, cosine and tangent
are summed as series in exact fractions, far beyond double precision, and rounded once at the end. Everything between
is one double operation after the other, in the order in which the formulas are written.
"""

from fractions import Fraction
import math
from pathlib import Path
import struct

WIDTH = 1001
PI = 3.141592653589793  # the constant that the formulas name, not the circle's
TWO_PI_EXACT = 2 * Fraction("3.14159265358979323846264338327950288419716939937510582097494459230781640628620899")


def single(text):
    """The single-precision number nearest to a decimal, ties to even, as the double that holds it."""
    exact = abs(Fraction(text))
    sign = -1.0 if text.lstrip().startswith("-") else 1.0
    if exact == 0:
        return sign * 0.0
    exponent = -149
    while exact / Fraction(2) ** exponent >= 2 ** 24:
        exponent += 1
    scaled = exact / Fraction(2) ** exponent
    return sign * math.ldexp(float(round(scaled)), exponent)


def multiplied_in_single(left, right):
    exact = Fraction(left) * Fraction(right)
    return single(f"{exact.numerator}/{exact.denominator}")


def series(x, first_power):
    """sin (first power 1) or cos (0), of a double, as a fraction."""
    exact = Fraction(x)
    exact -= round(exact / TWO_PI_EXACT) * TWO_PI_EXACT
    total, power = Fraction(0), first_power
    term = exact if first_power else Fraction(1)
    while abs(term) > Fraction(1, 10 ** 60):
        total += term
        power += 2
        term *= -exact * exact / (power * (power - 1))
        term = Fraction(round(term * 10 ** 75), 10 ** 75)
    return total


def sin(x):
    return x if x == 0 else float(series(x, 1))


def cos(x):
    return float(series(x, 0))


def tan(x):
    return x if x == 0 else float(series(x, 1) / series(x, 0))


def radians(degrees):
    return degrees * PI / 180


def position(key):
    return key[0] + 0.0, 0.0 - key[1], key[2]


def point_of_interest(key, distance):
    h, p = radians(key[3]), radians(key[4])
    return ((-cos(p) * sin(h)) * distance + (key[0] + 0.0),
            0.0 - (sin(p) * distance + key[1]),
            (cos(p) * cos(h)) * distance + key[2])


def zoom(fov):
    half_width, tangent = WIDTH * 0.5, tan(radians(fov) * 0.5)
    return half_width / tangent if tangent else math.copysign(math.inf, tangent)


def row(layer, stream, frame, *components):
    def hexadecimal(value):
        if math.isinf(value):
            return "kInfinity" if value > 0 else "-kInfinity"
        return value.hex()
    values = ", ".join(hexadecimal(c) for c in components)
    print(f"    {{{layer}, {stream}, {frame}, {{{values}}}}},")


def main():
    numbers = {"CAMERA": [], "LIGHT": [], "NULL": []}
    values = {}
    block = None
    with open(Path(__file__).parent / "scenes" / "numbers.aec", encoding="ascii") as scene:
        for line in scene:
            words = line.split()
            if words and words[0] in numbers:
                block = words[0]
            elif words and words[0] == "KEY":
                numbers[block].append((int(words[1]), [single(word) for word in words[2:]]))
            elif words and words[0] in ("COLOR", "INTENSITY"):
                values[words[0]] = [single(word) for word in words[1:]]
    for number, key in numbers["CAMERA"]:
        frame = number - 3
        row("kCamera", "kLayerStreamPosition", frame, *position(key))
        row("kCamera", "kLayerStreamAnchorPoint", frame, *point_of_interest(key, key[7] if len(key) > 7 else 1000.0))
        row("kCamera", "kLayerStreamOrientation", frame, 0.0, 0.0, key[5])
        row("kCamera", "kLayerStreamZoom", frame, zoom(key[6]))
    for number, key in numbers["LIGHT"]:
        frame = number - 3
        row("kLight", "kLayerStreamPosition", frame, *position(key))
        row("kLight", "kLayerStreamAnchorPoint", frame, *point_of_interest(key, 1000.0))
        row("kLight", "kLayerStreamOrientation", frame, 0.0, 0.0, key[5])
    row("kLight", "kLayerStreamColor", "kNoKey", 1.0, *values["COLOR"])
    row("kLight", "kLayerStreamIntensity", "kNoKey", multiplied_in_single(values["INTENSITY"][0], 100.0))
    row("kLight", "kLayerStreamCastsShadows", "kNoKey", 1.0)
    for number, key in numbers["NULL"]:
        frame = number - 3
        row("kNull", "kLayerStreamPosition", frame, *position(key))
        row("kNull", "kLayerStreamXRotation", frame, key[3])
        row("kNull", "kLayerStreamYRotation", frame, -key[4])
        row("kNull", "kLayerStreamZRotation", frame, key[5])


if __name__ == "__main__":
    main()
