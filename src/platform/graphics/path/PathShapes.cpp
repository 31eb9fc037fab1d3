#include "platform/graphics/path/PathShapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr CGFloat radians(CGFloat degrees) {
  return degrees * std::numbers::pi / 180;
}

}  // namespace

NSPoint ellipsePoint(NSPoint center, CGFloat xRadius, CGFloat yRadius, CGFloat degrees) {
  const CGFloat t = radians(degrees);
  return {center.x + xRadius * std::cos(t), center.y + yRadius * std::sin(t)};
}

void appendRect(PathData& path, const NSRect& r) {
  path.move({NSMinX(r), NSMinY(r)});
  path.line({NSMaxX(r), NSMinY(r)});
  path.line({NSMaxX(r), NSMaxY(r)});
  path.line({NSMinX(r), NSMaxY(r)});
  path.close();
}

void appendArc(PathData& path, NSPoint center, CGFloat xRadius, CGFloat yRadius,
               CGFloat startDegrees, CGFloat sweepDegrees) {
  if (!std::isfinite(startDegrees) || !std::isfinite(sweepDegrees)) return;
  // A hundred turns look like one; the bound keeps a hostile angle from making millions of curves.
  const CGFloat sweep = std::clamp(sweepDegrees, -36000.0, 36000.0);
  const int pieces = std::max(1, static_cast<int>(std::ceil(std::fabs(sweep) / 90 - 1e-9)));
  const CGFloat step = sweep / pieces;
  const CGFloat k = 4.0 / 3.0 * std::tan(radians(step) / 4);
  for (int i = 0; i < pieces; ++i) {
    const CGFloat t0 = radians(startDegrees + step * i);
    const CGFloat t1 = radians(startDegrees + step * (i + 1));
    const NSPoint p0{center.x + xRadius * std::cos(t0), center.y + yRadius * std::sin(t0)};
    const NSPoint p1{center.x + xRadius * std::cos(t1), center.y + yRadius * std::sin(t1)};
    path.cubic({p0.x - k * xRadius * std::sin(t0), p0.y + k * yRadius * std::cos(t0)},
               {p1.x + k * xRadius * std::sin(t1), p1.y - k * yRadius * std::cos(t1)}, p1);
  }
}

void appendEllipse(PathData& path, const NSRect& r, CGFloat startDegrees) {
  const NSPoint center{NSMidX(r), NSMidY(r)};
  const CGFloat a = NSWidth(r) / 2;
  const CGFloat b = NSHeight(r) / 2;
  path.move(ellipsePoint(center, a, b, startDegrees));
  appendArc(path, center, a, b, startDegrees, 360);
  path.close();
}

void appendRoundedRect(PathData& path, const NSRect& r, CGFloat xRadius, CGFloat yRadius) {
  const CGFloat rx = std::min(xRadius, NSWidth(r) / 2);
  const CGFloat ry = std::min(yRadius, NSHeight(r) / 2);
  if (!(rx > 0 && ry > 0)) return appendRect(path, r);
  const CGFloat k = 4.0 / 3.0 * std::tan(std::numbers::pi / 8);
  const CGFloat cx = rx * (1 - k);
  const CGFloat cy = ry * (1 - k);
  const CGFloat x0 = NSMinX(r), x1 = NSMaxX(r), y0 = NSMinY(r), y1 = NSMaxY(r);
  path.move({x0 + rx, y1});
  path.cubic({x0 + cx, y1}, {x0, y1 - cy}, {x0, y1 - ry});
  path.line({x0, y0 + ry});
  path.cubic({x0, y0 + cy}, {x0 + cx, y0}, {x0 + rx, y0});
  path.line({x1 - rx, y0});
  path.cubic({x1 - cx, y0}, {x1, y0 + cy}, {x1, y0 + ry});
  path.line({x1, y1 - ry});
  path.cubic({x1, y1 - cy}, {x1 - cx, y1}, {x1 - rx, y1});
  path.close();
}
