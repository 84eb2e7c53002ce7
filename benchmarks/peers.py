#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Times GlimmerBlur beside others who blur the same picture, and draws time against radius.

    apt-get install python3-scipy python3-matplotlib gegl gmic ffmpeg
    python3 benchmarks/peers.py --engine exact --figure docs/pictures/speed.png

Two tables, and the picture that shows them:

  a frame    the blur of a picture in memory, as one frame of a film whose aperture stays: the
             engines of engine_benchmark, and SciPy, which gets all that a user could do for speed:
             the aperture's spectrum is kept, sides are good ones, the transforms are real and
             use every processor. Both do the same: luma, Cr and Cb, the emphasis on luma, three
             planes there and back, whole numbers again
  a command  a TIFF of 16 bits in and out, from the command's start to its end: glimmerhost,
             gegl:lens-blur, and what others offer for a disc of any size through transforms

What is compared runs one after the other in each round, so that all see the same machine, and a
figure is the median of its rounds. A result that is not blurred, or another one than ours, is not
timed. Files lie in memory where the system has such a place. The build must be there already.
"""

import argparse
import contextlib
import os
import pathlib
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile
import time

import numpy as np
import scipy.fft

ROOT = pathlib.Path(__file__).resolve().parent.parent
WAYS = len(os.sched_getaffinity(0))
WHITE = 65535

# Between red, green, blue and luma, Cr, Cb, and back.
TO_PLANES = np.array([[0.299, 0.587, 0.114],
                      [0.5, -0.418688, -0.081312],
                      [-0.213267, -0.418688, 0.617689]])
TO_COLOURS = np.array([[1.0, 1.402, 0.0],
                       [0.996036, -0.714136, -0.277836],
                       [1.020408, 0.0, 1.430612]])


def make_picture(width, height):
    """Lights on a dim ground with grain, 16 bits, opaque; always the same."""
    rng = np.random.default_rng(1)
    light = rng.random((height, width, 3)) * 0.1
    for _ in range(width * height // 4000):
        x, y = rng.integers(width - 3), rng.integers(height - 3)
        light[y:y + 3, x:x + 3] = rng.random(3)
    picture = np.full((height, width, 4), WHITE, np.uint16)
    picture[..., :3] = np.rint(light * WHITE)
    return picture


def write_tiff(path, pixels):
    """Red, green and blue, uncompressed, in one strip."""
    height, width, channels = pixels.shape
    data = pixels.astype("<u2").tobytes()
    short, long = 3, 4
    count = 10
    bits_at = 8 + 2 + count * 12 + 4
    data_at = bits_at + 2 * channels
    tags = [(256, long, 1, width), (257, long, 1, height), (258, short, channels, bits_at),
            (259, short, 1, 1), (262, short, 1, 2), (273, long, 1, data_at),
            (277, short, 1, channels), (278, long, 1, height), (279, long, 1, len(data)),
            (284, short, 1, 1)]
    with open(path, "wb") as file:
        file.write(struct.pack("<2sHIH", b"II", 42, 8, count))
        for tag in tags:
            file.write(struct.pack("<HHII", *tag))
        file.write(struct.pack("<I", 0) + struct.pack(f"<{channels}H", *[16] * channels))
        file.write(data)


def read_tiff(path):
    """What the commands here write: uncompressed strips of whole numbers or floats."""
    raw = pathlib.Path(path).read_bytes()
    end = "<" if raw[:2] == b"II" else ">"
    letters = {1: "B", 3: "H", 4: "I"}
    tags = {}
    (at,) = struct.unpack_from(end + "I", raw, 4)
    (count,) = struct.unpack_from(end + "H", raw, at)
    for entry in range(at + 2, at + 2 + 12 * count, 12):
        tag, kind, number = struct.unpack_from(end + "HHI", raw, entry)
        if kind in letters:
            layout = f"{end}{number}{letters[kind]}"
            place = entry + 8
            if struct.calcsize(layout) > 4:
                (place,) = struct.unpack_from(end + "I", raw, place)
            tags[tag] = struct.unpack_from(layout, raw, place)
    if tags[259] != (1,):
        sys.exit(f"{path}: it is compressed")
    strips = b"".join(raw[at:at + size] for at, size in zip(tags[273], tags[279]))
    is_float = tags.get(339, (1,))[0] == 3
    samples = np.frombuffer(strips, f"{end}{'f' if is_float else 'u'}{tags[258][0] // 8}")
    pixels = samples.reshape(tags[257][0], tags[256][0], -1)[..., :3].astype(float)
    # A whole number says by its size what white is; floats here have it at 1 or at 65535.
    return pixels / (WHITE if not is_float or pixels.max() > 2 else 1)


def apply_curve(values, emphasis):
    """The hyperbola of an emphasis up to 50."""
    a = 1 / emphasis
    b = emphasis - a
    return (1 / ((1 - np.clip(values, 0, 1)) * b + a) - a) / b


def undo_curve(values, emphasis):
    return 1 - apply_curve(1 - np.clip(values, 0, 1), emphasis)


class SciPy:
    """A frame by SciPy's transforms in double."""

    def __init__(self, picture, radius, emphasis):
        height, width = picture.shape[:2]
        self.picture = picture
        self.emphasis = emphasis
        self.margin = int(np.ceil(radius)) + 1
        self.shape = tuple(scipy.fft.next_fast_len(side + 2 * self.margin, real=True)
                           for side in (height, width))
        self.kept = self.transform(self.disc(radius))

    def disc(self, radius):
        """Coverage by 8 x 8 places a pixel, of sum 1, its middle at sample (0, 0)."""
        fine = 8
        side = 2 * self.margin + 1
        places = (np.arange(side * fine) + 0.5) / fine - side / 2
        inside = np.hypot(places[:, None], places[None, :]) <= radius
        covered = inside.reshape(side, fine, side, fine).mean((1, 3))
        grid = np.zeros(self.shape)
        grid[:side, :side] = covered / covered.sum()
        return np.roll(grid, (-self.margin, -self.margin), (0, 1))

    def transform(self, plane):
        return scipy.fft.rfft2(plane, workers=WAYS)

    def blur(self, plane):
        """A plane with its edges repeated."""
        height, width = plane.shape
        after = [side - self.margin - length for side, length in zip(self.shape, plane.shape)]
        padded = np.pad(plane, ((self.margin, after[0]), (self.margin, after[1])), "edge")
        spectrum = self.transform(padded)
        spectrum *= self.kept
        blurred = scipy.fft.irfft2(spectrum, self.shape, workers=WAYS)
        return blurred[self.margin:self.margin + height, self.margin:self.margin + width]

    def frame(self):
        colours = self.picture[..., :3] * (1.0 / WHITE)
        planes = np.moveaxis(colours @ TO_PLANES.T, 2, 0)
        luma = planes[0]
        if self.emphasis > 1:
            luma = apply_curve(luma, self.emphasis)
        luma, cr, cb = (self.blur(plane) for plane in (luma, planes[1], planes[2]))
        if self.emphasis > 1:
            luma = undo_curve(luma, self.emphasis)
        result = np.stack((luma, cr, cb), 2) @ TO_COLOURS.T
        return np.rint(np.clip(result, 0, 1) * WHITE).astype(np.uint16)


