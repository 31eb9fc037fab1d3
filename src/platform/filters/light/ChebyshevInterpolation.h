#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

/// Coefficients, lowest first, of the polynomial that agrees with a function at the Chebyshev
/// points between two places, which makes it nearly the best of its degree there (kCount - 1). By
/// Newton's divided differences; of use for a handful of points.
template <size_t kCount, class Function>
std::array<double, kCount> interpolated(double from, double to, const Function& function) {
  std::array<double, kCount> x;
  std::array<double, kCount> difference;
  for (size_t k = 0; k < kCount; ++k) {
    const double angle = std::numbers::pi * static_cast<double>(2 * k + 1) / (2 * kCount);
    x[k] = (from + to) / 2 + (to - from) / 2 * std::cos(angle);
    difference[k] = function(x[k]);
  }
  for (size_t order = 1; order < kCount; ++order) {
    for (size_t k = kCount - 1; k >= order; --k) {
      difference[k] = (difference[k] - difference[k - 1]) / (x[k] - x[k - order]);
    }
  }
  // Newton's form multiplied out.
  std::array<double, kCount> powers{difference[kCount - 1]};
  for (size_t k = kCount - 1; k-- > 0;) {
    for (size_t j = kCount - 1; j > 0; --j) powers[j] = powers[j - 1] - x[k] * powers[j];
    powers[0] = difference[k] - x[k] * powers[0];
  }
  return powers;
}
