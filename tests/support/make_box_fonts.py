#!/usr/bin/python3
"""Writes the fonts that layout tests measure with into tests/fixtures/fonts.

Every glyph is a box: 0.4 em wide with 0.05 em on either side (so each advance is half an em), from
the baseline to 0.7 em. The space is a quarter em wide. Ascent 0.8 em, descent 0.2 em, no leading,
1000 units to the em. Box also has a kerning pair (A V, -0.1 em), a ligature (f i, 0.8 em), Hebrew
and Arabic letters, a mark without width and a few general punctuation marks. BoxTall has the
letters A to Z only, ascent 1.2 em, descent 0.4 em and leading 0.3 em. Low tells an ascent of 0.6 em
and has letters up to 0.9 em. Composed has a letter with its accent but not the accent. The Twins are
of one PostScript name, one of them slanted. The rest have nothing but the names, the styles and some
characters of faces that stand in for others.

Needs fontTools (Debian: python3-fonttools). The results are kept in the repository, so that tests
do not; run this again after changing it.
"""
import pathlib

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen

FOLDER = pathlib.Path(__file__).resolve().parent.parent / "fixtures" / "fonts"
ADVANCE, SPACE, LIGATURE = 500, 250, 800
LETTERS = [chr(c) for c in range(0x21, 0x7F)]
OTHERS = [0xA0, 0xAD, 0xB7, 0xE9, 0x2010, 0x2013, 0x2026] + list(range(0x5D0, 0x5EB)) + [0x628, 0x644]
MARKS = [0x301]


def box(left, right, top):
    pen = TTGlyphPen(None)
    if right > left:
        pen.moveTo((left, 0))
        pen.lineTo((left, top))
        pen.lineTo((right, top))
        pen.lineTo((right, 0))
        pen.closePath()
    return pen.glyph()


def build(name, style_name, characters, vertical, features="", family=None, weight=400, width=5,
          top=700, italic=False, ps_name=None):
    ascent, descent, gap = vertical
    glyphs = {".notdef": (ADVANCE, box(50, 450, 700)), "space": (SPACE, box(0, 0, 0))}
    cmap = {0x20: "space"}
    for c in characters:
        glyph = "u%04X" % c
        cmap[c] = glyph
        if c == 0xA0:
            glyphs[glyph] = (SPACE, box(0, 0, 0))
        elif c in MARKS:
            glyphs[glyph] = (0, box(-300, -200, 100))
        else:
            glyphs[glyph] = (ADVANCE, box(50, 450, top))
    if features:
        glyphs["f_i"] = (LIGATURE, box(50, 750, 700))
    builder = FontBuilder(1000, isTTF=True)
    builder.setupGlyphOrder(list(glyphs))
    builder.setupCharacterMap(cmap)
    builder.setupGlyf({g: outline for g, (_, outline) in glyphs.items()})
    builder.setupHorizontalMetrics({g: (a, 50) for g, (a, _) in glyphs.items()})
    builder.setupHorizontalHeader(ascent=ascent, descent=-descent, lineGap=gap)
    builder.setupNameTable({
        "familyName": family or name, "styleName": style_name, "fullName": name + " " + style_name,
        "psName": ps_name or name + "-" + style_name, "version": "1.0", "uniqueFontIdentifier": name,
    })
    builder.setupOS2(sTypoAscender=ascent, sTypoDescender=-descent, sTypoLineGap=gap,
                     usWinAscent=ascent, usWinDescent=descent, sxHeight=500, sCapHeight=700,
                     yStrikeoutPosition=250, yStrikeoutSize=50, usWeightClass=weight,
                     usWidthClass=width, fsSelection=1 if italic else 0x40)
    builder.font["head"].macStyle = 2 if italic else 0
    builder.setupPost(underlinePosition=-100, underlineThickness=50)
    if features:
        builder.addOpenTypeFeatures(features)
    # The date of the build must not be in the file.
    builder.font["head"].created = builder.font["head"].modified = 0
    builder.font.recalcTimestamp = False
    builder.save(FOLDER / (name + ".ttf"))


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    everything = [ord(c) for c in LETTERS] + OTHERS + MARKS
    features = """
        languagesystem DFLT dflt;
        languagesystem latn dflt;
        feature kern { pos u0041 u0056 -100; } kern;
        feature liga { sub u0066 u0069 by f_i; } liga;
    """
    build("Box", "Regular", everything, (800, 200, 0), features)
    build("BoxTall", "Regular", list(range(0x41, 0x5B)), (1200, 400, 300))
    build("NimbusSans", "Bold", [0x41], (800, 200, 0), family="Nimbus Sans", weight=700)
    build("NimbusSansNarrow", "Bold", [0x41], (800, 200, 0), family="Nimbus Sans Narrow", weight=700,
          width=3)
    build("Low", "Light", [0x41, 0xC9], (600, 200, 300), family="URW Bookman", top=900)
    build("Composed", "Regular", [0x65, 0xE9], (800, 200, 0))
    for name, italic in [("TwinRoman", False), ("TwinItalic", True)]:
        build(name, "Regular", [0x41], (800, 200, 0), family="Inter", italic=italic,
              ps_name="Inter-Regular")
    # The first in the alphabet has one letter of the script, the other all of them.
    build("FewTamil", "Regular", [0xBAA], (800, 200, 0))
    build("Tamil", "Regular", list(range(0xB85, 0xBD0)), (800, 200, 0))
    ideographs = [0x3001, 0x3002, 0x300C, 0x300D, 0x3042, 0x65E5, 0x672C]
    for name, family in [("CJKjp", "Noto Sans CJK JP"), ("CJKsc", "Noto Sans CJK SC")]:
        build(name, "Regular", ideographs, (800, 200, 0), family=family)
    build("Arabic", "Regular", [0x60C, 0x627, 0x628, 0x660, 0x661], (800, 200, 0),
          family="Noto Sans Arabic")


if __name__ == "__main__":
    main()
