// Documents' draws at points worked out by hand. Canvases are 100 x 100, y upwards.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "draw/shapes/DrawLines.h"
#include "draw/shapes/DrawRectangle.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "support/Draws.h"

namespace {

using Pixel = std::array<int, 4>;
constexpr Pixel kClear = {0, 0, 0, 0};
constexpr Pixel kRed = {255, 0, 0, 255};
constexpr Pixel kGreen = {0, 255, 0, 255};
constexpr Pixel kBlue = {0, 0, 255, 255};

class Canvas {
 public:
  explicit Canvas(const std::shared_ptr<NSColor>& ground = nullptr) {
    if (ground == nullptr) return;
    const ZTFocusScope focus(bitmap_);
    ground->set();
    NSRectFill(NSMakeRect(0, 0, 100, 100));
  }
  Canvas& draw(DrawBase& draw) {
    const ZTFocusScope focus(bitmap_);
    draw.drawInImage(bitmap_.get());
    return *this;
  }
  /// The pixel whose lower left corner is (x, y).
  Pixel at(int64_t x, int64_t y) const {
    const uint8_t* p = bitmap_->row(99 - y) + x * 4;
    return {p[0], p[1], p[2], p[3]};
  }
  bool empty() const { return bitmap_->usedRows().empty(); }

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_ = NSBitmapImageRep::create(100, 100);
};

void expectNear(const Pixel& actual, const Pixel& expected, int tolerance, const char* what) {
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(actual[i], expected[i], tolerance) << what << ", component " << i;
  }
}

template <class T = DrawRectangle>
std::shared_ptr<T> filled(NSRect bounds, std::shared_ptr<NSColor> color) {
  auto draw = std::make_shared<T>();
  draw->init();
  draw->setBezierPathWithBounds(bounds);
  draw->setEnableStroke(false);
  draw->setEnableFill(true);
  draw->setFillColor(std::move(color));
  return draw;
}

std::shared_ptr<DrawLine> line(NSPoint a, NSPoint b, CGFloat width,
                               std::shared_ptr<NSColor> color) {
  auto draw = std::make_shared<DrawLine>();
  draw->init();
  draw->setStartPoint(a, b);
  draw->setLineWidth(width);
  draw->setStrokeColor(std::move(color));
  return draw;
}

std::shared_ptr<NSGradient> redToBlue() {
  return NSGradient::initWithStartingColor(NSColor::redColor(), NSColor::blueColor());
}

}  // namespace

TEST(DrawBaseRendering, FillsCoverTheirAreaAndNothingElse) {
  const auto square = filled(NSMakeRect(10, 20, 30, 40), NSColor::redColor());
  const Canvas canvas = Canvas().draw(*square);
  EXPECT_EQ(canvas.at(10, 20), kRed);
  EXPECT_EQ(canvas.at(39, 59), kRed);
  for (const auto& [x, y] : {std::pair{9, 30}, {40, 30}, {20, 19}, {20, 60}}) {
    EXPECT_EQ(canvas.at(x, y), kClear) << x << ", " << y;
  }
  // Half-covered pixels at fractional edges: 0.5 of 255 rounds to 128.
  const auto shifted = filled(NSMakeRect(10.5, 20, 10, 10), NSColor::redColor());
  EXPECT_EQ(Canvas().draw(*shifted).at(10, 25), (Pixel{128, 0, 0, 128}));
}

TEST(DrawBaseRendering, OpacityIsAPercentage) {
  const auto square = filled(NSMakeRect(0, 0, 50, 50), NSColor::redColor());
  square->setOpacity(40);
  EXPECT_EQ(Canvas().draw(*square).at(5, 5), (Pixel{102, 0, 0, 102}));
  EXPECT_EQ(Canvas(NSColor::blueColor()).draw(*square).at(5, 5), (Pixel{102, 0, 153, 255}));
  square->setOpacity(0);
  EXPECT_TRUE(Canvas().draw(*square).empty());
}

