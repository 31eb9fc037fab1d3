#!/usr/bin/env python3
"""Makes the example documents next to this script, with the independent writer of the tests."""
import math
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "support"))

from keyed_archive import Float32  # noqa: E402
from landscape import landscape  # noqa: E402
from make_pdfs import pdf  # noqa: E402
from fills_example import fills  # noqa: E402
from paint_document import PaintDocument  # noqa: E402
from picture_documents import png, two_gray_jpeg  # noqa: E402


def background():
    """A canvas with nothing but its colour."""
    return PaintDocument(320, 200, background=(0.95, 0.9, 0.8))


def composition():
    """Shapes with shadows, gradients, a reflection and a group."""
    doc = PaintDocument(640, 480, background=(0.97, 0.97, 0.99))
    sky = doc.gradient([((0.75, 0.85, 1.0), 0), ((0.2, 0.45, 0.85), 1)])
    doc.add("DrawGradient", outline=doc.rectangle(0, 160, 640, 320), fill_gradient=(sky, {"degree": 90}))
    sun = doc.gradient([((1, 0.98, 0.7), 0), ((1, 0.7, 0.1), 1)])
    doc.add("DrawEllipse", outline=doc.oval(470, 340, 100, 100), title="Sun",
            fill_gradient=(sun, {"radial": True, "center": (-0.3, 0.3)}),
            shadow=doc.shadow(0, 0, 30, (1, 0.8, 0.2, 0.9)))
    house = doc.draw("DrawRectangle", outline=doc.rectangle(120, 160, 200, 130, line_width=3),
                     stroke=(0.3, 0.15, 0.1), fill=(0.93, 0.86, 0.7),
                     shadow=doc.shadow(8, -8, 8), inner_shadow=doc.shadow(6, -6, 12, (0.4, 0.2, 0, 0.6)))
    roof = doc.draw("DrawFreePolygon", fill=(0.72, 0.22, 0.18), stroke=(0.3, 0.1, 0.08),
                    outline=doc.path([("M", 100, 290), ("L", 340, 290), ("L", 220, 380), ("Z",)], line_width=3))
    door = doc.draw("DrawRoundRectangle", outline=doc.rectangle(200, 160, 40, 70), fill=(0.35, 0.2, 0.12))
    doc.draws.append(doc.group([house, roof, door], title="House"))
    doc.add("DrawEllipse", outline=doc.oval(400, 190, 120, 70), fill=(0.15, 0.5, 0.25), rotation=15,
            stroke=(0.05, 0.3, 0.1), reflection=(0.5, 0), opacity=90, title="Bush")
    doc.add("DrawLine", outline=doc.path([("M", 40, 60), ("L", 600, 60)], line_width=6, dash=(24, 12)),
            stroke=(0.2, 0.2, 0.25), ArrowStyle=0)
    doc.add("DrawCurve", outline=doc.path([("M", 60, 110), ("C", 200, 20, 400, 180, 560, 100)], line_width=5),
            stroke=(0.1, 0.35, 0.6), ArrowStyle=2, outline_stroke=(2, (1, 1, 1)))
    return doc


def filters():
    """A picture with a blurred oval and a pixellated house, each a filter draw above it."""
    width, height = 240, 180
    doc = PaintDocument(width, height)
    whole = lambda: doc.rectangle(0, 0, width, height, line_width=0)
    picture = doc.archive.data(png(landscape(width, height), width))
    doc.add("DrawImage2", outline=whole(), ImageData=picture, title="Landscape")
    doc.add("DrawFilter2", outline=whole(), ImageData=picture, title="Sun", FilterType=1,
            FilterSettings=doc.archive.add({"inputRadius": 8}), ImageScissor=doc.oval(130, 95, 90, 75))
    doc.add("DrawFilter2", outline=whole(), ImageData=picture, title="House", FilterType=7,
            ImageScissor=doc.rectangle(38, 54, 50, 52))
    return doc


def mix(a, b, t):
    return tuple(round(x + (y - x) * min(max(t, 0), 1)) for x, y in zip(a, b))


def grain(x, y):
    """Boards with a grain, for a background."""
    board = x // 40
    wave = math.sin(0.09 * y + 2 * board + 0.8 * math.sin(0.05 * y + board)) + math.sin(0.5 * x + board)
    shade = 0.5 + 0.2 * wave - 0.5 * (x % 40 == 0)
    return mix((120, 84, 52), (164, 122, 82), shade)


