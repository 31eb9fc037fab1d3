#pragma once

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/outline/DeviceGrid.h"
#include "platform/graphics/pixels/outline/FlatPath.h"
#include "platform/graphics/pixels/outline/PathData.h"

/// What flattening may leave out.
struct FlattenOptions {
  /// Largest distance between a curve and its chords, in device pixels.
  double tolerance = 0.025;
  /// When set, a curve whose control points all lie on the far side of one edge of this box
  /// becomes one chord. That changes nothing that a fill shows inside the box.
  const DeviceBounds* visible = nullptr;
};

/// Transforms `path` by `toDevice` and replaces curves by chords at uniform parameter steps:
/// n = ceil(sqrt(0.75 M / tolerance)) of them, M the longer of |p0 - 2 p1 + p2| and
/// |p1 - 2 p2 + p3| (the bound on the second derivative, as in Sederberg's notes on subdivision).
///
/// `out` is replaced. Each subpath holds its points once: a closed one does not repeat its first.
/// Moves that nothing is drawn from are left out. A drawing element without a current point
/// acts as a move to its end point. Coordinates are clamped to +-1e9 pixels.
/// False, and `out` empty, when a transformed coordinate is not finite, when points are missing,
/// or beyond limits::kMaxPathElements.
bool flattenPath(const PathData& path, const CGAffineTransform& toDevice,
                 const FlattenOptions& options, FlatPath& out);
