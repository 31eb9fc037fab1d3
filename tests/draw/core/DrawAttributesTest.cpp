#include <gtest/gtest.h>

#include "document/DocumentClasses.h"
#include "document/DrawGroup.h"
#include "draw/core/DrawAttributes.h"
#include "draw/core/ZTSmallKits.h"
#include "draw/image/DrawImage2.h"
#include "draw/raster/DrawBrushes.h"
#include "draw/raster/DrawFill.h"
#include "draw/raster/DrawSelections.h"
#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectangle.h"
#include "draw/text/DrawBezierText.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "support/Bitmaps.h"

namespace {

template <class T>
std::shared_ptr<T> made() {
  registerDocumentClasses();
  auto draw = std::make_shared<T>();
  draw->init();
  return draw;
}

std::shared_ptr<NSMutableDictionary> from(const char* className) {
  auto dictionary = std::make_shared<NSMutableDictionary>();
  dictionary->setObject(NSString::stringWithString(className), "DAKeyClassName");
  return dictionary;
}

}  // namespace

TEST(DrawAttributes, KeysFollowTheCapabilities) {
  const auto keysOf = [](const DrawBase& draw) {
    std::vector<std::string> keys;
    const auto attributes = draw.drawAttributes();
    for (const auto& key : attributes->allKeys()) {
      keys.push_back(dynamic_cast<const NSString&>(*key).string());
    }
    return keys;
  };
  const auto line = made<DrawLine>();
  line->setLineDashStyle("4:2");
  EXPECT_EQ(keysOf(*line), (std::vector<std::string>{
                               "DAKeyClassName", "DAKeyOpacity", "DAKeySmooth", "DAKeyEnableStroke",
                               "DAKeyStrokeWithGradient", "DAKeyStrokeColor", "DAKeyStrokeWidth",
                               "DAKeyStrokeDash", "DAKeyEnableStrokeOutline",
                               "DAKeyStrokeOutlineWidth", "DAKeyEnableShadow", "DAKeyArrowStyle"}));
  EXPECT_EQ(keysOf(*made<DrawGradient>()),
            (std::vector<std::string>{"DAKeyClassName", "DAKeyOpacity", "DAKeyEnableFill",
                                      "DAKeyFillGradient", "DAKeyFillRadialGradient",
                                      "DAKeyFillGdtCenter", "DAKeyFillGdtDegree",
                                      "DAKeyEnableInnerShadow", "DAKeyEnableShadow"}));
}

TEST(DrawAttributes, WhoTakesAttributesFromWhom) {
  const auto rectangle = made<DrawRectangle>();
  const auto line = made<DrawLine>();
  const auto text = made<DrawText>();
  const auto curved = made<DrawBezierText>();
  const auto picture = made<DrawImage2>();
  const auto gradient = made<DrawGradient>();
  struct Case {
    const DrawBase& receiver;
    const char* source;
    bool takes;
  };
  const Case cases[] = {
      {*rectangle, "DrawRectangle", true}, {*rectangle, "DrawEllipse", true},
      {*rectangle, "DrawLine", false},     {*rectangle, "DrawText", false},
      {*rectangle, "DrawNothing", false},  {*line, "DrawCurve", true},
      {*line, "DrawFreePolygon", false},   {*text, "DrawRectangle", true},
      {*text, "DrawBezierText", true},     {*text, "DrawLine", false},
      {*curved, "DrawText", true},         {*curved, "DrawRectangle", false},
      {*picture, "DrawSVG", true},         {*picture, "DrawRectangle", false},
      {*gradient, "DrawGradient", true},   {*gradient, "DrawRectangle", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.receiver.canSetDrawAttributes(from(c.source).get()), c.takes)
        << c.receiver.className() << " from " << c.source;
  }
  EXPECT_FALSE(rectangle->canSetDrawAttributes(nullptr));
  EXPECT_TRUE(rectangle->canSetDrawAttributes(std::make_shared<NSMutableDictionary>().get()));
  EXPECT_FALSE(made<DrawGroup>()->canSetDrawAttributes(from("DrawGroup").get()));
  EXPECT_FALSE(made<DrawEraser>()->canSetDrawAttributes(from("DrawEraser").get()));
  EXPECT_FALSE(made<DrawCrop>()->canSetDrawAttributes(from("DrawCrop").get()));
}

