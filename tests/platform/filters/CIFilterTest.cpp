#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "platform/filters/CIFilter.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/foundation/values/NSValue.h"
#include "platform/graphics/path/NSAffineTransform.h"
#include "support/FilterChart.h"

namespace {

using testing::ElementsAre;

constexpr std::string_view kNames[] = {
    "CIAffineClamp",   "CIGaussianBlur",   "CISharpenLuminance",
    "CIColorControls", "CIExposureAdjust", "CIHighlightShadowAdjust",
    "CISepiaTone",     "CIHueAdjust",      "CIGammaAdjust",
    "CIColorInvert",   "CICrystallize",    "CIEdges",
    "CIEdgeWork",      "CIPixellate",      "CIPointillize"};

constexpr std::string_view kKeys[] = {
    "inputImage",      "inputTransform",    "inputRadius",          "inputSharpness",
    "inputSaturation", "inputBrightness",   "inputContrast",        "inputEV",
    "inputIntensity",  "inputShadowAmount", "inputHighlightAmount", "inputAngle",
    "inputPower",      "inputCenter",       "inputScale",           "inputNothing"};

TEST(CIFilter, KnowsItsNamesOnly) {
  for (const std::string_view name : kNames) EXPECT_NE(CIFilter::filterWithName(name), nullptr);
  EXPECT_EQ(CIFilter::filterWithName("CIInvertColor"), nullptr);
  EXPECT_EQ(CIFilter::filterWithName(""), nullptr);
  EXPECT_THAT(CIFilter::filterWithName("CIColorInvert")->inputKeys(), ElementsAre("inputImage"));
  EXPECT_THAT(
      CIFilter::filterWithName("CIHighlightShadowAdjust")->inputKeys(),
      ElementsAre("inputImage", "inputRadius", "inputShadowAmount", "inputHighlightAmount"));
  EXPECT_EQ(CIFilter::filterWithName("CIEdges")->outputImage(), nullptr) << "no input image";
}

TEST(CIFilter, IgnoresForeignKeysAndValues) {
  const auto bitmap = filterChart();
  const auto filter = CIFilter::filterWithName("CIPixellate");
  filter->setInputImage(CIImage::initWithBitmapImageRep(bitmap));
  const auto standard = filter->outputImage()->bitmap();
  filter->setValue(NSNumber::numberWithDouble(3), "inputRadius");
  filter->setValue(NSString::stringWithString("12"), "inputScale");
  filter->setValue(NSValue::valueWithPoint({2, 3}), "inputScale");
  filter->setValue(NSNumber::numberWithDouble(3), "inputCenter");
  filter->setValue(NSNumber::numberWithDouble(3), "inputImage");
  filter->setValue(NSNumber::numberWithDouble(std::nan("")), "inputScale");
  filter->setValue(NSValue::valueWithPoint({std::nan(""), 150}), "inputCenter");
  filter->setValue(nullptr, "inputScale");
  EXPECT_EQ(maxDifference(*filter->outputImage()->bitmap(), *standard), 0);
  filter->setValue(NSNumber::numberWithInteger(3), "inputScale");
  EXPECT_NE(maxDifference(*filter->outputImage()->bitmap(), *standard), 0);
  filter->setDefaults();
  EXPECT_EQ(maxDifference(*filter->outputImage()->bitmap(), *standard), 0);
}

// Whatever a document says: a picture of the same size comes back, and soon.
TEST(CIFilter, ExtremeSettingsAreClamped) {
  const auto bitmap = randomBitmap(23, 9, 4);
  const double infinity = std::numeric_limits<double>::infinity();
  for (const std::string_view name : kNames) {
    for (const double value :
         {infinity, -infinity, 1e308, -1e308, 1e9, -3.0, 0.0, 1e-300, std::nan(""), 0.25}) {
      const auto filter = CIFilter::filterWithName(name);
      const auto image = CIImage::initWithBitmapImageRep(bitmap);
      filter->setInputImage(image->imageByClampingToExtent());
      for (const std::string_view key : kKeys) {
        filter->setValue(NSNumber::numberWithDouble(value), key);
      }
      filter->setValue(NSValue::valueWithPoint({value, -value}), "inputCenter");
      const auto output = filter->outputImage();
      if (name == "CIAffineClamp") {
        EXPECT_EQ(output, nullptr) << "its default transform is not the identity";
        continue;
      }
      const auto result = output->imageByCroppingToRect(image->extent())->bitmap();
      ASSERT_NE(result, nullptr) << name << value;
      for (int64_t y = 0; y < 9; ++y) {
        for (int64_t x = 0; x < 23; ++x) {
          const Pixel p = pixelAt(*result, x, y);
          EXPECT_LE(std::max({p[0], p[1], p[2]}), p[3]) << name << " " << value;
        }
      }
    }
  }
}

TEST(CIFilter, SeveralThreadsGetTheSamePixels) {
  const auto bitmap = randomBitmap(300, 40, 9);
  const auto all = [&] {
    std::vector<std::shared_ptr<NSBitmapImageRep>> results;
    for (const std::string_view name : kNames) {
      if (name == "CIAffineClamp") continue;
      results.push_back(filtered(bitmap, name, {{"inputAngle", 1}, {"inputShadowAmount", 0.5}}));
    }
    return results;
  };
  std::vector<std::vector<std::shared_ptr<NSBitmapImageRep>>> results(4);
  std::vector<std::thread> threads;
  for (auto& result : results) threads.emplace_back([&] { result = all(); });
  for (std::thread& thread : threads) thread.join();
  const auto alone = all();
  for (const auto& result : results) {
    for (size_t i = 0; i < alone.size(); ++i) {
      EXPECT_EQ(maxDifference(*result[i], *alone[i]), 0) << i;
    }
  }
}

TEST(CIFilter, ResultsTooLargeForABitmapAreNone) {
  const auto bitmap = plainBitmap(3, 3, {1, 2, 3, 255});
  EXPECT_EQ(filtered(bitmap, "CICrystallize", {{"inputRadius", 1e6}}), nullptr);
  EXPECT_NE(filtered(bitmap, "CICrystallize", {{"inputRadius", 1e6}}, true), nullptr);
}

TEST(CIImage, ClampWithTheIdentityGoesOnForEver) {
  const auto bitmap = makeBitmap(2, 2, [](int64_t x, int64_t y) {
    return Pixel{static_cast<uint8_t>(x * 100), static_cast<uint8_t>(y * 100), 0, 255};
  });
  const auto clamp = CIFilter::filterWithName("CIAffineClamp");
  clamp->setInputImage(CIImage::initWithBitmapImageRep(bitmap));
  clamp->setValue(std::make_shared<NSAffineTransform>(), "inputTransform");
  const auto image = clamp->outputImage();
  EXPECT_EQ(image->extent(), kInfiniteExtent);
  EXPECT_EQ(image->bitmap(), nullptr) << "endless";
  const auto part = image->imageByCroppingToRect({{-2.5, -1}, {6, 2.5}})->bitmap();
  ASSERT_EQ(part->pixelsWide(), 7);
  ASSERT_EQ(part->pixelsHigh(), 3);
  EXPECT_EQ(pixelAt(*part, 0, 0), (Pixel{0, 0, 0, 255}));
  EXPECT_EQ(pixelAt(*part, 6, 0), (Pixel{100, 0, 0, 255}));
  EXPECT_EQ(pixelAt(*part, 3, 2), (Pixel{0, 100, 0, 255}));
  EXPECT_EQ(pixelAt(*part, 4, 2), (Pixel{100, 100, 0, 255}));
}

TEST(CIImage, CropsAreTransparentBeyond) {
  const auto bitmap = randomBitmap(20, 10, 1);
  const auto image = CIImage::initWithBitmapImageRep(bitmap);
  const auto part = image->imageByCroppingToRect({{4, 2}, {5, 30}});
  EXPECT_EQ(part->extent(), NSMakeRect(4, 2, 5, 8));
  const auto pixels = part->bitmap();
  EXPECT_EQ(pixelAt(*pixels, 0, 7), pixelAt(*bitmap, 4, 7));
  // A blur of the part sees nothing of what was cut away.
  auto alone = CIImage::initWithBitmapImageRep(pixels);
  std::shared_ptr<NSBitmapImageRep> results[2];
  for (int i = 0; i < 2; ++i) {
    const auto filter = CIFilter::filterWithName("CIGaussianBlur");
    filter->setInputImage(i == 0 ? part : alone);
    filter->setValue(NSNumber::numberWithInteger(2), "inputRadius");
    results[i] = filter->outputImage()->bitmap();
  }
  EXPECT_EQ(maxDifference(*results[0], *results[1]), 0);
  EXPECT_EQ(image->imageByCroppingToRect({{40, 0}, {5, 5}}), nullptr);
  EXPECT_EQ(CIImage::initWithBitmapImageRep(nullptr), nullptr);
  EXPECT_EQ(CIImage::initWithBitmapImageRep(NSBitmapImageRep::create(0, 4)), nullptr);
}

// A colour filter changes the edges of an endless picture too.
TEST(CIImage, ColourFiltersOnEndlessPictures) {
  const auto bitmap = plainBitmap(4, 4, {64, 64, 64, 255});
  const auto invert = CIFilter::filterWithName("CIColorInvert");
  invert->setInputImage(CIImage::initWithBitmapImageRep(bitmap)->imageByClampingToExtent());
  const auto part = invert->outputImage()->imageByCroppingToRect({{-3, -3}, {12, 12}})->bitmap();
  for (const int64_t at : {0, 5, 11})
    EXPECT_EQ(pixelAt(*part, at, at), (Pixel{249, 249, 249, 255}));
}

}  // namespace
