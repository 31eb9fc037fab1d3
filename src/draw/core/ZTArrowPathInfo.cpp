#include "draw/core/ZTArrowPathInfo.h"

#include <algorithm>

#include "draw/core/ArrowGeometry.h"

namespace {

/// Where an element ends: a curve's end point, any other element's first point.
NSPoint endPoint(const NSBezierPath& path, int64_t index) {
  NSPoint p[3];
  return path.elementAtIndex(index, p) == NSCurveToBezierPathElement ? p[2] : p[0];
}

/// One end of the path as the arrow computation sees it.
struct PathEnd {
  NSPoint from;
  NSPoint to;
  bool canMove;
};

PathEnd lastEnd(const NSBezierPath& path) {
  const int64_t n = path.elementCount();
  NSPoint p[3];
  if (path.elementAtIndex(n - 1, p) != NSCurveToBezierPathElement) {
    return {endPoint(path, n - 2), p[0], true};
  }
  const NSPoint to = p[2];
  NSPoint from = p[1];
  if (from == to) from = p[0];
  if (from == to) from = endPoint(path, n - 2);
  return {from, to, false};
}

PathEnd firstEnd(const NSBezierPath& path) {
  const NSPoint to = endPoint(path, 0);
  NSPoint p[3];
  if (path.elementAtIndex(1, p) != NSCurveToBezierPathElement) return {p[0], to, true};
  NSPoint from = p[0];
  if (from == to) from = p[1];
  if (from == to) from = p[2];
  return {from, to, false};
}

}  // namespace

std::unique_ptr<ZTArrowPathInfo> getArrowInfoWithStyle(const NSBezierPath& path, int64_t style,
                                                       double lineWidth) {
  const int64_t n = path.elementCount();
  if (style == 0 || n < 2) return nullptr;
  const auto width = static_cast<float>(lineWidth);
  const bool sharedSegment = n == 2 && style == kArrowStyleBothEnds;

  auto info = std::make_unique<ZTArrowPathInfo>();
  info->setAdjustedBezierPath(path.copy());
  const auto headAt = [&](const PathEnd& end, int64_t element) {
    NSPoint moved;
    auto head = GetArrowPathAndAdjustedEndPoint(sharedSegment, end.canMove, &moved, end.from,
                                                end.to, width);
    if (head != nullptr && end.canMove) {
      info->adjustedBezierPath()->setAssociatedPoints(&moved, element);
      info->setHadAdjustBezierPath(true);
    }
    return head;
  };
  info->setEndArrowPath(headAt(lastEnd(path), n - 1));
  if (style == kArrowStyleBothEnds) info->setStartArrowPath(headAt(firstEnd(path), 0));
  return info;
}

std::unique_ptr<ZTArrowPathInfo> getArrowInfoWithStyle(const NSBezierPath& path, int64_t style) {
  return getArrowInfoWithStyle(path, style, path.lineWidth());
}
