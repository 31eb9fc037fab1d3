#include <gtest/gtest.h>

#include <limits>

#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "draw/shapes/DrawRectangle.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/bitmap/NSImage.h"
#include "platform/graphics/color/NSColor.h"
#include "support/Bitmaps.h"

namespace {

constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();
constexpr NSSize kNoCanvasSizes[] = {{0.9, 10}, {-5, 5}, {kNaN, 5}, {1e6, 1e6}};

std::shared_ptr<DrawBase> box(const NSRect& rect) {
  auto draw = std::make_shared<DrawRectangle>();
  draw->init();
  draw->setBezierPathWithBounds(rect);
  draw->setLineWidth(3);
  draw->setEnableFill(true);
  draw->setFillColor(NSColor::redColor());
  return draw;
}

/// A canvas of 40 by 20 with a box, and another box in a group.
class Canvas : public testing::Test {
 protected:
  void SetUp() override {
    document_->addDraw(first_);
    document_->addDraw(DrawGroup::initWithDraws({second_}));
    document_->fullImage();
  }

  std::shared_ptr<PaintManager> document_ = PaintManager::initWithSize({40.7, 20.2});
  std::shared_ptr<DrawBase> first_ = box(NSMakeRect(0, 0, 10, 10));
  std::shared_ptr<DrawBase> second_ = box(NSMakeRect(20, 5, 8, 4));
};

}  // namespace

TEST_F(Canvas, NewDocuments) {
  EXPECT_EQ(document_->size(), NSMakeSize(40, 20));
  for (const NSSize& size : kNoCanvasSizes) EXPECT_EQ(PaintManager::initWithSize(size), nullptr);

  const auto picture = randomBitmap(7, 5, 1);
  const auto pictured = PaintManager::initWithImageRep(picture);
  EXPECT_EQ(pictured->size(), NSMakeSize(7, 5));
  ASSERT_NE(pictured->backgroundDraw(), nullptr);
  EXPECT_EQ(maxDifference(*pictured->backgroundDraw()->image(), *picture), 0);
  EXPECT_EQ(PaintManager::initWithImageRep(nullptr), nullptr);
  const auto image = PaintManager::initWithImage(std::make_shared<NSImage>(picture));
  EXPECT_EQ(maxDifference(*image->fullImage(), *pictured->fullImage()), 0);
  EXPECT_EQ(PaintManager::initWithImage(std::make_shared<NSImage>()), nullptr);

  const std::string_view svg =
      "<svg xmlns='http://www.w3.org/2000/svg' width='30' height='20'>"
      "<rect width='15' height='20' fill='#ff0000'/></svg>";
  const auto vector = PaintManager::initWithSVG(
      NSData::dataWithVector(std::vector<uint8_t>(svg.begin(), svg.end())));
  ASSERT_NE(vector, nullptr);
  EXPECT_EQ(vector->size(), NSMakeSize(30, 20));
  EXPECT_EQ(pixelAt(*vector->fullImage(), 14, 10), (Pixel{255, 0, 0, 255}));
  EXPECT_EQ(pixelAt(*vector->fullImage(), 15, 10), (Pixel{0, 0, 0, 0}));
  EXPECT_EQ(PaintManager::initWithSVG(nullptr), nullptr);

  const auto draw = DrawImage2::initWithImage(picture);
  draw->moveByX(3, 4);
  const auto drawn = PaintManager::initWithBackgroundDraw(draw);
  EXPECT_EQ(drawn->size(), NSMakeSize(7, 5));
  EXPECT_EQ(drawn->allDraws(), DrawArray{draw});
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(0, 0, 7, 5));
  EXPECT_EQ(PaintManager::initWithBackgroundDraw(nullptr), nullptr);
  EXPECT_EQ(PaintManager::initWithBackgroundDraw(DrawImage2::initWithImage(nullptr)), nullptr);
}

