#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/foundation/Limits.h"
#include "platform/graphics/pixels/coverage/CoverageRaster.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"
#include "platform/graphics/pixels/coverage/Shapes.h"

namespace {

using shapes::addCircle;
using shapes::circle;
using shapes::polygon;
using shapes::Turn;

constexpr CGAffineTransform kIdentity;

CoverageRaster fill(const PathData& path, const PixelBox& box,
                    WindingRule winding = WindingRule::nonZero,
                    Antialias antialias = Antialias::on) {
  CoverageRaster raster(box);
  PathRenderer().fillPath(path, winding, kIdentity, antialias, ClipRegion(box), raster);
  return raster;
}

/// A convex polygon by its corners.
using Polygon = std::vector<NSPoint>;

/// The part of `polygon` where a x + b y <= c (Sutherland and Hodgman).
Polygon halfPlane(const Polygon& polygon, double a, double b, double c) {
  Polygon out;
  for (size_t i = 0; i < polygon.size(); ++i) {
    const NSPoint p = polygon[i];
    const NSPoint q = polygon[(i + 1) % polygon.size()];
    const double dp = a * p.x + b * p.y - c;
    const double dq = a * q.x + b * q.y - c;
    if (dp <= 0) out.push_back(p);
    if ((dp < 0 && dq > 0) || (dp > 0 && dq < 0)) {
      const double t = dp / (dp - dq);
      out.push_back({p.x + t * (q.x - p.x), p.y + t * (q.y - p.y)});
    }
  }
  return out;
}

double areaInPixel(Polygon p, int x, int y) {
  p = halfPlane(p, -1, 0, -x);
  p = halfPlane(p, 1, 0, x + 1);
  p = halfPlane(p, 0, -1, -y);
  p = halfPlane(p, 0, 1, y + 1);
  double twice = 0;
  for (size_t i = 0; i < p.size(); ++i) {
    const NSPoint a = p[i];
    const NSPoint b = p[(i + 1) % p.size()];
    twice += a.x * b.y - b.x * a.y;
  }
  return std::abs(twice) / 2;
}

/// Area of a circle's disc.
double disc(double r) {
  return M_PI * r * r;
}

TEST(Fill, CoverageOfSlantedQuadsIsTheirAreaInEachPixel) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> angle(0, 2 * M_PI), size(2, 14), centre(14, 18);
  double worst = 0, squares = 0;
  int edgePixels = 0;
  for (int i = 0; i < 200; ++i) {
    const double a = angle(random), w = size(random), h = size(random);
    const NSPoint c{centre(random), centre(random)};
    const NSPoint u{w * std::cos(a), w * std::sin(a)}, v{-h * std::sin(a), h * std::cos(a)};
    const Polygon quad{{c.x - u.x - v.x, c.y - u.y - v.y},
                       {c.x + u.x - v.x, c.y + u.y - v.y},
                       {c.x + u.x + v.x, c.y + u.y + v.y},
                       {c.x - u.x + v.x, c.y - u.y + v.y}};
    const CoverageRaster raster =
        fill(polygon({quad[0], quad[1], quad[2], quad[3]}), {-10, -10, 50, 50});
    for (int y = -10; y < 50; ++y) {
      for (int x = -10; x < 50; ++x) {
        const double exact = areaInPixel(quad, x, y);
        const double error = std::abs(raster.at(x, y) / 255.0 - exact);
        worst = std::max(worst, error);
        if (exact > 0 && exact < 1) {
          squares += error * error;
          ++edgePixels;
        }
      }
    }
  }
  EXPECT_LE(worst, 0.0088);
  EXPECT_LE(std::sqrt(squares / edgePixels), 0.0037);
}

TEST(Fill, AreasByWindingRule) {
  PathData ring = circle({40, 40}, 30);
  addCircle(ring, {40, 40}, 15);
  PathData opposed = circle({40, 40}, 30);
  addCircle(opposed, {40, 40}, 15, Turn::right);
  const PixelBox box{0, 0, 80, 80};
  const double outer = disc(30), between = disc(30) - disc(15);
  EXPECT_NEAR(fill(ring, box).area(), outer, 0.001 * outer);
  EXPECT_NEAR(fill(ring, box, WindingRule::evenOdd).area(), between, 0.001 * between);
  EXPECT_NEAR(fill(opposed, box).area(), between, 0.001 * between);
  EXPECT_NEAR(fill(opposed, box, WindingRule::evenOdd).area(), between, 0.001 * between);
}

TEST(Fill, ReversedShapesGiveTheSameBytes) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> at(-20, 120);
  for (int i = 0; i < 100; ++i) {
    PathData forward, backward;
    const NSPoint p[6] = {{at(random), at(random)}, {at(random), at(random)},
                          {at(random), at(random)}, {at(random), at(random)},
                          {at(random), at(random)}, {at(random), at(random)}};
    forward.move(p[0]);
    forward.cubic(p[1], p[2], p[3]);
    forward.line(p[4]);
    forward.line(p[5]);
    forward.close();
    backward.move(p[5]);
    backward.line(p[4]);
    backward.line(p[3]);
    backward.cubic(p[2], p[1], p[0]);
    for (const WindingRule rule : {WindingRule::nonZero, WindingRule::evenOdd}) {
      for (const Antialias antialias : {Antialias::on, Antialias::off}) {
        EXPECT_EQ(fill(forward, {0, 0, 100, 100}, rule, antialias).covers(),
                  fill(backward, {0, 0, 100, 100}, rule, antialias).covers());
      }
    }
  }
}

