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

/// Light from 0 to 1 as bytes.
class ByteEncoder {
 public:
  ByteEncoder() {
    for (size_t i = 0; i < ends_.size(); ++i) {
      ends_[i] = linear((static_cast<double>(i) + 0.5) / 255);
    }
    for (size_t i = 0; i < starts_.size(); ++i) {
      const double light = static_cast<double>(i) / kSteps;
      const auto* const end = std::upper_bound(ends_.begin(), ends_.end(), light);
      starts_[i] = static_cast<uint8_t>(end - ends_.begin());
    }
  }

  uint8_t operator()(double light) const {
    const double inside = std::clamp(light, 0.0, 1.0);
    uint8_t byte = starts_[static_cast<size_t>(inside * kSteps)];
    while (byte < 255 && inside >= ends_[byte]) ++byte;
    return byte;
  }

 private:
  // Finer than the bytes are anywhere: nearly always the first one is it.
  static constexpr size_t kSteps = 4096;
  std::array<double, 255> ends_{};            // where the light of each byte but the last ends
  std::array<uint8_t, kSteps + 1> starts_{};  // the byte where each step starts
};

/// XYZ, seen under D50, to linear sRGB: the inverse of the colorants in the published profile
/// (B. Lindbloom, Bradford adaptation).
constexpr double kToSRGB[3][3] = {{3.1338561, -1.6168667, -0.4906146},
                                  {-0.9787684, 1.9161415, 0.0334540},
                                  {0.0719453, -0.2289914, 1.4052427}};
constexpr double kD50[3] = {0.96422, 1, 0.82521};

}  // namespace

void setLabColor(const LabColor& color, uint8_t* out) {
  static const ByteEncoder encoded;
  const double y = (color.lightness + 16) / 116;
  const double xyz[3] = {kD50[0] * fromLab(y + color.a / 500), kD50[1] * fromLab(y),
                         kD50[2] * fromLab(y - color.b / 200)};
  for (int c = 0; c < 3; ++c) {
    const double* const row = kToSRGB[c];
    out[c] = encoded(row[0] * xyz[0] + row[1] * xyz[1] + row[2] * xyz[2]);
  }
}
