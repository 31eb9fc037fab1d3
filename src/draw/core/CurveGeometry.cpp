// Cubic Bezier segments: positions, lengths, searches, division.
#include "draw/core/CurveGeometry.h"

#include <algorithm>
#include <cmath>

#include "draw/core/PathGeometry.h"

double GetCurvedBezierPosition(double t, double p0, double p1, double p2, double p3) {
  const double u = 1 - t;
  return u * u * u * p0 + 3 * t * u * u * p1 + 3 * t * t * u * p2 + t * t * t * p3;
}

NSPoint GetCurvedBezierPoint(double t, NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3) {
  return {GetCurvedBezierPosition(t, p0.x, p1.x, p2.x, p3.x),
          GetCurvedBezierPosition(t, p0.y, p1.y, p2.y, p3.y)};
}

double LengthOfCurvedBezierPath(NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3) {
  double length = 0;
  NSPoint previous = GetCurvedBezierPoint(0, p0, p1, p2, p3);
  for (int i = 1; i <= kCurveSteps; ++i) {
    const NSPoint sample =
        GetCurvedBezierPoint(static_cast<double>(i) / kCurveSteps, p0, p1, p2, p3);
    length += DistanceBetweenTwoPoints(previous, sample);
    previous = sample;
  }
  return length;
}

double FindPointOnCurvedBezierPath(CurveSearch* search, NSPoint p0, NSPoint p1, NSPoint p2,
                                   NSPoint p3, double length) {
  CurveSearch fresh;
  CurveSearch& s = search != nullptr ? *search : fresh;
  if (length > s.length && s.step > kCurveSteps - 1) return s.length;
  if (s.step == 0) s.point = GetCurvedBezierPoint(0, p0, p1, p2, p3);
  while (s.length < length && s.step < kCurveSteps) {
    ++s.step;
    s.t = static_cast<double>(s.step) / kCurveSteps;
    const NSPoint sample = GetCurvedBezierPoint(s.t, p0, p1, p2, p3);
    s.direction = {sample.x - s.point.x, sample.y - s.point.y};
    s.length += DistanceBetweenTwoPoints(s.point, sample);
    s.point = sample;
  }
  return s.length;
}

NSPoint InterpolateLineSegment(NSPoint a, NSPoint b, double fraction) {
  return {a.x + (b.x - a.x) * fraction, a.y + (b.y - a.y) * fraction};
}

NSPoint GetPointOnLineClosestToPoint(NSPoint a, NSPoint b, NSPoint p) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double square = dx * dx + dy * dy;
  if (!(square > 0)) return a;
  const double t = ((p.x - a.x) * dx + (p.y - a.y) * dy) / square;
  return InterpolateLineSegment(a, b, std::clamp(t, 0.0, 1.0));
}

NSPoint GetPointOnCurveClosestToPoint(NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3, NSPoint p) {
  NSPoint best = p0;
  double bestDistance = DistanceBetweenTwoPoints(p0, p);
  for (int i = 1; i <= kCurveSteps; ++i) {
    const NSPoint sample =
        GetCurvedBezierPoint(static_cast<double>(i) / kCurveSteps, p0, p1, p2, p3);
    const double distance = DistanceBetweenTwoPoints(sample, p);
    if (distance < bestDistance) {
      best = sample;
      bestDistance = distance;
    }
  }
  return best;
}

DividedCubic DivideCubicBezierPath(NSPoint p0, NSPoint p1, NSPoint p2, NSPoint p3, double t) {
  if (t <= 0) return {{}, {p0, p1, p2, p3}, false, true};
  if (t >= 1) return {{p0, p1, p2, p3}, {}, true, false};
  const NSPoint a = InterpolateLineSegment(p0, p1, t);
  const NSPoint b = InterpolateLineSegment(p1, p2, t);
  const NSPoint c = InterpolateLineSegment(p2, p3, t);
  const NSPoint ab = InterpolateLineSegment(a, b, t);
  const NSPoint bc = InterpolateLineSegment(b, c, t);
  const NSPoint middle = InterpolateLineSegment(ab, bc, t);
  return {{p0, a, ab, middle}, {middle, bc, c, p3}, true, true};
}