TEST(Fill, EveryTouchedPixelWithoutAntialiasing) {
  const PixelBox box{0, 0, 60, 60};
  for (const Turn turn : {Turn::left, Turn::right}) {
    EXPECT_EQ(
        fill(circle({30, 30}, 20, turn), box, WindingRule::nonZero, Antialias::off).touchedPixels(),
        1324u);
  }
  const struct {
    double x, side;
    size_t pixels;
  } squares[] = {
      {10, 10, 100},                          // on the pixel grid
      {10 - 1.0 / 256, 11 + 2.0 / 256, 169},  // over it by the smallest step on all sides
      {10.001, 10, 100},                      // less than half a step over it is noise
      {10.5, 1, 4},
      {10.25, 0.5, 1},
  };
  for (const auto& s : squares) {
    PathData path = shapes::rectangle(s.x, s.x, s.side, s.side);
    EXPECT_EQ(fill(path, box, WindingRule::nonZero, Antialias::off).touchedPixels(), s.pixels);
    path.line({s.x, s.x});  // no longer recognised as a rectangle
    EXPECT_EQ(fill(path, box, WindingRule::nonZero, Antialias::off).touchedPixels(), s.pixels);
  }
}

/// The same shape through the general way: a lone point after the rectangle.
PathData notRecognised(PathData rectangle) {
  rectangle.line(rectangle.points[0]);
  return rectangle;
}

TEST(Fill, RectanglesMatchTheScanConverter) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> at(-5, 45);
  std::uniform_int_distribution<int> kind(0, 3);
  for (int i = 0; i < 300; ++i) {
    NSRect r = NSMakeRect(at(random), at(random), at(random), at(random));
    if (kind(random) == 0) r = NSIntegralRect(r);
    if (kind(random) == 0) r.size.width = 0.01 * at(random);
    const PathData path = shapes::rectangle(NSMinX(r), NSMinY(r), NSWidth(r), NSHeight(r));
    for (const Antialias antialias : {Antialias::on, Antialias::off}) {
      EXPECT_EQ(fill(path, {0, 0, 40, 40}, WindingRule::nonZero, antialias).covers(),
                fill(notRecognised(path), {0, 0, 40, 40}, WindingRule::nonZero, antialias).covers())
          << NSStringFromRect(r);
    }
  }
}

TEST(Fill, RectangleRunsAreConstant) {
  const CoverageRaster whole = fill(shapes::rectangle(3, 4, 20, 10), {0, 0, 40, 40});
  EXPECT_EQ(whole.runCount(), 10u);
  EXPECT_EQ(whole.area(), 200);
  const CoverageRaster cut = fill(shapes::rectangle(3.5, 4.25, 20, 10), {0, 0, 40, 40});
  EXPECT_EQ(cut.at(3, 4), 96);    // 0.5 x 0.75 x 255 = 95.6
  EXPECT_EQ(cut.at(10, 4), 191);  // 0.75 x 255 = 191.25
  EXPECT_EQ(cut.at(23, 14), 32);  // 0.5 x 0.25 x 255 = 31.9
  EXPECT_EQ(cut.at(24, 8), 0);
}

TEST(Fill, WideSlantedShapesKeepTheirArea) {
  for (const double width : {20000.0, 32768.0, 39000.0, 150000.0}) {
    const PathData path = polygon({{100, 5}, {100 + width, 12}, {100 + width, 22}, {100, 15}});
    const PixelBox box{0, 0, static_cast<int32_t>(width) + 200, 30};
    for (const WindingRule rule : {WindingRule::nonZero, WindingRule::evenOdd}) {
      EXPECT_NEAR(fill(path, box, rule).area(), width * 10, width * 0.01) << width;
    }
  }
  const CoverageRaster far = fill(shapes::rectangle(33000, 0, 7000, 3), {0, 0, 40000, 4});
  EXPECT_EQ(far.area(), 21000);
  EXPECT_EQ(far.at(33000, 0), 255);
  EXPECT_EQ(far.at(32999, 0), 0);
}

