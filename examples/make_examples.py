#!/usr/bin/env python3
"""Makes the example documents next to this script, with the independent writer of the tests."""
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "support"))

from landscape import landscape  # noqa: E402
from paint_document import PaintDocument  # noqa: E402
from picture_documents import png  # noqa: E402


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


EXAMPLES = {"background": background, "composition": composition, "filters": filters}


def main():
    for name, make in EXAMPLES.items():
        with open(os.path.join(HERE, name + ".paintdoc"), "wb") as out:
            out.write(make().to_bytes())


if __name__ == "__main__":
    main()
