#include <gtest/gtest.h>

#include <cstdio>
// The library's header needs the one above.
#include <jpeglib.h>

#include <cmath>
#include <cstring>

#include "platform/graphics/bitmap/ImageFiles.h"
#include "support/Bitmaps.h"
#include "support/Fixtures.h"

namespace {

constexpr int kWidth = 75;
constexpr int kHeight = 61;

using Samples = std::array<uint8_t, 4>;

/// Smooth, so that compression hardly changes it.
Samples sampleAt(int64_t x, int64_t y) {
  const auto byte = [](double v) { return static_cast<uint8_t>(v); };
  const auto fx = static_cast<double>(x);
  const auto fy = static_cast<double>(y);
  return {byte(fx * 3), byte(fy * 4), byte(200 - fx - fy), byte(30 + fx + fy)};
}

struct Form {
  J_COLOR_SPACE input = JCS_RGB;
  J_COLOR_SPACE stored = JCS_YCbCr;
  int components = 3;
  bool adobe = false;  ///< with the marker, and inks upside down
  bool progressive = false;
  bool arithmetic = false;
  std::vector<uint8_t> exif = {};
  std::vector<uint8_t> profile = {};
};

std::vector<uint8_t> makeJPEG(const Form& form) {
  jpeg_compress_struct encoder{};
  jpeg_error_mgr errors{};
  encoder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&encoder);
  unsigned char* bytes = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&encoder, &bytes, &length);
  encoder.image_width = kWidth;
  encoder.image_height = kHeight;
  encoder.input_components = form.components;
  encoder.in_color_space = form.input;
  jpeg_set_defaults(&encoder);
  jpeg_set_colorspace(&encoder, form.stored);
  jpeg_set_quality(&encoder, 100, TRUE);
  for (int c = 0; c < form.components; ++c) {
    encoder.comp_info[c].h_samp_factor = encoder.comp_info[c].v_samp_factor = 1;
  }
  if (form.progressive) jpeg_simple_progression(&encoder);
  encoder.arith_code = form.arithmetic ? TRUE : FALSE;
  encoder.write_Adobe_marker = form.adobe ? TRUE : FALSE;
  jpeg_start_compress(&encoder, TRUE);
  if (!form.exif.empty()) {
    jpeg_write_marker(&encoder, JPEG_APP0 + 1, form.exif.data(),
                      static_cast<unsigned>(form.exif.size()));
  }
  if (!form.profile.empty()) {
    jpeg_write_icc_profile(&encoder, form.profile.data(),
                           static_cast<unsigned>(form.profile.size()));
  }
  for (int y = 0; y < kHeight; ++y) {
    std::vector<uint8_t> row;
    for (int x = 0; x < kWidth; ++x) {
      const Samples samples = sampleAt(x, y);
      for (int c = 0; c < form.components; ++c) {
        row.push_back(form.adobe ? static_cast<uint8_t>(255 - samples[c]) : samples[c]);
      }
    }
    uint8_t* start = row.data();
    jpeg_write_scanlines(&encoder, &start, 1);
  }
  jpeg_finish_compress(&encoder);
  jpeg_destroy_compress(&encoder);
  std::vector<uint8_t> file(bytes, bytes + length);
  std::free(bytes);
  return file;
}

Pixel rgbPixel(int64_t x, int64_t y) {
  const Samples s = sampleAt(x, y);
  return {s[0], s[1], s[2], 255};
}

Pixel inkPixel(int64_t x, int64_t y) {
  const Samples s = sampleAt(x, y);
  const auto mixed = [&](int ink) {
    return static_cast<uint8_t>((255 - ink) * (255 - s[3]) / 255.0 + 0.5);
  };
  return {mixed(s[0]), mixed(s[1]), mixed(s[2]), 255};
}

std::vector<uint8_t> profileNamed(const std::string& name) {
  return readFile(PAINT_BINARY_DIR "/fixtures/pictures/near/" + name);
}

