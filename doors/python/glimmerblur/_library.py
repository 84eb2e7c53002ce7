# SPDX-License-Identifier: BSD-3-Clause
"""The C interface of libglimmerblur, as ctypes sees it; glimmerblur.h says what each thing means.

A library beside this file is taken, as an installation by pip has it, or else the system's.
"""

import ctypes
import pathlib
from ctypes import POINTER, c_char_p, c_double, c_int32, c_int64, c_uint32, c_uint64, c_void_p

_SONAME = "libglimmerblur.so.0"


class Options(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("version", c_uint32),
        ("engine", c_int32),
        ("threads", c_int32),
        ("memory_limit", c_uint64),
        ("parallel_for", c_void_p),
        ("parallel_user", c_void_p),
    ]


class Look(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("version", c_uint32),
        ("shape", c_int32),
        ("sides", c_int32),
        ("radius_x", c_double),
        ("radius_y", c_double),
        ("rotation", c_double),
        ("pixel_aspect", c_double),
        ("emphasis", c_double),
        ("blur_alpha", c_int32),
        ("emphasis_alpha", c_int32),
        ("edge", c_int32),
        ("centred", c_int32),
    ]


class Rect(ctypes.Structure):
    _fields_ = [("x", c_int32), ("y", c_int32), ("width", c_int32), ("height", c_int32)]


class Frame(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("version", c_uint32),
        ("rect", Rect),
        ("sample", c_int32),
        ("layout", c_int32),
        ("channels", c_int32),
        ("alpha", c_int32),
        ("first_row", c_int32),
        ("reserved", c_int32),
        ("data", c_void_p),
        ("row_stride", c_int64),
        ("pixel_stride", c_int64),
        ("channel_stride", c_int64),
    ]


class Report(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("version", c_uint32),
        ("replaced", c_uint64),
        ("bytes", c_uint64),
        ("tiles", c_int32),
        ("reserved", c_int32),
    ]


Progress = ctypes.CFUNCTYPE(c_int32, c_void_p, c_double)

_ARGUMENTS = {
    "glimmerblur_status_text": (c_char_p, [c_int32]),
    "glimmerblur_version": (c_char_p, []),
    "glimmerblur_options_init": (None, [POINTER(Options)]),
    "glimmerblur_create": (c_int32, [POINTER(Options), POINTER(c_void_p)]),
    "glimmerblur_destroy": (None, [c_void_p]),
    "glimmerblur_message": (c_char_p, [c_void_p]),
    "glimmerblur_look_init": (None, [POINTER(Look)]),
    "glimmerblur_set_look": (c_int32, [c_void_p, POINTER(Look)]),
    "glimmerblur_frame_init": (None, [POINTER(Frame)]),
    "glimmerblur_region_needed": (
        c_int32,
        [c_void_p, POINTER(Rect), c_int32, POINTER(Rect), POINTER(Rect)],
    ),
    "glimmerblur_set_aperture": (
        c_int32,
        [c_void_p, POINTER(Frame), c_double, c_double, c_double, c_double],
    ),
    "glimmerblur_set_progress": (None, [c_void_p, Progress, c_void_p]),
    "glimmerblur_render": (
        c_int32,
        [c_void_p, POINTER(Frame), POINTER(Frame), POINTER(Rect)],
    ),
    "glimmerblur_report_init": (None, [POINTER(Report)]),
    "glimmerblur_get_report": (c_int32, [c_void_p, POINTER(Report)]),
}


def _load() -> ctypes.CDLL:
    beside = pathlib.Path(__file__).with_name(_SONAME)
    # CDLL gives up the interpreter's lock for as long as a function runs.
    library = ctypes.CDLL(str(beside) if beside.exists() else _SONAME)
    for name, (result, arguments) in _ARGUMENTS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
    return library


library = _load()
