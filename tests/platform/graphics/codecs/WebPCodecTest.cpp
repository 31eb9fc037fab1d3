#include <gtest/gtest.h>
#include <webp/decode.h>
#include <webp/encode.h>

#include <cstring>
#include <string_view>

#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "support/Bitmaps.h"
#include "support/Fixtures.h"

namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 50;

using Bytes = std::vector<uint8_t>;

/// Straight R, G, B, A.
Bytes straightPixels(bool translucent) {
  Bytes pixels;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      for (const int v : {x * 3, y * 5, 255 - x - y, translucent ? (x * 7 + y) % 256 : 255}) {
        pixels.push_back(static_cast<uint8_t>(v));
      }
    }
  }
  return pixels;
}

Bytes losslessFile(bool translucent) {
  const Bytes pixels = straightPixels(translucent);
  uint8_t* out = nullptr;
  const size_t size = WebPEncodeLosslessRGBA(pixels.data(), kWidth, kHeight, kWidth * 4, &out);
  Bytes file(out, out + size);
  WebPFree(out);
  return file;
}

Bytes lossyFile() {
  const Bytes pixels = straightPixels(true);
  uint8_t* out = nullptr;
  const size_t size = WebPEncodeRGBA(pixels.data(), kWidth, kHeight, kWidth * 4, 98, &out);
  Bytes file(out, out + size);
  WebPFree(out);
  return file;
}

