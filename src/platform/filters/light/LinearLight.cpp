#include "platform/filters/light/LinearLight.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "platform/filters/light/ChebyshevInterpolation.h"
#include "platform/filters/light/CodeKernelsAVX512.h"
#include "platform/filters/light/PlanarPixels.h"
#include "platform/foundation/Convert.h"
#include "platform/machine/AVX512.h"
#include "platform/machine/TargetClones.h"

namespace {

constexpr size_t kBatch = 128;

/// Linear light of an sRGB code, as a function that loops are vectorised with: a minimax polynomial
/// for ((x + 0.055) / 1.055)^2.4, off by less than 1.5e-6.
inline float lightOfCode(float code) {
  constexpr float kPowers[] = {0.000217018092F, -0.00981827828F, 0.358527177F,
                               1.29546691F,     -1.50979083F,    1.71241172F,
                               -1.33266999F,    0.605846815F,    -0.120191102F};
  constexpr float kLastOfLine = 10.5F;
  const float x = code * (1.0F / 255);
  const float t = x * (1 / 1.055F) + 0.055F / 1.055F;
  float power = kPowers[8];
  for (int i = 7; i >= 0; --i) power = power * t + kPowers[i];
  return code <= kLastOfLine ? x * (1 / 12.92F) : power;
}

/// The nearest code of a light: a minimax polynomial in its square root for 1.055 x^(1/2.4) -
/// 0.055, off by less than 0.01 of a code in single precision.
inline float codeOfLight(float light) {
  constexpr float kPowers[] = {-0.0466761074F, 1.73779025F, -4.12976956F, 19.5566858F,
                               -69.6781511F,   172.686069F, -291.324756F, 326.723603F,
                               -232.472931F,   94.8034801F, -16.8553537F};
  constexpr float kLastOfLine = 0.0031308F;
  constexpr float kLeast = 1.0F / 65536;  // has code 0, and so has what is no number
  const float atLeast = light > kLeast ? light : kLeast;
  const float x = atLeast < 1 ? atLeast : 1.0F;
  const float root = std::sqrt(x);
  float power = kPowers[10];
  for (int i = 9; i >= 0; --i) power = power * root + kPowers[i];
  return 255.0F * (x <= kLastOfLine ? 12.92F * x : power) + 0.5F;
}

LinearLightTables makeTables() {
  LinearLightTables tables{};
  tables.linear = makeFloatTable(TableBits::k32,
                                 [](int code) { return lightOfCode(static_cast<float>(code)); });
  for (int code = 0; code < 256; ++code) {
    tables.unpremultiply[code] = code > 0 ? 255.0F / static_cast<float>(code) : 0.0F;
  }
  return tables;
}

/// Alphas this close to 1 are opaque: sums of weights do not add up to 1 exactly.
constexpr float kOpaque = 0.9999F;

TARGET_CLONES bool allOpaque(const float* values, size_t count) {
  const auto length = static_cast<int32_t>(count * 4);
  int32_t translucent = 0;
  for (int32_t i = 3; i < length; ++i) {
    translucent |= ((i & 3) == 3 ? 1 : 0) & (values[i] < kOpaque ? 1 : 0);
  }
  return translucent == 0;
}

void encodeAny(const float* values, size_t count, uint8_t* out) {
  float straight[kBatch * 4] = {};
  for (size_t i = 0; i < count; ++i) {
    const float scale = 1.0F / std::clamp(values[i * 4 + 3], 0.00001F, 1.0F);
    for (size_t c = 0; c < 4; ++c) straight[i * 4 + c] = values[i * 4 + c] * scale;
  }
  codesFromLinear(straight, count * 4, out);
  for (size_t i = 0; i < count; ++i, values += 4, out += 4) {
    const auto alpha =
        static_cast<uint8_t>(roundedHalfUp(std::clamp(values[3], 0.0F, 1.0F) * 255.0F));
    for (size_t c = 0; c < 3; ++c) out[c] = premultipliedCode(out[c], alpha);
    out[3] = alpha;
  }
}

}  // namespace

double linearFromCoded(double value) {
  const double x = std::fabs(value);
  const double light = x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
  return std::copysign(light, value);
}

double codedFromLinear(double value) {
  const double x = std::fabs(value);
  const double coded = x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1 / 2.4) - 0.055;
  return std::copysign(coded, value);
}

const LinearLightTables& linearLightTables() {
  static const LinearLightTables tables = makeTables();
  return tables;
}

HalfOctaveCubics makeCubics(const std::function<double(double)>& function) {
  constexpr uint32_t kFirst = 0xDE;  // the upper bits of 2^-16
  HalfOctaveCubics cubics;
  for (uint32_t piece = kFirst; piece < kFirst + 32; ++piece) {
    const double from = std::bit_cast<float>(piece << 22);
    const double to = std::bit_cast<float>((piece + 1) << 22);
    const auto powers = interpolated<4>(from, to, function);
    for (size_t k = 0; k < 4; ++k) cubics.powers[k][piece % 32] = static_cast<float>(powers[k]);
  }
  return cubics;
}

