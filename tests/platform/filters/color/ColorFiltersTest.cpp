#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numbers>

#include "platform/filters/CIFilter.h"
#include "platform/foundation/values/NSNumber.h"
#include "support/FilterChart.h"
#include "support/ReferenceFilters.h"

namespace {

using reference::controls;
using reference::Rgb;
using reference::sepia;

Rgb each(const Rgb& c, const std::function<double(double)>& f) {
  return {f(c[0]), f(c[1]), f(c[2])};
}

std::vector<int> colorOf(const Pixel& p) {
  return {p[0], p[1], p[2]};
}

// The figures that go with the filters' definitions, for four colours each.
TEST(ColorFilters, PublishedValues) {
  const Pixel colors[] = {
      {64, 128, 192, 255}, {200, 30, 90, 255}, {128, 128, 128, 255}, {255, 255, 0, 255}};
  struct Case {
    std::string_view filter, key;
    double value;
    std::vector<int> out[4];
  };
  const double pi = std::numbers::pi;
  const Case cases[] = {
      {"CIColorInvert", "", 0, {{249, 229, 183}, {174, 254, 243}, {229, 229, 229}, {0, 0, 255}}},
      {"CIExposureAdjust",
       "inputEV",
       1,
       {{90, 176, 255}, {255, 45, 125}, {176, 176, 176}, {255, 255, 0}}},
      {"CIExposureAdjust",
       "inputEV",
       -1,
       {{44, 92, 140}, {146, 19, 64}, {92, 92, 92}, {188, 188, 0}}},
      {"CIGammaAdjust", "inputPower", 2, {{9, 61, 144}, {156, 1, 26}, {61, 61, 61}, {255, 255, 0}}},
      {"CIGammaAdjust",
       "inputPower",
       0.5,
       {{131, 181, 221}, {226, 95, 153}, {181, 181, 181}, {255, 255, 0}}},
      {"CIHueAdjust",
       "inputAngle",
       1,
       {{168, 96, 189}, {159, 96, 0}, {128, 128, 128}, {119, 255, 163}}},
      {"CIHueAdjust",
       "inputAngle",
       pi,
       {{161, 121, 0}, {0, 141, 117}, {128, 128, 128}, {238, 238, 255}}},
      {"CISepiaTone",
       "inputIntensity",
       1,
       {{145, 115, 57}, {127, 94, 38}, {148, 118, 61}, {248, 246, 239}}},
      {"CISepiaTone",
       "inputIntensity",
       0.5,
       {{114, 122, 145}, {169, 71, 70}, {139, 123, 101}, {252, 250, 175}}},
      {"CIColorControls",
       "inputSaturation",
       0,
       {{125, 125, 125}, {104, 104, 104}, {128, 128, 128}, {247, 247, 247}}},
      {"CIColorControls",
       "inputSaturation",
       2,
       {{0, 131, 237}, {255, 0, 72}, {128, 128, 128}, {255, 255, 0}}},
      {"CIColorControls",
       "inputContrast",
       1.5,
       {{0, 77, 194}, {206, 0, 0}, {77, 77, 77}, {255, 255, 0}}},
      {"CIColorControls",
       "inputBrightness",
       0.2,
       {{137, 173, 222}, {228, 127, 149}, {173, 173, 173}, {255, 255, 124}}},
  };
  for (const Case& c : cases) {
    for (size_t i = 0; i < 4; ++i) {
      const auto result = filtered(plainBitmap(3, 2, colors[i]), c.filter, {{c.key, c.value}});
      EXPECT_EQ(colorOf(pixelAt(*result, 2, 1)), c.out[i]) << c.filter << " " << c.value;
    }
  }
}

TEST(ColorFilters, HighlightsAndShadowsOfTheReferenceMatchPublishedValues) {
  struct Case {
    double highlight, shadow;
    Rgb in, out;
  };
  const Case cases[] = {{.75, .5, {.2, .4, .6}, {.176673, .389814, .611994}},
                        {.3, 0, {.2, .4, .6}, {.121308, .288932, .482607}},
                        {1, 1, {.05, .1, .02}, {.205513, .325281, .115429}},
                        {0, -1, {.5, .5, .5}, {.345496, .345496, .345496}}};
  for (const Case& c : cases) {
    const Rgb out = reference::highlightShadow(c.in, c.highlight, c.shadow);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(out[i], c.out[i], 2e-6);
  }
}

/// All colours of some levels: close together where light is least, and at the ends.
std::shared_ptr<NSBitmapImageRep> colorCube() {
  constexpr uint8_t kLevels[] = {0,  1,  2,   3,   4,   7,   11,  17,  30,
                                 51, 77, 100, 128, 165, 200, 231, 254, 255};
  constexpr int64_t kCount = std::size(kLevels);
  auto bitmap = NSBitmapImageRep::create(kCount * kCount, kCount);
  for (int64_t y = 0; y < kCount; ++y) {
    uint8_t* p = bitmap->writableRows(y, y + 1);
    for (int64_t x = 0; x < kCount * kCount; ++x, p += 4) {
      p[0] = kLevels[x % kCount];
      p[1] = kLevels[x / kCount];
      p[2] = kLevels[y];
      p[3] = 255;
    }
  }
  return bitmap;
}

TEST(ColorFilters, AgreeWithDoublePrecisionOnTheChart) {
  struct Case {
    std::string_view filter;
    FilterSettings settings;
    std::function<Rgb(const Rgb&)> color;
  };
  const Case cases[] = {
      {"CIColorInvert", {}, [](const Rgb& c) { return each(c, [](double v) { return 1 - v; }); }},
      {"CIExposureAdjust",
       {{"inputEV", -0.7}},
       [](const Rgb& c) { return each(c, [](double v) { return v * std::exp2(-0.7); }); }},
      {"CIGammaAdjust",
       {{"inputPower", 1.4}},
       [](const Rgb& c) { return each(c, [](double v) { return std::pow(v, 1.4); }); }},
      {"CIColorControls",
       {{"inputSaturation", 0.6}, {"inputBrightness", 0.05}, {"inputContrast", 1.2}},
       [](const Rgb& c) { return controls(c, 0.6, 0.05, 1.2); }},
      {"CIColorControls",
       {{"inputBrightness", -0.1}, {"inputContrast", 0.8}},
       [](const Rgb& c) { return controls(c, 1, -0.1, 0.8); }},
      {"CISepiaTone", {{"inputIntensity", 0.8}}, [](const Rgb& c) { return sepia(c, 0.8); }},
      {"CISepiaTone", {{"inputIntensity", -1.5}}, [](const Rgb& c) { return sepia(c, -1.5); }},
      {"CIHueAdjust", {{"inputAngle", 2.5}}, [](const Rgb& c) { return reference::hue(c, 2.5); }},
      {"CIHighlightShadowAdjust",
       {{"inputHighlightAmount", 0.4}, {"inputShadowAmount", 0.6}},
       [](const Rgb& c) { return reference::highlightShadow(c, 0.4, 0.6); }},
      {"CIHighlightShadowAdjust",
       {{"inputHighlightAmount", 0}},
       [](const Rgb& c) { return reference::highlightShadow(c, 0, 0); }},
      {"CIHighlightShadowAdjust",
       {{"inputShadowAmount", 1}},
       [](const Rgb& c) { return reference::highlightShadow(c, 1, 1); }},
      {"CIHighlightShadowAdjust",
       {{"inputShadowAmount", 0.15}},
       [](const Rgb& c) { return reference::highlightShadow(c, 1, 0.15); }},
      {"CIHighlightShadowAdjust",
       {{"inputHighlightAmount", 0.7}, {"inputShadowAmount", -0.8}},
       [](const Rgb& c) { return reference::highlightShadow(c, 0.7, -0.8); }},
      {"CIHighlightShadowAdjust",
       {{"inputHighlightAmount", 0.2}, {"inputShadowAmount", -0.12}},
       [](const Rgb& c) { return reference::highlightShadow(c, 0.2, -0.12); }},
  };
  for (const Case& c : cases) {
    for (const auto& opaque : {opaqueChart(), colorCube()}) {
      EXPECT_LE(maxDifference(*filtered(opaque, c.filter, c.settings),
                              *reference::runColor(*opaque, c.color)),
                1)
          << c.filter;
    }
    // Where a pixel is partly transparent its straight colour is known to 8 bits only; shadows are
    // lifted steeply.
    const int most = c.filter == "CIHighlightShadowAdjust" ? 3 : 2;
    const auto chart = filterChart();
    EXPECT_LE(maxDifference(*filtered(chart, c.filter, c.settings),
                            *reference::runColor(*chart, c.color)),
              most)
        << c.filter;
  }
}

TEST(ColorFilters, DefaultsThatChangeNothingKeepEveryByte) {
  const auto bitmap = randomBitmap(301, 17, 5);
  for (const auto& [name, key, value] :
       std::initializer_list<std::tuple<std::string_view, std::string_view, double>>{
           {"CIExposureAdjust", "inputEV", 0},
           {"CIColorControls", "inputSaturation", 1},
           {"CIHighlightShadowAdjust", "inputShadowAmount", 0.04},
           {"CISepiaTone", "inputIntensity", 0},
           {"CIHueAdjust", "inputAngle", 0},
           {"CIGammaAdjust", "inputPower", 1}}) {
    const auto result = filtered(bitmap, name, {{key, value}});
    EXPECT_EQ(maxDifference(*result, *bitmap), 0) << name;
    EXPECT_NE(result->bitmapData(), bitmap->bitmapData()) << "a copy, not the argument";
  }
}

struct ChainLink {
  std::string_view filter, key;
  double value;
};

/// Colours that repeat above, hardly any below.
std::shared_ptr<NSBitmapImageRep> halfNoise() {
  auto bitmap = randomBitmap(1500, 80, 3);
  for (int64_t y = 0; y < 40; ++y) {
    uint8_t* p = bitmap->writableRows(y, y + 1);
    for (int64_t x = 0; x < 1500; ++x, p += 4) {
      p[3] = x < 1400 ? 255 : 0;
      for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>(x / 9 * (c + 1)) & p[3];
    }
  }
  return bitmap;
}

// One pass over the picture gives the bytes that six passes with bitmaps between them give.
TEST(ColorFilters, FiltersInARowRoundToEightBitsEach) {
  const ChainLink links[] = {{"CIExposureAdjust", "inputEV", 2.5},
                             {"CIColorControls", "inputSaturation", 1.7},
                             {"CIHighlightShadowAdjust", "inputShadowAmount", 0.5},
                             {"CISepiaTone", "inputIntensity", 0.3},
                             {"CIHueAdjust", "inputAngle", 0.8},
                             {"CIGammaAdjust", "inputPower", 1.6}};
  for (const auto& bitmap : {filterChart(), randomBitmap(700, 5, 3), halfNoise()}) {
    auto image = CIImage::initWithBitmapImageRep(bitmap);
    auto stepwise = bitmap;
    for (const ChainLink& link : links) {
      const auto filter = CIFilter::filterWithName(link.filter);
      filter->setInputImage(image);
      filter->setValue(NSNumber::numberWithDouble(link.value), link.key);
      image = filter->outputImage();
      stepwise = filtered(stepwise, link.filter, {{link.key, link.value}});
    }
    EXPECT_EQ(maxDifference(*image->bitmap(), *stepwise), 0);
    EXPECT_GT(maxDifference(*stepwise, *bitmap), 50);
  }
}

TEST(ColorFilters, KeepAlpha) {
  const auto bitmap = randomBitmap(128, 8, 9);
  const auto result = filtered(bitmap, "CIHueAdjust", {{"inputAngle", 2}});
  for (int64_t x = 0; x < 128; ++x) {
    const Pixel p = pixelAt(*result, x, 3);
    EXPECT_EQ(p[3], pixelAt(*bitmap, x, 3)[3]);
    EXPECT_LE(std::max({p[0], p[1], p[2]}), p[3]);
  }
}

}  // namespace