TEST(DrawBaseRendering, WhatPaintsNothing) {
  auto square = filled(NSMakeRect(0, 0, 50, 50), NSColor::colorWithCalibratedRed(1, 0, 0, 0.005));
  square->setEnableInnerShadow(true);
  square->setInnerShadow(shadow({5, -5}, 4, NSColor::blackColor()));
  EXPECT_FALSE(square->drawFill());
  EXPECT_TRUE(Canvas().draw(*square).empty()) << "nor the inner shadow of a fill that is none";
  square->setBezierPath(nullptr);
  EXPECT_TRUE(Canvas().draw(*square).empty());
  DrawBase empty;
  empty.init();
  EXPECT_TRUE(Canvas().draw(empty).empty());
}

TEST(DrawBaseRendering, RotationIsCounterClockwiseAboutTheCentre) {
  // 40 x 20 about (50, 50), turned by 90: 20 x 40.
  const auto bar = filled(NSMakeRect(30, 40, 40, 20), NSColor::redColor());
  bar->setRotateDegree(90);
  const Canvas turned = Canvas().draw(*bar);
  EXPECT_EQ(turned.at(40, 30), kRed);
  EXPECT_EQ(turned.at(59, 69), kRed);
  EXPECT_EQ(turned.at(35, 50), kClear);
  EXPECT_EQ(bar->drawRect(), NSMakeRect(40, 30, 20, 40));
  // The right end goes to the top, and back.
  EXPECT_EQ(bar->transform().transformPoint({70, 50}), NSMakePoint(50, 70));
  EXPECT_EQ(bar->invertTransform().transformPoint({50, 70}), NSMakePoint(70, 50));
  EXPECT_TRUE(
      filled(NSMakeRect(30, 40, 40, 20), NSColor::redColor())->invertTransform().isIdentity());
  // A triangle pointing right points up after a quarter turn.
  auto triangle = std::make_shared<DrawFreePolygon>();
  triangle->init();
  triangle->bezierPath()->moveToPoint({30, 40});
  triangle->bezierPath()->lineToPoint({30, 60});
  triangle->bezierPath()->lineToPoint({70, 50});
  triangle->bezierPath()->closePath();
  triangle->setEnableStroke(false);
  triangle->setEnableFill(true);
  triangle->setFillColor(NSColor::redColor());
  triangle->setRotateDegree(90);
  const Canvas up = Canvas().draw(*triangle);
  EXPECT_EQ(up.at(42, 31), kRed);
  EXPECT_EQ(up.at(50, 65)[3] > 200, true);
  EXPECT_EQ(up.at(42, 65), kClear);
}

TEST(DrawBaseRendering, OddWidthsAreMovedByHalfAPixel) {
  struct Case {
    CGFloat width;
    int64_t covered;  // a row that the line at y = 50 covers fully
    int64_t beside;   // and the next row below, which it leaves alone
  };
  // Width 3 moved to 50.5 covers 49..52; width 2 covers 49..51.
  for (const Case& c : {Case{3, 51, 48}, Case{2, 50, 48}, Case{1, 50, 49}}) {
    const auto stroke = line({10, 50}, {90, 50}, c.width, NSColor::redColor());
    const Canvas canvas = Canvas().draw(*stroke);
    EXPECT_EQ(canvas.at(50, c.covered), kRed) << c.width;
    EXPECT_EQ(canvas.at(50, c.beside), kClear) << c.width;
  }
  // 2.9 truncates to an even width: 48.55 to 51.45, not moved.
  const Canvas odd = Canvas().draw(*line({10, 50}, {90, 50}, 2.9, NSColor::redColor()));
  expectNear(odd.at(50, 48), {115, 0, 0, 115}, 1, "0.45 covered");
  expectNear(odd.at(50, 51), {115, 0, 0, 115}, 1, "0.45 covered");
}

