#include "platform/filters/ColorStage.h"

#include <algorithm>
#include <cmath>

#include "platform/TargetClones.h"
#include "platform/filters/LinearLight.h"
#include "platform/filters/PowerFunctions.h"

namespace {

constexpr double kLuminance[] = {0.2125, 0.7154, 0.0721};
/// Powers of luminance that sepia toning makes red, green and blue of.
constexpr float kSepiaPowers[] = {0.79F, 1.11F, 2.0F};

VECTOR_CLONES void affine(const AffineStage& stage, float* __restrict red, float* __restrict green,
                          float* __restrict blue, size_t count) {
  const auto rows = stage.rows;
  for (size_t i = 0; i < count; ++i) {
    const float r = red[i];
    const float g = green[i];
    const float b = blue[i];
    red[i] = rows[0][0] * r + rows[0][1] * g + rows[0][2] * b + rows[0][3];
    green[i] = rows[1][0] * r + rows[1][1] * g + rows[1][2] * b + rows[1][3];
    blue[i] = rows[2][0] * r + rows[2][1] * g + rows[2][2] * b + rows[2][3];
  }
}

VECTOR_CLONES void sepia(float amount, float* __restrict red, float* __restrict green,
                         float* __restrict blue, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const float y = 0.2125F * red[i] + 0.7154F * green[i] + 0.0721F * blue[i];
    red[i] += (powerApproximate(y, kSepiaPowers[0]) - red[i]) * amount;
    green[i] += (powerApproximate(y, kSepiaPowers[1]) - green[i]) * amount;
    blue[i] += (powerApproximate(y, kSepiaPowers[2]) - blue[i]) * amount;
  }
}

}  // namespace

CurveStage makeCurve(const std::function<double(double)>& light) {
  CurveStage stage;
  for (int code = 0; code < 256; ++code) {
    const double value = codedFromLinear(light(linearFromCoded(code / 255.0)));
    stage.codes[code] = static_cast<uint8_t>(std::clamp(255 * value, 0.0, 255.0) + 0.5);
  }
  return stage;
}

ColorStage makeColorControls(double saturation, double brightness, double contrast) {
  const double offset = 0.5 - 0.5 * contrast + brightness;
  if (saturation == 1) return makeCurve([=](double c) { return contrast * c + offset; });
  AffineStage stage;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      const double own = row == column ? saturation : 0;
      stage.rows[row][column] =
          static_cast<float>(contrast * ((1 - saturation) * kLuminance[column] + own));
    }
    stage.rows[row][3] = static_cast<float>(offset);
  }
  return stage;
}

ColorStage makeHueRotation(double angle) {
  // Filter Effects Module Level 1, feColorMatrix, hueRotate.
  constexpr double kBase[3][3] = {{.213, .715, .072}, {.213, .715, .072}, {.213, .715, .072}};
  constexpr double kCosine[3][3] = {
      {.787, -.715, -.072}, {-.213, .285, -.072}, {-.213, -.715, .928}};
  constexpr double kSine[3][3] = {{-.213, -.715, .928}, {.143, .140, -.283}, {-.787, .715, .072}};
  AffineStage stage{};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      stage.rows[row][column] =
          static_cast<float>(kBase[row][column] + kCosine[row][column] * std::cos(angle) +
                             kSine[row][column] * std::sin(angle));
    }
  }
  return stage;
}

void applyStage(const AffineStage& stage, ColorBatch& batch) {
  affine(stage, batch.red, batch.green, batch.blue, batch.count);
}

void applyStage(const SepiaStage& stage, ColorBatch& batch) {
  sepia(stage.amount, batch.red, batch.green, batch.blue, batch.count);
}
