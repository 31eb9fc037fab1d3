#pragma once

#include <bit>
#include <cstdint>

/// Single-precision powers that a loop over them can be vectorised with; relative error below
/// 3e-7 for exp2 and absolute below 3e-7 times the exponent for log2.

/// For normal numbers above 0.
inline float log2Approximate(float x) {
  constexpr int32_t kOne = 0x3F800000;
  constexpr int32_t kRootHalf = 0x3F3504F3;
  const auto bits = std::bit_cast<int32_t>(x);
  // The mantissa between the roots of 1/2 and of 2, so that the series is short.
  const int32_t exponent = (bits - kRootHalf) >> 23;
  const float mantissa = std::bit_cast<float>(bits - exponent * (1 << 23));
  static_assert(kOne - kRootHalf < (1 << 23));
  const float t = (mantissa - 1) / (mantissa + 1);
  const float t2 = t * t;
  // 2 / ln 2 * artanh(t).
  const float series = ((((1.0F / 9) * t2 + 1.0F / 7) * t2 + 0.2F) * t2 + 1.0F / 3) * t2 + 1;
  return static_cast<float>(exponent) + 2.88539008F * t * series;
}

/// For x from -1e6 to 1e6; results stay between 2^-127 and 2^128. Clamped as a whole number: a
/// choice between reals would split the loop.
inline float exp2Approximate(float x) {
  // Adding this leaves the nearest whole number in the low bits.
  constexpr float kRound = 12582912.0F;
  const float whole = (x + kRound) - kRound;
  const float f = (x - whole) * 0.693147181F;
  const float series =
      (((((1.0F / 720) * f + 1.0F / 120) * f + 1.0F / 24) * f + 1.0F / 6) * f + 0.5F) * f * f + f;
  const auto unclamped = static_cast<int32_t>(whole);
  const int32_t atLeast = unclamped > -126 ? unclamped : -126;
  const int32_t exponent = atLeast < 127 ? atLeast : 127;
  return (series + 1) * std::bit_cast<float>((exponent + 127) * (1 << 23));
}

/// x^exponent for x from 0 on; 0 counts as 1e-30, so that there is nothing to choose between.
inline float powerApproximate(float x, float exponent) {
  return exp2Approximate(exponent * log2Approximate(x + 1e-30F));
}
