#include <gtest/gtest.h>

#include <array>

#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"

namespace {

/// Fills one rectangle with one colour and counts how often it is asked to.
class Patch : public DrawBase {
 public:
  Patch(NSRect rect, std::shared_ptr<NSColor> color) : rect_(rect), color_(std::move(color)) {
    init();
  }
  void drawInImage(NSBitmapImageRep*) override {
    ++drawn;
    color_->set();
    NSRectFillUsingOperation(rect_, NSGraphicsContext::currentContext()->compositingOperation());
  }
  int drawn = 0;

 private:
  NSRect rect_;
  std::shared_ptr<NSColor> color_;
};

std::shared_ptr<Patch> patch(NSRect rect, std::shared_ptr<NSColor> color) {
  return std::make_shared<Patch>(rect, std::move(color));
}

using Pixel = std::array<int, 4>;
constexpr Pixel kClear = {0, 0, 0, 0};
constexpr Pixel kRed = {255, 0, 0, 255};
constexpr Pixel kGreen = {0, 255, 0, 255};
constexpr Pixel kBlue = {0, 0, 255, 255};

/// The pixel whose lower left corner is (x, y) on the canvas.
Pixel pixelAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y) {
  const uint8_t* p = bitmap.row(bitmap.pixelsHigh() - 1 - y) + x * 4;
  return {p[0], p[1], p[2], p[3]};
}

PaintManager canvas() {
  PaintManager document;
  document.setSize({10, 10});
  return document;
}

}  // namespace

TEST(PaintManagerComposition, EmptyDocumentIsTransparent) {
  PaintManager document = canvas();
  for (const auto& color : {std::shared_ptr<NSColor>(), NSColor::clearColor(),
                            NSColor::colorWithCalibratedRed(1, 0, 0, 0)}) {
    document.setBackgroundColor(color);
    const auto image = document.fullImage();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->pixelsWide(), 10);
    EXPECT_EQ(pixelAt(*image, 5, 5), kClear);
  }
}

TEST(PaintManagerComposition, BackgroundColorIsCopied) {
  PaintManager document = canvas();
  document.setBackgroundColor(NSColor::redColor());
  EXPECT_EQ(pixelAt(*document.fullImage(), 0, 9), kRed);
  // A translucent one replaces the old pixels rather than covering them.
  document.setBackgroundColor(NSColor::colorWithCalibratedRed(0, 0, 1, 0.5));
  EXPECT_EQ(document.imageRefreshControl(), kRebuildBuffer);
  EXPECT_EQ(pixelAt(*document.fullImage(), 0, 9), (Pixel{0, 0, 128, 128}));
  document.setBackgroundColor(nullptr);
  EXPECT_EQ(pixelAt(*document.fullImage(), 0, 9), kClear);
}

TEST(PaintManagerComposition, DrawsLieInListOrderAndInvisibleOnesAreLeftOut) {
  PaintManager document = canvas();
  const auto low = patch(NSMakeRect(0, 0, 6, 6), NSColor::redColor());
  const auto middle = patch(NSMakeRect(2, 2, 6, 6), NSColor::greenColor());
  const auto top = patch(NSMakeRect(4, 4, 6, 6), NSColor::blueColor());
  for (const auto& draw : {low, middle, top}) EXPECT_TRUE(document.addDraw(draw));
  EXPECT_FALSE(document.addDraw(middle));
  auto image = document.fullImage();
  EXPECT_EQ(pixelAt(*image, 1, 1), kRed);
  EXPECT_EQ(pixelAt(*image, 3, 3), kGreen);
  EXPECT_EQ(pixelAt(*image, 5, 5), kBlue);
  EXPECT_EQ(pixelAt(*image, 9, 0), kClear);

  top->setVisible(false);
  middle->setVisible(false);
  document.setImageRefreshControl(kRebuildBuffer);
  image = document.fullImage();
  EXPECT_EQ(pixelAt(*image, 5, 5), kRed);
  EXPECT_EQ(document.visibleDraws(), DrawArray{low});
}

TEST(PaintManagerComposition, OnlyWhatIsStaleIsDrawnAgain) {
  PaintManager document = canvas();
  const auto low = patch(NSMakeRect(0, 0, 6, 6), NSColor::redColor());
  const auto top = patch(NSMakeRect(4, 4, 6, 6), NSColor::blueColor());
  document.addDraw(low);
  document.addDraw(top);
  document.fullImage();
  document.fullImage();
  EXPECT_EQ(low->drawn, 1);
  EXPECT_EQ(top->drawn, 1);

  const std::shared_ptr<DrawBase> changed[] = {top};
  document.respondToChangeOfDraws(changed);
  EXPECT_EQ(document.imageRefreshControl(), kRefreshFullImage);
  document.fullImage();
  EXPECT_EQ(low->drawn, 1) << "the buffer stays";
  EXPECT_EQ(top->drawn, 2);

  // The old topmost draw joins the buffer when another one is added.
  const auto newest = patch(NSMakeRect(8, 8, 2, 2), NSColor::greenColor());
  document.addDraw(newest);
  EXPECT_EQ(document.imageRefreshControl(), kRefreshFullImage);
  const auto image = document.fullImage();
  EXPECT_EQ(low->drawn, 1);
  EXPECT_EQ(pixelAt(*image, 5, 5), kBlue);
  EXPECT_EQ(pixelAt(*image, 9, 9), kGreen);

  document.clearMemeryBuffer();
  EXPECT_EQ(document.imageWithoutRefreshing(), nullptr);
  EXPECT_EQ(pixelAt(*document.fullImage(), 9, 9), kGreen);
}

