# SPDX-License-Identifier: BSD-3-Clause
"""Small pictures for the program, made from a seed."""

import struct
import zlib


def _chunk(name, data):
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def write_png(path, dice, width, height, bits, alpha):
    """Noise, or a dark picture with a few lights."""
    channels = 4 if alpha else 3
    size = channels * bits // 8
    dark = dice.random() < 0.5
    rows = bytearray()
    for _ in range(height):
        rows.append(0)
        for _ in range(width):
            is_light = not dark or dice.random() < 0.03
            rows += dice.randbytes(size) if is_light else bytes([9]) * size
    path.write_bytes(b"\x89PNG\r\n\x1a\n"
                     + _chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, bits,
                                                   6 if alpha else 2, 0, 0, 0))
                     + _chunk(b"IDAT", zlib.compress(bytes(rows), 1)) + _chunk(b"IEND", b""))


def mutated(data, dice):
    """Bytes that something has happened to: other ones, mostly near the ends, or fewer of them."""
    data = bytearray(data)
    for _ in range(dice.randint(1, 4)):
        if data:
            reach = len(data) if dice.random() < 0.5 else min(len(data), 200)
            at = dice.randrange(reach)
            data[at if dice.random() < 0.7 else -1 - at] = dice.choice((0, 1, 127, 128, 255,
                                                                        dice.randrange(256)))
    if dice.random() < 0.25:
        del data[dice.randrange(len(data) + 1):]
    return bytes(data)


def look(dice, radius=""):
    """Options of a look that stays the same for all frames."""
    words = ["--shape", dice.choice(("circle", "ellipse", "polygon", "image")),
             "--radius", radius or f"{dice.uniform(0, 9):.2f}px", "--emphasis",
             dice.choice(("1", "12", "50", "90", "500"))]
    if dice.random() < 0.5:
        words += ["--radius-y", f"{dice.uniform(0, 9):.2f}px", "--rotation",
                  str(dice.randrange(360)), "--sides", str(dice.randint(3, 50))]
    if dice.random() < 0.2:
        words += ["--mix", f"{dice.random():.2f}"]
    if dice.random() < 0.2:
        words += ["--alpha", "as-is"]
    return words


def animated(dice):
    """The same with a radius that moves, which makes an aperture a frame."""
    return look(dice, f"first={dice.uniform(0, 3):.1f}px; last={dice.uniform(3, 9):.1f}px")
