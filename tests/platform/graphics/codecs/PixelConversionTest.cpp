#include <gtest/gtest.h>

#include <vector>

#include "platform/graphics/codecs/PixelConversion.h"

namespace {

/// Every colour with every alpha, the colour in each channel in turn.
std::vector<uint8_t> everyPair() {
  std::vector<uint8_t> pixels;
  for (int a = 0; a < 256; ++a) {
    for (int c = 0; c < 256; ++c) {
      for (const int v : {c, 255 - c, c ^ 0x55, a}) pixels.push_back(static_cast<uint8_t>(v));
    }
  }
  return pixels;
}

}  // namespace

TEST(PixelConversion, PremultipliesEveryPairRounded) {
  const auto in = everyPair();
  std::vector<uint8_t> out(in.size());
  premultiplyRow(in.data(), out.data(), in.size() / 4);
  for (size_t i = 0; i < in.size(); ++i) {
    const int a = in[i | 3];
    const int expected = i % 4 == 3 ? a : (2 * in[i] * a + 255) / 510;
    ASSERT_EQ(out[i], expected) << +in[i] << " * " << a;
  }
}

TEST(PixelConversion, UnpremultipliesEveryPairRounded) {
  const auto in = everyPair();
  auto out = in;
  unpremultiplyRow(out.data(), out.data(), out.size() / 4);
  for (size_t i = 0; i < in.size(); ++i) {
    const int a = in[i | 3];
    const int quotient = a == 0 ? 0 : std::min(255, (2 * 255 * in[i] + a) / (2 * a));
    ASSERT_EQ(out[i], i % 4 == 3 ? a : quotient) << +in[i] << " / " << a;
  }
}

TEST(PixelConversion, OneTranslucentPixelAnywhereIsNoticed) {
  for (const size_t count : {1, 7, 255, 256, 257, 1000}) {
    std::vector<uint8_t> row(count * 4, 255);
    EXPECT_TRUE(isOpaqueRow(row.data(), count));
    for (const size_t at : {size_t{0}, count / 2, count - 1}) {
      row[at * 4 + 3] = 254;
      EXPECT_FALSE(isOpaqueRow(row.data(), count)) << at;
      row[at * 4 + 3] = 255;
    }
  }
}
