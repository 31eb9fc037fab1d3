#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "platform/filters/spatial/GaussianKernels.h"
#include "support/FilterChart.h"
#include "support/ReferenceFilters.h"

namespace {

using reference::Edge;

/// The middle part of a bitmap, of the other one's size.
std::shared_ptr<NSBitmapImageRep> middle(const NSBitmapImageRep& bitmap,
                                         const NSBitmapImageRep& like) {
  const int64_t dx = (bitmap.pixelsWide() - like.pixelsWide()) / 2;
  const int64_t dy = (bitmap.pixelsHigh() - like.pixelsHigh()) / 2;
  return makeBitmap(like.pixelsWide(), like.pixelsHigh(),
                    [&](int64_t x, int64_t y) { return pixelAt(bitmap, x + dx, y + dy); });
}

TEST(GaussianBlur, WithinTwoLevelsOfTheTrueGaussian) {
  for (const auto& chart : {filterChart(), opaqueChart()}) {
    for (const double sigma : {0.4, 1.0, 2.0, 2.9, 3.0, 4.5, 10.0, 18.0, 40.0}) {
      const auto extended = filtered(chart, "CIGaussianBlur", {{"inputRadius", sigma}}, true);
      EXPECT_LE(maxDifference(*extended, *reference::blurred(*chart, sigma, Edge::kNearest)), 2)
          << sigma;
      const auto plain = filtered(chart, "CIGaussianBlur", {{"inputRadius", sigma}});
      const auto grown = static_cast<int64_t>(std::ceil(3 * sigma));
      EXPECT_EQ(plain->pixelsWide(), chart->pixelsWide() + 2 * grown);
      EXPECT_LE(maxDifference(*middle(*plain, *chart),
                              *reference::blurred(*chart, sigma, Edge::kTransparent)),
                2)
          << sigma;
    }
  }
}

// Wide pictures are blurred strip by strip; where the strips meet depends on the width.
TEST(GaussianBlur, StripsDoNotShow) {
  const auto translucent = randomBitmap(1400, 12, 6);
  const auto opaque = makeBitmap(1400, 12, [&](int64_t x, int64_t y) {
    const Pixel p = pixelAt(*translucent, x, y);
    return Pixel{p[0], p[1], p[2], 255};
  });
  for (const auto& wide : {translucent, opaque}) {
    const auto part =
        makeBitmap(800, 12, [&](int64_t x, int64_t y) { return pixelAt(*wide, x + 304, y); });
    for (const double sigma : {2.0, 9.0}) {
      const auto whole = filtered(wide, "CIGaussianBlur", {{"inputRadius", sigma}}, true);
      const auto alone = filtered(part, "CIGaussianBlur", {{"inputRadius", sigma}}, true);
      for (int64_t x = 50; x < 750; ++x) {
        ASSERT_EQ(pixelAt(*alone, x, 7), pixelAt(*whole, x + 304, 7)) << x << " " << sigma;
      }
    }
  }
}

TEST(GaussianBlur, HalfOfFullLightLiesOnTheEdge) {
  for (const double sigma : {3.0, 12.0}) {
    const auto edge = makeBitmap(120, 4, [](int64_t x, int64_t) {
      return x < 60 ? Pixel{0, 0, 0, 255} : Pixel{255, 255, 255, 255};
    });
    const auto result = filtered(edge, "CIGaussianBlur", {{"inputRadius", sigma}}, true);
    EXPECT_LT(pixelAt(*result, 59, 1)[0], 188);
    EXPECT_GT(pixelAt(*result, 60, 1)[0], 188);
  }
}

TEST(GaussianBlur, ADiscOnTransparentGroundKeepsItsColour) {
  const auto disc = makeBitmap(64, 64, [](int64_t x, int64_t y) {
    const bool inside = (x - 32) * (x - 32) + (y - 32) * (y - 32) < 400;
    return inside ? Pixel{200, 30, 90, 255} : Pixel{};
  });
  const auto result = filtered(disc, "CIGaussianBlur", {{"inputRadius", 6}}, true);
  int partial = 0;
  for (int64_t x = 0; x < 64; ++x) {
    const Pixel p = pixelAt(*result, x, 32);
    partial += p[3] > 0 && p[3] < 255 ? 1 : 0;
    EXPECT_NEAR(p[0], 200 * p[3] / 255.0, 1);
    EXPECT_NEAR(p[1], 30 * p[3] / 255.0, 1);
    EXPECT_NEAR(p[2], 90 * p[3] / 255.0, 1);
  }
  EXPECT_GT(partial, 20);
}

// Rows far from anything painted are passed over; the result must not show it.
TEST(GaussianBlur, SparsePicturesBlurLikeFullOnes) {
  auto sparse = NSBitmapImageRep::create(40, 400);
  std::fill_n(sparse->writableRows(200, 203), 3 * sparse->bytesPerRow(), uint8_t{255});
  const auto full = sparse->copy();
  full->writableRows(0, 400);
  for (const double sigma : {2.0, 9.0, 30.0}) {
    EXPECT_EQ(maxDifference(*filtered(sparse, "CIGaussianBlur", {{"inputRadius", sigma}}, true),
                            *filtered(full, "CIGaussianBlur", {{"inputRadius", sigma}}, true)),
              0);
  }
}

TEST(BlurKernels, VectorAndScalarSumsAgree) {
  std::mt19937 random(2);
  std::uniform_real_distribution<float> value(0, 1);
  std::vector<float> row(400);
  for (float& v : row) v = value(random);
  for (const size_t radius : {0, 1, 2, 7, 16}) {
    std::vector<const float*> taps;
    for (size_t i = 0; i <= 2 * radius; ++i) taps.push_back(row.data() + 3 * i);
    std::vector<float> weights(radius + 1, 1.0F / static_cast<float>(2 * radius + 1));
    for (const size_t count : {1, 31, 32, 33, 300}) {
      std::vector<float> fast(count);
      std::vector<float> plain(count);
      weighSymmetric(taps.data(), weights.data(), radius, fast.data(), count);
      weighSymmetricScalar(taps.data(), weights.data(), radius, plain.data(), count);
      EXPECT_EQ(fast, plain) << radius << " " << count;
    }
  }
}

double meanDifference(const NSBitmapImageRep& a, const NSBitmapImageRep& b) {
  double sum = 0;
  const size_t bytes = a.bytesPerRow() * static_cast<size_t>(a.pixelsHigh());
  for (size_t i = 0; i < bytes; ++i) sum += std::abs(a.bitmapData()[i] - b.bitmapData()[i]);
  return sum / static_cast<double>(bytes);
}

TEST(Sharpen, AddsWhatABlurTakesAwayFromLuminance) {
  for (const auto& chart : {opaqueChart(), filterChart()}) {
    for (const double amount : {0.4, 5.0}) {
      const auto expected = reference::sharpened(*chart, amount);
      const auto result = filtered(chart, "CISharpenLuminance", {{"inputSharpness", amount}});
      // Next to black, where a code is 1/3000 of full light, five times what the Gaussian's
      // cut-off tails hold shows.
      EXPECT_LE(maxDifference(*result, *expected), amount < 1 ? 2 : 8);
      EXPECT_LE(meanDifference(*result, *expected), 0.1);
    }
  }
}

TEST(Edges, SquaredDifferencesAlongBothDiagonals) {
  for (const double intensity : {1.0, 50.0}) {
    for (const auto& chart : {opaqueChart(), filterChart()}) {
      const auto expected = reference::edges(*chart, intensity);
      const auto result = filtered(chart, "CIEdges", {{"inputIntensity", intensity}});
      const bool opaque = chart->pixelsHigh() == opaqueChart()->pixelsHigh();
      // Along the ramp of alpha the 8-bit rounding of straight colours shows, magnified.
      EXPECT_LE(maxDifference(*result, *expected), opaque ? 1 : 14);
      EXPECT_LE(meanDifference(*result, *expected), 0.3);
    }
  }
}

TEST(Edges, OnlyTheRightColumnAndBottomRowOfAPlainPictureLightUp) {
  const auto result = filtered(plainBitmap(9, 7, {128, 128, 128, 255}), "CIEdges");
  EXPECT_EQ(pixelAt(*result, 7, 5), (Pixel{0, 0, 0, 255}));
  EXPECT_GT(pixelAt(*result, 8, 3)[0], 60);
  EXPECT_GT(pixelAt(*result, 4, 6)[0], 60);
}

TEST(EdgeWork, WhiteWhereAFineBlurExceedsACoarseOne) {
  const auto chart = opaqueChart();
  for (const double radius : {0.5, 3.0}) {
    const auto expected = reference::edgeWork(*chart, radius);
    const auto result = filtered(chart, "CIEdgeWork", {{"inputRadius", radius}}, true);
    int clear = 0;
    for (int64_t y = 0; y < 44; ++y) {
      for (int64_t x = 0; x < 96; ++x) {
        const Pixel p = pixelAt(*result, x, y);
        EXPECT_EQ(p[0], p[3]);
        EXPECT_EQ(p[2], p[3]);
        clear += pixelAt(*expected, x, y)[3] == 0 ? 1 : 0;
      }
    }
    // 400 times the error of a cut-off Gaussian.
    EXPECT_LE(maxDifference(*result, *expected), 30);
    EXPECT_LT(meanDifference(*result, *expected), 3);
    EXPECT_GT(clear, 500);
  }
}

TEST(SpatialFilters, LeavePlainPicturesAsTheyAre) {
  const auto plain = plainBitmap(37, 23, {90, 140, 20, 255});
  for (const std::string_view name :
       {"CIGaussianBlur", "CISharpenLuminance", "CIPixellate", "CICrystallize"}) {
    EXPECT_EQ(maxDifference(*filtered(plain, name, {}, true), *plain), 0) << name;
  }
  const auto work = filtered(plain, "CIEdgeWork", {}, true);
  EXPECT_EQ(pixelAt(*work, 18, 11), Pixel{});
  EXPECT_EQ(pixelAt(*work, 0, 0), Pixel{});
}

}  // namespace
