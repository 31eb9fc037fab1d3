#pragma once

#include <memory>

#include "draw/core/PathGeometry.h"
#include "platform/foundation/NSObject.h"
#include "platform/graphics/CGPath.h"
#include "platform/graphics/NSBezierPath.h"

/// Arrow heads of a path and the path to stroke under them.
class ZTArrowPathInfo : public NSObject {
 public:
  /// Closed triangles at the first and the last point; null where there is none.
  const std::shared_ptr<NSBezierPath>& startArrowPath() const { return startArrowPath_; }
  const std::shared_ptr<NSBezierPath>& endArrowPath() const { return endArrowPath_; }
  /// A copy with pulled back ends, or a copy of the asked path when nothing moved.
  const std::shared_ptr<NSBezierPath>& adjustedBezierPath() const { return adjustedBezierPath_; }
  /// Whether an end moved.
  bool hadAdjustBezierPath() const { return hadAdjustBezierPath_; }

  void setStartArrowPath(std::shared_ptr<NSBezierPath> path) { startArrowPath_ = std::move(path); }
  void setEndArrowPath(std::shared_ptr<NSBezierPath> path) { endArrowPath_ = std::move(path); }
  void setAdjustedBezierPath(std::shared_ptr<NSBezierPath> path) {
    adjustedBezierPath_ = std::move(path);
  }
  void setHadAdjustBezierPath(bool adjusted) { hadAdjustBezierPath_ = adjusted; }

 private:
  bool hadAdjustBezierPath_ = false;
  std::shared_ptr<NSBezierPath> startArrowPath_;
  std::shared_ptr<NSBezierPath> endArrowPath_;
  std::shared_ptr<NSBezierPath> adjustedBezierPath_;
};

/// Arrow style 2 has heads at both ends, any other non-zero style at the end only.
inline constexpr int64_t kArrowStyleBothEnds = 2;

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

/// The arrow heads of a style; null for style 0 and below 2 elements.
std::unique_ptr<ZTArrowPathInfo> getArrowInfoWithStyle(const NSBezierPath& path, int64_t style,
                                                       double lineWidth);
std::unique_ptr<ZTArrowPathInfo> getArrowInfoWithStyle(const NSBezierPath& path, int64_t style);

/// Outline of the stroked path (its width, cap and join; every miter a bevel; no dash), and the
/// same as a path to fill with the non-zero rule, of line width 1 and round joins.
CGPath copyStrokeOutlineCGPath(const NSBezierPath& path);
std::shared_ptr<NSBezierPath> strokeOutlinePath(const NSBezierPath& path);

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
