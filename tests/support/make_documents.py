#!/usr/bin/env python3
"""Makes the documents that tests read:  make_documents.py OUTPUT_DIR

Written without any code of the engine; what a reader must make of them stands in the tests.
"""
import itertools
import os
import struct
import sys

from fill_documents import clears, fills, hostile_fills
import filter_documents
import picture_documents
from keyed_archive import Float32, UID
from make_pictures import png
from paint_document import DRAW_CLASSES, PRESET_SHAPES, PaintDocument
import text_documents

RED, BLUE = (1, 0, 0), (0, 0, 1)


def megabytes_of_colours():
    """Gradients on gradients: hard to compress."""
    doc = canvas(2000, 2000)
    for degree in (17, 71, 133):
        gradient = doc.gradient([((degree / 200, 1, 0), 0), ((0, 0, 1, 0.5), 0.3), ((1, degree / 180, 1, 0.2), 1)])
        doc.add("DrawEllipse", outline=doc.oval(-900, -900, 3800, 3800),
                fill_gradient=(gradient, {"degree": degree, "radial": False}))
    return doc.to_bytes()


def hours_of_painting():
    """Nothing malformed: many large translucent ellipses with shadows on a large canvas."""
    doc = canvas(15000, 15000, background=(1, 1, 1))
    for i in range(1000):
        doc.add("DrawEllipse", outline=doc.oval(i, i, 13000, 13000), fill=(0, 0, 1, 0.5), shadow=doc.shadow(9, 9, 60))
    return doc.to_bytes()


def canvas(width, height, **settings):
    return PaintDocument(width, height, **settings)


def with_draws(class_names, **settings):
    doc = canvas(64, 64, **settings)
    for name in class_names:
        doc.add(name, outline=doc.rectangle(8, 8, 16, 16), stroke=RED)
    return doc


def all_classes():
    return with_draws(DRAW_CLASSES)


def background(flag=True, first="DrawImage2"):
    doc = with_draws([first, "DrawEllipse"])
    doc.has_background = flag
    return doc


def nested_groups():
    doc = canvas(64, 64)
    legacy = lambda title: doc.draw("DrawImage", outline=doc.rectangle(0, 0, 8, 8), title=title)
    inner = doc.group([legacy("deep")])
    doc.draws = [legacy("top"), doc.group([legacy("one deep"), inner])]
    return doc


def self_containing_group():
    doc = canvas(64, 64)
    group = doc.archive.reserve()
    line = doc.draw("DrawLine", outline=doc.path([("M", 0, 0), ("L", 9, 9)]), stroke=RED)
    doc.archive.fill(group, ["DrawGroup", "DrawBase", "NSObject"],
                     {"Draws": doc.archive.array([line, group, line])})
    doc.draws = [group, line, group]
    return doc


def group_chain(depth):
    doc = canvas(64, 64)
    group = doc.draw("DrawLine", stroke=RED)
    for _ in range(depth):
        group = doc.group([group])
    doc.draws = [group]
    return doc


def group_bomb(levels):
    """Groups that name the next one ten times each."""
    doc = canvas(64, 64)
    group = doc.draw("DrawLine", outline=doc.path([("M", 0, 0), ("L", 9, 9)]), stroke=RED)
    for _ in range(levels):
        group = doc.group([group] * 10)
    doc.draws = [group] * 10
    return doc


