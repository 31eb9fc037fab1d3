#include "platform/graphics/path/PathHitTest.h"

#include "platform/graphics/pixels/outline/PathFlattener.h"

namespace {

/// What the side a - b adds to the winding number around p: the sign with which it crosses the ray
/// from p to the right (Hormann and Agathos, "The point in polygon problem for arbitrary polygons",
/// 2001).
int crossing(NSPoint a, NSPoint b, NSPoint p) {
  if ((a.y <= p.y) == (b.y <= p.y)) return 0;
  const CGFloat side = (b.x - a.x) * (p.y - a.y) - (p.x - a.x) * (b.y - a.y);
  if (b.y > a.y) return side > 0 ? 1 : 0;
  return side < 0 ? -1 : 0;
}

}  // namespace

bool pathContains(const PathData& path, WindingRule rule, NSPoint p) {
  constexpr double kTolerance = 1e-3;
  FlatPath flat;
  if (!flattenPath(path, {}, {kTolerance, nullptr}, flat)) return false;
  int winding = 0;
  for (const auto& [first, count, closed] : flat.subpaths) {
    NSPoint from = flat.points[first + count - 1];
    for (size_t i = first; i < first + count; ++i) {
      winding += crossing(from, flat.points[i], p);
      from = flat.points[i];
    }
  }
  return rule == WindingRule::nonZero ? winding != 0 : winding % 2 != 0;
}
