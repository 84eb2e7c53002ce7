#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Makes garland.png: strings of small bulbs over a garden at dusk.

    python3 examples/make_garland.py examples/garland.png

Bulbs are two pixels wide and at full intensity, everything else is far below them: without
emphasis a blur takes them away, with emphasis each becomes the aperture.
"""

import math
import random
import sys

from picture_writer import write_png

WIDTH, HEIGHT = 960, 540


def dusk(x, y):
    """The last light over a hedge, and the lawn in front of it."""
    hedge = 330 + 14 * math.sin(x * 0.021) + 7 * math.sin(x * 0.063 + 1.0)
    if y < hedge:
        low = y / hedge
        return [0.012 + 0.050 * low ** 3, 0.016 + 0.026 * low ** 3, 0.045 + 0.018 * low]
    depth = (y - hedge) / (HEIGHT - hedge)
    if depth < 0.18:
        return [0.0022, 0.0042, 0.0030]
    return [0.0050, 0.0100, 0.0045]


def glow(pixels, x, y, radius, colour, amount):
    for dy in range(-radius, radius + 1):
        for dx in range(-radius, radius + 1):
            if 0 <= x + dx < WIDTH and 0 <= y + dy < HEIGHT:
                light = amount / (1.0 + (dx * dx + dy * dy) / 5.0) ** 1.6
                for c in range(3):
                    pixels[y + dy][x + dx][c] += colour[c] * light


def bulb(pixels, x, y):
    for dy in range(2):
        for dx in range(2):
            if 0 <= x + dx < WIDTH and 0 <= y + dy < HEIGHT:
                pixels[y + dy][x + dx] = [1.2, 1.2, 1.2]


def paint():
    rng = random.Random(4)
    pixels = [[dusk(x, y) for x in range(WIDTH)] for y in range(HEIGHT)]
    lights = []
    for left, right, height, sag, count in ((-40, 520, 70, 130, 12), (430, 1010, 40, 150, 12),
                                            (-60, 1020, 210, 70, 17)):
        for i in range(count):
            t = (i + 0.5 + rng.uniform(-0.12, 0.12)) / count
            x = left + (right - left) * t
            y = height + sag * 4.0 * t * (1.0 - t)
            lights.append((int(x), int(y)))
    for _ in range(7):
        lights.append((rng.randint(30, WIDTH - 30), rng.randint(410, 510)))
    warm = (1.0, 0.62, 0.22)
    for x, y in lights:
        glow(pixels, x, y, 14, warm, 0.18)
    for x, y in lights:
        bulb(pixels, x, y)
    return pixels


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make_garland.py OUTPUT.png")
    write_png(sys.argv[1], paint())
