#pragma once

#include <cstdint>

#include "platform/graphics/pixels/paint/GradientTable.h"
#include "platform/graphics/pixels/paint/RGBAColor.h"

/// Loops that turn positions along a row into pixels of a gradient table. Locations are in table
/// entries plus one half, so that truncation rounds; they are held within the table, whose first
/// entry is preceded by one for all that lies before it. `out` takes the n pixels i from `first`
/// on.

/// Entry start + i step.
void linearGradientRow(uint32_t* __restrict out, int32_t first, int32_t n, GradientEntries table,
                       float start, float step);

/// Entry offset + |(x + i dx, y + i dy)|.
struct ConcentricRow {
  float x = 0;
  float y = 0;
  float dx = 0;
  float dy = 0;
  float offset = 0;
};
void concentricGradientRow(uint32_t* __restrict out, int32_t first, int32_t n,
                           GradientEntries table, const ConcentricRow& row);

/// Circles that grow from (0, 0) with radius r0 by (moveX, moveY) and `growth` per location, each
/// inside the next: entry 0.5 + t * (kSize - 1) of the larger solution t of
/// a t^2 - 2 b t + c = 0 with p = (x + i dx, y + i dy), b = p . move + r0 growth,
/// c = p . p - r0^2, a = move . move - growth^2 < 0.
struct NestedCirclesRow {
  float x = 0;
  float y = 0;
  float dx = 0;
  float dy = 0;
  float moveX = 0;
  float moveY = 0;
  float startRadius = 0;
  float growth = 0;
  float a = 0;
};
void nestedCirclesGradientRow(uint32_t* __restrict out, int32_t first, int32_t n,
                              GradientEntries table, const NestedCirclesRow& row);

/// Colours between two stops of a gradient.
struct GradientRamp {
  RGBAColor from;
  RGBAColor to;
  double start = 0;  ///< location of `from`
  double end = 1;    ///< location of `to`; where it is the start, the colours must be the same
  double alpha = 1;  ///< scales the alpha of both
};

/// The entries from `first` on of the gradient's table: components are interpolated, clamped to
/// 0..1, premultiplied and rounded, as premultipliedPixel does.
void rampPixels(uint32_t* out, int32_t first, int32_t n, const GradientRamp& ramp);
