#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "document/DocumentClasses.h"
#include "draw/shapes/DrawMessages.h"
#include "draw/shapes/DrawRectShape.h"
#include "draw/shapes/FixedOutlines.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/values/NSString.h"
#include "platform/foundation/values/NSValue.h"
#include "support/Documents.h"
#include "support/Draws.h"

namespace {

/// Each test may run alone, without a document that would make the classes known.
[[maybe_unused]] const bool kRegistered = (registerDocumentClasses(), true);

std::shared_ptr<DrawFixedShape> fixedShape(size_t index) {
  auto draw = std::make_shared<DrawFixedShape>(index);
  draw->init();
  return draw;
}

void expectPoints(const NSBezierPath& path, const std::vector<NSPoint>& expected,
                  const std::string& what) {
  // The close element and the move it brings along come last.
  ASSERT_EQ(path.elementCount(), static_cast<int64_t>(expected.size()) + 2) << what;
  for (size_t i = 0; i < expected.size(); ++i) {
    NSPoint p[3];
    path.elementAtIndex(static_cast<int64_t>(i), p);
    EXPECT_NEAR(p[0].x, expected[i].x, 2e-4) << what << " point " << i;
    EXPECT_NEAR(p[0].y, expected[i].y, 2e-4) << what << " point " << i;
  }
}

void expectRect(const NSRect& actual, const NSRect& expected, double tolerance,
                std::string_view what) {
  EXPECT_NEAR(NSMinX(actual), NSMinX(expected), tolerance) << what;
  EXPECT_NEAR(NSMinY(actual), NSMinY(expected), tolerance) << what;
  EXPECT_NEAR(NSMaxX(actual), NSMaxX(expected), tolerance) << what;
  EXPECT_NEAR(NSMaxY(actual), NSMaxY(expected), tolerance) << what;
}

}  // namespace

// Expected vertices were worked out by hand from the ray, the ellipse and the bending.
TEST(DrawPresetShapes, PolygonVertices) {
  struct Case {
    int64_t count;
    NSRect box;
    std::vector<NSPoint> vertices;
  };
  const Case cases[] = {
      {3, NSMakeRect(0, 0, 100, 100), {{50, 100}, {0, 13.39746}, {100, 13.39746}}},
      {2, NSMakeRect(0, 0, 100, 100), {{50, 100}, {0, 13.39746}, {100, 13.39746}}},
      {4, NSMakeRect(10, 20, 30, 80), {{25, 100}, {10, 60}, {25, 20}, {40, 60}}},
      {6,
       NSMakeRect(0, 0, 100, 100),
       {{50, 100}, {6.6987, 75}, {6.6987, 25}, {50, 0}, {93.3013, 25}, {93.3013, 75}}},
      // Tall: 162 is bent halfway to 90, 234 halfway to 270.
      {5,
       NSMakeRect(0, 0, 50, 100),
       {{25, 100}, {4.4055, 78.3459}, {11.3777, 8.0746}, {38.6223, 8.0746}, {45.5945, 78.3459}}},
      // Wide: 162 and 234 are bent halfway to 180.
      {5,
       NSMakeRect(0, 0, 100, 50),
       {{50, 50}, {2.3343, 32.5495}, {14.9797, 7.1562}, {85.0203, 7.1562}, {97.6657, 32.5495}}},
      // Multiples of four are not bent.
      {8,
       NSMakeRect(0, 0, 100, 50),
       {{50, 50},
        {27.6393, 47.3607},
        {0, 25},
        {27.6393, 2.6393},
        {50, 0},
        {72.3607, 2.6393},
        {100, 25},
        {72.3607, 47.3607}}},
  };
  for (const Case& c : cases) {
    const auto draw = made<DrawRectPolygon>();
    draw->setBezierPathWithBounds(c.box);
    draw->setPointsCount(c.count);
    expectPoints(*draw->bezierPath(), c.vertices, std::to_string(c.count) + " points");
  }
}

