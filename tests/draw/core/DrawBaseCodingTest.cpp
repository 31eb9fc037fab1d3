#include <gtest/gtest.h>

#include "draw/core/DrawBase.h"
#include "draw/shapes/DrawRectangle.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "support/Archives.h"
#include "support/Documents.h"

// Before anything else of the process was read.
TEST(DrawBaseClasses, ArchivesOfDrawsAreReadFirst) {
  const auto rectangle = std::make_shared<DrawRectangle>();
  rectangle->init();
  rectangle->bezierPath()->appendBezierPathWithRect(NSMakeRect(1, 2, 3, 4));
  EXPECT_TRUE(rectangle->canSetDrawAttributes(rectangle->drawAttributes().get()));
  DrawRectangle other;
  other.init();
  other.setBezierPathWithData(rectangle->bezierPathData());
  EXPECT_EQ(other.pathBounds(), NSMakeRect(1, 2, 3, 4));
  const auto read = DrawBase::drawFromEncodedData(DrawBase::encodedData(rectangle));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->pathBounds(), NSMakeRect(1, 2, 3, 4));
}

class DrawBaseCoding : public testing::Test {
 protected:
  const DrawBase& draw(const std::string& title) {
    draw_ = drawTitled(*document_, title);
    return *draw_;
  }
  std::shared_ptr<PaintManager> document_ = madeDocument("records");
  std::shared_ptr<DrawBase> draw_;
};

TEST_F(DrawBaseCoding, AbsentKeysHaveDefaults) {
  const DrawBase& d = draw("nothing");
  ASSERT_NE(d.bezierPath(), nullptr);
  EXPECT_TRUE(d.bezierPath()->isEmpty());
  EXPECT_EQ(d.lineWidth(), 1) << "the platform's default, not that of new draws";
  EXPECT_TRUE(d.enableStroke());
  EXPECT_TRUE(d.strokeColor()->isEqual(*NSColor::blackColor()));
  EXPECT_TRUE(d.enableFill()) << "rectangles fill";
  EXPECT_TRUE(d.fillColor()->isEqual(*NSColor::blackColor()));
  EXPECT_EQ(d.strokeGradientDegree(), 90);
  EXPECT_EQ(d.fillGradientDegree(), 90);
  EXPECT_EQ(d.reflectionDis(), -10060);
  EXPECT_EQ(d.opacity(), 100U);
  EXPECT_TRUE(d.visible() && d.smooth() && !d.locked());
  EXPECT_EQ(d.shadow(), nullptr);
}

TEST_F(DrawBaseCoding, PaintsFallBackToBlack) {
  EXPECT_TRUE(draw("stroke without color").strokeColor()->isEqual(*NSColor::blackColor()));
  EXPECT_EQ(draw("stroke off").strokeColor(), nullptr);
  EXPECT_FALSE(draw("stroke off").enableStroke());
  const DrawBase& missing = draw("gradients missing");
  EXPECT_FALSE(missing.useGradualStroke());
  EXPECT_FALSE(missing.useGradualFill());
  EXPECT_TRUE(missing.fillColor()->isEqual(*NSColor::blackColor()));
}

TEST_F(DrawBaseCoding, GradientsAndPath) {
  const DrawBase& d = draw("gradients there");
  EXPECT_TRUE(d.useGradualStroke() && d.useRadialStrokeGradient() && d.useGradualFill());
  EXPECT_EQ(d.strokeGradientDegree(), 12.5F);
  EXPECT_EQ(d.strokeGradientCenter(), NSMakePoint(0.5, -1));
  EXPECT_EQ(d.fillGradient()->numberOfColorStops(), 3U);
  EXPECT_EQ(d.fillGradient()->stops()[1].location, 0.25);
  EXPECT_EQ(d.fillColor(), nullptr) << "a gradient fill needs no colour";

  const auto& path = draw("stroke without color").bezierPath();
  EXPECT_EQ(path->lineWidth(), 3);
  EXPECT_EQ(path->lineCapStyle(), LineCap::round);
  EXPECT_EQ(path->lineJoinStyle(), LineJoin::bevel);
  EXPECT_EQ(path->elementCount(), 6);
  EXPECT_EQ(draw_->lineDashStyle(), "2:1") << "in units of the line width";
  EXPECT_EQ(draw("path of another class").bezierPath(), nullptr);
}

