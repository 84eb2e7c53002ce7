#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Makes night.png: a town at night across water, with many small saturated lights.

    python3 examples/make_night.py examples/night.png

The picture is 16 bits a sample and always the same. Lights are a few pixels wide and at
full intensity, as lamps are on a sensor; out of focus each of them shows the aperture.
"""

import math
import random
import sys

from picture_writer import write_png

WIDTH, HEIGHT = 960, 540
WATERLINE = 350

WARM = (1.0, 0.72, 0.38)
WHITE = (1.0, 0.95, 0.88)
RED = (1.0, 0.10, 0.08)
GREEN = (0.12, 1.0, 0.42)
BLUE = (0.22, 0.45, 1.0)
PINK = (1.0, 0.25, 0.75)


def sky(x, y):
    """A glow over the town that fades upwards."""
    glow = math.exp(-(WATERLINE - y) / 120.0)
    middle = math.exp(-(((x - 520) / 420.0) ** 2))
    return (0.0012 + 0.016 * glow * middle, 0.0016 + 0.010 * glow * middle, 0.004 + 0.010 * glow)


def make_skyline(rng):
    """Heights of the buildings, by column, and the buildings as (left, right, top)."""
    tops = [WATERLINE] * WIDTH
    buildings = []
    x = 0
    while x < WIDTH:
        width = rng.randint(28, 74)
        rise = rng.randint(30, 105) + (70 if 380 < x < 640 and rng.random() < 0.5 else 0)
        right = min(x + width, WIDTH)
        buildings.append((x, right, WATERLINE - rise))
        for column in range(x, right):
            tops[column] = WATERLINE - rise
        x = right + rng.choice((0, 0, 3, 8))
    return tops, buildings


def add(pixels, x, y, colour, amount):
    if 0 <= x < WIDTH and 0 <= y < HEIGHT:
        pixel = pixels[y][x]
        for c in range(3):
            pixel[c] += colour[c] * amount


def lamp(pixels, x, y, radius, colour):
    """A disc at full intensity with a soft edge, and its streak on the water."""
    reach = int(radius) + 2
    for dy in range(-reach, reach + 1):
        for dx in range(-reach, reach + 1):
            cover = radius + 0.5 - math.hypot(dx, dy)
            if cover > 0.0:
                add(pixels, x + dx, y + dy, colour, 1.6 * min(cover, 1.0))
    if y > WATERLINE:
        return
    mirror = 2 * WATERLINE - y + 12
    for step in range(60):
        wave = math.sin(step * 1.9 + x) * (1.0 + step / 18.0)
        add(pixels, x + int(wave), mirror + step, colour, 0.10 * math.exp(-step / 16.0))


def paint():
    rng = random.Random(20)
    tops, buildings = make_skyline(rng)
    pixels = []
    for y in range(HEIGHT):
        row = []
        for x in range(WIDTH):
            if y < tops[x]:
                row.append(list(sky(x, y)))
            elif y < WATERLINE:
                row.append([0.0006, 0.0007, 0.0012])
            else:
                depth = (y - WATERLINE) / (HEIGHT - WATERLINE)
                mirrored = sky(x, max(2 * WATERLINE - y, 0))
                ripple = 0.5 + 0.18 * math.sin(y * 0.9 + 3.0 * math.sin(x * 0.013 + y * 0.21))
                row.append([value * ripple * (1.0 - 0.4 * depth) for value in mirrored])
        pixels.append(row)

    # Lit windows: dim, so that the lamps stay what one looks at.
    for left, right, top in buildings:
        tone = rng.choice((WARM, WARM, WHITE, BLUE))
        for y in range(top + 6, WATERLINE - 8, 9):
            for x in range(left + 5, right - 5, 7):
                if rng.random() < 0.34:
                    for dy in range(3):
                        for dx in range(2):
                            add(pixels, x + dx, y + dy, tone, rng.uniform(0.03, 0.12))

    # Street lamps along the water, signs on the roofs, lights on masts and boats.
    for x in range(18, WIDTH, 47):
        lamp(pixels, x + rng.randint(-5, 5), WATERLINE - rng.randint(4, 9), 2.6, WARM)
    for left, right, top in buildings:
        if rng.random() < 0.55:
            colour = rng.choice((RED, GREEN, BLUE, PINK, WHITE))
            lamp(pixels, (left + right) // 2, top - 4, 3.0, colour)
    for x, y, colour in ((150, 90, WHITE), (905, 132, RED), (505, 60, RED), (690, 120, WHITE)):
        lamp(pixels, x, y, 2.4, colour)
    for _ in range(9):
        lamp(pixels, rng.randint(30, WIDTH - 30), WATERLINE + rng.randint(28, 110), 2.6,
             rng.choice((RED, GREEN, WHITE)))
    return pixels


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make_night.py OUTPUT.png")
    write_png(sys.argv[1], paint())
