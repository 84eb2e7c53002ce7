# SPDX-License-Identifier: BSD-3-Clause
"""The Python package against the library's C interface and against plain NumPy.

    defocus_test.py RENDER_RAW [SUITE]      render_raw: the program of that name
"""

import os
import pathlib
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import tracemalloc
import unittest

import numpy

import glimmerblur
from models import convolve, convolve_channels, draw_polygon, ellipse_corners

RENDER_RAW = sys.argv.pop(1)
SAMPLES = {"uint8": 0, "uint16": 1, "float32": 2}


def make_picture(shape, dtype="float32", seed=1):
    """Noise, of which few samples are bright."""
    noise = numpy.random.default_rng(seed).random(shape) ** 6
    if dtype == "float32":
        return noise.astype(dtype)
    return (noise * numpy.iinfo(dtype).max).astype(dtype)


FORK = """
import os, sys
import glimmerblur, numpy

random = numpy.random.default_rng(1)
picture = random.random((50, 64, 3), "f4")
aperture = random.integers(0, 256, (5, 7), "u1")
blur = glimmerblur.Defocus(shape="picture", aperture=aperture, threads=2)
expected = blur.render(picture)
aperture[...] = numpy.arange(7)
child = os.fork()
same = numpy.array_equal(blur.render(picture), expected)
if child == 0:
    sys.exit(0 if same else 1)
sys.exit(os.waitpid(child, 0)[1] != 0 or not same)
"""


def count_threads():
    return len(os.listdir("/proc/self/task"))


def by_library(picture, **numbers):
    """The same frame by a program in C++."""
    height, width, channels = picture.shape
    numbers.update(
        width=width, height=height, channels=channels, sample=SAMPLES[picture.dtype.name]
    )
    words = [f"{key}={value}" for key, value in numbers.items()]
    run = subprocess.run(
        [RENDER_RAW, *words], input=picture.tobytes(), stdout=subprocess.PIPE, check=True
    )
    return numpy.frombuffer(run.stdout, picture.dtype).reshape(picture.shape)


class SamplesAreTheLibrarys(unittest.TestCase):
    def check(self, picture, look, numbers, **meaning):
        expected = by_library(picture, **numbers)

        got = glimmerblur.defocus(picture, **look, **meaning)

        self.assertEqual(got.dtype, picture.dtype)
        numpy.testing.assert_array_equal(got, expected)
        self.assertFalse(numpy.array_equal(got, picture))

    def test_of_every_sample_type(self):
        for dtype in SAMPLES:
            with self.subTest(dtype):
                self.check(
                    make_picture((37, 50, 4), dtype),
                    {"shape": "polygon", "sides": 5, "radius": (9, 6), "rotation": 20, "emphasis": 12},
                    {"shape": 2, "sides": 5, "radius_x": 9, "radius_y": 6, "rotation": 20,
                     "emphasis": 12},
                )  # fmt: skip

    def test_with_every_other_parameter(self):
        for look, numbers in (
            ({"shape": "ellipse", "pixel_aspect": 2.0}, {"shape": 1, "pixel_aspect": 2.0}),
            ({"edge": "zero"}, {"edge": 1}),
            ({"centred": False}, {"centred": 0}),
            ({"blur_alpha": False}, {"blur_alpha": 0}),
            (
                {"emphasis": 7, "emphasis_alpha": True},
                {"emphasis": 7, "emphasis_alpha": 1},
            ),
        ):
            with self.subTest(look):
                self.check(
                    make_picture((30, 41, 4)),
                    {"radius": 6, **look},
                    {"radius_x": 6, "radius_y": 6, **numbers},
                )

    def test_with_straight_alpha(self):
        self.check(
            make_picture((30, 41, 4)),
            {"radius": 6},
            {"radius_x": 6, "alpha": 1},
            alpha="straight",
        )

    def test_of_planes(self):
        for channels in (1, 2, 5):
            with self.subTest(channels):
                self.check(
                    make_picture((30, 41, channels)), {"radius": 6}, {"radius_x": 6, "layout": 1}
                )

    def test_of_three_channels_as_planes(self):
        look = {"radius": 6, "emphasis": 9}
        self.check(
            make_picture((30, 41, 3)),
            look,
            {"radius_x": 6, "emphasis": 9, "layout": 1},
            layout="planes",
        )

    def test_with_the_bottom_row_first(self):
        self.check(
            make_picture((30, 41, 3)),
            {"shape": "polygon", "sides": 3, "radius": 8, "rotation": 40},
            {"shape": 2, "sides": 3, "radius_x": 8, "radius_y": 8, "rotation": 40, "first_row": 1},
            first_row="bottom",
        )


