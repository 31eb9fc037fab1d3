#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/graphics/CGPath.h"
#include "platform/graphics/NSBezierPath.h"

/// Plain functions on points, dashes and cubic segments. Angles are degrees, counter-clockwise
/// from the positive x axis, in [0, 360). Nothing here fails: missing input gives neutral answers.

/// Most numbers a dash pattern may hold.
inline constexpr int kMaxDashCount = 10;

/// The closed triangle at the end of the segment `from` - `to`, or null when the segment has no
/// room for it (a head smaller than twice the line width).
///
/// `sharedSegment`: a second head shares the segment. `endCanMove`: the segment is straight, the
/// tip is `to` and `*movedEnd` (unless null) receives where the line has to end inside the head;
/// otherwise the segment is the end of a curve, which stays, and the tip lies beyond `to`.
std::shared_ptr<NSBezierPath> GetArrowPathAndAdjustedEndPoint(bool sharedSegment, bool endCanMove,
                                                              NSPoint* movedEnd, NSPoint from,
                                                              NSPoint to, float lineWidth);

/// Numbers of a dash text such as "4:2" into `dash` (kMaxDashCount entries, or null) and their
/// count into `count` (or null). Answers the normalised text, "" for a solid line.
std::string GetDashArrayFromString(std::string_view text, double* dash, int* count);

/// The path's geometry; nothing drawn gives an empty path.
CGPath CreateCGPathFrom(const NSBezierPath& path);
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

/// One coordinate, or the point, of a cubic at t in [0, 1].
double GetCurvedBezierPosition(double t, double p0, double p1, double p2, double p3);
NSPoint GetCurvedBezierPoint(double t, NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3);

/// Chords a cubic is measured with.
inline constexpr int kCurveSteps = 2000;

/// Sum of the chords between kCurveSteps + 1 samples.
double LengthOfCurvedBezierPath(NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3);

/// Where a walk along one cubic has got to; start with a default record and ask for increasing
/// lengths to walk the cubic once.
struct CurveSearch {
  NSPoint point;
  int step = 0;
  double length = 0;
  double t = 0;
  /// Difference of `point` to the sample before it.
  NSPoint direction;
};

/// Walks the samples until `length` is reached, and answers the length really reached: less than
/// asked for when the curve is shorter. `search` may be null.
double FindPointOnCurvedBezierPath(CurveSearch* search, NSPoint p0, NSPoint p1, NSPoint p2,
                                   NSPoint p3, double length);

NSPoint InterpolateLineSegment(NSPoint a, NSPoint b, double fraction);
/// Nearest point on the segment, and on the cubic (to within a sample step of kCurveSteps).
NSPoint GetPointOnLineClosestToPoint(NSPoint a, NSPoint b, NSPoint p);
NSPoint GetPointOnCurveClosestToPoint(NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3, NSPoint p);

/// Control points and ends of both halves of a cubic split at t (de Casteljau). At t <= 0 the
/// first half has no points, at t >= 1 the second.
struct DividedCubic {
  NSPoint first[4];
  NSPoint second[4];
  bool hasFirst = true;
  bool hasSecond = true;
};
DividedCubic DivideCubicBezierPath(NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3, double t);
