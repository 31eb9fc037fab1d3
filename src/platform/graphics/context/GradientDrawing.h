#pragma once

#include <optional>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/context/CGContext.h"
#include "platform/graphics/gradient/CGGradient.h"
#include "platform/graphics/pixels/outline/PathData.h"

/// Gradients laid over rectangles and paths. Angles are in degrees, counter-clockwise from the x
/// axis. Rectangles that are empty and paths that enclose nothing are left alone, as is everything
/// whose geometry is not finite.

/// The axis that shows the start and the end colour at the two corners of the rectangle (or the
/// middles of its edges) that lie farthest apart in the direction of the angle.
std::optional<LinearAxis> linearAxis(const NSRect& rect, CGFloat angle);
/// The same for the ends of a path itself.
std::optional<LinearAxis> linearAxis(const PathData& path, CGFloat angle);

/// Circles from the middle of the rectangle, radius 0, to one that covers the rectangle. Its centre
/// is moved from the middle by `relativeCenter` half sides; (1, 1) is the upper right corner.
/// Positions are held within -1..1.
std::optional<RadialAxis> radialAxis(const NSRect& rect, NSPoint relativeCenter);
/// The same for the bounds of a path.
std::optional<RadialAxis> radialAxis(const PathData& path, NSPoint relativeCenter);

void drawGradientInRect(CGContext& context, const CGGradient& gradient, const NSRect& rect,
                        CGFloat angle);
void drawGradientInRect(CGContext& context, const CGGradient& gradient, const NSRect& rect,
                        NSPoint relativeCenterPosition);
void drawGradientInBezierPath(CGContext& context, const CGGradient& gradient, const PathData& path,
                              WindingRule winding, CGFloat angle);
void drawGradientInBezierPath(CGContext& context, const CGGradient& gradient, const PathData& path,
                              WindingRule winding, NSPoint relativeCenterPosition);
