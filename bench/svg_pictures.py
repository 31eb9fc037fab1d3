#!/usr/bin/env python3
"""Compares SVG pictures in documents with rsvg-convert:  svg_pictures.py BIN_DIR [FOLDER...]

Up to 240 SVG files from each FOLDER (default: the icons that are installed) become each the one draw
of a document, in natural size, and are rendered by both programs; files that rsvg-convert does not
draw are passed over. Then the processor time of all processes of a document with one picture and with 200 is
measured, as a multiple of rsvg-convert for the bare file and of drawing the 200 files in one process.
"""
import ctypes
import math
import os
import random
import resource
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
for folder in "support", "programs":
    sys.path.insert(0, os.path.join(HERE, "..", "tests", folder))
from picture_documents import Pictures  # noqa: E402
from program_support import read_png  # noqa: E402

PR_SET_CHILD_SUBREAPER = 36


class Rsvg:
    """The natural size of a file, as librsvg has it."""

    def __init__(self):
        self.library = ctypes.CDLL("librsvg-2.so.2")
        self.library.rsvg_handle_new_from_data.restype = ctypes.c_void_p
        self.unref = ctypes.CDLL("libgobject-2.0.so.0").g_object_unref

    def size(self, file):
        data = open(file, "rb").read()
        handle = self.library.rsvg_handle_new_from_data(data, ctypes.c_size_t(len(data)), None)
        if not handle:
            return None
        width, height = ctypes.c_double(), ctypes.c_double()
        known = self.library.rsvg_handle_get_intrinsic_size_in_pixels(
            ctypes.c_void_p(handle), ctypes.byref(width), ctypes.byref(height))
        self.unref(ctypes.c_void_p(handle))
        return (width.value, height.value) if known else None


def pixels(path):
    """Width, height and premultiplied pixels of a PNG."""
    width, height, channels, rows = read_png(path)
    whole = {4: tuple, 3: lambda p: (*p, 255), 2: lambda p: (p[0], p[0], p[0], p[1]), 1: lambda p: (*p * 3, 255)}
    colors = [whole[channels](pixel) for row in rows for pixel in row]
    return width, height, [(r * a // 255, g * a // 255, b * a // 255, a) for r, g, b, a in colors]


def document(files, width, height, path):
    made = Pictures(width, height)
    made.draws = [made.picture("picture", "DrawSVG", (0, 0, width, height),
                               SVGData=made.archive.data(open(file, "rb").read())) for file in files]
    with open(path, "wb") as out:
        out.write(made.to_bytes())


def compare(paintdoc, files, folder):
    same, worst, refused, undrawn, rsvg = 0, [], 0, [], Rsvg()
    theirs, ours = os.path.join(folder, "theirs.png"), os.path.join(folder, "ours.png")
    for file in files:
        # Where a side is no whole number, both programs stretch the picture to the next one.
        size = rsvg.size(file)
        sides = [str(math.floor(side + 0.5)) for side in size] if size else []
        asked = ["-w", sides[0], "-h", sides[1]] if sides else []
        if subprocess.run(["rsvg-convert", *asked, "-o", theirs, file], capture_output=True).returncode != 0:
            refused += 1
            continue
        width, height, expected = pixels(theirs)
        document([file], width, height, os.path.join(folder, "one.paintdoc"))
        result = subprocess.run([paintdoc, "render", os.path.join(folder, "one.paintdoc"), ours],
                                capture_output=True, text=True)
        if result.returncode != 0 or result.stderr:
            undrawn.append((file, result.stderr.strip()))
            continue
        drawn = pixels(ours)[2]
        difference = max(abs(a - b) for one, other in zip(expected, drawn) for a, b in zip(one, other))
        same += difference <= 2
        worst.append((difference, file))
    worst.sort(reverse=True)
    print(f"{len(files)} files, {refused} of them none for rsvg-convert; {same} of the others within 2 levels")
    for difference, file in worst[:10]:
        if difference > 2:
            print(f"  {difference:3} {file}")
    for file, text in undrawn:
        print(f"  not drawn: {file}: {text}")


def processor_time(*command):
    """Milliseconds of a program and of all that it starts; the least of some runs."""
    best = float("inf")
    for _ in range(15):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        while True:
            try:
                os.wait()
            except ChildProcessError:
                break
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        best = min(best, (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime) * 1000)
    return best


def measure(paintdoc, files, folder):
    one, many, out = (os.path.join(folder, name) for name in ("one.paintdoc", "many.paintdoc", "out.png"))
    sources = random.Random(1).sample(files, min(200, len(files)))
    document(sources[:1], 128, 128, one)
    document(sources, 128, 128, many)
    bare = processor_time("rsvg-convert", "-w", "128", "-h", "128", "-o", out, sources[0])
    single = processor_time(paintdoc, "render", one, out)
    print(f"one picture: {single:.1f} ms, rsvg-convert {bare:.1f} ms, ratio {single / bare:.2f}")
    together = processor_time(os.path.join(os.path.dirname(paintdoc), "SvgFiles"), "128", out, *sources)
    all_of_them = processor_time(paintdoc, "render", many, out)
    print(f"{len(sources)} pictures: {all_of_them:.1f} ms, in one process {together:.1f} ms, "
          f"ratio {all_of_them / together:.2f}")


def main():
    paintdoc = os.path.join(os.path.abspath(sys.argv[1]), "paintdoc")
    files = []
    for root in sys.argv[2:] or ["/usr/share/icons"]:
        found = sorted(os.path.join(place, name) for place, _, names in os.walk(root) for name in names
                       if name.endswith(".svg") and not os.path.islink(os.path.join(place, name)))
        files += random.Random(1).sample(found, min(240, len(found)))
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    with tempfile.TemporaryDirectory() as folder:
        compare(paintdoc, files, folder)
        measure(paintdoc, files, folder)


if __name__ == "__main__":
    main()
