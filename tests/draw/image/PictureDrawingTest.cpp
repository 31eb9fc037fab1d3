// Embedded pictures on a canvas of 40 by 40, y upwards, at points worked out by hand.
#include <gtest/gtest.h>

#include "draw/image/DrawImage.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/Draws.h"

namespace {

constexpr int64_t kSide = 40;
constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};
constexpr Pixel kBlack{0, 0, 0, 255};

/// The canvas after drawing; at(x, y) is the pixel whose lower left corner is (x, y).
class Drawn {
 public:
  explicit Drawn(DrawBase& draw) {
    const ZTFocusScope focus(bitmap_);
    draw.drawInImage(bitmap_.get());
  }
  Pixel at(int64_t x, int64_t y) const { return pixelAt(*bitmap_, x, kSide - 1 - y); }
  const NSBitmapImageRep& bitmap() const { return *bitmap_; }

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_ = NSBitmapImageRep::create(kSide, kSide);
};

void expectNear(const Pixel& actual, const Pixel& expected, int tolerance) {
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "channel " << i;
}

/// Red above blue, 10 by 10.
std::shared_ptr<NSBitmapImageRep> halves() {
  return makeBitmap(10, 10, [](int64_t, int64_t y) { return y < 5 ? kRed : kBlue; });
}

std::shared_ptr<DrawImage2> picture(NSRect bounds,
                                    std::shared_ptr<NSBitmapImageRep> bitmap = halves()) {
  auto draw = DrawImage2::initWithImage(std::move(bitmap));
  draw->setBezierPathWithBounds(bounds);
  return draw;
}

/// Counts how often its bitmap is made.
class CountedPicture : public DrawImage2 {
 public:
  explicit CountedPicture(NSRect bounds) {
    init();
    setBezierPathWithBounds(bounds);
  }
  int made() const { return made_; }

 protected:
  std::shared_ptr<NSBitmapImageRep> makeImage(CGFloat, PictureFailure*) const override {
    ++made_;
    return halves();
  }

 private:
  mutable int made_ = 0;
};

}  // namespace

TEST(PictureDrawing, StretchesIntoTheBounds) {
  const Drawn canvas(*picture(NSMakeRect(5, 10, 30, 20)));
  EXPECT_EQ(canvas.at(5, 29), kRed);
  EXPECT_EQ(canvas.at(34, 22), kRed);
  EXPECT_EQ(canvas.at(5, 10), kBlue);
  EXPECT_EQ(canvas.at(34, 17), kBlue);
  for (const auto& [x, y] : {std::pair{4, 15}, {35, 15}, {20, 9}, {20, 30}}) {
    EXPECT_EQ(canvas.at(x, y), Pixel{}) << x << " " << y;
  }
}

TEST(PictureDrawing, PicturesOfTheirOwnSizeAreCopiedToWholePixels) {
  const auto noise = randomBitmap(20, 20, 3);
  // 7.4 is snapped to 7, 9.5 to 10.
  const Drawn canvas(*picture(NSMakeRect(7.4, 9.5, 20, 20), noise));
  const auto expected = makeBitmap(kSide, kSide, [&](int64_t x, int64_t y) {
    const int64_t row = y - (kSide - 10 - 20);
    const bool inside = x >= 7 && x < 27 && row >= 0 && row < 20;
    return inside ? pixelAt(*noise, x - 7, row) : Pixel{};
  });
  EXPECT_EQ(maxDifference(canvas.bitmap(), *expected), 0);
}

TEST(PictureDrawing, TurnsAboutTheMiddle) {
  const auto draw = picture(NSMakeRect(10, 10, 20, 20));
  draw->setRotateDegree(90);
  const Drawn canvas(*draw);
  // Counter-clockwise: what was above is on the left.
  EXPECT_EQ(canvas.at(12, 20), kRed);
  EXPECT_EQ(canvas.at(27, 20), kBlue);
  EXPECT_EQ(canvas.at(9, 20), Pixel{});
}

TEST(PictureDrawing, OpacityCountsOnce) {
  const auto draw = picture(NSMakeRect(10, 10, 20, 20));
  draw->setOpacity(40);
  expectNear(Drawn(*draw).at(15, 28), {102, 0, 0, 102}, 1);
  draw->setOpacity(0);
  EXPECT_TRUE(Drawn(*draw).bitmap().usedRows().empty());
}

