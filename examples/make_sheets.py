#!/usr/bin/env python3
"""Makes the documents that show each step of the rendering pipeline, for docs/:

make_sheets.py OUTPUT_DIR [BIN_DIR]

With the folder of the built programs it renders them, too, and adds the sheets with names on them
(rsvg-convert writes those): the preset shapes, whose outlines are the engine's own, and the filters."""
import base64
import os
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "support"))

from landscape import landscape  # noqa: E402
from keyed_archive import Float32  # noqa: E402
from make_examples import rounded  # noqa: E402
from paint_document import PaintDocument  # noqa: E402
from picture_documents import png  # noqa: E402

RED, BLUE, GREEN, WHITE, DARK = (0.9, 0.2, 0.15), (0.15, 0.35, 0.85), (0.2, 0.65, 0.3), (1, 1, 1), (0.15, 0.15, 0.2)
CELL = 100


class Sheet:
    """Cells from the upper left, row by row."""

    def __init__(self, columns, rows):
        self.doc = PaintDocument(columns * CELL, rows * CELL, background=(0.97, 0.97, 0.97))
        self.columns, self.rows, self.next = columns, rows, 0

    def cell(self):
        x = self.next % self.columns * CELL
        y = (self.rows - 1 - self.next // self.columns) * CELL
        self.next += 1
        return x, y

    def shape(self, class_name="DrawRectangle", inset=22, width=2, dash=(), **attributes):
        x, y = self.cell()
        box = (x + inset, y + inset, CELL - 2 * inset, CELL - 2 * inset)
        make = self.doc.oval if class_name == "DrawEllipse" else self.doc.rectangle
        self.doc.add(class_name, outline=make(*box, line_width=width, dash=dash), **attributes)

    def line(self, class_name, points, width=2, dash=(), cap=0, **attributes):
        x, y = self.cell()
        moved = [(p[0],) + tuple(v + (y if i % 2 else x) for i, v in enumerate(p[1:])) for p in points]
        path = self.doc.path(moved, line_width=width, dash=dash, cap=cap)
        self.doc.add(class_name, outline=path, **attributes)


def shadows():
    sheet = Sheet(6, 4)
    doc = sheet.doc
    for blur in (0, 2, 5, 10, 20, 40):
        sheet.shape(fill=RED, shadow=doc.shadow(8, -8, blur, (0, 0, 0, 0.7)))
    for offset in ((8, 8), (-8, 8), (-8, -8)):
        sheet.shape("DrawEllipse", fill=GREEN, stroke=DARK, width=5, shadow=doc.shadow(*offset, 6))
    sheet.shape("DrawEllipse", fill=(0.2, 0.65, 0.3, 0.4), stroke=DARK, width=5, shadow=doc.shadow(8, -8, 6))
    sheet.shape("DrawEllipse", stroke=BLUE, width=8, shadow=doc.shadow(8, -8, 6))
    sheet.shape("DrawEllipse", fill=BLUE, opacity=40, shadow=doc.shadow(8, -8, 6))
    for blur in (0, 3, 8, 16, 30):
        sheet.shape(fill=(0.95, 0.8, 0.3), inner_shadow=doc.shadow(6, -6, blur, (0.3, 0.1, 0, 0.9)))
    sheet.shape("DrawEllipse", fill=(0.95, 0.8, 0.3), inner_shadow=doc.shadow(0, 0, 12, (0.3, 0.1, 0, 0.9)))
    ramp = doc.gradient([(RED, 0), ((1, 0.9, 0.3), 1)])
    sheet.shape(fill_gradient=(ramp, {"degree": 45}), shadow=doc.shadow(8, -8, 8))
    sheet.shape(fill_gradient=(ramp, {"radial": True}), shadow=doc.shadow(8, -8, 8),
                inner_shadow=doc.shadow(-6, 6, 8, (0, 0, 0.4, 0.8)), rotation=20)
    sheet.shape("DrawEllipse", stroke_gradient=(ramp, {"degree": 0}), width=12, shadow=doc.shadow(8, -8, 8))
    sheet.line("DrawCurve", [("M", 15, 20), ("C", 40, 110, 60, -10, 85, 80)], width=6, stroke=BLUE, ArrowStyle=2,
               shadow=doc.shadow(6, -6, 5))
    sheet.shape(fill=WHITE, stroke=DARK, width=3, shadow=doc.shadow(0, 0, 15, (0, 0.3, 1, 1)))
    sheet.shape(fill=WHITE, shadow=doc.shadow(6, -6, 6), rotation=45)
    return doc


def gradients():
    sheet = Sheet(8, 4)
    doc = sheet.doc
    ramp = doc.gradient([(RED, 0), ((1, 0.9, 0.3), 0.5), (BLUE, 1)])
    for degree in (0, 30, 45, 60, 90, 135, 180, 270):
        sheet.shape(inset=10, fill_gradient=(ramp, {"degree": degree}))
    for degree in (0, 30, 45, 60, 90, 135, 180, -90):
        sheet.shape("DrawEllipse", inset=10, fill_gradient=(ramp, {"degree": degree}), rotation=15)
    for center in ((0, 0), (0.5, 0), (0, 0.5), (-0.5, -0.5), (1, 1), (-1, 0), (0, -1), (0.9, -0.9)):
        sheet.shape("DrawEllipse" if center[0] < 0 else "DrawRectangle", inset=10,
                    fill_gradient=(ramp, {"radial": True, "center": center}))
    clear = doc.gradient([(BLUE, 0), ((0.15, 0.35, 0.85, 0), 1)])
    hard = doc.gradient([(RED, 0), (RED, 0.5), (GREEN, 0.5), (GREEN, 1)])
    sheet.shape(inset=10, fill_gradient=(clear, {"degree": 90}))
    sheet.shape(inset=10, fill_gradient=(hard, {"degree": 20}))
    for degree in (0, 45, 90):
        sheet.shape("DrawEllipse", inset=15, stroke_gradient=(ramp, {"degree": degree}), width=14)
    sheet.shape(inset=20, stroke_gradient=(ramp, {"radial": True, "center": (0.5, 0.5)}), width=14)
    sheet.line("DrawLine", [("M", 10, 20), ("L", 90, 80)], width=10, dash=(20, 10), stroke_gradient=(ramp, {"degree": 0}))
    sheet.line("DrawLine", [("M", 10, 20), ("L", 90, 80)], width=6, stroke_gradient=(ramp, {"degree": 0}), ArrowStyle=2)
    return doc


def strokes():
    """Shown four times as large, so that each pixel is seen: dashed gradients, translucent arrows, and strokes
    without smoothing."""
    sheet = Sheet(6, 5)
    doc = sheet.doc
    curve = [("M", 15, 30), ("C", 35, 110, 65, -30, 85, 70)]
    pale = doc.gradient([((1, 1, 0.4), 0), (WHITE, 1)])
    ramp = doc.gradient([(RED, 0), ((1, 0.9, 0.3), 0.5), (BLUE, 1)])
    fading = doc.gradient([(RED, 0), ((0.9, 0.2, 0.15, 0), 1)])
    sheet.shape(inset=16, stroke_gradient=(ramp, {"degree": 45}), width=8, dash=(16, 10))
    sheet.shape("DrawEllipse", inset=16, stroke_gradient=(ramp, {"radial": True}), width=6, dash=(12, 6))
    sheet.line("DrawCurve", curve, width=1, dash=(5, 3), stroke_gradient=(ramp, {"degree": 0}))
    sheet.line("DrawCurve", curve, width=2, dash=(8, 4), stroke_gradient=(ramp, {"degree": 0}))
    sheet.shape(inset=16, stroke_gradient=(fading, {"degree": 90}), width=8, dash=(16, 10))
    sheet.shape(inset=16, stroke_gradient=(pale, {"degree": 0}), width=8, dash=(16, 10))
    for width, alpha, style in ((2, 0.3, 2), (5, 0.6, 2), (9, 0.9, 1), (14, 0.5, 2)):
        sheet.line("DrawLine", [("M", 12, 22), ("L", 88, 78)], width=width, stroke=RED + (alpha,), ArrowStyle=style)
    sheet.line("DrawCurve", curve, width=6, stroke=RED + (0.5,), ArrowStyle=2)
    sheet.line("DrawLine", [("M", 12, 22), ("L", 88, 78)], width=7, stroke=RED + (0.5,), ArrowStyle=2, smooth=False)
    for style in (1, 2):
        sheet.line("DrawLine", [("M", 15, 60), ("L", 85, 88)], width=5, stroke=BLUE + (0.6,), ArrowStyle=style,
                   reflection=(0.7, 4))
        sheet.line("DrawCurve", curve, width=5, stroke=BLUE + (0.6,), ArrowStyle=style, shadow=doc.shadow(6, -6, 4))
        sheet.line("DrawLine", [("M", 15, 25), ("L", 85, 75)], width=5, dash=(9, 5), ArrowStyle=style,
                   stroke_gradient=(ramp, {"degree": 0}))
    for width in (1, 2, 3, 6):
        sheet.shape("DrawEllipse", inset=18, stroke=DARK, width=width, smooth=False)
    for width in (2, 5):
        sheet.line("DrawCurve", curve, width=width, stroke=DARK, smooth=False)
    for width in (1, 2, 5):
        sheet.line("DrawLine", [("M", 12, 22), ("L", 88, 78)], width=width, stroke_gradient=(ramp, {"degree": 0}),
                   smooth=False)
    sheet.shape(inset=16, stroke_gradient=(ramp, {"degree": 45}), width=6, smooth=False)
    sheet.shape("DrawEllipse", inset=16, stroke_gradient=(ramp, {"degree": 45}), width=4, dash=(12, 6), smooth=False)
    sheet.line("DrawLine", [("M", 12, 22), ("L", 88, 78)], width=4, stroke_gradient=(ramp, {"degree": 0}), ArrowStyle=2,
               smooth=False)
    return doc


def reflections():
    sheet = Sheet(6, 3)
    doc = sheet.doc
    for strength, distance in ((0.2, 0), (0.5, 0), (0.8, 0), (1, 0), (1.5, 0), (2, 0),
                               (0.5, 5), (0.5, 15), (0.5, -10), (1, -30), (1, -60), (1, -100)):
        x, y = sheet.cell()
        doc.add("DrawRectangle", outline=doc.rectangle(x + 25, y + 50, 50, 40), fill=RED, stroke=DARK,
                reflection=(strength, distance))
    for rotation in (10, 30, 45, 90, 135, -20):
        x, y = sheet.cell()
        doc.add("DrawRectangle", outline=doc.rectangle(x + 30, y + 55, 40, 20, line_width=3), fill=BLUE, stroke=DARK,
                rotation=rotation, reflection=(0.6, 2), shadow=doc.shadow(4, -4, 4))
    return doc


def lines():
    sheet = Sheet(8, 4)
    straight = [("M", 15, 25), ("L", 85, 75)]
    curve = [("M", 15, 30), ("C", 35, 110, 65, -30, 85, 70)]
    for width in (1, 2, 3, 4, 6, 8, 12, 20):
        sheet.line("DrawLine", straight, width=width, stroke=BLUE, ArrowStyle=1)
    for width in (1, 2, 3, 4, 6, 8, 12, 20):
        sheet.line("DrawCurve", curve, width=width, stroke=GREEN, ArrowStyle=2)
    for width, color, dash, style in ((4, BLUE, (), 0), (4, BLUE, (), 2), (8, (0.15, 0.35, 0.85, 0.5), (), 0),
                                      (8, (0.15, 0.35, 0.85, 0.5), (), 2), (4, BLUE, (12, 8), 0),
                                      (4, BLUE, (12, 8), 2), (1, DARK, (), 1), (12, (0.9, 0.2, 0.15, 0.6), (), 1)):
        sheet.line("DrawCurve", curve, width=width, dash=dash, stroke=color, ArrowStyle=style,
                   outline_stroke=(3, (1, 0.7, 0)))
    for cap, dash in ((0, ()), (1, ()), (2, ()), (0, (10, 10)), (1, (20, 20)), (2, (20, 20))):
        sheet.line("DrawBrokenLine", [("M", 15, 20), ("L", 50, 80), ("L", 85, 20)], width=10, cap=cap, dash=dash, stroke=DARK)
    sheet.line("DrawLine", [("M", 50, 90), ("L", 50, 10)], width=5, stroke=RED, ArrowStyle=2)
    sheet.line("DrawLine", [("M", 40, 50), ("L", 60, 50)], width=4, stroke=RED, ArrowStyle=2, opacity=50)
    return sheet.doc


def text():
    """What one text box can look like; three columns of cells twice as wide as those of other sheets."""
    doc = PaintDocument(3 * 220, 4 * 110, background=(0.97, 0.97, 0.97))
    cells = iter([(c * 220 + 10, (3 - r) * 110 + 10) for r in range(4) for c in range(3)])

    def box(string, style, height=90, radius=0, **fields):
        x, y = next(cells)
        outline = doc.path(rounded(x, y + 90 - height, 200, height, radius)) if radius else doc.rectangle(x, y + 90 - height, 200, height)
        doc.add("DrawText", outline=outline, Text=doc.text(*([(string, style)] if style else string)), **fields)

    fruit, sky = doc.gradient([(RED, 0), ((1, 0.8, 0.2), 1)]), doc.gradient([(WHITE, 0), (BLUE, 1)])
    pangram = "The quick brown fox jumps over the lazy dog. "
    box(pangram * 2, doc.style(size=14, align=3))
    box([("Several ", doc.style(size=20)), ("fonts ", doc.style("Times-Italic", 26, RED)), ("and ", doc.style(size=14)),
         ("colours", doc.style("Georgia-Bold", 22, BLUE, NSUnderline=1)), (" in ", doc.style(size=14)),
         ("one", doc.style("Menlo-Regular", 16, GREEN, NSBackgroundColor=doc.color((1, 1, 0.6)))),
         (" text", doc.style(size=20, NSStrikethrough=1))], None)
    box("العربية and עברית and 漢字 and 😀🇨🇭", doc.style(size=20, align=2))
    box("Outlined", doc.style("Helvetica-Bold", 44, (1, 0.85, 0.2), 2, NSStrokeWidth=-4.0, NSStrokeColor=doc.color(RED)))
    box("Outline", doc.style("Helvetica-Bold", 44, BLUE, 2, NSStrokeWidth=2.5))
    box("Shadow", doc.style("Georgia-Bold", 44, GREEN, 2), shadow=doc.shadow(4, -4, 4))
    box("Gradient", doc.style("Georgia-Bold", 44, align=2), **doc.text_gradient(fruit, 0))
    box("Radial", doc.style("Helvetica-Bold", 50, align=2, NSStrokeWidth=-3.0, NSStrokeColor=doc.color(DARK)),
        **doc.text_gradient(sky, radial=True), shadow=doc.shadow(3, -3, 3))
    box("Inner", doc.style("Helvetica-Bold", 60, (1, 0.9, 0.6), 2), inner_shadow=doc.shadow(2, -2, 4, (0.3, 0.1, 0, 0.9)))
    box("A box with a fill, a stroke and a corner radius", doc.style(size=18, color=WHITE, align=2), fill=(0.2, 0.3, 0.5),
        stroke=DARK, radius=12, XRadius=Float32(12), YRadius=Float32(12))
    box("Turned by 12 degrees", doc.style("Times-Roman", 24, align=2), rotation=12)
    box("Reflected", doc.style("Helvetica-Bold", 36, BLUE, 2), 46, opacity=70, reflection=(0.7, -16))
    return doc


# The beginning of the Universal Declaration of Human Rights, or nearly.
SCRIPTS = [
    "All human beings are born free", "Όλοι οι άνθρωποι γεννιούνται ελεύθεροι", "Все люди рождаются свободными",
    "Բոլոր մարդիկ ծնվում են ազատ", "ყველა ადამიანი იბადება თავისუფალი", "כל בני האדם נולדו בני חורין",
    "يولد جميع الناس أحرارًا، ١٢٣", "सभी मनुष्य जन्म से स्वतन्त्र हैं।", "সমস্ত মানুষ স্বাধীনভাবে জন্মগ্রহণ করে।",
    "ਸਾਰੇ ਇਨਸਾਨ ਅਜ਼ਾਦ ਜੰਮਦੇ ਹਨ।", "બધા મનુષ્યો સ્વતંત્ર જન્મે છે.", "மனிதர் யாவரும் பிறக்கின்றனர்",
    "మానవులందరు స్వతంత్రులుగా జన్మించారు", "ಎಲ್ಲಾ ಮಾನವರು ಸ್ವತಂತ್ರರಾಗಿ ಜನಿಸಿದ್ದಾರೆ",
    "മനുഷ്യരെല്ലാവരും സ്വതന്ത്രരായി ജനിച്ചു", "සියලු මනුෂ්‍යයෝ නිදහස්ව උපත ලබති", "มนุษย์ทั้งหลายเกิดมามีอิสระ",
    "ມະນຸດທຸກຄົນເກີດມາມີອິດສະຫຼະ", "មនុស្សទាំងអស់កើតមកមានសេរីភាព", "လူတိုင်းသည် လွတ်လပ်စွာ မွေးဖွားလာသည်",
    "མི་རིགས་ཚང་མ་རང་དབང་ཅན་དུ་སྐྱེས།", "ሰው ሁሉ ነጻ ሆኖ ተወልዷል።", "「人人生而自由，一律平等。」", "「すべての人間は、自由。」",
    "모든 인간은 태어날 때부터 자유롭다", "Cafe\u0301, Å\u0301, ﬁ, “Zitat” 😀👩‍👩‍👧🇨🇭",
]


def scripts():
    """One text in many scripts, each line in a box of its own, all in one font."""
    doc = PaintDocument(2 * 400, 13 * 44, background=(0.97, 0.97, 0.97))
    for i, line in enumerate(SCRIPTS):
        x, y = i // 13 * 400 + 10, (12 - i % 13) * 44 + 4
        doc.add("DrawText", outline=doc.rectangle(x, y, 380, 36), Text=doc.text((line, doc.style(size=18))))
    return doc


STAND_INS = [
    "Helvetica", "HelveticaNeue-CondensedBold", "ArialMT", "Arial-Black", "ArialNarrow", "ArialRoundedMTBold", "Times-Roman",
    "TimesNewRomanPSMT", "Courier", "CourierNewPSMT", ".SFNSText", "LucidaGrande", "Menlo-Regular", "Verdana", "Tahoma",
    "TrebuchetMS", "Georgia", "Palatino-Roman", "BookmanOldStyle", "CenturySchoolbook", "CenturyGothic", "Futura-Medium",
    "Avenir-Book", "GillSans", "Optima-Regular", "Baskerville", "Didot", "HoeflerText-Regular", "Charter-Roman", "Rockwell-Regular",
    "AmericanTypewriter", "Copperplate", "Impact", "Haettenschweiler", "Phosphate-Inline", "ComicSansMS", "Chalkboard",
    "MarkerFelt-Thin", "BrushScriptMT", "Apple-Chancery", "SnellRoundhand", "Cochin", "Papyrus", "AnotherSans-Bold",
]


def stand_ins():
    """Fonts of the documents' platform at 40 points, in boxes that are as high as their text was there."""
    doc = PaintDocument(4 * 250, 11 * 96, background=(0.97, 0.97, 0.97))
    for i, font in enumerate(STAND_INS):
        x, y = i // 11 * 250 + 10, (10 - i % 11) * 96 + 20
        doc.add("DrawText", outline=doc.rectangle(x, y, 230, 60), Text=doc.text(("ÉÅÑgjÇ", doc.style(font, 40))),
                fill=(0.9, 0.92, 0.96))
        doc.add("DrawText", outline=doc.rectangle(x, y - 18, 230, 14), Text=doc.text((font, doc.style("ArialMT", 10, DARK))))
    return doc


def curved_text():
    """Curved text along every kind of guide; columns: left, centred, right."""
    doc = PaintDocument(3 * 260, 6 * 170, background=(0.97, 0.97, 0.97))
    fruit = doc.gradient([(RED, 0), (BLUE, 1)])
    guide = (0.75, 0.75, 0.8)

    def curved(class_name, outline, string, style, guide_fields=None, **fields):
        draw = doc.draw(class_name, outline=outline, stroke=guide, **(guide_fields or {}))
        doc.add("DrawBezierText", outline=doc.rectangle(0, 0, 1, 1), Text=doc.text((string, style)), BezierDraw=draw,
                **({"Version": 1} | fields))

    for column, align in enumerate((0, 2, 1)):
        x = column * 260
        style = lambda size=20, font="Helvetica", **more: doc.style(font, size, DARK, align, **more)
        at = lambda row: (5 - row) * 170
        y = at(0)
        curved("DrawEllipse", doc.oval(x + 70, y + 25, 120, 120), "Text on a circle", style())
        y = at(1)
        curved("DrawLine", doc.path([("M", x + 240, y + 130), ("L", x + 20, y + 80)]), "Along a line", style(26, "Georgia-Bold"))
        curved("DrawCurve", doc.path([("M", x + 20, y + 30), ("C", x + 90, y + 130, x + 170, y - 70, x + 240, y + 30)]),
               "Riding on a wave", style())
        y = at(2)
        box = doc.path(rounded(x + 50, y + 35, 160, 100, 30))
        curved("DrawRoundRectangle", box, "Round a box with corners", style(18), {"XRadius": Float32(30), "YRadius": Float32(30)})
        y = at(3)
        curved("DrawRectangle", doc.rectangle(x + 50, y + 40, 160, 90), "A plain box", style(22), {"rotation": 10})
        y = at(4)
        curved("DrawEllipse", doc.oval(x + 40, y + 45, 180, 80), "Gradient with a shadow", style(22, "Helvetica-Bold"),
               shadow=doc.shadow(3, -3, 3), **doc.text_gradient(fruit, 0))
        y = at(5)
        if column == 0:
            curved("DrawEllipse", doc.oval(x + 70, y + 25, 120, 120), "An old circle", style(), Version=0)
        elif column == 1:
            curved("DrawLine", doc.path([("M", x + 40, y + 90), ("L", x + 220, y + 90)]),
                   "Far more text than its line has room for", style())
        else:
            curved("DrawBezierPath", doc.path([("M", x + 20, y + 60), ("C", x + 60, y + 160, x + 120, y + 160, x + 130, y + 80),
                                               ("C", x + 140, y, x + 200, y, x + 240, y + 110)]),
                   "😀 Outlined along a path 🎈", style(22, "Helvetica-Bold", NSStrokeWidth=-4.0, NSStrokeColor=doc.color(RED)))
    return doc


SHEETS = {"text": text, "scripts": scripts, "stand_ins": stand_ins, "curved_text": curved_text, "shadows": shadows, "gradients": gradients, "reflections": reflections, "lines": lines,
          "strokes": strokes}


LABEL = ('<text x="{}" y="{}" font-family="DejaVu Sans" font-size="13" text-anchor="middle" '
         'fill="#333">{}</text>')


def preset_shapes(folder, programs):
    labels = subprocess.run([os.path.join(programs, "preset-shapes"), os.path.join(folder, "presets.paintdoc")],
                            check=True, capture_output=True, text=True).stdout.splitlines()
    labelled(folder, programs, "presets", [label.split(" ", 2) for label in labels])


def filters(folder, programs):
    """One picture through each filter."""
    width, height, gap, line = 240, 180, 8, 20
    settings = [("the picture", None, {}), ("Invert Colors", 0, {"none": 0}), ("Blur 4", 1, {}),
                ("Sharpen 2", 2, {"inputSharpness": 2}),
                ("Adjust Colors: warm", 3, {"inputEV": 0.4, "inputSaturation": 1.5, "inputShadowAmount": 0.5,
                                            "inputIntensity": 0.35}),
                ("Adjust Colors: hue, contrast", 3, {"inputAngle": 1.5, "inputContrast": 1.3,
                                                     "inputHighlightAmount": 0.5, "inputPower": 0.8}),
                ("Crystallize 10", 4, {}), ("Edges 50", 5, {}), ("Edge Work 1.5", 6, {"inputRadius": 1.5}),
                ("Pixellate 5", 7, {}), ("Pointillize 4", 8, {"inputRadius": 4}),
                ("Black And White", 9, {"none": 0})]
    doc = PaintDocument(4 * (width + gap) + gap, 3 * (height + line + gap), background=(0.55, 0.6, 0.65))
    picture = doc.archive.data(png(landscape(width, height), width))
    labels = []
    for i, (name, kind, values) in enumerate(settings):
        x = gap + i % 4 * (width + gap)
        y = line + (2 - i // 4) * (height + line + gap)
        fields = {"ImageData": picture, "outline": doc.rectangle(x, y, width, height, line_width=0)}
        if kind is not None:
            fields["FilterType"] = kind
        if values:
            fields["FilterSettings"] = doc.archive.add(values)
        doc.add("DrawImage2" if kind is None else "DrawFilter2", **fields)
        labels.append((x + width / 2, y - 15, name))
    with open(os.path.join(folder, "filters.paintdoc"), "wb") as out:
        out.write(doc.to_bytes())
    labelled(folder, programs, "filters", labels)


def labelled(folder, programs, name, labels, magnified=1):
    """The engine draws the document; the labels (x, y upwards, text) are laid over its picture, whose pixels are
    repeated when it is magnified."""
    document = os.path.join(folder, name + ".paintdoc")
    picture = subprocess.run([os.path.join(programs, "paintdoc"), "render", "--format", "png", document, "-"],
                             check=True, capture_output=True).stdout
    width, height = (int.from_bytes(picture[at:at + 4], "big") for at in (16, 20))
    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" '
           f'width="{width * magnified}" height="{height * magnified}" viewBox="0 0 {width} {height}">'
           f'<image width="{width}" height="{height}" style="image-rendering: optimizeSpeed" '
           f'xlink:href="data:image/png;base64,{base64.b64encode(picture).decode()}"/>']
    svg += [LABEL.format(x, height - float(y), text) for x, y, text in labels]
    subprocess.run(["rsvg-convert", "-o", os.path.join(folder, name + ".png")],
                   input="\n".join(svg + ["</svg>"]), text=True, check=True)


def main(folder, programs=None):
    os.makedirs(folder, exist_ok=True)
    for name, make in SHEETS.items():
        path = os.path.join(folder, name)
        with open(path + ".paintdoc", "wb") as out:
            out.write(make().to_bytes())
        if programs:
            if name == "strokes":
                labelled(folder, programs, name, [], magnified=4)
            else:
                subprocess.run([os.path.join(programs, "paintdoc"), "render", path + ".paintdoc", path + ".png"],
                               check=True)
    if programs:
        preset_shapes(folder, programs)
        filters(folder, programs)


if __name__ == "__main__":
    main(*sys.argv[1:])
