# SPDX-License-Identifier: BSD-3-Clause
"""Renders shots again and again, each time with another request to the system refused: of memory, of
files, of threads. After each it looks at what is there and at what was said, and renders once more
with nothing refused.

    faults.py --build FOLDER --work FOLDER [--stride N] [--offset N] [--last N] [--only SHOT]
              [--kind KIND]

With a stride only every N-th request for memory is refused, from the offset on, and every tenth part
of N of those for files. With a last one no request behind it is refused.
"""

import json
import pathlib
import random
import shutil
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "soak"))
from contents import contents  # noqa: E402
from inputs import write_png  # noqa: E402
from refusing import KINDS, Server, is_excused, options_for, refuse_all  # noqa: E402

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


class Shot:
    """A shot in a folder of its own, with an output of another look where its first frame goes."""

    def __init__(self, build, work, name):
        self.name = name
        self.answer = 0
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
        left = [name for name in self.left() if not is_excused(refused, name)]
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


def main():
    parser = options_for(SHOTS)
    parser.add_argument("--last", type=int, default=0)
    options = parser.parse_args()

    # There are ten times as many of memory, and few threads.
    strides = {"memory": options.stride, "files": (options.stride + 9) // 10, "threads": 1}

    def steps_of(kind):
        stride = strides[kind]
        return stride, options.offset if kind == options.kind or stride > 1 else 1

    kinds = [options.kind] if options.kind else KINDS
    names = [options.only] if options.only else SHOTS
    return 1 if sum(refuse_all(Shot(options.build, options.work, name), kinds, steps_of, options.last)
                    for name in names) else 0


if __name__ == "__main__":
    sys.exit(main())
