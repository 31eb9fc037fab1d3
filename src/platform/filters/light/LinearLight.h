#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "platform/filters/light/CodeTables.h"

/// Conversion between bitmaps (8-bit sRGB codes, premultiplied) and what filters compute with:
/// linear light, premultiplied, single precision, 1 for full light and for opaque.
/// Transfer functions: IEC 61966-2-1.

/// Linear light of an sRGB value; mirrored for negative ones.
double linearFromCoded(double value);
/// The inverse.
double codedFromLinear(double value);

struct LinearLightTables {
  /// Linear light of each code.
  FloatTable linear;
  /// 255 / alpha; 0 for alpha 0.
  std::array<float, 256> unpremultiply;
};
const LinearLightTables& linearLightTables();

/// Linear light of `count` codes.
void linearFromCodes(const uint8_t* codes, size_t count, float* lights);
/// The nearest code of `count` lights, clamped to 0 to 1; exact for the light of every code, and
/// within 0.01 of a code from the exact value elsewhere.
void codesFromLinear(const float* lights, size_t count, uint8_t* codes);
/// What the two come to on processors without wide table look-ups: the same lights, and codes that
/// differ where a light lies halfway between two.
void linearFromCodesPlain(const uint8_t* codes, size_t count, float* lights);
void codesFromLinearPlain(const float* lights, size_t count, uint8_t* codes);

/// The straight code of a premultiplied one: round(255 c / alpha), at most 255; 0 for alpha 0.
inline uint8_t straightCode(const LinearLightTables& tables, uint8_t premultiplied, uint8_t alpha) {
  const float code = static_cast<float>(premultiplied) * tables.unpremultiply[alpha] + 0.5F;
  return static_cast<uint8_t>(code < 255.0F ? code : 255.0F);
}
/// Undoes straightCode exactly for codes up to alpha.
inline uint8_t premultipliedCode(unsigned straight, unsigned alpha) {
  return static_cast<uint8_t>((straight * alpha + 127) / 255);
}

/// A function of light from 2^-16 to 1, as cubics over halves of octaves: the upper ten bits of a
/// float, modulo 32, number the piece. powers[k] has the coefficients of light^k.
struct HalfOctaveCubics {
  alignas(64) std::array<std::array<float, 32>, 4> powers;
};
/// A function of light as piecewise cubics; it should be smooth and is taken to be that of 2^-16
/// below there.
HalfOctaveCubics makeCubics(const std::function<double(double)>& function);
/// The function's values for `count` lights, clamped to 2^-16 to 1.
void evaluateCubics(const HalfOctaveCubics& function, const float* lights, size_t count,
                    float* values);
void evaluateCubicsPlain(const HalfOctaveCubics& function, const float* lights, size_t count,
                         float* values);

/// Weights of red, green and blue.
using LumaWeights = std::array<float, 3>;

/// Writes the 4 floats of one pixel.
inline void decodePixel(const LinearLightTables& tables, const uint8_t* in, float* out) {
  if (in[3] == 255) {
    for (int c = 0; c < 3; ++c) out[c] = tables.linear.values[in[c]];
    out[3] = 1;
    return;
  }
  const float alpha = static_cast<float>(in[3]) * (1.0F / 255);
  for (int c = 0; c < 3; ++c) {
    out[c] = alpha * tables.linear.values[straightCode(tables, in[c], in[3])];
  }
  out[3] = alpha;
}
/// Writes 4 floats for each of `count` pixels.
void decodePixels(const uint8_t* pixels, size_t count, float* out);
/// Writes one of red, green and blue (0 to 2) of opaque pixels.
void decodeChannel(const uint8_t* pixels, size_t count, size_t channel, float* out);
/// Writes the weighted sum of the premultiplied linear colours of each pixel.
void decodeLuma(const uint8_t* pixels, size_t count, const LumaWeights& weights, float* out);
/// Writes `count` opaque pixels from the lights of their channels.
void encodeChannels(const float* red, const float* green, const float* blue, size_t count,
                    uint32_t* out);
/// Writes `count` pixels: colours clamped to 0 to alpha, alpha to 0 to 1, rounded to nearest.
void encodePixels(const float* values, size_t count, uint8_t* out);
