#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Makes heart.png: a white heart on black, an aperture for the image shape.

    python3 examples/make_heart.py examples/heart.png

The heart is 44 pixels wide in the middle of 64 x 64, so that a disc of 30 pixels around the
middle holds it whole.
"""

import sys

from picture_writer import write_png

SIDE = 64
SAMPLES = 8  # along x and y in each pixel, for a smooth outline


def inside(x, y):
    """The curve (x^2 + y^2 - 1)^3 = x^2 y^3, y upwards."""
    return (x * x + y * y - 1.0) ** 3 - x * x * y ** 3 <= 0.0


def paint():
    pixels = []
    for row in range(SIDE):
        line = []
        for column in range(SIDE):
            hits = 0
            for k in range(SAMPLES * SAMPLES):
                px = column + (k % SAMPLES + 0.5) / SAMPLES - 0.5 - SIDE / 2
                py = row + (k // SAMPLES + 0.5) / SAMPLES - 0.5 - SIDE / 2
                hits += inside(px / 19.3, -py / 19.3 + 0.12)
            # The writer's gamma would make the outline's greys lighter than they are.
            line.append([(hits / SAMPLES ** 2) ** 2.2])
        pixels.append(line)
    return pixels


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make_heart.py OUTPUT.png")
    write_png(sys.argv[1], paint())
