#include <gtest/gtest.h>

#include <cmath>

#include "platform/graphics/context/CGContext.h"
#include "platform/graphics/context/GradientDrawing.h"
#include "support/Bitmaps.h"

namespace {

const CGGradient kBlackToWhite({{0, {0, 0, 0, 1}}, {1, {1, 1, 1, 1}}});

/// The grey at the pixel (x, y) counted from the bottom.
int grayAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y) {
  return pixelAt(bitmap, x, bitmap.pixelsHigh() - 1 - y)[0];
}

/// The inside of the context's current path in the fill colour.
void paintCurrentPath(CGContext& context) {
  const CGContextStateScope state(context);
  context.clipToPath(WindingRule::nonZero);
  context.fill(NSMakeRect(-1000, -1000, 2000, 2000));
}

struct AxisCase {
  CGFloat angle;
  NSPoint start;
  NSPoint end;
};

void expectAxis(const LinearAxis& axis, const AxisCase& expected) {
  EXPECT_NEAR(axis.start.x, expected.start.x, 1e-9) << expected.angle;
  EXPECT_NEAR(axis.start.y, expected.start.y, 1e-9) << expected.angle;
  EXPECT_NEAR(axis.end.x, expected.end.x, 1e-9) << expected.angle;
  EXPECT_NEAR(axis.end.y, expected.end.y, 1e-9) << expected.angle;
}

TEST(LinearAxis, SpansTheRectangleAlongTheAngle) {
  // 60 by 40 around (50, 30). At 45 degrees half the length is (30 + 20) / sqrt 2, so 25 in x and
  // y.
  const NSRect rect = NSMakeRect(20, 10, 60, 40);
  const AxisCase cases[] = {
      {0, {20, 30}, {80, 30}},   {90, {50, 10}, {50, 50}},   {-90, {50, 50}, {50, 10}},
      {180, {80, 30}, {20, 30}}, {45, {25, 5}, {75, 55}},    {225, {75, 55}, {25, 5}},
      {135, {75, 5}, {25, 55}},  {315, {25, 55}, {75, 5}},   {-45, {25, 55}, {75, 5}},
      {405, {25, 5}, {75, 55}},  {-630, {50, 10}, {50, 50}},
  };
  for (const AxisCase& c : cases) {
    const auto axis = linearAxis(rect, c.angle);
    ASSERT_TRUE(axis);
    expectAxis(*axis, c);
  }
}

TEST(LinearAxis, EndsWhereThePathEnds) {
  // A right angle at the origin: along 45 degrees it runs from 0 to 10 / sqrt 2, not to the corner
  // of its box. The axis passes through the middle (5, 5) of the box.
  PathData triangle;
  triangle.move({0, 0});
  triangle.line({10, 0});
  triangle.line({0, 10});
  triangle.close();
  expectAxis(*linearAxis(triangle, 45), {45, {0, 0}, {5, 5}});
  expectAxis(*linearAxis(triangle, 90), {90, {5, 0}, {5, 10}});
  expectAxis(*linearAxis(pathOfRect(NSMakeRect(20, 10, 60, 40)), 45), {45, {25, 5}, {75, 55}});
}

TEST(LinearAxis, NeedsSomethingToSpan) {
  EXPECT_FALSE(linearAxis(NSMakeRect(0, 0, 0, 5), 0));
  EXPECT_FALSE(linearAxis(NSMakeRect(0, 0, NAN, 5), 0));
  EXPECT_FALSE(linearAxis(NSMakeRect(0, 0, 5, 5), NAN));
  EXPECT_FALSE(linearAxis(PathData(), 0));
  PathData infinite;
  infinite.move({0, 0});
  infinite.line({INFINITY, 3});
  EXPECT_FALSE(linearAxis(infinite, 30));
}

TEST(RadialAxis, CoversTheRectangleFromAnyCentre) {
  const NSRect rect = NSMakeRect(20, 10, 60, 80);
  const auto middle = radialAxis(rect, {0, 0});
  EXPECT_EQ(middle->endCenter, (NSPoint{50, 50}));
  EXPECT_DOUBLE_EQ(middle->endRadius, 50);
  const auto corner = radialAxis(rect, {1, 1});
  EXPECT_EQ(corner->startCenter, (NSPoint{50, 50}));
  EXPECT_EQ(corner->startRadius, 0);
  EXPECT_EQ(corner->endCenter, (NSPoint{80, 90}));
  EXPECT_DOUBLE_EQ(corner->endRadius, 100);
  const auto left = radialAxis(rect, {-0.5, 0});
  EXPECT_EQ(left->endCenter, (NSPoint{35, 50}));
  EXPECT_DOUBLE_EQ(left->endRadius, std::hypot(45, 40));
  EXPECT_EQ(radialAxis(rect, {7, NAN})->endCenter, (NSPoint{80, 50}));
  EXPECT_FALSE(radialAxis(NSMakeRect(0, 0, 1, 0), {0, 0}));
}

