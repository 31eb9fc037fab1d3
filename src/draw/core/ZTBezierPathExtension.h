#pragma once

#include <memory>
#include <optional>

#include "platform/graphics/path/CGPath.h"
#include "platform/graphics/path/NSBezierPath.h"

/// Whether the last or second-to-last element closes the path (false below 4 elements).
bool isPathClosed(const NSBezierPath& path);
/// An open path of at least 3 elements can be closed.
bool canClosePath(const NSBezierPath& path);
/// Opens a closed path, closes an open one; answers whether anything changed.
bool toggleClosePath(NSBezierPath& path);
/// Whether the line's width, truncated to a whole number, is odd.
bool hasOddLineWidth(const NSBezierPath& path);
/// The path without its last n elements.
std::shared_ptr<NSBezierPath> removeLastElements(const NSBezierPath& path, int64_t n);

/// The point at a fraction (0 to 1; a curve's parameter) of an element; of a move its point. Zero
/// for an element that is not there.
NSPoint InterpolatePointOnPathElement(const NSBezierPath& path, int64_t elementIndex,
                                      double fraction);
/// The point of the path that is nearest to a point, on curves within a sample step of kCurveSteps;
/// nothing for a path that draws nothing.
std::optional<NSPoint> findPointClosestToPoint(const NSBezierPath& path, NSPoint point);

/// Total length, summed in single precision.
float pathLineLength(const NSBezierPath& path);

/// A point of a path, with the index of its element and the direction of travel there.
struct PathPosition {
  NSPoint point;
  int64_t elementIndex = 0;
  NSPoint direction;
};

/// Finds many positions along one path, which is measured once.
class PathMeasure {
 public:
  explicit PathMeasure(const NSBezierPath& path);
  ~PathMeasure();
  PathMeasure(const PathMeasure&) = delete;
  PathMeasure& operator=(const PathMeasure&) = delete;

  /// As pathLineLength.
  float length() const;
  /// The position at an arc length, clamped to the path. Asked for in increasing order, positions
  /// take one walk along the path together.
  PathPosition positionAt(double length);

 private:
  struct Measured;
  std::unique_ptr<Measured> measured_;
};

/// The point at a fraction (0 to 1) of the total length.
PathPosition pointAtPercent(const NSBezierPath& path, double percent);

/// The piece of the path between two arc lengths; lengths are clamped to the path.
std::shared_ptr<NSBezierPath> subPathWithLengthFrom(const NSBezierPath& path, double from,
                                                    double to);
