#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/foundation/Geometry.h"

/// A path made of straight lines: what flattening and dashing produce and what filling and
/// stroking read. Buffers keep their capacity between paths.
struct FlatPath {
  struct Subpath {
    size_t first = 0;  ///< index of its first point
    size_t count = 0;  ///< at least 1
    bool closed = false;
  };

  std::vector<NSPoint> points;
  /// Parallel to `points`: 1 where the point is the interior of a curve, or where a curve goes on
  /// in the direction of its neighbour; 0 where it is a corner or an end. Pens turn around the
  /// former without a join of their own.
  std::vector<uint8_t> smooth;
  std::vector<Subpath> subpaths;

  void clear() {
    points.clear();
    smooth.clear();
    subpaths.clear();
  }
  void add(NSPoint p, bool isSmooth) {
    points.push_back(p);
    smooth.push_back(isSmooth ? 1 : 0);
  }
  /// Takes back the points from one on, which belong to no subpath yet.
  void dropPointsFrom(size_t first) {
    points.resize(first);
    smooth.resize(first);
  }
  /// Makes the points added since the previous subpath a subpath; nothing when there are none.
  void endSubpath(bool closed) {
    const size_t first = subpaths.empty() ? 0 : subpaths.back().first + subpaths.back().count;
    if (points.size() > first) subpaths.push_back({first, points.size() - first, closed});
  }
};
