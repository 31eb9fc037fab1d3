#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "platform/foundation/Limits.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "support/Bitmaps.h"
#include "support/Fixtures.h"

namespace {

namespace fs = std::filesystem;

const std::string kPictures = PAINT_BINARY_DIR "/fixtures/pictures/";

std::vector<fs::path> picturesIn(const std::string& folder) {
  std::vector<fs::path> result;
  for (const auto& entry : fs::recursive_directory_iterator(kPictures + folder)) {
    const auto kind = entry.path().extension();
    if (kind == ".png" || kind == ".tif") result.push_back(entry.path());
  }
  return result;
}

/// What the picture should decode to; its maker left that beside it.
std::shared_ptr<NSBitmapImageRep> expectedPicture(const fs::path& picture) {
  const auto bytes = readFile(picture.string() + ".rgba");
  uint32_t size[2] = {};
  std::memcpy(size, bytes.data(), sizeof size);
  return makeBitmap(size[0], size[1], [&](int64_t x, int64_t y) {
    Pixel pixel;
    std::memcpy(pixel.data(), bytes.data() + 8 + (y * size[0] + x) * 4, 4);
    return pixel;
  });
}

void expectPictures(const std::string& folder, size_t count, int tolerance) {
  const auto pictures = picturesIn(folder);
  EXPECT_GE(pictures.size(), count);
  for (const auto& path : pictures) {
    const auto bitmap = decodeImage(readFile(path.string()));
    ASSERT_NE(bitmap, nullptr) << path;
    EXPECT_LE(maxDifference(*bitmap, *expectedPicture(path)), tolerance) << path;
  }
}

std::span<const uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

/// Overwrites a big-endian number.
void put32(std::vector<uint8_t>& file, size_t offset, uint32_t value) {
  for (int i = 0; i < 4; ++i) file[offset + i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

}  // namespace

TEST(ImageDecoder, EveryFormOfPNG) {
  expectPictures("exact/png", 30, 0);
}

TEST(ImageDecoder, EveryFormOfTIFF) {
  expectPictures("exact/tiff", 120, 0);
}

TEST(ImageDecoder, ProfilesAreConvertedToSRGB) {
  expectPictures("near", 12, 2);
}

TEST(ImageDecoder, AlphaIsKnownFromTheFile) {
  const std::pair<const char*, bool> cases[] = {{"png/rgb 8.png", false},
                                                {"png/rgba 8.png", true},
                                                {"png/rgb key.png", true},
                                                {"png/grey alpha 16.png", true},
                                                {"png/palette 4.png", true},
                                                {"png/grey 1.png", false},
                                                {"tiff/rgb 8.tif", false},
                                                {"tiff/premultiplied lzw.tif", true},
                                                {"tiff/cmyk 8.tif", false},
                                                {"tiff/unknown samples.tif", false},
                                                {"tiff/cmyk straight alpha 8.tif", true},
                                                {"tiff/rgb float 32 big.tif", false},
                                                {"tiff/rgb straight alpha 16.tif", true}};
  for (const auto& [name, hasAlpha] : cases) {
    const auto bitmap = decodeImage(readFile(kPictures + "exact/" + name));
    ASSERT_NE(bitmap, nullptr) << name;
    EXPECT_EQ(bitmap->hasAlpha(), hasAlpha) << name;
  }
}

TEST(ImageDecoder, FormatsAreToldByTheirFirstBytes) {
  using namespace std::string_view_literals;
  const std::pair<std::string_view, ImageFormat> cases[] = {
      {"\x89PNG\r\n\x1a\n"sv, ImageFormat::png},
      {"\x89PNG\n\n\x1a\n"sv, ImageFormat::unknown},
      {"\xff\xd8\xff\xe1"sv, ImageFormat::jpeg},
      {"II*\0"sv, ImageFormat::tiff},
      {"MM\0*"sv, ImageFormat::tiff},
      {"MM\0+"sv, ImageFormat::tiff},
      {"RIFF....WEBPVP8 "sv, ImageFormat::webp},
      {"RIFF....WAVE"sv, ImageFormat::unknown},
      {"GIF89a"sv, ImageFormat::unknown},
      {"%PDF-1.4"sv, ImageFormat::unknown},
      {""sv, ImageFormat::unknown},
      {"\xff\xd8"sv, ImageFormat::unknown}};
  for (const auto& [bytes, format] : cases) {
    EXPECT_EQ(imageFormatOf(bytesOf(bytes)), format) << bytes;
    EXPECT_EQ(decodeImage(bytesOf(bytes)), nullptr) << bytes;
  }
}

TEST(ImageDecoder, TruncatedPicturesYieldWhatIsThere) {
  for (const char* name : {"png/rgba 8.png", "png/rgb 16 interlaced.png", "png/palette 2.png"}) {
    const auto file = readFile(kPictures + "exact/" + name);
    const auto whole = decodeImage(file);
    for (size_t length = 0; length < file.size(); ++length) {
      const auto part = decodeImage(std::span(file).first(length));
      if (part == nullptr) continue;
      ASSERT_EQ(part->pixelsWide(), whole->pixelsWide());
      const bool rowByRow = std::string_view(name).find("interlaced") == std::string_view::npos;
      const RowRange rows = part->usedRows();
      for (int64_t y = rows.first; rowByRow && y < rows.end; ++y) {
        ASSERT_EQ(std::memcmp(part->row(y), whole->row(y), part->bytesPerRow()), 0)
            << name << " cut at " << length << ", row " << y;
      }
    }
    ASSERT_NE(decodeImage(std::span(file).first(file.size() - 14)), nullptr) << name;
  }
}

// Checksums stand behind the last row.
TEST(ImageDecoder, AWholePictureNeedsNoSoundEnd) {
  for (const char* name : {"png/rgba 8.png", "png/grey 1.png", "png/rgb 16 interlaced.png"}) {
    const auto file = readFile(kPictures + "exact/" + name);
    const auto whole = decodeImage(file);
    // From the end: IEND 12 bytes, the checksum of the chunk 4, that of the stream 4.
    for (size_t end = 13; end <= 20; ++end) {
      auto damaged = file;
      damaged[file.size() - end] ^= 1;
      EXPECT_EQ(maxDifference(*decodeImage(damaged), *whole), 0) << name << ' ' << end;
      damaged.resize(file.size() - end);
      EXPECT_EQ(maxDifference(*decodeImage(damaged), *whole), 0) << name << " cut " << end;
    }
  }
}

TEST(ImageDecoder, DamagedPicturesEndCleanly) {
  unsigned state = 1;
  for (const auto& path : picturesIn("exact")) {
    const auto file = readFile(path.string());
    for (int round = 0; round < 20; ++round) {
      auto damaged = file;
      for (int i = 0; i < 3; ++i) {
        state = state * 1664525 + 1013904223;
        damaged[state / 256 % damaged.size()] = static_cast<uint8_t>(state >> 24);
      }
      const auto bitmap = decodeImage(damaged);
      if (bitmap != nullptr) {
        EXPECT_LE(bitmap->pixelsWide() * bitmap->pixelsHigh(), limits::kMaxCanvasPixels);
      }
    }
  }
}

TEST(ImageDecoder, SizesBeyondACanvasAreRefused) {
  const auto png = readFile(kPictures + "exact/png/grey 8.png");
  const std::pair<uint32_t, uint32_t> sizes[] = {
      {20000, 20000}, {0x7fffffff, 0x7fffffff}, {250'000'001, 1}, {0, 5}, {5, 0}, {0x80000000, 1}};
  for (const auto& [width, height] : sizes) {
    auto file = png;
    put32(file, 16, width);
    put32(file, 20, height);
    // The checksum of the changed header is wrong, too, unless it is made right.
    file.resize(29);
    uint32_t crc = 0xffffffff;
    for (size_t i = 12; i < 29; ++i) {
      crc ^= file[i];
      for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xedb88320 : 0);
    }
    file.resize(33);
    put32(file, 29, ~crc);
    file.insert(file.end(), png.begin() + 33, png.end());
    EXPECT_EQ(decodeImage(file), nullptr) << width << "x" << height;
  }
}

TEST(ImageEncoder, TIFFKeepsEveryPixel) {
  const auto bitmap = randomBitmap(123, 77, 9);
  const auto file = encodeTIFF(*bitmap);
  EXPECT_EQ(imageFormatOf(file), ImageFormat::tiff);
  const auto decoded = decodeImage(file);
  ASSERT_NE(decoded, nullptr);
  EXPECT_TRUE(decoded->hasAlpha());
  EXPECT_EQ(maxDifference(*decoded, *bitmap), 0);

  const auto opaque = makeBitmap(50, 40, [](int64_t x, int64_t y) {
    return Pixel{static_cast<uint8_t>(x), static_cast<uint8_t>(y), 200, 255};
  });
  opaque->setHasAlpha(false);
  const auto back = decodeImage(encodeTIFF(*opaque));
  ASSERT_NE(back, nullptr);
  EXPECT_FALSE(back->hasAlpha());
  EXPECT_EQ(maxDifference(*back, *opaque), 0);
  EXPECT_TRUE(encodeTIFF(*NSBitmapImageRep::create(0, 4)).empty());
}
