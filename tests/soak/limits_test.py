# SPDX-License-Identifier: BSD-3-Clause
"""What the limits of a soak see, on lines that are made by hand."""

import unittest
import xml.dom.minidom

import limits
import plot

STEADY = {"resident": 40 * limits.MIB, "heap": 200000, "descriptors": 3, "threads": 1, "temporary": 1,
          "loads": 0}


def lines(count=100, **changed):
    """A line a second; of each name that is given, the value at a second."""
    return [dict(STEADY, seconds=float(second), **{name: of(second) for name, of in changed.items()})
            for second in range(count)]


def passed(samples, is_sanitized=False):
    return [row[0] for row in limits.judged(samples, is_sanitized) if not row[-1]]


class Limits(unittest.TestCase):
    def test_hold_where_nothing_changes(self):
        self.assertEqual([], passed(lines()))

    def test_forgive_what_grows_in_the_warm_up(self):
        self.assertEqual([], passed(lines(
            resident=lambda second: min(second, 19) * 10 * limits.MIB,
            descriptors=lambda second: min(second, 19))))

    def test_notice_memory_that_grows_steadily(self):
        self.assertEqual(["heap in use"], passed(lines(heap=lambda second: 200000 + second * 5000)))
        self.assertEqual(["resident memory"],
                         passed(lines(resident=lambda second: second * limits.MIB)))

    def test_do_not_mind_a_peak_of_memory(self):
        self.assertEqual([], passed(lines(
            resident=lambda second: (500 if second == 60 else 40) * limits.MIB)))

    def test_notice_a_single_descriptor_thread_or_file(self):
        for name, called in (("descriptors", "descriptors"), ("threads", "threads"),
                             ("temporary", "temporary files")):
            self.assertEqual([called], passed(lines(**{name: lambda second: 3 + (second == 99)})))

    def test_allow_a_sanitizer_more_memory_and_nothing_else(self):
        grown = lines(resident=lambda second: second * limits.MIB,
                      threads=lambda second: 1 + (second > 50))
        self.assertEqual(["threads"], passed(grown, is_sanitized=True))
        self.assertEqual(["resident memory"],
                         passed(lines(resident=lambda second: 4 * second * limits.MIB), is_sanitized=True))

    def test_allow_a_sanitizer_some_heap_a_load(self):
        def grown(loads):
            return lines(heap=lambda second: second * 10 * 9000, loads=lambda second: second * loads)
        self.assertEqual([], passed(grown(50), is_sanitized=True))
        self.assertEqual(["heap in use"], passed(grown(5), is_sanitized=True))
        self.assertEqual(["heap in use"], passed(grown(50)))


class Plot(unittest.TestCase):
    def test_draws_a_line_for_each_of_them(self):
        drawn = xml.dom.minidom.parseString(plot.draw(lines(5000), "Title & all"))
        self.assertEqual(len(limits.GROWTH), len(drawn.getElementsByTagName("polyline")))

    def test_keeps_a_peak_however_many_points_there_are(self):
        points = [(float(i), 700.0 if i == 4321 else 100.0) for i in range(10000)]
        thinned = plot.thinned(points)
        self.assertIn((4321.0, 700.0), thinned)
        self.assertEqual(points[-1], thinned[-1])
        self.assertLessEqual(len(thinned), plot.POINTS)


if __name__ == "__main__":
    unittest.main()