TEST_F(Canvas, BackgroundImages) {
  const auto large = randomBitmap(30, 10, 2), small = randomBitmap(6, 6, 3);
  document_->setBackgroundImage(large);
  const auto background = document_->backgroundDraw();
  ASSERT_NE(background, nullptr);
  EXPECT_EQ(document_->allDraws().front(), background);
  EXPECT_EQ(background->pathBounds(), NSMakeRect(0, 0, 30, 10));
  large->clear();
  EXPECT_NE(maxDifference(*background->image(), *large), 0) << "the picture is a copy";

  document_->fullImage();
  document_->setBackgroundImage(small);
  EXPECT_EQ(document_->backgroundDraw(), background) << "the draw stays";
  EXPECT_EQ(background->pathBounds(), NSMakeRect(0, 0, 6, 6));
  EXPECT_EQ(maxDifference(*background->image(), *small), 0);
  EXPECT_EQ(document_->imageRefreshControl(), kRebuildBuffer);
  document_->setBackgroundImage(nullptr);
  EXPECT_EQ(document_->backgroundDraw(), nullptr);
  EXPECT_EQ(document_->allDraws().size(), 2U);
}

TEST_F(Canvas, CroppingMovesEverything) {
  for (const NSSize& size : kNoCanvasSizes) {
    EXPECT_FALSE(document_->cropWithRect({{1, 1}, size}));
  }
  EXPECT_FALSE(document_->cropWithRect(NSMakeRect(kNaN, 0, 5, 5)));
  EXPECT_TRUE(document_->cropWithRect(NSMakeRect(3, 4, 20.9, 10)));
  EXPECT_EQ(document_->size(), NSMakeSize(20, 10));
  EXPECT_EQ(first_->pathBounds(), NSMakeRect(-3, -4, 10, 10));
  EXPECT_EQ(second_->pathBounds(), NSMakeRect(17, 1, 8, 4));
  EXPECT_EQ(document_->fullImage()->pixelsWide(), 20);
}

TEST_F(Canvas, ResizingScalesOrAnchorsTheDraws) {
  for (const NSSize& size : kNoCanvasSizes) {
    EXPECT_FALSE(document_->resizeToSize(size, ResampleLayer::yes, NSZeroPoint));
  }
  const struct {
    ResampleLayer resample;
    NSPoint anchor;
    NSRect first, second;
    CGFloat lineWidth;
  } cases[] = {
      {ResampleLayer::yes, {1, 1}, {{0, 0}, {20, 20}}, {{40, 10}, {16, 8}}, 6},
      {ResampleLayer::no, {0, 0}, {{0, 0}, {10, 10}}, {{20, 5}, {8, 4}}, 3},
      {ResampleLayer::no, {0.5, 1}, {{20, 20}, {10, 10}}, {{40, 25}, {8, 4}}, 3},
  };
  for (const auto& c : cases) {
    const auto document = document_->scaledPaintWithSize({40, 20}, ScaleDrawing::no);
    ASSERT_TRUE(document->resizeToSize({80, 40}, c.resample, c.anchor));
    const auto& draws = document->allDraws();
    EXPECT_EQ(draws[0]->pathBounds(), c.first);
    EXPECT_EQ(dynamic_cast<DrawGroup&>(*draws[1]).draws()[0]->pathBounds(), c.second);
    EXPECT_EQ(draws[0]->lineWidth(), c.lineWidth);
    EXPECT_EQ(document->fullImage()->pixelsWide(), 80);
  }
}

TEST_F(Canvas, ScaledCopiesShareNothing) {
  const auto scaled = document_->scaledPaintWithSize({20, 40}, ScaleDrawing::yes);
  ASSERT_NE(scaled, nullptr);
  EXPECT_EQ(scaled->size(), NSMakeSize(20, 40));
  EXPECT_EQ(scaled->allDraws()[0]->pathBounds(), NSMakeRect(0, 0, 5, 20));
  EXPECT_EQ(first_->pathBounds(), NSMakeRect(0, 0, 10, 10));
  const auto image = scaled->fullImage();
  EXPECT_EQ(pixelAt(*image, 2, 30), (Pixel{255, 0, 0, 255}));
  EXPECT_EQ(pixelAt(*image, 8, 30), (Pixel{0, 0, 0, 0}));

  const auto wider = document_->scaledPaintWithSize({60, 20}, ScaleDrawing::no);
  EXPECT_EQ(wider->size(), NSMakeSize(60, 20));
  EXPECT_EQ(wider->allDraws()[0]->pathBounds(), first_->pathBounds());
  EXPECT_EQ(document_->scaledPaintWithSize({0, 20}, ScaleDrawing::no), nullptr);
}
