#pragma once

#include <bit>
#include <cstdint>

/// Single-precision powers that a loop over them can be vectorised with. Minimax polynomials; a
/// relative error of 1e-5 of light is less than 0.002 of an 8-bit code.

/// Off by less than 2.5e-6, for normal numbers above 0.
inline float log2Approximate(float x) {
  constexpr int32_t kRootHalf = 0x3F3504F3;
  constexpr float kPowers[] = {1.44271350F,   -0.721131861F, 0.479348063F,
                               -0.367490262F, 0.322154313F,  -0.206589893F};
  const auto bits = std::bit_cast<int32_t>(x);
  // The mantissa between the roots of 1/2 and of 2, so that the series is short.
  const int32_t exponent = (bits - kRootHalf) >> 23;
  const float t = std::bit_cast<float>(bits - exponent * (1 << 23)) - 1;
  float series = kPowers[5];
  for (int i = 4; i >= 0; --i) series = series * t + kPowers[i];
  return static_cast<float>(exponent) + t * series;
}

/// Off by less than 3e-6 of the result, for x from -126 to 126.
inline float exp2Approximate(float x) {
  constexpr float kPowers[] = {0.999999285F, 0.693121791F, 0.240247443F, 0.0559178591F,
                               0.00957009662F};
  // Adding this leaves the nearest whole number in the low bits.
  constexpr float kRound = 12582912.0F;
  const float rounded = x + kRound;
  const float f = x - (rounded - kRound);
  float series = kPowers[4];
  for (int i = 3; i >= 0; --i) series = series * f + kPowers[i];
  return std::bit_cast<float>(std::bit_cast<uint32_t>(series) +
                              (std::bit_cast<uint32_t>(rounded) << 23));
}

/// Light so small that every power of it in use is black, and whose logarithm is in range.
constexpr float kLeastLight = 1e-12F;
