#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/paint/GradientTable.h"
#include "platform/graphics/pixels/paint/RowSource.h"

/// Which end colours go on beyond their end of the gradient; elsewhere beyond it is transparent.
/// The numbers are those of the drawing options.
enum class GradientExtent : uint8_t {
  none = 0,
  beforeStart = 1,
  afterEnd = 2,
  both = 3,
};

/// A straight gradient: location 0 at `start`, 1 at `end`, constant across.
struct LinearAxis {
  NSPoint start;
  NSPoint end;
};

/// A gradient between two circles. A point shows the circle of the highest location that passes
/// through it, circles between and beyond the two being interpolated.
struct RadialAxis {
  NSPoint startCenter;
  CGFloat startRadius = 0;
  NSPoint endCenter;
  CGFloat endRadius = 0;
};

/// Rows of a gradient. Null when the geometry says nothing: a zero-length axis, two equal circles,
/// negative radii, numbers that are not finite, a transform without inverse.
///
/// `toDevice` maps the space that the axis is given in to device pixels.
std::unique_ptr<RowSource> linearGradientSource(const GradientTable& table, const LinearAxis& axis,
                                                GradientExtent extent,
                                                const CGAffineTransform& toDevice);
std::unique_ptr<RowSource> radialGradientSource(const GradientTable& table, const RadialAxis& axis,
                                                GradientExtent extent,
                                                const CGAffineTransform& toDevice);