def records():
    """One draw for each rule of the common record, titled by what it shows."""
    doc = canvas(64, 64)
    a = doc.archive
    path = doc.rectangle(0, 0, 10, 10, line_width=3.0, cap=1, join=2, dash=(6, 3))

    def record(title, class_name="DrawRectangle", **fields):
        slot = a.reserve()
        fields["LayerTitle"] = a.add(title)
        chain = [class_name] + (["DrawRectangle"] if class_name != "DrawRectangle" else [])
        a.fill(slot, chain + ["DrawBase", "NSObject"], fields)
        doc.draws.append(slot)

    record("nothing")
    record("stroke without color", EnableStroke=True, BezierPath=path)
    record("stroke off", EnableStroke=False)
    record("gradients missing", IsStrokeWithGdt=True, IsFillWithGdt=True, EnableFill=True)
    record("gradients there", IsStrokeWithGdt=True, IsFillWithGdt=True, EnableFill=True,
           IsStrokeRadialGdt=True, StrokeGdtDegree=Float32(12.5), StrokeGdtCenter=a.point(0.5, -1),
           StrokeGradient=doc.gradient([(RED, 0), (BLUE, 1)]), FillGdtDegree=Float32(30),
           FillGradient=doc.gradient([(RED, 0), (BLUE, 0.25), (RED, 1)]))
    record("turn 540", RotateDegree=Float32(540))
    record("turn -180", RotateDegree=Float32(-180))
    record("turn 12.34567", RotateDegree=Float32(12.34567))
    record("turn 1e30", RotateDegree=Float32(1e30))
    record("alpha 250", Alpha=250)
    record("alpha -5", Alpha=-5)
    record("reflection without distance", EnableReflection=True, Reflection=Float32(0.5))
    record("reflection at -59", EnableReflection=True, ReflectionDis=Float32(-59))
    record("shadow missing", EnableShadow=True, EnableInnerShadow=True)
    record("shadow there", EnableShadow=True, Shadow=doc.shadow(3, -4, 5, (0, 1, 0, 0.25)))
    record("flags", Visible=False, SmoothLine=False, Locked=True)
    record("outline", EnableStrokeOutline=True, StrokeOutlineWidth=Float32(2.5),
           StrokeOutlineColor=doc.color(BLUE))
    record("path of another class", BezierPath=doc.color(RED))
    record("numbers of other kinds", EnableFill=1, Alpha=50.0, RotateDegree=90)
    record("radii", "DrawRoundRectangle", XRadius=Float32(7.5), YRadius=Float32(2.49))
    return doc


def preset_shapes():
    """Records of preset shapes and lines, titled by what they show. Their paths are not what their
    classes would build."""
    doc = canvas(64, 64)
    a = doc.archive
    box = lambda x, y, w, h: {"ControlBounds": a.rect(x, y, w, h)}

    def record(class_name, title, **fields):
        outline = doc.path([("M", 1, 2), ("L", 9, 2), ("L", 5, 8)], join=0)
        doc.add(class_name, outline=outline, stroke=RED, title=title, **fields)

    record("DrawRectPolygon", "two points", PointsCount=2, **box(0, 0, 100, 100))
    record("DrawRectPolygon", "points unsaid")
    record("DrawRectPolygon", "too many points", PointsCount=2 ** 60, **box(0, 0, 100, 100))
    record("DrawRectStar", "inner size unsaid", **box(0, 0, 100, 100))
    record("DrawRectStar", "inner size", InnerSize=a.size(0.5, 0.25))
    record("DrawRectMessage", "bubble unsaid")
    record("DrawRectMessage", "bubble", Radius=Float32(0.125), Arrow=a.point(1, -2),
           ArrowA=a.point(3, 4), ArrowB=a.point(5, 6), **box(2, 3, 80, 40))
    record("DrawEllipseMessage", "elliptic bubble", Arrow=a.point(7, 8))
    for name in PRESET_SHAPES:
        record(name, name, **box(4, 6, 30, 20))
    return doc


def lines():
    """Open draws, titled by what they show."""
    doc = canvas(64, 64)
    line, curve = ("L", 30, 40), ("C", 1, 2, 3, 4, 30, 40)

    def record(class_name, title, elements, **fields):
        doc.add(class_name, outline=doc.path([("M", 10, 20)] + elements, join=0), stroke=RED,
                title=title, **fields)

    record("DrawLine", "line", [line], ArrowStyle=2)
    record("DrawLine", "line of three", [line, line])
    record("DrawLine", "line of a curve", [curve])
    record("DrawCurve", "curve", [curve])
    record("DrawCurve", "curve of a line", [line], ArrowStyle=1)
    record("DrawBrokenLine", "polyline", [line, ("L", 5, 5)], ArrowStyle=1)
    record("DrawFreePolygon", "three sides", [line, ("L", 5, 5), ("L", 10, 20), ("Z",)])
    record("DrawFreePolygon", "four sides",
           [line, ("L", 5, 5), ("L", 1, 1), ("L", 10, 20), ("Z",)])
    record("DrawBezierPath", "closed path", [line, curve, ("Z",)])
    record("DrawBezierPath", "open path", [line, curve], ArrowStyle=2)
    return doc


