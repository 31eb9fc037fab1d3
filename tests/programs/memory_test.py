#!/usr/bin/env python3
"""Renders documents of every kind with less and less memory:  memory_test.py BIN_DIR EXAMPLES_DIR

There is the whole picture, status 75, or a picture that was left out and told. Nothing is left out in
silence, and no program ends in another way.
"""
import collections
import os
import struct
import sys
import tempfile
import unittest
import zlib

BIN, EXAMPLES = (os.path.abspath(path) for path in sys.argv[1:3])
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from hostile_pictures import svg
from keyed_archive import Float32, tiff_rgba
from make_pdfs import pdf
from picture_documents import Pictures, png
from program_support import read, run

PAINTDOC, THUMBNAILER = (os.path.join(BIN, name) for name in ("paintdoc", "paint-thumbnailer"))
LIMIT = 75
LOADER = 127  # of the system's loader, before the program has begun
STEP = 16  # megabytes
WIDTH, HEIGHT = 2400, 1800
ALL = (0, 0, WIDTH, HEIGHT)


# Documents -----------------------------------------------------------------------------------------------

def progressive_jpeg(width, height):
    """Even grey. All of its coefficients are in memory before the first row can be seen."""
    segment = lambda marker, body: struct.pack(">BBH", 0xff, marker, len(body) + 2) + body
    blocks = -(-width // 8) * -(-height // 8)  # one bit each: no difference from the last
    return (b"\xff\xd8" + segment(0xdb, b"\0" + b"\1" * 64) +
            segment(0xc2, struct.pack(">BHHBBBB", 8, height, width, 1, 1, 0x11, 0)) +
            segment(0xc4, b"\0" + bytes([1] + [0] * 15) + b"\0") + segment(0xda, b"\1\1\0\0\0\0") +
            bytes(blocks // 8) + b"\xff\xd9")


def scan_pdf(side):
    """A page that is one black and white scan."""
    rows = zlib.compress(bytes(side * side // 8))
    image = (b"<< /Type /XObject /Subtype /Image /Width %d /Height %d /BitsPerComponent 1 /ColorSpace /DeviceGray"
             b" /Filter /FlateDecode /Length %d >>\nstream\n" % (side, side, len(rows))) + rows + b"\nendstream"
    return pdf("/MediaBox [0 0 400 300] /Resources << /XObject << /I 5 0 R >> >>", b"400 0 0 300 0 0 cm /I Do", [image])


def chart(width=400, height=300):
    return [(x % 256, y % 256, (x ^ y) % 256, 255) for y in range(height) for x in range(width)]


def document(*draws):
    """draws: functions that add to a document."""
    doc = Pictures(WIDTH, HEIGHT, background=(1, 1, 1))
    for add in draws:
        add(doc)
    return doc.to_bytes()


def picture(key, data, class_name="DrawImage2", **fields):
    def add(doc):
        value = doc.archive.bitmap(data) if key == "Image" else doc.archive.data(data)
        doc.draws.append(doc.picture("picture", class_name, ALL, **{key: value}, **fields))
    return add


def shapes(doc):
    effects = dict(shadow=doc.shadow(9, -9, 20), inner_shadow=doc.shadow(5, -5, 9), reflection=(0.5, 3))
    ramp = (doc.gradient([((1, 0, 0), 0), ((0, 0, 1, 0.5), 1)]), {"radial": True})
    for i in range(3):
        doc.add("DrawEllipse", outline=doc.oval(200 * i, 200, 900, 700, line_width=9), stroke=(0, 0, 0), opacity=70,
                fill_gradient=ramp, outline_stroke=(3, (0, 1, 0)), rotation=20 * i, **effects)


def text(doc):
    style = doc.style("Georgia-Bold", 160, (0, 0, 0), 2, NSStrokeWidth=-3.0, NSStrokeColor=doc.color((1, 0, 0)))
    ramp = doc.gradient([((1, 0, 0), 0), ((0, 0, 1), 1)])
    doc.add("DrawText", outline=doc.rectangle(*ALL), Text=doc.text(("Letters, 漢字 and 😀", style)),
            shadow=doc.shadow(5, -5, 9), **doc.text_gradient(ramp))
    doc.add("DrawBezierText", outline=doc.rectangle(0, 0, 1, 1), Text=doc.text(("along a circle", style)), Version=1,
            BezierDraw=doc.draw("DrawEllipse", outline=doc.oval(200, 100, 1200, 1000)))


def turned_fill(doc):
    rows = ["#" * (WIDTH - y) + "." * y for y in range(HEIGHT)]
    doc.add("DrawFill", outline=doc.rectangle(*ALL), rotation=30, fill=(0, 0, 1, 0.5), FillType=0, Mask=doc.mask(rows))


def masked(doc):
    doc.has_background, doc.mask_with_background = True, True
    picture("ImageData", progressive_jpeg(3200, 2400))(doc)
    doc.add("DrawRectangle", outline=doc.rectangle(*ALL), fill=(0, 1, 0))


def filtered(doc):
    small = doc.archive.data(png(chart(), 400))
    for kind in (1, 3, 4):
        doc.draws.append(doc.picture("filter", "DrawFilter2", ALL, ImageData=small, FilterType=kind))


def encoded(format_name, folder):
    """A picture file of the format, made by the program."""
    source, out = os.path.join(folder, "source.paintdoc"), os.path.join(folder, "picture." + format_name)
    with open(source, "wb") as file:
        file.write(document(picture("ImageData", png(chart(), 400)), shapes))
    result = run(PAINTDOC, "render", source, out)
    assert result.returncode == 0, result
    return read(out)


def kinds(folder):
    """Documents by what takes their memory."""
    yield "shapes", document(shapes)
    yield "text", document(text)
    yield "turned fill", document(turned_fill)
    yield "filters", document(filtered)
    yield "masked by a progressive JPEG", document(masked)
    for name in ("png", "jpeg", "tiff", "webp"):
        yield name, document(picture("ImageData", encoded(name, folder)))
    flat = bytes(range(256)) * (WIDTH * HEIGHT * 4 // 256)
    yield "archived bitmap", document(picture("Image", tiff_rgba(WIDTH, HEIGHT, flat)))
    yield "legacy bitmap", document(picture("Image", tiff_rgba(WIDTH, HEIGHT, flat), "DrawImage", Opacity=Float32(1)))
    yield "PDF", document(picture("PDFData", pdf("/MediaBox [0 0 40 20]"), "DrawPDF"))
    yield "PDF of a scan", document(picture("PDFData", scan_pdf(24000), "DrawPDF"))
    yield "SVG", document(picture("SVGData", svg('<circle cx="20" cy="10" r="9" fill="#0f0"/>'), "DrawSVG"))


# Tests ---------------------------------------------------------------------------------------------------

class Memory(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(run, "rm", "-rf", self.folder)

    def descend(self, command, out, limits):
        """What becomes of a command with ever less memory, by status; pictures that come must be whole, or
        the command must tell what it left out."""
        whole = run(*command)
        self.assertEqual(whole.returncode, 0, whole)
        expected = read(out)
        ends = collections.Counter()
        for limit in limits:
            os.remove(out) if os.path.exists(out) else None
            result = run(*command, "--limit-memory", str(limit))
            told = result.stderr if b"left out" in result.stderr else b""
            end = "left out" if told and told != whole.stderr else result.returncode
            if end == 0:
                self.assertEqual(read(out), expected, (command, limit))
            elif end == LIMIT:
                self.assertFalse(os.path.exists(out), (command, limit))
            ends[end] += 1
        self.assertLessEqual(set(ends), {0, LIMIT, LOADER, "left out"}, command)
        return ends

    def test_every_kind_of_document(self):
        refused = 0
        for name, data in kinds(self.folder):
            with self.subTest(name):
                path, out = os.path.join(self.folder, name + ".paintdoc"), os.path.join(self.folder, "out.png")
                with open(path, "wb") as file:
                    file.write(data)
                ends = self.descend((PAINTDOC, "render", path, out, "200"), out, range(20 * STEP, 0, -STEP))
                self.assertGreater(ends[0] + ends["left out"], 0, ends)
                refused += ends[LIMIT]
        self.assertGreater(refused, 10)

    def test_every_output(self):
        path = os.path.join(EXAMPLES, "composition.paintdoc")
        for ending in ("png", "jpeg", "webp", "tiff"):
            out = os.path.join(self.folder, "out." + ending)
            self.descend((PAINTDOC, "render", path, out), out, range(32, 15, -1))
        for name in ("text", "poster", "pictures", "filters"):
            out = os.path.join(self.folder, "thumbnail.png")
            self.descend((THUMBNAILER, os.path.join(EXAMPLES, name + ".paintdoc"), out), out, range(96, 15, -1))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
