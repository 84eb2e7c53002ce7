# SPDX-License-Identifier: BSD-3-Clause
"""What processes of the program are put through. Each step is a method of Steps: it makes a folder,
renders into it, and raises Fault where something is not as it must be."""

import os
import pathlib
import shutil
import signal
import time

from inputs import animated, look, mutated, write_png
from program import PATIENCE_SECONDS, Fault, end_group, expect_same

ENGINES = ("fast", "fast", "fast", "exact", "double", "single")
INPUT_ENDINGS = ("png", "tif", "exr", "dpx", "jpg")
OUTPUT_ENDINGS = ("png", "tif", "exr", "dpx")
CHECKED_FRAME = 10  # every tenth is compared with a fresh process's


class Steps:
    def __init__(self, program, dice):
        self.program = program
        self.counts = program.counts
        self.dice = dice
        self.folder = program.folder / "work"
        self.frames = 0
        self.killed_group = 0
        self.films = shutil.which("ffmpeg") is not None and shutil.which("ffprobe") is not None

    def run(self):
        """One step, by chance. Its name."""
        names = ["shot"] * 4 + ["killed"] * 3 + ["submitted", "submitted_killed", "session",
                                                 "broken_picture", "broken_picture", "broken_text"]
        if self.films:
            names += ["film"]
        name = self.dice.choice(names)
        shutil.rmtree(self.folder, ignore_errors=True)
        (self.folder / "out").mkdir(parents=True)
        getattr(self, name)()
        self.counts["step " + name] += 1
        self.program.expect_nothing_left(self.folder, self.folder / "out")
        return name

    # ---- shots ----

    def make_shot(self, ending=None):
        """Frames of a kind in the folder, and the words that render them to any kind."""
        dice = self.dice
        ending = ending or dice.choice(INPUT_ENDINGS)
        count = dice.randint(2, 6)
        width, height = dice.randint(24, 64), dice.randint(8, 48)
        alpha = ending != "jpg" and dice.random() < 0.5
        bits = dice.choice((8, 16))
        for frame in range(1, count + 1):
            write_png(self.folder / f"made.{frame}.png", dice, width, height, bits, alpha)
        if ending != "png":
            self.program.run(["render", self.folder / "made.@.png", "-o",
                              self.folder / f"in.@.{ending}", "--radius", "1px", "--quiet"])
        name = "made.@.png" if ending == "png" else f"in.@.{ending}"
        words = ["render", self.folder / name, "--engine", dice.choice(ENGINES)]
        # The engine exact keeps of an aperture what lies outside the frame, until the next instance.
        words += animated(dice) if words[3] == "fast" and dice.random() < 0.5 else look(dice)
        return count, words, "out.@." + dice.choice(OUTPUT_ENDINGS)

    def count_frames(self, count):
        """Notes that frames were rendered. Those of them, from 1, that are to be compared."""
        first = self.frames
        self.frames += count
        self.counts["frames"] += count
        return [i - first for i in range(first + 1, self.frames + 1) if i % CHECKED_FRAME == 0]

    def compare(self, count, words, name):
        """Every tenth frame with that of a process that renders nothing else."""
        for frame in self.count_frames(count):
            # Under the same name, which a DPX has in it.
            alone = self.folder / "alone" / name
            alone.parent.mkdir(exist_ok=True)
            self.program.run(words + ["-o", alone, "--frames", frame, "--shot", f"1-{count}",
                                      "--quiet"])
            expect_same(self.folder / "out" / name.replace("@", str(frame)),
                        str(alone).replace("@", str(frame)), "a frame and a fresh process's")
            self.counts["compared"] += 1

    def expect_outputs(self, count, name):
        found = sorted(entry.name for entry in (self.folder / "out").iterdir())
        wanted = sorted(name.replace("@", str(frame)) for frame in range(1, count + 1))
        if found != wanted:
            raise Fault(f"outputs are {found} and not {wanted}, after {self.program.last[-1]}")

    def shot(self):
        count, words, name = self.make_shot()
        manifest = self.folder / "shot.jsonl"
        noted = ["--manifest", manifest] if self.dice.random() < 0.5 else []
        self.program.run(words + ["-o", self.folder / "out" / name, "--quiet"] + noted)
        self.expect_outputs(count, name)
        self.compare(count, words, name)
        if noted:
            self.program.run(["check", manifest, "--frames", f"1-{count}"])

    # ---- killed ones ----

    def reference(self, words, name):
        """The shot by a process that nobody kills; how long it took."""
        (self.folder / "whole").mkdir()
        start = time.monotonic()
        self.program.run(words + ["-o", self.folder / "whole" / name, "--quiet"])
        return time.monotonic() - start

    def kill(self, words, after, number):
        """Starts a process and sends it a signal after a while, unless it was faster."""
        process = self.program.start(words, is_ended_early=True)
        self.killed_group = process.pid
        deadline = time.monotonic() + after
        while process.poll() is None and time.monotonic() < deadline:
            time.sleep(min(0.002, max(0.0, deadline - time.monotonic())))
        if process.poll() is None:
            os.kill(process.pid, number)
            self.counts["killed" if number == signal.SIGKILL else "ended by a signal"] += 1
        return self.program.finish(process)

    def expect_whole(self, name):
        """What is there of the outputs is what it must be; how many there are."""
        there = [entry for entry in (self.folder / "out").iterdir()
                 if not entry.name.startswith(".")]
        for entry in there:
            expect_same(entry, self.folder / "whole" / entry.name, "an output after a kill")
        return len(there)

    def complete(self, count, words, name, manifest):
        """The next run goes on, takes over what was claimed, and leaves nothing of it."""
        self.program.run(words)
        if self.expect_whole(name) != count:
            raise Fault(f"outputs are missing after {self.program.last[-1]}")
        self.program.expect_nothing_left(self.folder / "out", self.folder)
        self.program.run(["check", manifest, "--frames", f"1-{count}"])
        self.count_frames(count)

    def killed(self):
        count, words, name = self.make_shot()
        seconds = self.reference(words, name)
        manifest = self.folder / "shot.jsonl"
        share = words + ["-o", self.folder / "out" / name, "--skip-existing", "--manifest",
                         manifest, "--quiet"]
        for _ in range(self.dice.randint(1, 3)):
            number = self.dice.choice((signal.SIGKILL, signal.SIGKILL, signal.SIGTERM,
                                       signal.SIGINT))
            code, said = self.kill(share, self.dice.uniform(0, 1.1 * seconds), number)
            if code not in (0, -number, 128 + number):
                raise Fault(f"ended with {code}: {self.program.last[-1]}\n{said}")
            self.expect_whole(name)
            if code == 128 + number:
                self.program.expect_nothing_left()
        self.complete(count, share, name, manifest)

    # ---- farms on this machine ----

    def submit_words(self, words, name, manifest):
        words = ["submit"] + words[1:]
        return words + ["-o", self.folder / "out" / name, "--skip-existing", "--manifest", manifest,
                        "--jobs", "2", "--threads", "1", "--chunk", self.dice.randint(1, 3),
                        "--engine", "local", "--quiet"]

    def submitted(self):
        count, words, name = self.make_shot()
        manifest = self.folder / "farm.jsonl"
        self.program.run(self.submit_words(words, name, manifest))
        self.expect_outputs(count, name)
        self.compare(count, words, name)

    def submitted_killed(self):
        """The submitting process dies; those that it started die with it, or go on."""
        count, words, name = self.make_shot()
        seconds = self.reference(words, name)
        manifest = self.folder / "farm.jsonl"
        share = self.submit_words(words, name, manifest)
        process = self.program.start(share, is_ended_early=True)
        time.sleep(self.dice.uniform(0, 2 * seconds))
        number = None
        if process.poll() is None:
            victim = self.dice.choice([process.pid] + children_of(process.pid))
            self.counts["killed"] += 1
            try:
                os.kill(victim, signal.SIGKILL)
            except ProcessLookupError:
                pass
            if victim == process.pid:
                number = self.dice.choice((signal.SIGKILL, signal.SIGTERM))
                end_group(process, number)
        self.program.finish(process)
        if number == signal.SIGKILL:
            # What one leaves that is not gone yet is none of the next run's leftovers.
            await_group(process.pid)
        self.expect_whole(name)
        self.program.run(share)
        if self.expect_whole(name) != count:
            raise Fault(f"outputs are missing after {self.program.last[-1]}")
        # One that was told to end while the other one submitted may still be about it.
        await_group(process.pid)
        self.count_frames(count)

    # ---- other commands ----

    def session(self):
        dice = self.dice
        write_png(self.folder / "in.png", dice, 60, 40, 16, False)
        lines = ["load in.png", "set PRM_Shape image"]
        for _ in range(dice.randint(3, 20)):
            x, y = dice.randint(-5, 65), dice.randint(-5, 45)
            lines.append(dice.choice((
                f"press {x} {y}", f"move {x} {y}", f"move {x} {y}", f"release {x} {y}", "draw",
                f"set PRM_Emphasis {dice.randint(1, 90)}", "colour", "notify PRM_Shape", "print page",
                f"set PRM_Shape {dice.choice(('circle', 'polygon', 'image'))}", "press 30 20",
                f"set PRM_RadiusPSF2 {dice.uniform(0.02, 0.3):.3f}")))
        lines += ["render", "save after.png", "show source", "draw"]
        (self.folder / "page.session").write_text("\n".join(lines) + "\n")
        words = ["session", self.folder / "page.session", "--engine", dice.choice(ENGINES)]
        _, first = self.program.run(words + ["-o", self.folder / "out"])
        if self.count_frames(1):
            (self.folder / "again").mkdir()
            _, again = self.program.run(words + ["-o", self.folder / "again"])
            expect_same(self.folder / "out" / "after.png", self.folder / "again" / "after.png",
                        "a session and another one")
            if first != again:
                raise Fault(f"another session says another thing: {self.program.last[-1]}")
            self.counts["compared"] += 1

    def broken_picture(self):
        """A picture, refused in a line or rendered; nothing is left of an output that is none."""
        dice = self.dice
        _, words, name = self.make_shot(dice.choice(INPUT_ENDINGS))
        source = pathlib.Path(str(words[1]).replace("@", "1"))
        output = self.folder / "out" / name.replace("@", "1")
        for _ in range(5):
            broken = self.folder / ("broken" + source.suffix)
            broken.write_bytes(mutated(source.read_bytes(), dice))
            code, said = self.program.run(["render", broken, "-o", output, "--quiet", "--overwrite",
                                           "--radius", "2px"], (0, 1, 2, 3))
            self.counts["broken pictures"] += 1
            self.counts["broken pictures refused"] += 1 if code != 0 else 0
            if (code == 0) != output.exists() or (code != 0 and not said):
                raise Fault(f"ended with {code} and the output "
                            f"{'there' if output.exists() else 'missing'}: {self.program.last[-1]}")
            output.unlink(missing_ok=True)
            self.program.expect_nothing_left(self.folder / "out")

    def broken_text(self):
        """Looks, sessions and manifests that something has happened to."""
        dice = self.dice
        write_png(self.folder / "in.png", dice, 20, 16, 8, False)
        texts = {"look.toml": b'shape = "polygon"\nradius = "first=2px; last=9px"\nsides = 5\n',
                 "look.json": b'{"shape": "image", "emphasis": 12, "radius": "3px"}\n',
                 "page.session": b"load in.png\nset PRM_Shape image\npress 9 9\nrender\n"}
        self.program.run(["render", self.folder / "in.png", "-o", self.folder / "m.png",
                          "--manifest", self.folder / "m.jsonl", "--quiet"])
        texts["m.jsonl"] = (self.folder / "m.jsonl").read_bytes()
        for _ in range(6):
            name = dice.choice(sorted(texts))
            file = self.folder / name
            file.write_bytes(mutated(texts[name], dice))
            output = self.folder / "out" / "out.png"
            words = (["session", file, "-o", self.folder / "out"] if name == "page.session" else
                     ["check", file] if name == "m.jsonl" else
                     ["render", self.folder / "in.png", "-o", output, "--params", file, "--quiet"])
            code, _ = self.program.run(words, (0, 1, 2, 3))
            self.counts["broken texts"] += 1
            if words[0] == "render" and (code == 0) != output.exists():
                raise Fault(f"ended with {code}: {self.program.last[-1]}")
            output.unlink(missing_ok=True)

    def film(self):
        """Frames to a film and back, and a process that is killed on the way."""
        count, words, _ = self.make_shot("png")
        film = self.folder / "film.mkv"
        make = ["ffmpeg", "-v", "error", "-nostdin", "-start_number", "1", "-i",
                str(words[1]).replace("@", "%d"), "-c:v", "ffv1", str(film)]
        if os.spawnvp(os.P_WAIT, make[0], make) != 0:
            raise Fault("ffmpeg made no film")
        output = self.folder / "out" / "out.mkv"
        render = ["render", film, "-o", output, "--overwrite", "--quiet"] + words[2:]
        code, _ = self.kill(render, self.dice.uniform(0, 0.5), signal.SIGKILL)
        if code not in (0, -signal.SIGKILL):
            raise Fault(f"ended with {code}: {self.program.last[-1]}")
        # What ffmpeg writes on its own is none of the next run's leftovers yet.
        await_group(self.killed_group)
        self.program.run(render)
        self.program.run(["render", film, "-o", self.folder / "out" / "f.@.png", "--quiet"]
                         + words[2:])
        self.count_frames(2 * count)


def await_group(group):
    """Comes back when no process of it is alive."""
    deadline = time.monotonic() + PATIENCE_SECONDS
    while time.monotonic() < deadline:
        try:
            os.killpg(group, 0)
        except ProcessLookupError:
            return
        time.sleep(0.01)
    raise Fault(f"processes of the group {group} go on")


def children_of(process):
    """Of a process of ours, those that it has started."""
    found = []
    # Each thread has its own.
    for listed in pathlib.Path(f"/proc/{process}/task").glob("*/children"):
        try:
            found += [int(number) for number in listed.read_text().split()]
        except (FileNotFoundError, ProcessLookupError):
            pass
    return found