def glow(x, y, size):
    """A translucent disc that fades out."""
    fade = max(0, 1 - math.hypot(x - size / 2 + 0.5, y - size / 2 + 0.5) / (size / 2))
    return 255, 210, 60, round(230 * min(1, 1.6 * fade))


BADGE = b"""<svg xmlns="http://www.w3.org/2000/svg" width="120" height="120" viewBox="0 0 120 120">
<circle cx="60" cy="60" r="56" fill="#245a8d"/><circle cx="60" cy="60" r="46" fill="none"
 stroke="#fff" stroke-width="4" stroke-dasharray="6 5"/>
<path d="M60 22 L71 49 L100 51 L78 69 L85 98 L60 82 L35 98 L42 69 L20 51 L49 49 Z" fill="#ffd34d"/></svg>"""

CHART = b"""0.98 g 0 0 160 120 re f 0.2 G 2 w 16 104 m 16 16 l 148 16 l S
0.16 0.45 0.75 rg 28 17 20 38 re f 0.9 0.5 0.15 rg 58 17 20 62 re f
0.3 0.6 0.3 rg 88 17 20 50 re f /A gs 0.7 0.15 0.2 rg 118 17 20 84 re f
0.1 0.1 0.1 RG 3 w 38 60 m 60 96 80 92 98 74 c 112 60 124 104 128 108 c S"""


def pictures():
    """Embedded pictures of every kind on a board, with the effects that pictures take."""
    doc = PaintDocument(640, 480)
    a = doc.archive
    file = lambda pixel, width, height: a.data(png(
        [pixel(x, y) for y in range(height) for x in range(width)], width))
    place = lambda x, y, w, h, width=0: doc.rectangle(x, y, w, h, line_width=width)
    view = a.data(png(landscape(180, 120), 180))
    doc.has_background = True
    doc.add("DrawImage2", outline=place(0, 0, 640, 480), ImageData=file(grain, 320, 240), title="Board")
    doc.add("DrawImage2", outline=place(40, 270, 240, 160, 14), ImageData=view, stroke=(1, 1, 0.97),
            rotation=7, shadow=doc.shadow(6, -8, 10), title="Photograph")
    doc.add("DrawImage2", outline=doc.path(rounded(350, 280, 210, 140, 24), line_width=0), ImageData=view,
            XRadius=Float32(24), YRadius=Float32(24), title="Rounded",
            inner_shadow=doc.shadow(5, -5, 10, (0, 0, 0, 0.8)), reflection=(0.4, 6))
    doc.add("DrawPDF", outline=place(60, 70, 200, 150), rotation=-5, shadow=doc.shadow(4, -4, 6),
            title="Chart", PDFData=a.data(pdf(
                "/MediaBox [0 0 160 120] /Resources << /ExtGState << /A << /ca 0.6 >> >> >>", CHART)))
    doc.add("DrawSVG", outline=place(300, 40, 150, 150), SVGData=a.data(BADGE), shadow=doc.shadow(4, -6, 8),
            title="Badge")
    doc.add("DrawImage", outline=place(480, 90, 110, 55), opacity=80, title="Legacy",
            Image=a.bitmap(two_gray_jpeg()))
    doc.add("DrawImage2", outline=place(450, 30, 180, 180), title="Glow",
            ImageData=file(lambda x, y: glow(x, y, 48), 48, 48))
    return doc


def poster():
    """One of each: shapes, text, an embedded picture, an SVG picture and a filter."""
    doc = PaintDocument(420, 594, background=(0.98, 0.96, 0.9))
    a = doc.archive
    frame = lambda: doc.rectangle(30, 230, 360, 270, line_width=8)
    view = a.data(png(landscape(240, 180), 240))
    doc.add("DrawImage2", outline=frame(), ImageData=view, stroke=(1, 1, 1), shadow=doc.shadow(0, -6, 12),
            title="Picture")
    doc.add("DrawText", outline=doc.rectangle(30, 510, 360, 60, line_width=0), title="Heading",
            Text=doc.text(("Lakeside", doc.style(font="Helvetica-Bold", size=44, color=(0.1, 0.25, 0.45), align=2))))
    doc.add("DrawText", outline=doc.rectangle(40, 120, 200, 90, line_width=0), title="Invitation", Text=doc.text(
        ("Sunday at five, by the old jetty. ", doc.style(font="Helvetica", size=17, color=(0.2, 0.2, 0.2))),
        ("Bring a boat.", doc.style(font="Times-Italic", size=19, color=(0.7, 0.2, 0.15)))))
    doc.add("DrawSVG", outline=doc.rectangle(270, 100, 110, 110, line_width=0), SVGData=a.data(BADGE), title="Badge")
    stripe = doc.gradient([((0.1, 0.25, 0.45), 0), ((0.35, 0.6, 0.8), 1)])
    doc.add("DrawRoundRectangle", outline=doc.path(rounded(30, 40, 360, 40, 12), line_width=0), XRadius=Float32(12),
            YRadius=Float32(12), fill_gradient=(stripe, {"degree": 0}), title="Stripe")
    doc.add("DrawCurve", outline=doc.path([("M", 50, 60), ("C", 150, 90, 250, 30, 360, 60)], line_width=3),
            stroke=(1, 1, 1), ArrowStyle=2)
    return doc