TEST(Fill, WhatIsDrawnDoesNotDependOnTheClipBox) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> at(-300, 700);
  PathData path;
  path.move({at(random), at(random)});
  for (int i = 0; i < 60; ++i) {
    path.cubic({at(random), at(random)}, {at(random), at(random)}, {at(random), at(random)});
    path.line({at(random), at(random)});
  }
  for (const WindingRule rule : {WindingRule::nonZero, WindingRule::evenOdd}) {
    const CoverageRaster whole = fill(path, {-400, -400, 800, 800}, rule);
    for (const PixelBox& box : {PixelBox{0, 0, 400, 400}, PixelBox{17, 33, 80, 50},
                                PixelBox{-7, 300, 500, 301}, PixelBox{399, -5, 400, 600}}) {
      const CoverageRaster part = fill(path, box, rule);
      for (int32_t y = box.y0; y < box.y1; ++y) {
        for (int32_t x = box.x0; x < box.x1; ++x) {
          ASSERT_EQ(part.at(x, y), whole.at(x, y)) << x << ", " << y;
        }
      }
    }
  }
}

TEST(Fill, ManyOverlappingShapesStayOpaque) {
  PathData circles;
  for (int i = 0; i < 400; ++i) addCircle(circles, {50 + 0.01 * i, 50}, 30);
  const CoverageRaster raster = fill(circles, {0, 0, 110, 100});
  EXPECT_EQ(raster.at(50, 50), 255);
  EXPECT_EQ(raster.at(78, 50), 255);
  EXPECT_EQ(raster.at(5, 5), 0);
}

TEST(Fill, SumsOfHundredsOfThousandsOfEdgesDoNotOverflow) {
  // Enough equal rectangles to wrap a 32-bit sum of areas back to zero.
  PathData path;
  for (int i = 0; i < 32768; ++i) {
    path.move({1, 1});
    path.line({9, 1});
    path.line({9, 9});
    path.line({1, 9});
    path.close();
  }
  EXPECT_EQ(fill(path, {0, 0, 10, 10}).area(), 64);
  EXPECT_EQ(fill(path, {0, 0, 10, 10}, WindingRule::evenOdd).area(), 0);
}

TEST(Fill, SubpathsAndMissingMoves) {
  PathData lone;
  lone.move({5, 5});
  EXPECT_EQ(fill(lone, {0, 0, 20, 20}).touchedPixels(), 0u);

  PathData triangles;  // the second starts where the first was closed
  triangles.move({2, 2});
  triangles.line({10, 2});
  triangles.line({2, 10});
  triangles.close();
  triangles.line({0, 2});
  triangles.line({0, 18});
  triangles.move({0, 0});
  EXPECT_NEAR(fill(triangles, {0, 0, 20, 20}).area(), 32 + 16, 0.1);

  PathData noMove;  // the first line only sets the current point
  noMove.line({2, 2});
  noMove.line({10, 2});
  noMove.line({10, 10});
  EXPECT_NEAR(fill(noMove, {0, 0, 20, 20}).area(), 32, 0.05);

  PathData short_;
  short_.verbs = {PathVerb::move, PathVerb::line, PathVerb::line, PathVerb::cubic};
  short_.points = {{0, 0}, {9, 0}, {9, 9}, {1, 1}};
  EXPECT_EQ(fill(short_, {0, 0, 20, 20}).touchedPixels(), 0u);
}

TEST(Fill, QuadsAreTheirCubics) {
  PathData quad, cubic;
  quad.move({0, 0});
  quad.quad({30, 60}, {60, 0});
  cubic.move({0, 0});
  cubic.cubic({20, 40}, {40, 40}, {60, 0});
  EXPECT_EQ(fill(quad, {0, 0, 60, 60}).covers(), fill(cubic, {0, 0, 60, 60}).covers());
  EXPECT_NEAR(fill(quad, {0, 0, 60, 60}).area(), 1200, 1);  // two thirds of base x height
}

TEST(Fill, CoordinatesThatAreNotFinitePaintNothing) {
  const double inf = std::numeric_limits<double>::infinity();
  for (const double bad : {inf, -inf, std::nan(""), 1e308}) {
    for (size_t index = 0; index < 4; ++index) {
      PathData path;
      path.move({2, 2});
      path.cubic({8, 2}, {8, 8}, {2, 8});
      path.points[index].x = bad;
      CoverageRaster raster(20, 20);
      PathRenderer().fillPath(path, WindingRule::nonZero, CGAffineTransformMakeScale(10, 10),
                              Antialias::on, ClipRegion({0, 0, 20, 20}), raster);
      EXPECT_EQ(raster.rowCalls(), 0u);
    }
  }
}

TEST(Fill, HugeCoordinatesAreClamped) {
  for (const double huge : {1e7, 1e9, 1e12, 1e300}) {
    EXPECT_EQ(fill(shapes::rectangle(-huge, -huge, 2 * huge, 2 * huge), {0, 0, 50, 50}).area(),
              2500);
    // Slanted edges on both sides of the box, far away; then one through it.
    const PathData diamond = polygon({{-huge, 0}, {0, huge}, {huge, 0}, {0, -huge}});
    EXPECT_EQ(fill(diamond, {0, 0, 50, 50}).area(), 2500);
    const PathData half = polygon({{-huge, -huge}, {huge, huge}, {huge, -huge}});
    EXPECT_NEAR(fill(half, {0, 0, 50, 50}).area(), 1250, 2);
  }
}

}  // namespace
