#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "draw/raster/ImageMask.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/path/NSBezierPath.h"
#include "support/Archives.h"
#include "support/Masks.h"

namespace {

constexpr int64_t kHuge = std::numeric_limits<int64_t>::max();
constexpr int64_t kLeast = std::numeric_limits<int64_t>::min();
constexpr Pixel kRed{255, 0, 0, 255};

/// The elements of a path as "M x y" and "L x y", one after the other.
std::string elementsOf(const NSBezierPath& path) {
  std::string text;
  for (int64_t i = 0; i < path.elementCount(); ++i) {
    NSPoint p;
    const auto element = path.elementAtIndex(i, &p);
    text += element == NSMoveToBezierPathElement   ? " M"
            : element == NSLineToBezierPathElement ? " L"
                                                   : " ?";
    text += std::to_string(static_cast<int>(p.x)) + "," + std::to_string(static_cast<int>(p.y));
  }
  return text;
}

}  // namespace

TEST(ImageMask, NeedsAByteForEachPixel) {
  struct Case {
    size_t bytes;
    int64_t width, height;
    bool isMask;
  };
  const Case cases[] = {
      {12, 4, 3, true},          {13, 4, 3, true},
      {11, 4, 3, false},         {0, 0, 0, false},
      {12, 0, 3, false},         {12, 4, 0, false},
      {12, -4, -3, false},       {12, -4, 3, false},
      {12, kHuge, 1, false},     {12, 1, kHuge, false},
      {12, kHuge, kHuge, false}, {12, kLeast, -1, false},
      {12, 1LL << 62, 4, false}, {0, 1LL << 32, 1LL << 32, false},
  };
  for (const Case& c : cases) {
    const auto mask =
        ImageMask::initWithData(std::vector<uint8_t>(c.bytes, 1), 5, -6, c.width, c.height);
    EXPECT_EQ(mask != nullptr, c.isMask) << c.bytes << ": " << c.width << " x " << c.height;
    if (mask == nullptr) continue;
    EXPECT_EQ(mask->maskRect(), NSMakeRect(5, -6, 4, 3));
    EXPECT_EQ(mask->maskData().size(), 12U);
  }
}

TEST(ImageMask, StartsAtWholePixelsInSinglePrecision) {
  struct Case {
    double start;
    double expected;
  };
  const Case cases[] = {{3, 3}, {3.9, 3}, {-0.5, -1}, {16777217, 16777216}, {2.99999999, 3}};
  const auto mask = maskOf({"#"});
  for (const Case& c : cases) {
    mask->setMaskStartPoint({c.start, c.start});
    EXPECT_EQ(mask->maskStartPoint(), NSMakePoint(c.expected, c.expected)) << c.start;
  }
  mask->setMaskStartPoint({std::nan(""), 1e300});
  mask->fillImage(makeBitmap(4, 4, [](int64_t, int64_t) { return kRed; }).get(), nullptr);
}

TEST(ImageMask, FillsItsPixelsAndNoOthers) {
  std::mt19937 random(7);
  for (unsigned i = 0; i < 60; ++i) {
    const auto mask = randomMask(1 + random() % 3000, 1 + random() % 9, 1 + random() % 2500, i);
    const int64_t w = 2500, h = 7;
    const auto before = randomBitmap(w, h, i);
    const auto x = static_cast<int64_t>(random() % 3000) - 1500;
    const auto y = static_cast<int64_t>(random() % 14) - 7;
    const auto image = before->copy();
    const auto color = NSColor::colorWithCalibratedRed(1, 0, 0, 1);
    mask->fillImage(image.get(), color.get(), {static_cast<double>(x), static_cast<double>(y)});
    const PixelRows rows = rowsOf(*mask);
    for (int64_t column = 0; column < w; ++column) {
      for (int64_t row = 0; row < h; ++row) {
        const int64_t u = column - x, v = mask->height() - 1 - (h - 1 - row - y);
        const bool isIn = u >= 0 && u < mask->width() && v >= 0 && v < mask->height() &&
                          rows[static_cast<size_t>(v)][static_cast<size_t>(u)] == '#';
        ASSERT_EQ(pixelAt(*image, column, row), isIn ? kRed : pixelAt(*before, column, row))
            << "mask " << i << " at " << column << ", " << row;
      }
    }
  }
}

