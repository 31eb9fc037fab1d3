#include "support/ReferenceBlend.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

using Op = NSCompositingOperation;
using Rgb = std::array<double, 3>;

/// Factors of source and destination: Porter and Duff's table.
bool porterDuff(Op operation, double sa, double da, double* fs, double* fd) {
  switch (operation) {
    case Op::clear:
      return *fs = 0, *fd = 0, true;
    case Op::copy:
      return *fs = 1, *fd = 0, true;
    case Op::sourceOver:
    case Op::highlight:
      return *fs = 1, *fd = 1 - sa, true;
    case Op::sourceIn:
      return *fs = da, *fd = 0, true;
    case Op::sourceOut:
      return *fs = 1 - da, *fd = 0, true;
    case Op::sourceAtop:
      return *fs = da, *fd = 1 - sa, true;
    case Op::destinationOver:
      return *fs = 1 - da, *fd = 1, true;
    case Op::destinationIn:
      return *fs = 0, *fd = sa, true;
    case Op::destinationOut:
      return *fs = 0, *fd = 1 - sa, true;
    case Op::destinationAtop:
      return *fs = 1 - da, *fd = sa, true;
    case Op::exclusiveOr:
      return *fs = 1 - da, *fd = 1 - sa, true;
    case Op::plusLighter:
      return *fs = 1, *fd = 1, true;
    default:
      return false;
  }
}

double softLight(double b, double s) {
  if (s <= 0.5) return b - (1 - 2 * s) * b * (1 - b);
  const double d = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
  return b + (2 * s - 1) * (d - b);
}

double hardLight(double b, double s) {
  return s <= 0.5 ? 2 * b * s : b + (2 * s - 1) - b * (2 * s - 1);
}

double separable(Op operation, double b, double s) {
  switch (operation) {
    case Op::multiply:
      return b * s;
    case Op::screen:
      return b + s - b * s;
    case Op::overlay:
      return hardLight(s, b);
    case Op::darken:
      return std::min(b, s);
    case Op::lighten:
      return std::max(b, s);
    case Op::colorDodge:
      return b == 0 ? 0 : s == 1 ? 1 : std::min(1.0, b / (1 - s));
    case Op::colorBurn:
      return b == 1 ? 1 : s == 0 ? 0 : 1 - std::min(1.0, (1 - b) / s);
    case Op::softLight:
      return softLight(b, s);
    case Op::hardLight:
      return hardLight(b, s);
    case Op::difference:
      return std::fabs(b - s);
    default:
      return b + s - 2 * b * s;
  }
}

double lum(const Rgb& c) {
  return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
}

double sat(const Rgb& c) {
  return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
}

Rgb setLum(Rgb c, double l) {
  const double d = l - lum(c);
  for (double& v : c) v += d;
  const double low = *std::min_element(c.begin(), c.end());
  const double high = *std::max_element(c.begin(), c.end());
  const double mid = lum(c);
  if (low < 0) {
    for (double& v : c) v = mid + (v - mid) * mid / (mid - low);
  }
  if (high > 1) {
    for (double& v : c) v = mid + (v - mid) * (1 - mid) / (high - mid);
  }
  return c;
}

Rgb setSat(const Rgb& c, double s) {
  std::array<size_t, 3> order{0, 1, 2};
  std::sort(order.begin(), order.end(), [&](size_t i, size_t j) { return c[i] < c[j]; });
  Rgb result{};
  if (c[order[2]] > c[order[0]]) {
    result[order[1]] = (c[order[1]] - c[order[0]]) * s / (c[order[2]] - c[order[0]]);
    result[order[2]] = s;
  }
  return result;
}

Rgb nonSeparable(Op operation, const Rgb& b, const Rgb& s) {
  switch (operation) {
    case Op::hue:
      return setLum(setSat(s, sat(b)), lum(b));
    case Op::saturation:
      return setLum(setSat(b, sat(s)), lum(b));
    case Op::color:
      return setLum(s, lum(b));
    default:
      return setLum(b, lum(s));
  }
}

UnitPixel blended(Op operation, const UnitPixel& s, const UnitPixel& d) {
  UnitPixel result{};
  Rgb straightS{};
  Rgb straightD{};
  for (size_t c = 0; c < 3; ++c) {
    straightS[c] = s[3] > 0 ? s[c] / s[3] : 0;
    straightD[c] = d[3] > 0 ? d[c] / d[3] : 0;
  }
  Rgb mix{};
  if (operation >= Op::hue) {
    mix = nonSeparable(operation, straightD, straightS);
  } else {
    for (size_t c = 0; c < 3; ++c) mix[c] = separable(operation, straightD[c], straightS[c]);
  }
  for (size_t c = 0; c < 3; ++c) {
    result[c] = (1 - s[3]) * d[c] + (1 - d[3]) * s[c] + s[3] * d[3] * mix[c];
  }
  result[3] = s[3] + d[3] - s[3] * d[3];
  return result;
}

UnitPixel fullCover(Op operation, const UnitPixel& s, const UnitPixel& d) {
  UnitPixel result{};
  double fs = 0;
  double fd = 0;
  if (porterDuff(operation, s[3], d[3], &fs, &fd)) {
    for (size_t c = 0; c < 4; ++c) result[c] = std::min(1.0, s[c] * fs + d[c] * fd);
  } else if (operation == Op::plusDarker) {
    const double alpha = std::min(1.0, s[3] + d[3]);
    for (size_t c = 0; c < 3; ++c) {
      result[c] = std::max(0.0, alpha - (s[3] - s[c]) - (d[3] - d[c]));
    }
    result[3] = alpha;
  } else {
    result = blended(operation, s, d);
  }
  return result;
}

}  // namespace

UnitPixel unitPixel(uint32_t pixel) {
  return {(pixel & 255) / 255.0, (pixel >> 8 & 255) / 255.0, (pixel >> 16 & 255) / 255.0,
          (pixel >> 24) / 255.0};
}

UnitPixel referenceBlend(NSCompositingOperation operation, const UnitPixel& source,
                         const UnitPixel& destination, double cover) {
  const UnitPixel full = fullCover(operation, source, destination);
  UnitPixel result{};
  for (size_t c = 0; c < 4; ++c) result[c] = (1 - cover) * destination[c] + cover * full[c];
  return result;
}

double distance(uint32_t pixel, const UnitPixel& reference) {
  const UnitPixel unit = unitPixel(pixel);
  double largest = 0;
  for (size_t c = 0; c < 4; ++c) largest = std::max(largest, std::fabs(unit[c] - reference[c]));
  return largest * 255;
}
