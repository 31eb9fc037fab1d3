#include "draw/core/ZTBezierPathExtension.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "draw/core/CurveGeometry.h"
#include "draw/core/PathGeometry.h"

bool hasOddLineWidth(const NSBezierPath& path) {
  constexpr CGFloat kWidest = 1e9;
  const CGFloat width = path.lineWidth();
  return width >= 1 && width < kWidest && static_cast<int64_t>(width) % 2 != 0;
}

bool isPathClosed(const NSBezierPath& path) {
  const int64_t n = path.elementCount();
  return n >= 4 && (path.elementAtIndex(n - 1) == NSClosePathBezierPathElement ||
                    path.elementAtIndex(n - 2) == NSClosePathBezierPathElement);
}

bool canClosePath(const NSBezierPath& path) {
  return path.elementCount() >= 3 && !isPathClosed(path);
}

std::shared_ptr<NSBezierPath> removeLastElements(const NSBezierPath& path, int64_t n) {
  auto result = path.copy();
  result->removeElementsFrom(std::max<int64_t>(0, path.elementCount() - n));
  return result;
}

bool toggleClosePath(NSBezierPath& path) {
  const int64_t n = path.elementCount();
  if (isPathClosed(path)) {
    const NSBezierPathElement last = path.elementAtIndex(n - 1);
    const bool endsWithClose = last == NSClosePathBezierPathElement;
    // A path that was drawn on after its close stays as it is.
    if (!endsWithClose && last != NSMoveToBezierPathElement) return false;
    path.removeElementsFrom(n - (endsWithClose ? 1 : 2));
    return true;
  }
  if (!canClosePath(path)) return false;
  path.closePath();
  return true;
}

namespace {

/// One drawn piece of a path: a line (2 points) or a cubic (4 points).
struct PathSegment {
  NSPoint p[4];
  bool curved;
  int64_t element;
};

double lengthOf(const PathSegment& s) {
  return s.curved ? LengthOfCurvedBezierPath(s.p[0], s.p[1], s.p[2], s.p[3])
                  : DistanceBetweenTwoPoints(s.p[0], s.p[1]);
}

NSPoint endOf(const PathSegment& s) {
  return s.curved ? s.p[3] : s.p[1];
}

/// Calls visit(segment) for every drawn piece in order until it answers false.
template <class Visit>
void forEachSegment(const NSBezierPath& path, Visit visit) {
  NSPoint start, current, p[3];
  for (int64_t i = 0; i < path.elementCount(); ++i) {
    PathSegment s{{current}, false, i};
    switch (path.elementAtIndex(i, p)) {
      case NSMoveToBezierPathElement:
        start = current = p[0];
        continue;
      case NSLineToBezierPathElement:
        s.p[1] = p[0];
        break;
      case NSCurveToBezierPathElement:
        s = {{current, p[0], p[1], p[2]}, true, i};
        break;
      case NSClosePathBezierPathElement:
        s.p[1] = start;
        break;
    }
    if (!visit(s)) return;
    current = endOf(s);
  }
}

/// The position `length` along one segment; the search goes on where it was.
PathPosition positionOn(const PathSegment& s, double length, CurveSearch& search) {
  if (s.curved) {
    FindPointOnCurvedBezierPath(&search, s.p[0], s.p[1], s.p[2], s.p[3], length);
    const NSPoint start{s.p[1].x - s.p[0].x, s.p[1].y - s.p[0].y};
    return {search.point, s.element, search.step == 0 ? start : search.direction};
  }
  const double total = lengthOf(s);
  const double fraction = total > 0 ? std::clamp(length / total, 0.0, 1.0) : 0;
  return {InterpolateLineSegment(s.p[0], s.p[1], fraction),
          s.element,
          {s.p[1].x - s.p[0].x, s.p[1].y - s.p[0].y}};
}

PathPosition positionOn(const PathSegment& s, double length) {
  CurveSearch search;
  return positionOn(s, length, search);
}

double parameterAt(const PathSegment& s, double length, double total) {
  if (length <= 0) return 0;
  if (length >= total) return 1;
  CurveSearch search;
  FindPointOnCurvedBezierPath(&search, s.p[0], s.p[1], s.p[2], s.p[3], length);
  return search.t;
}

/// Appends the piece of a segment between two lengths on it.
void appendPiece(NSBezierPath& out, const PathSegment& s, double from, double to, double total) {
  if (!s.curved) {
    const NSPoint a = positionOn(s, from).point;
    if (out.currentPoint() != a) out.moveToPoint(a);
    out.lineToPoint(positionOn(s, to).point);
    return;
  }
  const double t0 = parameterAt(s, from, total);
  const double t1 = parameterAt(s, to, total);
  const DividedCubic tail = DivideCubicBezierPath(s.p[0], s.p[1], s.p[2], s.p[3], t0);
  if (!tail.hasSecond) return;
  const NSPoint* c = tail.second;
  const double rest = t1 >= 1 ? 1 : (t1 - t0) / (1 - t0);
  const DividedCubic piece = DivideCubicBezierPath(c[0], c[1], c[2], c[3], rest);
  if (!piece.hasFirst) return;
  if (out.currentPoint() != piece.first[0]) out.moveToPoint(piece.first[0]);
  out.curveToPoint(piece.first[3], piece.first[1], piece.first[2]);
}

}  // namespace

