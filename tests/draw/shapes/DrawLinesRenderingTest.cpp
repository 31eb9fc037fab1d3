// Lines, curves, polylines and free paths at points worked out by hand, on a canvas of 100 x 100.
#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "draw/shapes/DrawLines.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "support/Bitmaps.h"

namespace {

constexpr Pixel kClear = {0, 0, 0, 0};
constexpr Pixel kRed = {255, 0, 0, 255};
constexpr Pixel kGreen = {0, 255, 0, 255};
constexpr Pixel kBlue = {0, 0, 255, 255};

/// A red stroke; the green fill shows where the kind of draw is filled at all.
template <class Draw>
std::shared_ptr<Draw> made(CGFloat width) {
  auto draw = std::make_shared<Draw>();
  draw->init();
  draw->setStrokeColor(NSColor::redColor());
  draw->setLineWidth(width);
  draw->setEnableFill(true);
  draw->setFillColor(NSColor::greenColor());
  return draw;
}

template <class Draw>
std::shared_ptr<Draw> through(std::initializer_list<NSPoint> points, CGFloat width) {
  auto draw = made<Draw>(width);
  for (const NSPoint& p : points) {
    if (draw->bezierPath()->isEmpty()) {
      draw->bezierPath()->moveToPoint(p);
    } else {
      draw->bezierPath()->lineToPoint(p);
    }
  }
  return draw;
}

std::shared_ptr<NSBitmapImageRep> drawn(DrawBase& draw) {
  auto bitmap = NSBitmapImageRep::create(100, 100);
  const ZTFocusScope focus(bitmap);
  draw.draw();
  return bitmap;
}

struct Probe {
  int64_t x, y;
  Pixel expected;
};

/// The pixels whose lower left corners are given.
void expectPixels(DrawBase& draw, std::initializer_list<Probe> probes, const char* what) {
  const auto bitmap = drawn(draw);
  for (const Probe& p : probes) {
    EXPECT_EQ(pixelAt(*bitmap, p.x, 99 - p.y), p.expected) << what << " " << p.x << ", " << p.y;
  }
}

constexpr std::initializer_list<NSPoint> kHook = {{20, 20}, {80, 20}, {80, 80}};

}  // namespace

TEST(DrawLinesRendering, OpenDrawsAreStrokedAndNeverFilled) {
  // Butt ends at x = 20 and y = 80; the bevel runs from (80, 15) to (85, 20).
  const std::initializer_list<Probe> open = {{20, 24, kRed},   {19, 20, kClear}, {81, 18, kRed},
                                             {82, 16, kClear}, {84, 79, kRed},   {80, 80, kClear},
                                             {70, 30, kClear}, {50, 25, kClear}};
  expectPixels(*through<DrawBrokenLine>(kHook, 10), open, "polyline");
  expectPixels(*through<DrawBezierPath>(kHook, 10), open, "open path");
  const auto line = made<DrawLine>(10);
  line->setStartPoint({20, 20}, {20, 80});
  expectPixels(*line, {{15, 20, kRed}, {24, 79, kRed}, {14, 50, kClear}, {20, 80, kClear}}, "line");
}

TEST(DrawLinesRendering, ClosedDrawsAreFilled) {
  const auto polygon = through<DrawFreePolygon>(kHook, 10);
  polygon->bezierPath()->closePath();
  // The round corner at (80, 20) reaches 5 far: all of the pixel at (82, 17), none of (84, 16).
  const std::initializer_list<Probe> round = {
      {82, 17, kRed}, {84, 16, kClear}, {70, 35, kGreen}, {50, 49, kRed}, {50, 70, kClear}};
  expectPixels(*polygon, round, "free polygon");
  const auto path = through<DrawBezierPath>(kHook, 10);
  path->bezierPath()->closePath();
  expectPixels(*path, {{82, 16, kClear}, {70, 35, kGreen}, {50, 49, kRed}}, "closed path");
  path->setEnableFill(false);
  expectPixels(*path, {{70, 35, kClear}, {50, 49, kRed}}, "fill off");

  // Without a closing line the polygon's side is filled up to, not stroked.
  expectPixels(*through<DrawFreePolygon>(kHook, 10),
               {{70, 35, kGreen}, {52, 50, kGreen}, {48, 52, kClear}}, "open polygon");
}

