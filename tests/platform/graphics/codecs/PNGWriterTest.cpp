#include <gtest/gtest.h>
#include <png.h>

#include <cstring>
#include <string_view>

#include "platform/graphics/bitmap/ImageFiles.h"
#include "support/Bitmaps.h"

namespace {

struct ReadBack {
  unsigned width = 0, height = 0;
  bool hasAlpha = false;
  std::vector<uint8_t> pixels;  ///< straight R, G, B, A
};

/// Reads a file with the library's own simplified interface.
ReadBack readBack(const std::vector<uint8_t>& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_TRUE(png_image_begin_read_from_memory(&image, file.data(), file.size())) << image.message;
  ReadBack result{image.width, image.height, (image.format & PNG_FORMAT_FLAG_ALPHA) != 0, {}};
  image.format = PNG_FORMAT_RGBA;
  result.pixels.resize(PNG_IMAGE_SIZE(image));
  EXPECT_TRUE(png_image_finish_read(&image, nullptr, result.pixels.data(), 0, nullptr));
  return result;
}

bool contains(const std::vector<uint8_t>& file, std::string_view bytes) {
  const std::string_view all(reinterpret_cast<const char*>(file.data()), file.size());
  return all.find(bytes) != std::string_view::npos;
}

uint8_t straight(int colour, int alpha) {
  return static_cast<uint8_t>(alpha == 0 ? 0 : (colour * 255 + alpha / 2) / alpha);
}

}  // namespace

TEST(PNGEncoder, WritesStraightAlpha) {
  const auto bitmap = randomBitmap(37, 21, 3);
  for (const PNGEffort effort : {PNGEffort::fast, PNGEffort::small}) {
    const ReadBack read = readBack(encodePNG(*bitmap, {effort, {}}));
    ASSERT_EQ(read.width, 37U);
    ASSERT_EQ(read.height, 21U);
    EXPECT_TRUE(read.hasAlpha);
    for (size_t i = 0; i < read.pixels.size(); ++i) {
      const int alpha = bitmap->bitmapData()[i | 3];
      const int stored = bitmap->bitmapData()[i];
      ASSERT_EQ(read.pixels[i], i % 4 == 3 ? alpha : straight(stored, alpha)) << i;
    }
  }
}

TEST(PNGEncoder, OpaquePicturesHaveNoAlphaChannel) {
  const auto bitmap = makeBitmap(40, 30, [](int64_t x, int64_t y) {
    return Pixel{static_cast<uint8_t>(x), static_cast<uint8_t>(y), 77, 255};
  });
  const ReadBack read = readBack(encodePNG(*bitmap));
  EXPECT_FALSE(read.hasAlpha);
  EXPECT_EQ(std::memcmp(read.pixels.data(), bitmap->bitmapData(), read.pixels.size()), 0);
  EXPECT_TRUE(readBack(encodePNG(*bitmap, {.texts = {}, .alpha = PNGAlpha::asInBitmap})).hasAlpha);
  bitmap->setHasAlpha(false);
  EXPECT_FALSE(readBack(encodePNG(*bitmap, {.texts = {}, .alpha = PNGAlpha::asInBitmap})).hasAlpha);
  bitmap->writableRows(29, 30)[39 * 4 + 3] = 254;
  EXPECT_TRUE(readBack(encodePNG(*bitmap)).hasAlpha);
}

TEST(PNGEncoder, UntouchedBitmapsAreTransparent) {
  const auto bitmap = NSBitmapImageRep::create(300, 200);
  const ReadBack read = readBack(encodePNG(*bitmap));
  EXPECT_TRUE(read.hasAlpha);
  EXPECT_EQ(read.pixels, std::vector<uint8_t>(300 * 200 * 4));
}

TEST(PNGEncoder, CarriesTextsAndTheColourSpace) {
  const auto bitmap = randomBitmap(2, 2, 1);
  const auto file = encodePNG(*bitmap, {PNGEffort::fast, {{"Software", "paint"}, {"Other", ""}}});
  readBack(file);
  using namespace std::string_view_literals;
  EXPECT_TRUE(contains(file, "tEXtSoftware\0paint"sv));
  EXPECT_TRUE(contains(file, "tEXtOther\0"sv));
  EXPECT_TRUE(contains(file, "sRGB\0"sv));
}

TEST(PNGEncoder, SidesBeyondTheLibrarysUsualLimit) {
  const auto file = encodePNG(*NSBitmapImageRep::create(2'000'000, 1));
  ASSERT_GT(file.size(), 24U);
  EXPECT_EQ((std::vector<uint8_t>{file.begin() + 16, file.begin() + 20}),
            (std::vector<uint8_t>{0x00, 0x1e, 0x84, 0x80}));
}

TEST(PNGEncoder, NothingToEncodeIsNoFile) {
  EXPECT_TRUE(encodePNG(*NSBitmapImageRep::create(0, 10)).empty());
  EXPECT_TRUE(encodePNG(NSBitmapImageRep()).empty());
}
