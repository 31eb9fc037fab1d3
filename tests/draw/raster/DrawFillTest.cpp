#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "document/DocumentClasses.h"
#include "draw/raster/DrawFill.h"
#include "draw/raster/ImageMask.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "support/Archives.h"
#include "support/Documents.h"
#include "support/Masks.h"

namespace {

constexpr Pixel kWhite{255, 255, 255, 255};
constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};

const PixelRows kRing = {"####", "#..#", "####"};

enum class Through : uint8_t { pixels, context };

/// What the draw leaves on a white bitmap, written into its pixels or drawn through a context.
std::shared_ptr<NSBitmapImageRep> drawnOnWhite(DrawBase& draw, int64_t width, int64_t height,
                                               Through through = Through::pixels) {
  auto bitmap = makeBitmap(width, height, [](int64_t, int64_t) { return kWhite; });
  const ZTFocusScope focus(bitmap);
  draw.drawInImage(through == Through::pixels ? bitmap.get() : nullptr);
  return bitmap;
}

std::shared_ptr<DrawFill> fillOf(const std::shared_ptr<ImageMask>& mask) {
  auto fill = DrawFill::initWithImageMask(mask);
  fill->setFillColor(NSColor::redColor());
  return fill;
}

std::shared_ptr<DrawFill> throughArchive(const std::shared_ptr<DrawFill>& fill) {
  return std::dynamic_pointer_cast<DrawFill>(
      DrawBase::drawFromEncodedData(DrawBase::encodedData(fill)));
}

}  // namespace

TEST(DrawFill, RecordsOfAllAges) {
  struct Case {
    const char* title;
    int64_t type;
    bool hasMask;
    NSRect bounds;
    PixelRows painted;  ///< from the corner of the bounds
    Pixel color = kRed;
  };
  const PixelRows full(3, "####");
  const PixelRows turnedFlag = {"#...", "#...", "#.#.", "####"};
  const Case cases[] = {
      {"mask", 0, true, {{2, 3}, {4, 3}}, kRing},
      {"mask, path elsewhere", 0, true, {{2, 8}, {4, 3}}, kRing},
      {"turned", 0, true, {{2, 13}, {4, 4}}, turnedFlag},
      {"turned and nearly its size", 0, true, {{2, 18}, {4, 4}}, turnedFlag},
      {"turned and resized",
       0,
       true,
       {{0, 0}, {8, 8}},
       {"##......", "##......", "##......", "##......", "##..##..", "##..##..", "########",
        "########"}},
      {"path", 1, false, {{10, 3}, {4, 3}}, full},
      {"path with a mask", 1, true, {{10, 8}, {4, 3}}, full},
      {"lines", 2, false, {{10, 13}, {3, 2}}, kRing},
      {"lines with a mask", 0, true, {{10, 18}, {4, 3}}, kRing},
      {"old", 0, true, {{18, 3}, {4, 3}}, kRing},
      {"old and full", 1, false, {{18, 8}, {4, 3}}, full},
      {"old pixel", 0, true, {{18, 13}, {1, 1}}, {"#"}},
      {"colour of the stroke", 0, true, {{18, 18}, {4, 3}}, kRing, kBlue},
      {"both colours", 0, true, {{18, 23}, {4, 3}}, kRing, kBlue},
      {"off", 0, true, {{25, 3}, {4, 3}}, {"."}},
      {"hidden", 0, true, {{25, 8}, {4, 3}}, {"."}},
      {"no mask", 0, false, {{25, 13}, {4, 3}}, {"."}},
      {"no such type", 7, true, {{25, 18}, {4, 3}}, {"."}},
      {"translucent", 0, true, {{25, 23}, {4, 3}}, kRing, {255, 0, 0, 128}},
  };
  const auto document = madeDocument("fills");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.title);
    const auto fill = std::dynamic_pointer_cast<DrawFill>(drawTitled(*document, c.title));
    ASSERT_NE(fill, nullptr);
    // Once upgraded, a record stays as it is.
    for (const auto& draw : {fill, throughArchive(fill)}) {
      EXPECT_EQ(draw->fillType(), c.type);
      EXPECT_EQ(draw->mask() != nullptr, c.hasMask && (draw == fill || c.type == 0));
      EXPECT_EQ(draw->pathBounds(), c.bounds);
      EXPECT_EQ(draw->bezierPath()->lineCapStyle(), LineCap::square);
      EXPECT_EQ(draw->bezierPath()->lineJoinStyle(), LineJoin::miter);
      const auto bitmap = drawnOnWhite(*draw, 32, 32);
      const auto expected = placedRows(32, 32, c.painted, static_cast<int64_t>(c.bounds.origin.x),
                                       static_cast<int64_t>(c.bounds.origin.y));
      EXPECT_EQ(rowsOf(*bitmap, c.color), expected);
      PixelRows rest = expected;
      for (std::string& row : rest) {
        for (char& pixel : row) pixel = pixel == '#' ? '.' : '#';
      }
      EXPECT_EQ(rowsOf(*bitmap, kWhite), rest);
    }
  }
}

