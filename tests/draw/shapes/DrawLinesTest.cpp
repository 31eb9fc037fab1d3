#include <gtest/gtest.h>

#include <tuple>

#include "document/DocumentClasses.h"
#include "draw/shapes/DrawLines.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/Draws.h"

namespace {

/// Each test may run alone, without a document that would make the classes known.
[[maybe_unused]] const bool kRegistered = (registerDocumentClasses(), true);

std::shared_ptr<DrawBrokenLine> polyline() {
  auto draw = made<DrawBrokenLine>();
  draw->bezierPath()->moveToPoint({0, 0});
  draw->bezierPath()->lineToPoint({10, 0});
  draw->bezierPath()->lineToPoint({10, 10});
  return draw;
}

class DrawLines : public testing::Test {
 protected:
  template <class Draw>
  std::shared_ptr<Draw> titled(const char* title) {
    return std::dynamic_pointer_cast<Draw>(drawTitled(*document_, title));
  }
  std::shared_ptr<PaintManager> document_ = madeDocument("lines");
};

}  // namespace

TEST_F(DrawLines, NamesArrowsAndFillsOfArchivedDraws) {
  struct Case {
    const char* title;
    const char* name;
    int64_t arrows;
    bool fills;
  };
  const Case cases[] = {
      {"line", "Line", 2, false},
      {"curve", "Curve", 0, false},
      {"polyline", "Polyline", 1, false},
      {"three sides", "Triangle", 0, true},
      {"four sides", "Free Polygon", 0, true},
      {"closed path", "Shape", 0, true},
      {"open path", "Path", 2, false},
  };
  for (const Case& c : cases) {
    const auto draw = drawTitled(*document_, c.title);
    EXPECT_EQ(draw->name(), c.name) << c.title;
    EXPECT_EQ(draw->arrowStyle(), c.arrows) << c.title;
    EXPECT_EQ(draw->classDrawBezierPathFill(), c.fills) << c.title;
    const auto copy = DrawBase::drawFromEncodedData(DrawBase::encodedData(draw));
    EXPECT_EQ(copy->arrowStyle(), c.arrows) << c.title;
    EXPECT_EQ(copy->name(), c.name) << c.title;
  }
  EXPECT_EQ(drawTitled(*document_, "three sides")->bezierPath()->lineJoinStyle(), LineJoin::round);
}

TEST_F(DrawLines, PointsComeFromThePath) {
  const auto line = titled<DrawLine>("line");
  EXPECT_EQ(line->startPoint(), NSMakePoint(10, 20));
  EXPECT_EQ(line->endPoint(), NSMakePoint(30, 40));
  const auto curve = titled<DrawCurve>("curve");
  EXPECT_EQ(curve->startPoint(), NSMakePoint(10, 20));
  EXPECT_EQ(curve->ctlPoint1(), NSMakePoint(1, 2));
  EXPECT_EQ(curve->ctlPoint2(), NSMakePoint(3, 4));
  EXPECT_EQ(curve->endPoint(), NSMakePoint(30, 40));
  for (const char* title : {"line of three", "line of a curve"}) {
    const auto other = titled<DrawLine>(title);
    EXPECT_EQ(other->startPoint(), NSZeroPoint) << title;
    EXPECT_EQ(other->endPoint(), NSZeroPoint) << title;
    EXPECT_FALSE(other->bezierPath()->isEmpty()) << "still drawn from its path";
  }
  const auto other = titled<DrawCurve>("curve of a line");
  EXPECT_EQ(other->startPoint(), NSZeroPoint);
  EXPECT_EQ(other->ctlPoint1(), NSZeroPoint);
  EXPECT_EQ(other->endPoint(), NSZeroPoint);
}