std::vector<uint8_t> exifBlock(uint8_t orientation) {
  const uint8_t block[] = {'E', 'x',  'i', 'f', 0, 0, 'M', 'M', 0, 42,          0, 0, 0, 8, 0, 1,
                           1,   0x12, 0,   3,   0, 0, 0,   1,   0, orientation, 0, 0, 0, 0, 0, 0};
  return {std::begin(block), std::end(block)};
}

}  // namespace

TEST(JPEGDecoder, EveryKindOfColour) {
  struct Case {
    const char* name;
    Form form;
    Pixel (*expected)(int64_t, int64_t);
  };
  const auto grey = [](int64_t x, int64_t y) {
    const uint8_t v = sampleAt(x, y)[0];
    return Pixel{v, v, v, 255};
  };
  const Case cases[] = {
      {"YCC", {}, rgbPixel},
      {"progressive", {.progressive = true}, rgbPixel},
      {"arithmetic", {.arithmetic = true}, rgbPixel},
      {"RGB", {.stored = JCS_RGB}, rgbPixel},
      {"grey", {.input = JCS_GRAYSCALE, .stored = JCS_GRAYSCALE, .components = 1}, grey},
      {"CMYK", {.input = JCS_CMYK, .stored = JCS_CMYK, .components = 4}, inkPixel},
      {"Adobe CMYK",
       {.input = JCS_CMYK, .stored = JCS_CMYK, .components = 4, .adobe = true},
       inkPixel},
      {"Adobe YCCK",
       {.input = JCS_CMYK, .stored = JCS_YCCK, .components = 4, .adobe = true},
       inkPixel},
  };
  for (const Case& c : cases) {
    const auto bitmap = decodeImage(makeJPEG(c.form));
    ASSERT_NE(bitmap, nullptr) << c.name;
    EXPECT_FALSE(bitmap->hasAlpha()) << c.name;
    EXPECT_LE(maxDifference(*bitmap, *makeBitmap(kWidth, kHeight, c.expected)), 4) << c.name;
  }
}

TEST(JPEGDecoder, OrientationIsApplied) {
  // Where the stored top left corner and the one to its right end up.
  struct Case {
    uint8_t orientation;
    int64_t x0, y0, x1, y1;
  };
  constexpr int64_t kRight = kWidth - 1;
  constexpr int64_t kBottom = kHeight - 1;
  const Case cases[] = {{1, 0, 0, kRight, 0},
                        {2, kRight, 0, 0, 0},
                        {3, kRight, kBottom, 0, kBottom},
                        {4, 0, kBottom, kRight, kBottom},
                        {5, 0, 0, 0, kRight},
                        {6, kBottom, 0, kBottom, kRight},
                        {7, kBottom, kRight, kBottom, 0},
                        {8, 0, kRight, 0, 0},
                        {9, 0, 0, kRight, 0}};
  const auto stored = decodeImage(makeJPEG({}));
  for (const Case& c : cases) {
    const auto bitmap = decodeImage(makeJPEG({.exif = exifBlock(c.orientation)}));
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(pixelAt(*bitmap, c.x0, c.y0), pixelAt(*stored, 0, 0)) << +c.orientation;
    EXPECT_EQ(pixelAt(*bitmap, c.x1, c.y1), pixelAt(*stored, kRight, 0)) << +c.orientation;
  }
}

TEST(JPEGDecoder, DamagedExifBlocksAreIgnored) {
  const auto upright = decodeImage(makeJPEG({}));
  const auto whole = exifBlock(6);
  for (size_t length = 1; length < whole.size() - 7; ++length) {
    Form form{.exif = {whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)}};
    EXPECT_EQ(maxDifference(*decodeImage(makeJPEG(form)), *upright), 0) << length;
  }
  for (const size_t offset : {6, 9, 10, 13, 16, 18}) {
    Form form{.exif = whole};
    form.exif[offset] = 0xff;
    EXPECT_EQ(maxDifference(*decodeImage(makeJPEG(form)), *upright), 0) << offset;
  }
}

