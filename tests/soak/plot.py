# SPDX-License-Identifier: BSD-3-Clause
"""Draws what a long-lived process held over time, as an SVG of three panels one above the other."""

import html

from limits import MIB, WARM_UP

WIDTH, PANEL, GAP, LEFT, RIGHT, TOP = 900, 150, 46, 70, 30, 56
POINTS = 600  # a line has no more than that: the largest and the smallest of each stretch

PANELS = (
    ("Memory, MiB", MIB, (("resident", "resident", "#1f5fa8"),)),
    ("Heap in use, KiB", 1024, (("heap", "heap in use", "#b4540a"),)),
    ("Descriptors, threads and temporary files", 1,
     (("descriptors", "descriptors", "#1f5fa8"), ("threads", "threads", "#b4540a"),
      ("temporary", "temporary files", "#3a7d34"))),
)


def thinned(points):
    """Few enough points to draw, with every peak, every dip and the last."""
    if len(points) <= POINTS:
        return points
    kept = []
    stretches = POINTS // 2 - 1
    size = len(points) / stretches
    for i in range(stretches):
        stretch = points[int(i * size):int((i + 1) * size)] or points[int(i * size):][:1]
        low = min(stretch, key=lambda point: point[1])
        high = max(stretch, key=lambda point: point[1])
        kept += sorted({low, high})
    return kept + points[-1:]


def round_top(value):
    """The next number of one digit, or 15 or 25 of them, for the top of a scale."""
    unit = 1.0
    while unit * 10 <= value:
        unit *= 10
    for step in (1, 1.5, 2, 2.5, 3, 4, 5, 6, 8, 10):
        if step * unit >= value:
            return step * unit
    return 10 * unit


def text(x, y, words, anchor="start", size=12, colour="#333"):
    return (f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-size="{size}" '
            f'fill="{colour}">{html.escape(words)}</text>')


def panel(top, title, unit, series, samples):
    end = max(samples[-1]["seconds"], 1e-9)
    wide = WIDTH - LEFT - RIGHT
    most = round_top(max(max(sample[name] for sample in samples) for name, _, _ in series) / unit * 1.05
                     or 1)
    out = [text(LEFT, top - 8, title, size=13)]
    warm = LEFT + WARM_UP * wide
    out.append(f'<rect x="{LEFT}" y="{top}" width="{warm - LEFT:.1f}" height="{PANEL}" fill="#f0f0f0"/>')
    for i in range(5):
        y = top + PANEL - PANEL * i / 4
        out.append(f'<line x1="{LEFT}" y1="{y:.1f}" x2="{LEFT + wide}" y2="{y:.1f}" stroke="#ddd"/>')
        out.append(text(LEFT - 8, y + 4, f"{most * i / 4:g}", "end", 11))
    for name, _, colour in series:
        points = thinned([(LEFT + wide * sample["seconds"] / end,
                           top + PANEL - PANEL * sample[name] / unit / most) for sample in samples])
        line = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        out.append(f'<polyline points="{line}" fill="none" stroke="{colour}" stroke-width="1.3"/>')
    if len(series) > 1:
        x = WIDTH - RIGHT
        for _, called, colour in reversed(series):
            out.append(text(x, top - 8, called, "end", 12, colour))
            x -= 7.2 * len(called) + 14
    return out


def draw(samples, title):
    """The whole picture, from the lines of soak_host."""
    height = TOP + len(PANELS) * (PANEL + GAP) + 6
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
           f'viewBox="0 0 {WIDTH} {height}" font-family="sans-serif">',
           f'<rect width="{WIDTH}" height="{height}" fill="white"/>', text(LEFT, 22, title, size=15)]
    minutes = samples[-1]["seconds"] / 60
    for i, (called, unit, series) in enumerate(PANELS):
        out += panel(TOP + i * (PANEL + GAP), called, unit, series, samples)
    bottom = TOP + len(PANELS) * (PANEL + GAP) - GAP + 16
    for i in range(5):
        anchor = "start" if i == 0 else "end" if i == 4 else "middle"
        out.append(text(LEFT + (WIDTH - LEFT - RIGHT) * i / 4, bottom, f"{minutes * i / 4:.3g}", anchor,
                        11))
    out.append(text(WIDTH - RIGHT, bottom + 16, "minutes; grey: warm-up", "end", 11))
    return "\n".join(out + ["</svg>", ""])
