#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "draw/image/ImageFilters.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/path/NSBezierPath.h"
#include "support/FilterChart.h"
#include "support/ReferenceFilters.h"

namespace {

std::shared_ptr<NSDictionary> settingsOf(FilterSettings pairs) {
  auto settings = std::make_shared<NSMutableDictionary>();
  for (const auto& [key, value] : pairs) {
    settings->setObject(NSNumber::numberWithDouble(value), key);
  }
  return settings;
}

TEST(ImageWithFilter, NothingComesOfNothing) {
  const auto chart = filterChart();
  EXPECT_EQ(ImageWithFilter(nullptr, "CIEdges", ExtendEdges::no, nullptr), nullptr);
  EXPECT_EQ(ImageWithFilter(nullptr, "CIInvertColor", ExtendEdges::no, nullptr), nullptr);
  EXPECT_EQ(ImageWithFilter(chart, std::nullopt, ExtendEdges::no, nullptr), nullptr);
  const auto empty = NSBitmapImageRep::create(0, 5);
  EXPECT_EQ(ImageWithFilter(empty, "CIEdges", ExtendEdges::no, nullptr), nullptr);
  // The source itself, not a copy, for a filter that nobody has.
  for (const std::string_view name : {"CIInvertColor", "CINothing", ""}) {
    EXPECT_EQ(ImageWithFilter(chart, name, ExtendEdges::yes, nullptr), chart) << name;
  }
}

TEST(ImageWithFilter, TakesTheKeysTheFilterHas) {
  const auto chart = filterChart();
  const auto plain = ImageWithFilter(chart, "CIPixellate", ExtendEdges::yes, nullptr);
  EXPECT_LE(maxDifference(*plain, *reference::pixellated(*chart, 8)), 1) << "its default";
  const auto foreign = settingsOf({{"inputRadius", 3}, {"SetttingName", 2}, {"", 5}});
  EXPECT_EQ(maxDifference(*ImageWithFilter(chart, "CIPixellate", ExtendEdges::yes, foreign.get()),
                          *plain),
            0);
  const auto own = settingsOf({{"inputRadius", 3}, {"inputScale", 5}});
  EXPECT_LE(maxDifference(*ImageWithFilter(chart, "CIPixellate", ExtendEdges::yes, own.get()),
                          *reference::pixellated(*chart, 5)),
            1);
}

TEST(ImageWithFilter, ExtendedPicturesKeepTheirSize) {
  const auto plain = plainBitmap(30, 20, {90, 140, 20, 255});
  const auto radius = settingsOf({{"inputRadius", 4}});
  const auto extended = ImageWithFilter(plain, "CIGaussianBlur", ExtendEdges::yes, radius.get());
  EXPECT_EQ(maxDifference(*extended, *plain), 0) << "nothing fades in from the border";
  const auto grown = ImageWithFilter(plain, "CIGaussianBlur", ExtendEdges::no, radius.get());
  EXPECT_EQ(grown->size(), NSMakeSize(30 + 2 * 12, 20 + 2 * 12));
  EXPECT_LT(pixelAt(*grown, 12, 22)[3], 150);
}

TEST(ImageBlured, IsAGaussianOfThatRadius) {
  const auto chart = filterChart();
  const auto result = ImageBlured(chart, 2.5F);
  EXPECT_LE(maxDifference(*result, *reference::blurred(*chart, 2.5, reference::Edge::kNearest)), 2);
  EXPECT_EQ(ImageBlured(nullptr, 2), nullptr);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const float radius : {0.0F, -0.0F, -3.0F, nan}) {
    EXPECT_EQ(ImageBlured(chart, radius), nullptr) << radius;
  }
  for (const float radius : {1e-20F, 1e30F, std::numeric_limits<float>::infinity()}) {
    ASSERT_NE(ImageBlured(chart, radius), nullptr) << radius;
    EXPECT_EQ(ImageBlured(chart, radius)->size(), chart->size()) << radius;
  }
}

