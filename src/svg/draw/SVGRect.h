#pragma once

#include <algorithm>
#include <limits>

namespace SVGNative {

/// A closed range of numbers; empty as constructed.
struct Interval {
  float min = std::numeric_limits<float>::infinity();
  float max = -std::numeric_limits<float>::infinity();

  bool operator==(const Interval&) const = default;
  constexpr bool IsEmpty() const { return !(min <= max); }
  constexpr float Length() const { return IsEmpty() ? 0.0f : max - min; }
  constexpr bool Contains(float value) const { return min <= value && value <= max; }
  constexpr bool Contains(const Interval& other) const {
    return other.IsEmpty() || (Contains(other.min) && Contains(other.max));
  }
  constexpr Interval Intersection(const Interval& other) const {
    const Interval common{std::max(min, other.min), std::min(max, other.max)};
    return common.IsEmpty() ? Interval{} : common;
  }
  /// The smallest range holding both.
  constexpr Interval Union(const Interval& other) const {
    return {std::min(min, other.min), std::max(max, other.max)};
  }
};

/// A box of points, edges included; empty as constructed. A box without width or height still
/// holds points: the box of a horizontal line is not empty.
struct Rect {
  Interval x;
  Interval y;

  static constexpr Rect FromSize(float left, float top, float width, float height) {
    return {{left, left + width}, {top, top + height}};
  }
  bool operator==(const Rect&) const = default;
  constexpr bool IsEmpty() const { return x.IsEmpty() || y.IsEmpty(); }
  constexpr float Width() const { return x.Length(); }
  constexpr float Height() const { return y.Length(); }
  constexpr bool Contains(float px, float py) const { return x.Contains(px) && y.Contains(py); }
  constexpr bool Contains(const Rect& other) const {
    return other.IsEmpty() || (x.Contains(other.x) && y.Contains(other.y));
  }
  constexpr Rect Intersection(const Rect& other) const {
    const Rect common{x.Intersection(other.x), y.Intersection(other.y)};
    return common.IsEmpty() ? Rect{} : common;
  }
  /// The smallest box holding both.
  constexpr Rect Union(const Rect& other) const {
    if (IsEmpty()) return other;
    if (other.IsEmpty()) return *this;
    return {x.Union(other.x), y.Union(other.y)};
  }
};

}  // namespace SVGNative
