"""Documents with text boxes and curved text, for make_documents.py. The fonts are those of
make_box_fonts.py; what a reader must make of the documents stands in tests/draw/text."""
from keyed_archive import Float32
from paint_document import PaintDocument

RED, GREEN, BLUE, CLEAR = (1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 0, 0, 0)
BOX = "Box-Regular"


def boxes():
    """Text boxes of 100 by 40 at (10, 20), titled by what they show."""
    doc = PaintDocument(200, 100)
    plain = doc.style(BOX, 20)
    outlined = doc.style(BOX, 20, NSStrokeWidth=-10.0, NSStrokeColor=doc.color(BLUE))
    ramp = doc.gradient([(RED, 0), (RED, 0.5), (GREEN, 0.5), (GREEN, 1)])
    aa = doc.text(("aa", plain))

    def record(title, text=aa, size=(100, 40), **fields):
        fields.setdefault("XRadius", Float32(0))
        if text is not None:
            fields["Text"] = text
        doc.add("DrawText", outline=doc.rectangle(10, 20, *size), title=title, **fields)

    record("plain")
    record("no text", None)
    record("text of another class", doc.archive.add("aa"))
    record("empty", doc.text())
    mutable = doc.archive.attributed_string("aa", [(2, plain)], "NSMutableAttributedString")
    record("mutable string", mutable)
    record("the same mutable string", mutable)
    record("too small", size=(0.4, 40))
    record("rounded up", size=(99.5, 39.5))
    record("cut", doc.text(("a\na\na\na\na", plain)))
    record("opacity half", Opacity=Float32(0.5))
    record("opacity one", Opacity=Float32(1))
    record("opacity two", Opacity=Float32(2))
    record("opacity half on a fill", Opacity=Float32(0.5), fill=RED, opacity=80)
    record("half", opacity=50)
    record("gradient", **doc.text_gradient(ramp, 0))
    record("outlined gradient", doc.text(("aa", outlined)), **doc.text_gradient(ramp, 0))
    record("radial", **doc.text_gradient(ramp, radial=True, center=(0, 0)))
    record("gradient unsaid", UseGradualText=True)
    record("gradient off", **dict(doc.text_gradient(ramp), UseGradualText=False))
    record("shadow", shadow=doc.shadow(5, -5, 0, GREEN))
    record("inner shadow", doc.text(("aa", doc.style(BOX, 20, RED))), inner_shadow=doc.shadow(2, -2, 0, BLUE))
    record("filled", fill=(0.5, 0.5, 1))
    record("turned", rotation=90)
    record("follows its text", AutoResize=True)
    record("wider than it was", doc.text(("aaaaaaaaaaa", plain)), AutoResize=True)
    record("wider and right", doc.text(("aaaaaaaaaaa", doc.style(BOX, 20, align=1))), AutoResize=True)
    record("jagged", doc.text(("a", doc.style(BOX, 15))), smooth=False)
    return doc


def old_gradient(version):
    """The gradient of the text kept as that of the box, as old versions did."""
    doc = PaintDocument(200, 100, version=version)
    ramp = doc.gradient([(RED, 0), (GREEN, 1)])
    doc.add("DrawText", outline=doc.rectangle(10, 20, 100, 40), title="text", stroke=BLUE,
            fill_gradient=(ramp, {"degree": 30, "radial": True, "center": (0.25, -0.5)}),
            Text=doc.text(("aa", doc.style(BOX, 20))))
    return doc


def curved():
    """Curved text, titled by what it shows."""
    doc = PaintDocument(200, 100)
    aa = doc.text(("aa", doc.style(BOX, 20)))

    def record(title, guide, text=aa, **fields):
        if guide is not None:
            fields["BezierDraw"] = guide
        doc.add("DrawBezierText", outline=doc.rectangle(0, 0, 1, 1), title=title, Text=text, **fields)

    def line(x0, x1, class_name="DrawLine", **fields):
        return doc.draw(class_name, outline=doc.path([("M", x0, 50), ("L", x1, 50)]), **fields)

    record("left to right", line(20, 120), Version=1)
    record("right to left", line(120, 20), Version=1)
    record("old", line(120, 20))
    record("centred", line(20, 120), doc.text(("aa", doc.style(BOX, 20, align=2))), Version=1)
    record("right", line(20, 120), doc.text(("aa", doc.style(BOX, 20, align=1))), Version=1)
    record("no guide", None, Version=1)
    record("guide without a path", doc.draw("DrawLine"), Version=1)
    record("guide of another class", doc.color(RED), Version=1)
    record("no text", line(20, 120), doc.text(), Version=1)
    record("visible guide", line(20, 120, stroke=BLUE), Version=1)
    record("path guide", line(20, 120, "DrawBezierPath"), Version=1, fill=RED, AutoResize=True)
    record("turned", line(20, 120, rotation=90), Version=1)
    record("turned itself", line(20, 120), Version=1, rotation=90)

    # Guides that lead back to their text.
    own = doc.archive.reserve()
    chain = ["DrawBezierText", "DrawText", "DrawRoundRectangle", "DrawRectangle", "DrawBase", "NSObject"]
    doc.archive.fill(own, chain, {"BezierDraw": own, "Text": aa, "LayerTitle": doc.archive.add("its own guide")})
    a, b = doc.archive.reserve(), doc.archive.reserve()
    doc.archive.fill(a, chain, {"BezierDraw": b, "Text": aa, "LayerTitle": doc.archive.add("guides of each other")})
    doc.archive.fill(b, chain, {"BezierDraw": a, "Text": aa})
    doc.draws += [own, a]
    return doc


