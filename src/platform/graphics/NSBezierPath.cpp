#include "platform/graphics/NSBezierPath.h"

#include <cassert>
#include <cmath>
#include <numbers>

#include "platform/graphics/PathShapes.h"
#include "platform/graphics/pixels/PathBounds.h"

const NSClass NSBezierPath::kClass{"NSBezierPath", &NSObject::kClass, NSAllocate<NSBezierPath>};

std::shared_ptr<NSBezierPath> NSBezierPath::bezierPathWithRect(const NSRect& r) {
  auto path = bezierPath();
  path->appendBezierPathWithRect(r);
  return path;
}

std::shared_ptr<NSBezierPath> NSBezierPath::bezierPathWithOvalInRect(const NSRect& r) {
  auto path = bezierPath();
  path->appendBezierPathWithOvalInRect(r);
  return path;
}

void NSBezierPath::append(PathVerb verb, std::initializer_list<NSPoint> points) {
  indexElement(verb, static_cast<uint32_t>(data_.points.size()));
  data_.verbs.push_back(verb);
  data_.points.insert(data_.points.end(), points);
}

void NSBezierPath::indexElement(PathVerb verb, uint32_t nextPoint) {
  if (verb == PathVerb::move) start_ = nextPoint;
  firstPoint_.push_back(verb == PathVerb::close ? start_ : nextPoint);
}

void NSBezierPath::moveToPoint(NSPoint p) {
  const size_t n = data_.verbs.size();
  // The move that a close brought along only stands in for one that did not come.
  if (n >= 2 && data_.verbs[n - 1] == PathVerb::move && data_.verbs[n - 2] == PathVerb::close) {
    data_.points.back() = p;
  } else {
    append(PathVerb::move, {p});
  }
}

void NSBezierPath::lineToPoint(NSPoint p) {
  if (isEmpty()) return moveToPoint(p);
  append(PathVerb::line, {p});
}

void NSBezierPath::curveToPoint(NSPoint end, NSPoint controlPoint1, NSPoint controlPoint2) {
  if (isEmpty()) return moveToPoint(end);
  append(PathVerb::cubic, {controlPoint1, controlPoint2, end});
}

void NSBezierPath::closePath() {
  if (isEmpty()) return;
  append(PathVerb::close, {});
  append(PathVerb::move, {data_.points[start_]});
}

void NSBezierPath::removeAllPoints() {
  data_.clear();
  firstPoint_.clear();
  start_ = 0;
}

void NSBezierPath::appendShape(const PathData& shape) {
  const NSPoint* p = shape.points.data();
  for (size_t i = 0; i < shape.verbs.size(); ++i) {
    const PathVerb verb = shape.verbs[i];
    switch (verb) {
      case PathVerb::move:
        moveToPoint(p[0]);
        break;
      case PathVerb::line:
        lineToPoint(p[0]);
        break;
      case PathVerb::quad:
        curveToPoint(p[1], p[0], p[0]);
        break;
      case PathVerb::cubic:
        curveToPoint(p[2], p[0], p[1]);
        break;
      case PathVerb::close:
        closePath();
        break;
    }
    p += pointCount(verb);
  }
}

void NSBezierPath::appendBezierPath(const NSBezierPath& other) {
  if (&other == this) return appendShape(PathData(other.data_));
  appendShape(other.data_);
}

void NSBezierPath::appendBezierPathWithRect(const NSRect& r) {
  PathData shape;
  appendRect(shape, r);
  appendShape(shape);
}

void NSBezierPath::appendBezierPathWithOvalInRect(const NSRect& r) {
  PathData shape;
  appendEllipse(shape, r, -45);
  appendShape(shape);
}

void NSBezierPath::appendBezierPathWithRoundedRect(const NSRect& r, CGFloat xRadius,
                                                   CGFloat yRadius) {
  PathData shape;
  appendRoundedRect(shape, r, xRadius, yRadius);
  appendShape(shape);
}

void NSBezierPath::appendBezierPathWithArcWithCenter(NSPoint center, CGFloat radius,
                                                     CGFloat startAngle, CGFloat endAngle) {
  if (!std::isfinite(startAngle) || !std::isfinite(endAngle)) return;
  CGFloat sweep = std::fmod(endAngle - startAngle, 360);
  if (sweep < 0) sweep += 360;
  if (sweep == 0 && endAngle != startAngle) sweep = 360;
  PathData shape;
  const NSPoint first = ellipsePoint(center, radius, radius, startAngle);
  if (isEmpty()) {
    moveToPoint(first);
  } else if (currentPoint() != first) {
    lineToPoint(first);
  }
  appendArc(shape, center, radius, radius, startAngle, sweep);
  appendShape(shape);
}

