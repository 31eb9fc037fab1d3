#include <gtest/gtest.h>

#include <cmath>

#include "platform/foundation/Geometry.h"

TEST(Geometry, TextFormsMatchArchives) {
  EXPECT_EQ(NSStringFromSize({640, 480}), "{640, 480}");
  EXPECT_EQ(NSStringFromSize({1191.970325, 842.59971250000001}),
            "{1191.970325, 842.59971250000001}");
  EXPECT_EQ(NSStringFromPoint({-0.5, 1e300}), "{-0.5, 1.0000000000000001e+300}");
  EXPECT_EQ(NSStringFromRect(NSMakeRect(0, 0, 1, 2)), "{{0, 0}, {1, 2}}");
}

TEST(Geometry, ParsingPicksNumbersInOrder) {
  struct Case {
    const char* text;
    NSSize expected;
  };
  const Case cases[] = {
      {"{640, 480}", {640, 480}},
      {"{100.7, 50.2}", {100.7, 50.2}},
      {"640 480", {640, 480}},
      {"{3.40282e+38, -1}", {3.40282e+38, -1}},
      {"{+7, .5}", {7, 0.5}},
      {"{12}", {12, 0}},
      {"", {0, 0}},
      {"nan, inf", {0, 0}},
      {"{, }", {0, 0}},
      {"--3 -4", {-3, -4}},
      {"{1e-999, -2.5E-400}", {0, 0}},
      {"{4e-320, 7}", {4e-320, 7}},
  };
  for (const Case& c : cases) EXPECT_EQ(NSSizeFromString(c.text), c.expected) << c.text;
  EXPECT_EQ(NSRectFromString("{{1, 2}, {3, 4}}"), NSMakeRect(1, 2, 3, 4));
  EXPECT_EQ(NSSizeFromString("{1e999, 2}"), NSMakeSize(HUGE_VAL, 2));
  EXPECT_EQ(NSSizeFromString("{-1E+999, 2}"), NSMakeSize(-HUGE_VAL, 2));
}

TEST(Geometry, RectangleAlgebra) {
  const NSRect a = NSMakeRect(0, 0, 10, 10);
  EXPECT_EQ(NSUnionRect(a, NSMakeRect(20, -5, 1, 1)), NSMakeRect(0, -5, 21, 15));
  EXPECT_EQ(NSUnionRect(a, NSMakeRect(50, 50, 0, 3)), a);
  EXPECT_EQ(NSIntersectionRect(a, NSMakeRect(5, 5, 10, 2)), NSMakeRect(5, 5, 5, 2));
  EXPECT_EQ(NSIntersectionRect(a, NSMakeRect(10, 0, 5, 5)), NSZeroRect);
  EXPECT_EQ(NSIntegralRect(NSMakeRect(-0.5, 1.25, 2, 2)), NSMakeRect(-1, 1, 3, 3));
  EXPECT_TRUE(NSPointInRect({0, 0}, a));
  EXPECT_FALSE(NSPointInRect({10, 5}, a));
}

TEST(Geometry, TransformsComposeAndInvert) {
  const auto move = CGAffineTransformMakeTranslation(3, 4);
  const auto turn = CGAffineTransformMakeRotation(M_PI / 2);
  const CGPoint p = CGPointApplyAffineTransform({1, 0}, CGAffineTransformConcat(turn, move));
  EXPECT_NEAR(p.x, 3, 1e-12);
  EXPECT_NEAR(p.y, 5, 1e-12);
  const auto both = CGAffineTransformConcat(CGAffineTransformMakeScale(2, -3), move);
  const CGPoint back = CGPointApplyAffineTransform(CGPointApplyAffineTransform({7, 9}, both),
                                                   CGAffineTransformInvert(both));
  EXPECT_NEAR(back.x, 7, 1e-12);
  EXPECT_NEAR(back.y, 9, 1e-12);
  EXPECT_EQ(CGRectApplyAffineTransform(NSMakeRect(0, 0, 2, 1), CGAffineTransformMakeScale(-1, 2)),
            NSMakeRect(-2, 0, 2, 2));
}