TEST(PictureDrawing, OpacityOfThePictureLeavesTheLine) {
  const auto draw = std::dynamic_pointer_cast<DrawImage2>(
      drawTitled(*madeDocument("pictures"), "half with line"));
  draw->setImage(halves());
  draw->setBezierPathWithBounds(NSMakeRect(10, 10, 20, 20));
  const Drawn canvas(*draw);
  expectNear(canvas.at(20, 28), {128, 0, 0, 128}, 1);
  EXPECT_EQ(canvas.at(10, 20), kBlack);
  EXPECT_EQ(canvas.at(9, 20), kBlack);
  EXPECT_EQ(canvas.at(8, 20), Pixel{});
}

TEST(PictureDrawing, RoundCornersCutThePicture) {
  const auto draw = picture(NSMakeRect(10, 10, 20, 20));
  draw->setXRadius(10, 10);
  const Drawn round(*draw);
  EXPECT_EQ(round.at(10, 29), Pixel{});
  EXPECT_EQ(round.at(20, 28), kRed);
  // Both radii must reach a unit.
  draw->setXRadius(10, 0.5F);
  EXPECT_EQ(Drawn(*draw).at(10, 29), kRed);
}

TEST(PictureDrawing, LinesOfOddWidthFallOnPixels) {
  const auto draw = picture(NSMakeRect(10, 10, 20, 20));
  draw->setEnableStroke(true);
  draw->setStrokeColor(NSColor::blackColor());
  draw->setLineWidth(1);
  const Drawn canvas(*draw);
  EXPECT_EQ(canvas.at(10, 20), kBlack);
  EXPECT_EQ(canvas.at(30, 20), kBlack);
  EXPECT_EQ(canvas.at(9, 20), Pixel{});
  EXPECT_EQ(canvas.at(31, 20), Pixel{});
  // A line without width draws nothing.
  draw->setLineWidth(0);
  EXPECT_EQ(Drawn(*draw).at(10, 25), kRed);
}

TEST(PictureDrawing, ShadowsFollowThePicture) {
  // Opaque on the left half only.
  const auto bitmap = makeBitmap(10, 10, [](int64_t x, int64_t) { return x < 5 ? kRed : Pixel{}; });
  const auto draw = picture(NSMakeRect(10, 10, 10, 10), bitmap);
  draw->setEnableShadow(true);
  draw->setShadow(shadow({10, -10}, 0, NSColor::colorWithCalibratedWhite(0, 0.6)));
  draw->setOpacity(50);
  const Drawn canvas(*draw);
  expectNear(canvas.at(12, 15), {128, 0, 0, 128}, 1);
  // 0.6 by 0.5.
  expectNear(canvas.at(22, 5), {0, 0, 0, 77}, 1);
  EXPECT_EQ(canvas.at(27, 5), Pixel{});
}

TEST(PictureDrawing, ShadowsOfTheLineFallOutsideThePicture) {
  const auto clear = NSBitmapImageRep::create(20, 20);
  const auto draw = picture(NSMakeRect(10, 10, 20, 20), clear);
  draw->setEnableStroke(true);
  draw->setStrokeColor(NSColor::redColor());
  draw->setLineWidth(2);
  draw->setEnableShadow(true);
  draw->setShadow(shadow({4, 0}, 0, NSColor::blackColor()));
  const Drawn canvas(*draw);
  EXPECT_EQ(canvas.at(9, 20), kRed);
  EXPECT_EQ(canvas.at(30, 20), kRed);
  // The right line's shadow shows, the left line's would fall inside.
  EXPECT_EQ(canvas.at(33, 20), kBlack);
  EXPECT_EQ(canvas.at(13, 20), Pixel{});
}

TEST(PictureDrawing, InnerShadowsDarkenTheEdges) {
  const auto draw = picture(NSMakeRect(10, 10, 20, 20));
  draw->setEnableInnerShadow(true);
  draw->setInnerShadow(shadow({5, 0}, 0, NSColor::colorWithCalibratedWhite(0, 0.5)));
  const Drawn canvas(*draw);
  // The surroundings' shadow is moved five to the right: it covers the left five columns by half.
  expectNear(canvas.at(12, 28), {128, 0, 0, 255}, 1);
  EXPECT_EQ(canvas.at(15, 28), kRed);
  EXPECT_EQ(canvas.at(9, 20), Pixel{});
  // Transparent parts of the picture cast from inside it and take no shadow themselves.
  const auto ring = makeBitmap(20, 20, [](int64_t x, int64_t) { return x < 10 ? kRed : Pixel{}; });
  const auto half = picture(NSMakeRect(10, 10, 20, 20), ring);
  half->setEnableInnerShadow(true);
  half->setInnerShadow(shadow({-5, 0}, 0, NSColor::blackColor()));
  const Drawn second(*half);
  EXPECT_EQ(second.at(12, 20), kRed);
  EXPECT_EQ(second.at(17, 20), kBlack);
  EXPECT_EQ(second.at(22, 20), Pixel{});
}

