#include "platform/graphics/codecs/libraries/tiff/LabColors.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// CIE 15, with exact fractions: the inverse of f(t).
double fromLab(double f) {
  constexpr double kKnee = 6.0 / 29;
  return f > kKnee ? f * f * f : 3 * kKnee * kKnee * (f - 4.0 / 29);
}

/// IEC 61966-2-1.
double linear(double encoded) {
  return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

/// The smallest light of each byte but the first; what lies between has the byte below.
const std::array<float, 255>& smallestLights() {
  static const std::array<float, 255> lights = [] {
    std::array<float, 255> made{};
    for (size_t i = 0; i < made.size(); ++i) {
      made[i] = static_cast<float>(linear((static_cast<double>(i) + 0.5) / 255));
    }
    return made;
  }();
  return lights;
}

uint8_t encodedByte(double light) {
  const auto& lights = smallestLights();
  const auto* const above =
      std::upper_bound(lights.begin(), lights.end(), static_cast<float>(light));
  return static_cast<uint8_t>(above - lights.begin());
}

/// XYZ, seen under D50, to linear sRGB: the inverse of the colorants in the published profile
/// (B. Lindbloom, Bradford adaptation).
constexpr double kToSRGB[3][3] = {{3.1338561, -1.6168667, -0.4906146},
                                  {-0.9787684, 1.9161415, 0.0334540},
                                  {0.0719453, -0.2289914, 1.4052427}};
constexpr double kD50[3] = {0.96422, 1, 0.82521};

}  // namespace

void setLabColor(const LabColor& color, uint8_t* out) {
  const double y = (color.lightness + 16) / 116;
  const double xyz[3] = {kD50[0] * fromLab(y + color.a / 500), kD50[1] * fromLab(y),
                         kD50[2] * fromLab(y - color.b / 200)};
  for (int c = 0; c < 3; ++c) {
    const double* const row = kToSRGB[c];
    out[c] = encodedByte(row[0] * xyz[0] + row[1] * xyz[1] + row[2] * xyz[2]);
  }
}