TEST(PaintManagerComposition, ChangesSetTheRefreshControl) {
  PaintManager document = canvas();
  const auto inLow = patch(NSMakeRect(0, 0, 1, 1), NSColor::redColor());
  const auto inTop = patch(NSMakeRect(0, 0, 1, 1), NSColor::redColor());
  const auto loose = patch(NSMakeRect(0, 0, 1, 1), NSColor::redColor());
  const auto lowGroup = DrawGroup::initWithDraws({inLow});
  const auto topGroup = DrawGroup::initWithDraws({inTop});
  document.addDraw(lowGroup);
  document.addDraw(topGroup);
  struct Case {
    DrawArray changed;
    int64_t control;
  };
  const Case cases[] = {
      {{topGroup}, kRefreshFullImage},        {{lowGroup}, kRebuildBuffer},
      {{topGroup, lowGroup}, kRebuildBuffer}, {{topGroup, topGroup}, kRebuildBuffer},
      {{inTop}, kRefreshFullImage},           {{inLow}, kRebuildBuffer},
      {{inTop, inLow}, kRebuildBuffer},       {{loose}, kImagesCurrent},
      {{loose, inTop}, kRefreshFullImage},    {{}, kImagesCurrent},
  };
  for (size_t i = 0; i < std::size(cases); ++i) {
    document.fullImage();
    document.respondToChangeOfDraws(cases[i].changed);
    EXPECT_EQ(document.imageRefreshControl(), cases[i].control) << "case " << i;
  }
}

TEST(PaintManagerComposition, AddingToAStaleDocumentLeavesItStale) {
  PaintManager document = canvas();
  const auto low = patch(NSMakeRect(0, 0, 4, 4), NSColor::redColor());
  document.addDraw(low);
  document.fullImage();
  document.setBackgroundColor(NSColor::greenColor());
  document.addDraw(patch(NSMakeRect(6, 6, 4, 4), NSColor::blueColor()));
  EXPECT_EQ(document.imageRefreshControl(), kRebuildBuffer);
  EXPECT_EQ(pixelAt(*document.fullImage(), 5, 5), kGreen);
}

TEST(PaintManagerComposition, BackgroundDrawMasksThePicture) {
  PaintManager document = canvas();
  auto mask = NSBitmapImageRep::create(10, 10);
  // The upper half is opaque, the left column of the lower half translucent.
  std::fill_n(mask->writableRows(0, 5), 10 * 5 * 4, uint8_t{255});
  for (int64_t y = 5; y < 10; ++y) std::fill_n(mask->writableRows(y, y + 1), 4, uint8_t{51});
  const auto background = DrawImage2::initWithImage(mask);
  document.setBackgroundDraw(background);
  EXPECT_EQ(document.allDraws()[0], background);
  document.addDraw(patch(NSMakeRect(0, 0, 10, 10), NSColor::redColor()));
  document.setMaskBackground(true);
  const auto image = document.fullImage();
  EXPECT_EQ(pixelAt(*image, 5, 9), kRed);
  EXPECT_EQ(pixelAt(*image, 5, 0), kClear);
  EXPECT_EQ(pixelAt(*image, 0, 0), (Pixel{51, 0, 0, 51}));

  EXPECT_FALSE(document.insertDraw(patch(NSZeroRect, NSColor::redColor()), 0));
  EXPECT_TRUE(document.removeDraw(background));
  EXPECT_EQ(document.backgroundDraw(), nullptr);
  EXPECT_EQ(pixelAt(*document.fullImage(), 5, 0), kRed);
}

TEST(PaintManagerComposition, GroupsRenderAndAnswerForTheirDraws) {
  PaintManager document = canvas();
  const auto visible = patch(NSMakeRect(0, 0, 2, 2), NSColor::redColor());
  const auto hidden = patch(NSMakeRect(4, 4, 2, 2), NSColor::blueColor());
  hidden->setVisible(false);
  const auto inner = DrawGroup::initWithDraws({visible});
  const auto outer = DrawGroup::initWithDraws({inner, hidden});
  document.addDraw(outer);
  const auto image = document.fullImage();
  EXPECT_EQ(pixelAt(*image, 1, 1), kRed);
  EXPECT_EQ(pixelAt(*image, 5, 5), kClear);
  EXPECT_EQ(inner->group(), outer.get());
  EXPECT_EQ(document.groupForDraw(inner.get()), outer.get());
  EXPECT_EQ(document.groupForDraw(visible.get()), nullptr) << "one level only";
  EXPECT_FALSE(document.removeDraw(visible));
  EXPECT_EQ(document.groupForDraw(outer.get()), nullptr);

  EXPECT_TRUE(outer->hasVisibleDraw());
  visible->setOpacity(0);
  inner->setVisible(false);
  EXPECT_FALSE(outer->hasVisibleDraw());
  EXPECT_TRUE(document.visibleDraws().empty());
  EXPECT_TRUE(document.removeDraw(inner));
  EXPECT_EQ(inner->group(), nullptr);
  EXPECT_EQ(outer->draws().size(), 1U);
}