void append32(Bytes& bytes, size_t value) {
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void append24(Bytes& bytes, size_t value) {
  for (int i = 0; i < 3; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void appendChunk(Bytes& bytes, std::string_view name, const Bytes& data) {
  bytes.insert(bytes.end(), name.begin(), name.end());
  append32(bytes, data.size());
  bytes.insert(bytes.end(), data.begin(), data.end());
  if (data.size() % 2 != 0) bytes.push_back(0);
}

/// An extended file around chunks.
Bytes container(uint8_t flags, int width, int height, const Bytes& chunks) {
  Bytes header{flags, 0, 0, 0};
  append24(header, static_cast<size_t>(width - 1));
  append24(header, static_cast<size_t>(height - 1));
  Bytes body{'W', 'E', 'B', 'P'};
  appendChunk(body, "VP8X", header);
  body.insert(body.end(), chunks.begin(), chunks.end());
  Bytes file;
  appendChunk(file, "RIFF", body);
  return file;
}

Pixel expectedPixel(int64_t x, int64_t y) {
  const Bytes pixels = straightPixels(true);
  const uint8_t* p = pixels.data() + (y * kWidth + x) * 4;
  const auto scaled = [&](int v) { return static_cast<uint8_t>((2 * v * p[3] + 255) / 510); };
  return {scaled(p[0]), scaled(p[1]), scaled(p[2]), p[3]};
}

/// The library's own reading of a file, straight R, G, B, A.
Bytes libraryPixels(const Bytes& file) {
  int width = 0;
  int height = 0;
  uint8_t* const pixels = WebPDecodeRGBA(file.data(), file.size(), &width, &height);
  if (pixels == nullptr) return {};
  Bytes result(pixels, pixels + static_cast<ptrdiff_t>(width) * height * 4);
  WebPFree(pixels);
  return result;
}

TEST(WebPEncoder, QualityOneKeepsEveryPixel) {
  for (const bool translucent : {false, true}) {
    const auto bitmap = decodeImage(losslessFile(translucent));
    const Bytes file = encodeWebP(*bitmap, 1);
    const auto back = decodeImage(file);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->hasAlpha(), translucent);
    EXPECT_EQ(maxDifference(*back, *bitmap), 0);
  }
  EXPECT_EQ(libraryPixels(encodeWebP(*decodeImage(losslessFile(false)), 1)), straightPixels(false));
}

TEST(WebPEncoder, LowQualityIsSmallerAndNear) {
  const auto bitmap = decodeImage(losslessFile(false));
  const Bytes good = encodeWebP(*bitmap, 0.95);
  EXPECT_LT(encodeWebP(*bitmap, 0.2).size(), good.size());
  const Bytes pixels = libraryPixels(good);
  const Bytes expected = straightPixels(false);
  ASSERT_EQ(pixels.size(), expected.size());
  for (size_t i = 0; i < pixels.size(); ++i) ASSERT_NEAR(pixels[i], expected[i], 40) << i;
}

TEST(WebPEncoder, WhatCannotBeEncodedIsNoFile) {
  std::shared_ptr<NSBitmapImageRep> wide;
  ASSERT_TRUE(InitImageRep({16384, 1}, &wide));
  EXPECT_TRUE(encodeWebP(*wide, 0.5).empty());
}

}  // namespace

TEST(WebPDecoder, LosslessAndLossy) {
  const auto expected = makeBitmap(kWidth, kHeight, expectedPixel);
  const auto exact = decodeImage(losslessFile(true));
  ASSERT_NE(exact, nullptr);
  EXPECT_TRUE(exact->hasAlpha());
  EXPECT_EQ(maxDifference(*exact, *expected), 0);
  const auto lossy = decodeImage(lossyFile());
  ASSERT_NE(lossy, nullptr);
  EXPECT_EQ(pixelAt(*lossy, 33, 20)[3], pixelAt(*expected, 33, 20)[3]);
  EXPECT_NEAR(pixelAt(*lossy, 33, 20)[0], pixelAt(*expected, 33, 20)[0], 12);
  EXPECT_FALSE(decodeImage(losslessFile(false))->hasAlpha());
}

TEST(WebPDecoder, ProfileOrientationAndFirstFrame) {
  const Bytes opaque = losslessFile(false);
  const Bytes bitstream(opaque.begin() + 12, opaque.end());
  const auto plain = decodeImage(opaque);

  Bytes chunks;
  appendChunk(chunks, "ICCP", readFile(PAINT_BINARY_DIR "/fixtures/pictures/near/adobe.icc"));
  chunks.insert(chunks.end(), bitstream.begin(), bitstream.end());
  const Bytes exif{'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, 3, 0, 0, 0};
  appendChunk(chunks, "EXIF", exif);
  const auto turned = decodeImage(container(0x28, kWidth, kHeight, chunks));
  ASSERT_NE(turned, nullptr);
  // Upside down, and green of the wider space: less red.
  const Pixel before = pixelAt(*plain, 20, 45);
  const Pixel after = pixelAt(*turned, kWidth - 1 - 20, kHeight - 1 - 45);
  EXPECT_LT(after[0], before[0]);
  EXPECT_NEAR(after[1], before[1], 12);

  Bytes frame;
  append24(frame, 3);  // x / 2
  append24(frame, 5);  // y / 2
  append24(frame, kWidth - 1);
  append24(frame, kHeight - 1);
  append24(frame, 100);
  frame.push_back(0);
  frame.insert(frame.end(), bitstream.begin(), bitstream.end());
  chunks.clear();
  appendChunk(chunks, "ANIM", Bytes(6));
  appendChunk(chunks, "ANMF", frame);
  const auto canvas = decodeImage(container(0x02, 100, 90, chunks));
  ASSERT_NE(canvas, nullptr);
  EXPECT_EQ(canvas->pixelsWide(), 100);
  EXPECT_EQ(pixelAt(*canvas, 5, 10), Pixel{});
  EXPECT_EQ(pixelAt(*canvas, 6, 10), pixelAt(*plain, 0, 0));
  EXPECT_EQ(pixelAt(*canvas, 6 + kWidth - 1, 10 + kHeight - 1),
            pixelAt(*plain, kWidth - 1, kHeight - 1));
  // A frame that leaves the canvas makes the file malformed.
  EXPECT_EQ(decodeImage(container(0x02, 70, 60, chunks)), nullptr);
}

TEST(WebPDecoder, TruncatedPicturesYieldWhatIsThere) {
  for (const Bytes& file : {losslessFile(true), lossyFile()}) {
    const auto whole = decodeImage(file);
    int64_t mostRows = 0;
    for (size_t length = 0; length < file.size(); length += 3) {
      const auto part = decodeImage(std::span(file).first(length));
      if (part == nullptr) continue;
      const RowRange rows = part->usedRows();
      mostRows = std::max(mostRows, rows.end);
      for (int64_t y = 0; y < kHeight; ++y) {
        const bool used = y < rows.end;
        for (int64_t x = 0; x < kWidth; ++x) {
          ASSERT_EQ(pixelAt(*part, x, y), used ? pixelAt(*whole, x, y) : Pixel{}) << length;
        }
      }
    }
    EXPECT_GT(mostRows, 0);
  }
}
