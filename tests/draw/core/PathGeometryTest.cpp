#include <gtest/gtest.h>

#include <cmath>

#include "draw/core/CurveGeometry.h"
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
      {"2.5e-400:1e400", "2.5e-400:1e400", {0, HUGE_VAL}},
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

TEST(PathGeometry, NearestPoints) {
  struct Case {
    NSPoint p, nearest;
  };
  // On the segment from (0, 0) to (8, 6), across which (-3, 4) and (3, -4) point.
  const Case onSegment[] = {{{4, 3}, {4, 3}}, {{1, 7}, {4, 3}},   {{7, -1}, {4, 3}},
                            {{9, 9}, {8, 6}}, {{-5, -1}, {0, 0}}, {{11, 2}, {8, 6}}};
  for (const Case& c : onSegment) {
    const NSPoint found = GetPointOnLineClosestToPoint({0, 0}, {8, 6}, c.p);
    EXPECT_NEAR(found.x, c.nearest.x, 1e-12) << c.p.x << ", " << c.p.y;
    EXPECT_NEAR(found.y, c.nearest.y, 1e-12) << c.p.x << ", " << c.p.y;
  }
  EXPECT_EQ(GetPointOnLineClosestToPoint({2, 1}, {2, 1}, {9, 9}), NSMakePoint(2, 1));

  // A quarter circle of radius 100 about the origin, to the error of the cubic (its radius varies
  // by 0.03) and of half a step (157 / 2000 / 2).
  const double k = 55.22847498;
  for (const double degrees : {0.0, 10.0, 45.0, 72.0, 90.0}) {
    const double x = std::cos(degrees * M_PI / 180);
    const double y = std::sin(degrees * M_PI / 180);
    for (const double radius : {80.0, 150.0}) {
      const NSPoint found = GetPointOnCurveClosestToPoint({100, 0}, {100, k}, {k, 100}, {0, 100},
                                                          {radius * x, radius * y});
      EXPECT_NEAR(found.x, 100 * x, 0.1) << degrees << " at " << radius;
      EXPECT_NEAR(found.y, 100 * y, 0.1) << degrees << " at " << radius;
    }
  }
  // Beyond its ends.
  EXPECT_EQ(GetPointOnCurveClosestToPoint({100, 0}, {100, k}, {k, 100}, {0, 100}, {110, -40}),
            NSMakePoint(100, 0));
  EXPECT_EQ(GetPointOnCurveClosestToPoint({100, 0}, {100, k}, {k, 100}, {0, 100}, {-40, 110}),
            NSMakePoint(0, 100));

  const auto path = NSBezierPath::bezierPath();
  EXPECT_FALSE(findPointClosestToPoint(*path, {1, 1}));
  path->moveToPoint({0, 0});
  path->lineToPoint({10, 0});
  path->curveToPoint({20, 0}, {10, 10}, {20, 10});
  path->closePath();
  EXPECT_EQ(findPointClosestToPoint(*path, {4, 3}), NSMakePoint(4, 0));
  EXPECT_EQ(findPointClosestToPoint(*path, {15, 30}), NSMakePoint(15, 7.5));
  EXPECT_EQ(findPointClosestToPoint(*path, {15, -3}), NSMakePoint(15, 0)) << "the closing line";
  EXPECT_EQ(InterpolatePointOnPathElement(*path, 0, 0.5), NSMakePoint(0, 0));
  EXPECT_EQ(InterpolatePointOnPathElement(*path, 1, 0.25), NSMakePoint(2.5, 0));
  EXPECT_EQ(InterpolatePointOnPathElement(*path, 2, 0.5), NSMakePoint(15, 7.5));
  EXPECT_EQ(InterpolatePointOnPathElement(*path, 3, 0.5), NSMakePoint(10, 0));
  EXPECT_EQ(InterpolatePointOnPathElement(*path, 9, 0.5), NSZeroPoint);
}

TEST(PathGeometry, PathsTravelToTheDrawingLayerAndBack) {
  const auto path = NSBezierPath::bezierPath();
  EXPECT_FALSE(CreateCGPathFrom(*path));
  path->moveToPoint({1, 2});
  path->lineToPoint({3, 4});
  path->curveToPoint({9, 10}, {5, 6}, {7, 8});
  path->closePath();
  const CGPath made = CreateCGPathFrom(*path).value();
  EXPECT_EQ(made.boundingBox(), NSMakeRect(1, 2, 8, 8));
  CGPath expected;
  expected.moveToPoint({1, 2});
  expected.addLineToPoint({3, 4});
  expected.addCurveToPoint({5, 6}, {7, 8}, {9, 10});
  expected.closeSubpath();
  expected.moveToPoint({1, 2});  // closing goes back to the start
  EXPECT_EQ(made.data().verbs, expected.data().verbs);
  EXPECT_EQ(made.data().points, expected.data().points);
  const auto back = NSBezierPath::bezierPath();
  AppendCGPathToBezierPath(*back, made);
  EXPECT_EQ(back->data().points, path->data().points);
}

// A line to the curve's start, then a curve that is symmetric about x = 150.
TEST(PathGeometry, PointsOnCurvesByLength) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint({0, 0});
  path->lineToPoint({100, 0});
  path->curveToPoint({200, 0}, {100, 100}, {200, 100});
  const double curve = pathLineLength(*path) - 100;
  PathMeasure measure(*path);
  for (const PathPosition& middle : {pointAtPercent(*path, (100 + curve / 2) / (100 + curve)),
                                     measure.positionAt(100 + curve / 2)}) {
    EXPECT_NEAR(middle.point.x, 150, 0.1);
    EXPECT_NEAR(middle.point.y, 75, 0.01);
    EXPECT_EQ(middle.elementIndex, 2);
    EXPECT_GT(middle.direction.x, 0);
    EXPECT_NEAR(middle.direction.y / middle.direction.x, 0, 0.01);
  }
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