TEST(DrawGradient, PutsTheStartColourWhereTheAngleSays) {
  struct {
    CGFloat angle;
    int64_t startX, startY;
  } const cases[] = {{30, 0, 0}, {120, 63, 0}, {210, 63, 31}, {300, 0, 31}};
  for (const auto& c : cases) {
    const auto bitmap = NSBitmapImageRep::create(64, 32);
    CGContext context(bitmap);
    drawGradientInRect(context, kBlackToWhite, NSMakeRect(0, 0, 64, 32), c.angle);
    EXPECT_LE(grayAt(*bitmap, c.startX, c.startY), 5) << c.angle;
    EXPECT_GE(grayAt(*bitmap, 63 - c.startX, 31 - c.startY), 250) << c.angle;
    EXPECT_NEAR(grayAt(*bitmap, 32, 16), 128, 5) << c.angle;
  }
}

TEST(DrawGradient, ValuesAlongTheWay) {
  const auto bitmap = NSBitmapImageRep::create(20, 20);
  CGContext context(bitmap);
  drawGradientInRect(context, kBlackToWhite, NSMakeRect(5, 5, 10, 10), 90);
  // Pixel centres lie at 0.05, 0.15, ... of the way up; nothing outside.
  for (int64_t y = 0; y < 20; ++y) {
    const bool inside = y >= 5 && y < 15;
    EXPECT_NEAR(grayAt(*bitmap, 7, y), inside ? (static_cast<double>(y) - 4.5) * 25.5 : 0, 0.6);
    EXPECT_EQ(pixelAt(*bitmap, 7, 19 - y)[3], inside ? 255 : 0);
  }
  EXPECT_EQ(pixelAt(*bitmap, 4, 10)[3], 0);
}

TEST(DrawGradient, RadialValues) {
  const auto bitmap = NSBitmapImageRep::create(40, 30);
  CGContext context(bitmap);
  drawGradientInRect(context, kBlackToWhite, NSMakeRect(0, 0, 40, 30), NSPoint{0, 0});
  // Half the diagonal is 25.
  EXPECT_NEAR(grayAt(*bitmap, 30, 15), std::hypot(10.5, 0.5) / 25 * 255, 1);
  EXPECT_NEAR(grayAt(*bitmap, 0, 0), std::hypot(19.5, 14.5) / 25 * 255, 1);
  drawGradientInRect(context, kBlackToWhite, NSMakeRect(0, 0, 40, 30), NSPoint{1, 1});
  // Circles from (20, 15) to the corner (40, 30) with radius 50: a point p solves
  // |p - c0 - t d| = 50 t. At the middle's pixel (19.5, 14.5): t = 0.0141 -> (625 - 2500) t^2 ...
  const double px = -0.5;
  const double b = px * 20 + px * 15;
  const double a = 20.0 * 20 + 15 * 15 - 2500;
  const double t = (b - std::sqrt(b * b - a * 2 * px * px)) / a;
  EXPECT_NEAR(grayAt(*bitmap, 19, 14), t * 255, 1);
  // The last circle touches the opposite corner; towards it circles lie 50 - 25 pixels per unit
  // of t apart, and the pixel's centre half a diagonal inside.
  EXPECT_NEAR(grayAt(*bitmap, 0, 0), 255 - std::sqrt(0.5) / 25 * 255, 1);
}

TEST(DrawGradient, InAPathFollowsItsWindingRule) {
  PathData rings = pathOfRect(NSMakeRect(0, 0, 12, 12));
  const PathData inner = pathOfRect(NSMakeRect(4, 4, 4, 4));
  rings.verbs.insert(rings.verbs.end(), inner.verbs.begin(), inner.verbs.end());
  rings.points.insert(rings.points.end(), inner.points.begin(), inner.points.end());
  for (const WindingRule rule : {WindingRule::nonZero, WindingRule::evenOdd}) {
    const auto bitmap = NSBitmapImageRep::create(12, 12);
    CGContext context(bitmap);
    drawGradientInBezierPath(context, kBlackToWhite, rings, rule, 0);
    drawGradientInBezierPath(context, kBlackToWhite, rings, rule, NSPoint{0.5, 0});
    EXPECT_EQ(pixelAt(*bitmap, 1, 1)[3], 255);
    EXPECT_EQ(pixelAt(*bitmap, 5, 5)[3], rule == WindingRule::evenOdd ? 0 : 255);
  }
}

TEST(DrawGradient, MirroredSpaceMirrorsTheGradient) {
  const auto bitmap = NSBitmapImageRep::create(10, 10);
  CGContext context(bitmap);
  context.concatenate({1, 0, 0, -1, 0, 10});
  drawGradientInRect(context, kBlackToWhite, NSMakeRect(0, 0, 10, 10), 90);
  EXPECT_NEAR(grayAt(*bitmap, 5, 9), 12.75, 1);
  EXPECT_NEAR(grayAt(*bitmap, 5, 0), 242.25, 1);
}