TEST(DrawBaseRendering, GradientsFollowAngleCentreAndRotation) {
  auto square = filled(NSMakeRect(0, 0, 100, 100), NSColor::redColor());
  square->setUseGradualFill(true);
  square->setFillGradient(redToBlue());
  const auto middleOf = [&](int64_t x, int64_t y) { return Canvas().draw(*square).at(x, y); };
  square->setFillGradientDegree(0);
  expectNear(middleOf(0, 50), {254, 0, 1, 255}, 1, "left");
  expectNear(middleOf(25, 50), {190, 0, 65, 255}, 1, "a quarter");
  expectNear(middleOf(99, 50), {1, 0, 254, 255}, 1, "right");
  square->setFillGradientDegree(90);
  expectNear(middleOf(50, 0), {254, 0, 1, 255}, 1, "bottom");
  expectNear(middleOf(50, 99), {1, 0, 254, 255}, 1, "top");
  square->setFillGradientDegree(45);
  expectNear(middleOf(0, 0), {254, 0, 1, 255}, 2, "lower left corner");
  expectNear(middleOf(99, 0), {128, 0, 128, 255}, 2, "lower right corner is half way");
  square->setFillGradientDegree(0);
  square->setRotateDegree(90);
  expectNear(middleOf(50, 0), {254, 0, 1, 255}, 2, "the angle turns with the draw");
  square->setRotateDegree(0);

  square->setUseRadialFillGradient(true);
  expectNear(middleOf(50, 50), {250, 0, 5, 255}, 6, "centre");
  // Radius: half the diagonal, 70.71.
  expectNear(middleOf(85, 50), {127, 0, 128, 255}, 3, "half way");
  expectNear(middleOf(0, 0), {3, 0, 252, 255}, 4, "corner");
  square->setFillGradientCenter({1, 1});
  // From radius 0 at the middle to a circle around (100, 100) of radius 141.42: on the diagonal
  // down from the middle the end colour is 70.71 away, at the corner.
  expectNear(middleOf(0, 0), {3, 0, 252, 255}, 5, "far corner");
  expectNear(middleOf(75, 75), {213, 0, 42, 255}, 5, "towards the moved centre it grows slowly");
}

TEST(DrawBaseRendering, DropShadowsLieUnderTheWholeAndOutsideTheFill) {
  auto square = filled(NSMakeRect(30, 40, 30, 30), NSColor::colorWithCalibratedRed(1, 0, 0, 0.5));
  square->setEnableShadow(true);
  square->setShadow(shadow({10, -10}, 0, NSColor::colorWithCalibratedWhite(0, 0.5)));
  Canvas canvas = Canvas().draw(*square);
  // The shadow has the fill's alpha times its own: a quarter.
  expectNear(canvas.at(65, 35), {0, 0, 0, 64}, 1, "shadow alone");
  expectNear(canvas.at(50, 50), {128, 0, 0, 160}, 1, "shadow under a translucent fill");
  expectNear(canvas.at(35, 65), {128, 0, 0, 128}, 1, "fill alone");
  EXPECT_EQ(square->renderedRect(), NSMakeRect(30, 30, 40, 40));

  // With a stroke the shadow of the line falls outside the filled shape only.
  auto framed = filled(NSMakeRect(30, 40, 30, 30), NSColor::greenColor());
  framed->setEnableStroke(true);
  framed->setStrokeColor(NSColor::blueColor());
  framed->setLineWidth(4);
  framed->setEnableShadow(true);
  framed->setShadow(shadow({10, -10}, 0, NSColor::blackColor()));
  canvas = Canvas().draw(*framed);
  EXPECT_EQ(canvas.at(45, 55), kGreen) << "no shadow of the upper line on the fill";
  EXPECT_EQ(canvas.at(29, 55), kBlue);
  EXPECT_EQ(canvas.at(71, 40), (Pixel{0, 0, 0, 255})) << "the line's shadow";
  EXPECT_EQ(canvas.at(72, 40), kClear);

  // A blur of 8 reaches exactly 8 pixels.
  square = filled(NSMakeRect(30, 30, 40, 40), NSColor::redColor());
  square->setEnableShadow(true);
  square->setShadow(shadow({0, 0}, 8, NSColor::blackColor()));
  canvas = Canvas().draw(*square);
  EXPECT_GT(canvas.at(23, 50)[3], 0);
  EXPECT_EQ(canvas.at(21, 50)[3], 0);
}

