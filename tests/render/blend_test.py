"""Compares every blend mode and kind of alpha with exact fractions.

blend_test.py PROGRAM [linear]

With "linear", colours are blended in linear light; sRGB's curve has no exact fractions, so its values are rounded once,
to more digits than the program has.

The rules are stated here as they are for straight colours, one pixel at a time, and share nothing with the program but
the rules: it works with multiplied colours and floats.
"""

import itertools
import subprocess
import sys
from fractions import Fraction

ONE = Fraction(1)
ZERO = Fraction(0)

# Ends, neighbours of the ends, the middle between two bytes on either side, and others.
VALUES = (0, 1, 100, 128, 254, 255)


def curve(value):
    """From a stored value to the one that is blended."""
    if "linear" not in sys.argv:
        return value
    v = float(value)
    return Fraction(v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4)


def curve_back(value):
    if "linear" not in sys.argv:
        return value
    v = float(value)
    return Fraction(v * 12.92 if v <= 0.0031308 else 1.055 * v ** (1 / 2.4) - 0.055)


def straight_of(colour, alpha, coverage, matte):
    """The layer's own colour as it is blended, and how much it covers, from the bytes of its file."""
    stored, a = stored_colour_of(colour, alpha, coverage, matte)
    return curve(stored), a


def stored_colour_of(colour, alpha, coverage, matte):
    if coverage == "full":
        return Fraction(colour, 255), ONE
    a = Fraction(alpha, 255)
    if coverage == "straight":
        return Fraction(colour, 255), a
    if a == 0:
        return ZERO, a  # nothing covers, so no colour is to be seen
    seen = Fraction(colour, 255) - (ONE - a) * Fraction(matte, 255)
    return min(ONE, max(ZERO, seen / a)), a


def blended(blend, cs, cb):
    return {"NRM": cs, "MUL": cs * cb, "ADD": min(ONE, cs + cb)}[blend]


def composite(blend, cs, a_s, cb, a_b):
    """The result, multiplied by its coverage, and its coverage."""
    colour = a_s * a_b * blended(blend, cs, cb) + a_s * (1 - a_b) * cs + (1 - a_s) * a_b * cb
    return colour, a_s + a_b - a_s * a_b


def cases():
    kinds = [("full", 0), ("straight", 0), ("premultiplied", 0), ("premultiplied", 255), ("premultiplied", 90)]
    # Three colours a pixel, so that channels are told apart: each colour of the grid comes in each channel.
    for blend, (coverage, matte) in itertools.product(("NRM", "ADD", "MUL"), kinds):
        for i, a_s, j, a_b in itertools.product(range(len(VALUES)), VALUES, (0, 3), VALUES):
            layer = [VALUES[(i + shift) % len(VALUES)] for shift in (0, 2, 3)] + [a_s]
            below = [VALUES[(j + shift) % len(VALUES)] for shift in (0, 1, 2)] + [a_b]
            yield blend, coverage, matte, layer, below


def differences(case, answer):
    blend, coverage, matte, layer, below = case
    words = answer.split()
    floats = [Fraction(float(word)) for word in words[:4]]
    found = [int(word) for word in words[4:]]
    colours = []
    for channel in range(3):
        cs, a_s = straight_of(layer[channel], layer[3], coverage, matte)
        cb = curve(Fraction(below[channel], 255))
        colour, result = composite(blend, cs, a_s, cb, Fraction(below[3], 255))
        colours.append(colour)
    for got, exact in zip(floats, colours + [result]):
        if abs(got - exact) > Fraction(1, 10**6):
            yield f"{float(got)} is exactly {float(exact)}"
    straight = [curve_back(colour / result) if result else ZERO for colour in colours] + [result]
    for got, exact in zip(found, straight):
        if abs(got - exact * 255) > 1:
            yield f"byte {got} is exactly {float(exact * 255)}"


def main():
    given = list(cases())
    lines = "".join(f"{blend} {coverage} {matte} {' '.join(map(str, layer + below))}\n"
                    for blend, coverage, matte, layer, below in given)
    answers = subprocess.run(sys.argv[1:], input=lines, capture_output=True, text=True, check=True).stdout.splitlines()
    if len(answers) != len(given):
        sys.exit(f"{len(given)} cases were asked and {len(answers)} answered")
    failed = 0
    for case, answer in zip(given, answers):
        wrong = list(differences(case, answer))
        if wrong:
            failed += 1
            if failed <= 10:
                blend, coverage, matte, layer, below = case
                print(f"{blend}, {coverage} over {matte}, {layer} on {below}: {'; '.join(wrong)}")
    print(f"{len(given) - failed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


main()
