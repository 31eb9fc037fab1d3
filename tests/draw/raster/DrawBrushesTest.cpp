#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "draw/raster/DrawBrushes.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/Draws.h"

namespace {

template <class Draw>
std::shared_ptr<Draw> dotAt(NSPoint p, double width, LineCap cap) {
  auto draw = made<Draw>();
  draw->bezierPath()->moveToPoint(p);
  draw->bezierPath()->lineToPoint(p);
  draw->setLineWidth(width);
  draw->bezierPath()->setLineCapStyle(cap);
  return draw;
}

/// What the draw leaves on a bitmap of 16 by 16 of one grey level (opaque unless 0).
std::shared_ptr<NSBitmapImageRep> drawnOn(DrawBase& draw, uint8_t level) {
  auto bitmap = NSBitmapImageRep::create(16, 16);
  if (level != 0) std::memset(bitmap->writableRows(0, 16), level, size_t{16} * 16 * 4);
  const ZTFocusScope focus(bitmap);
  draw.draw();
  return bitmap;
}

int alphaAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y) {
  return bitmap.row(bitmap.pixelsHigh() - 1 - y)[x * 4 + 3];
}

/// Columns and rows of pixels with any alpha, as half-open ranges.
struct Extent {
  int64_t x0 = 99, x1 = 0, y0 = 99, y1 = 0;
  int64_t full = 0;
  bool operator==(const Extent&) const = default;
};

Extent extentOf(const NSBitmapImageRep& bitmap) {
  Extent e;
  for (int64_t y = 0; y < bitmap.pixelsHigh(); ++y) {
    for (int64_t x = 0; x < bitmap.pixelsWide(); ++x) {
      const int alpha = alphaAt(bitmap, x, y);
      if (alpha == 0) continue;
      e = {std::min(e.x0, x), std::max(e.x1, x + 1), std::min(e.y0, y), std::max(e.y1, y + 1),
           e.full + (alpha == 255)};
    }
  }
  return e;
}

}  // namespace

TEST(DrawPen, DotsCoverWholePixels) {
  struct Case {
    NSPoint at;
    double width;
    Extent square;
  };
  const Case cases[] = {
      {{8, 8}, 1, {8, 9, 8, 9, 1}},           {{8.9, 8.2}, 1, {8, 9, 8, 9, 1}},
      {{8, 8}, 2, {7, 9, 7, 9, 4}},           {{8, 8}, 3, {7, 10, 7, 10, 9}},
      {{8.5, 7.99}, 6.7, {5, 11, 4, 10, 36}}, {{8, 8}, 0.9, {}},
  };
  for (const Case& c : cases) {
    const auto square = dotAt<DrawPen>(c.at, c.width, LineCap::square);
    EXPECT_EQ(extentOf(*drawnOn(*square, 0)), c.square) << c.width;
    // A disc of the same size has the same extent, less the corners.
    const auto disc = dotAt<DrawPen>(c.at, c.width, LineCap::round);
    Extent e = extentOf(*drawnOn(*disc, 0));
    EXPECT_LE(e.full, c.square.full);
    e.full = c.square.full;
    EXPECT_EQ(e, c.square) << c.width;
  }
}

TEST(DrawPen, SmallDiscsAreAlwaysSmoothAndTurnWithTheirGradient) {
  const auto disc = dotAt<DrawPen>({8, 8}, 6, LineCap::round);
  disc->setSmooth(false);
  const auto bitmap = drawnOn(*disc, 0);
  EXPECT_GT(alphaAt(*bitmap, 5, 6), 0);
  EXPECT_LT(alphaAt(*bitmap, 5, 6), 255) << "antialiased although the draw is not";
  const auto large = dotAt<DrawPen>({8, 8}, 12, LineCap::round);
  large->setSmooth(false);
  const auto aliased = drawnOn(*large, 0);
  for (int64_t i = 0; i < 256; ++i) {
    const int alpha = alphaAt(*aliased, i % 16, i / 16);
    EXPECT_TRUE(alpha == 0 || alpha == 255);
  }
  disc->setStrokeGradient(
      NSGradient::initWithStartingColor(NSColor::greenColor(), NSColor::redColor()));
  disc->setUseGradualStroke(true);
  const auto green = drawnOn(*disc, 0);
  const uint8_t* p = green->row(8) + 8 * 4;
  EXPECT_EQ(p[0], 0);
  EXPECT_EQ(p[1], 255) << "the colour at the gradient's start";
}