TEST(DrawAttributes, TravelFromDrawToDraw) {
  const auto source = made<DrawEllipse>();
  source->setOpacity(30);
  source->setLineWidth(5);
  source->setLineDashStyle("3:1");
  source->setStrokeColor(NSColor::redColor());
  source->setEnableFill(true);
  source->setFillColor(NSColor::blueColor());
  source->setSmooth(false);
  const auto target = made<DrawRectangle>();
  EXPECT_FALSE(
      IsEqualDrawAttributes(source->drawAttributes().get(), target->drawAttributes().get()));
  EXPECT_TRUE(target->setDrawAttributes(*source->drawAttributes()));
  EXPECT_EQ(target->opacity(), 30U);
  EXPECT_EQ(target->lineWidth(), 5);
  EXPECT_EQ(target->lineDashStyle(), "3:1");
  EXPECT_EQ(target->fillColor(), source->fillColor());
  EXPECT_FALSE(target->smooth());
  EXPECT_TRUE(
      IsEqualDrawAttributes(source->drawAttributes().get(), target->drawAttributes().get()));
  EXPECT_TRUE(IsEqualDrawAttributes(nullptr, nullptr));
  EXPECT_FALSE(IsEqualDrawAttributes(source->drawAttributes().get(), nullptr));

  // Inner dictionaries are compared by their pairs, not by the order in which these were added.
  const auto settings = [](int64_t angle, bool angleFirst) {
    const auto inner = std::make_shared<NSMutableDictionary>();
    if (angleFirst) inner->setObject(NSNumber::numberWithInteger(angle), "angle");
    inner->setObject(NSNumber::numberWithInteger(3), "radius");
    if (!angleFirst) inner->setObject(NSNumber::numberWithInteger(angle), "angle");
    const auto attributes = std::make_shared<NSMutableDictionary>();
    attributes->setObject(inner, "DAKeyFilterSettings");
    return attributes;
  };
  EXPECT_TRUE(IsEqualDrawAttributes(settings(1, true).get(), settings(1, false).get()));
  EXPECT_FALSE(IsEqualDrawAttributes(settings(1, true).get(), settings(2, false).get()));

  auto wrong = from("DrawCurve");
  wrong->setObject(NSString::stringWithString("2"), "DAKeyArrowStyle");
  const auto line = made<DrawLine>();
  line->setDrawAttributes(*wrong);
  EXPECT_EQ(line->arrowStyle(), 0) << "a text is no number";
  wrong->setObject(NSNumber::numberWithInteger(2), "DAKeyArrowStyle");
  EXPECT_TRUE(line->setDrawAttributes(*wrong));
  EXPECT_EQ(line->arrowStyle(), 2);

  const auto outlined = made<DrawCurve>();
  outlined->setEnableStrokeOutline(true);
  outlined->setStrokeOutlineWidth(2.5F);
  outlined->setStrokeOutlineColor(NSColor::blueColor());
  EXPECT_EQ(line->strokeOutlineColor(), nullptr);
  EXPECT_TRUE(line->setDrawAttributes(*outlined->drawAttributes()));
  EXPECT_EQ(line->strokeOutlineColor(), NSColor::blueColor());
  EXPECT_EQ(line->strokeOutlineWidth(), 2.5F);
}

