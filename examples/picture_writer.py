# SPDX-License-Identifier: BSD-3-Clause
"""What the scripts that make the example pictures share: 16-bit PNG files."""

import struct
import zlib


def _chunk(name, data):
    return (struct.pack(">I", len(data)) + name + data
            + struct.pack(">I", zlib.crc32(name + data)))


def write_png(path, pixels):
    """Writes rows of pixels, each a list of light values from 0: one for grey, three for
    red, green and blue. Values are linear and get a gamma of 2.2; above 1 they are cut."""
    channels = len(pixels[0][0])
    width = len(pixels[0])
    above = bytes(width * channels * 2)
    raw = bytearray()
    for row in pixels:
        packed = b"".join(
            struct.pack(f">{channels}H",
                        *(min(65535, int(v ** (1 / 2.2) * 65535 + 0.5)) for v in pixel))
            for pixel in row)
        # Each row by the difference from the one above, which packs best here.
        raw.append(2)
        raw += bytes((a - b) & 255 for a, b in zip(packed, above))
        above = packed
    colour_type = 0 if channels == 1 else 2
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        file.write(_chunk(b"IHDR", struct.pack(">IIBBBBB", width, len(pixels), 16, colour_type,
                                               0, 0, 0)))
        file.write(_chunk(b"IDAT", zlib.compress(bytes(raw), 9)))
        file.write(_chunk(b"IEND", b""))
