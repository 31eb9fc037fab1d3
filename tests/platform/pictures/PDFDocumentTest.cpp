#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "platform/foundation/values/NSData.h"
#include "platform/pictures/PDFDocument.h"
#include "support/Bitmaps.h"
#include "support/Fixtures.h"

namespace {

constexpr Pixel kRed{255, 0, 0, 255};

std::shared_ptr<NSData> fileNamed(const std::string& name) {
  return NSData::dataWithVector(readFile(PAINT_BINARY_DIR "/fixtures/pdfs/" + name + ".pdf"));
}

std::shared_ptr<PDFPage> pageOf(const std::string& name) {
  const auto document = PDFDocument::initWithData(fileNamed(name));
  return document == nullptr ? nullptr : document->firstPage();
}

/// The page's red area in pixels, rows from the top; everything else must be transparent.
NSRect redPart(const NSBitmapImageRep& bitmap) {
  NSRect red;
  for (int64_t y = 0; y < bitmap.pixelsHigh(); ++y) {
    for (int64_t x = 0; x < bitmap.pixelsWide(); ++x) {
      const Pixel pixel = pixelAt(bitmap, x, y);
      if (pixel == Pixel{}) continue;
      EXPECT_EQ(pixel, kRed) << x << " " << y;
      red = NSUnionRect(red, NSMakeRect(static_cast<double>(x), static_cast<double>(y), 1, 1));
    }
  }
  return red;
}

}  // namespace

TEST(PDFPage, SizesAndPlaces) {
  const struct {
    const char* name;
    NSSize size;
    NSRect red;
  } kCases[] = {{"plain", {40, 20}, {{0, 0}, {20, 20}}},
                // Turned clockwise: the left half is above.
                {"rotated", {20, 40}, {{0, 0}, {20, 20}}},
                // The box cuts ten units from the left and five from below, and is 30 by 20.
                {"cropped", {30, 20}, {{0, 5}, {10, 15}}},
                // Turned counter-clockwise: the left is below, the bottom is on the right.
                {"cropped and rotated", {20, 30}, {{5, 20}, {15, 10}}},
                {"after other bytes", {40, 20}, {{0, 0}, {20, 20}}},
                {"no table", {40, 20}, {{0, 0}, {20, 20}}},
                {"encrypted without password", {40, 20}, {{0, 0}, {20, 20}}},
                {"form in itself", {40, 20}, {{0, 0}, {20, 20}}}};
  for (const auto& [name, size, red] : kCases) {
    const auto page = pageOf(name);
    ASSERT_NE(page, nullptr) << name;
    EXPECT_EQ(page->size(), size) << name;
    const auto bitmap = page->bitmapWithSize(size);
    ASSERT_NE(bitmap, nullptr) << name;
    EXPECT_EQ(redPart(*bitmap), red) << name;
  }
}

TEST(PDFPage, StretchesToAnySize) {
  const auto wide = pageOf("plain")->bitmapWithSize({200, 10});
  EXPECT_EQ(redPart(*wide), NSMakeRect(0, 0, 100, 10));
  const auto turned = pageOf("rotated")->bitmapWithSize({10, 100});
  EXPECT_EQ(redPart(*turned), NSMakeRect(0, 0, 10, 50));
  // Longer than a surface of the drawing library may be.
  const auto long_ = pageOf("plain")->bitmapWithSize({50000, 2});
  ASSERT_NE(long_, nullptr);
  EXPECT_EQ(redPart(*long_), NSMakeRect(0, 0, 25000, 2));
}

TEST(PDFPage, PaperIsTransparentAndInkMayBe) {
  const auto bitmap = pageOf("translucent")->bitmapWithSize({40, 20});
  const Pixel ink = pixelAt(*bitmap, 5, 5);
  EXPECT_NEAR(ink[0], 128, 1);
  EXPECT_EQ(ink[1], 0);
  EXPECT_EQ(ink[3], ink[0]);
  EXPECT_EQ(pixelAt(*bitmap, 30, 5), Pixel{});
}

TEST(PDFPage, SizesThatNoBitmapHas) {
  const auto page = pageOf("plain");
  for (const NSSize size : {NSSize{0.5, 10}, NSSize{10, 0}, NSSize{-5, 5}, NSSize{NAN, 5},
                            NSSize{1e5, 1e5}, NSSize{INFINITY, 5}}) {
    EXPECT_EQ(page->bitmapWithSize(size), nullptr) << size.width << " " << size.height;
  }
  EXPECT_NE(pageOf("huge page")->bitmapWithSize({10, 10}), nullptr);
}

TEST(PDFDocument, FilesWithoutPagesThatCanBeShown) {
  for (const char* name : {"encrypted", "no pages", "no trailer", "page missing",
                           "page is a number", "mark only", "mark and noise"}) {
    EXPECT_EQ(pageOf(name), nullptr) << name;
  }
  EXPECT_EQ(PDFDocument::initWithData(nullptr), nullptr);
  EXPECT_EQ(PDFDocument::initWithData(std::make_shared<NSData>()), nullptr);
}

TEST(PDFDocument, ThreadsDrawTheSame) {
  const auto page = pageOf("cropped");
  const auto expected = page->bitmapWithSize({300, 200});
  std::vector<std::thread> threads;
  std::array<int, 4> differences{};
  for (int& difference : differences) {
    threads.emplace_back([&] {
      difference = maxDifference(*pageOf("cropped")->bitmapWithSize({300, 200}), *expected) +
                   maxDifference(*page->bitmapWithSize({300, 200}), *expected);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(differences, (std::array<int, 4>{}));
}
