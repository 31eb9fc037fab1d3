#pragma once

#include <cstdint>

#include "platform/graphics/pixels/coverage/ClipRegion.h"
#include "platform/graphics/pixels/coverage/CoverageShape.h"
#include "platform/graphics/pixels/paint/CompositingOperation.h"
#include "platform/graphics/pixels/paint/PixelSurface.h"
#include "platform/graphics/pixels/paint/RGBAColor.h"
#include "platform/graphics/pixels/paint/RowSource.h"

/// A shadow in device space, y downwards; see BlurredRows. On a canvas that is shown at a scale the
/// offset may be a fraction of a pixel.
struct DropShadow {
  double dx = 0;
  double dy = 0;
  double blur = 0;
  RGBAColor color;
};

/// The part of device space whose content can cast a shadow into `box`.
PixelBox castingBox(const DropShadow& shadow, const PixelBox& box);

/// Paints the shadow that a shape painted with `paint` casts: the shape's coverage times the
/// alpha of the paint, blurred, as the coverage of the shadow's colour. The clip cuts the shadow,
/// not the shape that casts it.
void paintShadow(PixelSurface& surface, const ClipRegion& clip, const CoverageShape& shape,
                 const SpanPaint& paint, NSCompositingOperation operation,
                 const DropShadow& shadow);
