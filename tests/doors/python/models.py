# SPDX-License-Identifier: BSD-3-Clause
"""What the effect does without emphasis, in plain NumPy and with none of its code."""

import numpy


def draw_polygon(corners, reach, cells=32):
    """How much of each pixel a convex polygon covers, by counting points of a fine grid.

    corners  (x, y) from the middle of the middle pixel, y upwards, anticlockwise
    reach    pixels from the middle to each side of the array
    """
    side = 2 * reach + 1
    places = (numpy.arange(side * cells) + 0.5) / cells - side / 2.0
    x, y = numpy.meshgrid(places, -places)
    inside = numpy.ones(x.shape, bool)
    for (ax, ay), (bx, by) in zip(corners, corners[1:] + corners[:1]):
        inside &= (bx - ax) * (y - ay) - (by - ay) * (x - ax) >= 0
    return inside.reshape(side, cells, side, cells).mean(axis=(1, 3))


def ellipse_corners(radius_x, radius_y, count, rotation=0.0):
    """Corners on an ellipse, the first one where it meets its own x axis."""
    turn = numpy.radians(rotation)
    angles = 2 * numpy.pi * numpy.arange(count) / count
    x, y = radius_x * numpy.cos(angles), radius_y * numpy.sin(angles)
    return list(zip(x * numpy.cos(turn) - y * numpy.sin(turn), x * numpy.sin(turn) + y * numpy.cos(turn)))


def convolve(plane, weights, around="edge", middle=None):
    """Each pixel spread by the weights, whose middle stands on it.

    around  what is beside the plane, in NumPy's words: "edge" or "constant"
    """
    height, width = weights.shape
    row, column = middle or (height // 2, width // 2)
    margin = max(weights.shape)
    padded = numpy.pad(plane.astype(float), margin, mode=around)
    spread = numpy.zeros(plane.shape)
    for y, x in numpy.argwhere(weights):
        top, left = margin - (y - row), margin - (x - column)
        spread += weights[y, x] * padded[top : top + plane.shape[0], left : left + plane.shape[1]]
    return spread / weights.sum()


def convolve_channels(picture, weights, around="edge"):
    return numpy.stack(
        [convolve(picture[..., c], weights, around) for c in range(picture.shape[2])], axis=-1
    )