TEST(DrawPresetShapes, PolygonNamesAndCounts) {
  const auto draw = made<DrawRectPolygon>();
  draw->setBezierPathWithBounds(NSMakeRect(0, 0, 300, 300));
  EXPECT_EQ(draw->name(), "Hexagon");
  const std::pair<int64_t, const char*> names[] = {{-1, "Isosceles Triangle"},
                                                   {3, "Isosceles Triangle"},
                                                   {4, "Rhomb"},
                                                   {5, "Pentagon"},
                                                   {6, "Hexagon"},
                                                   {7, "Polygon"}};
  for (const auto& [count, name] : names) {
    draw->setPointsCount(count);
    EXPECT_EQ(draw->name(), name) << count;
  }
  draw->setPointsCount(int64_t{1} << 60);
  EXPECT_LE(draw->bezierPath()->elementCount(), 20000) << "what is built stays bounded";
}

TEST(DrawPresetShapes, StarVertices) {
  const auto draw = made<DrawRectStar>();
  const NSSize box{100, 100};
  draw->setBezierPathWithBounds({NSZeroPoint, box});
  const std::vector<NSPoint> star = {
      {50, 100}, {38.2443, 66.1803}, {2.4472, 65.4508},  {30.9789, 43.8197}, {20.6107, 9.5492},
      {50, 30},  {79.3893, 9.5492},  {69.0211, 43.8197}, {97.5528, 65.4508}, {61.7557, 66.1803}};
  expectPoints(*draw->bezierPath(), star, "no inner size");
  draw->setInnerSize({1.5, 0.005});
  expectPoints(*draw->bezierPath(), star, "too large and too small");
  draw->setInnerSize({0.6, 0.2});
  EXPECT_EQ(draw->effectiveInnerSizeWithControlSize(box), NSMakeSize(60, 20));
  NSPoint p[3];
  draw->bezierPath()->elementAtIndex(5, p);
  EXPECT_NEAR(p[0].y, 40, 1e-4) << "the lowest inner point lies on the inner ellipse";
}

TEST(DrawPresetShapes, ArchivedPathIsKeptUntilSomethingIsSet) {
  const auto document = madeDocument("preset shapes");
  for (size_t i = 0; i < kFixedOutlineCount + 4; ++i) {
    const auto draw = std::dynamic_pointer_cast<DrawRectShape>(document->allDraws()[8 + i]);
    ASSERT_NE(draw, nullptr);
    EXPECT_EQ(draw->className(), *draw->layerTitle());
    EXPECT_EQ(draw->bezierPath()->elementCount(), 3) << draw->className();
    EXPECT_EQ(draw->bezierPath()->lineJoinStyle(), LineJoin::round);
    EXPECT_EQ(draw->controlBoundsBeforeRotation(), NSMakeRect(4, 6, 30, 20));
    draw->setBezierPathWithBounds(NSMakeRect(10, 10, 50, 0.5));
    EXPECT_GT(draw->bezierPath()->elementCount(), 3 - (draw->name() == "Heart"));
    EXPECT_EQ(draw->controlBoundsBeforeRotation(), NSMakeRect(10, 10, 50, 0.5)) << "unclamped";
  }
}

TEST(DrawPresetShapes, ParametersOfArchives) {
  const auto document = madeDocument("preset shapes");
  const auto titled = [&]<class Draw>(const char* title, Draw*) {
    return std::dynamic_pointer_cast<Draw>(drawTitled(*document, title));
  };
  constexpr DrawRectPolygon* kPolygon = nullptr;
  constexpr DrawRectStar* kStar = nullptr;
  constexpr DrawRectMessage* kMessage = nullptr;
  EXPECT_EQ(titled("two points", kPolygon)->pointsCount(), 3);
  EXPECT_EQ(titled("points unsaid", kPolygon)->pointsCount(), 6);
  EXPECT_EQ(titled("points unsaid", kPolygon)->controlBoundsBeforeRotation(), NSZeroRect);
  EXPECT_EQ(titled("inner size unsaid", kStar)->innerSize(), NSZeroSize);
  EXPECT_EQ(titled("inner size", kStar)->innerSize(), NSMakeSize(0.5, 0.25));
  const auto unsaid = titled("bubble unsaid", kMessage);
  EXPECT_EQ(unsaid->radius(), 0.2F);
  EXPECT_EQ(unsaid->arrowA(), NSMakePoint(20, 0));
  EXPECT_EQ(unsaid->arrowB(), NSMakePoint(40, 0));
  const auto bubble = titled("bubble", kMessage);
  EXPECT_EQ(bubble->radius(), 0.125F);
  EXPECT_EQ(bubble->arrow(), NSMakePoint(1, -2));
  EXPECT_EQ(bubble->arrowA(), NSMakePoint(3, 4));
  EXPECT_EQ(bubble->arrowB(), NSMakePoint(5, 6));
}

