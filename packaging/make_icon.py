#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Makes the window's icon: lights out of focus, as hexagons with a bright rim, over the night.

    python3 packaging/make_icon.py packaging/icons

writes glimmerview.svg, glimmerview-SIZE.png for the sizes that desktops ask for, and glimmerview.ico
for Windows. All of them have the same shapes, in parts of the icon's side; the smallest sizes leave
out what would be a smudge there.
"""

import math
import os
import struct
import sys
import zlib

SIZES = (16, 24, 32, 48, 64, 128, 256)
ICO_SIZES = (16, 32, 48, 256)

TILE_INSET, TILE_RADIUS = 0.03, 0.21
TILE_TOP, TILE_BOTTOM = (46, 56, 84), (14, 18, 32)


class Hexagon:
    """A light: where, how large to its corners, how far turned, and its colours."""

    def __init__(self, x, y, radius, degrees, fill, rim, smallest):
        self.x, self.y, self.radius, self.fill, self.rim = x, y, radius, fill, rim
        self.turn = math.radians(degrees)
        self.smallest = smallest  # the smallest icon that shows it
        self.rim_width = max(0.16 * radius, 0.022)
        # As round joins of a line that wide make it.
        self.rounding = self.rim_width / 2
        self.core = radius - self.rounding * 2 / math.sqrt(3)

    def corners(self):
        """Of the rim's middle line."""
        return [(self.x + self.core * math.cos(self.turn + k * math.pi / 3),
                 self.y + self.core * math.sin(self.turn + k * math.pi / 3)) for k in range(6)]

    def distance(self, x, y):
        """To the outline, negative inside."""
        dx, dy = x - self.x, y - self.y
        angle = (math.atan2(dy, dx) - self.turn) % (math.pi / 3) - math.pi / 6
        along, across = math.hypot(dx, dy) * math.cos(angle), math.hypot(dx, dy) * math.sin(angle)
        beyond = along - self.core * math.cos(math.pi / 6)
        aside = abs(across) - self.core / 2
        if beyond > 0 and aside > 0:
            return math.hypot(beyond, aside) - self.rounding
        return beyond - self.rounding


LIGHTS = (
    Hexagon(0.25, 0.775, 0.105, 24, (255, 96, 128), (255, 176, 190), 32),
    Hexagon(0.70, 0.675, 0.200, 6, (56, 150, 255), (150, 212, 255), 0),
    Hexagon(0.42, 0.395, 0.285, 14, (255, 158, 44), (255, 232, 170), 0),
)
FILL_MIDDLE, FILL_EDGE = 0.42, 0.72  # how much of its colour a light has, in the middle and outside


def tile_distance(x, y):
    half = 0.5 - TILE_INSET - TILE_RADIUS
    dx, dy = max(abs(x - 0.5) - half, 0), max(abs(y - 0.5) - half, 0)
    return math.hypot(dx, dy) - TILE_RADIUS


def over(below, colour, part):
    return [b + (c - b) * part for b, c in zip(below, colour)]


def sample(x, y, lights):
    """Colour and alpha at a point, 0 to 255 and 0 to 1."""
    if tile_distance(x, y) > 0:
        return (0, 0, 0), 0
    colour = over(TILE_TOP, TILE_BOTTOM, y)
    for light in lights:
        distance = light.distance(x, y)
        if distance <= -light.rim_width:
            out = min(math.hypot(x - light.x, y - light.y) / light.radius, 1)
            colour = over(colour, light.fill, FILL_MIDDLE + (FILL_EDGE - FILL_MIDDLE) * out * out)
        elif distance <= 0:
            colour = over(colour, light.rim, 0.95)
    return colour, 1


def paint(size):
    """Rows of RGBA bytes."""
    lights = [light for light in LIGHTS if size >= light.smallest]
    samples = 8 if size <= 64 else 4
    rows = []
    for row in range(size):
        line = bytearray()
        for column in range(size):
            total, seen = [0.0, 0.0, 0.0], 0
            for k in range(samples * samples):
                colour, alpha = sample((column + (k % samples + 0.5) / samples) / size,
                                       (row + (k // samples + 0.5) / samples) / size, lights)
                total = [t + c * alpha for t, c in zip(total, colour)]
                seen += alpha
            line += bytes(int(t / max(seen, 1) + 0.5) for t in total)
            line.append(int(255 * seen / samples ** 2 + 0.5))
        rows.append(bytes(line))
    return rows


def png(rows):
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    raw = b"".join(b"\0" + row for row in rows)
    return (b"\x89PNG\r\n\x1a\n"
            + chunk(b"IHDR", struct.pack(">IIBBBBB", len(rows), len(rows), 8, 6, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def ico(pictures):
    """PNG pictures by their sizes, as one file."""
    head, body = struct.pack("<HHH", 0, 1, len(pictures)), b""
    start = len(head) + 16 * len(pictures)
    for size, data in pictures.items():
        head += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(data),
                            start + len(body))
        body += data
    return head + body


def svg():
    def rgb(colour):
        return "#%02x%02x%02x" % colour

    def number(value):
        return f"{256 * value:.2f}".rstrip("0").rstrip(".")

    side = number(1 - 2 * TILE_INSET)
    lines = ['<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 256 256">', "<defs>",
             '<linearGradient id="night" x1="0" y1="0" x2="0" y2="1">'
             f'<stop stop-color="{rgb(TILE_TOP)}"/>'
             f'<stop offset="1" stop-color="{rgb(TILE_BOTTOM)}"/></linearGradient>']
    for k, light in enumerate(LIGHTS):
        lines.append(
            f'<radialGradient id="light{k}" gradientUnits="userSpaceOnUse" cx="{number(light.x)}" '
            f'cy="{number(light.y)}" r="{number(light.radius)}">'
            f'<stop stop-color="{rgb(light.fill)}" stop-opacity="{FILL_MIDDLE}"/>'
            f'<stop offset="1" stop-color="{rgb(light.fill)}" stop-opacity="{FILL_EDGE}"/>'
            "</radialGradient>")
    lines += ["</defs>",
              f'<rect x="{number(TILE_INSET)}" y="{number(TILE_INSET)}" width="{side}" '
              f'height="{side}" rx="{number(TILE_RADIUS)}" fill="url(#night)"/>']
    for k, light in enumerate(LIGHTS):
        points = " ".join(f"{number(x)},{number(y)}" for x, y in light.corners())
        lines.append(f'<polygon points="{points}" fill="url(#light{k})" stroke="{rgb(light.rim)}" '
                     f'stroke-opacity="0.95" stroke-width="{number(light.rim_width)}" '
                     'stroke-linejoin="round"/>')
    return "\n".join(lines + ["</svg>", ""])


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: make_icon.py FOLDER")
    made = {size: png(paint(size)) for size in SIZES}
    for one, bytes_of_one in made.items():
        with open(os.path.join(sys.argv[1], f"glimmerview-{one}.png"), "wb") as file:
            file.write(bytes_of_one)
    with open(os.path.join(sys.argv[1], "glimmerview.ico"), "wb") as file:
        file.write(ico({size: made[size] for size in ICO_SIZES}))
    with open(os.path.join(sys.argv[1], "glimmerview.svg"), "w", encoding="ascii") as file:
        file.write(svg())