TEST(DrawBaseRendering, MitredTipsCastTheirShadow) {
  const auto draw = made<DrawBezierPath>();
  draw->bezierPath()->moveToPoint({20, 10});
  draw->bezierPath()->lineToPoint({40, 10});
  draw->bezierPath()->lineToPoint({30, 60});
  draw->bezierPath()->closePath();
  draw->bezierPath()->setLineJoinStyle(LineJoin::miter);
  draw->setLineWidth(8);
  draw->setEnableFill(true);
  draw->setFillColor(NSColor::redColor());
  draw->setEnableShadow(true);
  auto shadow = std::make_shared<NSShadow>();
  shadow->setShadowOffset({40, 0});
  shadow->setShadowColor(NSColor::blueColor());
  draw->setShadow(shadow);
  // The miter ends 5.1 half widths above the corner, at 80.4, and is 3.4 wide at 72.
  const Canvas canvas = Canvas().draw(*draw);
  EXPECT_EQ(canvas.at(30, 72)[3], 255);
  EXPECT_EQ(canvas.at(70, 72), kBlue);
  EXPECT_EQ(canvas.at(70, 84), kClear);
}

TEST(DrawBaseRendering, GradientShadowsAreCastByThePaintedWhole) {
  auto square = filled(NSMakeRect(30, 40, 20, 20), NSColor::redColor());
  square->setUseGradualFill(true);
  square->setFillGradient(redToBlue());
  square->setEnableShadow(true);
  square->setShadow(shadow({20, 0}, 0, NSColor::blackColor()));
  EXPECT_EQ(Canvas().draw(*square).at(60, 50), (Pixel{0, 0, 0, 255}));
}

TEST(DrawBaseRendering, InnerShadowsDarkenFromTheEdgeTheyComeFrom) {
  // colour x M (1 - B): without blur the shadow is the part of the square that the square moved by
  // the offset does not cover.
  auto square = filled(NSMakeRect(20, 20, 60, 60), NSColor::redColor());
  square->setEnableInnerShadow(true);
  square->setInnerShadow(shadow({10, -5}, 0, NSColor::colorWithCalibratedWhite(0, 0.5)));
  const Canvas canvas = Canvas().draw(*square);
  expectNear(canvas.at(25, 50), {127, 0, 0, 255}, 1, "left edge");
  expectNear(canvas.at(50, 78), {127, 0, 0, 255}, 1, "top edge");
  EXPECT_EQ(canvas.at(31, 50), kRed);
  EXPECT_EQ(canvas.at(50, 74), kRed);
  EXPECT_EQ(canvas.at(79, 21), kRed) << "not at the other edges";
  EXPECT_EQ(canvas.at(19, 50), kClear) << "and not outside";
}