TEST(DrawPen, OtherPathsAreStrokes) {
  const auto pen = made<DrawPen>();
  EXPECT_EQ(pen->bezierPath()->lineCapStyle(), LineCap::round);
  pen->bezierPath()->moveToPoint({4, 8});
  pen->bezierPath()->lineToPoint({12, 8});
  pen->setWidth(4);
  const Extent e = extentOf(*drawnOn(*pen, 0));
  EXPECT_EQ(e.x0, 2);
  EXPECT_EQ(e.x1, 14);
  EXPECT_EQ(e.y0, 6);
  EXPECT_EQ(e.y1, 10);
}

TEST(DrawPen, OldRecordsAreUpgraded) {
  const auto document = madeDocument("brushes");
  struct Case {
    const char* title;
    bool smooth;
    LineCap cap;
    LineJoin join;
  };
  const Case cases[] = {
      {"new", true, LineCap::butt, LineJoin::miter},
      {"old thin line", false, LineCap::round, LineJoin::round},
      {"old line", true, LineCap::round, LineJoin::round},
      {"old thin dot", false, LineCap::square, LineJoin::miter},
      {"old dot", true, LineCap::round, LineJoin::round},
      {"old aliased dot", false, LineCap::square, LineJoin::miter},
      {"old eraser", false, LineCap::round, LineJoin::round},
      {"new eraser", true, LineCap::butt, LineJoin::miter},
  };
  for (const Case& c : cases) {
    const auto draw = drawTitled(*document, c.title);
    EXPECT_EQ(draw->smooth(), c.smooth) << c.title;
    EXPECT_EQ(draw->bezierPath()->lineCapStyle(), c.cap) << c.title;
    EXPECT_EQ(draw->bezierPath()->lineJoinStyle(), c.join) << c.title;
    // Once upgraded it stays as it is.
    const auto again = DrawBase::drawFromEncodedData(DrawBase::encodedData(draw));
    EXPECT_EQ(again->bezierPath()->lineCapStyle(), c.cap) << c.title;
    EXPECT_EQ(again->smooth(), c.smooth) << c.title;
  }
}

TEST(DrawEraser, ErasesAndNothingElse) {
  const auto eraser = made<DrawEraser>();
  EXPECT_TRUE(eraser->locked());
  EXPECT_EQ(eraser->width(), 3);
  eraser->setStrokeColor(NSColor::redColor());
  eraser->setOpacity(70);
  eraser->setUseGradualStroke(true);
  EXPECT_TRUE(eraser->strokeColor()->isEqual(*NSColor::clearColor()));
  EXPECT_EQ(eraser->opacity(), 0U);
  eraser->bezierPath()->moveToPoint({4, 8});
  eraser->bezierPath()->lineToPoint({12, 8});
  eraser->setWidth(4);
  const auto bitmap = drawnOn(*eraser, 200);
  EXPECT_EQ(alphaAt(*bitmap, 8, 6), 0);
  EXPECT_EQ(alphaAt(*bitmap, 8, 9), 0);
  EXPECT_EQ(alphaAt(*bitmap, 8, 5), 200);
  EXPECT_EQ(alphaAt(*bitmap, 8, 10), 200);

  const auto dot = dotAt<DrawEraser>({8, 8}, 3, LineCap::square);
  const auto dotted = drawnOn(*dot, 200);
  for (int64_t i = 0; i < 256; ++i) {
    const int64_t x = i % 16, y = i / 16;
    const bool erased = x >= 7 && x < 10 && y >= 7 && y < 10;
    EXPECT_EQ(alphaAt(*dotted, x, y), erased ? 0 : 200) << x << ", " << y;
  }
}