TEST(JPEGDecoder, ProfilesAreConverted) {
  const auto plain = decodeImage(makeJPEG({.stored = JCS_RGB}));
  const auto wide =
      decodeImage(makeJPEG({.stored = JCS_RGB, .profile = profileNamed("adobe.icc")}));
  // The wider space's own green is greener than the same numbers in sRGB: less red and blue.
  EXPECT_LT(pixelAt(*wide, 20, 50)[0], pixelAt(*plain, 20, 50)[0]);
  const Form grey{.input = JCS_GRAYSCALE,
                  .stored = JCS_GRAYSCALE,
                  .components = 1,
                  .profile = profileNamed("grey.icc")};
  const auto bitmap = decodeImage(makeJPEG(grey));
  for (int64_t x = 0; x < kWidth; ++x) {
    const double linear = std::pow(sampleAt(x, 9)[0] / 255.0, 1.8);
    const double v =
        linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
    EXPECT_NEAR(pixelAt(*bitmap, x, 9)[1], 255 * v, 4) << x;
  }
}

TEST(JPEGDecoder, TruncatedPicturesYieldWhatIsThere) {
  const auto baseline = makeJPEG({});
  const auto whole = decodeImage(baseline);
  for (size_t length = 0; length < baseline.size(); length += 7) {
    const auto part = decodeImage(std::span(baseline).first(length));
    if (part == nullptr) continue;
    const RowRange rows = part->usedRows();
    ASSERT_GE(rows.end, static_cast<int64_t>(length) * kHeight / 3 / 4000 - 16);
    for (int64_t y = 0; y < kHeight; ++y) {
      const bool used = y >= rows.first && y < rows.end;
      for (int64_t x = 0; x < kWidth; ++x) {
        ASSERT_EQ(pixelAt(*part, x, y), used ? pixelAt(*whole, x, y) : Pixel{}) << length;
      }
    }
  }
  // Without its end marker nothing is missing.
  const auto unended = decodeImage(std::span(baseline).first(baseline.size() - 2));
  ASSERT_NE(unended, nullptr);
  EXPECT_EQ(maxDifference(*unended, *whole), 0);
  // The first scans of a progressive picture show all of it.
  const auto progressive = makeJPEG({.progressive = true});
  const auto coarse = decodeImage(std::span(progressive).first(progressive.size() / 2));
  ASSERT_NE(coarse, nullptr);
  EXPECT_EQ(coarse->usedRows().end, kHeight);
}

TEST(JPEGDecoder, ClaimedSizesCostNothing) {
  for (const bool progressive : {false, true}) {
    auto file = makeJPEG({.progressive = progressive});
    for (size_t i = 2; i + 9 < file.size(); ++i) {
      if (file[i] != 0xff || (file[i + 1] != 0xc0 && file[i + 1] != 0xc2)) continue;
      file[i + 5] = 0x3c;  // a height of 15360 and more
      if (progressive) file[i + 7] = 0x3c;
      break;
    }
    const auto bitmap = decodeImage(file);
    if (progressive) {
      EXPECT_EQ(bitmap, nullptr);
    } else {
      ASSERT_NE(bitmap, nullptr);
      EXPECT_LE(bitmap->usedRows().end, 64);
    }
  }
}

TEST(JPEGEncoder, KeepsColoursAtHighQuality) {
  auto bitmap = makeBitmap(kWidth, kHeight, rgbPixel);
  bitmap->setHasAlpha(false);
  const auto file = encodeJPEG(*bitmap, 0.95);
  const auto decoded = decodeImage(file);
  ASSERT_NE(decoded, nullptr);
  EXPECT_LE(maxDifference(*decoded, *bitmap), 8);
  EXPECT_LT(encodeJPEG(*bitmap, 0.3).size(), file.size());
  for (const double quality : {-1.0, 0.0, 7.0, std::nan("")}) {
    EXPECT_NE(decodeImage(encodeJPEG(*bitmap, quality)), nullptr) << quality;
  }
}

TEST(JPEGEncoder, WhatCannotBeEncodedIsNoFile) {
  EXPECT_TRUE(encodeJPEG(*NSBitmapImageRep::create(70000, 1), 0.9).empty());
  EXPECT_TRUE(encodeJPEG(NSBitmapImageRep(), 0.9).empty());
}