TEST(DrawPresetShapes, RecordsSurviveARoundTrip) {
  const auto document = madeDocument("preset shapes");
  for (const auto& draw : document->allDraws()) {
    const auto copy = DrawBase::drawFromEncodedData(DrawBase::encodedData(draw));
    ASSERT_NE(copy, nullptr) << *draw->layerTitle();
    EXPECT_EQ(copy->className(), draw->className());
    // Whatever parameters there are, they build the same outline again.
    auto& a = dynamic_cast<DrawRectShape&>(*draw);
    auto& b = dynamic_cast<DrawRectShape&>(*copy);
    EXPECT_EQ(b.controlBoundsBeforeRotation(), a.controlBoundsBeforeRotation());
    EXPECT_EQ(b.bezierPathWithBounds(NSMakeRect(0, 0, 70, 90))->data().points,
              a.bezierPathWithBounds(NSMakeRect(0, 0, 70, 90))->data().points)
        << *draw->layerTitle();
  }
}

TEST(DrawPresetShapes, PathDataIsTheBox) {
  const auto draw = made<DrawRectStar>();
  const NSRect box = NSMakeRect(1, 2, 30, 40);
  draw->setBezierPathWithBounds(box);
  const auto value = std::dynamic_pointer_cast<NSValue>(draw->bezierPathData());
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(value->rectValue(), box);
  draw->setBezierPathWithData(NSString::stringWithString("{{0, 0}, {9, 9}}"));
  EXPECT_EQ(draw->controlBoundsBeforeRotation(), box) << "other objects are ignored";
  draw->setBezierPathWithData(NSValue::valueWithRect(NSMakeRect(0, 0, 9, 9)));
  EXPECT_EQ(draw->pathBounds().size.height > 8, true);
  draw->setBezierPathWithData(nullptr);
  EXPECT_EQ(draw->controlBoundsBeforeRotation(), NSZeroRect);
}

TEST(FixedOutlines, TouchTheBoxAndKeepTheirAspect) {
  std::set<std::string_view> names;
  for (size_t i = 0; i < kFixedOutlineCount; ++i) {
    const auto draw = fixedShape(i);
    const std::string_view what = draw->className();
    names.insert(what);
    EXPECT_EQ(NSClassFromString(what), &draw->classInfo());
    EXPECT_FALSE(draw->name().empty());
    const bool keepsSquare = what == "DrawRectRefresh" || what == "DrawRectSignal";
    EXPECT_EQ(draw->width2HeightRatioForShift() == 1, keepsSquare || what == "DrawRectClock")
        << what;
    const NSRect box = NSMakeRect(-20, 5, 1000, 300);
    draw->setBezierPathWithBounds(box);
    // The arrow that turns is round, so that it cannot touch all four sides.
    const bool round = what == "DrawRectRefresh";
    expectRect(draw->pathBounds(), box, round ? 60 : 2, what);
    // Control points lie no farther out than a fifth of the box, but for the heart's wide arcs.
    const double reach = what == "DrawRectHeart" ? 0.6 : 0.2;
    const NSRect around = NSInsetRect(box, -1000 * reach, -300 * reach);
    EXPECT_EQ(NSUnionRect(around, draw->bezierPath()->controlPointBounds()), around) << what;
  }
  EXPECT_EQ(names.size(), kFixedOutlineCount);
}