TEST(CGGradient, ComponentsAndLocations) {
  const CGFloat components[] = {1, 0, 0, 1, 0, 1, 0, 0.5, 0, 0, 1, 1, 9};
  const CGFloat locations[] = {0.2, 0.9};
  const auto even = CGGradientCreateWithColorComponents(components, {}).stops();
  ASSERT_EQ(even.size(), 3U);
  EXPECT_EQ(even[1], (GradientStop{0.5, {0, 1, 0, 0.5}}));
  const auto placed = CGGradientCreateWithColorComponents(components, locations).stops();
  ASSERT_EQ(placed.size(), 2U);
  EXPECT_EQ(placed[1], (GradientStop{0.9, {0, 1, 0, 0.5}}));
  EXPECT_TRUE(CGGradientCreateWithColorComponents({}, locations).stops().empty());
}

TEST(CGContext, PathsAreFixedByTheTransformAtTheirTime) {
  const auto bitmap = NSBitmapImageRep::create(20, 20);
  CGContext context(bitmap);
  context.setFillColor({1, 0, 0, 1});
  context.beginPath();
  context.addPath(pathOfRect(NSMakeRect(0, 0, 2, 2)));
  context.concatenate(CGAffineTransformMakeTranslation(10, 10));
  context.addPath(pathOfRect(NSMakeRect(0, 0, 2, 2)));
  context.concatenate(CGAffineTransformMakeScale(100, 100));
  paintCurrentPath(context);
  const auto filled = [&](int64_t x, int64_t y) { return pixelAt(*bitmap, x, 19 - y)[3] == 255; };
  for (int64_t y = 0; y < 20; ++y) {
    for (int64_t x = 0; x < 20; ++x) {
      EXPECT_EQ(filled(x, y), (x < 2 && y < 2) || (x >= 10 && x < 12 && y >= 10 && y < 12));
    }
  }
  context.fill(NSMakeRect(-1, -1, 2, 2), NSCompositingOperation::clear);
  EXPECT_FALSE(filled(0, 0));
  // The path is gone.
  paintCurrentPath(context);
  EXPECT_FALSE(filled(0, 0));
}

TEST(CGContext, StrokesAreAsWideAsTheTransformInForceMakesThem) {
  const auto bitmap = NSBitmapImageRep::create(20, 20);
  CGContext context(bitmap);
  PathData line;
  line.move({2, 10});
  line.line({18, 10});
  const auto rowsAt = [&](int64_t x) {
    int rows = 0;
    for (int64_t y = 0; y < 20; ++y) rows += pixelAt(*bitmap, x, y)[3] == 255 ? 1 : 0;
    return rows;
  };
  context.strokeStyle().width = 2;
  context.addPath(line);
  context.concatenate(CGAffineTransformMakeScale(1, 3));
  context.replacePathWithStrokedPath();
  paintCurrentPath(context);
  EXPECT_EQ(rowsAt(10), 6);
  // A gradient along a line.
  context.fill(NSMakeRect(0, 0, 20, 20), NSCompositingOperation::clear);
  context.concatenate(CGAffineTransformMakeScale(1, 1.0 / 3));
  context.strokeStyle().width = 4;
  context.addPath(line);
  context.replacePathWithStrokedPath();
  context.clipToPath(WindingRule::nonZero);
  context.draw(kBlackToWhite, LinearAxis{{2, 0}, {18, 0}}, GradientExtent::both);
  EXPECT_EQ(rowsAt(10), 4);
  EXPECT_EQ(rowsAt(1), 0);
  EXPECT_NEAR(grayAt(*bitmap, 10, 10), 8.5 / 16 * 255, 1);
}

TEST(CGContext, GeometryThatIsNotFinitePaintsNothing) {
  const auto bitmap = NSBitmapImageRep::create(4, 4);
  CGContext context(bitmap);
  PathData path;
  path.move({0, 0});
  path.line({NAN, 3});
  path.line({1e300, INFINITY});
  context.fill(path, WindingRule::nonZero);
  context.stroke(path, {});
  drawGradientInBezierPath(context, kBlackToWhite, path, WindingRule::nonZero, 30);
  {
    const CGContextStateScope state(context);
    context.concatenate({1, 2, 2, 4, 0, 0});
    context.fill(NSMakeRect(0, 0, 4, 4));
    context.draw(kBlackToWhite, LinearAxis{{0, 0}, {1, 1}}, GradientExtent::both);
    context.addPath(pathOfRect(NSMakeRect(0, 0, 4, 4)));
    context.concatenate({1, 0, 0, 1, 1, 1});
    context.replacePathWithStrokedPath();
    paintCurrentPath(context);
  }
  {
    const CGContextStateScope state(context);
    context.concatenate({NAN, 0, 0, 1, 0, 0});
    context.fill(NSMakeRect(0, 0, 4, 4));
    context.clip(NSMakeRect(0, 0, 4, 4));
  }
  EXPECT_TRUE(bitmap->usedRows().empty());
}

}  // namespace
