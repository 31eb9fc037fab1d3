#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Conversion between bitmaps (8-bit sRGB codes, premultiplied) and what filters compute with:
/// linear light, premultiplied, single precision, 1 for full light and for opaque.
/// Transfer functions: IEC 61966-2-1.

/// Linear light of an sRGB value; mirrored for negative ones.
double linearFromCoded(double value);
/// The inverse.
double codedFromLinear(double value);

struct LinearLightTables {
  /// Linear light of each code.
  std::array<float, 256> linear;
  /// Nearest code of linear light, by round(65535 x); exact for the light of every code.
  std::array<uint8_t, 65536> code;
  /// 255 / alpha; 0 for alpha 0.
  std::array<float, 256> unpremultiply;
};
const LinearLightTables& linearLightTables();

/// The straight code of a premultiplied one: round(255 c / alpha), at most 255; 0 for alpha 0.
inline uint8_t straightCode(const LinearLightTables& tables, uint8_t premultiplied, uint8_t alpha) {
  const float code = static_cast<float>(premultiplied) * tables.unpremultiply[alpha] + 0.5F;
  return static_cast<uint8_t>(code < 255.0F ? code : 255.0F);
}
/// Undoes straightCode exactly for codes up to alpha.
inline uint8_t premultipliedCode(unsigned straight, unsigned alpha) {
  return static_cast<uint8_t>((straight * alpha + 127) / 255);
}

/// Weights of red, green and blue.
using LumaWeights = std::array<float, 3>;

/// Writes 4 floats for each of `count` pixels.
void decodePixels(const uint8_t* pixels, size_t count, float* out);
/// Writes the weighted sum of the premultiplied linear colours of each pixel.
void decodeLuma(const uint8_t* pixels, size_t count, const LumaWeights& weights, float* out);
/// Writes `count` pixels: colours clamped to 0 to alpha, alpha to 0 to 1, rounded to nearest.
void encodePixels(const float* values, size_t count, uint8_t* out);

/// Light, 0 to 1 after clamping, as an index of LinearLightTables::code.
inline int32_t codeIndex(float light) {
  const float clamped = light > 0 ? (light < 1 ? light : 1.0F) : 0.0F;
  return static_cast<int32_t>(clamped * 65535.0F + 0.5F);
}
