#include "platform/filters/color/ColorStage.h"

#include <algorithm>
#include <cmath>

#include "platform/filters/light/LinearLight.h"
#include "platform/foundation/Convert.h"
#include "platform/machine/TargetClones.h"

namespace {

constexpr double kLuminance[] = {0.2125, 0.7154, 0.0721};

TARGET_CLONES void affine(const AffineStage& stage, float* __restrict red, float* __restrict green,
                          float* __restrict blue) {
  const auto rows = stage.rows;
  for (size_t i = 0; i < kColorBatch; ++i) {
    const float r = red[i];
    const float g = green[i];
    const float b = blue[i];
    red[i] = rows[0][0] * r + rows[0][1] * g + rows[0][2] * b + rows[0][3];
    green[i] = rows[1][0] * r + rows[1][1] * g + rows[1][2] * b + rows[1][3];
    blue[i] = rows[2][0] * r + rows[2][1] * g + rows[2][2] * b + rows[2][3];
  }
}

TARGET_CLONES void findLuminance(const ColorBatch& __restrict batch, float* __restrict luminance) {
  for (size_t i = 0; i < kColorBatch; ++i) {
    luminance[i] = 0.2125F * batch.red[i] + 0.7154F * batch.green[i] + 0.0721F * batch.blue[i];
  }
}

/// Luminance and what it is toned to, times the amount.
struct alignas(64) Tones {
  float luminance[kBatchStride];
  float red[kBatchStride];
  float green[kBatchStride];
};

/// The curves of black do not reach zero.
inline float unlessBlack(float luminance, float tone) {
  return luminance > 0 ? tone : 0;
}

TARGET_CLONES void mixTones(float amount, const Tones& __restrict tones,
                            ColorBatch& __restrict batch) {
  const float rest = 1 - amount;
  for (size_t i = 0; i < kColorBatch; ++i) {
    const float y = tones.luminance[i];
    batch.red[i] = rest * batch.red[i] + unlessBlack(y, tones.red[i]);
    batch.green[i] = rest * batch.green[i] + unlessBlack(y, tones.green[i]);
    batch.blue[i] = rest * batch.blue[i] + amount * y * y;
  }
}

}  // namespace

struct SepiaTables {
  float amount;
  /// What luminance becomes, times the amount.
  HalfOctaveCubics red;
  HalfOctaveCubics green;
};

CurveStage makeCurve(const std::function<double(double)>& light) {
  CurveStage stage;
  for (int code = 0; code < 256; ++code) {
    const double value = codedFromLinear(light(linearFromCoded(code / 255.0)));
    stage.codes[code] = static_cast<uint8_t>(roundedHalfUp(std::clamp(255 * value, 0.0, 255.0)));
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

ColorStage makeSepia(double amount) {
  auto tables = std::make_shared<SepiaTables>();
  tables->amount = static_cast<float>(amount);
  tables->red = makeCubics([=](double y) { return amount * std::pow(y, 0.79); });
  tables->green = makeCubics([=](double y) { return amount * std::pow(y, 1.11); });
  return SepiaStage{std::move(tables)};
}

void decodeBatch(const PlanarPixels& codes, ColorBatch& batch) {
  linearFromCodes(codes.channels[0], kColorBatch, batch.red);
  linearFromCodes(codes.channels[1], kColorBatch, batch.green);
  linearFromCodes(codes.channels[2], kColorBatch, batch.blue);
}

void encodeBatch(const ColorBatch& batch, PlanarPixels& codes) {
  codesFromLinear(batch.red, kColorBatch, codes.channels[0]);
  codesFromLinear(batch.green, kColorBatch, codes.channels[1]);
  codesFromLinear(batch.blue, kColorBatch, codes.channels[2]);
}

void applyStage(const CurveStage& stage, PlanarPixels& codes) {
  for (int c = 0; c < 3; ++c) {
    lookUpBytes(stage.codes, KeptBytes::kNone, codes.channels[c], kColorBatch, codes.channels[c]);
  }
}

void applyStage(const AffineStage& stage, PlanarPixels& codes) {
  ColorBatch batch;
  decodeBatch(codes, batch);
  affine(stage, batch.red, batch.green, batch.blue);
  encodeBatch(batch, codes);
}

void applyStage(const SepiaStage& stage, PlanarPixels& codes) {
  const SepiaTables& tables = *stage.tables;
  ColorBatch batch;
  decodeBatch(codes, batch);
  Tones tones;
  findLuminance(batch, tones.luminance);
  evaluateCubics(tables.red, tones.luminance, kColorBatch, tones.red);
  evaluateCubics(tables.green, tones.luminance, kColorBatch, tones.green);
  mixTones(tables.amount, tones, batch);
  encodeBatch(batch, codes);
}

void applyStages(const std::vector<ColorStage>& stages, const uint32_t* in, uint32_t* out,
                 size_t count) {
  PlanarPixels codes;
  splitPixels(in, count, codes);
  for (size_t s = 0; s < stages.size(); ++s) {
    if (s > 0) roundTrip(codes);
    std::visit([&](const auto& stage) { applyStage(stage, codes); }, stages[s]);
  }
  joinPixels(codes, out);
}
