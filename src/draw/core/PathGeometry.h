#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/graphics/path/CGPath.h"
#include "platform/graphics/path/NSBezierPath.h"

/// Plain functions on points, dashes and cubic segments. Angles are degrees, counter-clockwise
/// from the positive x axis, in [0, 360). Nothing here fails: missing input gives neutral answers.

/// Most numbers a dash pattern may hold.
inline constexpr int kMaxDashCount = 10;

/// Numbers of a dash text such as "4:2" into `dash` (kMaxDashCount entries, or null) and their
/// count into `count` (or null). Answers the normalised text, "" for a solid line.
std::string GetDashArrayFromString(std::string_view text, double* dash, int* count);

/// The path's geometry; nothing for a path without elements.
std::optional<CGPath> CreateCGPathFrom(const NSBezierPath& path);
/// Appends every element; a quadratic becomes a cubic whose control points are both its own.
void AppendCGPathToBezierPath(NSBezierPath& path, const CGPath& source);

double DistanceBetweenTwoPoints(NSPoint a, NSPoint b);
double DegreeOfLine(NSPoint p, NSPoint q);
/// Angle at `vertex` from the arm to `a` counter-clockwise to the arm to `b`.
double DegreeOfAngle(NSPoint vertex, NSPoint a, NSPoint b);
/// `moving` constrained to multiples of 45 degrees around `fixed`.
NSPoint GetShiftPoint(NSPoint fixed, NSPoint moving);
/// `p` turned by `degrees` about `center`, and the point that such a turn leads to `p`.
NSPoint PointRotateAt(NSPoint p, NSPoint center, double degrees);
NSPoint PointBeforeRotateAt(NSPoint p, NSPoint center, double degrees);
/// Where the ray at that angle from the centre meets the ellipse inscribed in `rect`; on a flat
/// ellipse the angle is first bent towards the long axis. The centre when a half-axis is below 1.
NSPoint GetPointInEllipse(const NSRect& rect, double degrees);