TEST(DrawAttributes, Capabilities) {
  const auto line = made<DrawLine>();
  EXPECT_TRUE(line->canSetStrokeOutline());
  line->setEnableStroke(false);
  EXPECT_FALSE(line->canSetStrokeOutline());
  EXPECT_FALSE(line->isPathClosed());
  auto path = made<DrawBezierPath>();
  EXPECT_TRUE(path->canSetArrowStyle());
  path->bezierPath()->appendBezierPathWithRect(NSMakeRect(0, 0, 1, 1));
  EXPECT_FALSE(path->canSetArrowStyle());
  EXPECT_TRUE(made<DrawFill>()->canSetFillColor());
  EXPECT_FALSE(made<DrawGradient>()->canSetFillColor());
  EXPECT_FALSE(made<DrawEraser>()->canSetShadow()) << "it composites by copying";
  EXPECT_TRUE(made<DrawEraser>()->canToggleSmooth());
  EXPECT_FALSE(made<DrawText>()->canCreateBezierText());
  EXPECT_TRUE(made<DrawRoundRectangle>()->canCreateBezierText());
  EXPECT_FALSE(made<DrawRectSelection>()->canCreateBezierText());
  EXPECT_FALSE(made<DrawImage2>()->canToggleFill());
  EXPECT_TRUE(made<DrawImage2>()->canAdjustOpacity());
  EXPECT_FALSE(made<DrawCrop>()->canAdjustOpacity());
  EXPECT_TRUE(made<DrawRectSelection>()->canAdjustOpacity());
  const auto text = made<DrawText>();
  const auto label = DrawGroup::initWithDraws({text});
  for (const bool follows : {true, false}) {
    text->setAutoResize(follows);
    EXPECT_EQ(text->canBeResized(), !follows) << "its size is that of the text";
    EXPECT_EQ(text->canBeResizedFreely(), !follows);
    EXPECT_EQ(label->canBeResized(), !follows);
  }
  const auto group = DrawGroup::initWithDraws({line});
  EXPECT_TRUE(line->visibleWithGroup());
  group->setVisible(false);
  EXPECT_FALSE(line->visibleWithGroup());
  EXPECT_FALSE(line->canBeRotated());
}

TEST(DrawAttributes, WhatEditorsAskAboutNewDraws) {
  struct Case {
    std::shared_ptr<DrawBase> draw;
    bool border;   ///< shouldDrawBorderWhenCreating
    bool knobs;    ///< shouldDrawKnobWhenCreating
    bool focused;  ///< shouldFocusedWhenAdded
    bool clicked;  ///< canBeSelectedByClick
    bool copied;   ///< canCopyDrawAttributes
  };
  const Case cases[] = {
      {made<DrawPen>(), false, false, false, true, true},
      {made<DrawEraser>(), false, false, false, false, false},
      {made<DrawAirbrush>(), false, false, false, true, true},
      {made<DrawFill>(), true, false, false, true, true},
      {made<DrawClear>(), true, false, false, false, false},
      {made<DrawLine>(), false, false, true, true, true},
      {made<DrawRectangle>(), false, false, true, true, true},
      {made<DrawBrokenLine>(), false, true, true, true, true},
      {made<DrawFreePolygon>(), true, true, true, true, true},
      {made<DrawBezierPath>(), true, true, true, true, true},
      {made<DrawCrop>(), false, false, true, true, false},
      {made<DrawPolygonSelection>(), true, true, true, true, false},
      {made<DrawOldPolygonSelection>(), true, true, true, true, false},
      {made<DrawGroup>(), true, false, true, true, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.draw->className());
    EXPECT_EQ(c.draw->shouldDrawBorderWhenCreating(), c.border);
    EXPECT_EQ(c.draw->shouldDrawKnobWhenCreating(), c.knobs);
    EXPECT_EQ(c.draw->shouldFocusedWhenAdded(), c.focused);
    EXPECT_EQ(c.draw->canBeSelectedByClick(), c.clicked);
    EXPECT_EQ(c.draw->canCopyDrawAttributes(), c.copied);
    c.draw->setLocked(true);
    EXPECT_FALSE(c.draw->canBeSelectedByClick());
  }
  EXPECT_TRUE(DrawGroup::treatAsOneObject());
  const auto rounded = made<DrawRoundRectangle>();
  EXPECT_TRUE(rounded->hasRadiusControlKnob());
  EXPECT_FALSE(rounded->startFromCenterWhenCreating());
  EXPECT_FALSE(rounded->acceptMouseMoveEventWhenInitDraw());
  const auto polygon = made<DrawFreePolygon>();
  EXPECT_TRUE(polygon->canAddCurvedSegment());
  polygon->setSemgents(3);
  EXPECT_FALSE(polygon->canAddCurvedSegment());
}

