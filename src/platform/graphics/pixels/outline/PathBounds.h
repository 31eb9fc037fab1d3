#pragma once

#include <optional>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/outline/PathData.h"

/// Extents of paths in their own space. Moves that nothing is drawn from, such as the one that
/// follows a close, do not count. Answers are empty for paths without drawing elements, and for
/// those with a coordinate that is not finite.

/// Values from `min` to `max`, both inclusive.
struct Extent {
  double min = 0;
  double max = 0;
};

/// The smallest box around the curve itself.
std::optional<NSRect> tightPathBounds(const PathData& path);

/// The smallest box around all points, control points included.
std::optional<NSRect> controlPointBounds(const PathData& path);

/// Range of x * direction.x + y * direction.y over the curve: with a unit vector, the positions
/// along that direction.
std::optional<Extent> pathExtentAlong(const PathData& path, NSPoint direction);
