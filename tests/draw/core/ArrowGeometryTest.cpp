#include <gtest/gtest.h>

#include "draw/core/ArrowGeometry.h"
#include "draw/core/ZTArrowPathInfo.h"
#include "draw/core/ZTBezierPathExtension.h"

namespace {

constexpr double kR = 1.73205;

std::shared_ptr<NSBezierPath> line(NSPoint a, NSPoint b) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint(a);
  path->lineToPoint(b);
  return path;
}

void expectNear(NSPoint actual, NSPoint expected, const char* what) {
  EXPECT_NEAR(actual.x, expected.x, 1e-6) << what;
  EXPECT_NEAR(actual.y, expected.y, 1e-6) << what;
}

NSPoint pointOf(const NSBezierPath& path, int64_t element) {
  NSPoint p[3];
  return path.elementAtIndex(element, p) == NSCurveToBezierPathElement ? p[2] : p[0];
}

}  // namespace

TEST(ArrowGeometry, HeadOfALine) {
  // Width 1: side 4, height 3.4641; the line ends at the head's centroid.
  const auto path = line({0, 0}, {100, 0});
  const auto info = getArrowInfoWithStyle(*path, 1, 1);
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->startArrowPath(), nullptr);
  const NSBezierPath& head = *info->endArrowPath();
  EXPECT_EQ(head.elementCount(), 5) << "move, two lines, close and its move";
  EXPECT_EQ(head.lineWidth(), 1);
  expectNear(pointOf(head, 0), {100, 0}, "tip");
  expectNear(pointOf(head, 1), {100 - 2 * kR, 2}, "base");
  expectNear(pointOf(head, 2), {100 - 2 * kR, -2}, "base");
  EXPECT_TRUE(info->hadAdjustBezierPath());
  expectNear(pointOf(*info->adjustedBezierPath(), 1), {100 - 4 / kR, 0}, "moved end");
  expectNear(pointOf(*path, 1), {100, 0}, "the asked path stays");
}

TEST(ArrowGeometry, HeadOfAClosedPathLiesAtItsStart) {
  auto path = line({20, 10}, {20, 90});
  path->lineToPoint({90, 10});
  path->closePath();
  const auto back = removeLastElements(*path, 1);
  ASSERT_EQ(back->elementAtIndex(back->elementCount() - 1), NSClosePathBezierPathElement);
  const auto info = getArrowInfoWithStyle(*back, 1, 1);
  ASSERT_NE(info->endArrowPath(), nullptr);
  expectNear(pointOf(*info->endArrowPath(), 0), {20, 10}, "tip");
  expectNear(pointOf(*info->endArrowPath(), 1), {20 + 2 * kR, 12}, "base");

  // The move behind the close leaves no segment to lay a head on.
  EXPECT_EQ(getArrowInfoWithStyle(*path, 1, 1)->endArrowPath(), nullptr);
  auto dot = NSBezierPath::bezierPath();
  dot->moveToPoint({50, 50});
  dot->closePath();
  dot->removeElementsFrom(2);
  EXPECT_EQ(getArrowInfoWithStyle(*dot, 2, 1)->startArrowPath(), nullptr);
}

TEST(ArrowGeometry, DirectionsOfHeads) {
  struct Case {
    NSPoint from, to, base1;
  };
  const double h = 2 * kR;
  const Case cases[] = {
      {{0, 0}, {-100, 0}, {-100 + h, 2}},
      {{5, 0}, {5, 100}, {3, 100 - h}},    // up
      {{5, 100}, {5, 0}, {3, h}},          // down: the base lies above the tip
      {{5, 7}, {5.3, 57}, {3.3, 57 - h}},  // all but vertical counts as vertical
  };
  for (const Case& c : cases) {
    const auto head = GetArrowPathAndAdjustedEndPoint(false, true, nullptr, c.from, c.to, 1);
    ASSERT_NE(head, nullptr);
    expectNear(pointOf(*head, 0), c.to, "tip");
    expectNear(pointOf(*head, 1), c.base1, "base");
  }
  // Equal heights within the threshold point up; they leave no room for a head of a line end.
  EXPECT_EQ(GetArrowPathAndAdjustedEndPoint(false, true, nullptr, {0, 0}, {0.4, 0}, 1), nullptr);
}

TEST(ArrowGeometry, HeadsShrinkWithTheLine) {
  struct Case {
    bool shared, canMove;
    double length;
    float width;
    double side;  // 0: no head
  };
  const Case cases[] = {
      {false, true, 100, 2, 8},
      {false, true, 6, 2, 12 / kR},  // as long as the segment
      {false, true, 3, 2, 0},        // 2 x 2 > 3.464
      {true, true, 10, 2, 10 / kR},  // each half of the line
      {true, true, 6.9, 2, 0},
      // Behind the centroid lie 2.309 of a head of side 8.
      {false, false, 2, 2, 4 / 0.5773489232412461},
      {false, false, 2.4, 2, 8},
      {true, false, 4, 2, 4 / 0.5773489232412461},
      {true, false, 100, 2, 8},
  };
  for (const Case& c : cases) {
    const auto head = GetArrowPathAndAdjustedEndPoint(c.shared, c.canMove, nullptr, {0, 0},
                                                      {c.length, 0}, c.width);
    if (c.side == 0) {
      EXPECT_EQ(head, nullptr) << c.length;
      continue;
    }
    ASSERT_NE(head, nullptr) << c.length;
    EXPECT_NEAR(pointOf(*head, 1).y - pointOf(*head, 2).y, c.side, 1e-5) << c.length;
  }
}

TEST(ArrowGeometry, CurveEndsStayAndTheTipLiesBeyond) {
  auto path = NSBezierPath::bezierPath();
  path->moveToPoint({0, 0});
  path->curveToPoint({100, 0}, {0, 50}, {50, 0});
  const auto info = getArrowInfoWithStyle(*path, kArrowStyleBothEnds, 1);
  ASSERT_NE(info, nullptr);
  EXPECT_FALSE(info->hadAdjustBezierPath());
  expectNear(pointOf(*info->endArrowPath(), 0), {100 + 4 / kR, 0}, "end tip");
  expectNear(pointOf(*info->startArrowPath(), 0), {0, -4 / kR}, "start tip");
  // Where control point 2 is the end, control point 1 gives the direction.
  auto bent = NSBezierPath::bezierPath();
  bent->moveToPoint({0, 0});
  bent->curveToPoint({100, 0}, {100, 50}, {100, 0});
  expectNear(pointOf(*getArrowInfoWithStyle(*bent, 1, 1)->endArrowPath(), 0), {100, -4 / kR},
             "direction from control point 1");
}

TEST(ArrowGeometry, NoArrows) {
  EXPECT_EQ(getArrowInfoWithStyle(*line({0, 0}, {9, 9}), 0), nullptr);
  auto lone = NSBezierPath::bezierPath();
  lone->moveToPoint({1, 1});
  EXPECT_EQ(getArrowInfoWithStyle(*lone, 1), nullptr);
}
