#pragma once

#include "platform/graphics/pixels/outline/PathData.h"

/// Builders of closed outlines shared by NSBezierPath and CGPath. All run counter-clockwise in a
/// y-up space and end with a close element.

/// Corners from the origin on.
void appendRect(PathData& path, const NSRect& r);

/// Four 90-degree cubics from the point at `startDegrees` on the ellipse inscribed in r.
void appendEllipse(PathData& path, const NSRect& r, CGFloat startDegrees);

/// From the left end of the top edge; radii are clamped to half the sides, and a zero radius gives
/// the plain rectangle.
void appendRoundedRect(PathData& path, const NSRect& r, CGFloat xRadius, CGFloat yRadius);

/// Cubics of at most 90 degrees along the arc from `startDegrees` over `sweepDegrees` (positive is
/// counter-clockwise), continuing from the path's current point, which should be the arc's start.
/// Control arms are 4/3 tan(sweep / 4) of the radius (Riskus, "Approximation of a cubic Bezier
/// curve by circular arcs and vice versa", 2006).
void appendArc(PathData& path, NSPoint center, CGFloat xRadius, CGFloat yRadius,
               CGFloat startDegrees, CGFloat sweepDegrees);

/// The point of the ellipse around `center` at an angle of its parameter.
NSPoint ellipsePoint(NSPoint center, CGFloat xRadius, CGFloat yRadius, CGFloat degrees);
