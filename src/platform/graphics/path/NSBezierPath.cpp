#include "platform/graphics/path/NSBezierPath.h"

#include <bit>
#include <cassert>
#include <cmath>
#include <numbers>

#include "platform/foundation/BigEndian.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/path/PathHitTest.h"
#include "platform/graphics/path/PathSegments.h"
#include "platform/graphics/path/PathShapes.h"
#include "platform/graphics/pixels/outline/PathBounds.h"

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

void NSBezierPath::roundToArchivedPrecision() {
  // Not in a loop over the points: g++ 12 leaves the last one of an odd number as it is.
  PathData kept = pathFromSegments(segmentsOfPath(data_));
  if (kept.verbs == data_.verbs) data_.points = std::move(kept.points);
  for (CGFloat& length : dash_) length = static_cast<CGFloat>(static_cast<float>(length));
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

bool NSBezierPath::containsPoint(NSPoint p) const {
  return pathContains(data_, windingRule_, p);
}

StrokeStyle NSBezierPath::strokeStyle() const {
  return {lineWidth_, cap_, join_, miterLimit_, dash_, dashPhase_};
}

// --- Archives ---

namespace {

constexpr const char* kSegments = "NSSegments";
constexpr const char* kLineWidth = "NSLineWidth";
constexpr const char* kCapStyle = "NSCapStyle";
constexpr const char* kJoinStyle = "NSJoinStyle";
constexpr const char* kFlatness = "NSFlatness";
constexpr const char* kMiterLimit = "NSMiterLimit";
constexpr const char* kWindingRule = "NSWindingRule";
constexpr const char* kDashPatterns = "NSDashPatterns";
constexpr const char* kDashPhase = "NSDashPhase";
constexpr CGFloat kDefaultFlatness = 0.6;

/// The record's keys with `part` in their name, `key` itself first.
std::vector<std::string> keysLike(NSCoder& coder, const char* key, std::string_view part) {
  std::vector<std::string> keys;
  if (coder.containsValueForKey(key)) keys.emplace_back(key);
  for (std::string& other : coder.decodableKeys()) {
    if (other != key && other.find(part) != std::string::npos) keys.push_back(std::move(other));
  }
  return keys;
}

/// Writers do not agree on the names of styles.
template <class Style>
Style styleUnder(NSCoder& coder, const char* key, std::string_view part, Style last) {
  for (const std::string& name : keysLike(coder, key, part)) {
    if (const auto number = coder.decodeNumberForKey(name)) {
      const int64_t value = number->integerValue();
      return value < 0 || value > static_cast<int64_t>(last) ? Style{} : static_cast<Style>(value);
    }
  }
  return {};
}

/// A dash pattern as big-endian floats, or as an array of numbers.
std::vector<CGFloat> dashUnder(NSCoder& coder, const std::string& key) {
  std::vector<CGFloat> dash;
  if (const auto data = coder.decodeDataForKey(key)) {
    const auto bytes = data->bytes();
    for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
      dash.push_back(loadBigEndianFloat(&bytes[i]));
    }
  } else if (const auto array = coder.decodeObjectOfClass<NSArray>(key)) {
    for (const auto& object : *array) {
      const auto* number = dynamic_cast<const NSNumber*>(object.get());
      if (number != nullptr) dash.push_back(number->doubleValue());
    }
  }
  return dash;
}

std::vector<CGFloat> decodeDash(NSCoder& coder) {
  for (const std::string& key : keysLike(coder, kDashPatterns, "Dash")) {
    if (auto dash = dashUnder(coder, key); !dash.empty()) return dash;
  }
  return {};
}

CGFloat doubleUnder(NSCoder& coder, const char* key, CGFloat absent) {
  return coder.containsValueForKey(key) ? coder.decodeDoubleForKey(key) : absent;
}

}  // namespace

bool NSBezierPath::initWithCoder(NSCoder& coder) {
  if (coder.containsValueForKey(kSegments))
    data_ = pathFromSegments(coder.decodeBytesForKey(kSegments));
  reindex();
  lineWidth_ = doubleUnder(coder, kLineWidth, 1);
  flatness_ = doubleUnder(coder, kFlatness, kDefaultFlatness);
  // Old writers widened a float 0.6.
  if (std::fabs(flatness_ - kDefaultFlatness) < 1e-6) flatness_ = kDefaultFlatness;
  miterLimit_ = doubleUnder(coder, kMiterLimit, 10);
  cap_ = styleUnder(coder, kCapStyle, "Cap", LineCap::square);
  join_ = styleUnder(coder, kJoinStyle, "Join", LineJoin::bevel);
  windingRule_ = styleUnder(coder, kWindingRule, "Winding", WindingRule::evenOdd);
  dash_ = decodeDash(coder);
  if (!dash_.empty()) dashPhase_ = doubleUnder(coder, kDashPhase, 0);
  return true;
}

void NSBezierPath::encodeWithCoder(NSCoder& coder) const {
  if (!isEmpty()) coder.encodeBytes(segmentsOfPath(data_), kSegments);
  if (lineWidth_ != 1) coder.encodeDouble(lineWidth_, kLineWidth);
  if (cap_ != LineCap::butt) coder.encodeInteger(static_cast<int64_t>(cap_), kCapStyle);
  if (join_ != LineJoin::miter) coder.encodeInteger(static_cast<int64_t>(join_), kJoinStyle);
  if (miterLimit_ != 10) coder.encodeDouble(miterLimit_, kMiterLimit);
  if (flatness_ != kDefaultFlatness) coder.encodeDouble(flatness_, kFlatness);
  if (windingRule_ != WindingRule::nonZero) {
    coder.encodeInteger(static_cast<int64_t>(windingRule_), kWindingRule);
  }
  if (!dash_.empty()) {
    std::vector<uint8_t> bytes;
    for (CGFloat v : dash_) {
      appendBigEndian(bytes, std::bit_cast<uint32_t>(static_cast<float>(v)), 4);
    }
    coder.encodeBytes(bytes, kDashPatterns);
    coder.encodeDouble(dashPhase_, kDashPhase);
  }
}