TEST(DrawEraser, StylesOfOthersDoNotChangeIt) {
  const auto eraser = dotAt<DrawEraser>({8, 8}, 5, LineCap::square);
  const auto pen = made<DrawPen>();
  pen->setStrokeColor(NSColor::redColor());
  pen->setOpacity(70);
  pen->setWidth(9);
  pen->setStrokeGradient(
      NSGradient::initWithStartingColor(NSColor::greenColor(), NSColor::redColor()));
  pen->setUseGradualStroke(true);
  eraser->setDrawAttributes(*pen->drawAttributes());
  EXPECT_TRUE(eraser->strokeColor()->isEqual(*NSColor::clearColor()));
  EXPECT_EQ(eraser->opacity(), 0U);
  EXPECT_EQ(alphaAt(*drawnOn(*eraser, 200), 8, 8), 0);
}

TEST(DrawEraser, ArchivedPaintDoesNotCount) {
  const auto document = madeDocument("brushes");
  for (const char* title : {"new eraser", "eraser of a gradient"}) {
    const auto eraser = drawTitled(*document, title);
    EXPECT_TRUE(eraser->strokeColor()->isEqual(*NSColor::clearColor())) << title;
    eraser->moveByX(-10, -15);
    EXPECT_EQ(alphaAt(*drawnOn(*eraser, 200), 4, 9), 0) << title;
  }
}