TEST(DrawFill, AreComposedIntoTheDocument) {
  const auto image = madeDocument("fills")->fullImage();
  struct Case {
    int64_t x, y;
    Pixel expected;
  };
  const Case cases[] = {
      {2, 3, kRed},    {3, 4, kWhite},  // a mask and its hole
      {10, 3, kRed},   {13, 5, kRed},
      {14, 3, kWhite},  // a path
      {10, 13, kRed},  {11, 14, kWhite},
      {13, 15, kRed},  // lines
      {18, 18, kBlue}, {25, 23, {255, 0, 0, 128}},
      {25, 3, kWhite}, {25, 18, kWhite},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(pixelAt(*image, c.x, 31 - c.y), c.expected) << c.x << ", " << c.y;
  }
}

TEST(DrawFill, OfAMask) {
  EXPECT_EQ(DrawFill::initWithImageMask(nullptr), nullptr);
  const auto ring = DrawFill::initWithImageMask(maskOf(kRing, 5, 6));
  EXPECT_EQ(ring->fillType(), DrawFill::kMaskFill);
  EXPECT_NE(ring->mask(), nullptr);
  const auto full = DrawFill::initWithImageMask(maskOf({"##", "##"}, 5, 6));
  EXPECT_EQ(full->fillType(), DrawFill::kPathFill);
  EXPECT_EQ(full->mask(), nullptr);
  EXPECT_EQ(full->pathBounds(), NSMakeRect(5, 6, 2, 2));
  const auto noisy = DrawFill::initWithImageMask(maskOf(PixelRows(2501, "#."), 5, 6));
  EXPECT_EQ(noisy->fillType(), DrawFill::kMaskFill);
  for (const auto& fill : {ring, full, noisy}) {
    EXPECT_EQ(fill->bezierPath()->lineWidth(), 1);
    EXPECT_EQ(fill->bezierPath()->lineCapStyle(), LineCap::square);
    EXPECT_EQ(fill->bezierPath()->lineJoinStyle(), LineJoin::miter);
    EXPECT_TRUE(fill->enableFill());
    EXPECT_FALSE(fill->enableStroke());
    EXPECT_TRUE(fill->drawFill());
    EXPECT_FALSE(fill->drawStroke());
    EXPECT_TRUE(fill->hasBorder());
    EXPECT_FALSE(fill->hasControlKnob());
  }
}

TEST(DrawFill, OfAPath) {
  const auto oval = NSBezierPath::bezierPathWithOvalInRect({{2, 2}, {9, 9}});
  const auto fill = DrawFill::initWithBezierPath(*oval);
  fill->setFillColor(NSColor::redColor());
  EXPECT_EQ(fill->fillType(), DrawFill::kPathFill);
  EXPECT_EQ(fill->pathBounds(), oval->bounds());
  // Never antialiased: every pixel is red or white.
  const auto bitmap = drawnOnWhite(*fill, 13, 13);
  int red = 0;
  for (int64_t i = 0; i < 169; ++i) {
    const Pixel p = pixelAt(*bitmap, i % 13, i / 13);
    EXPECT_TRUE(p == kRed || p == kWhite);
    red += p == kRed;
  }
  EXPECT_NEAR(red, 64, 16);

  NSBezierPath open;
  for (const NSPoint p : {NSPoint{0, 0}, {5, 0}, {5, 5}, {0, 5}}) open.lineToPoint(p);
  EXPECT_TRUE(DrawFill::initWithBezierPath(open)->bezierPath()->isEmpty());
}

