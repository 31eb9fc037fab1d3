// The area that stroking a path covers, as a path.
#include "draw/core/StrokeOutline.h"

#include "draw/core/PathGeometry.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"

CGPath copyStrokeOutlineCGPath(const NSBezierPath& path) {
  StrokeStyle style;
  style.width = path.lineWidth();
  style.cap = path.lineCapStyle();
  style.join = path.lineJoinStyle();
  style.miterLimit = 0;
  return CGPath(PathRenderer().strokeOutline(path.data(), style, {}));
}

std::shared_ptr<NSBezierPath> strokeOutlinePath(const NSBezierPath& path) {
  auto outline = NSBezierPath::bezierPath();
  AppendCGPathToBezierPath(*outline, copyStrokeOutlineCGPath(path));
  outline->setLineWidth(1);
  outline->setLineJoinStyle(LineJoin::round);
  return outline;
}
