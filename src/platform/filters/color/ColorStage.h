#pragma once

#include <array>
#include <functional>
#include <memory>
#include <variant>
#include <vector>

#include "platform/filters/color/HighlightShadow.h"
#include "platform/filters/light/CodeTables.h"
#include "platform/filters/light/PlanarPixels.h"

/// What colour filters do to straight linear colour. Each is applied to 8-bit codes and rounds to
/// 8-bit codes again, so that filters in a row give what they would give one by one.

struct SepiaTables;

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
  std::shared_ptr<const SepiaTables> tables;
};

using ColorStage = std::variant<CurveStage, AffineStage, SepiaStage, HighlightShadowStage>;

/// A stage from a function of one channel in linear light.
CurveStage makeCurve(const std::function<double(double)>& light);
/// Contrast and brightness about half of full light, after mixing with luminance by saturation.
ColorStage makeColorControls(double saturation, double brightness, double contrast);
/// Rotates hues by `angle` radians, keeping luminance (the hueRotate matrix of SVG filters).
ColorStage makeHueRotation(double angle);

/// Any amount.
ColorStage makeSepia(double amount);

void applyStage(const CurveStage& stage, PlanarPixels& codes);
void applyStage(const AffineStage& stage, PlanarPixels& codes);
void applyStage(const SepiaStage& stage, PlanarPixels& codes);

/// The stages applied to whole pixels, `count` of them at most kColorBatch.
void applyStages(const std::vector<ColorStage>& stages, const uint32_t* in, uint32_t* out,
                 size_t count);

/// Linear light of up to kColorBatch pixels.
struct alignas(64) ColorBatch {
  float red[kBatchStride];
  float green[kBatchStride];
  float blue[kBatchStride];
};
void decodeBatch(const PlanarPixels& codes, ColorBatch& batch);
/// Clamps.
void encodeBatch(const ColorBatch& batch, PlanarPixels& codes);
