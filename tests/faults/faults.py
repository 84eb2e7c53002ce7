# SPDX-License-Identifier: BSD-3-Clause
"""Renders shots again and again, each time with another request to the system refused: of memory, of
files, of threads. After each it looks at what is there and at what was said, and renders once more
with nothing refused.

    faults.py --build FOLDER --work FOLDER [--stride N] [--offset N] [--last N] [--only SHOT]
              [--kind KIND]

With a stride only every N-th request for memory is refused, from the offset on, and every tenth part
of N of those for files. With a last one no request behind it is refused.
"""

import argparse
import collections
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "soak"))
from contents import contents  # noqa: E402
from inputs import write_png  # noqa: E402

KINDS = {"memory": 1, "files": 2, "threads": 3}

# Of each shot: the ending of its inputs, that of its outputs, and options. Two frames, so that one is
# in work while another is.
SHOTS = {
    "png": ("png", "png", ["--shape", "polygon", "--emphasis", "50"]),
    "tiff": ("tif", "tif", ["--engine", "exact"]),
    "exr-float": ("exr", "exr", ["--emphasis", "20"]),
    "exr-16": ("exr", "exr", ["--precision", "16"]),
    "dpx": ("dpx", "dpx", []),
    "image": ("png", "tif", ["--shape", "image", "--mix", "0.5", "--engine", "double"]),
}

PLUGIN = "lib/glimmerblur/pictures/glimmerhost_pictures.so"

# What it takes to remove a file. A claim is looked at before, as it may be another program's by then;
# one that is left is taken over.
REMOVALS = ("unlink", "unlinkat", "remove")
LOOKS = ("fstat", "lstat")

# Libraries that end the process themselves where they have no memory: nobody above them can do
# anything. What they say, or who calls; and who they are.
ENDING_LIBRARIES = (
    ("fftw: alloc.c", "FFTW"), ("thread-local data", "the C library"),
    ("register TLS destructor", "the C library"),
    ("directory_iterator", "the C++ library's folders"), ("nlohmann::", "the JSON library"))

# Where a request of these is refused, of which functions that must not throw are many.
PICTURE_LIBRARIES = ("libOpenImageIO", "libOpenEXR", "libIex", "libImath", "libIlmThread")
BASE_LIBRARIES = ("librefusals", "libc.so", "libstdc++", "ld-linux")


class Server:
    """The program, which runs from its main on as often as it is told to."""

    def __init__(self, build, folder, words, library):
        self.said = folder / "said.txt"
        read, self.commands = os.pipe()
        self.answers, write = os.pipe()
        os.dup2(read, 100)
        os.dup2(write, 101)
        environment = dict(os.environ, LD_PRELOAD=str(build / "lib" / "librefusals.so"),
                           REFUSALS_SERVER="1", TMPDIR=str(folder / "tmp"))
        if library:
            environment["REFUSALS_LOADED"] = str(library)
        self.process = subprocess.Popen([str(build / "bin" / "glimmerhost"), *words], cwd=folder,
                                        env=environment, stdin=subprocess.DEVNULL,
                                        pass_fds=(100, 101))
        for descriptor in (read, write, 100, 101):
            os.close(descriptor)
        self.lines = os.fdopen(self.answers, "r")

    def run(self, kind, n):
        """The exit code, or minus a signal's number, or "hung"; requests seen, what was refused and
        what was said."""
        os.write(self.commands, f"{kind} {n} {self.said}\n".encode())
        status, seen, refused = self.lines.readline().split()
        said = self.said.read_text(errors="replace") if self.said.exists() else ""
        status = int(status)
        code = "hung" if status < 0 else os.waitstatus_to_exitcode(status)
        return code, int(seen), None if refused == "-" else refused, said

    def end(self):
        os.close(self.commands)
        self.process.wait()
        self.lines.close()