TARGET_CLONES void evaluateCubicsPlain(const HalfOctaveCubics& __restrict function,
                                       const float* __restrict lights, size_t count,
                                       float* __restrict values) {
  for (size_t i = 0; i < count; ++i) {
    const float atLeast = lights[i] > 1.0F / 65536 ? lights[i] : 1.0F / 65536;
    const float light = atLeast < 0.99999994F ? atLeast : 0.99999994F;
    const uint32_t piece = std::bit_cast<uint32_t>(light) >> 22 & 31;
    float value = function.powers[3][piece];
    for (int k = 2; k >= 0; --k) value = value * light + function.powers[k][piece];
    values[i] = value;
  }
}

void evaluateCubics(const HalfOctaveCubics& function, const float* lights, size_t count,
                    float* values) {
  (hasAVX512VBMI() ? evaluateCubicsAVX512 : evaluateCubicsPlain)(function, lights, count, values);
}

TARGET_CLONES void linearFromCodesPlain(const uint8_t* __restrict codes, size_t count,
                                        float* __restrict lights) {
  for (size_t i = 0; i < count; ++i) lights[i] = lightOfCode(codes[i]);
}

TARGET_CLONES void codesFromLinearPlain(const float* __restrict lights, size_t count,
                                        uint8_t* __restrict codes) {
  for (size_t i = 0; i < count; ++i) {
    codes[i] = static_cast<uint8_t>(static_cast<int32_t>(codeOfLight(lights[i])));
  }
}

void linearFromCodes(const uint8_t* codes, size_t count, float* lights) {
  if (hasAVX512VBMI()) {
    lookUpFloatsAVX512(linearLightTables().linear, codes, count, lights);
  } else {
    linearFromCodesPlain(codes, count, lights);
  }
}

void codesFromLinear(const float* lights, size_t count, uint8_t* codes) {
  if (hasAVX512VBMI()) {
    // Off by less than 0.003 of a code.
    static const HalfOctaveCubics curve =
        makeCubics([](double light) { return 255 * codedFromLinear(light); });
    codesFromLinearAVX512(curve, lights, count, codes);
  } else {
    codesFromLinearPlain(lights, count, codes);
  }
}

void decodePixels(const uint8_t* pixels, size_t count, float* out) {
  const LinearLightTables& tables = linearLightTables();
  for (size_t begin = 0; begin < count; begin += kBatch) {
    const size_t length = std::min(kBatch, count - begin);
    const uint8_t* in = pixels + begin * 4;
    float* const values = out + begin * 4;
    if (allOpaque(reinterpret_cast<const uint32_t*>(in), length)) {
      // Full light and opaque have the same code, and nearly the same value.
      linearFromCodes(in, length * 4, values);
    } else {
      for (size_t i = 0; i < length; ++i) decodePixel(tables, in + i * 4, values + i * 4);
    }
  }
}

void decodeChannel(const uint8_t* pixels, size_t count, size_t channel, float* out) {
  uint8_t codes[kColorBatch];
  for (size_t begin = 0; begin < count; begin += kColorBatch) {
    const size_t length = std::min(kColorBatch, count - begin);
    channelOf(reinterpret_cast<const uint32_t*>(pixels) + begin, length, static_cast<int>(channel),
              codes);
    linearFromCodes(codes, length, out + begin);
  }
}

void encodeChannels(const float* red, const float* green, const float* blue, size_t count,
                    uint32_t* out) {
  PlanarPixels codes;
  codes.opaque = true;
  std::fill_n(codes.channels[3], kColorBatch, uint8_t{255});
  for (size_t begin = 0; begin < count; begin += kColorBatch) {
    codes.count = std::min(kColorBatch, count - begin);
    codesFromLinear(red + begin, codes.count, codes.channels[0]);
    codesFromLinear(green + begin, codes.count, codes.channels[1]);
    codesFromLinear(blue + begin, codes.count, codes.channels[2]);
    joinPixels(codes, out + begin);
  }
}

void decodeLuma(const uint8_t* pixels, size_t count, const LumaWeights& weights, float* out) {
  float batch[kBatch * 4];
  for (size_t begin = 0; begin < count; begin += kBatch) {
    const size_t length = std::min(kBatch, count - begin);
    decodePixels(pixels + begin * 4, length, batch);
    for (size_t i = 0; i < length; ++i) {
      const float* p = batch + i * 4;
      out[begin + i] = weights[0] * p[0] + weights[1] * p[1] + weights[2] * p[2];
    }
  }
}

void encodePixels(const float* values, size_t count, uint8_t* out) {
  for (size_t begin = 0; begin < count; begin += kBatch) {
    const size_t length = std::min(kBatch, count - begin);
    const float* in = values + begin * 4;
    if (allOpaque(in, length)) {
      codesFromLinear(in, length * 4, out + begin * 4);
    } else {
      encodeAny(in, length, out + begin * 4);
    }
  }
}
