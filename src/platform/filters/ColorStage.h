#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <variant>

#include "platform/filters/CodeBatch.h"

/// What colour filters do to straight linear colour. Each is applied to 8-bit codes and rounds to
/// 8-bit codes again, so that filters in a row give what they would give one by one.

/// Every channel by itself.
struct CurveStage {
  CodeTable codes;
};

/// out[c] = rows[c][0] r + rows[c][1] g + rows[c][2] b + rows[c][3].
struct AffineStage {
  std::array<std::array<float, 4>, 3> rows;
};

/// Tones luminance to brown; amount 1 replaces the colour, others extrapolate.
struct SepiaStage {
  float amount;
};

/// Lifts or deepens shadows (-1 to 1) and takes back highlights (1 leaves them, 0 most).
struct HighlightShadowStage {
  float highlight;
  float shadow;
};

using ColorStage = std::variant<CurveStage, AffineStage, SepiaStage, HighlightShadowStage>;

/// A stage from a function of one channel in linear light.
CurveStage makeCurve(const std::function<double(double)>& light);
/// Contrast and brightness about half of full light, after mixing with luminance by saturation.
ColorStage makeColorControls(double saturation, double brightness, double contrast);
/// Rotates hues by `angle` radians, keeping luminance (the hueRotate matrix of SVG filters).
ColorStage makeHueRotation(double angle);

/// Linear light of up to kColorBatch pixels.
struct ColorBatch {
  size_t count = 0;
  float red[kColorBatch];
  float green[kColorBatch];
  float blue[kColorBatch];
};

/// Applies a stage to the values, without clamping.
void applyStage(const AffineStage& stage, ColorBatch& batch);
void applyStage(const SepiaStage& stage, ColorBatch& batch);
void applyStage(const HighlightShadowStage& stage, ColorBatch& batch);
