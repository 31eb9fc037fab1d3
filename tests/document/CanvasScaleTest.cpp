// The canvas composed at a scale, smaller and larger.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "document/PaintManager.h"
#include "draw/raster/DrawBrushes.h"
#include "draw/raster/DrawFill.h"
#include "draw/raster/ImageMask.h"
#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectShape.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/Draws.h"
#include "support/RandomDraws.h"

TEST(CanvasScale, OfWhatIsNoScaleThereIsNothing) {
  const auto document = madeDocument("all classes");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double scale : {0.0, -1.0, nan, 1e308, 1e-308, double{INFINITY}, 1e5}) {
    EXPECT_EQ(document->composedImage(scale), nullptr) << scale;
    EXPECT_EQ(document->composedImage(NSMakeRect(3, 3, 1e-3, 1e-3), scale) != nullptr, scale == 1e5)
        << scale;
  }
  EXPECT_EQ(document->composedImage(NSMakeRect(-9, 0, 9, 9), 2), nullptr);
  EXPECT_EQ(document->composedImage(PaintManager::kSmallestScale)->size(), NSMakeSize(1, 1));
  EXPECT_EQ(madeDocument("largest canvas")->composedImage(2), nullptr);
}

// ---- Parts.

TEST(CanvasScale, PartsAtAScaleAreThoseOfTheWhole) {
  std::vector<std::shared_ptr<PaintManager>> documents;
  for (const char* name : {"pictures", "text boxes", "curved text", "fills", "brushes",
                           "stored sprays", "filters", "sheets/shadows", "sheets/reflections"}) {
    documents.push_back(madeDocument(name));
  }
  for (unsigned seed = 1; seed <= 40; ++seed) documents.push_back(randomDocument(seed, 0.04));
  for (size_t i = 0; i < documents.size(); ++i) {
    PaintManager& document = *documents[i];
    const double scale = std::array{1.0 / 3, 0.58, 2.0, 1.7}[i % 4];
    const auto whole = document.composedImage(scale);
    constexpr int64_t kSide = 41;
    for (int64_t y = 0; y < whole->pixelsHigh(); y += kSide) {
      for (int64_t x = 0; x < whole->pixelsWide(); x += kSide) {
        const int64_t width = std::min(kSide, whole->pixelsWide() - x);
        const int64_t height = std::min(kSide, whole->pixelsHigh() - y);
        const auto units = [scale](int64_t pixels) { return static_cast<double>(pixels) / scale; };
        const double bottom = document.size().height - units(y + height);
        const auto part = document.composedImage(
            NSMakeRect(units(x), bottom, units(width), units(height)), scale);
        ASSERT_NE(part, nullptr) << i;
        ASSERT_EQ(part->size(), NSMakeSize(static_cast<double>(width), static_cast<double>(height)))
            << i << " at " << scale;
        for (int64_t row = 0; row < height; ++row) {
          ASSERT_EQ(std::memcmp(part->row(row), whole->row(y + row) + x * 4, part->bytesPerRow()),
                    0)
              << "document " << i << " at " << scale << ", row " << y + row << " from column " << x;
        }
      }
    }
  }
}

// ---- What is made of canvas pixels.

namespace {

/// Draws without antialiasing: strokes of several widths, an eraser, fills, a spray, a cleared
/// area.
std::shared_ptr<PaintManager> coarseDocument(unsigned seed) {
  RandomDraws random(seed, 60);
  const auto at = [&] { return NSMakePoint(random.below(600) / 10.0, random.below(600) / 10.0); };
  const auto rect = [&] {
    const NSPoint origin = at();
    const double width = 5 + random.below(300) / 10.0;
    return NSRect{origin, {width, 4 + random.below(200) / 10.0}};
  };
  auto document = PaintManager::initWithSize({60, 60});
  const auto add = [&](const std::shared_ptr<DrawBase>& draw) {
    draw->setSmooth(false);
    draw->setStrokeColor(NSColor::colorWithCalibratedRed(0, 0.2, 0.4, 1));
    draw->setFillColor(NSColor::colorWithCalibratedRed(0.8, 0.4, 0, 1));
    draw->setEnableFill(true);
    draw->setEnableStroke(true);
    document->addDraw(draw);
  };
  for (int i = 0; i < 3; ++i) {
    auto ellipse = made<DrawEllipse>();
    ellipse->setBezierPathWithBounds(rect());
    ellipse->setLineWidth(random.below(4));
    if (random.oneIn(2)) ellipse->setRotateDegree(30);
    add(ellipse);
  }
  for (const bool erases : {false, true}) {
    const std::shared_ptr<DrawPen> pen = erases ? made<DrawEraser>() : made<DrawPen>();
    pen->setLineWidth(1 + random.below(5));
    const NSPoint start = at(), c1 = at(), c2 = at();
    pen->bezierPath()->moveToPoint(start);
    pen->bezierPath()->curveToPoint(at(), c1, c2);
    add(pen);
  }
  auto spray = made<DrawAirbrush>();
  for (int i = 0; i < 60; ++i) {
    const NSPoint dot = at();
    spray->bezierPath()->moveToPoint(dot);
    spray->bezierPath()->lineToPoint(dot);
  }
  add(spray);
  // Even sides, so that a quarter turn leaves pixels on pixels.
  const NSPoint corner = at();
  const NSRect area = NSMakeRect(std::floor(corner.x), std::floor(corner.y),
                                 6 + 2 * random.below(12), 4 + 2 * random.below(9));
  std::vector<uint8_t> bytes(static_cast<size_t>(area.size.width * area.size.height));
  for (uint8_t& byte : bytes) byte = random.below(3) != 0;
  const auto mask = [&] {
    return ImageMask::initWithData(
        bytes, static_cast<int64_t>(area.origin.x), static_cast<int64_t>(area.origin.y),
        static_cast<int64_t>(area.size.width), static_cast<int64_t>(area.size.height));
  };
  add(DrawFill::initWithImageMask(mask()));
  const auto turned = DrawFill::initWithImageMask(mask());
  turned->setRotateDegree(90);
  add(turned);
  return document;
}

}  // namespace