def rounded(x, y, w, h, r):
    """A rectangle with circular corners, counter-clockwise."""
    k = r * (1 - 4 / 3 * math.tan(math.pi / 8))
    right, top = x + w, y + h
    return [("M", x + r, y), ("L", right - r, y), ("C", right - k, y, right, y + k, right, y + r),
            ("L", right, top - r), ("C", right, top - k, right - k, top, right - r, top),
            ("L", x + r, top), ("C", x + k, top, x, top - k, x, top - r),
            ("L", x, y + r), ("C", x, y + k, x + k, y, x + r, y), ("Z",)]


def text():
    """A poster: text boxes with outlines, gradients and shadows, and text along two curves."""
    doc = PaintDocument(640, 480, background=(0.98, 0.96, 0.9))
    ink, red = (0.15, 0.12, 0.2), (0.75, 0.15, 0.1)
    warm = doc.gradient([((0.95, 0.75, 0.1), 0), (red, 1)])
    box = lambda x, y, w, h, *pieces, **fields: doc.add(
        "DrawText", outline=doc.rectangle(x, y, w, h), Text=doc.text(*pieces), **fields)

    def curved(guide, string, style, **fields):
        doc.add("DrawBezierText", outline=doc.rectangle(0, 0, 1, 1), Text=doc.text((string, style)), Version=1,
                BezierDraw=guide, **fields)

    curved(doc.draw("DrawEllipse", outline=doc.oval(150, 160, 340, 285)), "The Annual Fair of Letters",
           doc.style("Georgia-Bold", 34, ink, 2), title="Arc")
    box(120, 270, 400, 100, ("TYPE", doc.style("Helvetica-Bold", 88, (0, 0, 0), 2, NSStrokeWidth=-3.0,
                                               NSStrokeColor=doc.color(ink))),
        title="Title", shadow=doc.shadow(5, -5, 6), **doc.text_gradient(warm, 270))
    box(60, 130, 250, 110, ("Glyphs are ", doc.style("Times-Roman", 18, ink, 3)),
        ("outlines", doc.style("Times-Italic", 18, red, 3)),
        (" filled at quarters of a pixel; lines break, stretch and ", doc.style("Times-Roman", 18, ink, 3)),
        ("underline", doc.style("Times-Roman", 18, ink, 3, NSUnderline=1)),
        (" as on the platform that wrote the document.", doc.style("Times-Roman", 18, ink, 3)), title="Justified")
    box(340, 130, 240, 110, ("Left to right, مِنَ الْيَمِينِ, 漢字 and 😀🎈", doc.style("HelveticaNeue", 22, ink, 1)),
        title="Scripts")
    wave = doc.path([("M", 40, 60), ("C", 180, 160, 300, -40, 440, 50), ("C", 500, 90, 560, 100, 600, 60)], line_width=2)
    curved(doc.draw("DrawBezierPath", outline=wave, stroke=(0.8, 0.75, 0.65)), "free admission along the whole wave",
           doc.style("Helvetica-Bold", 24, red, 2), title="Wave")
    return doc


EXAMPLES = {"background": background, "composition": composition, "filters": filters,
            "pictures": pictures, "poster": poster, "text": text}
EXAMPLES["fills"] = fills


def main():
    for name, make in EXAMPLES.items():
        with open(os.path.join(HERE, name + ".paintdoc"), "wb") as out:
            out.write(make().to_bytes())


if __name__ == "__main__":
    main()
