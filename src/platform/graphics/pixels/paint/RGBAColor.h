#pragma once

#include <cstdint>

#include "platform/foundation/Convert.h"

/// Straight (not premultiplied) red, green, blue and alpha, nominally 0 to 1.
struct RGBAColor {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  bool operator==(const RGBAColor&) const = default;
};

/// v forced into 0..1; NaN gives 0.
inline double unitClamp(double v) {
  return v > 0 ? (v < 1 ? v : 1) : 0;
}

inline uint32_t unitToByte(double v) {
  return static_cast<uint32_t>(roundedHalfUp(unitClamp(v) * 255));
}

/// Every component a fraction t of the way from a to b.
inline RGBAColor mixedColor(const RGBAColor& a, const RGBAColor& b, double t) {
  return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t,
          a.blue + (b.blue - a.blue) * t, a.alpha + (b.alpha - a.alpha) * t};
}

/// The pixel of a colour whose alpha is scaled by `alpha`: every component is clamped to 0..1,
/// premultiplied, and rounded to a byte.
inline uint32_t premultipliedPixel(const RGBAColor& c, double alpha = 1) {
  const double a = unitClamp(c.alpha) * unitClamp(alpha);
  return unitToByte(unitClamp(c.red) * a) | unitToByte(unitClamp(c.green) * a) << 8 |
         unitToByte(unitClamp(c.blue) * a) << 16 | unitToByte(a) << 24;
}