TEST(CanvasScale, WithoutAntialiasingPixelsAreRepeated) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const auto document = coarseDocument(seed);
    const auto own = document->composedImage();
    const auto larger = document->composedImage(3);
    for (int64_t y = 0; y < larger->pixelsHigh(); ++y) {
      for (int64_t x = 0; x < larger->pixelsWide(); ++x) {
        ASSERT_EQ(pixelAt(*larger, x, y), pixelAt(*own, x / 3, y / 3))
            << "seed " << seed << ": " << x << ", " << y;
      }
    }
  }
}

TEST(CanvasScale, WithoutAntialiasingPixelsAreAveraged) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const auto all = coarseDocument(seed);
    // Where one thing is painted once, coverage is all that there is to it.
    auto document = PaintManager::initWithSize({60, 60});
    document->addDraw(all->allDraws()[3 + seed % (all->allDraws().size() - 3)]);
    document->setBackgroundColor(NSColor::whiteColor());
    const auto own = document->composedImage();
    const auto smaller = document->composedImage(1.0 / 4);
    for (int64_t y = 0; y < 15; ++y) {
      for (int64_t x = 0; x < 15; ++x) {
        for (size_t c = 0; c < 4; ++c) {
          double mean = 0;
          for (int64_t i = 0; i < 16; ++i)
            mean += pixelAt(*own, 4 * x + i % 4, 4 * y + i / 4)[c] / 16.0;
          ASSERT_NEAR(pixelAt(*smaller, x, y)[c], mean, 2)
              << document->toppestDraw()->className() << " of seed " << seed << ": " << x << ", "
              << y;
        }
      }
    }
  }
}

// ---- Larger canvases.

