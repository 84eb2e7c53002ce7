# SPDX-License-Identifier: BSD-3-Clause
"""Runs what the program does beside the plain shot again and again, each time with another request to
the system refused: a shot over other outputs, a submit to processes of this machine, a session, and
checks of a manifest. After each it looks at what is there and at what was said, and runs it once more
with nothing refused.

    commands.py --build FOLDER --work FOLDER [--stride N] [--offset N] [--only COMMAND] [--kind KIND]

With a stride only every N-th request is refused, from the offset on; of threads each one is. The
processes that a submit starts have all that they ask for.
"""

import pathlib
import random
import shutil
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "soak"))
from inputs import write_png  # noqa: E402
from refusing import KINDS, Server, is_excused, options_for, refuse_all  # noqa: E402

LOOK = ["--radius", "3px", "--threads", "2", "--shape", "polygon"]
SESSION = """load made.1.png
set PRM_RadiusX 0.25
set PRM_Emphasis 12
draw
render
save 1.png
render
save 2.png
"""

# The words of each, with braces where the folder of its outputs goes, and its exit code.
COMMANDS = {
    "overwrite": (["render", "made.@.png", "-o", "{}/@.png", "--overwrite", *LOOK], 0),
    "submit": (["submit", "made.@.png", "-o", "{}/@.png", "--overwrite", "--chunk", "1",
                "--manifest", "{}/made.jsonl", *LOOK], 0),
    "session": (["session", "steps", "-o", "{}", "--overwrite", "--threads", "2"], 0),
    "check": (["check", "checked.jsonl"], 0),
    "check-changed": (["check", "changed.jsonl"], 1),
}


class Command:
    """A command in a folder of its own, with outputs of another look where its own go."""

    def __init__(self, build, work, name):
        self.build = build
        self.name = name
        words, self.answer = COMMANDS[name]
        self.folder = work / name
        shutil.rmtree(self.folder, ignore_errors=True)
        for inside in ("tmp", "out", "whole", "before", "checked"):
            (self.folder / inside).mkdir(parents=True)
        dice = random.Random(1)
        for frame in (1, 2):
            write_png(self.folder / f"made.{frame}.png", dice, 24, 16, 16, True)
        (self.folder / "steps").write_text(SESSION)
        render = ["render", "made.@.png", "--quiet"]
        self.program([*render, "-o", "before/@.png", "--radius", "7px"])
        self.program([*render, "-o", "checked/@.png", "--manifest", "checked.jsonl"])
        text = (self.folder / "checked.jsonl").read_text()
        (self.folder / "changed.jsonl").write_text(text.replace("checked/2.png", "before/2.png"))
        makes_outputs = any("{}" in word for word in words)
        if makes_outputs:
            self.program([word.format("whole") for word in words] + ["--quiet"])
        self.outputs = ["1.png", "2.png"] if makes_outputs else []
        self.whole = {name: (self.folder / "whole" / name).read_bytes() for name in self.outputs}
        self.before = {name: (self.folder / "before" / name).read_bytes() for name in self.outputs}
        self.server = Server(build, self.folder, [word.format("out") for word in words], None)

    def program(self, words):
        subprocess.run([str(self.build / "bin" / "glimmerhost"), *words], cwd=self.folder,
                       check=True, stdout=subprocess.DEVNULL)

    def reset(self):
        for inside in ("out", "tmp"):
            shutil.rmtree(self.folder / inside)
            (self.folder / inside).mkdir()
        for name, data in self.before.items():
            (self.folder / "out" / name).write_bytes(data)

    def wrong_outputs(self, is_done):
        """What is neither whole nor as it was before."""
        wrong = []
        for name in self.outputs:
            file = self.folder / "out" / name
            there = file.read_bytes() if file.exists() else None
            if there != self.whole[name] and (is_done or there != self.before[name]):
                wrong.append(f"{name} is " + ("missing" if there is None else "wrong"))
        return wrong

    def left(self, refused):
        """What has a hidden name, or lies where temporary files do."""
        files = [file for inside in ("out", "tmp") for file in (self.folder / inside).iterdir()
                 if inside == "tmp" or file.name.startswith(".")]
        return [file.name for file in files if not is_excused(refused, file.name)]

    def look_at(self, code, refused, said):
        if code == "hung" or code < 0:
            return ["hung" if code == "hung" else f"ended by signal {-code}"]
        wrong = self.wrong_outputs(code == 0)
        if code not in (0, 1, 3) or (code == 0 and self.answer == 1):
            wrong.append(f"exit code {code}")
        # What could not be written may have been these very words.
        if code != 0 and refused != "write" and "glimmerhost: " not in said:
            wrong.append("says nothing of it")
        left = self.left(refused)
        return wrong + (["leaves " + ", ".join(left)] if left else [])

    def look_again(self):
        """What is wrong after the next run, which has everything granted."""
        code, _, _, said = self.server.run(0, 0)
        wrong = self.wrong_outputs(True)
        if code != self.answer:
            wrong.append(f"exit code {code}: {said.strip()}")
        if self.left(None):
            wrong.append("leaves " + ", ".join(self.left(None)))
        return ["the next run: " + what for what in wrong]


def main():
    options = options_for(COMMANDS).parse_args()

    def steps_of(kind):
        return (1, 1) if kind == "threads" else (options.stride, options.offset)

    kinds = [options.kind] if options.kind else KINDS
    names = [options.only] if options.only else COMMANDS
    return 1 if sum(refuse_all(Command(options.build, options.work, name), kinds, steps_of)
                    for name in names) else 0


if __name__ == "__main__":
    sys.exit(main())