TEST(ImageWithFilters, GiveTheBytesOfOneAfterTheOther) {
  const auto chart = filterChart();
  const std::string_view names[] = {"CIExposureAdjust", "CIPixellate", "CINothing",
                                    "CIGammaAdjust"};
  const auto settings = settingsOf({{"inputEV", 1}, {"inputScale", 5}, {"inputPower", 2}});
  auto stepwise = chart;
  for (const std::string_view name : names) {
    stepwise = ImageWithFilter(stepwise, name, ExtendEdges::yes, settings.get());
  }
  const auto together = ImageWithFilters(chart, names, ExtendEdges::yes, settings.get());
  EXPECT_EQ(maxDifference(*together, *stepwise), 0);
  EXPECT_GT(maxDifference(*together, *chart), 50);
  EXPECT_EQ(ImageWithFilters(nullptr, names, ExtendEdges::yes, settings.get()), nullptr);
}

TEST(ScissorImage, KeepsWhatLiesInsideThePath) {
  const auto image = randomBitmap(40, 30, 7);
  // Right and top edge run through the middle of pixels.
  const auto path = NSBezierPath::bezierPathWithRect({{5, 4}, {20.5, 10.5}});
  const auto result = ScissorImage(image, *path);
  ASSERT_EQ(result->size(), image->size());
  for (int64_t y = 0; y < 30; ++y) {
    for (int64_t x = 0; x < 40; ++x) {
      const double across = x < 5 || x > 25 ? 0 : (x == 25 ? 0.5 : 1);
      const int64_t up = 29 - y;
      const double along = up < 4 || up > 14 ? 0 : (up == 14 ? 0.5 : 1);
      const Pixel before = pixelAt(*image, x, y);
      const Pixel after = pixelAt(*result, x, y);
      for (size_t c = 0; c < 4; ++c) {
        const double coverage = across * along;
        ASSERT_NEAR(after[c], before[c] * coverage, coverage > 0 && coverage < 1 ? 1.01 : 0)
            << x << " " << y;
      }
    }
  }
}

TEST(ScissorImage, PathsOfManyKinds) {
  const auto image = plainBitmap(20, 20, {200, 100, 50, 255});
  const auto ring = NSBezierPath::bezierPathWithRect({{0, 0}, {20, 20}});
  ring->appendBezierPathWithRect({{5, 5}, {10, 10}});
  EXPECT_EQ(maxDifference(*ScissorImage(image, *ring), *image), 0);
  ring->setWindingRule(WindingRule::evenOdd);
  EXPECT_EQ(pixelAt(*ScissorImage(image, *ring), 10, 10), Pixel{});
  EXPECT_EQ(pixelAt(*ScissorImage(image, *ring), 2, 10), pixelAt(*image, 2, 10));

  const auto empty = ScissorImage(image, *NSBezierPath::bezierPath());
  EXPECT_EQ(maxDifference(*empty, *NSBitmapImageRep::create(20, 20)), 0);
  const auto outside = NSBezierPath::bezierPathWithRect({{100, -50}, {20, 20}});
  EXPECT_EQ(maxDifference(*ScissorImage(image, *outside), *empty), 0);
  const auto larger = NSBezierPath::bezierPathWithRect({{-1e9, -1e9}, {2e9, 2e9}});
  EXPECT_EQ(maxDifference(*ScissorImage(image, *larger), *image), 0);
  EXPECT_EQ(ScissorImage(nullptr, *larger), nullptr);
}

TEST(ColorImages, PublishedValues) {
  struct Case {
    Pixel in, inverted, grey;
  };
  const Case cases[] = {{{64, 128, 192, 255}, {249, 229, 183, 255}, {125, 125, 125, 255}},
                        {{200, 30, 90, 255}, {174, 254, 243, 255}, {104, 104, 104, 255}},
                        {{255, 255, 0, 255}, {0, 0, 255, 255}, {247, 247, 247, 255}},
                        {{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}},
                        // Straight 64, 128, 191 at alpha 128.
                        {{32, 64, 96, 128}, {125, 115, 92, 128}, {62, 62, 62, 128}}};
  for (const Case& c : cases) {
    const auto bitmap = plainBitmap(2, 2, c.in);
    EXPECT_EQ(pixelAt(*ImageInvertedColors(bitmap), 1, 1), c.inverted);
    EXPECT_EQ(pixelAt(*ImageToBlackAndWhite(bitmap), 1, 1), c.grey);
  }
  EXPECT_EQ(ImageInvertedColors(nullptr), nullptr);
  EXPECT_EQ(ImageToBlackAndWhite(nullptr), nullptr);
}

}  // namespace
