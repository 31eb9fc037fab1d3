#include <gtest/gtest.h>

#include <cmath>

#include "draw/image/BitmapHelpers.h"
#include "support/Bitmaps.h"

namespace {

/// A 5 by 3 picture whose pixels say where they are; the lower right one is translucent.
NSBitmapImageRepPointer chart() {
  return makeBitmap(5, 3, [](int64_t x, int64_t y) {
    const bool translucent = x == 4 && y == 2;
    return Pixel{static_cast<uint8_t>(10 * x), static_cast<uint8_t>(10 * y), 0,
                 static_cast<uint8_t>(translucent ? 100 : 255)};
  });
}

using Origin = std::function<std::pair<int64_t, int64_t>(int64_t, int64_t)>;

/// The result has the size and its pixel (x, y) is the source's pixel origin(x, y); transparent
/// where that lies outside.
void expectMoved(const NSBitmapImageRepPointer& result, const NSBitmapImageRep& source,
                 int64_t width, int64_t height, const Origin& origin) {
  ASSERT_NE(result, nullptr);
  const auto expected = makeBitmap(width, height, [&](int64_t x, int64_t y) {
    const auto [u, v] = origin(x, y);
    const bool inside = u >= 0 && v >= 0 && u < source.pixelsWide() && v < source.pixelsHigh();
    return inside ? pixelAt(source, u, v) : Pixel{};
  });
  EXPECT_EQ(maxDifference(*result, *expected), 0);
  EXPECT_TRUE(result->hasAlpha());
}

}  // namespace

TEST(BitmapHelpers, FlipsAndQuarterTurnsMovePixels) {
  const auto source = chart();
  source->setHasAlpha(false);
  expectMoved(ImageFliped(source, true), *source, 5, 3, [](int64_t x, int64_t y) {
    return std::pair{4 - x, y};
  });
  expectMoved(ImageFliped(source, false), *source, 5, 3, [](int64_t x, int64_t y) {
    return std::pair{x, 2 - y};
  });
  // Counter-clockwise: the right column becomes the top row.
  expectMoved(ImageRotated(source, true), *source, 3, 5, [](int64_t x, int64_t y) {
    return std::pair{4 - y, x};
  });
  expectMoved(ImageRotated(source, false), *source, 3, 5, [](int64_t x, int64_t y) {
    return std::pair{y, 2 - x};
  });
}

TEST(BitmapHelpers, CropsAreExactAndTransparentOutside) {
  const auto source = chart();
  // One column in from the left, the lower two rows.
  expectMoved(CropImage(source, {{1, 0}, {3, 2}}), *source, 3, 2, [](int64_t x, int64_t y) {
    return std::pair{x + 1, y + 1};
  });
  // Beyond the top right corner by two columns and a row.
  expectMoved(CropImage(source, {{3, 1}, {4, 3}}), *source, 4, 3, [](int64_t x, int64_t y) {
    return std::pair{x + 3, y - 1};
  });
  expectMoved(CropImage(source, {{-2, -1}, {4, 3}}), *source, 4, 3, [](int64_t x, int64_t y) {
    return std::pair{x - 2, y + 1};
  });
  // Sides are truncated.
  expectMoved(CropImage(source, {{0, 0}, {2.9, 3.9}}), *source, 2, 3, [](int64_t x, int64_t y) {
    return std::pair{x, y};
  });
  for (const NSSize size : {NSSize{0.5, 3}, NSSize{3, 0.999}, NSSize{-3, 3}, NSSize{NAN, 3},
                            NSSize{1e9, 1e9}, NSSize{INFINITY, 1}}) {
    EXPECT_EQ(CropImage(source, {{0, 0}, size}), nullptr) << size.width << " " << size.height;
  }
}

TEST(BitmapHelpers, ResizingStretches) {
  const auto halves = makeBitmap(40, 10, [](int64_t x, int64_t) {
    return x < 20 ? Pixel{200, 0, 0, 200} : Pixel{0, 0, 255, 255};
  });
  const auto small = ResizeImage(halves, 8, 30);
  ASSERT_NE(small, nullptr);
  EXPECT_EQ(small->size(), (NSSize{8, 30}));
  for (const int64_t y : {0, 15, 29}) {
    EXPECT_EQ(pixelAt(*small, 0, y), (Pixel{200, 0, 0, 200}));
    EXPECT_EQ(pixelAt(*small, 7, y), (Pixel{0, 0, 255, 255}));
  }
  EXPECT_EQ(maxDifference(*ResizeImage(halves, 40, 10), *halves), 0);
  EXPECT_EQ(ResizeImage(halves, 40.9, 10.2)->size(), (NSSize{40, 10}));
  EXPECT_EQ(ResizeImage(halves, -1, 5), nullptr);
  EXPECT_EQ(ResizeImage(halves, 1e6, 1e6), nullptr);
  EXPECT_EQ(ResizeImage(nullptr, 4, 4), nullptr);
}

TEST(BitmapHelpers, ClearingChangesTheArgument) {
  const auto white = [] {
    return makeBitmap(4, 4, [](int64_t, int64_t) { return Pixel{255, 255, 255, 255}; });
  };
  const auto part = white();
  // The lower left 2 by 1.5 pixels.
  ClearImageInRect(part, {{0, 0}, {2, 1.5}});
  EXPECT_EQ(pixelAt(*part, 1, 3), Pixel{});
  EXPECT_NEAR(pixelAt(*part, 1, 2)[3], 128, 1);
  EXPECT_EQ(pixelAt(*part, 2, 3)[3], 255);
  EXPECT_EQ(pixelAt(*part, 1, 1)[3], 255);
  const auto whole = white();
  ClearImage(whole);
  EXPECT_EQ(maxDifference(*whole, *NSBitmapImageRep::create(4, 4)), 0);
}

TEST(BitmapHelpers, TrimmingFindsTheVisiblePixels) {
  EXPECT_EQ(ImageRectByTrimEmpty(NSBitmapImageRep::create(9, 9)), NSZeroRect);
  const auto dots = makeBitmap(9, 7, [](int64_t x, int64_t y) {
    return (x == 2 && y == 1) || (x == 5 && y == 4) ? Pixel{0, 0, 0, 1} : Pixel{};
  });
  EXPECT_EQ(ImageRectByTrimEmpty(dots), NSMakeRect(2, 2, 4, 4));
  EXPECT_EQ(ImageRectByTrimEmpty(nullptr), NSZeroRect);
}

TEST(BitmapHelpers, NothingMakesNothing) {
  EXPECT_EQ(CropImage(nullptr, {{0, 0}, {4, 4}}), nullptr);
  EXPECT_EQ(ImageFliped(nullptr, true), nullptr);
  EXPECT_EQ(ImageRotated(nullptr, true), nullptr);
  ClearImage(nullptr);
  ClearImageInRect(nullptr, {{0, 0}, {4, 4}});
}