TEST(DrawBaseRendering, ReflectionsFadeBelowTheDraw) {
  // Strength 0.5: the strip is the lower half, mirrored about y = 60, from alpha 0.7 to 0.
  auto square = filled(NSMakeRect(20, 60, 40, 40), NSColor::redColor());
  square->setEnableReflection(true);
  square->setReflection(0.5);
  square->setReflectionDis(0);
  Canvas canvas = Canvas().draw(*square);
  EXPECT_EQ(canvas.at(30, 80), kRed);
  expectNear(canvas.at(30, 59), {176, 0, 0, 176}, 3, "nearest row");
  expectNear(canvas.at(30, 50), {92, 0, 0, 92}, 4, "half way");
  EXPECT_LT(canvas.at(30, 40)[3], 8);
  EXPECT_EQ(canvas.at(30, 39), kClear);
  EXPECT_EQ(square->renderedRect(), NSMakeRect(20, 20, 40, 80)) << "the full height is reserved";

  // Distances below -60 count as -60: the strip lies over the draw.
  square->setReflectionDis(-100);
  square->setFillColor(NSColor::colorWithCalibratedRed(1, 0, 0, 1));
  EXPECT_EQ(square->renderedRect(), NSMakeRect(20, 60, 40, 60));
  // Moved down by 10, and never fading below half with strength 1.5.
  square->setReflectionDis(10);
  square->setReflection(1.5);
  canvas = Canvas().draw(*square);
  EXPECT_EQ(canvas.at(30, 55), kClear);
  expectNear(canvas.at(30, 49), {253, 0, 0, 253}, 2, "begins opaque");
  expectNear(canvas.at(30, 10), {129, 0, 0, 129}, 3, "ends at half");
  // The draw's shadow is not reflected, and is on again afterwards.
  square->setEnableShadow(true);
  square->setShadow(shadow({30, 0}, 0, NSColor::blackColor()));
  canvas = Canvas().draw(*square);
  EXPECT_EQ(canvas.at(80, 30), kClear);
  EXPECT_EQ(canvas.at(80, 80), (Pixel{0, 0, 0, 255}));
  EXPECT_TRUE(square->enableShadow());
  // Room is reserved as if it were: draw and shadow are (20, 35, 55, 65) together.
  square->setShadow(shadow({10, -20}, 5, NSColor::blackColor()));
  square->setReflectionDis(0);
  square->setReflection(0.5);
  EXPECT_EQ(square->renderedRect(), NSMakeRect(20, -30, 55, 130));
}

TEST(DrawBaseRendering, GradientStrokesAndDashes) {
  auto stroke = line({0, 50}, {100, 50}, 10, NSColor::redColor());
  stroke->setUseGradualStroke(true);
  stroke->setStrokeGradient(redToBlue());
  stroke->setStrokeGradientDegree(0);
  Canvas canvas = Canvas().draw(*stroke);
  expectNear(canvas.at(0, 50), {254, 0, 1, 255}, 1, "start");
  expectNear(canvas.at(50, 54), {127, 0, 128, 255}, 2, "middle");
  EXPECT_EQ(canvas.at(50, 56), kClear);
  stroke->setLineDashStyle("2:2");
  canvas = Canvas().draw(*stroke);
  expectNear(canvas.at(10, 50), {229, 0, 26, 255}, 3, "first mark");
  EXPECT_EQ(canvas.at(30, 50), kClear) << "first gap";
  expectNear(canvas.at(50, 50), {127, 0, 128, 255}, 3, "second mark");

  auto plain = line({0, 50}, {100, 50}, 10, NSColor::redColor());
  plain->setLineDashStyle("2:2");
  canvas = Canvas().draw(*plain);
  EXPECT_EQ(canvas.at(10, 50), kRed);
  EXPECT_EQ(canvas.at(30, 50), kClear);
}

