#pragma once

#include <concepts>
#include <cstdint>
#include <limits>

/// Truncates toward zero and clamps to the range of the integer type; NaN gives 0.
template <class Integer>
constexpr Integer clampToInteger(double value) {
  using Limits = std::numeric_limits<Integer>;
  if (!(value == value)) return 0;
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  // The largest 64-bit integers round up to the power of two above them.
  if (value >= static_cast<double>(Limits::max())) return Limits::max();
  return static_cast<Integer>(value);
}

/// A value from 0 to 2^30 plus one half, truncated: halves go up. Unlike lround this is no call,
/// and vector units convert to signed integers of 32 bits only.
template <std::floating_point Real>
constexpr int32_t roundedHalfUp(Real value) {
  constexpr Real kHalf = Real{1} / 2;
  return static_cast<int32_t>(value + kHalf);
}
