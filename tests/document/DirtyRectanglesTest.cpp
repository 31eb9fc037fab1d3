// Repainting part of the buffer relies on it: outside of the area that a draw is said to cover, it
// paints nothing.
#include <gtest/gtest.h>

#include "document/DirtyRectangles.h"
#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "support/Bitmaps.h"
#include "support/RandomDraws.h"

namespace {

constexpr int64_t kSide = 120;

bool inside(const NSRect& r, int64_t x, int64_t yFromTop) {
  const auto cx = static_cast<CGFloat>(x), cy = static_cast<CGFloat>(kSide - 1 - yFromTop);
  return cx >= NSMinX(r) && cx < NSMaxX(r) && cy >= NSMinY(r) && cy < NSMaxY(r);
}

/// Counts how often it is drawn.
class Counted : public DrawRectangle {
 public:
  explicit Counted(const NSRect& rect) {
    init();
    setBezierPathWithBounds(rect);
    setEnableStroke(false);
    setEnableFill(true);
    setFillColor(NSColor::redColor());
  }
  void drawInImage(NSBitmapImageRep* image) override {
    ++drawn;
    DrawRectangle::drawInImage(image);
  }
  int drawn = 0;
};

/// A kind of draw that the document knows nothing about.
class Unknown : public Counted {
 public:
  static const NSClass kClass;
  using Counted::Counted;
  const NSClass& classInfo() const override { return kClass; }
};
const NSClass Unknown::kClass{"Unknown", &DrawBase::kClass, nullptr};

/// 100 by 100, with a row of squares, the topmost one last.
class Repainting : public testing::Test {
 protected:
  void SetUp() override {
    document_.setSize({100, 100});
    for (int i = 0; i < 5; ++i) {
      draws_.push_back(std::make_shared<Counted>(NSMakeRect(i * 20, 10, 8, 8)));
      document_.addDraw(draws_.back());
    }
  }
  /// Areas are known when everything was painted twice.
  void paintTwice() {
    document_.fullImage();
    document_.setImageRefreshControl(kRebuildBuffer);
    document_.fullImage();
    for (const auto& draw : draws_) draw->drawn = 0;
  }
  std::vector<int> counts() {
    document_.fullImage();
    std::vector<int> counts;
    for (const auto& draw : draws_) counts.push_back(std::exchange(draw->drawn, 0));
    return counts;
  }
  void changed(size_t i) {
    const std::shared_ptr<DrawBase> draw = draws_[i];
    document_.respondToChangeOfDraws({&draw, 1});
  }

  PaintManager document_;
  std::vector<std::shared_ptr<Counted>> draws_;
};

}  // namespace

TEST(DirtyRectangles, HoldAllThatIsPainted) {
  const auto ground = makeBitmap(kSide, kSide, [](int64_t, int64_t) {
    return Pixel{90, 60, 30, 180};
  });
  RandomDraws draws(1, kSide);
  for (int i = 0; i < 1500; ++i) {
    const auto draw = draws.next();
    const auto bitmap = ground->copy();
    {
      const ZTFocusScope focus(bitmap);
      draw->drawInImage(bitmap.get());
    }
    const auto area = DirtyRectangles::areaOf(*draw);
    if (!area.has_value()) {
      ASSERT_TRUE(draw->copyWhenComposite()) << draws.description();
      continue;
    }
    for (int64_t k = 0; k < kSide * kSide; ++k) {
      const int64_t x = k % kSide, y = k / kSide;
      if (inside(*area, x, y)) continue;
      ASSERT_EQ(pixelAt(*bitmap, x, y), pixelAt(*ground, x, y))
          << draws.description() << " at " << x << ", " << kSide - 1 - y;
    }
  }
}

