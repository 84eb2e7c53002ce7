#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""A town out of focus behind a sharp window, in NumPy.

    python3 examples/window.py window.png

The lights are far brighter than white, as lamps are: spread over an aperture each of them is still a
bright image of it. The muntins of the window are a layer of their own, in focus, and laid over the rest.
"""

import sys

import glimmerblur
import numpy

from picture_writer import write_png

WIDTH, HEIGHT = 720, 405


def paint_town(random):
    """A sky with a glow above the roofs, and lamps of a few pixels, 40 to 150 times as bright as white."""
    y, x = numpy.mgrid[:HEIGHT, :WIDTH]
    glow = numpy.exp(-(((y - 300) / 110.0) ** 2)) * numpy.exp(-(((x - 420) / 360.0) ** 2))
    town = glow[..., None] * (0.06, 0.035, 0.03) + (0.003, 0.004, 0.010)

    colours = numpy.array([(1.0, 0.6, 0.25), (1.0, 0.85, 0.7), (1.0, 0.15, 0.1), (0.2, 0.6, 1.0)])
    for _ in range(46):
        row, column = random.normal(285, 45), random.uniform(0, WIDTH)
        lamp = numpy.hypot(x - column, y - row) < 1.5
        town[lamp] = colours[random.integers(4)] * random.uniform(40, 150)
    return town.astype("f4")


def paint_window():
    """Muntins as a layer with alpha, its colours multiplied by that."""
    y, x = numpy.mgrid[:HEIGHT, :WIDTH]
    across = numpy.abs(numpy.mod(x - 60, 240) - 120)
    down = numpy.abs(numpy.mod(y - 67, 270) - 135)
    cover = numpy.clip(6.5 - numpy.minimum(across, down), 0, 1)
    layer = numpy.zeros((HEIGHT, WIDTH, 4), "f4")
    layer[..., :3] = cover[..., None] * (0.006, 0.005, 0.005)
    layer[..., 3] = cover
    return layer


def paint_heart(side=53):
    """An aperture: any array will do."""
    x, y = numpy.meshgrid(*[numpy.linspace(-1.25, 1.25, side)] * 2)
    y = -y
    heart = (x * x + y * y - 1) ** 3 < x * x * y**3
    return numpy.where(heart, 255, 0).astype("u1")


def main(path):
    town = paint_town(numpy.random.default_rng(11))

    # One look for many pictures is an object. Here each side has its own.
    picture = numpy.empty_like(town)
    half = 420
    with glimmerblur.Defocus(shape="polygon", sides=6, radius=19, rotation=12) as hexagons:
        hexagons.render(town, picture[:, :half], region=(0, 0, half, HEIGHT))
    with glimmerblur.Defocus(shape="picture", aperture=paint_heart()) as hearts:
        hearts.render(town, picture[:, half:], region=(half, 0, WIDTH - half, HEIGHT))

    window = paint_window()
    picture = window[..., :3] + picture * (1 - window[..., 3:])
    write_png(path, picture.tolist())


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: window.py OUTPUT.png")
    main(sys.argv[1])
