#include <gtest/gtest.h>

#include <cmath>

#include "draw/core/PathGeometry.h"
#include "draw/core/ZTBezierPathExtension.h"

TEST(PathGeometry, DashTexts) {
  struct Case {
    const char* text;
    const char* normalised;
    std::vector<double> dash;
  };
  const Case cases[] = {
      {"4:2:", "4:2", {4, 2}},
      {"4:2", "4:2", {4, 2}},
      {"1:3:5:3", "1:3:5:3", {1, 3, 5, 3}},
      {"4", "", {}},
      {"", "", {}},
      {"::", "", {}},
      {"0:0", "0:0", {0, 0}},
      {"a:2.5", "a:2.5", {0, 2.5}},
      {"1:2:3:4:5:6:7:8:9:10:11:12", "1:2:3:4:5:6:7:8:9:10", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
  };
  for (const Case& c : cases) {
    double dash[kMaxDashCount] = {};
    int count = -1;
    EXPECT_EQ(GetDashArrayFromString(c.text, dash, &count), c.normalised) << c.text;
    EXPECT_EQ(std::vector<double>(dash, dash + count), c.dash) << c.text;
  }
}

TEST(PathGeometry, Angles) {
  EXPECT_EQ(DegreeOfLine({0, 0}, {0, 5}), 90);
  EXPECT_EQ(DegreeOfLine({0, 0}, {0, -5}), 270);
  EXPECT_NEAR(DegreeOfLine({0, 0}, {-1, -1}), 225, 1e-12);
  EXPECT_EQ(DegreeOfLine({3, 3}, {3, 3}), 0);
  EXPECT_NEAR(DegreeOfAngle({0, 0}, {0, 5}, {5, 0}), 270, 1e-12);
  EXPECT_NEAR(DegreeOfAngle({0, 0}, {5, 0}, {0, 5}), 90, 1e-12);
  const NSPoint turned = PointRotateAt({2, 1}, {1, 1}, 90);
  EXPECT_NEAR(turned.x, 1, 1e-12);
  EXPECT_NEAR(turned.y, 2, 1e-12);
  EXPECT_EQ(PointBeforeRotateAt({1, 2}, {1, 1}, 90), NSMakePoint(2, 1));
}

TEST(PathGeometry, ShiftConstrainsToEighths) {
  struct Case {
    NSPoint moving, expected;
  };
  const Case cases[] = {{{100, 20}, {100, 0}},     {{-100, 20}, {-100, 0}},
                        {{20, 100}, {0, 100}},     {{100, 90}, {100, 100}},
                        {{90, 100}, {100, 100}},   {{-90, 100}, {-100, 100}},
                        {{100, -80}, {100, -100}}, {{1, 1}, {1, 1}}};
  for (const Case& c : cases) {
    EXPECT_EQ(GetShiftPoint({0, 0}, c.moving), c.expected) << c.moving.x << ", " << c.moving.y;
  }
}

TEST(PathGeometry, PointsOfEllipses) {
  const NSRect circle = NSMakeRect(0, 0, 100, 100);
  EXPECT_EQ(GetPointInEllipse(circle, 90), NSMakePoint(50, 100));
  EXPECT_EQ(GetPointInEllipse(circle, 450), NSMakePoint(50, 100));
  EXPECT_NEAR(GetPointInEllipse(circle, 126).x, 50 + 50 * std::cos(126 * M_PI / 180), 1e-9);
  EXPECT_EQ(GetPointInEllipse(NSMakeRect(0, 0, 1, 100), 30), NSMakePoint(0.5, 50));
  // On a flat ellipse the angle is bent to the long axis: 160 degrees becomes 170 at ratio 1/2.
  const NSPoint bent = GetPointInEllipse(NSMakeRect(-100, -50, 200, 100), 160);
  EXPECT_NEAR(std::atan2(bent.y, bent.x) * 180 / M_PI, 170, 1e-9);
  EXPECT_NEAR(bent.x * bent.x / 10000 + bent.y * bent.y / 2500, 1, 1e-12);
}

TEST(PathGeometry, CubicsAreMeasuredByChords) {
  // A straight cubic has exactly the length of its chord.
  EXPECT_NEAR(LengthOfCurvedBezierPath({0, 0}, {1, 0}, {2, 0}, {3, 0}), 3, 1e-12);
  // A quarter circle of radius 100, to the error of the cubic.
  const double k = 55.22847498;
  EXPECT_NEAR(LengthOfCurvedBezierPath({100, 0}, {100, k}, {k, 100}, {0, 100}), 50 * M_PI, 0.03);

  CurveSearch search;
  double previous = 0;
  for (double wanted = 0.5; wanted < 3; wanted += 0.5) {
    const double reached =
        FindPointOnCurvedBezierPath(&search, {0, 0}, {1, 0}, {2, 0}, {3, 0}, wanted);
    EXPECT_NEAR(reached, wanted, 3.0 / kCurveSteps);
    EXPECT_NEAR(search.point.x, reached, 1e-9);
    EXPECT_GT(reached, previous);
    previous = reached;
  }
  const double end = FindPointOnCurvedBezierPath(&search, {0, 0}, {1, 0}, {2, 0}, {3, 0}, 99);
  EXPECT_NEAR(end, 3, 1e-12);
  EXPECT_EQ(FindPointOnCurvedBezierPath(&search, {0, 0}, {1, 0}, {2, 0}, {3, 0}, 100), end);
}

TEST(PathGeometry, CubicsDivide) {
  const NSPoint p[4] = {{0, 0}, {0, 10}, {20, 10}, {20, -5}};
  const DividedCubic halves = DivideCubicBezierPath(p[0], p[1], p[2], p[3], 0.25);
  for (double t = 0; t <= 1; t += 0.125) {
    const NSPoint whole = GetCurvedBezierPoint(0.25 * t, p[0], p[1], p[2], p[3]);
    const NSPoint* f = halves.first;
    const NSPoint part = GetCurvedBezierPoint(t, f[0], f[1], f[2], f[3]);
    EXPECT_NEAR(part.x, whole.x, 1e-12);
    EXPECT_NEAR(part.y, whole.y, 1e-12);
  }
  EXPECT_FALSE(DivideCubicBezierPath(p[0], p[1], p[2], p[3], 0).hasFirst);
  EXPECT_FALSE(DivideCubicBezierPath(p[0], p[1], p[2], p[3], 1).hasSecond);
}

TEST(PathGeometry, PathsAreMeasuredAndCut) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint({0, 0});
  path->lineToPoint({30, 0});
  path->lineToPoint({30, 40});
  path->closePath();
  EXPECT_EQ(pathLineLength(*path), 120.0F);
  const PathPosition half = pointAtPercent(*path, 0.5);
  EXPECT_NEAR(half.point.x, 30, 1e-9);
  EXPECT_NEAR(half.point.y, 30, 1e-9);
  EXPECT_EQ(half.elementIndex, 2);
  EXPECT_EQ(pointAtPercent(*path, 2).point, NSMakePoint(0, 0));

  const auto piece = subPathWithLengthFrom(*path, 20, 45);
  ASSERT_EQ(piece->elementCount(), 3);
  NSPoint p[3];
  piece->elementAtIndex(0, p);
  EXPECT_EQ(p[0], NSMakePoint(20, 0));
  piece->elementAtIndex(2, p);
  EXPECT_EQ(p[0], NSMakePoint(30, 15));
  EXPECT_EQ(pathLineLength(*piece), 25.0F);
}

TEST(PathGeometry, PathsOpenAndClose) {
  auto path = NSBezierPath::bezierPathWithRect(NSMakeRect(0, 0, 10, 10));
  EXPECT_TRUE(isPathClosed(*path));
  EXPECT_TRUE(toggleClosePath(*path));
  EXPECT_EQ(path->elementCount(), 4);
  EXPECT_FALSE(isPathClosed(*path));
  EXPECT_TRUE(toggleClosePath(*path));
  EXPECT_EQ(path->elementCount(), 6);
  auto line = NSBezierPath::bezierPath();
  line->moveToPoint({0, 0});
  line->lineToPoint({1, 1});
  EXPECT_FALSE(toggleClosePath(*line));
  // Drawn on after a close that an archive has without its move.
  path->removeElementsFrom(5);
  path->lineToPoint({20, 20});
  EXPECT_FALSE(toggleClosePath(*path));
  EXPECT_EQ(path->elementCount(), 6);
}
