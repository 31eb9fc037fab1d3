#include <gtest/gtest.h>

#include "draw/shapes/DrawRectangle.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/gradient/NSGradient.h"

namespace {

template <class T>
std::shared_ptr<T> made() {
  auto draw = std::make_shared<T>();
  draw->init();
  return draw;
}

std::string verbsOf(const NSBezierPath& path) {
  std::string text;
  for (const PathVerb verb : path.data().verbs) text += "MLCZQ"[static_cast<size_t>(verb)];
  return text;
}

}  // namespace

TEST(DrawRectangle, InitialSettings) {
  EXPECT_EQ(made<DrawRectangle>()->bezierPath()->lineJoinStyle(), LineJoin::miter);
  EXPECT_EQ(made<DrawRectangle>()->bezierPath()->lineCapStyle(), LineCap::square);
  EXPECT_EQ(made<DrawEllipse>()->bezierPath()->lineCapStyle(), LineCap::round);
  const auto gradient = made<DrawGradient>();
  EXPECT_FALSE(gradient->enableStroke());
  EXPECT_TRUE(gradient->useGradualFill());
  EXPECT_EQ(gradient->fillGradientDegree(), 0);
  EXPECT_EQ(gradient->fillGradient()->stops()[1].color->redComponent(), 0.5);
  const auto rectangle = made<DrawRectangle>();
  EXPECT_TRUE(rectangle->enableStroke());
  EXPECT_FALSE(rectangle->enableFill());
  EXPECT_EQ(rectangle->strokeGradientDegree(), 0);
  EXPECT_EQ(rectangle->fillGradientDegree(), 90);
  EXPECT_EQ(rectangle->lineWidth(), 2);
}

TEST(DrawRectangle, OutlinesKeepTheSettingsAndAreNeverEmpty) {
  const auto draw = made<DrawRoundRectangle>();
  draw->bezierPath()->setLineWidth(7);
  const auto outline = draw->bezierPathWithBounds(NSMakeRect(3, 4, 0.2, -5));
  EXPECT_EQ(outline->bounds(), NSMakeRect(3, 4, 1, 1));
  EXPECT_EQ(outline->lineWidth(), 7);
  EXPECT_TRUE(draw->bezierPath()->isEmpty()) << "the draw is not touched";

  const auto own = draw->bezierPath();
  draw->setBezierPathWithBounds(NSMakeRect(0, 0, 100, 50));
  EXPECT_EQ(draw->bezierPath(), own) << "the path object is kept";
  EXPECT_EQ(verbsOf(*own), "MLLLZM");
  draw->setXRadius(10, 20);
  EXPECT_EQ(verbsOf(*own), "MCLCLCLCZM");
  EXPECT_EQ(own->bounds(), NSMakeRect(0, 0, 100, 50));
  draw->setXRadius(-1, 5);
  EXPECT_EQ(draw->xRadius(), 10);
  EXPECT_EQ(draw->yRadius(), 20) << "no partial update";
  draw->setXRadius(0, 0);
  EXPECT_EQ(verbsOf(*own), "MLLLZM");
  const auto ellipse = made<DrawEllipse>();
  ellipse->setBezierPathWithBounds(NSMakeRect(0, 0, 100, 50));
  EXPECT_EQ(verbsOf(*ellipse->bezierPath()), "MCCCCZM");
}

TEST(DrawRectangle, BoundsOfTurnedRectangles) {
  const auto draw = made<DrawRectangle>();
  EXPECT_EQ(draw->controlBounds(), NSZeroRect);
  draw->setBezierPathWithBounds(NSMakeRect(10, 20, 40, 20));
  draw->setRotateDegree(90);
  EXPECT_EQ(draw->controlBoundsBeforeRotation(), NSMakeRect(10, 20, 40, 20));
  EXPECT_EQ(draw->controlBounds(), NSMakeRect(20, 10, 20, 40));
  EXPECT_EQ(draw->rotateCenter(), NSMakePoint(30, 30));
  draw->applyRotationToBezierPath();
  EXPECT_EQ(draw->rotateDegree(), 0);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(20, 10, 20, 40));
}

TEST(DrawRectangle, GradientsStayGradients) {
  const auto draw = made<DrawGradient>();
  draw->setUseGradualFill(false);
  EXPECT_TRUE(draw->useGradualFill());
  const auto old = draw->fillGradient();
  draw->setFillGradient(nullptr);
  EXPECT_EQ(draw->fillGradient(), old);
  draw->setEnableStroke(true);
  EXPECT_FALSE(draw->drawStroke());
  EXPECT_EQ(draw->name(), "Gradient");
}
