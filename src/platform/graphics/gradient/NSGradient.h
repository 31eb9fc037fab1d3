#pragma once

#include <memory>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

class NSBezierPath;
class NSColor;

/// Colours at locations from 0 to 1, in increasing order, at least one. Immutable.
class NSGradient : public NSObject {
 public:
  struct Stop {
    std::shared_ptr<NSColor> color;
    CGFloat location = 0;
  };
  static const NSClass kClass;

  /// Colours at 0 and 1.
  static std::shared_ptr<NSGradient> initWithStartingColor(std::shared_ptr<NSColor> startingColor,
                                                           std::shared_ptr<NSColor> endingColor);
  /// Evenly spaced; null without colours.
  static std::shared_ptr<NSGradient> initWithColors(
      const std::vector<std::shared_ptr<NSColor>>& colors);
  /// Sorted by location (equal ones keep their order), clamped to 0 to 1; null without stops.
  static std::shared_ptr<NSGradient> initWithStops(std::vector<Stop> stops);
  const NSClass& classInfo() const override { return kClass; }

  const std::vector<Stop>& stops() const { return stops_; }
  size_t numberOfColorStops() const { return stops_.size(); }
  /// Mean of the stops' alphas.
  CGFloat averageOpacity() const;

  // Drawing into the current graphics context; angles in degrees, counter-clockwise.
  /// Fills the rectangle; start and end lie in opposite corners along the angle.
  void drawInRect(const NSRect& rect, CGFloat angle) const;
  /// Fills the path; start and end lie at its farthest ends along the angle.
  void drawInBezierPath(const NSBezierPath& path, CGFloat angle) const;
  /// Fills the path from the middle of its bounds to a circle around the middle moved by the
  /// relative position (-1 to 1 of half the bounds), large enough to cover the bounds.
  void drawInBezierPath(const NSBezierPath& path, NSPoint relativeCenterPosition) const;
  /// Fill the rectangle with the colours that drawInBezierPath gives its points: start and end are
  /// those of `axisPath`.
  void drawInRect(const NSRect& rect, const NSBezierPath& axisPath, CGFloat angle) const;
  void drawInRect(const NSRect& rect, const NSBezierPath& axisPath,
                  NSPoint relativeCenterPosition) const;

  /// Nil when no colours can be found.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  std::vector<Stop> stops_;
};