TEST_F(DrawBaseCoding, NumbersAreNormalised) {
  EXPECT_EQ(draw("turn 540").rotateDegree(), 180);
  EXPECT_EQ(draw("turn -180").rotateDegree(), 180);
  EXPECT_EQ(draw("turn 12.34567").rotateDegree(), 12.346F);
  const float far = draw("turn 1e30").rotateDegree();
  EXPECT_TRUE(far > -180 && far <= 180) << far;
  EXPECT_EQ(draw("alpha 250").opacity(), 100U);
  EXPECT_EQ(draw("alpha -5").opacity(), 0U);
  EXPECT_EQ(draw("reflection without distance").reflectionDis(), 0);
  EXPECT_EQ(draw("reflection without distance").reflection(), 0.5F);
  EXPECT_EQ(draw("reflection at -59").reflectionDis(), -59);
  const DrawBase& kinds = draw("numbers of other kinds");
  EXPECT_TRUE(kinds.enableFill());
  EXPECT_EQ(kinds.opacity(), 50U);
  EXPECT_EQ(kinds.rotateDegree(), 90);
}

TEST_F(DrawBaseCoding, EffectsAndFlags) {
  const DrawBase& missing = draw("shadow missing");
  EXPECT_EQ(missing.shadow()->shadowOffset(), NSMakeSize(8, -8));
  EXPECT_EQ(missing.shadow()->shadowBlurRadius(), 8);
  EXPECT_EQ(missing.shadow()->shadowColor()->alphaComponent(), 0.85);
  EXPECT_EQ(missing.innerShadow()->shadowOffset(), NSMakeSize(6, -6));
  EXPECT_EQ(missing.innerShadow()->shadowBlurRadius(), 6);
  EXPECT_EQ(missing.innerShadow()->shadowColor()->redComponent(), 0.3);
  const auto& shadow = draw("shadow there").shadow();
  EXPECT_EQ(shadow->shadowOffset(), NSMakeSize(3, -4));
  EXPECT_EQ(shadow->shadowColor()->greenComponent(), 1);
  const DrawBase& flags = draw("flags");
  EXPECT_TRUE(!flags.visible() && !flags.smooth() && flags.locked());
  const DrawBase& outline = draw("outline");
  EXPECT_TRUE(outline.hasStrokeOutline());
  EXPECT_EQ(outline.strokeOutlineWidth(), 2.5F);
  const auto* rounded = dynamic_cast<const DrawRoundRectangle*>(&draw("radii"));
  ASSERT_NE(rounded, nullptr);
  EXPECT_EQ(rounded->xRadius(), 8);
  EXPECT_EQ(rounded->yRadius(), 2);
}

TEST_F(DrawBaseCoding, PlainDrawsWriteFewKeys) {
  auto draw = std::make_shared<DrawRectangle>();
  draw->init();
  draw->setEnableFill(true);
  draw->setFillColor(NSColor::redColor());
  const std::string listing = describeArchive(DrawBase::encodedData(draw)->bytes());
  for (const char* key :
       {"BezierPath: ->", "EnableStroke: bool True", "IsStrokeWithGdt: bool False", "ForeColor: ->",
        "EnableFill: bool True", "IsFillWithGdt: bool False", "BackColor: ->", "Alpha: int8 100",
        "DrawBaseVersion: int8 22"}) {
    EXPECT_NE(listing.find(key), std::string::npos) << key << " in\n" << listing;
  }
  for (const char* key : {"Gradient", "GdtDegree", "Shadow", "Reflection", "RotateDegree",
                          "Visible", "SmoothLine", "LayerTitle", "Locked", "Outline"}) {
    EXPECT_EQ(listing.find(key), std::string::npos) << key << " in\n" << listing;
  }
}

TEST_F(DrawBaseCoding, ListsOfDraws) {
  auto draw = std::make_shared<DrawEllipse>();
  draw->init();
  draw->setRotateDegree(30);
  draw->setLayerTitle("one");
  const auto data = DrawBase::encodedDataWithDraws({draw, draw});
  const auto draws = DrawBase::drawsFromEncodedData(data);
  ASSERT_TRUE(draws.has_value());
  ASSERT_EQ(draws->size(), 2U);
  EXPECT_EQ((*draws)[0]->rotateDegree(), 30);
  EXPECT_EQ(DrawBase::drawFromEncodedData(data)->layerTitle(), "one");
  EXPECT_EQ(DrawBase::encodedDataWithDraws({}), nullptr);
  EXPECT_EQ(DrawBase::drawsFromEncodedData(nullptr), std::nullopt);
  EXPECT_EQ(DrawBase::drawsFromEncodedData(madeDocumentData("empty")), std::nullopt);

  // The older form: the list is the root. What is no draw is not taken for the first one.
  const auto mixed = NSKeyedArchiver::archivedDataWithRootObject(
      NSArray::arrayWithObjects({NSString::stringWithString("none"), draw}));
  EXPECT_EQ(DrawBase::drawFromEncodedData(mixed), nullptr);
  ASSERT_TRUE(DrawBase::drawsFromEncodedData(mixed).has_value());
  EXPECT_EQ(DrawBase::drawsFromEncodedData(mixed)->size(), 1U);
}
