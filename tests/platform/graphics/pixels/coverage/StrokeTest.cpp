#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/graphics/pixels/coverage/CoverageRaster.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"
#include "platform/graphics/pixels/coverage/Shapes.h"
#include "platform/graphics/pixels/coverage/StrokeReference.h"
#include "platform/graphics/pixels/outline/PathBounds.h"

namespace {

using shapes::polygon;
using shapes::polyline;

constexpr CGAffineTransform kIdentity;
constexpr PixelBox kBox{0, 0, 160, 160};

CoverageRaster stroke(const PathData& path, const StrokeStyle& style, const PixelBox& box = kBox,
                      const CGAffineTransform& toDevice = kIdentity,
                      Antialias antialias = Antialias::on) {
  CoverageRaster raster(box);
  PathRenderer().strokePath(path, style, toDevice, antialias, ClipRegion(box), raster);
  return raster;
}

StrokeStyle pen(double width, LineCap cap = LineCap::butt, LineJoin join = LineJoin::miter) {
  StrokeStyle style;
  style.width = width;
  style.cap = cap;
  style.join = join;
  return style;
}

PathData curve(NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3) {
  PathData path;
  path.move(p0);
  path.cubic(p1, p2, p3);
  return path;
}

PathData spiral(double from, double to, double turns) {
  PathData path;
  for (int i = 0; i <= 400; ++i) {
    const double t = i / 400.0, r = from + (to - from) * t, a = 2 * M_PI * turns * t;
    const NSPoint p{80 + r * std::cos(a), 80 + r * std::sin(a)};
    path.empty() ? path.move(p) : path.line(p);
  }
  return path;
}

PathData twoSubpaths() {
  PathData path = polyline({{50, 50}, {70, 110}, {90, 60}});
  path.move({100, 100});
  path.line({120, 60});
  return path;
}

struct Shape {
  const char* name;
  PathData path;
};

std::vector<Shape> strokedShapes() {
  return {
      {"zigzag", polyline({{50, 50}, {70, 110}, {90, 60}, {110, 105}})},
      {"hairpin of 8 degrees", polyline({{45, 75}, {110, 75}, {46, 84}})},
      {"triangle", polygon({{50, 110}, {80, 50}, {115, 105}})},
      {"triangle smaller than the pen", polygon({{72, 85}, {80, 72}, {87, 85}})},
      {"S curve", curve({50, 100}, {90, 20}, {70, 140}, {110, 60})},
      {"circle", shapes::circle({80, 80}, 30)},
      {"circle smaller than the pen", shapes::circle({80, 80}, 6)},
      {"crossing itself", polygon({{50, 50}, {110, 100}, {110, 55}, {50, 105}})},
      {"tight spiral", spiral(4, 32, 3.5)},
      {"cusp", curve({50, 100}, {120, 50}, {40, 50}, {110, 100})},
      {"tight turn", curve({60, 80}, {112, 78}, {112, 83}, {60, 82})},
      {"two subpaths", twoSubpaths()},
      {"out and back", polyline({{50, 80}, {110, 80}, {50, 80}})},
      {"two points, closed", polygon({{50, 60}, {110, 100}})},
  };
}

/// Whether all samples of the pixels around (x, y) agree with it.
bool isUniform(const StrokeReference& reference, int32_t x, int32_t y, double level) {
  for (int32_t j = y - 1; j <= y + 1; ++j) {
    for (int32_t i = x - 1; i <= x + 1; ++i) {
      if (i < kBox.x0 || i >= kBox.x1 || j < kBox.y0 || j >= kBox.y1) continue;
      if (reference.at(i, j) != level) return false;
    }
  }
  return true;
}

/// Holes and spikes: pixels well inside must be full, pixels well outside untouched.
void expectSameShape(const CoverageRaster& raster, const StrokeReference& reference) {
  for (int32_t y = kBox.y0; y < kBox.y1; ++y) {
    for (int32_t x = kBox.x0; x < kBox.x1; ++x) {
      const double exact = reference.at(x, y);
      if ((exact != 0 && exact != 1) || !isUniform(reference, x, y, exact)) continue;
      ASSERT_EQ(raster.at(x, y), exact == 1 ? 255 : 0) << x << ", " << y;
    }
  }
}

TEST(Stroke, IsTheUnionOfItsPieces) {
  for (const Shape& shape : strokedShapes()) {
    for (const double width : {2.0, 13.0, 40.0}) {
      for (const LineJoin join : {LineJoin::miter, LineJoin::round, LineJoin::bevel}) {
        for (const LineCap cap : {LineCap::butt, LineCap::round, LineCap::square}) {
          SCOPED_TRACE(testing::Message()
                       << shape.name << ", width " << width << ", join " << static_cast<int>(join)
                       << ", cap " << static_cast<int>(cap));
          const StrokeStyle style = pen(width, cap, join);
          const CoverageRaster raster = stroke(shape.path, style);
          const StrokeReference reference(shape.path, style, kIdentity, kBox);
          EXPECT_NEAR(raster.area() / reference.area(), 1, 0.007);
          expectSameShape(raster, reference);
        }
      }
    }
  }
}

double disc(double r) {
  return M_PI * r * r;
}

TEST(Stroke, CurvesSmallerThanThePenHaveNoHole) {
  // A circle of radius 6 under a pen of 40 is a disc of radius 26.
  const CoverageRaster raster = stroke(shapes::circle({80, 80}, 6), pen(40));
  EXPECT_NEAR(raster.area(), disc(26), 0.004 * disc(26));
  EXPECT_EQ(raster.at(80, 80), 255);
}

TEST(Stroke, TurnsInsideCurvesAreRoundWithAnyJoin) {
  // The cusp's tip turns by 180 degrees: with a round end it reaches half the width beyond.
  const PathData cusp = curve({40, 110}, {120, 50}, {40, 50}, {120, 110});
  const double tip = NSMinY(*tightPathBounds(cusp));
  for (const LineJoin join : {LineJoin::miter, LineJoin::round, LineJoin::bevel}) {
    const CoverageRaster raster = stroke(cusp, pen(30, LineCap::butt, join));
    EXPECT_EQ(raster.at(80, static_cast<int32_t>(tip - 13)), 255);
    EXPECT_EQ(raster.at(80, static_cast<int32_t>(tip - 17)), 0);
  }
}

TEST(Stroke, JoinsAndCapsAtAnL) {
  const PathData corner = polyline({{20, 60}, {60, 60}, {60, 20}});
  const struct {
    LineCap cap;
    LineJoin join;
    double miterLimit;
    double area;  // 2 arms of 40 x 10 share the inner quarter of the corner's square
  } cases[] = {
      {LineCap::butt, LineJoin::miter, 10, 2 * 400 - 25 + 25},
      {LineCap::butt, LineJoin::miter, 1.4, 2 * 400 - 25 + 12.5},  // the miter is 1.414 widths
      {LineCap::butt, LineJoin::miter, 1.42, 2 * 400 - 25 + 25},
      {LineCap::butt, LineJoin::miter, 0, 2 * 400 - 25 + 12.5},
      {LineCap::butt, LineJoin::miter, -5, 2 * 400 - 25 + 12.5},
      {LineCap::butt, LineJoin::bevel, 10, 2 * 400 - 25 + 12.5},
      {LineCap::butt, LineJoin::round, 10, 2 * 400 - 25 + disc(5) / 4},
      {LineCap::square, LineJoin::miter, 10, 2 * 400 + 2 * 50},
      {LineCap::round, LineJoin::miter, 10, 2 * 400 + disc(5)},
  };
  for (const auto& c : cases) {
    StrokeStyle style = pen(10, c.cap, c.join);
    style.miterLimit = c.miterLimit;
    EXPECT_NEAR(stroke(corner, style).area(), c.area, 0.9)
        << static_cast<int>(c.cap) << static_cast<int>(c.join) << c.miterLimit;
  }
}

TEST(Stroke, WholePixelLinesAreExact) {
  const CoverageRaster line = stroke(polyline({{10, 20.5}, {30, 20.5}}), pen(1));
  EXPECT_EQ(line.area(), 20);
  EXPECT_EQ(line.rowCalls(), 1u);
  const CoverageRaster frame = stroke(shapes::rectangle(10.5, 10.5, 20, 10), pen(1));
  EXPECT_EQ(frame.area(), 2 * 21 + 2 * 9);
  EXPECT_EQ(frame.touchedPixels(), 60u);
}

TEST(Stroke, SubpathsWithoutLength) {
  PathData twice = polyline({{80, 80}, {80, 80}});
  PathData closed;
  closed.move({80, 80});
  closed.close();
  PathData lone;
  lone.move({80, 80});
  for (const PathData& dot : {twice, closed}) {
    EXPECT_EQ(stroke(dot, pen(20)).touchedPixels(), 0u);
    EXPECT_NEAR(stroke(dot, pen(20, LineCap::round)).area(), disc(10), 0.007 * disc(10));
    EXPECT_EQ(stroke(dot, pen(20, LineCap::square)).area(), 400);
    StrokeStyle dashed = pen(20, LineCap::round);
    dashed.dash = {5, 5};
    EXPECT_EQ(stroke(dot, dashed).touchedPixels(), 0u);
  }
  EXPECT_EQ(stroke(lone, pen(20, LineCap::round)).touchedPixels(), 0u);
  // The square lies along the axes of the user's space.
  const double r = std::sqrt(0.5);
  const CoverageRaster turned = stroke(twice, pen(20, LineCap::square), {-100, 0, 100, 200},
                                       CGAffineTransform{r, r, -r, r, 0, 0});
  EXPECT_NEAR(turned.area(), 400, 0.5);
  EXPECT_EQ(turned.at(0, static_cast<int32_t>(160 * r + 12)), 255);  // the diamond's tip is at 14.1
  EXPECT_EQ(turned.at(11, static_cast<int32_t>(160 * r + 11)), 0);
}

TEST(Stroke, UnderTransforms) {
  const PathData shape = curve({10, 20}, {60, -30}, {-10, 90}, {50, 40});
  const CGAffineTransform transforms[] = {
      {2, 0, 0, 2, 20, 30},           // scale
      {0, 2, -2, 0, 140, 20},         // quarter turn
      {2, 0, 0, -2, 20, 130},         // mirrored
      {1.2, 1.6, -1.6, 1.2, 90, 20},  // scale and turn
      {3, 0, 0, 0.7, 5, 40},          // uneven
      {2.5, 0.3, -1.1, 0.6, 30, 50},  // sheared
  };
  for (const CGAffineTransform& t : transforms) {
    for (const LineJoin join : {LineJoin::miter, LineJoin::round}) {
      SCOPED_TRACE(testing::Message() << t.a << " " << t.b << " " << t.c << " " << t.d);
      const StrokeStyle style = pen(6, LineCap::round, join);
      const CoverageRaster raster = stroke(shape, style, kBox, t);
      const StrokeReference reference(shape, style, t, kBox);
      EXPECT_NEAR(raster.area() / reference.area(), 1, 0.005);
      expectSameShape(raster, reference);
    }
  }
}

TEST(Stroke, WidthZeroIsOneDevicePixel) {
  const PathData line = polyline({{1, 2.05}, {9, 2.05}});
  for (const CGAffineTransform& t :
       {CGAffineTransform{10, 0, 0, 10, 0, 0}, CGAffineTransform{10, 0, 0, 90, 0, -100}}) {
    EXPECT_NEAR(stroke(line, pen(0), kBox, t).area(), 80, 0.4);
  }
}

TEST(Stroke, WidthsAndTransformsThatDrawNothing) {
  const PathData line = polyline({{10, 20}, {90, 70}});
  EXPECT_EQ(stroke(line, pen(-1)).rowCalls(), 0u);
  EXPECT_EQ(stroke(line, pen(std::nan(""))).rowCalls(), 0u);
  for (const CGAffineTransform& singular :
       {CGAffineTransform{0, 0, 0, 0, 5, 5}, CGAffineTransform{1, 1, 1, 1, 0, 0},
        CGAffineTransform{1, 0, 0, 0, 0, 50}, CGAffineTransform{1e300, 0, 0, 1e-300, 0, 0},
        CGAffineTransform{std::nan(""), 0, 0, 1, 0, 0}}) {
    EXPECT_EQ(stroke(line, pen(3), kBox, singular).rowCalls(), 0u);
  }
}

TEST(Stroke, HugePensCoverEverything) {
  const PathData line = polyline({{10, 20}, {90, 70}});
  for (const double width : {1e4, 1e9, 1e300, std::numeric_limits<double>::infinity()}) {
    for (const LineJoin join : {LineJoin::miter, LineJoin::round}) {
      EXPECT_EQ(stroke(line, pen(width, LineCap::round, join)).area(), 160 * 160) << width;
    }
  }
}

TEST(Stroke, OutlineFillsLikeTheStroke) {
  PathRenderer renderer;
  const CGAffineTransform transforms[] = {
      {1, 0, 0, 1, 0, 0}, {1, 0, 0, -1, 0, 160}, {1.3, 0.2, -0.4, 0.6, 40, 30}};
  for (const Shape& shape : strokedShapes()) {
    for (const CGAffineTransform& t : transforms) {
      const StrokeStyle style = pen(13, LineCap::square, LineJoin::miter);
      const PathData outline = renderer.strokeOutline(shape.path, style, t);
      CoverageRaster filled(kBox);
      renderer.fillPath(outline, WindingRule::nonZero, t, Antialias::on, ClipRegion(kBox), filled);
      const CoverageRaster stroked = stroke(shape.path, style, kBox, t);
      int largest = 0;
      for (size_t i = 0; i < filled.covers().size(); ++i) {
        largest = std::max(largest, std::abs(filled.covers()[i] - stroked.covers()[i]));
      }
      EXPECT_LE(largest, 1) << shape.name;  // coordinates pass through the inverse transform
    }
  }
  EXPECT_TRUE(renderer.strokeOutline(PathData(), pen(3), kIdentity).empty());
  EXPECT_TRUE(renderer.strokeOutline(polyline({{0, 0}, {9, 9}}), pen(-3), kIdentity).empty());
}

TEST(Stroke, BoxHoldsTheStroke) {
  const PixelBox canvas{-500, -500, 500, 500};
  for (const Shape& shape : strokedShapes()) {
    for (const LineJoin join : {LineJoin::miter, LineJoin::round}) {
      for (const LineCap cap : {LineCap::butt, LineCap::square}) {
        const StrokeStyle style = pen(20, cap, join);
        const PixelBox box = strokeBox(shape.path, style, kIdentity, canvas);
        const CoverageRaster raster = stroke(shape.path, style, canvas);
        for (int32_t y = canvas.y0; y < canvas.y1; ++y) {
          for (int32_t x = canvas.x0; x < canvas.x1; ++x) {
            const bool inBox = x >= box.x0 && x < box.x1 && y >= box.y0 && y < box.y1;
            ASSERT_TRUE(inBox || raster.at(x, y) == 0) << shape.name << " " << x << "," << y;
          }
        }
      }
    }
  }
  // Right angles reach 1.4 half widths, not the miter limit.
  EXPECT_EQ(strokeBox(shapes::rectangle(50, 50, 20, 20), pen(10), kIdentity, canvas),
            (PixelBox{42, 42, 78, 78}));
}

TEST(Stroke, WithoutAntialiasingWideLinesPaintTouchedPixels) {
  // A width of 2 on a half-pixel line touches 3 rows.
  const CoverageRaster raster =
      stroke(polyline({{10, 20.5}, {30, 20.5}}), pen(2), kBox, kIdentity, Antialias::off);
  EXPECT_EQ(raster.touchedPixels(), 60u);
  EXPECT_EQ(raster.area(), 60);
}

namespace {

/// Squares of the distances of the pixels of a box from a path, sampled closely.
std::vector<double> squaredDistances(const PathData& path, double reach, const PixelBox& box) {
  constexpr double kStep = 0.05;
  const auto columns = static_cast<size_t>(box.width());
  std::vector<double> nearest(columns * static_cast<size_t>(box.height()), HUGE_VAL);
  const auto add = [&](NSPoint p) {
    const PixelBox near = pixelsTouched({p.x - reach, p.y - reach, p.x + reach, p.y + reach}, box);
    for (int32_t y = near.y0; y < near.y1; ++y) {
      for (int32_t x = near.x0; x < near.x1; ++x) {
        const double dx = std::max({x - p.x, 0.0, p.x - x - 1});
        const double dy = std::max({y - p.y, 0.0, p.y - y - 1});
        double& d = nearest[static_cast<size_t>(y) * columns + static_cast<size_t>(x)];
        d = std::min(d, dx * dx + dy * dy);
      }
    }
  };
  const auto addCubic = [&](NSPoint a, NSPoint b, NSPoint c, NSPoint d) {
    const double length = std::hypot(b.x - a.x, b.y - a.y) + std::hypot(c.x - b.x, c.y - b.y) +
                          std::hypot(d.x - c.x, d.y - c.y);
    const int steps = static_cast<int>(length / kStep) + 1;
    for (int i = 0; i <= steps; ++i) {
      const double t = static_cast<double>(i) / steps, u = 1 - t;
      const double wa = u * u * u, wb = 3 * u * u * t, wc = 3 * u * t * t, wd = t * t * t;
      add({a.x * wa + b.x * wb + c.x * wc + d.x * wd, a.y * wa + b.y * wb + c.y * wc + d.y * wd});
    }
  };
  NSPoint at, start = path.points[0];
  const NSPoint* p = path.points.data();
  for (const PathVerb verb : path.verbs) {
    if (verb == PathVerb::cubic) addCubic(at, p[0], p[1], p[2]);
    if (verb == PathVerb::line) addCubic(at, at, p[0], p[0]);
    if (verb == PathVerb::close) addCubic(at, at, start, start);
    p += pointCount(verb);
    at = verb == PathVerb::close ? start : p[-1];
  }
  return nearest;
}

/// A rectangle whose corners are quarters of ellipses with the half-axes rx and ry.
PathData roundedRect(const NSRect& r, double rx, double ry) {
  constexpr double kArc = 0.5522847498307936;
  const double x0 = NSMinX(r), x1 = NSMaxX(r), y0 = NSMinY(r), y1 = NSMaxY(r);
  const double kx = rx * kArc, ky = ry * kArc;
  PathData path;
  path.move({x0 + rx, y0});
  path.line({x1 - rx, y0});
  path.cubic({x1 - rx + kx, y0}, {x1, y0 + ry - ky}, {x1, y0 + ry});
  path.line({x1, y1 - ry});
  path.cubic({x1, y1 - ry + ky}, {x1 - rx + kx, y1}, {x1 - rx, y1});
  path.line({x0 + rx, y1});
  path.cubic({x0 + rx - kx, y1}, {x0, y1 - ry + ky}, {x0, y1 - ry});
  path.line({x0, y0 + ry});
  path.cubic({x0, y0 + ry - ky}, {x0 + rx - kx, y0}, {x0 + rx, y0});
  path.close();
  return path;
}

PathData ellipse(const NSRect& r) {
  return roundedRect(r, NSWidth(r) / 2, NSHeight(r) / 2);
}

/// Ellipses, rounded rectangles and curves, every other one on whole coordinates.
PathData randomRound(std::minstd_rand& random) {
  const double unit = random() % 2 == 0 ? 1 : 0.01;
  const auto within = [&](double low, double high) {
    const auto steps = static_cast<unsigned>((high - low) / unit) + 1;
    return low + static_cast<double>(random() % steps) * unit;
  };
  const double x = within(10, 20), y = within(10, 20), w = within(1, 30);
  const NSRect box{{x, y}, {w, random() % 4 == 0 ? w : within(1, 30)}};
  const double rx = std::min(within(1, 12), w / 2), ry = std::min(within(1, 12), NSHeight(box) / 2);
  switch (random() % 3) {
    case 0:
      return ellipse(box);
    case 1:
      return roundedRect(box, rx, ry);
    default:
      return curve({within(10, 50), y}, {x, within(10, 50)}, {within(10, 50), within(10, 50)},
                   {x + w, x});
  }
}

}  // namespace

TEST(Stroke, WithoutAntialiasingThePixelsAreThoseOfTheExactArea) {
  constexpr double kTolerance = 1.0 / 64;
  constexpr PixelBox kSmall{0, 0, 64, 64};
  std::minstd_rand random(1);
  for (int shape = 0; shape < 400; ++shape) {
    const PathData path = randomRound(random);
    const double half = 0.51 + static_cast<double>(random() % 600) / 200;
    const CoverageRaster raster = stroke(path, pen(2 * half, LineCap::round, LineJoin::round),
                                         kSmall, kIdentity, Antialias::off);
    const auto distances = squaredDistances(path, half + 1, kSmall);
    for (int32_t y = 0; y < 64; ++y) {
      for (int32_t x = 0; x < 64; ++x) {
        const double d = std::sqrt(distances[static_cast<size_t>(y * 64 + x)]);
        if (std::abs(d - half) <= kTolerance) continue;
        ASSERT_EQ(raster.at(x, y), d < half ? 255 : 0)
            << "shape " << shape << ", pixel " << x << ", " << y << ", " << d - half;
      }
    }
  }
}

TEST(Stroke, WithoutAntialiasingEllipsesOnWholePixelsHaveNoSpurs) {
  for (int w = 4; w < 60; w += 3) {
    for (int h = 5; h < 60; h += 7) {
      for (const int half : {1, 2, 5}) {
        const CoverageRaster raster = stroke(ellipse(NSMakeRect(20, 30, w, h)), pen(2 * half), kBox,
                                             kIdentity, Antialias::off);
        const PixelBox exact{20 - half, 30 - half, 20 + w + half, 30 + h + half};
        for (int32_t i = 0; i < 160 * 160; ++i) {
          const int32_t x = i % 160, y = i / 160;
          const bool isInside = x >= exact.x0 && x < exact.x1 && y >= exact.y0 && y < exact.y1;
          ASSERT_TRUE(isInside || raster.at(x, y) == 0) << w << " " << h << " " << half;
        }
      }
    }
  }
}

TEST(Stroke, WithoutAntialiasingThinLinesAreOnePixelThin) {
  const struct {
    NSPoint a, b;
    size_t pixels;
  } lines[] = {
      {{2.5, 3.5}, {10.5, 3.5}, 9},      // touches columns 2 to 10
      {{2, 3.5}, {10, 3.5}, 8},          // [2, 10)
      {{2, 3}, {12, 7}, 10},             // one pixel per column
      {{12, 7}, {2, 3}, 10},             //
      {{3, 2}, {7, 12}, 10},             // one per row
      {{-1e9, 50.5}, {1e9, 50.5}, 160},  // only what the box shows
      {{50.5, -1e9}, {50.5, 1e9}, 160},  //
      {{-1e9, -1e9}, {1e9, 1e9}, 160},   //
      {{-1e9, 500}, {1e9, 500}, 0},      //
  };
  for (const auto& l : lines) {
    for (const double width : {0.0, 0.3, 1.0}) {
      const CoverageRaster raster =
          stroke(polyline({l.a, l.b}), pen(width), kBox, kIdentity, Antialias::off);
      EXPECT_EQ(raster.touchedPixels(), l.pixels) << l.a.x << " " << l.a.y << " " << width;
      EXPECT_EQ(raster.area(), static_cast<double>(l.pixels));
    }
  }
  const CoverageRaster slanted =
      stroke(polyline({{2, 3}, {12, 7}}), pen(1), kBox, kIdentity, Antialias::off);
  // y at the columns' centres: 3.2, 3.6, 4.0, 4.4, ...
  const int32_t rows[] = {3, 3, 4, 4, 4, 5, 5, 6, 6, 6};
  for (int32_t i = 0; i < 10; ++i) EXPECT_EQ(slanted.at(2 + i, rows[i]), 255) << i;
  // Corners are connected.
  const CoverageRaster corner = stroke(polyline({{2.5, 3.5}, {10.5, 3.5}, {10.5, 9.5}}), pen(1),
                                       kBox, kIdentity, Antialias::off);
  EXPECT_EQ(corner.touchedPixels(), 9u + 6u);
}

}  // namespace