TEST(DrawAttributes, EditingStateIsNotWritten) {
  const auto draw = made<DrawRectangle>();
  const auto path = made<DrawBezierPath>();
  const auto written = DrawBase::encodedDataWithDraws({draw, path});
  draw->setCreatingWithEvent(true);
  draw->setRotating(true);
  draw->setResizing(true);
  draw->setEditingStrokeGradient(true);
  draw->setEditingFillGradient(true);
  draw->setResizingByDragging(true);
  draw->setAdjustingByDragging(true);
  draw->setHasResizeControlKnob(false);
  path->setDraggingWhenInitDraw(true);
  EXPECT_TRUE(DrawBase::encodedDataWithDraws({draw, path})->isEqual(*written));
  const auto read = std::dynamic_pointer_cast<DrawRectangle>(
      DrawBase::drawFromEncodedData(DrawBase::encodedData(draw)));
  EXPECT_FALSE(read->isCreatingWithEvent() || read->isRotating() || read->isResizing() ||
               read->isEditingStrokeGradient() || read->isEditingFillGradient() ||
               read->isResizingByDragging() || read->isAdjustingByDragging());
  EXPECT_TRUE(read->hasResizeControlKnob());
  EXPECT_FALSE(made<DrawBezierPath>()->isDraggingWhenInitDraw());
}

TEST(DrawAttributes, GroupsTurnWhatTheyHoldWhileTheyAreTurned) {
  const auto bar = made<DrawRectangle>();
  bar->setBezierPathWithBounds(NSMakeRect(10, 18, 20, 4));
  const auto group = DrawGroup::initWithDraws({bar});
  group->setBezierPath(NSBezierPath::bezierPathWithRect(NSMakeRect(10, 10, 20, 20)));
  group->setRotateDegree(90);
  for (const bool rotating : {false, true}) {
    group->setRotating(rotating);
    const auto bitmap = NSBitmapImageRep::create(40, 40);
    const ZTFocusScope focus(bitmap);
    group->drawInImage(bitmap.get());
    EXPECT_EQ(pixelAt(*bitmap, 12, 18)[3], rotating ? 0 : 255);
    EXPECT_EQ(pixelAt(*bitmap, 18, 12)[3], rotating ? 255 : 0);
  }
}

TEST(DrawAttributes, ReflectionsFollowShadows) {
  EXPECT_TRUE(made<DrawLine>()->canSetReflection());
  EXPECT_TRUE(made<DrawGradient>()->canSetReflection()) << "it has a fill";
  EXPECT_FALSE(made<DrawCrop>()->canSetReflection());
  EXPECT_FALSE(made<DrawClear>()->canSetReflection()) << "it composites by copying";
  EXPECT_FALSE(made<DrawGroup>()->canSetReflection()) << "it has neither stroke nor fill";
}

TEST(DrawAttributes, GroupsFlipAndTurnWithWhatIsVisibleInThem) {
  const auto line = made<DrawLine>();
  const auto other = made<DrawRectangle>();
  const auto group = DrawGroup::initWithDraws({line, other});
  const auto expect = [&](bool able) {
    EXPECT_EQ(group->canBeFliped(), able);
    EXPECT_EQ(group->canBeRotatedFreely(), able);
  };
  expect(true);
  line->setVisible(false);
  expect(true);
  EXPECT_FALSE(line->canBeFliped());
  EXPECT_FALSE(line->canBeRotatedFreely());
  other->setOpacity(0);
  expect(false);
  line->setVisible(true);
  expect(true);
  group->setVisible(false);
  expect(false);
  EXPECT_FALSE(line->canBeFliped()) << "its group is hidden";
  expect(false);
  group->setDraws({});
  group->setVisible(true);
  expect(false);
}

TEST(ZTSmallKits, ColorsEqualWithinOneStep) {
  const auto near = NSColor::colorWithCalibratedRed(0.5039, 0, 0, 1);
  const auto base = NSColor::colorWithCalibratedRed(0.5, 0, 0, 1);
  EXPECT_TRUE(zt_isEqualWithColor(base.get(), near.get()));
  EXPECT_FALSE(
      zt_isEqualWithColor(base.get(), NSColor::colorWithCalibratedRed(0.504, 0, 0, 1).get()));
  EXPECT_TRUE(zt_isEqualWithColor(NSColor::clearColor().get(),
                                  NSColor::colorWithCalibratedRed(1, 1, 1, 0.005).get()));
  EXPECT_FALSE(zt_isEqualWithColor(base.get(), nullptr));
}
