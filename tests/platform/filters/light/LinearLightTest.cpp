#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "platform/filters/light/LinearLight.h"
#include "platform/filters/light/PlanarPixels.h"

namespace {

struct Conversions {
  const char* whose;
  void (*linearFromCodes)(const uint8_t*, size_t, float*);
  void (*codesFromLinear)(const float*, size_t, uint8_t*);
  void (*evaluateCubics)(const HalfOctaveCubics&, const float*, size_t, float*);
};
constexpr Conversions kConversions[] = {
    {"this processor's", linearFromCodes, codesFromLinear, evaluateCubics},
    {"any processor's", linearFromCodesPlain, codesFromLinearPlain, evaluateCubicsPlain}};

std::vector<float> manyLights() {
  std::vector<float> lights;
  for (int i = -2000; i <= 62000; ++i) lights.push_back(static_cast<float>(i) / 60000.0F);
  lights.insert(lights.end(), {-1e30F, 1e30F, 1e-30F, std::numeric_limits<float>::infinity()});
  return lights;
}

TEST(LinearLight, LightOfEveryCode) {
  std::vector<uint8_t> codes(256);
  std::iota(codes.begin(), codes.end(), uint8_t{0});
  for (const Conversions& convert : kConversions) {
    std::vector<float> lights(256);
    convert.linearFromCodes(codes.data(), 256, lights.data());
    for (size_t code = 0; code < 256; ++code) {
      const double exact = linearFromCoded(static_cast<double>(code) / 255);
      EXPECT_NEAR(lights[code], exact, 1.5e-6) << convert.whose << code;
      // Whether a loop's vectors or its tail computed it, and in the table.
      float alone;
      convert.linearFromCodes(&codes[code], 1, &alone);
      EXPECT_EQ(alone, lights[code]) << convert.whose << code;
      EXPECT_EQ(linearLightTables().linear.values[code], alone) << code;
    }
    std::vector<uint8_t> again(256);
    convert.codesFromLinear(lights.data(), 256, again.data());
    EXPECT_EQ(again, codes) << convert.whose;
  }
}

TEST(LinearLight, NearestCodeOfAnyLight) {
  const std::vector<float> lights = manyLights();
  for (const Conversions& convert : kConversions) {
    std::vector<uint8_t> codes(lights.size());
    convert.codesFromLinear(lights.data(), lights.size(), codes.data());
    for (size_t i = 0; i < lights.size(); ++i) {
      const double light = std::clamp(static_cast<double>(lights[i]), 0.0, 1.0);
      ASSERT_NEAR(codes[i], 255 * codedFromLinear(light), 0.51) << convert.whose << lights[i];
      uint8_t alone;
      convert.codesFromLinear(&lights[i], 1, &alone);
      ASSERT_EQ(alone, codes[i]) << convert.whose << lights[i];
    }
    const float nan = std::numeric_limits<float>::quiet_NaN();
    uint8_t code = 99;
    convert.codesFromLinear(&nan, 1, &code);
    EXPECT_EQ(code, 0) << convert.whose;
  }
}

TEST(LinearLight, CurvesAreFollowedOverAllHalfOctaves) {
  const auto function = [](double light) { return std::pow(light, 0.79) - 0.5 * light; };
  const HalfOctaveCubics cubics = makeCubics(function);
  const std::vector<float> lights = manyLights();
  for (const Conversions& convert : kConversions) {
    std::vector<float> values(lights.size());
    convert.evaluateCubics(cubics, lights.data(), lights.size(), values.data());
    for (size_t i = 0; i < lights.size(); ++i) {
      const double light = std::clamp(static_cast<double>(lights[i]), 0x1p-16, 1.0);
      ASSERT_NEAR(values[i], function(light), 1e-5) << convert.whose << lights[i];
    }
  }
}

TEST(CodeTables, ValuesKeepTheirBits) {
  const auto function = [](int code) { return -1e-9F + 3e5F / static_cast<float>(code + 1); };
  std::vector<uint8_t> codes(300);
  std::iota(codes.begin(), codes.end(), uint8_t{17});
  for (const auto& [bits, error] : {std::pair(TableBits::k24, 0x1p-16), {TableBits::k32, 0}}) {
    const FloatTable table = makeFloatTable(bits, function);
    for (const size_t count : {1, 63, 64, 65, 300}) {
      std::vector<float> values(count + 1, -7);
      lookUpFloats(table, codes.data(), count, values.data());
      for (size_t i = 0; i < count; ++i) {
        ASSERT_EQ(values[i], table.values[codes[i]]) << i << " of " << count;
        ASSERT_NEAR(values[i], function(codes[i]), values[i] * error);
      }
      EXPECT_EQ(values[count], -7) << "nothing is written beyond";
    }
  }
}

TEST(PlanarPixels, EveryPremultipliedPixelSurvivesSplittingAndJoining) {
  const LinearLightTables& tables = linearLightTables();
  for (unsigned alpha = 0; alpha < 256; ++alpha) {
    std::vector<uint32_t> pixels;
    for (unsigned c = 0; c <= alpha; ++c) pixels.push_back(c | c << 8 | c << 16 | alpha << 24);
    PlanarPixels codes;
    splitPixels(pixels.data(), pixels.size(), codes);
    for (unsigned c = 0; c <= alpha; ++c) {
      const auto premultiplied = static_cast<uint8_t>(c);
      ASSERT_EQ(codes.channels[1][c],
                straightCode(tables, premultiplied, static_cast<uint8_t>(alpha)));
    }
    PlanarPixels stored = codes;
    roundTrip(stored);
    std::vector<uint32_t> joined(pixels.size());
    joinPixels(stored, joined.data());
    ASSERT_EQ(joined, pixels) << alpha;
  }
}

TEST(PlanarPixels, LookUpsInVectorsAndByteByByteAgree) {
  std::mt19937 random(8);
  CodeTable table;
  for (uint8_t& code : table) code = static_cast<uint8_t>(random());
  std::vector<uint8_t> bytes(1000);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  for (const KeptBytes kept : {KeptBytes::kNone, KeptBytes::kAlphas}) {
    for (const size_t count : {0, 4, 60, 64, 68, 252, 1000}) {
      std::vector<uint8_t> fast(count);
      std::vector<uint8_t> plain(count);
      lookUpBytes(table, kept, bytes.data(), count, fast.data());
      lookUpBytesScalar(table, kept, bytes.data(), count, plain.data());
      EXPECT_EQ(fast, plain) << count;
      for (size_t i = 3; i < count; i += 4) {
        EXPECT_EQ(plain[i], kept == KeptBytes::kAlphas ? bytes[i] : table[bytes[i]]);
      }
    }
  }
}

}  // namespace
