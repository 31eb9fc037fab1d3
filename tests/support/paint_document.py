"""Writes paint documents without any code of the engine: the outer keyed archive around the inner
one of a PaintManager, and the common record of draws. Used by the examples and by the tests.

    doc = PaintDocument(320, 200, background=(1, 1, 1))
    doc.add("DrawEllipse", outline=doc.oval(20, 20, 100, 60), fill=(1, 0, 0))
    open("out.paintdoc", "wb").write(doc.to_bytes())
"""
import math

from keyed_archive import Float32, KeyedArchive

CHAINS = {
    "DrawBase": ["DrawBase"],
    "DrawRectangle": ["DrawRectangle", "DrawBase"],
    "DrawRoundRectangle": ["DrawRoundRectangle", "DrawRectangle", "DrawBase"],
    "DrawEllipse": ["DrawEllipse", "DrawRectangle", "DrawBase"],
    "DrawGradient": ["DrawGradient", "DrawRectangle", "DrawBase"],
    "DrawRectShape": ["DrawRectShape", "DrawRectangle", "DrawBase"],
    "DrawText": ["DrawText", "DrawRoundRectangle", "DrawRectangle", "DrawBase"],
    "DrawBezierText": ["DrawBezierText", "DrawText", "DrawRoundRectangle", "DrawRectangle", "DrawBase"],
    "DrawImage": ["DrawImage", "DrawRectangle", "DrawBase"],
    "DrawFilter": ["DrawFilter", "DrawImage", "DrawRectangle", "DrawBase"],
    "DrawImage2": ["DrawImage2", "DrawRoundRectangle", "DrawRectangle", "DrawBase"],
    "DrawEraser": ["DrawEraser", "DrawPen", "DrawBase"],
    "DrawRectSelection": ["DrawRectSelection", "DrawRectangle", "DrawBase"],
    "DrawCrop": ["DrawCrop", "DrawRectSelection", "DrawRectangle", "DrawBase"],
    "DrawEllipseSelection": ["DrawEllipseSelection", "DrawEllipse", "DrawRectangle", "DrawBase"],
    "DrawPolygonSelection": ["DrawPolygonSelection", "DrawBezierPath", "DrawBase"],
    "DrawOldPolygonSelection": ["DrawOldPolygonSelection", "DrawFreePolygon", "DrawBase"],
}
CHAINS.update({name: [name, "DrawBase"] for name in (
    "DrawLine", "DrawCurve", "DrawBrokenLine", "DrawFreePolygon", "DrawBezierPath", "DrawPen",
    "DrawAirbrush", "DrawFill", "DrawClear", "DrawGroup", "DrawLassoSelection",
    "DrawMagicSelection")})
CHAINS.update({name: [name, "DrawImage2", "DrawRoundRectangle", "DrawRectangle", "DrawBase"]
               for name in ("DrawFilter2", "DrawPDF", "DrawSVG")})
PRESET_SHAPES = ["DrawRect" + name for name in (
    "Polygon", "Star", "Heart", "WaterDrip", "Location", "Bookmark", "Cloud", "Lightning", "Person",
    "Mail", "iMac", "AppleLogo", "Butterfly", "Camera", "Eye", "Home", "Refresh", "Folder",
    "Picture", "Clock", "Signal", "Message")] + ["DrawEllipseMessage"]
CHAINS.update({name: [name, "DrawRectShape", "DrawRectangle", "DrawBase"] for name in PRESET_SHAPES})

DRAW_CLASSES = sorted(CHAINS)