class Engine:
    """An engine of ours, which does what it is told a word at a time."""

    def __init__(self, program, name, raw, size, radius, emphasis, result):
        self.name = name
        self.process = subprocess.Popen(
            [program, "--live", "--engine", name, "--size", "{}x{}".format(*size),
             "--radius", str(radius), "--emphasis", str(emphasis), "--even-alpha",
             "--picture", raw, "--result", result],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        # The first answer says that the result is written.
        self.seconds("frame")
        self.result = np.fromfile(result, np.uint16).reshape(size[1], size[0], 4)[..., :3]

    def seconds(self, what):
        print(what, file=self.process.stdin, flush=True)
        answer = self.process.stdout.readline()
        if not answer:
            sys.exit(f"{self.name}: it has ended")
        return float(answer)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        self.process.wait()


def expect_alike(name, result, ours):
    """Apertures are drawn in different ways, half a pixel apart: a thousandth at a radius of 5, less
    above. Without the emphasis it would be more than two."""
    off = np.abs(result.astype(float) - ours).mean() / WHITE
    if off > 0.0018:
        sys.exit(f"{name}: its picture is another one than ours, off by {off:.4f} on average")


def time_frames(options, picture, folder):
    """{radius: {name: seconds}}; an engine's PSF build and mode 4's transforms are there as
    'NAME psf' and 'transforms'."""
    raw = folder / "picture.raw"
    picture.tofile(raw)
    size = (picture.shape[1], picture.shape[0])
    table = {}
    for radius in options.radii:
        scipy_frame = SciPy(picture, radius, options.emphasis)
        with contextlib.ExitStack() as stack:
            engines = [stack.enter_context(Engine(options.build / "bin/engine_benchmark", name, raw,
                                                  size, radius, options.emphasis,
                                                  folder / "result.raw"))
                       for name in options.engine]
            for engine in engines:
                expect_alike("scipy", scipy_frame.frame(), engine.result)
            times = {}
            for _ in range(options.rounds):
                start = time.perf_counter()
                scipy_frame.frame()
                times.setdefault("scipy", []).append(time.perf_counter() - start)
                times.setdefault("transforms", []).append(engines[0].seconds("transforms"))
                for engine in engines:
                    times.setdefault(engine.name, []).append(engine.seconds("frame"))
                    times.setdefault(engine.name + " psf", []).append(engine.seconds("psf"))
        table[radius] = {name: statistics.median(values) for name, values in times.items()}
    return table


def ffmpeg_disc(width, height, radius):
    inside = f"if(lte(hypot(X-{width // 2},Y-{height // 2}),{radius}),65535,0)"
    return (f"color=black:s={width}x{height},format=gbrp16le,"
            f"geq=r='{inside}':g='{inside}':b='{inside}'")


def commands(options, source, size, radius, folder):
    """{name: (command line, file it makes)}; those of which the machine has the program."""
    width, height = size
    side = 2 * int(radius) + 1
    made = {}
    for name in options.engine:
        made[name] = [options.build / "bin/glimmerhost", "render", source, "-o",
                      folder / f"{name}.tif", "--overwrite", "--engine", name, "--shape", "ellipse",
                      "--radius", f"{radius}px", "--emphasis", "0"]
    made["gegl"] = ["gegl", source, "--", "gegl:lens-blur", f"radius={radius}", "gegl:tiff-save",
                    f"path={folder / 'gegl.tif'}", "bitdepth=16"]
    made["ffmpeg"] = ["ffmpeg", "-v", "error", "-y", "-i", source, "-f", "lavfi", "-i",
                      ffmpeg_disc(width, height, radius), "-filter_complex",
                      "[0]format=gbrp16le[a];[a][1]convolve", "-frames:v", "1", "-pix_fmt",
                      "rgb48le", "-compression_algo", "raw", folder / "ffmpeg.tif"]
    made["gmic"] = ["gmic", "-v", "0", source,
                    f"{side},{side},1,1,((x-{side // 2})^2+(y-{side // 2})^2)<={radius * radius}",
                    "div[-1]", "{-1,is}", "convolve_fft[0]", "[1]", "rm[-1]", "o",
                    f"{folder / 'gmic.tif'},uint16"]
    return {name: ([str(word) for word in line], folder / f"{name}.tif")
            for name, line in made.items() if shutil.which(str(line[0]))}


def run(line, file):
    file.unlink(missing_ok=True)
    start = time.perf_counter()
    outcome = subprocess.run(line, capture_output=True, text=True)
    seconds = time.perf_counter() - start
    if outcome.returncode != 0 or not file.exists():
        sys.exit(f"{' '.join(line)}: it failed: {outcome.stderr.strip()}")
    return seconds


def expect_blurred(name, file, before, radius):
    """Others blur other values (in linear light, say) and have other edges: what is asked is
    whether the middle is smooth."""
    after = read_tiff(file)
    if after.shape != before.shape:
        sys.exit(f"{name}: its picture has another size than the source")
    edge = 2 * int(radius)
    middle = (slice(edge, -edge or None), slice(edge, -edge or None))
    step = [np.abs(np.diff(pixels[middle], axis=1)).mean() for pixels in (after, before)]
    if not 0 < step[0] < 0.2 * step[1]:
        sys.exit(f"{name}: its picture is not blurred: steps of {step[0]:.5f}, not {step[1]:.5f}")


def time_commands(options, picture, folder):
    source = folder / "source.tif"
    write_tiff(source, picture[..., :3])
    before = picture[..., :3] / WHITE
    size = (picture.shape[1], picture.shape[0])
    table = {}
    for radius in options.radii:
        lines = commands(options, source, size, radius, folder)
        for name, (line, file) in lines.items():
            run(line, file)
            expect_blurred(name, file, before, radius)
        times = {name: [] for name in lines}
        for _ in range(options.rounds):
            for name, (line, file) in lines.items():
                times[name].append(run(line, file))
        table[radius] = {name: statistics.median(values) for name, values in times.items()}
    return table


def print_frames(options, table):
    print("\n| radius | " + " | ".join(
        ["scipy, ms", "8 transforms of mode 4, ms"]
        + [f"{name}, ms | of scipy | of the 8 | its PSF build, ms" for name in options.engine])
        + " |")
    print("|---" * (3 + 4 * len(options.engine)) + "|")
    for radius, row in table.items():
        cells = [f"{row['scipy'] * 1e3:.1f}", f"{row['transforms'] * 1e3:.1f}"]
        for name in options.engine:
            cells += [f"{row[name] * 1e3:.1f}", f"{row[name] / row['scipy']:.3f}",
                      f"{row[name] / row['transforms']:.3f}", f"{row[name + ' psf'] * 1e3:.1f}"]
        print(f"| {radius:g} | " + " | ".join(cells) + " |")


def print_commands(table):
    names = list(next(iter(table.values())))
    print("\n| radius | " + " | ".join(f"{name}, s" for name in names) + " |")
    print("|---" * (1 + len(names)) + "|")
    for radius, row in table.items():
        print(f"| {radius:g} | " + " | ".join(f"{row[name]:.2f}" for name in names) + " |")


# The three in the picture.
PEERS = {"scipy": ("SciPy, kept spectrum", "tab:green"),
         "gegl": ("GEGL, lens-blur", "tab:red"),
         "ffmpeg": ("FFmpeg, convolve", "tab:purple")}


def draw(options, frames, lines, size):
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot, ticker

    figure, sides = pyplot.subplots(1, 2, figsize=(9, 3.8), sharey=True, layout="constrained")
    width, height = size
    for side, table, title, peers in (
            (sides[0], frames, "one frame, aperture kept", ["scipy"]),
            (sides[1], lines, "a whole command, TIFF in and out", ["gegl", "ffmpeg"])):
        for name in options.engine:
            side.plot(options.radii, [table[radius][name] for radius in options.radii], "o-",
                      linewidth=2.2, markersize=4, label=f"GlimmerBlur, {name}")
        for name in peers:
            if name in table[options.radii[0]]:
                label, colour = PEERS[name]
                side.plot(options.radii, [table[radius][name] for radius in options.radii], "s--",
                          linewidth=1.2, markersize=4, label=label, color=colour)
        side.set_xscale("log")
        side.set_yscale("log")
        side.set_xticks(options.radii, [f"{radius:g}" for radius in options.radii])
        side.xaxis.set_minor_locator(ticker.NullLocator())
        side.yaxis.set_major_locator(ticker.LogLocator(subs=(1, 2, 5)))
        side.yaxis.set_minor_locator(ticker.NullLocator())
        side.yaxis.set_major_formatter(ticker.FuncFormatter(lambda value, _: f"{value:g} s"))
        side.set_xlabel("radius in pixels")
        side.set_title(f"{title}\n{width} x {height}, {WAYS} processors", fontsize=10)
        side.grid(True, which="major", alpha=0.3)
        side.legend(fontsize=8, frameon=False)
    figure.savefig(options.figure, dpi=110, metadata={"Software": None})


def parse():
    parser = argparse.ArgumentParser(description="Times GlimmerBlur beside others.")
    parser.add_argument("--engine", action="append", help="one of ours; may be given again")
    parser.add_argument("--size", default="1920x1080")
    parser.add_argument("--radii", type=float, nargs="+", default=[5, 10, 20, 50, 100, 200])
    parser.add_argument("--emphasis", type=float, default=20, help="of frames; up to 50")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build/release")
    parser.add_argument("--figure", type=pathlib.Path, help="the picture to make")
    options = parser.parse_args()
    options.engine = options.engine or ["exact"]
    if options.emphasis > 50:
        parser.error("--emphasis: SciPy's side has the curve up to 50")
    return options


def main():
    options = parse()
    width, height = (int(side) for side in options.size.split("x"))
    picture = make_picture(width, height)
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    load = os.getloadavg()[0]
    with tempfile.TemporaryDirectory(dir=memory) as folder:
        frames = time_frames(options, picture, pathlib.Path(folder))
        lines = time_commands(options, picture, pathlib.Path(folder))
    print(f"{width} x {height}, emphasis {options.emphasis:g} (commands: 0), {WAYS} processors, "
          f"medians of {options.rounds} rounds, load {load:.2f} before, {os.getloadavg()[0]:.2f} "
          "after, which holds what ran here")
    print_frames(options, frames)
    print_commands(lines)
    if options.figure:
        draw(options, frames, lines, (width, height))


if __name__ == "__main__":
    main()