def documents():
    yield "text boxes", boxes().to_bytes()
    yield "text of version 19", old_gradient(19).to_bytes()
    yield "text of version 20", old_gradient(20).to_bytes()
    yield "curved text", curved().to_bytes()


def hostile():
    nan, inf = float("nan"), float("inf")

    def box(*pieces, outline=(4, 4, 56, 56), make=None, **fields):
        doc = PaintDocument(64, 64, background=(1, 1, 1))
        doc.add("DrawText", outline=doc.rectangle(*outline), Text=doc.text(*(make(doc) if make else pieces)), **fields)
        return doc

    for name, size in (("0", 0), ("-5", -5), ("nan", nan), ("infinity", inf), ("1e9", 1e9), ("1e-9", 1e-9)):
        yield f"text size {name}", box(make=lambda doc, size=size: [("ag", doc.style("Helvetica", size))])
        yield f"text stroke {name}", box(make=lambda doc, size=size: [
            ("ag", doc.style("Helvetica", 20, NSStrokeWidth=float(size)))])
        yield f"text underline {name}", box(make=lambda doc, size=size: [
            ("ag " * 20, doc.style("Helvetica", size, NSUnderline=0x109, NSKern=float(size)))])
    yield "text surrogates", box(make=lambda doc: [("\ud800a\udc00\udc00\ud83d", doc.style())])
    yield "text in one line", box(make=lambda doc: [("x" * 300000, doc.style(size=8))])
    yield "text in one wide line", box(make=lambda doc: [("x" * 300000, doc.style(size=8))],
                                       outline=(0, 0, 1e9, 20))
    yield "text that follows", box(make=lambda doc: [("x" * 300000, doc.style(size=8))], AutoResize=True)
    yield "text in a large box", box(make=lambda doc: [
        ("x", doc.style(size=20000, NSBackgroundColor=doc.color(RED)))], outline=(-7000, -7000, 14000, 14000))
    yield "text in a huge box", box(make=lambda doc: [("x", doc.style())], outline=(-1e8, -1e8, 2e8, 2e8))
    shadows = lambda doc: [("x y\n" * 2000, doc.style(size=2, NSShadow=doc.shadow(1, -1, 1e9)))]
    yield "text of shadows", box(make=shadows)

    def along(elements, text, **fields):
        doc = PaintDocument(64, 64, background=(1, 1, 1))
        guide = doc.draw("DrawBezierPath", outline=doc.path(elements), stroke=RED)
        doc.add("DrawBezierText", outline=doc.rectangle(0, 0, 9, 9), BezierDraw=guide, Version=1,
                Text=doc.text((text, doc.style(size=12))), **fields)
        return doc
    for name, far in (("nan", nan), ("infinity", inf), ("3e38", 3e38), ("1e9", 1e9), ("1e6", 1e6)):
        yield f"curved text to {name}", along([("M", 8, 8), ("L", far, 8), ("C", far, far, 9, far, 8, 40)], "far away " * 99)
    yield "curved text on a point", along([("M", 8, 8), ("L", 8, 8)], "abc")
    yield "curved text on moves", along([("M", 8, 8)] * 9, "abc")
    yield "curved text without end", along([("M", 0, 0), ("L", 1e6, 1e6)], "x" * 300000)
    yield "curved text on a scribble", along(
        [("M", 0, 0)] + [("C", i * 7919 % 64, 9, 9, i * 7 % 64, i * 31 % 64, i * 104729 % 64) for i in range(3000)], "x " * 3000)
    chain = PaintDocument(64, 64)
    guide = chain.draw("DrawLine", outline=chain.path([("M", 8, 8), ("L", 60, 60)]))
    for _ in range(200):
        guide = chain.draw("DrawBezierText", outline=chain.rectangle(0, 0, 9, 9), BezierDraw=guide, stroke=RED,
                           Text=chain.text(("abc", chain.style(size=9))))
    chain.draws = [guide]
    yield "curved text on curved text", chain

    def tabs(doc):
        stop = doc.archive.text_tab(10.0)
        style = doc.style()
        style["NSParagraphStyle"] = doc.archive.paragraph_style(4, tab_stops=[stop] * 1000000)
        return [("\t" * 5000, style)]
    yield "text of tabs", box(make=tabs)
