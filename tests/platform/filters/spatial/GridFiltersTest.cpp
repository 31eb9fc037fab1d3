#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "platform/filters/CIFilter.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSValue.h"
#include "support/FilterChart.h"
#include "support/ReferenceFilters.h"

namespace {

TEST(Pixellate, OneSamplePerCell) {
  const auto chart = filterChart();
  for (const double scale : {1.5, 5.0, 8.0, 20.0, 33.3}) {
    const auto result = filtered(chart, "CIPixellate", {{"inputScale", scale}}, true);
    EXPECT_LE(maxDifference(*result, *reference::pixellated(*chart, scale)), 1) << scale;
  }
  EXPECT_EQ(maxDifference(*filtered(chart, "CIPixellate", {{"inputScale", 1}}, true), *chart), 0);
}

TEST(Pixellate, CellsCentredOutsideAreTransparent) {
  const auto result = filtered(plainBitmap(20, 20, {9, 9, 9, 255}), "CIPixellate");
  // Cells of 8 from 150: edges at 6 and 14 upwards and rightwards; the result has 4 pixels more on
  // each side.
  ASSERT_EQ(result->pixelsWide(), 28);
  EXPECT_EQ(pixelAt(*result, 4 + 5, 14), (Pixel{9, 9, 9, 255}));  // cell -2 to 6, centred at 2
  EXPECT_EQ(pixelAt(*result, 4 - 3, 14), Pixel{});                // cell -10 to -2
}

class SiteFilter : public testing::TestWithParam<double> {};

TEST_P(SiteFilter, CrystallizeShowsTheNearestSite) {
  const double pitch = GetParam();
  const auto chart = filterChart();
  const auto result = filtered(chart, "CICrystallize", {{"inputRadius", pitch}}, true);
  int compared = 0;
  const auto expected = reference::crystallized(*chart, pitch);
  for (int64_t y = 0; y < 64; ++y) {
    for (int64_t x = 0; x < 96; ++x) {
      // Single precision may choose the other of two that are equally near.
      if (reference::siteAt(*chart, x, y, pitch).lead < 1e-3) continue;
      ++compared;
      for (size_t c = 0; c < 4; ++c) {
        EXPECT_NEAR(pixelAt(*result, x, y)[c], pixelAt(*expected, x, y)[c], 1) << x << " " << y;
      }
    }
  }
  EXPECT_GT(compared, 6000);
}

TEST_P(SiteFilter, PointillizePaintsDotsOnWhite) {
  const double pitch = GetParam();
  const auto chart = filterChart();
  const auto result = filtered(chart, "CIPointillize", {{"inputRadius", pitch}}, true);
  const auto expected = reference::pointillized(*chart, pitch);
  int wrong = 0;
  for (int64_t y = 0; y < 64; ++y) {
    for (int64_t x = 0; x < 96; ++x) {
      const Pixel a = pixelAt(*result, x, y);
      const Pixel b = pixelAt(*expected, x, y);
      for (size_t c = 0; c < 4; ++c) wrong += std::abs(a[c] - b[c]) > 1 ? 1 : 0;
    }
  }
  EXPECT_LE(wrong, 8) << "only where two sites are equally near";
}

INSTANTIATE_TEST_SUITE_P(Pitches, SiteFilter, testing::Values(1.0, 2.0, 3.7, 7.3, 20.0, 100.0));

TEST(SiteFilters, LookTheSameWhereverThePictureEnds) {
  const auto wide = plainBitmap(1500, 40, {200, 30, 90, 255});
  const auto narrow = plainBitmap(700, 40, {200, 30, 90, 255});
  const auto a = filtered(wide, "CIPointillize", {{"inputRadius", 6}}, true);
  const auto b = filtered(narrow, "CIPointillize", {{"inputRadius", 6}}, true);
  int white = 0;
  for (int64_t y = 0; y < 40; ++y) {
    for (int64_t x = 0; x < 700; ++x) {
      ASSERT_EQ(pixelAt(*a, x, y), pixelAt(*b, x, y)) << x << " " << y;
      white += pixelAt(*b, x, y)[1] > 200 ? 1 : 0;
    }
  }
  // A fifth of the area lies in the gaps, some of it under the dots' soft rims.
  EXPECT_NEAR(white / 28000.0, 0.17, 0.05);
  EXPECT_EQ(maxDifference(*a, *filtered(wide, "CIPointillize", {{"inputRadius", 6}}, true)), 0);
}

TEST(GridFilters, CenterMovesTheGrid) {
  const auto chart = opaqueChart();
  const auto filter = CIFilter::filterWithName("CIPixellate");
  filter->setInputImage(CIImage::initWithBitmapImageRep(chart)->imageByClampingToExtent());
  filter->setValue(NSNumber::numberWithDouble(16), "inputScale");
  filter->setValue(NSValue::valueWithPoint({3, 5}), "inputCenter");
  const auto result =
      filter->outputImage()->imageByCroppingToRect({{0, 0}, chart->size()})->bitmap();
  // A cell's corner lies at (3, 5) upwards: between columns 2 and 3, rows 38 and 39 of 44.
  EXPECT_NE(pixelAt(*result, 2, 20), pixelAt(*result, 3, 20));
  EXPECT_EQ(pixelAt(*result, 3, 20), pixelAt(*result, 18, 20));
  EXPECT_EQ(pixelAt(*result, 3, 38), pixelAt(*result, 3, 23));
}

}  // namespace
