# SPDX-License-Identifier: BSD-3-Clause
"""A program that is run again and again, each time with another request to the system refused: of
memory, of files, of threads. Who asked, who ended the process, and the counts of it.

What is run is a work: it has a name, the folder build, and a server. reset() makes its folder what it
was; wrong_outputs(is_done), look_at(code, refused, said) and look_again() tell what is wrong, in a list;
answer is its exit code where nothing is refused.
"""

import argparse
import collections
import os
import pathlib
import subprocess

KINDS = {"memory": 1, "files": 2, "threads": 3}

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


def callers(work):
    """Of the program's own functions, those that the refused request came from."""
    lines = pathlib.Path(f"{work.server.said}.callers").read_text().splitlines()
    ours = [line for line in lines if str(work.build) in line and "librefusals" not in line]
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


def ending_library(work, code, said):
    """Who ended the process, of those that do so; none where it ended as it should."""
    if code not in (-6, -11, 127):
        return None
    stack = pathlib.Path(f"{work.server.said}.callers").read_text()
    text = said + callers(work) + stack
    who = next((who for mark, who in ENDING_LIBRARIES if mark in text), None)
    asks = next((line for line in stack.splitlines()
                 if not any(name in line for name in BASE_LIBRARIES)), "")
    if who is None and any(name in asks for name in PICTURE_LIBRARIES):
        who = "the picture library"
    if who is None and "libtiff" in asks and "(TIFFReadDirectory" in stack:
        who = "the TIFF library"
    return who


def is_excused(refused, name):
    """Whether a file of that name may be left: nobody could remove it."""
    return refused in REMOVALS or (refused in LOOKS and name.endswith(".claim"))


def refuse_each(work, kind, stride, offset, last):
    """Refuses the requests of a kind, up to the last one if that is not 0. How many, how many of them
    the run did without, how often a library ended it, and what went wrong, each with its number."""
    refused_count, granted_count, faults = 0, 0, []
    ended = collections.Counter()
    n = offset
    while last == 0 or n <= last:
        work.reset()
        code, _, refused, said = work.server.run(KINDS[kind], n)
        if refused is None:
            wrong = work.wrong_outputs(True)
            if code != work.answer:
                wrong.append(f"exit code {code}")
            faults += [(n, "nothing", what, said) for what in wrong]
            break
        refused_count += 1
        granted_count += 1 if code == work.answer else 0
        library = ending_library(work, code, said)
        if library:
            # Killed, as it were: what is there is whole, and the next run goes on.
            ended[library] += 1
            wrong = work.wrong_outputs(False)
        else:
            wrong = work.look_at(code, refused, said)
        place = callers(work) if wrong else ""
        wrong += work.look_again()
        place = place or (callers(work) if wrong else "")
        faults += [(n, refused, what, f"{place}: {said.strip()}") for what in wrong]
        n += stride
    return refused_count, granted_count, ended, faults


def refuse_all(work, kinds, steps_of, last=0):
    """Refuses those of some kinds, each with the stride and from the offset on that steps_of(kind) gives,
    and prints the counts. How much went wrong."""
    all_faults = 0
    for kind in kinds:
        stride, offset = steps_of(kind)
        refused, done, ended, faults = refuse_each(work, kind, stride, offset, last)
        by = "".join(f", {count} ended by {who}" for who, count in ended.items())
        print(f"{work.name:<13} {kind:<8} {refused:>6} refused, {done:>5} done without{by}; "
              f"{len(faults)} faults", flush=True)
        for n, function, what, said in faults:
            print(f"    {n} {function}: {what} [{said[:300]}]")
        all_faults += len(faults)
    work.server.end()
    return all_faults


def options_for(names):
    """Those of a command line whose --only is one of the names."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=lambda text: pathlib.Path(text).resolve(), required=True)
    parser.add_argument("--work", type=lambda text: pathlib.Path(text).resolve(), required=True)
    parser.add_argument("--stride", type=int, default=1)
    parser.add_argument("--offset", type=int, default=1)
    parser.add_argument("--only", choices=names)
    parser.add_argument("--kind", choices=KINDS)
    return parser