TEST(ImageMask, LeavesOutWhatIsFarOutside) {
  for (const int64_t x : {kLeast, -kHuge, int64_t{-4}, int64_t{9}, kHuge}) {
    for (const int64_t y : {kLeast, int64_t{-3}, int64_t{9}, kHuge}) {
      const auto image = makeBitmap(9, 9, [](int64_t, int64_t) { return kRed; });
      const auto mask = ImageMask::initWithData(std::vector<uint8_t>(12, 1), x, y, 4, 3);
      mask->fillImage(image.get(), nullptr);
      EXPECT_EQ(rowsOf(*image, kRed), PixelRows(9, "#########")) << x << ", " << y;
      EXPECT_EQ(mask->scissorImage(image.get()), nullptr);
      EXPECT_NE(mask->renderImageWithColor(nullptr), nullptr);
    }
  }
  maskOf({"#"})->fillImage(nullptr, nullptr);
  EXPECT_EQ(maskOf({"#"})->scissorImage(nullptr), nullptr);
}

/// Large enough for several threads: every column but the first and every row but the lowest.
TEST(ImageMask, LargeMasksAreFilledWhole) {
  constexpr int64_t kWidth = 8000, kHeight = 4200;
  const auto mask =
      ImageMask::initWithData(std::vector<uint8_t>(kWidth * kHeight, 1), 1, 1, kWidth, kHeight);
  const auto image = NSBitmapImageRep::create(kWidth, kHeight);
  mask->fillImage(image.get(), NSColor::redColor().get());
  int64_t filled = 0;
  for (int64_t y = 0; y < kHeight; ++y) {
    const auto* row = reinterpret_cast<const uint32_t*>(image->row(y));
    filled += std::count(row, row + kWidth, 0xff0000ffU);
  }
  EXPECT_EQ(filled, (kWidth - 1) * (kHeight - 1));
  EXPECT_EQ(pixelAt(*image, 0, 0), Pixel{});
  EXPECT_EQ(pixelAt(*image, 1, kHeight - 1), Pixel{});
}

