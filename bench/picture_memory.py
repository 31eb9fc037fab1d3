#!/usr/bin/env python3
"""Memory and time of documents with many pictures, as ratios within one run:

    picture_memory.py BIN_DIR
"""
import os
import sys
import tempfile

from processes import line, measure  # puts the folders of the makers of documents on the path
from icc_profiles import adobe_rgb
from landscape import landscape
from make_pictures import iccp, png as png_of
from picture_documents import Pictures, png

BIN = sys.argv[1]
THUMBNAILER = os.path.join(BIN, "paint-thumbnailer")


def written(folder, name, make, *arguments):
    """Made by a process of its own: what this one once took would count as its children's peak."""
    path = os.path.join(folder, name + ".paintdoc")
    child = os.fork()
    if child == 0:
        with open(path, "wb") as file:
            file.write(make(*arguments).to_bytes())
        os._exit(0)
    if os.waitpid(child, 0)[1] != 0:
        raise SystemExit(f"{name} could not be made")
    return path


def jpeg_of(folder, width, height, quality=0.9):
    """A photograph, enlarged from a small one."""
    def make():
        doc = Pictures(width, height)
        small = doc.archive.data(png(landscape(160, 120), 160))
        doc.draws = [doc.picture("photo", rect=(0, 0, width, height), ImageData=small)]
        return doc

    out = os.path.join(folder, f"{width}.jpg")
    measure([os.path.join(BIN, "paintdoc"), "render", "--quality", str(quality), written(folder, "photo", make), out], 1)
    with open(out, "rb") as file:
        return file.read()


def photographs(photo, key, count=200):
    """As many different files, each drawn small."""
    doc = Pictures(1000, 500)
    for i in range(count):
        # Decoders pass over what follows the end of the picture.
        data = photo + b"%d" % i
        value = doc.archive.bitmap(data) if key == "Image" else doc.archive.data(data)
        doc.draws.append(doc.picture("p", rect=(i % 40 * 25, i // 40 * 100, 24, 90), **{key: value}))
    return doc


def large_pictures(photo, count):
    """The first one shows, the others are hidden."""
    doc = Pictures(1000, 750)
    for i in range(count):
        doc.draws.append(doc.picture("p", rect=(0, 0, 1000, 750), visible=i == 0,
                                     Image=doc.archive.bitmap(photo + b"%d" % i)))
    return doc


def with_profile(count):
    pixels = [(i * 7 % 256, i * 13 % 256, 99, 255) for i in range(64)]
    data = png_of(pixels, 6, 8, extra=(iccp(adobe_rgb()),), width=8, height=8)
    doc = Pictures(1000, 500)
    for i in range(count):
        doc.draws.append(doc.picture("p", rect=(i % 100 * 10, i // 100 * 10, 8, 8),
                                     ImageData=doc.archive.data(data + b"%d" % i)))
    return doc


def turned_fills(count, side):
    doc = Pictures(side, side)
    for i in range(count):
        rows = ["#" * (side - i - 1) + "." * (i + 1)] * side
        doc.add("DrawFill", outline=doc.rectangle(0, 0, side, side), rotation=1 + i, fill=(0, 0, 1, 0.1),
                FillType=0, Mask=doc.mask(rows))
    return doc


def main():
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.png")

        def run(name, make, *arguments, runs=3):
            path = written(folder, name, make, *arguments)
            return measure([THUMBNAILER, "-s", "256", path, out], runs)

        photo = jpeg_of(folder, 1920, 1080)
        _, objects = run("objects", photographs, photo, "Image")
        _, files = run("files", photographs, photo, "ImageData")
        line("200 photographs, peak: archived objects / files", f"{objects / files:.2f}", "at most 1.1")

        large = jpeg_of(folder, 11600, 8700, quality=0.5)  # some megabytes
        _, one = run("one", large_pictures, large, 1)
        _, twelve = run("twelve", large_pictures, large, 12)
        line("12 pictures of 101 megapixels, 11 hidden, peak / one", f"{twelve / one:.2f}", "at most 1.1")

        seconds, _ = run("profiles", with_profile, 5000)
        line("5,000 tiny pictures with one colour profile, seconds", f"{seconds:.2f}", "at most 1")

        side = 2000
        _, few = run("few", turned_fills, 2, side, runs=1)
        _, many = run("many", turned_fills, 20, side, runs=1)
        each = (many - few) / 18 / (side * side)
        line("a turned mask fill, peak in bytes a pixel", f"{each:.2f}", "its mask: 2")


if __name__ == "__main__":
    main()
