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

/// Smallest box holding both; empty boxes do not count.
inline PixelBox unionBox(const PixelBox& a, const PixelBox& b) {
  if (a.empty()) return b;
  if (b.empty()) return a;
  return {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
}

/// The box moved, then grown on all sides; an empty box stays as it is. Edges stay within +-2^30.
inline PixelBox movedAndGrown(const PixelBox& box, int64_t dx, int64_t dy, int64_t grow) {
  if (box.empty()) return box;
  const auto edge = [](int64_t v) {
    constexpr int64_t kFarthest = int64_t{1} << 30;
    return static_cast<int32_t>(std::max(-kFarthest, std::min(kFarthest, v)));
  };
  return {edge(box.x0 + dx - grow), edge(box.y0 + dy - grow), edge(box.x1 + dx + grow),
          edge(box.y1 + dy + grow)};
}
