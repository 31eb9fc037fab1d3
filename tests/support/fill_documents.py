"""Documents for tests of flood fills, cleared areas and their masks."""
from paint_document import PaintDocument

RED, BLUE = (1, 0, 0), (0, 0, 1)
RING = ["####", "#..#", "####"]
FLAG = ["####", "#...", "##..", "#..."]


def fills():
    """Fills of each kind and age, titled by what they show."""
    doc = PaintDocument(32, 32, background=(1, 1, 1))

    def record(title, x, y, rows=RING, outline=None, **fields):
        if rows is not None:
            fields["Mask"] = doc.mask(rows, x, y)
            outline = outline or doc.rectangle(x, y, len(rows[0]), len(rows))
        fields.setdefault("fill", RED)
        doc.add("DrawFill", outline=outline, title=title, **fields)

    off = lambda width, height: doc.rectangle(0, 0, width, height)
    record("mask", 2, 3, FillType=0)
    record("mask, path elsewhere", 2, 8, outline=off(9, 9), FillType=0)
    record("turned", 2, 13, FLAG, FillType=0, rotation=90)
    record("turned and nearly its size", 2, 18, FLAG, off(13, 5), FillType=0, rotation=90)
    record("turned and resized", 2, 23, FLAG, off(8, 8), FillType=0, rotation=90)
    record("path", 0, 0, None, doc.rectangle(10, 3, 4, 3), FillType=1)
    record("path with a mask", 20, 20, outline=doc.rectangle(10, 8, 4, 3), FillType=1)
    lines = doc.path([("M", 10, 13), ("L", 13, 13), ("M", 10, 14), ("L", 10, 14), ("M", 13, 14),
                      ("L", 13, 14), ("M", 10, 15), ("L", 13, 15)], line_width=1, cap=2)
    record("lines", 0, 0, None, lines, FillType=2)
    record("lines with a mask", 10, 18, outline=off(24, 23), FillType=2)
    record("old", 18, 3)
    record("old and full", 18, 8, ["####"] * 3, off(1, 1))
    record("old pixel", 18, 13, ["#"])
    record("colour of the stroke", 18, 18, FillType=0, stroke=BLUE, fill=None, EnableFill=True)
    record("both colours", 18, 23, FillType=0, stroke=BLUE)
    record("off", 25, 3, FillType=0, EnableFill=False)
    record("hidden", 25, 8, FillType=0, visible=False)
    record("no mask", 0, 0, None, doc.rectangle(25, 13, 4, 3), FillType=0)
    record("no such type", 25, 18, FillType=7)
    record("translucent", 25, 23, FillType=0, fill=(1, 0, 0, 0.5))
    return doc


def clears():
    doc = PaintDocument(16, 16, background=(1, 1, 1))
    ring = doc.path([("M", 2, 2), ("L", 10, 2), ("L", 10, 10), ("L", 2, 10), ("Z",), ("M", 4, 4),
                     ("L", 8, 4), ("L", 8, 8), ("L", 4, 8), ("Z",)], winding=1)
    doc.add("DrawClear", outline=ring, fill=(0, 0, 0, 0), title="clear")
    doc.add("DrawClear", outline=doc.rectangle(12, 12, 2, 2), fill=RED, title="coloured")
    return doc


def hostile_fills():
    """Fills whose masks lie, one each in a document of 64 by 64."""
    huge, least = 2**63 - 1, -2**63

    def fill(outline=(8, 8, 4, 3), masked=RING, times=1, rotation=0, **fields):
        doc = PaintDocument(64, 64, background=(1, 1, 1))
        mask = doc.mask(masked, 8, 8, **fields)
        for _ in range(times):
            doc.add("DrawFill", outline=doc.rectangle(*outline), fill=RED, FillType=0, Mask=mask,
                    rotation=rotation)
        return doc

    for name, width, height in (
            ("negative width", -4, 3), ("negative sides", -4, -3), ("no width", 0, 3),
            ("one row too many", 4, 4), ("wide", huge, 1), ("product wraps to 12", 2**62 + 3, 4),
            ("product wraps to 0", 2**32, 2**32), ("least", least, -1), ("huge", huge, huge)):
        yield "mask size " + name, fill(Width=width, Height=height)
    yield "mask smaller than its bytes", fill(Width=2, Height=2)
    yield "mask without bytes", fill(Mask=b"")
    for name, x, y in (("far right", huge, 8), ("far left", least, 8), ("far up", 8, huge),
                       ("far down", 8, least), ("far everywhere", huge, least)):
        yield "mask " + name, fill(XStart=x, YStart=y)
        yield "turned mask " + name, fill(rotation=30, XStart=x, YStart=y)
    for name, outline in (("stretched", (8, 8, 1e9, 1e9)), ("flat", (8, 8, 0, 0)),
                          ("nan", (8, 8, float("nan"), 3)), ("thin", (8, 8, 1e-9, 60))):
        yield "turned mask " + name, fill(outline=outline, rotation=30)
    yield "mask of other bytes", fill(Mask=bytes(range(0, 240, 20)))
    yield "masks many", fill(masked=["#." * 500] * 500, times=200)
    not_a_mask = PaintDocument(64, 64)
    not_a_mask.add("DrawFill", outline=not_a_mask.rectangle(8, 8, 4, 3), fill=RED, FillType=0,
                   Mask=not_a_mask.archive.add("mask"))
    yield "mask a text", not_a_mask
