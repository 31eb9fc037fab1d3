#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/outline/PathData.h"

/// What to do with pixels that a shape covers in part.
enum class Antialias : uint8_t {
  off,  ///< paint every pixel that the shape touches with a positive area
  on,   ///< paint by the covered area
};

/// The grid that edges are snapped to: 1/256 pixel. Fine enough for 8-bit coverage, and coarse
/// enough to hide the rounding noise of transforms from the touched-pixel rule.
namespace grid {

inline constexpr int kShift = 8;
inline constexpr int64_t kOne = int64_t{1} << kShift;
/// The area of a whole pixel: twice the product of its sides, so that the area of the trapezoid
/// under an edge needs no halving.
inline constexpr int64_t kFullArea = 2 * kOne * kOne;
/// Far outside every bitmap, and still exact when multiplied and subtracted in 64 bits.
inline constexpr double kFarthest = 1e12;

/// Nearest grid line of a device coordinate, halves to even. NaN and what lies beyond kFarthest
/// is moved to kFarthest.
inline int64_t snap(double v) {
  return std::lrint(std::max(-kFarthest, std::min(kFarthest, v)) * static_cast<double>(kOne));
}

/// Coverage 0..255 of an accumulated signed area, rounded the same way for both signs.
inline uint8_t coverOfArea(int64_t area) {
  const int64_t magnitude = std::min(area < 0 ? -area : area, kFullArea);
  return static_cast<uint8_t>((magnitude * 255 + kFullArea / 2) / kFullArea);
}

}  // namespace grid

/// A point in grid units.
struct GridPoint {
  int64_t x = 0;
  int64_t y = 0;
};

/// Smallest and largest coordinates of something, in device pixels; empty when x0 > x1.
struct DeviceBounds {
  double x0 = HUGE_VAL;
  double y0 = HUGE_VAL;
  double x1 = -HUGE_VAL;
  double y1 = -HUGE_VAL;

  DeviceBounds() = default;
  DeviceBounds(double left, double top, double right, double bottom)
      : x0(left), y0(top), x1(right), y1(bottom) {}
  explicit DeviceBounds(const PixelBox& box) : DeviceBounds(box.x0, box.y0, box.x1, box.y1) {}

  bool empty() const { return !(x0 <= x1 && y0 <= y1); }
  void add(NSPoint p) {
    x0 = std::min(x0, p.x);
    y0 = std::min(y0, p.y);
    x1 = std::max(x1, p.x);
    y1 = std::max(y1, p.y);
  }
  void grow(double by) {
    x0 -= by;
    y0 -= by;
    x1 += by;
    y1 += by;
  }
};

/// The pixels of `box` that `bounds` touches. Bounds of any size, also infinite ones.
inline PixelBox pixelsTouched(const DeviceBounds& bounds, const PixelBox& box) {
  if (bounds.empty() || box.empty()) return {};
  const auto within = [](double v, int32_t low, int32_t high) {
    return static_cast<int32_t>(
        std::max(static_cast<double>(low), std::min(static_cast<double>(high), v)));
  };
  return {
      within(std::floor(bounds.x0), box.x0, box.x1), within(std::floor(bounds.y0), box.y0, box.y1),
      within(std::ceil(bounds.x1), box.x0, box.x1), within(std::ceil(bounds.y1), box.y0, box.y1)};
}