class Shot:
    """A shot in a folder of its own, with an output of another look where its first frame goes."""

    def __init__(self, build, work, name):
        self.name = name
        self.build = build
        self.folder = work / name
        shutil.rmtree(self.folder, ignore_errors=True)
        for inside in ("tmp", "out", "whole", "before"):
            (self.folder / inside).mkdir(parents=True)
        taken, self.ending, options = SHOTS[name]
        dice = random.Random(1)
        for frame in (1, 2):
            write_png(self.folder / f"made.{frame}.png", dice, 24, 16, 16, taken != "dpx")
        if taken != "png":
            self.program(["render", "made.@.png", "-o", f"made.@.{taken}", "--radius", "1px"])
        self.words = ["render", f"made.@.{taken}", "--radius", "3px", "--threads", "2", *options]
        self.outputs = [f"{frame}.{self.ending}" for frame in (1, 2)]
        self.program(self.words + ["-o", f"whole/@.{self.ending}"])
        self.program(["render", f"made.@.{taken}", "--radius", "7px", "--frames", "1", "-o",
                      f"before/@.{self.ending}", "--manifest", "before.jsonl", "--shot", "1-2"])
        text = (self.folder / "before.jsonl").read_text()
        self.manifest_before = text.replace("before/", "out/")
        self.whole = {name: contents((self.folder / "whole" / name).read_bytes())
                      for name in self.outputs}
        first = self.outputs[0]
        self.before = {first: contents((self.folder / "before" / first).read_bytes())}
        self.server = Server(build, self.folder, [
            *self.words, "-o", f"out/@.{self.ending}", "--skip-existing", "--manifest", "out.jsonl"],
            build / PLUGIN if self.ending in ("exr", "dpx") else None)

    def program(self, words):
        subprocess.run([str(self.build / "bin" / "glimmerhost"), *words, "--quiet"], cwd=self.folder,
                       check=True)

    def reset(self):
        for inside in ("out", "tmp"):
            for entry in (self.folder / inside).iterdir():
                entry.unlink() if not entry.is_dir() else shutil.rmtree(entry)
        for name in self.before:
            shutil.copyfile(self.folder / "before" / name, self.folder / "out" / name)
        (self.folder / "out.jsonl").write_text(self.manifest_before)

    def left(self):
        """Whatever has a hidden name, or lies where temporary files do."""
        return [entry.name for inside in ("out", "tmp") for entry in (self.folder / inside).iterdir()
                if inside == "tmp" or entry.name.startswith(".")]

    def output(self, name):
        file = self.folder / "out" / name
        return contents(file.read_bytes()) if file.exists() else None

    def wrong_outputs(self, is_done):
        """What is neither whole nor as it was before."""
        wrong = []
        for name in self.outputs:
            allowed = [self.whole[name]] if is_done else [self.whole[name], self.before.get(name)]
            if self.output(name) not in allowed:
                wrong.append(f"{name} is " + ("missing" if self.output(name) is None else "wrong"))
        return wrong

    def wrong_manifest(self, is_done):
        """Lines that are none, and outputs that no line tells of."""
        wrong = []
        told = set()
        lines = (self.folder / "out.jsonl").read_text().splitlines()
        for i, line in enumerate(lines):
            try:
                told.add(pathlib.Path(json.loads(line)["output"]).name)
            except (ValueError, KeyError):
                # What a write left in the midst is mended by the next program that writes.
                if is_done or i + 1 < len(lines):
                    wrong.append("a line of the manifest is none")
        return wrong + [f"the manifest does not tell of {name}" for name in self.outputs
                        if self.output(name) == self.whole[name] and name not in told]

    def look_at(self, code, refused, said):
        """What is wrong after a run with a request refused."""
        if code == "hung" or code < 0:
            return ["hung" if code == "hung" else f"ended by signal {-code}"]
        wrong = self.wrong_outputs(code == 0) + self.wrong_manifest(code == 0)
        if code not in (0, 1, 3):
            wrong.append(f"exit code {code}")
        if code != 0 and "glimmerhost: " not in said:
            wrong.append("says nothing of it")
        left = [name for name in self.left()
                if not (refused in REMOVALS or (refused in LOOKS and name.endswith(".claim")))]
        return wrong + (["leaves " + ", ".join(left)] if left else [])

    def look_again(self):
        """What is wrong after the next run, which has everything granted."""
        code, _, _, said = self.server.run(0, 0)
        wrong = self.wrong_outputs(True) + self.wrong_manifest(True)
        if code != 0:
            wrong.append(f"exit code {code}: {said.strip()}")
        if self.left():
            wrong.append("leaves " + ", ".join(self.left()))
        return ["the next run: " + what for what in wrong]


