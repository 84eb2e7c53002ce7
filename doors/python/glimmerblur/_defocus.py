# SPDX-License-Identifier: BSD-3-Clause
"""The object that renders."""

import ctypes
import os
import signal
import threading
import weakref
from typing import Any, Callable, NamedTuple, Optional, Sequence, Tuple, Union

import numpy

from ._frames import (
    Array,
    Meaning,
    Rect,
    check_samples,
    choice,
    first_row_number,
    frame_of,
    is_each_for_itself,
    same_samples,
)
from . import _library
from ._library import library

_SHAPES = {"circle": 0, "ellipse": 1, "polygon": 2, "picture": 3}
_EDGES = {"repeat": 0, "zero": 1}


class Error(Exception):
    """What the library says when something fails.

    status  its number, as in glimmerblur.h
    """

    def __init__(self, status: int, message: str) -> None:
        super().__init__(message)
        self.status = status


class Report(NamedTuple):
    """Of a render."""

    replaced: int  # samples that were not finite and counted as 0
    bytes: int  # that it held at most, pictures not counted
    tiles: int  # that the picture was rendered in


def version() -> str:
    """Of the library."""
    return str(library.glimmerblur_version().decode())


def _destroy(handle: int, process: int) -> None:
    # A forked child has the memory of the object but not its threads, which destroying waits for.
    if os.getpid() == process:
        library.glimmerblur_destroy(handle)