TEST(FixedOutlines, BothWindingRulesAgreeAndFillAPart) {
  constexpr int kGrid = 60;
  for (size_t i = 0; i < kFixedOutlineCount; ++i) {
    const auto draw = fixedShape(i);
    draw->setBezierPathWithBounds(NSMakeRect(0, 0, kGrid, kGrid));
    const auto evenOdd = draw->bezierPath()->copy();
    evenOdd->setWindingRule(WindingRule::evenOdd);
    int inside = 0;
    for (int k = 0; k < kGrid * kGrid; ++k) {
      const NSPoint p{k % kGrid + 0.51, k / kGrid + 0.47};
      const bool in = draw->bezierPath()->containsPoint(p);
      inside += in;
      ASSERT_EQ(in, evenOdd->containsPoint(p)) << draw->className() << " at " << p.x << "," << p.y;
    }
    EXPECT_GT(inside, kGrid * kGrid / 5) << draw->className();
    EXPECT_LT(inside, kGrid * kGrid * 9 / 10) << draw->className();
  }
}

TEST(FixedOutlines, WhatShouldBeSymmetricIs) {
  constexpr int kGrid = 60;
  const std::set<std::string_view> lopsided = {
      "DrawRectCloud",   "DrawRectLightning", "DrawRectAppleLogo",
      "DrawRectCamera",  "DrawRectRefresh",   "DrawRectFolder",
      "DrawRectPicture", "DrawRectClock",     "DrawRectSignal"};
  for (size_t i = 0; i < kFixedOutlineCount; ++i) {
    const auto draw = fixedShape(i);
    if (lopsided.contains(draw->className())) continue;
    // The house has a chimney.
    const int rows = draw->className() == "DrawRectHome" ? kGrid / 2 : kGrid;
    draw->setBezierPathWithBounds(NSMakeRect(0, 0, kGrid, kGrid));
    int different = 0;
    for (int k = 0; k < kGrid * rows; ++k) {
      const NSPoint p{k % kGrid + 0.5, k / kGrid + 0.47};
      different += draw->bezierPath()->containsPoint(p) !=
                   draw->bezierPath()->containsPoint({kGrid - p.x, p.y});
    }
    // Coordinates are rounded to a ten-thousandth of the box.
    EXPECT_LE(different, 2) << draw->className();
  }
}

TEST(FixedOutlines, HeartEndsWhereItStartsWithoutAClose) {
  const auto heart = fixedShape(0);
  ASSERT_EQ(heart->className(), "DrawRectHeart");
  heart->setBezierPathWithBounds(NSMakeRect(0, 0, 100, 200));
  ASSERT_EQ(heart->bezierPath()->elementCount(), 3);
  NSPoint p[3];
  heart->bezierPath()->elementAtIndex(1, p);
  EXPECT_NEAR(p[0].x, -49, 1e-9);
  EXPECT_NEAR(p[1].x, 26, 1e-9);
  EXPECT_NEAR(p[2].x, 50, 1e-9);
  EXPECT_NEAR(p[2].y, 164, 1e-9);
  heart->bezierPath()->elementAtIndex(2, p);
  EXPECT_NEAR(p[2].y, 0, 1e-9);
}

TEST(DrawPresetShapes, ScalingTakesTheParametersAlong) {
  const auto bubble = made<DrawRectMessage>();
  bubble->setBezierPathWithBounds(NSMakeRect(10, 10, 80, 40));
  bubble->scaleByX(2, 3, NSZeroPoint, ResizeLineWidth::no);
  EXPECT_EQ(bubble->controlBoundsBeforeRotation(), NSMakeRect(20, 30, 160, 120));
  EXPECT_EQ(bubble->arrowA(), NSMakePoint(40, 0));
  EXPECT_EQ(bubble->arrow(), NSMakePoint(20, -90));

  // A quarter turn swaps the axes: the turned box must be twice as wide and three times as tall.
  const auto star = made<DrawRectStar>();
  star->setBezierPathWithBounds(NSMakeRect(0, 0, 40, 20));
  star->setRotateDegree(90);
  const NSRect before = star->drawRect();
  star->scaleByX(2, 3, NSZeroPoint, ResizeLineWidth::no);
  const NSRect after = star->drawRect();
  const CGFloat line = star->lineWidth();
  EXPECT_NEAR(NSWidth(after) - line, 2 * (NSWidth(before) - line), 1e-5);
  EXPECT_NEAR(NSHeight(after) - line, 3 * (NSHeight(before) - line), 1e-5);
  EXPECT_NEAR(NSMidX(after), 2 * NSMidX(before), 1e-5);
}
