# SPDX-License-Identifier: BSD-3-Clause
"""NumPy arrays as frames of the library, without copies where their strides allow."""

import ctypes
from typing import Any, NamedTuple, Optional, Tuple

import numpy

from . import _library

Array = numpy.ndarray[Any, numpy.dtype[Any]]

_SAMPLES = {numpy.dtype("u1"): 0, numpy.dtype("u2"): 1, numpy.dtype("f4"): 2}
_LAYOUTS = {"rgba": 0, "planes": 1}
_ALPHAS = {"premultiplied": 0, "straight": 1}
_FIRST_ROWS = {"top": 0, "bottom": 1}


class Rect(NamedTuple):
    """Pixels of a picture: from column x and row y on."""

    x: int
    y: int
    width: int
    height: int


class Meaning(NamedTuple):
    """What the numbers of an array stand for."""

    layout: Optional[str]  # None: RGBA where there are three or four channels
    alpha: str
    first_row: str


def choice(name: str, value: str, choices: "dict[str, int]") -> int:
    """The number of a word."""
    if value not in choices:
        known = ", ".join(choices)
        raise ValueError(f"{name}: must be one of {known}, not {value!r}")
    return choices[value]


def first_row_number(first_row: str) -> int:
    return choice("first_row", first_row, _FIRST_ROWS)


def check_samples(name: str, array: Array) -> None:
    """Refuses arrays that are no picture."""
    if array.dtype not in _SAMPLES:
        raise TypeError(f"{name}: must be uint8, uint16 or float32, not {array.dtype}")
    if array.ndim not in (2, 3):
        raise ValueError(
            f"{name}: must be (height, width) or (height, width, channels), not {array.shape}"
        )
    if array.size == 0:
        raise ValueError(f"{name}: has no samples, its shape is {array.shape}")


def _strides(array: Array) -> Tuple[int, ...]:
    """Bytes from row to row, pixel to pixel and channel to channel. An axis of one place gets
    the sample's own size, as its stride says nothing, and 0 would mean something to the library."""
    shape = array.shape + (1,) * (3 - array.ndim)
    strides = array.strides + (array.itemsize,) * (3 - array.ndim)
    return tuple(
        stride if count > 1 else array.itemsize for count, stride in zip(shape, strides)
    )


def is_each_for_itself(array: Array) -> bool:
    """Not where several samples are one: that is a stride of 0, which means something else to the
    library."""
    return 0 not in _strides(array)


def same_samples(one: Array, other: Array) -> bool:
    """Whether two arrays are the same view of the same memory."""
    return (
        one.ctypes.data == other.ctypes.data
        and one.dtype == other.dtype
        and one.shape == other.shape
        and _strides(one) == _strides(other)
    )


def frame_of(array: Array, rect: Rect, meaning: Meaning) -> _library.Frame:
    """Of an array whose samples are each for itself. Borrows its memory."""
    channels = array.shape[2] if array.ndim == 3 else 1
    layout = meaning.layout or ("rgba" if channels in (3, 4) else "planes")
    row, pixel, channel = _strides(array)
    frame = _library.Frame()
    _library.library.glimmerblur_frame_init(ctypes.byref(frame))
    frame.rect = _library.Rect(*rect)
    frame.sample = _SAMPLES[array.dtype]
    frame.layout = choice("layout", layout, _LAYOUTS)
    frame.channels = channels
    frame.alpha = choice("alpha", meaning.alpha, _ALPHAS)
    frame.first_row = first_row_number(meaning.first_row)
    frame.data = array.ctypes.data
    frame.row_stride, frame.pixel_stride, frame.channel_stride = row, pixel, channel
    return frame