/// Masks look the same written into the pixels, drawn as pictures, and stroked as lines.
TEST(DrawFill, AllFormsPaintTheSamePixels) {
  std::mt19937 random(1);
  for (unsigned i = 0; i < 40; ++i) {
    const auto mask = randomMask(1 + random() % 70, 1 + random() % 20, 1 + random() % 20, i);
    mask->setMaskStartPoint({3, 4});
    const auto expected = placedRows(80, 30, rowsOf(*mask), 3, 4);
    const auto lines = mask->bezierPathForFill(nullptr);
    const auto fill = fillOf(mask);
    EXPECT_EQ(rowsOf(*drawnOnWhite(*fill, 80, 30, Through::pixels), kRed), expected) << i;
    EXPECT_EQ(rowsOf(*drawnOnWhite(*fill, 80, 30, Through::context), kRed), expected) << i;
    if (lines->isEmpty()) continue;
    const auto record =
        std::dynamic_pointer_cast<DrawFill>(drawTitled(*madeDocument("fills"), "lines"));
    lines->setLineCapStyle(LineCap::square);
    record->setBezierPath(lines);
    EXPECT_EQ(rowsOf(*drawnOnWhite(*record, 80, 30), kRed), expected) << i;
  }
}

TEST(DrawFill, ReplacesWhatLiesUnderIt) {
  const auto fill = fillOf(maskOf(kRing, 2, 2));
  fill->setOpacity(50);
  // The bytes of the colour as they are.
  EXPECT_EQ(pixelAt(*drawnOnWhite(*fill, 8, 8), 2, 5), (Pixel{255, 0, 0, 128}));
  // Drawn: first erased, then painted. Turning by half a turn leaves the ring in its place.
  fill->setRotateDegree(180);
  const auto turned = drawnOnWhite(*fill, 8, 8);
  EXPECT_EQ(rowsOf(*turned, {128, 0, 0, 128}), placedRows(8, 8, kRing, 2, 2));
  const auto path = fillOf(maskOf({"##", "##"}, 2, 2));
  path->setOpacity(50);
  EXPECT_EQ(rowsOf(*drawnOnWhite(*path, 8, 8), {128, 0, 0, 128}),
            placedRows(8, 8, {"##", "##"}, 2, 2));
}

TEST(DrawFill, FollowsTheContextItIsDrawnThrough) {
  const auto fill = fillOf(maskOf(kRing, 1, 1));
  const auto bitmap = makeBitmap(10, 8, [](int64_t, int64_t) { return kWhite; });
  {
    const ZTFocusScope focus(bitmap);
    NSGraphicsContext::currentContext()->graphicsPort()->concatenate({1, 0, 0, 1, 3, 2});
    NSRectClip({{0, 0}, {4, 9}});
    fill->drawInImage(bitmap.get());
  }
  EXPECT_EQ(rowsOf(*bitmap, kRed), placedRows(10, 8, {"###.", "#...", "###."}, 4, 3));
}

TEST(DrawFill, OpacityIsTheAlphaOfItsColour) {
  const auto fill = fillOf(maskOf(kRing));
  EXPECT_EQ(fill->opacity(), 100U);
  fill->setOpacity(25);
  EXPECT_EQ(fill->opacity(), 25U);
  EXPECT_EQ(fill->fillColor()->alphaComponent(), 0.25);
  fill->setOpacity(900);
  EXPECT_EQ(fill->opacity(), 100U);
  fill->setFillColor(NSColor::colorWithCalibratedRed(0, 0, 1, 0.339));
  EXPECT_EQ(fill->opacity(), 33U);
  fill->setFillColor(nullptr);
  EXPECT_EQ(fill->opacity(), 0U);
  fill->setOpacity(40);
  EXPECT_EQ(fill->fillColor(), nullptr);
}

TEST(DrawFill, TheMaskFollowsThePath) {
  registerDocumentClasses();
  const auto fill = fillOf(maskOf({"###", "#..", "##.", "#.."}, 2, 3));
  fill->moveByX(4, -1);
  EXPECT_EQ(fill->mask()->maskStartPoint(), NSMakePoint(6, 2));
  const auto undo = fill->bezierPathData();
  fill->flip(true);
  EXPECT_EQ(rowsOf(*drawnOnWhite(*fill, 12, 8), kRed),
            placedRows(12, 8, {"###", "..#", ".##", "..#"}, 6, 2));
  fill->scaleByX(2, 1, {6, 2}, ResizeLineWidth::no);
  EXPECT_EQ(fill->mask()->maskStartPoint(), NSMakePoint(6, 2));
  EXPECT_EQ(rowsOf(*drawnOnWhite(*fill, 12, 8), kRed),
            placedRows(12, 8, {"######", "....##", "..####", "....##"}, 6, 2));
  fill->moveByX(-5, -2);
  fill->setBezierPathWithData(undo);
  EXPECT_EQ(fill->pathBounds(), NSMakeRect(6, 2, 3, 4));
  EXPECT_EQ(fill->mask()->maskStartPoint(), NSMakePoint(6, 2));
  fill->setRotateDegree(30);
  fill->flip(false);
  EXPECT_EQ(fill->rotateDegree(), -30);
}