TEST(DrawLine, PointsFollowWhateverChangesThePath) {
  const auto line = made<DrawLine>();
  EXPECT_EQ(line->bezierPath()->lineCapStyle(), LineCap::butt);
  line->setStartPoint({1, 2}, {3, 4});
  EXPECT_EQ(line->pathBounds(), NSMakeRect(1, 2, 2, 2));
  const auto saved = line->bezierPathData();
  line->scaleByX(10, 10, NSZeroPoint, ResizeLineWidth::yes);
  EXPECT_EQ(line->endPoint(), NSMakePoint(30, 40));
  EXPECT_EQ(line->lineWidth(), 20);
  line->moveByX(1, -1);
  EXPECT_EQ(line->startPoint(), NSMakePoint(11, 19));
  line->setBezierPathWithData(saved);
  EXPECT_EQ(line->endPoint(), NSMakePoint(3, 4));
  EXPECT_EQ(line->lineWidth(), 2);
  line->setBezierPathWithData(NSString::stringWithString("no path"));
  EXPECT_EQ(line->endPoint(), NSMakePoint(3, 4));

  const auto curve = made<DrawCurve>();
  curve->setStartPoint({0, 0}, {1, 1}, {2, 2}, {3, 0});
  curve->moveByX(10, 0);
  EXPECT_EQ(curve->ctlPoint2(), NSMakePoint(12, 2));
}

TEST(DrawFreePolygon, IsATriangleBySidesOrByPath) {
  const auto polygon = made<DrawFreePolygon>();
  for (const NSPoint p : {NSPoint{0, 0}, {9, 0}, {9, 9}, {5, 14}, {0, 9}})
    polygon->bezierPath()->lineToPoint(p);
  polygon->bezierPath()->closePath();
  EXPECT_EQ(polygon->name(), "Free Polygon");
  polygon->setSemgents(3);
  EXPECT_EQ(polygon->name(), "Triangle") << "that is what is being created";
  EXPECT_EQ(polygon->semgents(), 3);
  const auto read = std::dynamic_pointer_cast<DrawFreePolygon>(
      DrawBase::drawFromEncodedData(DrawBase::encodedData(polygon)));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->semgents(), 0) << "it is not archived";
  EXPECT_EQ(read->name(), "Free Polygon");
}

TEST(DrawBezierPath, IsFilledExactlyWhenClosed) {
  const auto path = made<DrawBezierPath>();
  path->setEnableStrokeOutline(true);
  path->setStrokeOutlineColor(NSColor::redColor());
  for (const NSPoint p : {NSPoint{0, 0}, {9, 0}, {9, 9}, {0, 9}})
    path->bezierPath()->lineToPoint(p);
  EXPECT_EQ(path->name(), "Path");
  EXPECT_TRUE(path->hasStrokeOutline());
  EXPECT_FALSE(DrawBezierPath::mustClosePath());
  EXPECT_TRUE(DrawBezierPath::canResizedWithRectangleKnobs());
  path->bezierPath()->closePath();
  EXPECT_EQ(path->name(), "Shape");
  EXPECT_TRUE(path->classDrawFill());
  EXPECT_FALSE(path->hasStrokeOutline());
}

TEST(DrawBezierPath, WhileItIsDraggedItsLastElementDoesNotShow) {
  const auto path = made<DrawBezierPath>();
  path->bezierPath()->moveToPoint({10, 10});
  path->bezierPath()->lineToPoint({30, 10});
  path->bezierPath()->lineToPoint({30, 40});
  const auto isDrawnAt = [&](int64_t x, int64_t y) {
    // Two wide, the picture starts at (9, 9).
    const auto image = path->renderedImage();
    return pixelAt(*image, x - 9, image->pixelsHigh() - 1 - (y - 9))[3] == 255;
  };
  EXPECT_TRUE(isDrawnAt(20, 10));
  EXPECT_TRUE(isDrawnAt(30, 30));
  EXPECT_TRUE(path->hasBorder());
  path->setCreatingWithEvent(true);
  EXPECT_TRUE(isDrawnAt(30, 30));
  path->setDraggingWhenInitDraw(true);
  EXPECT_TRUE(isDrawnAt(20, 10));
  EXPECT_FALSE(isDrawnAt(30, 30));
  EXPECT_FALSE(path->hasBorder());
  EXPECT_EQ(path->bezierPath()->elementCount(), 3);
  EXPECT_EQ(made<DrawBezierPath>()->renderedImage(), nullptr);
}

