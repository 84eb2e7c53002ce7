# SPDX-License-Identifier: BSD-3-Clause
"""What a picture's file holds, however it is packed: a library that has no memory to deflate by stores
samples as they are, or deflates otherwise, and the picture is the same."""

import struct
import zlib

DEFLATED_LINES = {2: 1, 3: 16}  # of an EXR file: compressions and how many lines they pack at once
DEFLATED_STRIPS = (8, 32946)    # of a TIFF file
STRIP_PLACES, STRIP_SIZES, TIFF_COMPRESSION = 273, 279, 259
TIFF_SIZES = {1: 1, 2: 1, 3: 2, 4: 4, 5: 8, 6: 1, 7: 1, 8: 2, 9: 4, 10: 8, 11: 4, 12: 8}


def contents(data):
    """Of a file, in a form that can be compared; its bytes where the format is another one, or it is
    broken."""
    try:
        if data[:4] == b"\x76\x2f\x31\x01":
            return exr_contents(data)
        if data[:4] == b"II\x2a\x00":
            return tiff_contents(data)
    except (ValueError, KeyError, IndexError, struct.error, zlib.error):
        pass
    return data


def exr_head(data):
    """The attributes of a file of one part with lines, and where they end."""
    attributes, at = {}, 8
    while data[at] != 0:
        name_end = data.index(b"\0", at)
        type_end = data.index(b"\0", name_end + 1)
        size = struct.unpack_from("<i", data, type_end + 1)[0]
        attributes[data[at:name_end].decode()] = data[type_end + 5:type_end + 5 + size]
        at = type_end + 5 + size
    return attributes, at + 1


def exr_line_bytes(attributes, width):
    size, at, channels = 0, 0, attributes["channels"]
    while channels[at] != 0:
        at = channels.index(b"\0", at) + 1
        size += width * (2 if struct.unpack_from("<i", channels, at)[0] == 1 else 4)
        at += 16
    return size


def exr_contents(data):
    attributes, at = exr_head(data)
    left, top, right, bottom = struct.unpack("<4i", attributes["dataWindow"])
    at_once = DEFLATED_LINES[attributes["compression"][0]]
    line_bytes = exr_line_bytes(attributes, right - left + 1)
    blocks = []
    for y in range(top, bottom + 1, at_once):
        place = struct.unpack_from("<Q", data, at + len(blocks) * 8)[0]
        size = struct.unpack_from("<i", data, place + 4)[0]
        block = data[place + 8:place + 8 + size]
        if size < line_bytes * min(at_once, bottom + 1 - y):
            block = exr_inflated(block)
        blocks.append(block)
    return attributes, data[:8], blocks


def exr_inflated(block):
    """Each byte was the difference to the last; of every two, the first are in front."""
    packed = bytearray(zlib.decompress(block))
    for i in range(1, len(packed)):
        packed[i] = (packed[i - 1] + packed[i] - 128) & 255
    plain = bytearray(len(packed))
    half = (len(packed) + 1) // 2
    plain[::2] = packed[:half]
    plain[1::2] = packed[half:]
    return bytes(plain)


def tiff_contents(data):
    at = struct.unpack_from("<I", data, 4)[0]
    tags = {}
    for i in range(struct.unpack_from("<H", data, at)[0]):
        tag, kind, count = struct.unpack_from("<HHI", data, at + 2 + i * 12)
        size = TIFF_SIZES[kind] * count
        place = at + 10 + i * 12 if size <= 4 else struct.unpack_from("<I", data, at + 10 + i * 12)[0]
        tags[tag] = (kind, data[place:place + size])
    places, sizes = (tiff_numbers(tags.pop(tag)) for tag in (STRIP_PLACES, STRIP_SIZES))
    strips = [data[place:place + size] for place, size in zip(places, sizes, strict=True)]
    if tiff_numbers(tags[TIFF_COMPRESSION])[0] in DEFLATED_STRIPS:
        strips = [zlib.decompress(strip) for strip in strips]
    return tags, strips


def tiff_numbers(tag):
    kind, data = tag
    return [number for number, in struct.iter_unpack("<H" if kind == 3 else "<I", data)]
