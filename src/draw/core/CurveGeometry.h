#pragma once

#include "platform/foundation/Geometry.h"

/// Cubic segments: points, lengths, divisions. Nothing here fails.

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
