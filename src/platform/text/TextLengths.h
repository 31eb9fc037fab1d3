#pragma once

#include <algorithm>
#include <cmath>

/// Positions that differ by less are the same: sums of advances are not exact.
inline constexpr double kPositionTolerance = 1e-6;

/// Longest indent, spacing or height that layout reckons with, points; longer than any canvas, and
/// short enough for sums of a million of them to stay exact to the tolerance.
inline constexpr double kMaxLayoutLength = 1e9;

/// A length of a paragraph style made fit for layout: 0 for NaN, bounded otherwise.
inline double layoutLength(double value) {
  return std::isnan(value) ? 0 : std::clamp(value, -kMaxLayoutLength, kMaxLayoutLength);
}
