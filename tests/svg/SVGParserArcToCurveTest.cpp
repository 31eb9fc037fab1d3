#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "svg/SVGParserArcToCurve.h"
#include "svg/SVGStringParser.h"
#include "svg/parse/RecordingPath.h"

using namespace SVGNative;

namespace {

struct Point {
  double x;
  double y;
};

// Follows the path with points sampled on every piece.
class SampledPath : public RecordingPath {
 public:
  explicit SampledPath(Point start) : points{start} {}
  void LineTo(float x, float y) override {
    ++lines;
    points.push_back({x, y});
  }
  void CurveTo(float x1, float y1, float x2, float y2, float x3, float y3) override {
    ++curves;
    const Point p = points.back();
    for (int i = 1; i <= 16; ++i) {
      const double t = i / 16.0;
      const double s = 1.0 - t;
      const auto mix = [=](double a, double b, double c, double d) {
        return s * s * s * a + 3 * s * s * t * b + 3 * s * t * t * c + t * t * t * d;
      };
      points.push_back({mix(p.x, x1, x2, x3), mix(p.y, y1, y2, y3)});
    }
  }

  std::vector<Point> points;
  int lines = 0;
  int curves = 0;
};

double turned(const std::vector<Point>& points, Point center) {
  double sum = 0.0;
  for (size_t i = 1; i < points.size(); ++i) {
    const Point a{points[i - 1].x - center.x, points[i - 1].y - center.y};
    const Point b{points[i].x - center.x, points[i].y - center.y};
    sum += std::atan2(a.x * b.y - a.y * b.x, a.x * b.x + a.y * b.y);
  }
  return sum;
}

void addArc(SampledPath& path, Point end, double radius, bool large, bool sweep) {
  float x = 0.0f;
  float y = 0.0f;
  const Point start = path.points.back();
  ArcToCurve(path, static_cast<float>(start.x), static_cast<float>(start.y),
             static_cast<float>(radius), static_cast<float>(radius), 0.0f,
             large ? LargeArc::yes : LargeArc::no, sweep ? Sweep::yes : Sweep::no,
             static_cast<float>(end.x), static_cast<float>(end.y), x, y);
  EXPECT_EQ(x, static_cast<float>(end.x));
  EXPECT_EQ(y, static_cast<float>(end.y));
}

// Builds the arc from a centre and angles, and checks that the conversion finds them again.
TEST(ArcToCurveTest, FollowsTheCircle) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> angles(-std::numbers::pi, std::numbers::pi);
  std::uniform_real_distribution<double> sweeps(0.01, 2.0 * std::numbers::pi - 0.01);
  std::uniform_real_distribution<double> coordinates(-500.0, 500.0);
  std::uniform_real_distribution<double> radii(0.5, 400.0);
  for (int i = 0; i < 4000; ++i) {
    const Point center{coordinates(random), coordinates(random)};
    const double radius = radii(random);
    const double from = angles(random);
    const double extent = sweeps(random);
    if (std::abs(extent - std::numbers::pi) < 0.05) continue;  // both centres are then near
    const bool sweep = i % 2 == 0;
    const auto at = [&](double angle) {
      return Point{center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
    };
    SampledPath path(at(from));
    addArc(path, at(sweep ? from + extent : from - extent), radius, extent > std::numbers::pi,
           sweep);
    // Coordinates are rounded to single precision, which moves the centre of a short arc.
    const double slack = 0.003 * radius + 0.002 + 2e-4 / std::sin(std::min(1.0, extent / 4.0));
    for (const Point& p : path.points) {
      ASSERT_NEAR(std::hypot(p.x - center.x, p.y - center.y), radius, slack) << i;
    }
    ASSERT_NEAR(turned(path.points, center), sweep ? extent : -extent, 0.05) << i;
    ASSERT_EQ(path.curves, 1 + static_cast<int>(extent / 2.0943951023931953)) << i;
  }
}

TEST(ArcToCurveTest, TooSmallRadiiAreEnlarged) {
  SampledPath path({0, 0});
  addArc(path, {10, 0}, 1.0, false, true);
  for (const Point& p : path.points) EXPECT_NEAR(std::hypot(p.x - 5, p.y), 5.0, 0.02);
  EXPECT_NEAR(turned(path.points, {5, 0}), std::numbers::pi, 1e-3);
}

TEST(ArcToCurveTest, TheSignOfARadiusDoesNotMatter) {
  SampledPath path({0, 0});
  addArc(path, {10, 0}, -5.0, false, true);
  EXPECT_NEAR(turned(path.points, {5, 0}), std::numbers::pi, 1e-3);
}

TEST(ArcToCurveTest, LinesAndNothing) {
  SampledPath line({0, 0});
  addArc(line, {10, 0}, 0.0, true, true);
  EXPECT_EQ(line.lines, 1);
  EXPECT_EQ(line.curves, 0);
  SampledPath flat({0, 0});
  addArc(flat, {10, 0}, 1e30, false, true);
  EXPECT_EQ(flat.lines, 1);
  EXPECT_EQ(flat.curves, 0);
  SampledPath nothing({3, 4});
  addArc(nothing, {3, 4}, 5.0, true, true);
  EXPECT_EQ(nothing.points.size(), 1u);
}

// The usual way to write a full circle: an arc whose ends nearly meet.
TEST(ArcToCurveTest, NearlyFullCircles) {
  for (const bool sweep : {false, true}) {
    SampledPath path({100, 0});
    addArc(path, {100, 0.0001}, 100.0, true, sweep);
    EXPECT_EQ(path.curves, 3);
    double left = 1e9;
    double right = -1e9;
    for (const Point& p : path.points) {
      left = std::min(left, p.x);
      right = std::max(right, p.x);
    }
    EXPECT_NEAR(right - left, 200.0, 0.5);
  }
}

TEST(ArcToCurveTest, HugeRadiiStayFinite) {
  for (const double radius : {1e5, 1e10, 1e20, 3.4e38}) {
    for (const bool large : {false, true}) {
      SampledPath path({1, 2});
      addArc(path, {30, 40}, radius, large, true);
      for (const Point& p : path.points) {
        EXPECT_TRUE(std::isfinite(p.x) && std::isfinite(p.y)) << radius;
      }
    }
  }
}

TEST(ArcToCurveDeathTest, OnlyUnrotatedCirclesAreSupported) {
  RecordingPath path;
  float x = 0.0f;
  float y = 0.0f;
  const auto arc = [&](float rx, float ry, float angle) {
    ArcToCurve(path, 0, 0, rx, ry, angle, LargeArc::no, Sweep::no, 5, 5, x, y);
  };
  EXPECT_EXIT(arc(10, 20, 0), testing::KilledBySignal(SIGABRT),
              "SVGParserArcToCurve: ArcToCurve: assertion \"radiusX == radiusY\" failed");
  EXPECT_EXIT(arc(10, 10, 30), testing::KilledBySignal(SIGABRT),
              "SVGParserArcToCurve: ArcToCurve: assertion \"angle == 0\" failed");
  // A radius of 0 does not make other radii acceptable.
  EXPECT_EXIT(arc(0, 20, 0), testing::KilledBySignal(SIGABRT), "radiusX == radiusY");
  EXPECT_EXIT(RotatePoint(1, 2, 3), testing::KilledBySignal(SIGABRT), "RotatePoint");
  EXPECT_EXIT(SVGStringParser::ParsePathString("M0 0A10 20 0 0 0 5 5", path),
              testing::KilledBySignal(SIGABRT), "radiusX == radiusY");
}

}  // namespace
