"""Documents with embedded pictures, for make_documents.py. Every picture shows the same chart where
its format can: four by two pixels whose colours say where they are, the last one translucent."""
import struct
import zlib

from keyed_archive import Float32, tiff_rgba
from make_pdfs import files as pdf_files
from paint_document import PaintDocument

WIDTH, HEIGHT = 4, 2
# Straight alpha, rows from the top. Premultiplied, the translucent one is 80, 40, 0, 102.
CHART = [(60 * x, 100 * y, 200, 255) for y in range(HEIGHT) for x in range(WIDTH)]
CHART[-1] = (200, 100, 0, 102)
OPAQUE = [(r, g, b) for r, g, b, _ in CHART]


def png(pixels, width):
    """8 bits a sample, with alpha channel when the pixels have one, no filter."""
    chunk = lambda name, body: (struct.pack(">I", len(body)) + name + body +
                                struct.pack(">I", zlib.crc32(name + body)))
    rows = [pixels[i:i + width] for i in range(0, len(pixels), width)]
    raw = b"".join(b"\0" + bytes(v for pixel in row for v in pixel) for row in rows)
    kind = 6 if len(pixels[0]) == 4 else 2
    return (b"\x89PNG\r\n\x1a\n" +
            chunk(b"IHDR", struct.pack(">2I5B", width, len(rows), 8, kind, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


def two_gray_jpeg():
    """Sixteen by eight pixels, grey: 200 on the left, 40 on the right."""
    segment = lambda marker, body: struct.pack(">BBH", 0xff, marker, len(body) + 2) + body
    # Differences of the mean times 8: 576 in 10 bits, -1280 in 11; no other coefficient.
    bits = "0" + f"{576:010b}" + "0" + "10" + f"{2047 - 1280:011b}" + "0"
    bits += "1" * (-len(bits) % 8)
    data = int(bits, 2).to_bytes(len(bits) // 8, "big").replace(b"\xff", b"\xff\0")
    return (b"\xff\xd8" + segment(0xdb, b"\0" + b"\1" * 64) +
            segment(0xc0, struct.pack(">BHHBBBB", 8, 8, 16, 1, 1, 0x11, 0)) +
            segment(0xc4, b"\0" + bytes([1, 1] + [0] * 14) + b"\x0a\x0b") +
            segment(0xc4, b"\x10" + bytes([1] + [0] * 15) + b"\0") +
            segment(0xda, b"\1\1\0\0\x3f\0") + data + b"\xff\xd9")


def tiff():
    return tiff_rgba(WIDTH, HEIGHT, bytes(v for pixel in CHART for v in pixel), premultiplied=False)


SVG = (b'<svg xmlns="http://www.w3.org/2000/svg" width="4" height="2">'
       b'<rect width="2" height="2" fill="#f00"/></svg>')


class Pictures(PaintDocument):
    """Adds draws over the rectangle (0, 0, 4, 2) unless told otherwise."""

    def picture(self, title, class_name="DrawImage2", rect=(0, 0, WIDTH, HEIGHT), line_width=0,
                **fields):
        outline = self.rectangle(*rect, line_width=line_width)
        return self.draw(class_name, outline=outline, title=title, **fields)


def forms():
    """A draw for each form in which a picture may be archived."""
    doc = Pictures(16, 8)
    a = doc.archive
    alpha, opaque = a.data(png(CHART, WIDTH)), a.data(png(OPAQUE, WIDTH))
    bitmap = a.bitmap(tiff())
    line = dict(stroke=(0, 0, 0), line_width=2)
    doc.draws = [
        doc.picture("png", ImageData=alpha, HasRerender=True),
        doc.picture("opaque png", ImageData=opaque),
        doc.picture("mutable data", ImageData=a.mutable_data(png(CHART, WIDTH))),
        doc.picture("tiff", ImageData=a.data(tiff())),
        doc.picture("jpeg", ImageData=a.data(two_gray_jpeg()), HasRerender=True),
        doc.picture("object", Image=bitmap),
        doc.picture("object and data", Image=bitmap, ImageData=a.data(two_gray_jpeg())),
        doc.picture("another object", Image=a.array(["text"]), ImageData=alpha),
        doc.picture("nothing"),
        doc.picture("junk", ImageData=a.data(b"\x89PNG\r\n\x1a\nno")),
        doc.picture("text for data", ImageData=a.add("text")),
        doc.picture("half", ImageData=alpha, Opacity=Float32(0.5)),
        doc.picture("half with line", ImageData=alpha, Opacity=Float32(0.5), **line),
        doc.picture("whole with line", ImageData=alpha, Opacity=Float32(1), opacity=70, **line),
        doc.picture("negative with line", ImageData=alpha, Opacity=Float32(-1), opacity=70, **line),
        doc.picture("nan with line", ImageData=alpha, Opacity=Float32("nan"), opacity=70, **line),
        doc.picture("thin line", ImageData=alpha, stroke=(0, 0, 0)),
        doc.draw("DrawImage2", title="no outline", ImageData=alpha),
        doc.picture("legacy", "DrawImage", Image=bitmap, line_width=3, opacity=50,
                    Opacity=Float32(0.5)),
        doc.picture("legacy without picture", "DrawImage"),
        doc.picture("svg", "DrawSVG", SVGData=a.data(SVG), FlipHorizontal=True),
        doc.picture("svg with a bitmap", "DrawSVG", ImageData=alpha),
        doc.picture("empty svg", "DrawSVG", SVGData=a.data(b"")),
        *(doc.picture("pdf, " + name, "DrawPDF", PDFData=a.data(data), FlipVertical=True)
          for name, data in pdf_files()),
        doc.picture("empty pdf", "DrawPDF", PDFData=a.data(b"")),
        doc.picture("pdf with a bitmap", "DrawPDF", ImageData=alpha),
        doc.group([doc.group([doc.picture("deep legacy", "DrawImage", Image=bitmap,
                                          Opacity=Float32(0.5))])], title="groups")]
    return doc


def background(rect, masked):
    """The chart as background, below a green ground."""
    doc = Pictures(WIDTH, HEIGHT)
    doc.has_background, doc.mask_with_background = True, masked
    doc.draws = [doc.picture("background", rect=rect, ImageData=doc.archive.data(png(CHART, WIDTH)))]
    doc.add("DrawRectangle", outline=doc.rectangle(0, 0, WIDTH, HEIGHT), fill=(0, 1, 0))
    return doc


def claiming(width, height, data):
    """A PNG file with the sides in its header changed."""
    header = data[12:16] + struct.pack(">2I", width, height) + data[24:29]
    return data[:12] + header + struct.pack(">I", zlib.crc32(header)) + data[33:]


def hostile():
    """Documents with pictures that no writer makes, each with every effect that pictures take."""
    nan, inf, good = float("nan"), float("inf"), png(CHART, WIDTH)
    files = {"ImageData": good, "SVGData": SVG, "PDFData": dict(pdf_files())["plain"]}
    classes = {"ImageData": "DrawImage2", "SVGData": "DrawSVG", "PDFData": "DrawPDF"}

    def shown(key, data, rect=(8, 8, 40, 40), **fields):
        doc = Pictures(64, 64)
        fields = dict(stroke=(1, 0, 0), shadow=doc.shadow(3, -3, 4), reflection=(0.5, 2), rotation=33,
                      inner_shadow=doc.shadow(3, -3, 4), line_width=3, **fields)
        doc.draws = [doc.picture("p", classes[key], rect, **{key: doc.archive.data(data)}, **fields)]
        return doc

    rects = {"nan": (nan, 8, 40, 40), "infinite": (8, 8, inf, 40), "empty": (8, 8, 0, 0),
             "flat": (8, 8, 40, 0), "thin": (8, 8, 1e-30, 40), "far": (1e30, 8, 40, 40),
             "wide": (8, 8, 1e9, 40), "mirrored": (48, 48, -40, -40), "all": (-3e8, -3e8, 6e8, 6e8)}
    for key, data in files.items():
        for name, rect in rects.items():
            yield f"{key} {name}", shown(key, data, rect)
    for sides in (15000, 16000), (65535, 65535), (2 ** 31 - 1, 1), (1, 2 ** 31 - 1), (0, 5):
        yield "claim of %d x %d" % sides, shown("ImageData", claiming(*sides, good))
    for end in 8, 33, 40, len(good) - 20:
        yield f"cut at {end}", shown("ImageData", good[:end])
    for name, value in (("nan", nan), ("infinity", inf), ("3e38", 3e38), ("-1", -1)):
        yield f"opacity {name}", shown("ImageData", good, Opacity=Float32(value))
        yield f"radius {name}", shown("ImageData", good, XRadius=Float32(value), YRadius=Float32(value))
    own = Pictures(64, 64)
    slot = own.archive.reserve()
    own.archive.fill(slot, ["DrawImage2", "DrawRoundRectangle", "DrawRectangle", "DrawBase", "NSObject"],
                     {"BezierPath": own.rectangle(8, 8, 40, 40), "Image": slot, "ImageData": slot})
    own.draws = [slot]
    yield "draw as its own picture", own


def left_out():
    """Pictures that nobody can read, and a blue rectangle over them."""
    doc = Pictures(WIDTH, HEIGHT)
    junk = lambda: doc.archive.data(b"no picture")
    broken = lambda: doc.archive.bitmap(b"II*\0 and no more")
    group = lambda draw: doc.group([draw])
    doc.draws = [doc.picture("bitmap", ImageData=junk()), doc.picture("archived bitmap", Image=broken()),
                 doc.picture("legacy", "DrawImage", Image=broken()),
                 group(group(doc.picture("in a group", ImageData=junk()))),
                 doc.picture("filtered", "DrawFilter2", ImageData=junk()),
                 doc.picture("pdf", "DrawPDF", PDFData=doc.archive.data(b"%PDF-1.4 and no more")),
                 doc.picture("svg", "DrawSVG", SVGData=doc.archive.data(b"no markup </svg>")),
                 doc.picture("good", ImageData=doc.archive.data(png(CHART, WIDTH)))]
    doc.add("DrawRectangle", outline=doc.rectangle(1, 0, 2, 2), fill=(0, 0, 1))
    return doc


def documents():
    yield "pictures", forms()
    yield "left out pictures", left_out()
    yield "masked by background", background((0, 0, WIDTH, HEIGHT), True)
    yield "masked by smaller background", background((1, 0, 2, 1), True)
    yield "not masked", background((1, 0, 2, 1), False)
