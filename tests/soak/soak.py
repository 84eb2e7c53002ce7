# SPDX-License-Identifier: BSD-3-Clause
"""Runs soak_host beside processes of the program for a while, and tells what both did and held.

    soak.py --build FOLDER --work FOLDER --minutes M --seed N [--preset NAME --presets FILE]
"""

import argparse
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import time
import traceback

import limits
import plot
from program import Fault, Program
from steps import Steps

# How long soak_host may go on with its last round and its comparisons.
LAST_ROUND_SECONDS = 300

# Between reports of a run that goes on.
TELLING_SECONDS = 300


def parse():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--work", type=pathlib.Path, required=True)
    parser.add_argument("--minutes", type=float, required=True)
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("--steps", type=int, default=0, help="so many steps and rounds, not a time")
    parser.add_argument("--preset", default="release")
    parser.add_argument("--presets", type=pathlib.Path)
    return parser.parse_args()


def environment(options):
    """What the tests of that preset run in."""
    values = {}
    if options.presets:
        root = str(options.presets.resolve().parent)
        for preset in json.loads(options.presets.read_text())["testPresets"]:
            if preset["name"] == options.preset:
                values = preset.get("environment", {})
        values = {name: value.replace("${sourceDir}", root) for name, value in values.items()}
    # What was freed is kept for a while: no more of it than lets memory come to rest. Of a module's
    # globals, 160,000 with those of the sanitizer, 16 bytes each would stay for good at each load: that
    # they are kept within is for the tests.
    values.setdefault("ASAN_OPTIONS", "quarantine_size_mb=16:report_globals=0")
    # What the thread sanitizer remembers of each address stays, and a module's are others at each load.
    values["TSAN_OPTIONS"] = ":".join([*filter(None, [values.get("TSAN_OPTIONS")]), "flush_memory_ms=60000"])
    return dict(os.environ, **values)


class LongLived:
    """soak_host, and the lines that it writes."""

    def __init__(self, options, variables):
        temporary = options.work / "soak_host_tmp"
        temporary.mkdir()
        self.file = options.work / "soak_host.txt"
        how = ["--rounds", str(options.steps)] if options.steps else ["--minutes", str(options.minutes)]
        with open(self.file, "wb") as out:
            self.process = subprocess.Popen(
                [options.build / "bin" / "soak_host", "--seed", str(options.seed), *how],
                stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                env=dict(variables, TMPDIR=str(temporary)))

    def expect_running(self):
        if self.process.poll() not in (None, 0):
            raise Fault(f"soak_host ended with {self.process.returncode}: {self.file}\n{self.tail()}")

    def tail(self):
        lines = self.file.read_text(errors="replace").splitlines()
        return "\n".join([line for line in lines if not line.startswith("{")][-60:])

    def samples(self):
        """Its lines so far."""
        return [json.loads(line) for line in self.file.read_text().splitlines()
                if line.startswith("{") and line.endswith("}")]

    def finish(self):
        """Its lines, once it has ended."""
        self.process.wait(timeout=LAST_ROUND_SECONDS)
        self.expect_running()
        return self.samples()

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()


def run_steps(options, steps, host):
    """Until the time is over, or so many. Now and then it tells in files how it stands."""
    start = time.monotonic()
    told = start
    while (steps.counts["steps"] < options.steps if options.steps else
           time.monotonic() < start + options.minutes * 60):
        host.expect_running()
        steps.counts["steps"] += 1
        steps.run()
        if time.monotonic() > told + TELLING_SECONDS:
            told = time.monotonic()
            # Under a sanitizer on a busy machine its first round may take longer.
            if samples := host.samples():
                write_report(options, told - start, steps, samples)


def report(options, seconds, steps, samples):
    """Text for a person, and whether all limits held."""
    rows = limits.judged(samples, options.preset in ("asan", "tsan"))
    last = samples[-1]
    lines = [f"Soak of the {options.preset} build: {seconds / 60:.1f} minutes, seed {options.seed}", "",
             "One process:"]
    lived = {"render": "frames over the border", "page": "steps of a hand on a page",
             "library": "frames through the library", "pictures": "broken pictures read"}
    lines += [f"  {last['round']:>9} rounds, {last['loads']} modules loaded and unloaded"]
    lines += [f"  {last.get(kind, 0):>9} {called}" for kind, called in lived.items()]
    lines += [f"  {last['compared']:>9} compared with a fresh process's", "", "Processes of the program:"]
    lines += [f"  {count:>9} {called}" for called, count in sorted(steps.counts.items())]
    lines += ["", "Held by the one process, nothing of ours being alive in it:",
              f"  {'':<16} {'after warm-up':>14} {'at most':>12} {'grown by':>12} {'limit':>12}"]
    for called, first, most, grown, limit, reason, held in rows:
        lines.append(f"  {called:<16} {first:>14} {most:>12} {grown:>12.0f} {limit:>12}"
                     f"{'' if held else '   TOO MUCH'}  ({reason})")
    return "\n".join(lines) + "\n", all(row[-1] for row in rows)


def write_report(options, seconds, steps, samples):
    text, held = report(options, seconds, steps, samples)
    (options.work / "report.txt").write_text(text)
    last = samples[-1]
    frames = last.get("render", 0) + last.get("library", 0)
    title = (f"One process for {last['seconds'] / 60:.0f} minutes: {frames:,} frames, "
             f"modules loaded {last['loads']:,} times")
    (options.work / "soak.svg").write_text(plot.draw(samples, title))
    return text, held


def main():
    options = parse()
    # Processes of the program work in a folder of theirs.
    options.build, options.work = options.build.resolve(), options.work.resolve()
    shutil.rmtree(options.work, ignore_errors=True)
    options.work.mkdir(parents=True)
    print(f"Seed {options.seed}", flush=True)
    variables = environment(options)
    program = Program(options.build / "bin" / "glimmerhost", options.work / "programs", variables)
    steps = Steps(program, random.Random(options.seed))
    start = time.monotonic()
    host = LongLived(options, variables)
    try:
        run_steps(options, steps, host)
        samples = host.finish()
        seconds = time.monotonic() - start
        text, held = write_report(options, seconds, steps, samples)
        print(text, end="")
        if not held:
            print(f"A limit was passed, seed {options.seed}: {host.file}", file=sys.stderr)
            return 1
        shutil.rmtree(program.folder, ignore_errors=True)
        return 0
    except Exception as fault:  # whatever it is, the seed and the step are wanted
        if not isinstance(fault, (Fault, subprocess.TimeoutExpired)):
            traceback.print_exc()
        print(f"Seed {options.seed}, step {steps.counts['steps']}: {fault}\n"
              f"What it worked on is in {options.work}", file=sys.stderr)
        return 1
    finally:
        host.end()


if __name__ == "__main__":
    sys.exit(main())