class Defocus:
    """A look, and the threads that render it.

    One object renders one picture at a time: other threads wait. For several at once make several.
    Rendering gives up the interpreter's lock.

    shape           "circle", "ellipse", "polygon" or "picture"
    radius          pixels; for ellipse and polygon also a pair, across and up
    rotation        degrees, anticlockwise; of ellipse and polygon
    sides           of a polygon, 3 to 50
    pixel_aspect    a pixel's width over its height
    emphasis        how much more highlights weigh, up to 500; up to 1 they weigh the same
    blur_alpha      whether alpha is blurred
    emphasis_alpha  whether it is emphasised, too
    edge            "repeat" or "zero": what lies around the picture
    centred         whether the aperture stands exactly on its pixel, or where the plug-in module has it
    aperture        for "picture": an array, whose first channel counts as 8 bits
    aperture_radii  of a disc that is cut out of it: full weight up to the first radius, none from the
                    second on. All of it without
    aperture_centre of the disc: pixels from the array's left and upper edge. Its middle without
    threads         1 to 64, the caller's among them; 0 for one a processor
    memory_limit    bytes that a render may hold beside the pictures; 0 for no limit
    """

    def __init__(
        self,
        *,
        shape: str = "circle",
        radius: Union[float, Sequence[float]] = 10.0,
        rotation: float = 0.0,
        sides: int = 6,
        pixel_aspect: float = 1.0,
        emphasis: float = 1.0,
        blur_alpha: bool = True,
        emphasis_alpha: bool = False,
        edge: str = "repeat",
        centred: bool = True,
        aperture: Optional[Array] = None,
        aperture_radii: Optional[Tuple[float, float]] = None,
        aperture_centre: Optional[Tuple[float, float]] = None,
        threads: int = 0,
        memory_limit: int = 0,
    ) -> None:
        self._lock = threading.Lock()
        self._renderer: Optional[int] = None  # the thread that renders now
        self._report: Optional[Report] = None
        self._threads = threads
        self._memory_limit = memory_limit

        look = _library.Look()
        library.glimmerblur_look_init(ctypes.byref(look))
        look.shape = choice("shape", shape, _SHAPES)
        look.radius_x, look.radius_y = _radii(radius)
        look.rotation = rotation
        look.sides = sides
        look.pixel_aspect = pixel_aspect
        look.emphasis = emphasis
        look.blur_alpha = bool(blur_alpha)
        look.emphasis_alpha = bool(emphasis_alpha)
        look.edge = choice("edge", edge, _EDGES)
        look.centred = bool(centred)
        self._look = look

        self._aperture: Optional[Array] = None
        if aperture is not None:
            aperture = numpy.asarray(aperture)
            check_samples("aperture", aperture)
            # A copy, for a forked process: what the caller does to the array meanwhile changes nothing.
            self._aperture = numpy.array(aperture, order="C")
        if aperture_centre is not None and aperture_radii is None:
            raise ValueError("aperture_centre: is of a disc, and aperture_radii are missing")
        self._aperture_centre = aperture_centre
        self._aperture_radii = aperture_radii
        self._make()

    def render(
        self,
        picture: Array,
        out: Optional[Array] = None,
        *,
        layout: Optional[str] = None,
        alpha: str = "premultiplied",
        first_row: str = "top",
        region: Optional[Sequence[int]] = None,
        origin: Tuple[int, int] = (0, 0),
        size: Optional[Tuple[int, int]] = None,
        progress: Optional[Callable[[float], Any]] = None,
    ) -> Array:
        """The picture, blurred.

        picture    uint8, uint16 or float32; (height, width) or (height, width, channels). Three and
                   four channels are red, green, blue and alpha. It is read where it lies, whatever its
                   strides, and only read
        out        an array to write to, as large as what is asked for; it may be the picture itself, and
                   may have another type. On failure it keeps what it held
        layout     "rgba" or "planes": channels that have nothing to do with each other
        alpha      "premultiplied" or "straight"
        first_row  "top" or "bottom": which row of the picture the array begins with
        region     x, y, width, height: the part that is wanted, all of it without
        origin     x, y of the array's first pixel, if the array is a part of a larger picture; region
                   counts in that, too. needed() tells how large a part must be
        size       width, height of that larger picture
        progress   called with 0 to 1 now and then, on this thread; what it raises ends the render and
                   comes out here
        """
        picture = numpy.asarray(picture)
        check_samples("picture", picture)
        meaning = Meaning(layout, alpha, first_row)
        held = Rect(origin[0], origin[1], picture.shape[1], picture.shape[0])
        whole = held if size is None else Rect(0, 0, size[0], size[1])
        wanted = held if region is None else Rect(*region)

        shape = (wanted.height, wanted.width) + picture.shape[2:]
        if out is None:
            # Sizes that make no sense are the library's to refuse.
            out = numpy.empty([max(count, 0) for count in shape], picture.dtype)
        else:
            _check_out(out, shape)
        if not is_each_for_itself(picture) or (
            numpy.may_share_memory(picture, out) and not same_samples(picture, out)
        ):
            picture = numpy.array(picture, order="C")
        source = frame_of(picture, held, meaning)
        destination = frame_of(out, wanted, meaning)

        raised: "list[BaseException]" = []
        interrupt = _Interrupt()

        def tell(_user: Any, done: float) -> int:
            try:
                if progress is not None:
                    progress(done)
            except BaseException as error:  # it goes on where the render was called
                raised.append(error)
            return 1 if raised or interrupt.came else 0

        callback = _library.Progress(tell)
        with self._busy() as handle, interrupt:
            library.glimmerblur_set_progress(handle, callback, None)
            status = library.glimmerblur_render(
                handle,
                ctypes.byref(source),
                ctypes.byref(destination),
                ctypes.byref(_library.Rect(*whole)),
            )
            message = library.glimmerblur_message(handle)
            library.glimmerblur_set_progress(handle, _library.Progress(), None)
            if raised:
                raise raised[0]
            if not interrupt.came:
                _check(status, message)
            report = _library.Report()
            library.glimmerblur_report_init(ctypes.byref(report))
            _check(library.glimmerblur_get_report(handle, ctypes.byref(report)), b"")
            self._report = Report(report.replaced, report.bytes, report.tiles)
        return out

    __call__ = render

    def needed(
        self, size: Tuple[int, int], region: Sequence[int], *, first_row: str = "top"
    ) -> Rect:
        """Which part of a picture of that size, width and height, a region of the output needs."""
        whole = _library.Rect(0, 0, size[0], size[1])
        wanted = _library.Rect(*region)
        needed = _library.Rect()
        with self._busy() as handle:
            status = library.glimmerblur_region_needed(
                handle,
                ctypes.byref(whole),
                first_row_number(first_row),
                ctypes.byref(wanted),
                ctypes.byref(needed),
            )
            _check(status, library.glimmerblur_message(handle))
        return Rect(needed.x, needed.y, needed.width, needed.height)

    @property
    def report(self) -> Optional[Report]:
        """Of the last picture; None before the first."""
        return self._report

    def close(self) -> None:
        """Ends the threads. Leaving a with statement does it, and so does forgetting the object."""
        if self._end.alive:
            with self._busy():
                self._end()

    def __enter__(self) -> "Defocus":
        return self

    def __exit__(self, *_error: Any) -> None:
        self.close()

    def _make(self) -> None:
        options = _library.Options()
        library.glimmerblur_options_init(ctypes.byref(options))
        options.threads = self._threads
        options.memory_limit = self._memory_limit
        made = ctypes.c_void_p()
        status = library.glimmerblur_create(ctypes.byref(options), ctypes.byref(made))
        _check(status, b"")
        handle = made.value
        assert handle is not None
        self._process = os.getpid()
        self._end = weakref.finalize(self, _destroy, handle, self._process)
        self._handle = handle
        try:
            status = library.glimmerblur_set_look(handle, ctypes.byref(self._look))
            _check(status, library.glimmerblur_message(handle))
            self._set_aperture()
        except BaseException:
            self._end()
            raise

    def _set_aperture(self) -> None:
        if self._aperture is None:
            return
        height, width = self._aperture.shape[:2]
        rect = Rect(0, 0, width, height)
        picture = frame_of(self._aperture, rect, Meaning("planes", "premultiplied", "top"))
        x, y = self._aperture_centre or (width / 2, height / 2)
        inner, outer = self._aperture_radii or (-1.0, -1.0)
        status = library.glimmerblur_set_aperture(
            self._handle, ctypes.byref(picture), x, y, inner, outer
        )
        _check(status, library.glimmerblur_message(self._handle))

    def _busy(self) -> "_Busy":
        return _Busy(self)


