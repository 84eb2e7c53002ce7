# SPDX-License-Identifier: BSD-3-Clause
"""The program in a folder of its own, and what must hold whenever a process of it has ended."""

import collections
import os
import pathlib
import signal
import subprocess

# A process that takes longer hangs: the longest of them renders six small frames.
PATIENCE_SECONDS = 120

# What the program may end with: done, failed, wrong command, input missing.
CODES = (0, 1, 2, 3)


class Fault(Exception):
    """What must not be."""


def quote(words):
    return " ".join(f"'{word}'" if " " in str(word) or not word else str(word) for word in words)


class Program:
    """Runs it, counts what it ran, and looks after what it leaves."""

    def __init__(self, file, folder, environment):
        self.file = str(file)
        self.folder = pathlib.Path(folder)
        self.temporary = self.folder / "tmp"
        self.temporary.mkdir(parents=True, exist_ok=True)
        self.environment = dict(environment, TMPDIR=str(self.temporary))
        self.counts = collections.Counter()
        self.last = []  # the newest commands, for whoever looks for what went wrong

    def start(self, words, is_ended_early=False):
        """A process in a group of its own, so that its children can be ended with it. One that is to
        end before its time awaits no thread, which is meant."""
        words = [str(word) for word in words]
        self.last = self.last[-5:] + [quote(words)]
        self.counts["processes"] += 1
        variables = dict(self.environment)
        if is_ended_early:
            variables["TSAN_OPTIONS"] = variables.get("TSAN_OPTIONS", "") + ":report_thread_leaks=0"
        return subprocess.Popen([self.file, *words], cwd=self.folder, env=variables,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, start_new_session=True)

    def finish(self, process):
        """Waits for it: its code, minus a signal's number, and what it said."""
        try:
            said = process.communicate(timeout=PATIENCE_SECONDS)[0]
        except subprocess.TimeoutExpired:
            end_group(process, signal.SIGKILL)
            process.communicate()
            raise Fault(f"no end within {PATIENCE_SECONDS} s: {self.last[-1]}") from None
        return process.returncode, said.decode(errors="replace")

    def run(self, words, codes=(0,)):
        """Runs it to its end, which must be one of the codes. What it said."""
        code, said = self.finish(self.start(words))
        if code not in codes:
            raise Fault(f"ended with {code}: {self.last[-1]}\n{said}")
        if "Sanitizer" in said or "runtime error" in said:
            raise Fault(f"a sanitizer's report: {self.last[-1]}\n{said}")
        return code, said

    def expect_nothing_left(self, *folders):
        """No temporary file, no claim and no part of an output, wherever one could be."""
        left = [str(entry) for entry in self.temporary.iterdir()]
        for folder in folders:
            left += [str(entry) for entry in pathlib.Path(folder).iterdir()
                     if entry.name.startswith(".")]
        if left:
            raise Fault(f"left behind: {', '.join(left)}, after {self.last[-1]}")


def end_group(process, number):
    """Sends a signal to a process of ours and to its children."""
    try:
        os.killpg(process.pid, number)
    except ProcessLookupError:
        pass


def expect_same(one, other, what):
    if pathlib.Path(one).read_bytes() != pathlib.Path(other).read_bytes():
        raise Fault(f"{what}: {one} and {other} differ")
