#pragma once

#include <span>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/paint/GradientTable.h"

/// Colours at locations from 0 to 1. Stops may be in any order; see GradientTable for what that
/// means, and for stops at the same location.
class CGGradient {
 public:
  CGGradient() = default;
  explicit CGGradient(std::vector<GradientStop> stops) : stops_(std::move(stops)) {}

  const std::vector<GradientStop>& stops() const { return stops_; }

 private:
  std::vector<GradientStop> stops_;
};

/// A gradient of sRGB colours: red, green, blue and alpha of each stop back to back, and the
/// location of each; without locations the stops are evenly spaced. Incomplete colours at the end
/// are left out.
CGGradient CGGradientCreateWithColorComponents(std::span<const CGFloat> components,
                                               std::span<const CGFloat> locations);