TEST(DirtyRectangles, OfGroupsHiddenAndUnknownDraws) {
  const auto a = std::make_shared<Counted>(NSMakeRect(10, 10, 5, 5));
  const auto b = std::make_shared<Counted>(NSMakeRect(40, 50, 5, 5));
  const auto group = DrawGroup::initWithDraws({a, b});
  const NSRect area = *DirtyRectangles::areaOf(*group);
  EXPECT_EQ(area, NSUnionRect(*DirtyRectangles::areaOf(*a), *DirtyRectangles::areaOf(*b)));
  b->setVisible(false);
  EXPECT_EQ(DirtyRectangles::areaOf(*group), DirtyRectangles::areaOf(*a));
  group->insertDraw(std::make_shared<Unknown>(NSMakeRect(0, 0, 1, 1)), 0);
  EXPECT_FALSE(DirtyRectangles::areaOf(*group).has_value());
  group->setVisible(false);
  EXPECT_EQ(DirtyRectangles::areaOf(*group), NSZeroRect);
}

TEST_F(Repainting, OnlyWhatLiesAroundAChangeIsDrawnAgain) {
  document_.fullImage();
  changed(1);
  EXPECT_EQ(counts(), (std::vector{2, 2, 2, 2, 2})) << "areas are noted from the second time on";
  draws_[1]->moveByX(4, 0);
  changed(1);
  EXPECT_EQ(counts(), (std::vector{0, 1, 0, 0, 1})) << "the topmost is drawn for the full image";
  draws_[1]->moveByX(8, 0);
  changed(1);
  EXPECT_EQ(counts(), (std::vector{0, 1, 1, 0, 1})) << "it came near its neighbour";
  draws_[1]->moveByX(-12, 0);
  changed(1);
  EXPECT_EQ(counts(), (std::vector{0, 1, 1, 0, 1})) << "and left it";

  draws_[0]->setVisible(false);
  changed(0);
  EXPECT_EQ(counts(), (std::vector{0, 0, 0, 0, 1}));
  draws_[0]->setVisible(true);
  changed(0);
  EXPECT_EQ(counts(), (std::vector{1, 0, 0, 0, 1}));
}

TEST_F(Repainting, OrderAndMembership) {
  paintTwice();
  document_.moveUpDraws(DrawArray{draws_[2]});
  EXPECT_EQ(counts(), (std::vector{0, 0, 1, 0, 1}));
  // The topmost one is not in the buffer; the one that takes its place leaves the buffer.
  document_.moveDrawsToFront(DrawArray{draws_[0]});
  EXPECT_EQ(counts(), (std::vector{1, 0, 0, 0, 1}));
  document_.removeDraw(draws_[1]);
  EXPECT_EQ(counts(), (std::vector{1, 0, 0, 0, 0}));
  document_.insertDraw(draws_[1], 0);
  EXPECT_EQ(counts(), (std::vector{1, 1, 0, 0, 0}));
  document_.groupDraws(DrawArray{draws_[1], draws_[2]});
  EXPECT_EQ(counts()[3], 0);
}

TEST_F(Repainting, WhatIsNotKnownIsPaintedWhole) {
  // A draw of unknown extent leaves the buffer by becoming the topmost one.
  document_.insertDraw(std::make_shared<Unknown>(NSMakeRect(90, 90, 2, 2)), 4);
  paintTwice();
  document_.removeDraw(draws_[4]);
  EXPECT_EQ(counts(), (std::vector{1, 1, 1, 1, 0}));
  document_.removeDraw(document_.allDraws()[4]);
  document_.addDraw(draws_[4]);

  document_.insertDraw(std::make_shared<Unknown>(NSMakeRect(90, 90, 2, 2)), 0);
  paintTwice();
  changed(1);
  EXPECT_EQ(counts(), (std::vector{1, 1, 1, 1, 1})) << "a draw of unknown extent";
  document_.removeDraw(document_.allDraws()[0]);
  counts();
  document_.setBackgroundColor(NSColor::redColor());
  EXPECT_EQ(counts(), (std::vector{1, 1, 1, 1, 1})) << "a new ground";
  draws_[0]->scaleByX(12, 10, {0, 14}, ResizeLineWidth::no);
  changed(0);
  EXPECT_EQ(counts(), (std::vector{1, 1, 1, 1, 1})) << "most of the canvas";
  document_.clearMemeryBuffer();
  EXPECT_EQ(counts(), (std::vector{1, 1, 1, 1, 1}));
  changed(1);
  EXPECT_EQ(counts(), (std::vector{1, 1, 0, 0, 1})) << "itself and the large one";
}