TEST(ImageMask, WritesStraightComponents) {
  struct Case {
    std::shared_ptr<NSColor> color;
    Pixel expected;
  };
  const Case cases[] = {
      {NSColor::colorWithCalibratedRed(1, 0.5, 0, 0.5), {255, 128, 0, 128}},
      {NSColor::colorWithSRGBRed(0.1, 0.2, 0.3, 1), {26, 51, 77, 255}},
      {NSColor::colorWithCalibratedWhite(0.25, 0.25), {64, 64, 64, 64}},
      {NSColor::clearColor(), {0, 0, 0, 0}},
      {nullptr, {0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    const auto image = makeBitmap(3, 1, [](int64_t, int64_t) { return Pixel{9, 9, 9, 99}; });
    maskOf({"#"}, 1)->fillImage(image.get(), c.color.get());
    EXPECT_EQ(pixelAt(*image, 1, 0), c.expected);
    EXPECT_EQ(pixelAt(*image, 2, 0), (Pixel{9, 9, 9, 99}));
    EXPECT_EQ(pixelAt(*maskOf({".#"}, 99, 99)->renderImageWithColor(c.color.get()), 1, 0),
              c.expected);
  }
}

TEST(ImageMask, CutsOutWhatLiesUnderIt) {
  const auto image = randomBitmap(100, 4, 3);
  const auto mask = randomMask(150, 9, 40, 5);
  mask->setMaskStartPoint({-20, -3});
  const auto part = mask->scissorImage(image.get());
  ASSERT_EQ(part->pixelsWide(), 100);
  ASSERT_EQ(part->pixelsHigh(), 4);
  // The mask's rows 3 to 6 and columns from 20 lie inside the picture.
  const PixelRows rows = rowsOf(*mask);
  for (int64_t y = 0; y < 4; ++y) {
    for (int64_t x = 0; x < 100; ++x) {
      const bool isIn = rows[static_cast<size_t>(y + 2)][static_cast<size_t>(x + 20)] == '#';
      ASSERT_EQ(pixelAt(*part, x, y), isIn ? pixelAt(*image, x, y) : Pixel{}) << x << ", " << y;
    }
  }
}

TEST(ImageMask, PathsOfRunsAndRectangles) {
  struct Case {
    PixelRows rows;
    bool isLines;
    const char* elements;
  };
  const Case cases[] = {
      {{"#"}, true, " M5,7 L5,7"},
      {{"."}, true, " M5,7 L5,7"},
      {{"#.##", "...#"}, true, " M8,7 L8,7 M5,8 L5,8 M7,8 L8,8"},
      {{"...", "..."}, true, ""},
      {{"###", "###"}, false, " M5,7 L8,7 L8,9 L5,9 ?5,7 M5,7"},
  };
  for (const Case& c : cases) {
    bool isLines = !c.isLines;
    const auto path = maskOf(c.rows, 5, 7)->bezierPathForFill(&isLines);
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(isLines, c.isLines) << c.elements;
    EXPECT_EQ(elementsOf(*path), c.elements);
  }
}

TEST(ImageMask, LongPathsAreNotMade) {
  const auto runs = [](size_t count) { return PixelRows(count, "#."); };
  EXPECT_EQ(maskOf(runs(2500))->bezierPathForFill(nullptr)->elementCount(), 5000);
  EXPECT_EQ(maskOf(runs(2501))->bezierPathForFill(nullptr), nullptr);
  PixelRows full(4000, "##");
  bool isLines = true;
  EXPECT_NE(maskOf(full)->bezierPathForFill(&isLines), nullptr);
  EXPECT_FALSE(isLines);
  full.front() = "#.";  // the last one to be looked at
  EXPECT_EQ(maskOf(full)->bezierPathForFill(nullptr), nullptr);
}

TEST(ImageMask, MirroredScaledAndTurned) {
  const PixelRows flag = {"###", "#..", "##.", "#.."};
  const auto mask = maskOf(flag, 10, 20);
  mask->flip(true);
  EXPECT_EQ(rowsOf(*mask), (PixelRows{"###", "..#", ".##", "..#"}));
  mask->flip(false);
  EXPECT_EQ(rowsOf(*mask), (PixelRows{"..#", ".##", "..#", "###"}));
  mask->flip(false);
  mask->flip(true);
  EXPECT_EQ(rowsOf(*mask), flag);

  const auto wide = mask->imageMaskScaledByX(2, 0.5);
  EXPECT_EQ(rowsOf(*wide), (PixelRows{"##....", "##...."}));
  EXPECT_EQ(wide->maskRect(), NSMakeRect(10, 20, 6, 2));
  EXPECT_EQ(rowsOf(*mask->imageMaskScaledByX(0.01, 0.01)), PixelRows{"#"});
  for (const double bad : {0.0, -1.0, 1e9, std::nan("")}) {
    EXPECT_EQ(mask->imageMaskScaledByX(bad, 1e3), nullptr) << bad;
  }

  const auto left = mask->imageMaskRotatedByDegree(90);
  EXPECT_EQ(rowsOf(*left), (PixelRows{"#...", "#.#.", "####"}));
  EXPECT_EQ(left->maskRect(), NSMakeRect(9, 20, 4, 3)) << "half a pixel more to the left";
  EXPECT_EQ(rowsOf(*mask->imageMaskRotatedByDegree(-450)), (PixelRows{"####", ".#.#", "...#"}));
  EXPECT_EQ(rowsOf(*mask->imageMaskRotatedByDegree(180)), (PixelRows{"..#", ".##", "..#", "###"}));
  const auto square = maskOf(PixelRows(10, "##########"))->imageMaskRotatedByDegree(45);
  EXPECT_EQ(square->maskRect(), NSMakeRect(-3, -3, 15, 15));
  EXPECT_EQ(rowsOf(*square)[7], "###############");
  EXPECT_EQ(rowsOf(*square)[0], ".......#.......");
}

TEST(ImageMask, AnswersWhichPixelsAreIn) {
  const auto mask = maskOf({"#.", ".."}, 3, -2);
  EXPECT_TRUE(mask->fillAtPoint({3, -1}));
  EXPECT_TRUE(mask->fillAtPoint({3.9, -0.1}));
  for (const NSPoint p :
       {NSPoint{2.9, -1}, {4, -1}, {3, 0}, {3, -1.1}, {1e300, 0}, {std::nan(""), -1}}) {
    EXPECT_FALSE(mask->fillAtPoint(p)) << p.x << ", " << p.y;
  }
}

TEST(ImageMask, ArchivedRecord) {
  const auto archive = NSKeyedArchiver::archivedDataWithRootObject(maskOf({"#.#", "..#"}, -7, 300));
  const std::string text = describeArchive(archive->bytes());
  for (const char* part : {"ImageMask", "Mask: data(6) 010001000001", "XStart: int64 -7",
                           "YStart: int16 300", "Width: int8 3", "Height: int8 2"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
  }
}