class PaintDocument:
    def __init__(self, width, height, background=None, version=22, canvas_size=None):
        """canvas_size: the text stored for the size, when it is not that of width and height."""
        self.archive = KeyedArchive()
        self.root = self.archive.reserve()
        self.width, self.height, self.version = width, height, version
        self.canvas_size = canvas_size
        self.background = background
        self.draws = []
        self.has_background = self.mask_with_background = False

    # value objects: colours are (r, g, b[, a]) ------------------------------------------------

    def color(self, rgba):
        return self.archive.color(rgba)

    def gradient(self, stops):
        """stops: (colour, location) pairs."""
        return self.archive.gradient([(self.color(c), at) for c, at in stops])

    def shadow(self, dx, dy, blur, color=(0, 0, 0, 0.5)):
        return self.archive.shadow(dx, dy, blur, self.color(color))

    def path(self, elements, **settings):
        """elements: ("M", x, y), ("L", x, y), ("C", six numbers), ("Z",)."""
        return self.archive.bezier_path(elements, **settings)

    def rectangle(self, x, y, w, h, **settings):
        return self.path([("M", x, y), ("L", x + w, y), ("L", x + w, y + h), ("L", x, y + h),
                          ("Z",)], **settings)

    def oval(self, x, y, w, h, **settings):
        """Four cubics, counter-clockwise from -45 degrees."""
        cx, cy, a, b = x + w / 2, y + h / 2, w / 2, h / 2
        k = 4 / 3 * math.tan(math.pi / 8)
        elements = []
        for i in range(4):
            t0, t1 = math.radians(90 * i - 45), math.radians(90 * i + 45)
            p0 = (cx + a * math.cos(t0), cy + b * math.sin(t0))
            p1 = (cx + a * math.cos(t1), cy + b * math.sin(t1))
            if i == 0:
                elements.append(("M", *p0))
            elements.append(("C", p0[0] - k * a * math.sin(t0), p0[1] + k * b * math.cos(t0),
                             p1[0] + k * a * math.sin(t1), p1[1] - k * b * math.cos(t1), *p1))
        return self.path(elements + [("Z",)], **settings)

    def mask(self, rows, x=0, y=0, **fields):
        """Mask of a fill: rows of text from the top down, "#" is in; its lower left pixel is at
        (x, y). Other keyword arguments replace fields of the record."""
        record = {"Mask": bytes(c == "#" for row in rows for c in row), "XStart": x, "YStart": y,
                  "Width": len(rows[0]), "Height": len(rows)}
        return self.archive.obj(["ImageMask", "NSObject"], record | fields)

    def style(self, font="Helvetica", size=18, color=(0, 0, 0), align=4, paragraph=None, **attributes):
        """Attributes of a piece of text; more of them under their archived names."""
        style = {"NSFont": self.archive.font(font, float(size)), "NSColor": self.color(color),
                 "NSParagraphStyle": self.archive.paragraph_style(align, **(paragraph or {}))}
        style.update(attributes)
        return style

    def text(self, *pieces):
        """UID of a text; pieces: (string, style)."""
        runs = [(len(string.encode("utf-16-le", "surrogatepass")) // 2, style) for string, style in pieces]
        return self.archive.attributed_string("".join(p[0] for p in pieces), [r for r in runs if r[0]], "NSTextStorage")

    def text_gradient(self, gradient, degree=90, radial=False, center=(0, 0)):
        """Keys of a text box whose text has a gradient."""
        return {"UseGradualText": True, "IsRadialTextGradient": radial, "TextGdtDegree": Float32(degree),
                "TextGdtCenter": self.archive.point(*center), "TextGradient": gradient}

    # draws ---------------------------------------------------------------------------------------

    def draw(self, class_name, outline=None, stroke=None, fill=None, stroke_gradient=None,
             fill_gradient=None, shadow=None, inner_shadow=None, reflection=None, outline_stroke=None,
             rotation=0, opacity=100, visible=True, smooth=True, title=None, locked=False, **fields):
        """UID of a draw that is not in the list yet.

        stroke, fill: colours. stroke_gradient, fill_gradient: (gradient UID, settings) with the
        settings degree, center, radial. reflection: (strength, distance). outline_stroke:
        (width, colour). Other keyword arguments are further keys of the record."""
        slot = self.archive.reserve()
        record = {}
        if outline is not None:
            record["BezierPath"] = outline
        self._paint(record, stroke, stroke_gradient,
                    ("EnableStroke", "IsStrokeWithGdt", "IsStrokeRadialGdt", "StrokeGdtDegree",
                     "StrokeGdtCenter", "StrokeGradient", "ForeColor"))
        if outline_stroke is not None:
            record.update(EnableStrokeOutline=True, StrokeOutlineWidth=Float32(outline_stroke[0]),
                          StrokeOutlineColor=self.color(outline_stroke[1]))
        self._paint(record, fill, fill_gradient,
                    ("EnableFill", "IsFillWithGdt", "IsFillRadialGdt", "FillGdtDegree",
                     "FillGdtCenter", "FillGradient", "BackColor"))
        if shadow is not None:
            record.update(EnableShadow=True, Shadow=shadow)
        if inner_shadow is not None:
            record.update(EnableInnerShadow=True, InnerShadow=inner_shadow)
        if reflection is not None:
            record.update(EnableReflection=True, Reflection=Float32(reflection[0]),
                          ReflectionDis=Float32(reflection[1]))
        if rotation:
            record["RotateDegree"] = Float32(rotation)
        if not visible:
            record["Visible"] = False
        if not smooth:
            record["SmoothLine"] = False
        if title is not None:
            record["LayerTitle"] = self.archive.add(title)
        if locked:
            record["Locked"] = True
        record["Alpha"] = opacity
        record.update(fields)
        chain = CHAINS.get(class_name, [class_name, "DrawBase"]) + ["NSObject"]
        return self.archive.fill(slot, chain, record)

    def _paint(self, record, color, gradient, keys):
        enable, with_gradient, radial, degree, center, gradient_key, color_key = keys
        record[enable] = color is not None or gradient is not None
        if gradient is not None:
            uid, settings = gradient
            record[with_gradient] = True
            record[radial] = settings.get("radial", False)
            record[degree] = Float32(settings.get("degree", 90))
            record[center] = self.archive.point(*settings.get("center", (0, 0)))
            record[gradient_key] = uid
        elif color is not None:
            record[with_gradient] = False
            record[color_key] = self.color(color)

    def add(self, class_name, **attributes):
        """Makes a draw and puts it on top."""
        uid = self.draw(class_name, **attributes)
        self.draws.append(uid)
        return uid

    def group(self, draws, **attributes):
        return self.draw("DrawGroup", Draws=self.archive.array(draws, mutable=True), **attributes)

    # the file ------------------------------------------------------------------------------------

    def inner_bytes(self, root_chain=("PaintManager", "NSObject"), **widths):
        size = self.canvas_size or f"{{{self.width}, {self.height}}}"
        fields = {"BackingScale": 1.0, "Version": self.version,
                  "CanvasSize": self.archive.add(size),
                  "DrawsArray": self.archive.array(self.draws, mutable=True),
                  "HasBackground": self.has_background,
                  "MaskWithBackground": self.mask_with_background}
        if self.background is not None:
            fields["BackgroundColor"] = self.color(self.background)
        self.archive.fill(self.root, list(root_chain), fields)
        return self.archive.to_bytes(root=self.root, **widths)

    def to_bytes(self, inner=None, **outer_fields):
        """outer_fields replace or, when None, remove keys of the outer archive."""
        outer = KeyedArchive()
        data = outer.mutable_data(self.inner_bytes() if inner is None else inner)
        fields = {"PaintData": data, "Version": self.version,
                  "CannvasSize": outer.size(self.width, self.height),
                  "ObjectsCount": len(self.draws), "SavedDate": 1700000000.0,
                  "AppName": outer.add("Example"), "BundleIdentifier": outer.add("org.example.paint"),
                  "AppShortVersion": outer.add("1.0"), "AppVersion": outer.add("100")}
        fields.update(outer_fields)
        outer.top = {key: outer.add(value) if isinstance(value, str) else value
                     for key, value in fields.items() if value is not None}
        return outer.to_bytes()
