#include <gtest/gtest.h>

#include <random>

#include "platform/text/TextSupport.h"
#include "platform/text/drawing/GlyphMasks.h"

namespace {

/// Font units of the box font to pixels, y down, for a size.
CGAffineTransform atSize(double size) {
  return {size / 1000, 0, 0, -size / 1000, 0, 0};
}

class GlyphMasksTest : public BoxFontTest {
 protected:
  const FontFace& face() const { return *font_.resolved()->face; }
  uint32_t glyph(char32_t character) const { return face().glyphForCharacter(character); }

  NSFont font_{kBoxFont, 20};
  GlyphMasks masks_;
};

}  // namespace

TEST_F(GlyphMasksTest, OneMaskServesAllPlacesWithTheSameFraction) {
  masks_.use(face(), atSize(20));
  const auto first = masks_.place(glyph('a'), {10.3, 40});
  const auto second = masks_.place(glyph('a'), {57.2, 61.1});
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->mask, second->mask) << "both are rounded to a quarter";
  // The box reaches from 1 to 9 right of the origin and 14 above it.
  EXPECT_EQ(first->box(), (PixelBox{11, 26, 20, 40}));
  EXPECT_EQ(second->dx - first->dx, 47);
  EXPECT_EQ(second->dy - first->dy, 21);
  EXPECT_NE(masks_.place(glyph('a'), {10.5, 40})->mask, first->mask);
  EXPECT_NE(masks_.place(glyph('a'), {10.3, 40.5})->mask, first->mask);
  EXPECT_EQ(masks_.place(glyph('a'), {-0.1, 0})->dx, 0) << "rounded up";
  EXPECT_EQ(masks_.place(glyph('a'), {-0.2, 0})->dx, -1);
  EXPECT_FALSE(masks_.place(glyph(' '), {10, 40}));
}

TEST_F(GlyphMasksTest, FarPlacesAndManyMasksDoNoHarm) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> size(1, 40), at(-1e12, 1e12);
  for (int i = 0; i < 20000; ++i) {
    masks_.use(face(), atSize(size(random)));
    const auto placed = masks_.place(glyph('a'), {at(random), at(random)});
    ASSERT_TRUE(placed);
    EXPECT_FALSE(placed->mask->box().empty());
  }
}

TEST_F(GlyphMasksTest, ServeSmallGlyphsOnHorizontalBaselines) {
  EXPECT_TRUE(GlyphMasks::serves(face(), atSize(48)));
  EXPECT_FALSE(GlyphMasks::serves(face(), atSize(49)));
  EXPECT_TRUE(GlyphMasks::serves(face(), {0.02, 0, 0.005, -0.02, 0, 0})) << "slanted";
  EXPECT_FALSE(GlyphMasks::serves(face(), {0.02, 0.001, 0, -0.02, 0, 0})) << "turned";
}

// Against painting one after the other with an opaque colour, pixel by pixel.
TEST_F(GlyphMasksTest, SumsArePaintsOnTopOfEachOther) {
  std::mt19937 random(5);
  const PixelBox box{0, 0, 37, 2};
  AlphaMask below(box), above(box), sum(box);
  for (int32_t y = 0; y < 2; ++y) {
    for (int32_t x = 0; x < 37; ++x) {
      sum.row(y)[x] = below.row(y)[x] = static_cast<uint8_t>(random());
      above.row(y)[x] = static_cast<uint8_t>(random());
    }
  }
  addMask({&above, 3, 1}, sum);
  for (int32_t y = 0; y < 2; ++y) {
    for (int32_t x = 0; x < 37; ++x) {
      const int a = below.row(y)[x];
      const int b = x >= 3 && y >= 1 ? above.row(y - 1)[x - 3] : 0;
      EXPECT_EQ(sum.row(y)[x], std::lround(a + b - a * b / 255.0)) << x << ", " << y;
    }
  }
}
