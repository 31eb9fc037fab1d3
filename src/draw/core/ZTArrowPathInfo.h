#pragma once

#include <memory>

#include "platform/foundation/NSObject.h"
#include "platform/graphics/path/NSBezierPath.h"

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

/// The arrow heads of a style; null for style 0 and below 2 elements.
std::unique_ptr<ZTArrowPathInfo> getArrowInfoWithStyle(const NSBezierPath& path, int64_t style,
                                                       double lineWidth);
std::unique_ptr<ZTArrowPathInfo> getArrowInfoWithStyle(const NSBezierPath& path, int64_t style);
