#!/usr/bin/env python3
"""Whole-process ratios, all measured in one run:  processes.py BIN_DIR

Processor time is the smallest of several runs, user and system together; peak memory is the largest
resident set.
"""
import os
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "support"))
from paint_document import PaintDocument  # noqa: E402

BIN = sys.argv[1]


def measure(command, runs):
    """(smallest CPU seconds, peak resident bytes) of a command whose output is dropped."""
    best, peak = float("inf"), 0
    for _ in range(runs):
        child = os.fork()
        if child == 0:
            null = os.open(os.devnull, os.O_WRONLY)
            os.dup2(null, 1)
            os.execv(command[0], command)
        _, status, usage = os.wait4(child, 0)
        if status != 0:
            raise SystemExit(f"{command} failed: {status}")
        best = min(best, usage.ru_utime + usage.ru_stime)
        peak = max(peak, usage.ru_maxrss * 1024)
    return best, peak


def line(what, value, target):
    print(f"{what:<62} {value:>10}   {target}")


def main():
    program = lambda name: os.path.join(BIN, name)
    thumbnailer = program("paint-thumbnailer")
    empty, _ = measure([program("EmptyProgram")], 200)
    start, _ = measure([thumbnailer, "--version"], 200)
    line("start of paint-thumbnailer / start of an empty program", f"{start / empty:.2f}", "at most 2")

    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.png")
        fill, canvas_peak = measure([program("MemsetCanvas")], 3)
        for name, background in (("no background", None), ("a white background", (1, 1, 1))):
            path = os.path.join(folder, "canvas.paintdoc")
            with open(path, "wb") as file:
                file.write(PaintDocument(20000, 12500, background=background).to_bytes())
            cpu, peak = measure([thumbnailer, "-s", "256", path, out], 3)
            line(f"20000 x 12500 with {name} / memset of a canvas", f"{cpu / fill:.2f}", "at most 4")
            extra = (peak - 2 * 20000 * 12500 * 4) / (1 << 20)
            line("    peak memory beyond two canvas bitmaps, MB", f"{extra:.0f}", "at most 32")


if __name__ == "__main__":
    main()
