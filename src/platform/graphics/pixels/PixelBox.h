#pragma once

#include <algorithm>
#include <cstdint>

/// A half-open box of device pixels: columns x0 to x1 - 1, rows y0 to y1 - 1, row 0 at the top.
struct PixelBox {
  int32_t x0 = 0;
  int32_t y0 = 0;
  int32_t x1 = 0;
  int32_t y1 = 0;

  bool operator==(const PixelBox&) const = default;
  bool empty() const { return x0 >= x1 || y0 >= y1; }
  /// Sides; zero or less for an empty box.
  int64_t width() const { return int64_t{x1} - x0; }
  int64_t height() const { return int64_t{y1} - y0; }
  bool contains(const PixelBox& other) const {
    return other.x0 >= x0 && other.x1 <= x1 && other.y0 >= y0 && other.y1 <= y1;
  }
};

/// The common part; an empty box (not always the same one) when there is none.
inline PixelBox intersection(const PixelBox& a, const PixelBox& b) {
  return {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
}