TEST(PictureDrawing, ReflectionsShowThePictureUpsideDown) {
  const auto draw = picture(NSMakeRect(10, 20, 20, 20));
  draw->setEnableReflection(true);
  draw->setReflection(1);
  draw->setReflectionDis(0);
  const Drawn canvas(*draw);
  EXPECT_EQ(canvas.at(20, 39), kRed);
  EXPECT_EQ(canvas.at(20, 20), kBlue);
  // Fading from 1 at the lower edge to 0 over the whole height: 0.975 and 0.125.
  expectNear(canvas.at(20, 19), {0, 0, 249, 249}, 2);
  expectNear(canvas.at(20, 2), {32, 0, 0, 32}, 2);
}

TEST(PictureDrawing, BitmapsAreMadeOnceAndForWhatShows) {
  CountedPicture mirrored(NSMakeRect(10, 20, 20, 20));
  mirrored.setEnableReflection(true);
  mirrored.setReflection(1);
  const Drawn both(mirrored);
  EXPECT_EQ(mirrored.made(), 1);

  struct Case {
    NSRect bounds;
    float degrees;
    NSSize shadow;
    int made;
  };
  for (const Case& c : {Case{{{50, 10}, {20, 20}}, 0, {}, 0},
                        {{{10, -30}, {20, 20}}, 0, {}, 0},
                        {{{10, -30}, {20, 20}}, 0, {0, 25}, 1},
                        // Turned, it reaches into the canvas.
                        {{{45, 0}, {10, 40}}, 0, {}, 0},
                        {{{45, 0}, {10, 40}}, 90, {}, 1},
                        {{{39.9, 10}, {20, 20}}, 0, {}, 1}}) {
    CountedPicture draw(c.bounds);
    draw.setEnableStroke(false);
    draw.setRotateDegree(c.degrees);
    draw.setEnableShadow(c.shadow != NSZeroSize);
    draw.setShadow(shadow(c.shadow, 0, NSColor::blackColor()));
    const Drawn canvas(draw);
    EXPECT_EQ(draw.made(), c.made) << c.bounds.origin.x << " " << c.degrees;
  }
}

// The right corner of the turned square lies 14.1 units from its centre, that of the line 28.3
// more.
TEST(PictureDrawing, CornersOfLinesReachIntoTheCanvas) {
  const auto draw = picture(NSMakeRect(-48, 10, 20, 20));
  draw->setRotateDegree(45);
  draw->setLineWidth(40);
  EXPECT_EQ(Drawn(*draw).at(0, 20), kBlack);
  EXPECT_EQ(Drawn(*draw).at(6, 20), Pixel{});
  draw->bezierPath()->setLineJoinStyle(LineJoin::bevel);
  EXPECT_EQ(Drawn(*draw).at(0, 20), Pixel{});
}

TEST(PictureDrawing, PicturesWithoutBitmapDrawTheirLine) {
  const auto draw = DrawImage2::initWithImage(nullptr);
  draw->setBezierPathWithBounds(NSMakeRect(10, 10, 20, 20));
  draw->setLineWidth(2);
  const Drawn canvas(*draw);
  EXPECT_EQ(canvas.at(10, 20), kBlack);
  EXPECT_EQ(canvas.at(20, 20), Pixel{});
}

TEST(PictureDrawing, LegacyPicturesDrawTheSameWay) {
  DrawImage draw;
  draw.init();
  draw.setBezierPathWithBounds(NSMakeRect(10.4, 10, 20, 20));
  draw.setImage(halves());
  draw.setOpacity(40);
  draw.setRotateDegree(90);
  const Drawn canvas(draw);
  expectNear(canvas.at(12, 20), {102, 0, 0, 102}, 1);
  expectNear(canvas.at(27, 20), {0, 0, 102, 102}, 1);
  EXPECT_EQ(maxDifference(canvas.bitmap(), Drawn(*draw.convertedDraw()).bitmap()), 0);
}