class Convolution(unittest.TestCase):
    """At most so far from the model as an aperture's 8 bits are from its areas."""

    def check(self, weights, tolerance=0.004, around="edge", **look):
        picture = make_picture((40, 53, 3))
        expected = convolve_channels(picture, weights, around)

        got = glimmerblur.defocus(picture, **look)

        numpy.testing.assert_allclose(got, expected, atol=tolerance)

    def test_with_a_circle(self):
        self.check(draw_polygon(ellipse_corners(7.3, 7.3, 50), 9), radius=7.3)

    def test_with_a_turned_triangle(self):
        corners = ellipse_corners(8.0, 8.0, 3, rotation=25.0)
        self.check(draw_polygon(corners, 10), shape="polygon", sides=3, radius=8, rotation=25)

    def test_with_a_turned_ellipse(self):
        corners = ellipse_corners(9.0, 3.0, 50, rotation=-30.0)
        self.check(draw_polygon(corners, 10), shape="ellipse", radius=(9, 3), rotation=-30)

    def test_with_black_around(self):
        weights = draw_polygon(ellipse_corners(6, 6, 50), 8)
        self.check(weights, around="constant", radius=6, edge="zero")

    def test_with_a_picture(self):
        weights = numpy.random.default_rng(3).integers(0, 256, (5, 8), "u1")
        self.check(weights, tolerance=1e-5, shape="picture", aperture=weights)

    def test_with_a_disc_out_of_a_picture(self):
        aperture = numpy.random.default_rng(3).integers(0, 256, (9, 11), "u1")
        picture = make_picture((40, 53))
        y, x = numpy.indices(aperture.shape)
        # On an edge between pixels it is the one to the right, or above.
        for centre, row, column in (((6, 4), 3, 6), ((6.5, 4.5), 4, 6), (None, 4, 5)):
            with self.subTest(centre):
                distance = numpy.hypot(x - column, y - row)
                weights = numpy.floor(aperture * numpy.clip((3.5 - distance) / 2.0, 0, 1))
                expected = convolve(picture, weights, middle=(row, column))

                got = glimmerblur.defocus(
                    picture,
                    shape="picture",
                    aperture=aperture,
                    aperture_radii=(1.5, 3.5),
                    aperture_centre=centre,
                )

                numpy.testing.assert_allclose(got, expected, atol=1e-5)

    def test_keeps_the_light_of_an_impulse(self):
        for look in ({"radius": 12.5}, {"shape": "polygon", "sides": 7, "radius": 20}):
            with self.subTest(look):
                picture = numpy.zeros((80, 90), "f4")
                picture[41, 37] = 1000.0

                got = glimmerblur.defocus(picture, **look)

                self.assertAlmostEqual(got.sum(dtype=float), 1000.0, delta=0.01)
                self.assertLess(got.max(), 10.0)