def callers(shot):
    """Of the program's own functions, those that the refused request came from."""
    lines = pathlib.Path(f"{shot.server.said}.callers").read_text().splitlines()
    ours = [line for line in lines if str(shot.build) in line and "librefusals" not in line]
    if not ours:
        return " < ".join(line.split("/")[-1].split("(")[0] for line in lines[2:6])
    return " < ".join(name_of(line) for line in ours[:5])


def name_of(line):
    """Of the function that a line of a stack is in: FILE(+0xPLACE)[0xADDRESS]"""
    file, place = line[:line.index("(")], line[line.index("(") + 1:line.index(")")]
    if not place.startswith("+"):
        return place
    named = subprocess.run(["addr2line", "-Cfse", file, place[1:]], capture_output=True, text=True,
                           check=False).stdout.splitlines()
    return named[0].split("(")[0].replace("glimmerhost::", "") if named else "?"


def ending_library(shot, code, said):
    """Who ended the process, of those that do so; none where it ended as it should."""
    if code not in (-6, -11, 127):
        return None
    stack = pathlib.Path(f"{shot.server.said}.callers").read_text()
    text = said + callers(shot) + stack
    who = next((who for mark, who in ENDING_LIBRARIES if mark in text), None)
    asks = next((line for line in stack.splitlines()
                 if not any(name in line for name in BASE_LIBRARIES)), "")
    if who is None and any(name in asks for name in PICTURE_LIBRARIES):
        who = "the picture library"
    if who is None and "libtiff" in asks and "(TIFFReadDirectory" in stack:
        who = "the TIFF library"
    return who


def refuse_each(shot, kind, stride, offset, last):
    """Refuses the requests of a kind, up to the last one if that is not 0. How many, how many of them
    the run did without, how often a library ended it, and what went wrong, each with its number."""
    refused_count, granted_count, faults = 0, 0, []
    ended = collections.Counter()
    n = offset
    while last == 0 or n <= last:
        shot.reset()
        code, _, refused, said = shot.server.run(KINDS[kind], n)
        if refused is None:
            wrong = shot.wrong_outputs(True) + ([f"exit code {code}"] if code != 0 else [])
            return refused_count, granted_count, ended, faults + [(n, "nothing", what, said)
                                                                  for what in wrong]
        refused_count += 1
        granted_count += 1 if code == 0 else 0
        library = ending_library(shot, code, said)
        if library:
            # Killed, as it were: what is there is whole, and the next run goes on.
            ended[library] += 1
            wrong = shot.wrong_outputs(False)
        else:
            wrong = shot.look_at(code, refused, said)
        place = callers(shot) if wrong else ""
        wrong += shot.look_again()
        place = place or (callers(shot) if wrong else "")
        faults += [(n, refused, what, f"{place}: {said.strip()}") for what in wrong]
        n += stride
    return refused_count, granted_count, ended, faults


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--work", type=pathlib.Path, required=True)
    parser.add_argument("--stride", type=int, default=1)
    parser.add_argument("--offset", type=int, default=1)
    parser.add_argument("--last", type=int, default=0)
    parser.add_argument("--only", choices=SHOTS)
    parser.add_argument("--kind", choices=KINDS)
    options = parser.parse_args()
    options.build = options.build.resolve()
    all_faults = 0
    for name in [options.only] if options.only else SHOTS:
        shot = Shot(options.build, options.work.resolve(), name)
        for kind in [options.kind] if options.kind else KINDS:
            # There are ten times as many of memory, and few threads.
            stride = {"memory": options.stride, "files": (options.stride + 9) // 10, "threads": 1}[kind]
            offset = options.offset if kind == options.kind or stride > 1 else 1
            refused, done, ended, faults = refuse_each(shot, kind, stride, offset,
                                                         options.last)
            by = "".join(f", {count} ended by {who}" for who, count in ended.items())
            print(f"{name:<10} {kind:<8} {refused:>6} refused, {done:>5} done without{by}; "
                  f"{len(faults)} faults", flush=True)
            for n, function, what, said in faults:
                print(f"    {n} {function}: {what} [{said[:300]}]")
            all_faults += len(faults)
        shot.server.end()
    return 1 if all_faults else 0


if __name__ == "__main__":
    sys.exit(main())