TEST(DrawLinesRendering, ACurveIsItsCubic) {
  // From (10, 20) over (10, 80) and (90, 80) to (90, 20): half way it is at (50, 65).
  const auto curve = made<DrawCurve>(4);
  curve->setStartPoint({10, 20}, {10, 80}, {90, 80}, {90, 20});
  expectPixels(*curve,
               {{50, 64, kRed},
                {50, 65, kRed},
                {50, 61, kClear},
                {50, 68, kClear},
                {9, 21, kRed},
                {9, 19, kClear},
                {50, 40, kClear}},
               "curve");

  // A head of 16 by 13.86 at each end, pointing down as the curve does there. The curve stays as it
  // is; the tips lie beyond its ends, at y = 10.76, the bases at 24.62.
  curve->setArrowStyle(2);
  const auto bitmap = drawn(*curve);
  const auto at = [&](int64_t x, int64_t y) { return pixelAt(*bitmap, x, 99 - y); };
  EXPECT_EQ(at(90, 14), kRed) << "near the tip";
  EXPECT_EQ(at(90, 9), kClear) << "below it";
  EXPECT_EQ(at(87, 13), kClear) << "beside it";
  EXPECT_EQ(at(84, 23), kRed) << "near the base";
  EXPECT_EQ(at(84, 25), kClear) << "above it";
  const auto mirrored =
      makeBitmap(100, 100, [&](int64_t x, int64_t y) { return pixelAt(*bitmap, 99 - x, y); });
  EXPECT_LE(maxDifference(*bitmap, *mirrored), 2);
}

TEST(DrawLinesRendering, AnyOtherStyleIsAHeadAtTheEnd) {
  const auto line = made<DrawLine>(4);
  line->setStartPoint({10, 50}, {90, 50});
  for (const int64_t style : {1, 3, -1, 1000}) {
    line->setArrowStyle(style);
    expectPixels(*line, {{78, 55, kRed}, {12, 56, kClear}, {11, 50, kRed}}, "end only");
  }
  line->setArrowStyle(2);
  expectPixels(*line, {{78, 55, kRed}, {21, 55, kRed}, {10, 55, kClear}}, "both ends");
  line->setEnableStroke(false);
  EXPECT_TRUE(drawn(*line)->usedRows().empty());
}

TEST(DrawLinesRendering, DashesGoOnAroundCorners) {
  // Marks of 8 and gaps of 4; the corner lies 21 from the start, in the gap from 20 to 24.
  const auto line = through<DrawBrokenLine>({{10, 10}, {31, 10}, {31, 60}}, 4);
  line->setLineDashStyle("2:1");
  expectPixels(*line,
               {{10, 10, kRed},
                {17, 8, kRed},
                {19, 10, kClear},
                {23, 10, kRed},
                {30, 11, kClear},
                {31, 14, kRed},
                {31, 20, kRed},
                {31, 22, kClear},
                {31, 26, kRed}},
               "dashes");
}

TEST(DrawLinesRendering, OutlinesSurroundLinesAndHeads) {
  const auto outline = [](DrawBase& draw) {
    draw.setEnableStrokeOutline(true);
    draw.setStrokeOutlineWidth(3);
    draw.setStrokeOutlineColor(NSColor::blueColor());
  };
  const auto polyline = through<DrawBrokenLine>(kHook, 10);
  outline(*polyline);
  expectPixels(
      *polyline,
      {{50, 24, kRed}, {50, 26, kBlue}, {50, 29, kClear}, {86, 50, kBlue}, {17, 20, kBlue}},
      "polyline");
  const auto path = through<DrawBezierPath>(kHook, 10);
  outline(*path);
  expectPixels(*path, {{50, 26, kBlue}}, "open path");
  path->bezierPath()->closePath();
  expectPixels(*path, {{50, 13, kClear}, {50, 26, kGreen}}, "closed paths have none");

  const auto arrow = made<DrawLine>(4);
  arrow->setStartPoint({10, 50}, {90, 50});
  arrow->setArrowStyle(1);
  outline(*arrow);
  expectPixels(
      *arrow, {{78, 55, kRed}, {74, 56, kBlue}, {78, 58, kBlue}, {71, 56, kClear}, {40, 53, kBlue}},
      "arrow");
}

TEST(DrawLinesRendering, GradientsRunAcrossTheWholeStroke) {
  const auto line = through<DrawBrokenLine>(kHook, 10);
  line->setUseGradualStroke(true);
  line->setStrokeGradient(
      NSGradient::initWithStartingColor(NSColor::redColor(), NSColor::blueColor()));
  line->setStrokeGradientDegree(0);
  const auto bitmap = drawn(*line);
  // The stroke reaches from x = 20 to x = 85.
  for (const int64_t x : {20, 40, 60, 81}) {
    const int blue = static_cast<int>((static_cast<double>(x) + 0.5 - 20) / 65 * 255);
    const Pixel p = pixelAt(*bitmap, x, 99 - 18);
    EXPECT_NEAR(p[2], blue, 3) << x;
    EXPECT_NEAR(p[0], 255 - blue, 3) << x;
    EXPECT_EQ(p[3], 255);
  }
  EXPECT_EQ(pixelAt(*bitmap, 60, 40), kClear);
}