class Arrays(unittest.TestCase):
    def setUp(self):
        self.blur = glimmerblur.Defocus(shape="polygon", sides=5, radius=5, rotation=10)
        self.addCleanup(self.blur.close)

    VIEWS = {
        "rows from below": lambda a: a[::-1],
        "columns from the right": lambda a: a[:, ::-1],
        "colours in the other order": lambda a: a[..., ::-1],
        "every third column": lambda a: a[:, ::3],
        "every other row": lambda a: a[::2],
        "a part": lambda a: a[3:-4, 5:-6],
        "rows and columns exchanged": lambda a: a.transpose(1, 0, 2),
        "one colour": lambda a: a[..., 1],
    }

    def test_are_read_whatever_their_strides(self):
        for dtype in SAMPLES:
            whole = make_picture((36, 48, 3), dtype)
            for name, view in self.VIEWS.items():
                with self.subTest(name, dtype=dtype):
                    picture = view(whole)
                    expected = self.blur.render(picture.copy(order="C"))

                    numpy.testing.assert_array_equal(self.blur.render(picture), expected)

    def test_are_written_whatever_their_strides(self):
        for name, view in self.VIEWS.items():
            with self.subTest(name):
                target = numpy.full((36, 48, 3), 7.0, "f4")
                out = view(target)
                picture = make_picture(out.shape)
                expected = self.blur.render(picture)

                self.assertIs(self.blur.render(picture, out), out)

                numpy.testing.assert_array_equal(out, expected)
                out[...] = 7.0
                self.assertTrue((target == 7.0).all())

    def test_of_planes_one_after_the_other_are_a_view(self):
        planes = make_picture((5, 30, 41))

        got = self.blur.render(numpy.moveaxis(planes, 0, -1))

        for channel, plane in enumerate(planes):
            numpy.testing.assert_array_equal(got[..., channel], self.blur.render(plane))

    def test_are_not_copied(self):
        whole = make_picture((400, 300, 4))
        for name in ("rows from below", "every third column", "rows and columns exchanged"):
            with self.subTest(name):
                picture = self.VIEWS[name](whole)
                out = self.VIEWS[name](numpy.empty_like(whole))
                tracemalloc.start()
                self.addCleanup(tracemalloc.stop)

                self.blur.render(picture, out)

                self.assertLess(tracemalloc.get_traced_memory()[1], picture.nbytes // 8)
                tracemalloc.stop()

    def test_may_lie_at_odd_places(self):
        picture = make_picture((30, 41))
        expected = self.blur.render(picture)
        records = numpy.zeros((30, 41), numpy.dtype([("mark", "u1"), ("light", "f4")]))
        records["light"] = picture

        self.blur.render(records["light"], records["light"])

        numpy.testing.assert_array_equal(records["light"], expected)
        self.assertTrue((records["mark"] == 0).all())

    def test_of_which_samples_are_one_are_read_all_the_same(self):
        picture = numpy.broadcast_to(make_picture((1, 41, 3)), (30, 41, 3))

        got = self.blur.render(picture)

        numpy.testing.assert_array_equal(got, self.blur.render(picture.copy()))

    def test_of_one_row_column_or_pixel_are_pictures(self):
        for shape in ((1, 9, 3), (9, 1, 3), (1, 1), (1, 1, 4)):
            with self.subTest(shape):
                picture = numpy.full(shape, 0.5, "f4")
                numpy.testing.assert_allclose(self.blur.render(picture), picture, atol=1e-6)

    def test_of_one_column_are_outputs_whatever_its_stride(self):
        picture = make_picture((9, 1))
        column = numpy.zeros(9, "f4")[:, numpy.newaxis]
        self.assertEqual(column.strides[1], 0)

        self.blur.render(picture, column)

        numpy.testing.assert_array_equal(column, self.blur.render(picture))

    def test_that_are_read_only_are_read(self):
        picture = make_picture((30, 41, 3))
        picture.flags.writeable = False
        before = picture.copy()

        self.blur.render(picture)

        numpy.testing.assert_array_equal(picture, before)

    def test_may_be_their_own_output(self):
        picture = make_picture((30, 41, 3))
        expected = self.blur.render(picture)

        self.blur.render(picture, picture)

        numpy.testing.assert_array_equal(picture, expected)

    def test_that_overlap_their_output_are_read_first(self):
        for name, input_of, output_of in (
            ("rows of others", lambda a: a[:30], lambda a: a[4:34][::-1]),
            ("rows as columns", lambda a: a[:40, :40], lambda a: a[:40, :40].transpose(1, 0, 2)),
        ):
            with self.subTest(name):
                memory = make_picture((40, 41, 3))
                expected = self.blur.render(input_of(memory).copy())

                self.blur.render(input_of(memory), output_of(memory))

                numpy.testing.assert_array_equal(output_of(memory), expected)

    def test_become_another_type_in_an_output_of_it(self):
        picture = make_picture((30, 41, 3), "uint8")
        exact = self.blur.render((picture / 255.0).astype("f4"))

        out = self.blur.render(picture, numpy.empty(picture.shape, "f4"))

        numpy.testing.assert_allclose(out, exact, atol=1e-6)

    def test_of_other_types_or_shapes_are_refused(self):
        for picture, error, text in (
            (numpy.zeros((4, 4)), TypeError, "picture: must be uint8, uint16 or float32, not float64"),
            (numpy.zeros((4, 4), ">u2"), TypeError, "not >u2"),
            (numpy.zeros(4, "f4"), ValueError, r"picture: must be \(height, width\)"),
            (numpy.zeros((0, 4), "f4"), ValueError, r"has no samples, its shape is \(0, 4\)"),
        ):
            with self.subTest(text), self.assertRaisesRegex(error, text):
                self.blur.render(picture)

    def test_that_cannot_be_an_output_are_refused(self):
        picture = make_picture((4, 4))
        locked = numpy.zeros((4, 4), "f4")
        locked.flags.writeable = False
        repeated = numpy.lib.stride_tricks.as_strided(numpy.zeros(4, "f4"), (4, 4), (0, 4))
        for out, error, text in (
            (locked, ValueError, "out: is read-only"),
            (repeated, ValueError, "several of its samples are one"),
            (numpy.zeros((4, 5), "f4"), ValueError, r"must be \(4, 4\), not \(4, 5\)"),
            ([0.0], TypeError, "out: must be an array, not list"),
        ):
            with self.subTest(text), self.assertRaisesRegex(error, text):
                self.blur.render(picture, out)


class Regions(unittest.TestCase):
    def setUp(self):
        self.picture = make_picture((60, 80, 3))
        self.blur = glimmerblur.Defocus(shape="polygon", sides=3, radius=7, rotation=15)
        self.addCleanup(self.blur.close)
        self.expected = self.blur.render(self.picture)

    def test_are_those_of_the_whole(self):
        got = self.blur.render(self.picture, region=(11, 20, 30, 25))

        numpy.testing.assert_allclose(got, self.expected[20:45, 11:41], atol=1e-6)

    def test_need_no_more_of_a_picture_than_needed_says(self):
        wanted = (40, 25, 20, 10)
        x, y, width, height = self.blur.needed((80, 60), wanted)

        got = self.blur.render(
            self.picture[y : y + height, x : x + width],
            region=wanted,
            origin=(x, y),
            size=(80, 60),
        )

        self.assertLess(width * height, 80 * 60)
        numpy.testing.assert_allclose(got, self.expected[25:35, 40:60], atol=1e-6)

    def test_of_parts_that_are_too_small_are_refused(self):
        wanted = (40, 25, 20, 10)
        x, y, width, height = self.blur.needed((80, 60), wanted)
        part = self.picture[y : y + height, x : x + width - 1]

        with self.assertRaises(glimmerblur.Error) as caught:
            self.blur.render(part, region=wanted, origin=(x, y), size=(80, 60))
        self.assertEqual(caught.exception.status, 3)

    def test_outside_the_picture_are_the_librarys_to_refuse(self):
        with self.assertRaises(glimmerblur.Error) as caught:
            self.blur.render(self.picture, region=(70, 0, 20, 10))
        self.assertEqual(caught.exception.status, 3)


class Progress(unittest.TestCase):
    def setUp(self):
        self.picture = make_picture((200, 160, 3))
        # Of several threads the caller's may come too late to do anything of a frame this small.
        self.blur = glimmerblur.Defocus(radius=5, threads=1)
        self.addCleanup(self.blur.close)

    def test_goes_from_0_to_1_on_the_callers_thread(self):
        told = []

        self.blur.render(
            self.picture, progress=lambda done: told.append((done, threading.get_ident()))
        )

        parts = [done for done, _ in told]
        self.assertGreater(len(parts), 2)
        self.assertEqual(parts, sorted(parts))
        self.assertGreaterEqual(parts[0], 0.0)
        self.assertEqual(parts[-1], 1.0)
        self.assertEqual({thread for _, thread in told}, {threading.get_ident()})

    def test_that_raises_ends_the_render_and_changes_nothing(self):
        class Enough(Exception):
            pass

        def stop(done):
            raise Enough(done)

        out = numpy.full(self.picture.shape, 3.0, "f4")
        with self.assertRaises(Enough):
            self.blur.render(self.picture, out, progress=stop)

        self.assertTrue((out == 3.0).all())
        self.blur.render(self.picture, out)
        self.assertFalse((out == 3.0).any())

    def test_is_where_an_interrupt_ends_the_render(self):
        told = []

        def interrupt(done):
            told.append(done)
            signal.raise_signal(signal.SIGINT)

        out = numpy.full(self.picture.shape, 3.0, "f4")
        before = signal.getsignal(signal.SIGINT)
        with self.assertRaises(KeyboardInterrupt):
            self.blur.render(self.picture, out, progress=interrupt)

        self.assertEqual(len(told), 1)
        self.assertTrue((out == 3.0).all())
        self.assertIs(signal.getsignal(signal.SIGINT), before)
        self.blur.render(self.picture, out)

    def test_may_not_render_by_the_same_object(self):
        with self.assertRaisesRegex(RuntimeError, "its own progress function"):
            self.blur.render(self.picture, progress=lambda done: self.blur.render(self.picture))

    def test_may_render_by_another_object(self):
        expected = glimmerblur.defocus(self.picture, radius=3)
        got = []

        self.blur.render(
            self.picture,
            progress=lambda done: got or got.append(glimmerblur.defocus(self.picture, radius=3)),
        )

        numpy.testing.assert_array_equal(got[0], expected)


class Threads(unittest.TestCase):
    def test_of_python_run_while_one_renders(self):
        picture = make_picture((60, 80, 3))
        ready, go, ran = threading.Event(), threading.Event(), []

        def run():
            ready.set()
            go.wait()
            ran.append(True)

        # From here on nobody loses the interpreter's lock but who gives it up.
        before = sys.getswitchinterval()
        thread = threading.Thread(target=run)
        with glimmerblur.Defocus(radius=5) as blur:
            thread.start()
            ready.wait()
            sys.setswitchinterval(1000.0)
            go.set()
            for _ in range(300):
                if ran:
                    break
                blur.render(picture)
            ran_meanwhile = bool(ran)
        sys.setswitchinterval(before)
        thread.join()

        self.assertTrue(ran_meanwhile)

    def check_at_once(self, blur_of):
        pictures = [make_picture((50, 64, 3), seed=seed) for seed in range(6)]
        expected = [glimmerblur.defocus(picture, radius=6, emphasis=5) for picture in pictures]
        got = [None] * len(pictures)

        def render(i):
            for _ in range(3):
                got[i] = blur_of(i).render(pictures[i])

        threads = [threading.Thread(target=render, args=(i,)) for i in range(len(pictures))]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

        numpy.testing.assert_array_equal(got, expected)

    def test_render_at_once_with_an_object_each(self):
        blurs = [glimmerblur.Defocus(radius=6, emphasis=5, threads=2) for _ in range(6)]
        self.check_at_once(lambda i: blurs[i])

    def test_render_one_after_the_other_with_one_object(self):
        blur = glimmerblur.Defocus(radius=6, emphasis=5)
        self.check_at_once(lambda i: blur)

    def test_are_as_many_as_asked_for_and_gone_with_their_object(self):
        picture = make_picture((50, 64, 3))
        before = count_threads()
        for threads in (1, 4):
            with self.subTest(threads):
                with glimmerblur.Defocus(threads=threads) as blur:
                    blur.render(picture)
                    self.assertEqual(count_threads(), before + threads - 1)
                self.assertEqual(count_threads(), before)

                blur = glimmerblur.Defocus(threads=threads)
                blur.render(picture)
                del blur
                self.assertEqual(count_threads(), before)

    def test_are_made_anew_in_a_forked_process_that_ends_as_any_other(self):
        # Everything at the end of a child's life runs: the test's own is none that should.
        run = subprocess.run([sys.executable, "-B", "-c", FORK], timeout=60)

        self.assertEqual(run.returncode, 0)


class Objects(unittest.TestCase):
    def test_say_what_the_library_says(self):
        with self.assertRaisesRegex(glimmerblur.Error, "sides") as caught:
            glimmerblur.Defocus(shape="polygon", sides=51)
        self.assertEqual(caught.exception.status, 2)

    def test_want_a_picture_for_that_shape(self):
        with self.assertRaises(glimmerblur.Error) as caught:
            glimmerblur.defocus(make_picture((4, 4)), shape="picture")
        self.assertEqual(caught.exception.status, 5)

    def test_refuse_unknown_words(self):
        with self.assertRaisesRegex(
            ValueError, "shape: must be one of circle, ellipse, polygon, picture, not 'square'"
        ):
            glimmerblur.Defocus(shape="square")

    def test_want_radii_for_the_centre_of_an_aperture(self):
        with self.assertRaisesRegex(ValueError, "aperture_radii are missing"):
            glimmerblur.Defocus(aperture=make_picture((4, 4)), aperture_centre=(1, 1))

    def test_do_not_see_what_becomes_of_their_aperture(self):
        aperture = numpy.random.default_rng(3).integers(0, 256, (5, 7), "u1")
        picture = make_picture((30, 41))
        with glimmerblur.Defocus(shape="picture", aperture=aperture) as blur:
            expected = blur.render(picture)
            aperture[...] = numpy.arange(7)

            numpy.testing.assert_array_equal(blur.render(picture), expected)

    def test_count_what_was_no_number(self):
        picture = numpy.zeros((20, 30), "f4")
        picture[3, 4], picture[10, 20] = numpy.nan, numpy.inf
        with glimmerblur.Defocus(radius=3) as blur:
            self.assertIsNone(blur.report)

            out = blur.render(picture)

            self.assertEqual(blur.report.replaced, 2)
            self.assertTrue((out == 0.0).all())

    def test_part_a_picture_that_is_too_large_for_their_memory(self):
        picture = make_picture((700, 800, 3))
        with glimmerblur.Defocus(radius=5) as blur, glimmerblur.Defocus(
            radius=5, memory_limit=30_000_000
        ) as small:
            expected = blur.render(picture)

            got = small.render(picture)

            self.assertGreater(small.report.tiles, blur.report.tiles)
            self.assertLessEqual(small.report.bytes, 30_000_000)
            numpy.testing.assert_allclose(got, expected, atol=1e-5)

    def test_that_are_closed_say_so(self):
        with glimmerblur.Defocus() as blur:
            blur.close()
            with self.assertRaisesRegex(ValueError, "closed"):
                blur.render(make_picture((4, 4)))

    def test_tell_the_librarys_version(self):
        self.assertRegex(glimmerblur.__version__, r"^\d+\.\d+")


class Example(unittest.TestCase):
    def test_writes_its_picture(self):
        script = pathlib.Path(__file__).parents[3] / "examples" / "window.py"
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "window.png"

            subprocess.run([sys.executable, "-B", script, path], check=True)

            size = struct.unpack(">II", path.read_bytes()[16:24])
        self.assertEqual(size, (720, 405))


if __name__ == "__main__":
    unittest.main()