TEST(DrawBaseRendering, GradientStrokesCoverWhatPlainStrokesCover) {
  const auto curve = made<DrawCurve>();
  curve->setStartPoint({10, 20}, {30, 95}, {60, -10}, {90, 70});
  const auto arrow = line({12, 15}, {85, 77}, 1, nullptr);
  arrow->setArrowStyle(2);
  const auto rectangle = made<DrawRectangle>();
  rectangle->setBezierPathWithBounds(NSMakeRect(20, 20, 55, 61));
  const auto ellipse = made<DrawEllipse>();
  ellipse->setBezierPathWithBounds(NSMakeRect(15, 25, 60, 45));
  const auto yellow = NSColor::colorWithCalibratedRed(1, 1, 0.4, 1);
  for (const auto& draw :
       std::vector<std::shared_ptr<DrawBase>>{curve, arrow, rectangle, ellipse}) {
    draw->setStrokeGradient(NSGradient::initWithStartingColor(yellow, NSColor::whiteColor()));
    for (const double width : {1.0, 2.0, 5.0}) {
      for (const auto& [dash, smooth] : {std::pair{"3:2", true}, {"3:2", false}, {"", false}}) {
        for (const bool radial : {false, true}) {
          draw->setLineWidth(width);
          draw->setLineDashStyle(dash);
          draw->setSmooth(smooth);
          draw->setUseRadialStrokeGradient(radial);
          draw->setStrokeColor(NSColor::blackColor());
          draw->setUseGradualStroke(false);
          const Canvas plain = Canvas().draw(*draw);
          draw->setUseGradualStroke(true);
          const Canvas gradient = Canvas().draw(*draw);
          for (int i = 0; i < 10000; ++i) {
            const Pixel p = gradient.at(i % 100, i / 100);
            const int alpha = plain.at(i % 100, i / 100)[3];
            const std::string what = std::string(draw->className()) + " " + dash + " " +
                                     std::to_string(width) + " at " + std::to_string(i);
            ASSERT_NEAR(p[3], alpha, 1) << what;
            ASSERT_NEAR(p[0], alpha, 1) << what;
            ASSERT_NEAR(p[1], alpha, 1) << what;
            ASSERT_GE(p[2], 0.4 * alpha - 2) << what;
          }
        }
      }
    }
  }
}

TEST(DrawBaseRendering, TranslucentArrowsAreOnePicture) {
  const auto curve = made<DrawCurve>();
  curve->setStartPoint({10, 20}, {30, 95}, {60, -10}, {90, 70});
  const auto straight = line({20, 50}, {80, 50}, 1, nullptr);
  const auto slanted = line({20, 31}, {80, 75}, 1, nullptr);
  for (const auto& draw : std::vector<std::shared_ptr<DrawArrowed>>{curve, straight, slanted}) {
    for (const int style : {1, 2}) {
      for (const double width : {1.0, 3.0, 7.5}) {
        for (const bool smooth : {true, false}) {
          for (const double alpha : {0.25, 0.9}) {
            draw->setArrowStyle(style);
            draw->setLineWidth(width);
            draw->setSmooth(smooth);
            draw->setStrokeColor(NSColor::blackColor());
            const Canvas opaque = Canvas().draw(*draw);
            draw->setStrokeColor(NSColor::colorWithCalibratedWhite(0, alpha));
            const Canvas translucent = Canvas().draw(*draw);
            for (int i = 0; i < 10000; ++i) {
              const int x = i % 100, y = i / 100;
              ASSERT_NEAR(translucent.at(x, y)[3], opaque.at(x, y)[3] * alpha, 1.5)
                  << draw->className() << " " << style << " " << width << " " << x << " " << y;
            }
          }
        }
      }
    }
  }
}

TEST(DrawBaseRendering, HeadsOfAShortLineMeetWithoutASeam) {
  const auto arrow = line({20, 31}, {80, 75}, 14, NSColor::blackColor());
  arrow->setArrowStyle(2);
  const Canvas canvas = Canvas().draw(*arrow);
  // Across the line, at its middle, where both bases are.
  for (int i = -15; i <= 15; ++i) {
    const int x = 50 - i * 44 / 75, y = 53 + i * 60 / 75;
    EXPECT_EQ(canvas.at(x, y)[3], 255) << x << " " << y;
  }
}