class _Interrupt:
    """Keeps Ctrl-C until a render is over: raised on the way into a callback it would be lost.

    came  whether somebody pressed it
    """

    def __init__(self) -> None:
        self.came = False
        self._is_ours = False

    def __enter__(self) -> None:
        # A handler of somebody else's stays. Handlers run on the main thread alone, and only that one
        # may exchange them.
        self._is_ours = (
            threading.current_thread() is threading.main_thread()
            and signal.getsignal(signal.SIGINT) is signal.default_int_handler
        )
        if self._is_ours:
            signal.signal(signal.SIGINT, self._note)

    def __exit__(self, *_error: Any) -> None:
        if self._is_ours:
            signal.signal(signal.SIGINT, signal.default_int_handler)
        if self.came:
            raise KeyboardInterrupt

    def _note(self, _number: int, _frame: Any) -> None:
        self.came = True


class _Busy:
    """The object for one thread alone, and for none of its own callbacks."""

    def __init__(self, defocus: Defocus) -> None:
        self._defocus = defocus

    def __enter__(self) -> int:
        defocus = self._defocus
        if defocus._process != os.getpid():
            # Forked: the threads stayed behind, and perhaps one that held the lock.
            defocus._lock = threading.Lock()
            defocus._renderer = None
            if defocus._end.alive:
                defocus._make()
        if defocus._renderer == threading.get_ident():
            raise RuntimeError("a Defocus cannot be used by its own progress function")
        defocus._lock.acquire()
        if not defocus._end.alive:
            defocus._lock.release()
            raise ValueError("this Defocus is closed")
        defocus._renderer = threading.get_ident()
        return defocus._handle

    def __exit__(self, *_error: Any) -> None:
        self._defocus._renderer = None
        self._defocus._lock.release()


def defocus(
    picture: Array,
    out: Optional[Array] = None,
    *,
    layout: Optional[str] = None,
    alpha: str = "premultiplied",
    first_row: str = "top",
    region: Optional[Sequence[int]] = None,
    progress: Optional[Callable[[float], Any]] = None,
    **look: Any,
) -> Array:
    """One picture, blurred: Defocus(**look).render(picture, ...)."""
    with Defocus(**look) as blur:
        return blur.render(
            picture,
            out,
            layout=layout,
            alpha=alpha,
            first_row=first_row,
            region=region,
            progress=progress,
        )


def _radii(radius: Union[float, Sequence[float]]) -> Tuple[float, float]:
    if isinstance(radius, (int, float, numpy.number)):
        return float(radius), float(radius)
    across, up = radius
    return float(across), float(up)


def _check_out(out: Any, shape: Tuple[int, ...]) -> None:
    if not isinstance(out, numpy.ndarray):
        raise TypeError(f"out: must be an array, not {type(out).__name__}")
    check_samples("out", out)
    if out.shape != shape:
        raise ValueError(f"out: its shape must be {shape}, not {out.shape}")
    if not out.flags.writeable:
        raise ValueError("out: is read-only")
    if not is_each_for_itself(out):
        raise ValueError("out: several of its samples are one")


def _check(status: int, message: bytes) -> None:
    if status != 0:
        raise Error(status, (message or library.glimmerblur_status_text(status)).decode())
