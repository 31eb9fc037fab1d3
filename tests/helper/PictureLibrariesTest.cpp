// What the picture helper draws with, in this process.
#include <gtest/gtest.h>

#include <array>
#include <string_view>
#include <vector>

#include "helper/PictureLibraries.h"
#include "platform/foundation/values/NSData.h"
#include "support/Bitmaps.h"
#include "support/Fixtures.h"

namespace {

// A picture of 40 by 20 whose left half is red, and which paints beyond its own size.
constexpr std::string_view kHalfRed =
    "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'>"
    "<rect x='-90' y='-90' width='110' height='300' fill='red'/></svg>";
constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kNothing{};

struct Kind {
  const char* name;
  PictureKind kind;
  std::vector<uint8_t> file;
};

std::vector<Kind> kinds() {
  const std::vector<uint8_t> svg(kHalfRed.begin(), kHalfRed.end());
  return {{"PDF", PictureKind::pdf, readFile(PAINT_BINARY_DIR "/fixtures/pdfs/plain.pdf")},
          {"system SVG", PictureKind::systemSVG, svg},
          {"built-in SVG", PictureKind::builtInSVG, svg}};
}

std::unique_ptr<OpenedPicture> opened(PictureKind kind, std::string_view file) {
  std::unique_ptr<OpenedPicture> picture;
  const PictureResult result = pictureLibrary(kind)->open(
      {reinterpret_cast<const uint8_t*>(file.data()), file.size()}, &picture);
  EXPECT_EQ(result, picture == nullptr ? PictureResult::failed : PictureResult::done);
  return picture;
}

std::unique_ptr<OpenedPicture> opened(const Kind& kind) {
  return opened(kind.kind, {reinterpret_cast<const char*>(kind.file.data()), kind.file.size()});
}

/// Draws onto 60 by 60 pixels.
std::shared_ptr<NSBitmapImageRep> drawn(const OpenedPicture& picture,
                                        const CGAffineTransform& transform) {
  auto bitmap = NSBitmapImageRep::create(60, 60);
  EXPECT_EQ(picture.draw({60, 60, bitmap->writableRows(0, 60)}, transform), PictureResult::done);
  return bitmap;
}

/// Everything is red inside the rectangle (rows from the top) and transparent outside.
void expectRed(const NSBitmapImageRep& bitmap, const NSRect& rect, const std::string& what) {
  for (int64_t y = 0; y < bitmap.pixelsHigh(); ++y) {
    for (int64_t x = 0; x < bitmap.pixelsWide(); ++x) {
      const bool inside =
          static_cast<double>(x) >= NSMinX(rect) && static_cast<double>(x) < NSMaxX(rect) &&
          static_cast<double>(y) >= NSMinY(rect) && static_cast<double>(y) < NSMaxY(rect);
      ASSERT_EQ(pixelAt(bitmap, x, y), inside ? kRed : kNothing) << what << " " << x << " " << y;
    }
  }
}

}  // namespace

TEST(PictureLibraries, DrawThroughAnyTransformAndCutToTheNaturalSize) {
  const struct {
    const char* name;
    CGAffineTransform transform;
    NSRect red;
  } kCases[] = {{"moved", {1, 0, 0, 1, 5, 7}, {{5, 7}, {20, 20}}},
                {"stretched", {0.5, 0, 0, 2, 10, 4}, {{10, 4}, {10, 40}}},
                {"mirrored", {-1, 0, 0, 1, 50, 0}, {{30, 0}, {20, 20}}},
                {"upside down", {1, 0, 0, -1, 0, 50}, {{0, 30}, {20, 20}}},
                {"a quarter turn clockwise", {0, 1, -1, 0, 40, 6}, {{20, 6}, {20, 20}}},
                {"partly outside", {1, 0, 0, 1, -15, 50}, {{0, 50}, {5, 10}}}};
  for (const Kind& kind : kinds()) {
    const auto picture = opened(kind);
    ASSERT_NE(picture, nullptr) << kind.name;
    EXPECT_EQ(picture->size(), NSMakeSize(40, 20)) << kind.name;
    for (const auto& [name, transform, red] : kCases) {
      expectRed(*drawn(*picture, transform), red, std::string(kind.name) + " " + name);
    }
  }
}

TEST(PictureLibraries, WhatIsNoPicture) {
  const std::string_view kTexts[] = {"", "no picture", "%PDF-1.4", "<svg", "<html></html>"};
  for (const Kind& kind : kinds()) {
    for (const std::string_view text : kTexts) {
      const auto picture = opened(kind.kind, text);
      const bool isNone = picture == nullptr || picture->size() == NSZeroSize;
      EXPECT_TRUE(isNone) << kind.name << ": " << text;
    }
  }
}

TEST(PictureLibraries, NaturalSizesOfTheSystemsRenderer) {
  const struct {
    const char* attributes;
    NSSize size;
  } kCases[] = {{"width='12.5' height='7'", {12.5, 7}},
                {"width='1in' height='0.5in'", {96, 48}},
                {"viewBox='5 5 30 40'", {30, 40}},
                {"width='50%' height='50%' viewBox='0 0 8 9'", {8, 9}},
                {"width='0' height='9'", {0, 0}},
                // What it shows.
                {"", {6, 4}}};
  for (const auto& [attributes, size] : kCases) {
    const std::string text = std::string("<svg xmlns='http://www.w3.org/2000/svg' ") + attributes +
                             "><rect width='6' height='4'/></svg>";
    const auto picture = opened(PictureKind::systemSVG, text);
    ASSERT_NE(picture, nullptr) << attributes;
    EXPECT_EQ(picture->size(), size) << attributes;
  }
}

// Surfaces of the drawing library end at 32767 pixels.
TEST(PictureLibraries, LongPictures) {
  for (const Kind& kind : kinds()) {
    const auto picture = opened(kind);
    const auto bitmap = NSBitmapImageRep::create(50000, 2);
    ASSERT_EQ(picture->draw({50000, 2, bitmap->writableRows(0, 2)}, {1250, 0, 0, 0.1, 0, 0}),
              PictureResult::done)
        << kind.name;
    for (const int64_t x : {0, 16383, 16384, 24999}) EXPECT_EQ(pixelAt(*bitmap, x, 1), kRed) << x;
    for (const int64_t x : {25000, 32768, 49999}) EXPECT_EQ(pixelAt(*bitmap, x, 1), kNothing) << x;
  }
}

// The system's renderer and the built-in engine share an XML library, whose state the latter drops.
TEST(PictureLibraries, RenderersTakeTurns) {
  const auto& files = kinds();
  for (int round = 0; round < 3; ++round) {
    for (const Kind& kind : files) {
      const auto picture = opened(kind);
      ASSERT_NE(picture, nullptr) << kind.name;
      expectRed(*drawn(*picture, {1, 0, 0, 1, 0, 0}), {{0, 0}, {20, 20}}, kind.name);
    }
  }
}