NSPoint InterpolatePointOnPathElement(const NSBezierPath& path, int64_t elementIndex,
                                      double fraction) {
  NSPoint p[3];
  if (elementIndex < 0 || elementIndex >= path.elementCount()) return NSZeroPoint;
  path.elementAtIndex(elementIndex, p);
  NSPoint found = p[0];
  forEachSegment(path, [&](const PathSegment& s) {
    if (s.element != elementIndex) return s.element < elementIndex;
    found = s.curved ? GetCurvedBezierPoint(fraction, s.p[0], s.p[1], s.p[2], s.p[3])
                     : InterpolateLineSegment(s.p[0], s.p[1], fraction);
    return false;
  });
  return found;
}

std::optional<NSPoint> findPointClosestToPoint(const NSBezierPath& path, NSPoint point) {
  std::optional<NSPoint> closest;
  forEachSegment(path, [&](const PathSegment& s) {
    const NSPoint p = s.curved
                          ? GetPointOnCurveClosestToPoint(s.p[0], s.p[1], s.p[2], s.p[3], point)
                          : GetPointOnLineClosestToPoint(s.p[0], s.p[1], point);
    const bool isCloser =
        !closest || DistanceBetweenTwoPoints(p, point) < DistanceBetweenTwoPoints(*closest, point);
    if (isCloser) closest = p;
    return true;
  });
  return closest;
}

float pathLineLength(const NSBezierPath& path) {
  float total = 0;
  forEachSegment(path, [&](const PathSegment& s) {
    total = static_cast<float>(total + lengthOf(s));
    return true;
  });
  return total;
}

struct PathMeasure::Measured {
  struct Piece {
    PathSegment segment;
    double start;
    double length;
  };
  std::vector<Piece> pieces;
  float total = 0;
  size_t piece = 0;    // where the last position was
  CurveSearch search;  // on that piece
  double searched = 0;
};

PathMeasure::PathMeasure(const NSBezierPath& path) : measured_(std::make_unique<Measured>()) {
  double start = 0;
  forEachSegment(path, [&](const PathSegment& s) {
    const double length = lengthOf(s);
    measured_->pieces.push_back({s, start, length});
    measured_->total = static_cast<float>(measured_->total + length);
    start += length;
    return true;
  });
}

PathMeasure::~PathMeasure() = default;

float PathMeasure::length() const {
  return measured_->total;
}

PathPosition PathMeasure::positionAt(double length) {
  Measured& m = *measured_;
  if (m.pieces.empty()) return {};
  const double wanted = std::clamp(length, 0.0, static_cast<double>(m.total));
  // The first piece that reaches as far.
  const auto found = std::lower_bound(
      m.pieces.begin(), m.pieces.end() - 1, wanted,
      [](const Measured::Piece& piece, double at) { return piece.start + piece.length < at; });
  const auto piece = static_cast<size_t>(found - m.pieces.begin());
  const double along = std::min(wanted - found->start, found->length);
  if (piece != m.piece || along < m.searched) m.search = {};
  m.piece = piece;
  m.searched = along;
  return positionOn(found->segment, along, m.search);
}

PathPosition pointAtPercent(const NSBezierPath& path, double percent) {
  PathMeasure measure(path);
  return measure.positionAt(std::clamp(percent, 0.0, 1.0) * static_cast<double>(measure.length()));
}

std::shared_ptr<NSBezierPath> subPathWithLengthFrom(const NSBezierPath& path, double from,
                                                    double to) {
  auto result = path.copy();
  result->removeAllPoints();
  double walked = 0;
  forEachSegment(path, [&](const PathSegment& s) {
    const double length = lengthOf(s);
    const double a = std::max(from - walked, 0.0);
    const double b = std::min(to - walked, length);
    if (a < b) appendPiece(*result, s, a, b, length);
    walked += length;
    return walked < to;
  });
  return result;
}