TEST(DrawAirbrush, BurstsFillTheDisc) {
  struct Case {
    float width;
    int64_t dots;
  };
  const Case cases[] = {{30, 30}, {31, 33}, {5, 1}, {4, 1}, {100, 334}, {0, 0}, {-30, 0}};
  for (const Case& c : cases) {
    const auto airbrush = made<DrawAirbrush>();
    EXPECT_EQ(airbrush->brushWidth(), 30);
    airbrush->setBrushWidth(c.width);
    const NSPoint at{50, 60};
    const auto burst = airbrush->sprayPathAtPoint(at);
    ASSERT_EQ(burst->elementCount(), 2 * c.dots) << c.width;
    for (int64_t i = 0; i < burst->elementCount(); i += 2) {
      NSPoint from, to;
      burst->elementAtIndex(i, &from);
      burst->elementAtIndex(i + 1, &to);
      EXPECT_EQ(from, to);
      EXPECT_EQ(from, NSMakePoint(std::floor(from.x), std::floor(from.y)));
      EXPECT_LE(std::hypot(from.x - at.x, from.y - at.y), static_cast<double>(c.width) / 2);
    }
  }
  const auto huge = made<DrawAirbrush>();
  huge->setBrushWidth(1e30F);
  EXPECT_LE(huge->sprayPathAtPoint({0, 0})->elementCount(), 200'000);
  huge->setBrushWidth(0.5F);
  EXPECT_EQ(huge->sprayPathAtPoint({0.5, 0.5})->elementCount(), 0) << "no whole position in reach";
}

/// Sprays below and above the size at which they are baked look alike, except that the bitmap has
/// the size of the path's bounds and so lacks the last column and the top row of dots.
TEST(DrawAirbrush, BakedSpraysLookLikeTheirDots) {
  for (const std::string prefix : {"", "translucent "}) {
    const auto dots = madeDocument(prefix + "spray 9998");
    const auto baked = madeDocument(prefix + "spray 10000");
    const auto& dotted = dynamic_cast<const DrawAirbrush&>(*dots->allDraws()[0]);
    const auto& bitmap = dynamic_cast<const DrawAirbrush&>(*baked->allDraws()[0]);
    ASSERT_EQ(dotted.image(), nullptr);
    ASSERT_NE(bitmap.image(), nullptr);
    EXPECT_EQ(bitmap.brushWidth(), 45);
    const NSRect bounds = dotted.pathBounds();
    EXPECT_EQ(bitmap.pathBounds(), bounds);
    EXPECT_EQ(bitmap.image()->size(), bounds.size);
    const auto a = dots->fullImage(), b = baked->fullImage();
    // Saved, the spray is a picture; read back, it looks the same.
    const auto saved =
        PaintManager::paintMgrWithPaintData(baked->paintDataWithResolution(0), nullptr, nullptr);
    ASSERT_NE(saved, nullptr);
    EXPECT_LT(saved->allDraws()[0]->bezierPath()->elementCount(), 10);
    EXPECT_EQ(maxDifference(*saved->fullImage(), *b), 0);
    int painted = 0;
    for (int64_t y = 0; y < static_cast<int64_t>(NSMaxY(bounds)); ++y) {
      for (int64_t x = 0; x < static_cast<int64_t>(NSMaxX(bounds)); ++x) {
        const uint8_t* p = a->row(99 - y) + x * 4;
        const uint8_t* q = b->row(99 - y) + x * 4;
        painted += p[1] != 255;
        for (int channel = 0; channel < 4; ++channel) {
          ASSERT_NEAR(p[channel], q[channel], 1) << prefix << x << ", " << y;
        }
      }
    }
    EXPECT_GT(painted, 1500) << prefix;
  }
}

TEST(DrawAirbrush, BakedSpraysTakeANewColour) {
  const auto document = madeDocument("spray 10000");
  const auto before = document->fullImage()->copy();
  document->allDraws()[0]->setStrokeColor(NSColor::blueColor());
  document->setImageRefreshControl(2);
  const auto after = document->fullImage();
  int recoloured = 0;
  for (int64_t y = 0; y < 100; ++y) {
    for (int64_t x = 0; x < 120; ++x) {
      const uint8_t* p = before->row(y) + x * 4;
      const uint8_t* q = after->row(y) + x * 4;
      ASSERT_EQ(p[0], q[2]);
      ASSERT_EQ(p[2], q[0]);
      recoloured += p[0] != p[2];
    }
  }
  EXPECT_GT(recoloured, 1500);
}

TEST(DrawAirbrush, StoredSpraysAreRead) {
  const auto document = madeDocument("stored sprays");
  for (const char* title : {"picture", "picture beside nonsense"}) {
    const auto draw = drawTitled(*document, title);
    for (const bool again : {false, true}) {
      const auto spray = again ? DrawBase::drawFromEncodedData(DrawBase::encodedData(draw)) : draw;
      const auto bitmap = drawnOn(*spray, 0);
      // The picture's rows from the bottom, in the draw's colour whatever the picture's is.
      const int alphas[2][4] = {{0, 255, 0, 64}, {255, 0, 128, 255}};
      for (int64_t i = 0; i < 256; ++i) {
        const int64_t x = i % 16, y = i / 16;
        const bool inside = x >= 3 && x < 7 && y >= 5 && y < 7;
        const int alpha = inside ? alphas[y - 5][x - 3] : 0;
        const auto level = static_cast<uint8_t>(alpha);
        EXPECT_EQ(pixelAt(*bitmap, x, 15 - y), (Pixel{0, 0, level, level})) << x << ", " << y;
      }
    }
    draw->setEnableStroke(false);
    EXPECT_EQ(alphaAt(*drawnOn(*draw, 0), 6, 5), 64) << "only dots are strokes";
    draw->setOpacity(50);
    draw->setRotateDegree(180);
    const auto turned = drawnOn(*draw, 0);
    EXPECT_NEAR(alphaAt(*turned, 3, 6), 32, 1);
    EXPECT_NEAR(alphaAt(*turned, 6, 5), 128, 1);
  }
  const auto lost = drawTitled(*document, "nonsense");
  EXPECT_EQ(dynamic_cast<const DrawAirbrush&>(*lost).image(), nullptr);
  EXPECT_EQ(extentOf(*drawnOn(*lost, 0)), (Extent{3, 8, 5, 8, 12})) << "the path is stroked";
}

TEST(DrawAirbrush, WhatCannotBeBakedStaysAPath) {
  const auto airbrush = made<DrawAirbrush>();
  for (int i = 0; i < 5000; ++i) {
    airbrush->bezierPath()->moveToPoint({5, 7});
    airbrush->bezierPath()->lineToPoint({5, 7});
  }
  airbrush->replaceBezierPathWithImageIfPossible();
  EXPECT_EQ(airbrush->image(), nullptr) << "its bounds are empty";
  EXPECT_EQ(airbrush->bezierPath()->elementCount(), 10000);
  airbrush->bezierPath()->lineToPoint({1e9, 1e9});
  airbrush->replaceBezierPathWithImageIfPossible();
  EXPECT_EQ(airbrush->image(), nullptr) << "no bitmap is that large";
}