namespace {

/// Draws that snap to nothing, on a canvas of so many times 200 x 150: even widths, whole
/// coordinates, antialiased.
std::vector<std::shared_ptr<DrawBase>> smoothDraws(double unit) {
  const auto red = NSColor::colorWithCalibratedRed(0.9, 0.1, 0.1, 1);
  const auto blue = NSColor::colorWithCalibratedRed(0.1, 0.2, 0.9, 0.5);
  const auto rect = [unit](double x, double y, double w, double h) {
    return NSMakeRect(x * unit, y * unit, w * unit, h * unit);
  };
  const auto point = [unit](double x, double y) { return NSMakePoint(x * unit, y * unit); };
  std::vector<std::shared_ptr<DrawBase>> draws;
  const auto add = [&](const auto& draw, double width) {
    draw->setEnableStroke(true);
    draw->setStrokeColor(blue);
    draw->setLineWidth(width * unit);
    draw->setEnableFill(true);
    draw->setFillColor(red);
    draws.push_back(draw);
    return draw;
  };
  auto star = made<DrawRectStar>();
  star->setBezierPathWithBounds(rect(10, 20, 80, 60));
  add(star, 4)->setRotateDegree(33);
  auto ellipse = made<DrawEllipse>();
  ellipse->setBezierPathWithBounds(rect(40, 30, 90, 70));
  add(ellipse, 6)->setShadow(shadow({5 * unit, -7 * unit}, 6 * unit, blue));
  ellipse->setEnableShadow(true);
  ellipse->setEnableInnerShadow(true);
  ellipse->setInnerShadow(shadow({-3 * unit, 4 * unit}, 0, NSColor::blackColor()));
  auto crisp = made<DrawRectangle>();
  crisp->setBezierPathWithBounds(rect(100, 20, 60, 40));
  add(crisp, 2)->setShadow(shadow({-9 * unit, 3 * unit}, 0, blue));
  crisp->setEnableShadow(true);
  crisp->setLineDashStyle("3:2");
  auto reflected = made<DrawEllipse>();
  reflected->setBezierPathWithBounds(rect(60, 80, 50, 40));
  add(reflected, 2)->setEnableReflection(true);
  reflected->setReflection(0.6F);
  reflected->setReflectionDis(static_cast<float>(4 * unit));
  reflected->setUseGradualFill(true);
  reflected->setFillGradient(NSGradient::initWithStartingColor(red, blue));
  reflected->setFillGradientDegree(40);
  auto arrow = made<DrawCurve>();
  arrow->setStartPoint(point(20, 120), point(60, 150), point(120, 60), point(180, 130));
  arrow->setArrowStyle(2);
  add(arrow, 4)->setEnableStrokeOutline(true);
  arrow->setStrokeOutlineColor(NSColor::blackColor());
  arrow->setStrokeOutlineWidth(static_cast<float>(2 * unit));
  auto curve = made<DrawBezierPath>();
  curve->bezierPath()->moveToPoint(point(10, 10));
  curve->bezierPath()->curveToPoint(point(190, 20), point(80, 90), point(90, -40));
  add(curve, 8)->setUseGradualStroke(true);
  curve->setStrokeGradient(NSGradient::initWithStartingColor(blue, red));
  curve->setOpacity(70);
  return draws;
}

}  // namespace

TEST(CanvasScale, EnlargedIsTheDocumentWrittenLarger) {
  for (const double scale : {2.0, 3.0}) {
    const auto own = smoothDraws(1), larger = smoothDraws(scale);
    for (size_t i = 0; i < own.size(); ++i) {
      const auto document = PaintManager::initWithSize({200, 150});
      document->addDraw(own[i]);
      const auto written = PaintManager::initWithSize({200 * scale, 150 * scale});
      written->addDraw(larger[i]);
      const auto enlarged = document->composedImage(scale);
      // A point halfway between lines of the grid may snap to either; strokes of draws with a
      // shadow are painted twice.
      EXPECT_LE(maxDifference(*enlarged, *written->composedImage()), 2)
          << own[i]->className() << " at " << scale;
    }
  }
}

TEST(CanvasScale, WhatSnapsDoesSoOnTheCanvas) {
  struct Case {
    std::string what;
    std::shared_ptr<DrawBase> draw;
    int64_t x0, y0, x1, y1;  ///< painted box on a canvas of 40 x 40, rows from the top
  };
  const auto black = NSColor::blackColor();
  std::vector<Case> cases;
  const auto add = [&](const std::string& what, const auto& draw, int64_t x0, int64_t y0,
                       int64_t x1, int64_t y1) {
    draw->setEnableStroke(true);
    draw->setStrokeColor(black);
    cases.push_back({what, draw, x0, y0, x1, y1});
  };
  auto odd = made<DrawLine>();
  odd->setStartPoint({9.5, 10}, {29.5, 10});
  odd->setLineWidth(1);
  add("odd width", odd, 10, 29, 30, 30);
  auto dot = made<DrawPen>();
  dot->bezierPath()->moveToPoint({20.7, 10.2});
  dot->bezierPath()->lineToPoint({20.7, 10.2});
  dot->bezierPath()->setLineCapStyle(LineCap::square);
  dot->setLineWidth(5);
  add("dot", dot, 18, 27, 23, 32);
  auto hairline = made<DrawLine>();
  hairline->setStartPoint({10, 10.5}, {30, 10.5});
  hairline->setLineWidth(0);
  add("width 0", hairline, 10, 29, 30, 30);
  for (const Case& c : cases) {
    const auto document = PaintManager::initWithSize({40, 40});
    document->addDraw(c.draw);
    for (const int64_t scale : {1, 2, 5}) {
      const auto image = document->composedImage(static_cast<double>(scale));
      int64_t wrong = 0;
      for (int64_t y = 0; y < 40 * scale; ++y) {
        for (int64_t x = 0; x < 40 * scale; ++x) {
          const bool inside =
              x >= c.x0 * scale && x < c.x1 * scale && y >= c.y0 * scale && y < c.y1 * scale;
          wrong += pixelAt(*image, x, y)[3] != (inside ? 255 : 0);
        }
      }
      EXPECT_EQ(wrong, 0) << c.what << " at " << scale;
    }
  }
}
