#pragma once

#include <algorithm>
#include <cmath>

#include "platform/foundation/Geometry.h"

/// Scales along both axes, then moves: how draws are resized and moved.
struct AxisMap {
  CGFloat xScale = 1;
  CGFloat yScale = 1;
  CGFloat dx = 0;
  CGFloat dy = 0;

  NSPoint point(NSPoint p) const { return {p.x * xScale + dx, p.y * yScale + dy}; }
  /// The mapped rectangle, its sides not negative.
  NSRect rect(const NSRect& r) const {
    const NSPoint a = point(r.origin);
    const NSSize s{r.size.width * xScale, r.size.height * yScale};
    return {{a.x + std::min(s.width, 0.0), a.y + std::min(s.height, 0.0)},
            {std::fabs(s.width), std::fabs(s.height)}};
  }
};