void NSBezierPath::appendBezierPathWithArcFromPoint(NSPoint p1, NSPoint p2, CGFloat radius) {
  const std::optional<NSPoint> from = currentPoint();
  if (!from) return;
  const CGFloat ax = from->x - p1.x, ay = from->y - p1.y;
  const CGFloat bx = p2.x - p1.x, by = p2.y - p1.y;
  const CGFloat cross = ax * by - ay * bx;
  const CGFloat la = std::hypot(ax, ay), lb = std::hypot(bx, by);
  if (!(std::fabs(cross) > 1e-12 * la * lb) || radius <= 0) return lineToPoint(p1);
  const CGFloat half = std::acos(std::fmin(1.0, (ax * bx + ay * by) / (la * lb))) / 2;
  const CGFloat reach = radius / std::tan(half);
  const NSPoint tangent{p1.x + ax / la * reach, p1.y + ay / la * reach};
  const CGFloat side = cross > 0 ? 1 : -1;
  // The centre lies square to the first leg at the tangent point, towards the second leg.
  const NSPoint center{tangent.x - ay / la * radius * side, tangent.y + ax / la * radius * side};
  const CGFloat start = std::atan2(tangent.y - center.y, tangent.x - center.x);
  if (*from != tangent) lineToPoint(tangent);
  PathData shape;
  constexpr CGFloat kDegrees = 180 / std::numbers::pi;
  appendArc(shape, center, radius, radius, start * kDegrees, -side * (180 - 2 * half * kDegrees));
  appendShape(shape);
}

NSBezierPathElement NSBezierPath::elementAtIndex(int64_t index, NSPoint* points) const {
  const auto i = static_cast<size_t>(index);
  assert(index >= 0 && i < data_.verbs.size());
  const PathVerb verb = data_.verbs[i];
  if (points != nullptr) {
    const NSPoint* p = data_.points.data() + firstPoint_[i];
    const int count = verb == PathVerb::close ? 1 : pointCount(verb);
    for (int k = 0; k < count; ++k) points[k] = p[k];
  }
  return static_cast<NSBezierPathElement>(verb);
}

void NSBezierPath::setAssociatedPoints(const NSPoint* points, int64_t index) {
  const auto i = static_cast<size_t>(index);
  assert(index >= 0 && i < data_.verbs.size());
  for (int k = 0; k < pointCount(data_.verbs[i]); ++k) {
    data_.points[firstPoint_[i] + static_cast<size_t>(k)] = points[k];
  }
}

void NSBezierPath::removeElementsFrom(int64_t index) {
  const auto i = static_cast<size_t>(index);
  if (i >= data_.verbs.size()) return;
  data_.verbs.resize(i);
  reindex();
}

std::optional<NSPoint> NSBezierPath::currentPoint() const {
  if (isEmpty()) return std::nullopt;
  return data_.verbs.back() == PathVerb::close ? data_.points[start_] : data_.points.back();
}

NSRect NSBezierPath::bounds() const {
  return tightPathBounds(data_).value_or(NSZeroRect);
}

NSRect NSBezierPath::controlPointBounds() const {
  return ::controlPointBounds(data_).value_or(NSZeroRect);
}

void NSBezierPath::transformUsingAffineTransform(const NSAffineTransform& transform) {
  for (NSPoint& p : data_.points) p = transform.transformPoint(p);
}

void NSBezierPath::setLineDash(std::span<const CGFloat> pattern, CGFloat phase) {
  dash_.assign(pattern.begin(), pattern.end());
  dashPhase_ = phase;
}

void NSBezierPath::reindex() {
  firstPoint_.clear();
  firstPoint_.reserve(data_.verbs.size());
  uint32_t next = 0;
  start_ = 0;
  for (const PathVerb verb : data_.verbs) {
    indexElement(verb, next);
    next += static_cast<uint32_t>(pointCount(verb));
  }
  data_.points.resize(next);
}

namespace {

/// One subpath: its points with the verbs that lead to points 1, 2, ...
struct Subpath {
  std::vector<NSPoint> points;
  std::vector<PathVerb> verbs;
  bool closed = false;
};

void appendReversed(NSBezierPath& out, const Subpath& s) {
  if (s.points.empty()) return;
  size_t p = s.points.size() - 1;
  const NSPoint start = s.closed ? s.points.front() : s.points[p];
  out.moveToPoint(start);
  if (s.closed && s.points[p] != start) out.lineToPoint(s.points[p]);
  for (size_t v = s.verbs.size(); v-- > 0;) {
    if (s.verbs[v] == PathVerb::cubic) {
      out.curveToPoint(s.points[p - 3], s.points[p - 1], s.points[p - 2]);
      p -= 3;
    } else {
      // The closing line takes the place of the last one back to the start.
      if (!(s.closed && v == 0 && s.points.back() != start)) out.lineToPoint(s.points[p - 1]);
      --p;
    }
  }
  if (s.closed) out.closePath();
}

}  // namespace

std::shared_ptr<NSBezierPath> NSBezierPath::bezierPathByReversingPath() const {
  auto result = copy();
  result->removeAllPoints();
  Subpath subpath;
  NSPoint start;
  const NSPoint* p = data_.points.data();
  for (size_t i = 0; i < data_.verbs.size(); ++i) {
    const PathVerb verb = data_.verbs[i];
    if (verb == PathVerb::move) {
      const bool afterClose = i > 0 && data_.verbs[i - 1] == PathVerb::close;
      if (!subpath.verbs.empty() || (!subpath.points.empty() && !afterClose)) {
        appendReversed(*result, subpath);
      }
      start = p[0];
      subpath = {{start}, {}, false};
    } else if (verb == PathVerb::close) {
      subpath.closed = true;
      appendReversed(*result, subpath);
      subpath = {};
    } else {
      if (subpath.points.empty()) subpath.points.push_back(start);
      subpath.verbs.push_back(verb);
      subpath.points.insert(subpath.points.end(), p, p + pointCount(verb));
    }
    p += pointCount(verb);
  }
  if (!subpath.verbs.empty()) appendReversed(*result, subpath);
  return result;
}
