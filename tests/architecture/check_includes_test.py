#!/usr/bin/env python3
"""Plants a violation of each rule in a copy of the tree and sees check_includes.py find it and
nothing else: check_includes_test.py ROOT"""
import os
import shutil
import sys
import tempfile
import unittest

import check_includes

ROOT = None


def include(header):
    return f'#include "{header}"\n'


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


# What is appended to a file (made when it is not there), and what the check then says of it.
VIOLATIONS = {
    "upwards inside platform": (
        "src/platform/text/layout/TextLayout.cpp", include("platform/text/drawing/TextDrawing.h"),
        "src/platform/text/layout/TextLayout.cpp includes platform/text/drawing/TextDrawing.h"),
    "graphics into filters": (
        "src/platform/graphics/path/CGPath.cpp", include("platform/filters/CIImage.h"),
        "src/platform/graphics/path/CGPath.cpp includes platform/filters/CIImage.h"),
    "pixels into graphics": (
        "src/platform/graphics/pixels/PixelMoves.cpp",
        include("platform/graphics/bitmap/NSBitmapImageRep.h"),
        "src/platform/graphics/pixels/PixelMoves.cpp includes "
        "platform/graphics/bitmap/NSBitmapImageRep.h"),
    "against the way of the data inside pixels": (
        "src/platform/graphics/pixels/coverage/AlphaMask.h",
        include("platform/graphics/pixels/paint/RowSource.h"),
        "src/platform/graphics/pixels/coverage/AlphaMask.h includes "
        "platform/graphics/pixels/paint/RowSource.h"),
    "codecs into contexts": (
        "src/platform/graphics/codecs/PNGWriter.cpp",
        include("platform/graphics/context/CGContext.h"),
        "src/platform/graphics/codecs/PNGWriter.cpp includes "
        "platform/graphics/context/CGContext.h"),
    "raster and image both ways": (
        "src/draw/raster/DrawFill.cpp", include("draw/image/DrawImage2.h"),
        "src/draw/raster/DrawFill.cpp includes draw/image/DrawImage2.h"),
    "a chief header counts as what it stands for": (
        "src/svg/parse/SVGLength.cpp", include("svg/SVGDocumentImpl.h"),
        "src/svg/parse/SVGLength.cpp includes svg/SVGDocumentImpl.h"),
    "the document from below": (
        "src/draw/core/DrawBase.cpp", include("document/DrawGroup.h"),
        "src/draw/core/DrawBase.cpp includes document/DrawGroup.h"),
    "an unknown folder": (
        "src/platform/odds/Ends.h", "",
        "src/platform/odds/Ends.h is in a folder that the table of rooms lacks"),
    "a header that is nowhere in the layers": (
        "src/document/DrawGroup.cpp", include("odds/Ends.h"),
        "src/document/DrawGroup.cpp includes odds/Ends.h"),
    "a library outside its folder": (
        "src/draw/image/BitmapHelpers.cpp", "#include <png.h>\n",
        "src/draw/image/BitmapHelpers.cpp includes png.h, which belongs to "
        "src/platform/graphics/codecs"),
    "a program into the engine's insides": (
        "apps/paintdoc/Progress.cpp", include("draw/core/DrawBase.h"),
        "apps/paintdoc/Progress.cpp includes draw/core/DrawBase.h"),
    "a program into another": (
        "apps/paint-thumbnailer/main.cpp", include("paintdoc/Progress.h"),
        "apps/paint-thumbnailer/main.cpp includes paintdoc/Progress.h"),
    "an unknown program": (
        "apps/paint-odds/main.cpp", "",
        "apps/paint-odds/main.cpp is in a folder that the table of programs lacks"),
    "the plugin into the engine's insides": (
        "kde/PaintThumbnailCreator.cpp", include("document/PaintManager.h"),
        "kde/PaintThumbnailCreator.cpp includes document/PaintManager.h"),
    "a test of something above": (
        "tests/platform/graphics/path/NSBezierPathTest.cpp",
        include("draw/shapes/DrawRectangle.h"),
        "tests/platform/graphics/path/NSBezierPathTest.cpp includes draw/shapes/DrawRectangle.h"),
    "a test of nothing": (
        "tests/platform/odds/EndsTest.cpp", "",
        "tests/platform/odds/EndsTest.cpp mirrors no folder of src"),
    "test support of what it does not know": (
        "tests/support/Bitmaps.cpp", include("platform/text/layout/TextLayout.h"),
        "tests/support/Bitmaps.cpp includes platform/text/layout/TextLayout.h"),
    "a source without a header": (
        "src/platform/graphics/path/Odds.cpp", "",
        "src/platform/graphics/path/Odds.cpp has no header of its name"),
    "two headers of a name": (
        "src/svg/tree/PathData.h", "",
        "PathData.h is the name of several: src/platform/graphics/pixels/outline/PathData.h "
        "src/svg/tree/PathData.h"),
    "two types of a name": (
        "src/svg/tree/SVGElement.h", "struct PathData {\n};\n",
        "PathData is the name of several: src/platform/graphics/pixels/outline/PathData.h "
        "src/svg/tree/SVGElement.h"),
}


class PlantedViolations(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = tempfile.TemporaryDirectory()
        for top in ("src", "apps", "kde", "tests"):
            for path in check_includes.Check(ROOT).files(top):
                copy = os.path.join(cls.tree.name, path)
                os.makedirs(os.path.dirname(copy), exist_ok=True)
                shutil.copyfile(os.path.join(ROOT, path), copy)

    @classmethod
    def tearDownClass(cls):
        cls.tree.cleanup()

    def faults(self):
        return check_includes.Check(self.tree.name).run()

    def test_nothing_is_found_before(self):
        self.assertEqual(self.faults(), [])

    def test_each_violation_is_found(self):
        for name, (path, text, expected) in VIOLATIONS.items():
            with self.subTest(name):
                file = os.path.join(self.tree.name, path)
                before = read(file) if os.path.exists(file) else None
                write(file, (before or "") + text)
                self.assertEqual(self.faults(), [expected])
                if before is None:
                    os.remove(file)
                else:
                    write(file, before)

    def plant_permission(self, table, folder, allowed):
        rooms = dict(table)
        rooms[folder] += " " + allowed
        return rooms

    def test_permissions_must_be_used_and_lead_downwards(self):
        rooms = check_includes.ROOMS
        for folder, allowed, expected in [
                ("svg/parse", "platform/graphics/path",
                 "svg/parse may include platform/graphics/path and does not"),
                ("svg/parse", "platform/odds",
                 "the table of rooms allows svg/parse to include platform/odds, which it lacks"),
                ("platform/machine", "svg",
                 "the table of rooms leads from platform/machine back to it")]:
            with self.subTest(folder + " " + allowed):
                check_includes.ROOMS = self.plant_permission(rooms, folder, allowed)
                try:
                    self.assertIn(expected, self.faults())
                finally:
                    check_includes.ROOMS = rooms


if __name__ == "__main__":
    ROOT = sys.argv.pop(1)
    unittest.main()
