#pragma once

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