def hostile():
    """Documents that decode and are drawn, with values that no writer means."""
    nan, inf = float("nan"), float("inf")
    square = [("M", 8, 8), ("L", 40, 8), ("L", 40, 40), ("L", 8, 40), ("Z",)]

    def drawn(class_name="DrawRectangle", elements=square, settings=None, **attributes):
        doc = canvas(64, 64, background=(1, 1, 1))
        attributes.setdefault("stroke", RED)
        attributes.setdefault("fill", BLUE)
        doc.add(class_name, outline=doc.path(elements, **(settings or {})), **attributes)
        return doc

    def raw_segments(blob):
        doc = canvas(64, 64)
        doc.add("DrawRectangle", stroke=RED, fill=BLUE, outline=doc.archive.obj(
            ["NSBezierPath", "NSObject"], {"NSSegments": blob}))
        return doc

    for name, value in (("nan", nan), ("infinity", inf), ("-infinity", -inf), ("3e38", 3e38), ("-1e9", -1e9)):
        yield f"coordinate {name}", drawn(elements=square[:2] + [("L", value, 40), ("Z",)])
        yield f"control {name}", drawn(elements=square[:1] + [("C", value, 9, 9, value, 40, 40), ("Z",)])
        yield f"width {name}", drawn(settings={"line_width": value})
        yield f"dash {name}", drawn(settings={"dash": (value, 3)})
        yield f"phase {name}", drawn(settings={"dash": (5, 3), "phase": value})
        yield f"miter {name}", drawn(settings={"miter": value})
        yield f"rotation {name}", drawn(rotation=value)
        for angle in ("StrokeGdtDegree", "FillGdtDegree", "Reflection", "ReflectionDis", "StrokeOutlineWidth"):
            doc = drawn(reflection=(0.5, 0), outline_stroke=(2, RED))
            record = doc.archive.objects[doc.draws[0].data]
            record[angle] = Float32(value)
            yield f"{angle} {name}", doc
    for name, dash in (("zeros", (0, 0)), ("tiny", (1e-30, 1e-30)), ("negative", (-1, -1)), ("odd", (3, 0, 1)),
                       ("many", (1,) * 5000)):
        yield f"dashes {name}", drawn(settings={"dash": dash})
    for name, dash in (("0 5", (0, 5)), ("5 0", (5, 0)), ("1e9", (1e9, 1e9)), ("-1 5", (-1, 5)), ("1e9 -1", (1e9, -1))):
        for cap in (0, 1, 2):
            yield f"dashes {name} cap {cap}", drawn(settings={"dash": dash, "cap": cap, "phase": -1e9})
    for width in (0, -1, 1e-9, 1e9):
        for style in (0, 1, 2, 99, -1):
            yield f"width {width:g} arrow {style}", drawn(
                "DrawBrokenLine", square[:3], {"line_width": width}, ArrowStyle=style, outline_stroke=(1e9, BLUE))
    for name, elements in (("no length", [("M", 5, 5), ("L", 5, 5)]), ("far", [("M", -3e38, 0), ("L", 3e38, 1)]),
                           ("nan", [("M", nan, 5), ("L", 9, nan)]), ("closed", [("M", 5, 5), ("Z",)]),
                           ("curve", [("M", 5, 5), ("C", 5, 5, 5, 5, 5, 5)])):
        for style in (1, 2):
            yield f"arrow {style} {name}", drawn("DrawBrokenLine", elements, {"line_width": 4}, ArrowStyle=style,
                                                 shadow=None, reflection=(1, 0))
    for name, text in (("1e300", "{{1e300, -1e300}, {1e300, 1e300}}"), ("nan", "{{nan, nan}, {nan, nan}}"),
                       ("negative", "{{9, 9}, {-1e9, -5}}"), ("no", "none"), ("flat", "{{5, 5}, {0, 1e300}}")):
        doc = canvas(64, 64)
        for class_name in DRAW_CLASSES:
            doc.add(class_name, outline=doc.rectangle(8, 8, 16, 16), stroke=RED, fill=BLUE, rotation=30,
                    ControlBounds=doc.archive.add(text), XRadius=Float32(nan), YRadius=Float32(1e30),
                    PointsCount=-1, InnerSize=doc.archive.add("{1e300, nan}"), Radius=Float32(-inf))
        yield f"control bounds {name}", doc
    # Most of its lines cross the canvas.
    yield "10 million elements", raw_segments(b"\0" * 9 + b"".join(
        b"\1" + struct.pack(">2f", i * 7919 % 64, i * 104729 % 61) for i in range(1000)) * 10000)
    yield "width 0", drawn(settings={"line_width": 0})
    yield "no first move", drawn(elements=square[1:])
    yield "only closes", drawn(elements=[("Z",)] * 50)
    yield "lone moves", drawn(elements=[("M", 1, 1)] * 500)
    yield "unknown elements", raw_segments(b"\0" * 9 + b"\7" * 90)
    yield "short tail", raw_segments((b"\0" + b"\x41\0\0\0" * 2) + (b"\1" + b"\x42\0\0\0" * 2) + b"\1\2")
    yield "broken curve", raw_segments(b"\0" * 9 + b"\2" * 9 + b"\1" * 9)
    yield "scribble", drawn(elements=[("M", 0, 0)] + [("L", i * 7919 % 64, i * 104729 % 64) for i in range(20000)])

    for name, stops in (("one stop", [(RED, 0)]), ("outside", [(RED, -5), (BLUE, 7)]), ("nan", [(RED, nan), (BLUE, 1)]),
                        ("equal", [(RED, 0.5), (BLUE, 0.5)]), ("unordered", [(RED, 1), (BLUE, 0), (RED, 0.5)])):
        doc = canvas(64, 64)
        gradient = doc.gradient(stops)
        for radial in (False, True):
            doc.add("DrawEllipse", outline=doc.oval(4, 4, 50, 50), fill_gradient=(gradient, {"radial": radial}),
                    stroke_gradient=(gradient, {"radial": radial, "center": (1e30, -1e30)}))
        yield f"gradient {name}", doc
    for name, location in (("", lambda i: (i * 7919 % 100000) / 100000), (" equal", lambda i: 0.5)):
        doc = canvas(64, 64)
        colors = [doc.color(RED), doc.color(BLUE)]
        many = doc.archive.gradient([(colors[i % 2], location(i)) for i in range(100000)])
        doc.add("DrawEllipse", outline=doc.oval(4, 4, 50, 50), fill_gradient=(many, {}))
        yield "gradient of 100000 stops" + name, doc

    for name, shadow in (("blur 1e9", (1, 1, 1e9)), ("blur nan", (1, 1, nan)), ("blur -5", (1, 1, -5)),
                         ("offset 1e30", (1e30, -1e30, 3)), ("offset nan", (nan, 0, 3))):
        for kind in ("shadow", "inner_shadow"):
            doc = canvas(64, 64)
            doc.add("DrawEllipse", outline=doc.oval(4, 4, 50, 50), fill=RED, stroke=BLUE, **{kind: doc.shadow(*shadow)})
            yield f"{kind} {name}", doc
    flat = canvas(64, 64)
    flat.add("DrawEllipse", outline=flat.path([("M", 5, 5), ("L", 5, 5), ("Z",)]), fill=RED, stroke=BLUE,
             shadow=flat.shadow(1, 1, 3), inner_shadow=flat.shadow(1, 1, 3), reflection=(1, 0), rotation=33)
    yield "no extent", flat
    yield from text_documents.hostile()
    yield from picture_documents.hostile()


