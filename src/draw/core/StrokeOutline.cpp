// The area that stroking a path covers, as a path.
#include "draw/core/StrokeOutline.h"

#include <algorithm>

#include "draw/core/PathGeometry.h"
#include "platform/graphics/context/OffscreenCanvas.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"

CGPath copyStrokeOutlineCGPath(const NSBezierPath& path) {
  StrokeStyle style;
  style.width = path.lineWidth();
  style.cap = path.lineCapStyle();
  style.join = path.lineJoinStyle();
  style.miterLimit = 0;
  // As smooth as it is going to be seen; the outline itself is in the path's space.
  const CGFloat scale = std::max(1.0, offscreenScale());
  return CGPath(
      PathRenderer().strokeOutline(path.data(), style, CGAffineTransformMakeScale(scale, scale)));
}

std::shared_ptr<NSBezierPath> strokeOutlinePath(const NSBezierPath& path) {
  auto outline = NSBezierPath::bezierPath();
  AppendCGPathToBezierPath(*outline, copyStrokeOutlineCGPath(path));
  outline->setLineWidth(1);
  outline->setLineJoinStyle(LineJoin::round);
  return outline;
}