// In files, the path of such a fill is its mask's rectangle.
TEST(DrawFill, MasksAreScaledWithTheirPath) {
  const auto fill = fillOf(maskOf({"##.", "#.#"}, 2, 3));
  fill->scaleByX(3, 2, {1, 1}, ResizeLineWidth::no);
  const auto before = drawnOnWhite(*fill, 20, 20);
  const auto read = throughArchive(fill);
  EXPECT_EQ(read->pathBounds(), NSMakeRect(4, 5, 9, 4));
  const PixelRows rows{"######...", "######...", "###...###", "###...###"};
  EXPECT_EQ(rowsOf(*drawnOnWhite(*read, 20, 20), kRed), placedRows(20, 20, rows, 4, 5));
  EXPECT_EQ(maxDifference(*drawnOnWhite(*read, 20, 20), *before), 0);
  EXPECT_EQ(fill->mask()->maskRect().size, NSMakeSize(9, 4));
  fill->setRotateDegree(30);
  fill->scaleByX(1.5, 1.5, {1, 1}, ResizeLineWidth::no);
  const auto turned = throughArchive(fill);
  EXPECT_EQ(turned->pathBounds(), fill->pathBounds()) << "turned fills keep their path";
}

TEST(DrawFill, DrawnPicturesTakeANewColour) {
  const auto fill = fillOf(maskOf(kRing, 2, 2));
  fill->setRotateDegree(180);
  EXPECT_EQ(rowsOf(*drawnOnWhite(*fill, 8, 8), kRed), placedRows(8, 8, kRing, 2, 2));
  fill->setFillColor(NSColor::blueColor());
  EXPECT_EQ(rowsOf(*drawnOnWhite(*fill, 8, 8), kBlue), placedRows(8, 8, kRing, 2, 2));
}

TEST(DrawFill, TheColourTravelsAsTheStrokeColour) {
  const auto fill =
      std::dynamic_pointer_cast<DrawFill>(drawTitled(*madeDocument("fills"), "both colours"));
  fill->setFillColor(NSColor::greenColor());
  const auto archive = describeArchive(DrawBase::encodedData(fill)->bytes());
  EXPECT_NE(archive.find("FillType: int8 0"), std::string::npos) << archive;
  EXPECT_NE(archive.find("ForeColor: ->"), std::string::npos) << archive;
  const auto again = throughArchive(fill);
  EXPECT_TRUE(again->fillColor()->isEqual(*NSColor::greenColor()));
  EXPECT_TRUE(again->strokeColor()->isEqual(*NSColor::greenColor()));
  EXPECT_TRUE(fill->strokeColor()->isEqual(*NSColor::colorWithCalibratedRed(0, 0, 1, 1)))
      << "writing changes nothing";
}

TEST(DrawClear, ErasesItsPath) {
  const auto document = madeDocument("clears");
  const auto image = document->fullImage();
  PixelRows expected = placedRows(16, 16, PixelRows(8, "########"), 2, 2);
  for (size_t y = 8; y < 12; ++y) expected[y].replace(4, 4, "....");
  expected[2].replace(12, 2, "##");
  expected[3].replace(12, 2, "##");
  EXPECT_EQ(rowsOf(*image, {0, 0, 0, 0}), expected);
  EXPECT_EQ(document->allDraws()[0]->bezierPath()->windingRule(), WindingRule::evenOdd);
}

TEST(DrawClear, HasOneColour) {
  DrawClear clear;
  clear.init();
  EXPECT_TRUE(clear.locked());
  EXPECT_TRUE(clear.fillColor()->isEqual(*NSColor::clearColor()));
  clear.setStrokeColor(NSColor::redColor());
  clear.setOpacity(80);
  EXPECT_TRUE(clear.strokeColor()->isEqual(*NSColor::clearColor()));
  EXPECT_EQ(clear.opacity(), 0U);
  EXPECT_TRUE(clear.drawFill());
  EXPECT_FALSE(clear.drawStroke());
  EXPECT_TRUE(clear.hasBorder());
  EXPECT_FALSE(clear.hasControlKnob());
  clear.bezierPath()->appendBezierPathWithRect({{1, 1}, {2, 1}});
  EXPECT_EQ(rowsOf(*drawnOnWhite(clear, 4, 3), {0, 0, 0, 0}), placedRows(4, 3, {"##"}, 1, 1));
}