def brushes():
    """Pen and eraser strokes of old and new records, titled by what they show."""
    doc = canvas(64, 64)

    def record(class_name, title, elements, width, **fields):
        doc.add(class_name, outline=doc.path([("M", 10, 20)] + elements, line_width=width),
                stroke=RED, title=title, **fields)

    dot, near, far = [("L", 10, 20)], [("L", 10.9, 20.9)], [("L", 30, 40)]
    record("DrawPen", "new", far, 1.0, Version=1)
    record("DrawPen", "old thin line", far, 1.0)
    record("DrawPen", "old line", far, 1.1)
    record("DrawPen", "old thin dot", near, 1.0)
    record("DrawPen", "old dot", dot, 5.0)
    record("DrawPen", "old aliased dot", dot, 5.0, smooth=False)
    record("DrawEraser", "old eraser", far, 5.0)
    record("DrawEraser", "new eraser", far, 5.0, Version=1)
    record("DrawEraser", "eraser of a gradient", far, 5.0, Version=1, EnableStroke=False,
           IsStrokeWithGdt=True)
    return doc


def spray(elements, **attributes):
    """An airbrush draw of that many elements; all such documents show the same dots."""
    doc = canvas(120, 100, background=(1, 1, 1))
    state, dots = 1, []
    for _ in range(4000):
        state = state * 48271 % 2147483647
        dots.append((20 + state % 80, 10 + state // 80 % 70))
    dots = [dots[i % len(dots)] for i in range(elements // 2)]
    path = doc.path([e for x, y in dots for e in (("M", x, y), ("L", x, y))], cap=1)
    doc.add("DrawAirbrush", outline=path, BrushWidth=Float32(45), **attributes)
    return doc


def stored_sprays():
    """Airbrush draws that hold a baked spray of 4 by 2 pixels, or something else in its place."""
    doc = canvas(16, 16)
    alphas = [255, 0, 128, 255,
              0, 255, 0, 64]
    picture = doc.archive.data(png([[0, 200, 0, a] for a in alphas], 6, 8, width=4, height=2))
    line = doc.archive.string("no bitmap")
    for title, fields in (("picture", {"ImageData": picture}),
                          ("picture beside nonsense", {"ImageData": picture, "Image": line}),
                          ("nonsense", {"ImageData": doc.archive.data(b"PNG"), "Image": line})):
        doc.add("DrawAirbrush", outline=doc.rectangle(3, 5, 4, 2), stroke=BLUE, title=title,
                **fields)
    return doc


def documents():
    wrong_root = canvas(10, 10)
    inner_missing = canvas(10, 10)
    yield "empty", canvas(100, 50).to_bytes()
    yield "red", canvas(100, 50, background=RED).to_bytes()
    yield "half red", canvas(4, 4, background=(1, 0, 0, 0.5)).to_bytes()
    yield "white largest canvas", canvas(20000, 12500, background=(1, 1, 1)).to_bytes()
    yield "megabytes of colours", megabytes_of_colours()
    yield "hours of painting", hours_of_painting()
    yield "clear background", canvas(100, 50, background=(1, 0, 0, 0)).to_bytes()
    yield "fractional canvas", canvas(0, 0, canvas_size="{100.7, 50.2}").to_bytes()
    yield "no canvas size", canvas(0, 0, canvas_size="what?").to_bytes()
    yield "negative canvas", canvas(0, 0, canvas_size="{-100, 50}").to_bytes()
    yield "high negative canvas", canvas(0, 0, canvas_size="{-100, 5000}").to_bytes()
    yield "high empty canvas", canvas(0, 0, canvas_size="{0.9, 5000}").to_bytes()
    yield "wide empty canvas", canvas(0, 0, canvas_size="{5000, 0}").to_bytes()
    yield "nan canvas", canvas(0, 0, canvas_size="{nan, nan}").to_bytes()
    yield "huge numbers canvas", canvas(0, 0, canvas_size="{1e300, 1e300}").to_bytes()
    yield "canvas beyond 32 bits", canvas(0, 0, canvas_size="{3000000000, 1}").to_bytes()
    yield "no canvas beyond 32 bits", canvas(0, 0, canvas_size="{3000000000, 0}").to_bytes()
    yield "largest canvas", canvas(20000, 12500).to_bytes()
    yield "too large canvas", canvas(20000, 12501).to_bytes()
    yield "thin canvas", canvas(250000000, 1).to_bytes()
    yield "tall", canvas(100, 400, background=BLUE).to_bytes()
    yield "version 22", canvas(10, 10, version=22).to_bytes()
    yield "version 23", canvas(10, 10, version=23).to_bytes()
    yield "version 23 and broken", canvas(10, 10, version=23).to_bytes(inner=b"nothing")
    yield "version -1", canvas(10, 10).to_bytes(Version=-1)
    yield "version text", canvas(10, 10).to_bytes(Version=UID(3))
    yield "no version", canvas(10, 10).to_bytes(Version=None)
    yield "resolution 144", canvas(10, 10).to_bytes(Resolution=144.0)
    yield "resolution 0", canvas(10, 10).to_bytes(Resolution=0.0)
    yield "resolution nan", canvas(10, 10).to_bytes(Resolution=float("nan"))
    yield "resolution of a damaged file", canvas(10, 10).to_bytes(Resolution=144.0, PaintData=UID(99))
    yield "no paint data", canvas(10, 10).to_bytes(PaintData=None)
    yield "inner is no archive", canvas(10, 10).to_bytes(inner=b"\0" * 100)
    yield "inner is an outer archive", canvas(10, 10).to_bytes(inner=canvas(10, 10).to_bytes())
    yield "inner root of another class", wrong_root.to_bytes(
        inner=wrong_root.inner_bytes(root_chain=("NSShadow", "NSObject")))
    yield "inner root of an unknown class", inner_missing.to_bytes(
        inner=inner_missing.inner_bytes(root_chain=("Unknown", "NSObject")))
    yield "unknown draw", with_draws(["DrawEllipse", "DrawUnheardOf"]).to_bytes()
    yield "all classes", all_classes().to_bytes()
    yield "background", background().to_bytes()
    yield "background flag off", background(flag=False).to_bytes()
    yield "background of another class", background(first="DrawEllipse").to_bytes()
    yield "background in a text", background(first="DrawSVG").to_bytes()
    yield "nested groups", nested_groups().to_bytes()
    yield "self containing group", self_containing_group().to_bytes()
    yield "group chain 40", group_chain(40).to_bytes()
    yield "group chain 10000", group_chain(10000).to_bytes()
    yield "group bomb", group_bomb(9).to_bytes()
    yield "records", records().to_bytes()
    yield "preset shapes", preset_shapes().to_bytes()
    yield "lines", lines().to_bytes()
    yield "brushes", brushes().to_bytes()
    yield "stored sprays", stored_sprays().to_bytes()
    yield "fills", fills().to_bytes()
    yield "clears", clears().to_bytes()
    for name, doc in itertools.chain(picture_documents.documents(), filter_documents.documents()):
        yield name, doc.to_bytes()
    for elements in 9998, 10000:
        yield f"spray {elements}", spray(elements, stroke=RED).to_bytes()
        yield f"translucent spray {elements}", spray(
            elements, stroke=(0, 0, 1, 0.5), opacity=60).to_bytes()
    yield from text_documents.documents()


def main(folder):
    os.makedirs(os.path.join(folder, "hostile"), exist_ok=True)
    for name, data in documents():
        with open(os.path.join(folder, name + ".paintdoc"), "wb") as out:
            out.write(data)
    for name, doc in itertools.chain(hostile(), hostile_fills(), filter_documents.hostile()):
        with open(os.path.join(folder, "hostile", name + ".paintdoc"), "wb") as out:
            out.write(doc.to_bytes())


if __name__ == "__main__":
    main(sys.argv[1])