TEST(DrawBezierPath, ANewPathEndsEditingOfAnElement) {
  const auto path = made<DrawBezierPath>();
  const auto other = polyline()->bezierPathData();
  EXPECT_FALSE(path->resetSelectedElement());
  path->setBezierPathWithData(other);
  for (const auto& [index, valid] : {std::pair{2, true}, {3, false}, {-1, false}}) {
    path->setFocusElementIndex(index);
    EXPECT_EQ(path->resetSelectedElement(), valid) << index;
    EXPECT_EQ(path->focusElementIndex(), -1);
  }
  path->setFocusElementIndex(1);
  path->setBezierPathWithData(other);
  EXPECT_EQ(path->focusElementIndex(), -1);
}

TEST(DrawArrowed, AttributesCarryTheArrowStyle) {
  const auto source = polyline();
  source->setArrowStyle(2);
  const auto target = made<DrawLine>();
  target->setStartPoint({0, 0}, {5, 5});
  EXPECT_TRUE(target->setDrawAttributes(*source->drawAttributes()));
  EXPECT_EQ(target->arrowStyle(), 2);

  auto attributes = std::make_shared<NSMutableDictionary>();
  attributes->setObject(NSString::stringWithString("1"), "DAKeyArrowStyle");
  target->setDrawAttributes(*attributes);
  EXPECT_EQ(target->arrowStyle(), 2) << "a text is no style";
  attributes->setObject(NSNumber::numberWithInteger(1), "DAKeyArrowStyle");
  EXPECT_TRUE(target->setDrawAttributes(*attributes));
  EXPECT_EQ(target->arrowStyle(), 1);
  attributes->setObject(NSString::stringWithString("DrawText"), "DAKeyClassName");
  attributes->setObject(NSNumber::numberWithInteger(0), "DAKeyArrowStyle");
  EXPECT_FALSE(target->setDrawAttributes(*attributes)) << "of a class that lines take nothing from";
  EXPECT_EQ(target->arrowStyle(), 1);
}

TEST(DrawBrokenLine, ClosesToAPolygonWithTheSameStroke) {
  const auto line = polyline();
  line->setStrokeColor(NSColor::greenColor());
  line->setStrokeGradient(
      NSGradient::initWithStartingColor(NSColor::redColor(), NSColor::blueColor()));
  line->setUseGradualStroke(true);
  line->setStrokeGradientCenter({0.5, 0.5});
  line->setStrokeGradientDegree(33);
  line->setLineWidth(7);
  line->setLineDashStyle("2:1");
  line->setSmooth(false);
  line->setLocked(true);
  line->setEnableInnerShadow(true);
  line->setLayerTitle("title");
  const auto polygon = line->polygonForClosedPath();
  EXPECT_EQ(polygon->bezierPath()->elementCount(), 5);
  EXPECT_TRUE(polygon->isPathClosed());
  EXPECT_EQ(line->bezierPath()->elementCount(), 3) << "the polyline stays";
  EXPECT_FALSE(polygon->enableFill() || polygon->useGradualFill() || polygon->enableInnerShadow());
  EXPECT_TRUE(polygon->enableStroke() && polygon->useGradualStroke());
  EXPECT_EQ(polygon->strokeGradient(), line->strokeGradient());
  EXPECT_EQ(polygon->strokeGradientDegree(), 33);
  EXPECT_EQ(polygon->strokeGradientCenter(), NSMakePoint(0.5, 0.5));
  EXPECT_EQ(polygon->lineWidth(), 7);
  EXPECT_EQ(polygon->lineDashStyle(), "2:1");
  EXPECT_EQ(polygon->bezierPath()->lineJoinStyle(), LineJoin::round);
  EXPECT_TRUE(!polygon->smooth() && polygon->locked());
  EXPECT_EQ(polygon->layerTitle(), "title");
}
