"""Documents with image filters, for make_documents.py. All show one picture of shapes."""
import itertools

from keyed_archive import tiff_rgba
from paint_document import PaintDocument
from picture_documents import png

WIDTH, HEIGHT = 64, 48
# Twice a path that no edge of a pixel lies on, and a mask over the lower left quarter.
SCISSOR = (10.5, 8.5, 30, 20)
MASK = ["#" * 20] * 6 + ["#" * 8 + "....####" + "#" * 4] * 6 + ["#" * 20] * 4


def pixel(x, y):
    """Straight R, G, B, A; y counts from the top: a disc, bars and a ramp on an opaque ground, and
    on the right a ramp of alpha."""
    if (x - 16) ** 2 + (y - 16) ** 2 < 144:
        return 200, 30, 90, 255
    if y >= 36:
        return 4 * x % 256, 4 * x % 256, 255 - 4 * x % 256, 255
    if 32 <= x < 44:
        return (0, 0, 0, 255) if (x // 3 + y // 4) % 2 else (255, 255, 255, 255)
    if x >= 48:
        return 30, 200, 80, 255 - 16 * (x - 48)
    return 64, 128, 192, 255


PIXELS = [pixel(x, y) for y in range(HEIGHT) for x in range(WIDTH)]


class Filters(PaintDocument):
    def __init__(self, width=WIDTH, height=HEIGHT, **settings):
        super().__init__(width, height, **settings)
        self.picture = self.archive.data(png(PIXELS, WIDTH))
        opaque = bytes(v for p in PIXELS for v in (*p[:3], 255))
        self.bitmap = self.archive.bitmap(tiff_rgba(WIDTH, HEIGHT, opaque))

    def filter(self, title, kind=None, settings=None, scissor=None, class_name="DrawFilter2",
               **fields):
        """settings: a dict, or the UID of something else."""
        if kind is not None:
            fields["FilterType"] = kind
        if settings is not None:
            fields["FilterSettings"] = self.archive.add(settings)
        if scissor is not None:
            fields["ImageScissor"] = scissor
        if class_name == "DrawFilter":
            fields["Image"] = self.bitmap
        else:
            fields.setdefault("ImageData", self.picture)
        outline = self.rectangle(0, 0, WIDTH, HEIGHT, line_width=0)
        uid = self.draw(class_name, outline=outline, title=title, **fields)
        self.draws.append(uid)
        return uid


def records():
    """One draw for each rule of the record, titled by what it shows."""
    doc = Filters()
    a = doc.archive
    for kind in range(11):
        doc.filter(f"type {kind}", kind)
    doc.filter("no type")
    doc.filter("type -1", -1)
    doc.filter("inverted", 0, {"inputRadius": 1})
    doc.filter("black and white", 9, {"inputRadius": 1})
    doc.filter("blur of 2.5", 1, {"inputRadius": 2.5})
    doc.filter("settings of an unknown type", 10, {"inputRadius": 2})
    doc.filter("no settings", 1, {})
    doc.filter("settings of another class", 1, a.array([4]))
    doc.filter("settings of other filters", 7, {"inputRadius": 9, "inputEV": 2, "inputScale": 6})
    doc.filter("texts as settings", 7, {"inputScale": "12", "inputCenter": 5})
    doc.filter("all colours", 3, {
        "inputEV": 0.7, "inputSaturation": 1.4, "inputContrast": 1.2, "inputBrightness": -0.05,
        "inputHighlightAmount": 0.6, "inputShadowAmount": 0.3, "inputIntensity": 0.4,
        "inputAngle": 0.9, "inputPower": 0.8})
    path = doc.rectangle(*SCISSOR)
    mask = doc.mask(MASK, 0, 0)
    for kind in range(10):
        settings = {"inputRadius": 1} if kind in (0, 9) else None
        doc.filter(f"type {kind} in a path", kind, settings, path)
    doc.filter("blur in a mask", 1, scissor=mask)
    doc.filter("blur in a mask outside", 1, scissor=doc.mask(MASK, 64, 0))
    doc.filter("edges in a mask", 5, scissor=mask)
    doc.filter("scissor of another class", 1, scissor=doc.color((1, 0, 0)))
    doc.filter("legacy", 4, {"inputRadius": 8}, path, "DrawFilter", opacity=60)
    doc.filter("legacy with defaults", 7, class_name="DrawFilter")
    deep = doc.group([doc.group([doc.filter("deep", 7, {"inputScale": 6}, path, "DrawFilter")])],
                     title="groups")
    doc.draws[-1] = deep
    doc.filter("without picture", 1, ImageData=a.data(b""))
    return doc


def plain():
    doc = Filters()
    doc.add("DrawImage2", outline=doc.rectangle(0, 0, WIDTH, HEIGHT, line_width=0),
            ImageData=doc.picture)
    return doc


def over_plain(kind):
    """A filter draw of a picture on top of the picture itself."""
    doc = plain()
    doc.filter("filter", kind, scissor=doc.rectangle(*SCISSOR))
    return doc


def documents():
    yield "filters", records()
    yield "plain picture", plain()
    yield "blur over plain", over_plain(1)
    yield "sharpen over plain", over_plain(2)


def hostile():
    """Documents of 64 by 64 with a filter draw each."""
    nan, inf = float("nan"), float("inf")
    keys = ("inputRadius", "inputSharpness", "inputEV", "inputSaturation", "inputContrast",
            "inputBrightness", "inputHighlightAmount", "inputShadowAmount", "inputIntensity",
            "inputAngle", "inputPower", "inputScale")
    values = {"nan": nan, "infinity": inf, "-infinity": -inf, "1e300": 1e300, "-1e300": -1e300,
              "1e-300": 1e-300, "-3": -3, "2^62": 2**62, "-2^63": -2**63, "true": True}

    def one(kind, settings=None, scissor=None, **fields):
        doc = Filters(64, 64)
        doc.filter("hostile", kind, settings and settings(doc), scissor and scissor(doc), **fields)
        return doc

    for (name, value), kind in itertools.product(values.items(), range(1, 9)):
        yield f"filter {kind} {name}", one(kind, lambda doc: dict.fromkeys(keys, value))
    others = {"text": lambda doc: doc.archive.add("8"), "colour": lambda doc: doc.color((1, 0, 0)),
              "dictionary": lambda doc: doc.archive.add({"inputRadius": 4}),
              "point": lambda doc: doc.archive.value_point(1e300, 1e300),
              "null": lambda doc: doc.archive.null()}
    for name, value in others.items():
        yield f"filter settings {name}", one(
            7, lambda doc: dict.fromkeys(keys + ("inputCenter", "inputTransform", "inputImage"),
                                         value(doc)))
    yield "filter centre far away", one(
        8, lambda doc: {"inputCenter": doc.archive.value_point(1e300, -1e300), "inputRadius": 1})
    yield "filter keys", one(1, lambda doc: {i: i for i in range(5000)})
    yield "filter type 2^62", one(2**62, lambda doc: {"inputRadius": 4})
    far = [("M", 0, 0), ("L", 1e30, nan), ("L", -inf, 3e38), ("Z",)]
    yield "filter scissor far", one(1, None, lambda doc: doc.path(far))
    yield "filter scissor empty", one(1, None, lambda doc: doc.path([]))
    yield "filter mask far", one(1, None, lambda doc: doc.mask(["###"], 2**63 - 1, -2**63))
    yield "filter mask short", one(1, None, lambda doc: doc.mask(["###"], Width=2**31, Height=2**31))