TEST(DrawBaseRendering, ArrowsReplaceTheEndOfTheLine) {
  auto arrow = line({10, 50}, {90, 50}, 4, NSColor::redColor());
  arrow->setArrowStyle(1);
  // Side 16, height 13.86: the base lies at 76.14, the line ends at 80.76.
  Canvas canvas = Canvas().draw(*arrow);
  EXPECT_EQ(canvas.at(50, 50), kRed);
  EXPECT_EQ(canvas.at(50, 53), kClear);
  EXPECT_EQ(canvas.at(77, 55), kRed) << "near the base, 5 above the line";
  EXPECT_EQ(canvas.at(75, 55), kClear);
  EXPECT_EQ(canvas.at(87, 50), kRed) << "near the tip";
  EXPECT_EQ(canvas.at(87, 53), kClear);
  EXPECT_EQ(arrow->drawRect().origin.x, 8);
  EXPECT_NEAR(NSMaxX(arrow->drawRect()), 90, 1e-5);
  EXPECT_NEAR(NSHeight(arrow->drawRect()), 16, 1e-5);

  // A translucent line does not show through its head.
  arrow->setStrokeColor(NSColor::colorWithCalibratedRed(1, 0, 0, 0.5));
  canvas = Canvas().draw(*arrow);
  expectNear(canvas.at(79, 50), {128, 0, 0, 128}, 1, "line and head overlap here");
  expectNear(canvas.at(50, 50), {128, 0, 0, 128}, 1, "line alone");
}

TEST(DrawBaseRendering, GradientArrowsHaveNoHoles) {
  for (const auto& [from, to] : {std::pair<NSPoint, NSPoint>{{10, 50}, {90, 50}},
                                 {{90, 50}, {10, 50}},
                                 {{50, 10}, {50, 90}},
                                 {{50, 90}, {50, 10}}}) {
    auto arrow = line(from, to, 4, NSColor::redColor());
    arrow->setArrowStyle(2);
    arrow->setUseGradualStroke(true);
    arrow->setStrokeGradient(redToBlue());
    const Canvas canvas = Canvas().draw(*arrow);
    // Along the line, through both heads, where the line reaches into them.
    for (int64_t i = 20; i < 80; ++i) {
      const Pixel p = from.y == to.y ? canvas.at(i, 50) : canvas.at(50, i);
      EXPECT_EQ(p[3], 255) << i << " on the way from " << from.x << ", " << from.y;
    }
  }
}

TEST(DrawBaseRendering, StrokeOutlines) {
  auto stroke = line({10, 50}, {90, 50}, 6, NSColor::redColor());
  stroke->setEnableStrokeOutline(true);
  stroke->setStrokeOutlineWidth(4);
  stroke->setStrokeOutlineColor(NSColor::blueColor());
  Canvas canvas = Canvas().draw(*stroke);
  EXPECT_EQ(canvas.at(50, 51), kRed);
  EXPECT_EQ(canvas.at(50, 55), kBlue);
  EXPECT_EQ(canvas.at(50, 57), kClear);
  EXPECT_EQ(stroke->drawRect(), NSMakeRect(3, 43, 94, 14));

  // Under a translucent line the outline is erased, and nothing else.
  stroke->setStrokeColor(NSColor::colorWithCalibratedRed(1, 0, 0, 0.5));
  canvas = Canvas(NSColor::greenColor()).draw(*stroke);
  expectNear(canvas.at(50, 51), {128, 127, 0, 255}, 1, "line over the ground");
  EXPECT_EQ(canvas.at(50, 55), kBlue);
  // Without a visible line the outline is drawn but adds no margin.
  stroke->setEnableStroke(false);
  EXPECT_EQ(stroke->drawRect().size.height, 0);
  EXPECT_EQ(Canvas().draw(*stroke).at(50, 55), kBlue);
}

TEST(DrawBaseRendering, SmoothingOff) {
  // Without antialiasing every touched pixel is painted fully.
  auto circle = filled<DrawEllipse>(NSMakeRect(30, 30, 40, 40), NSColor::redColor());
  circle->setSmooth(false);
  const Canvas canvas = Canvas().draw(*circle);
  int64_t painted = 0;
  for (int64_t y = 0; y < 100; ++y) {
    for (int64_t x = 0; x < 100; ++x) {
      const Pixel p = canvas.at(x, y);
      EXPECT_TRUE(p == kRed || p == kClear) << x << ", " << y;
      painted += p == kRed;
    }
  }
  EXPECT_EQ(painted, 1324);
}
