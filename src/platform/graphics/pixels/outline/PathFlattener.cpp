#include "platform/graphics/pixels/outline/PathFlattener.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "platform/foundation/Limits.h"

namespace {

constexpr double kFarthestPixel = 1e9;

NSPoint lerp(NSPoint a, NSPoint b, double t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

/// Length of a - 2 b + c.
double bend(NSPoint a, NSPoint b, NSPoint c) {
  const double x = a.x - 2 * b.x + c.x;
  const double y = a.y - 2 * b.y + c.y;
  return std::sqrt(x * x + y * y);
}

/// How an element leaves a point or comes to it; no direction where it has no length.
struct Tangent {
  NSPoint direction;
  bool ofCurve = false;

  /// Whether a curve and what meets it there go the same way, but for the rounding of archives.
  static bool areOne(const Tangent& in, const Tangent& out) {
    if (!in.ofCurve && !out.ofCurve) return false;
    constexpr double kSameDirection = 1e-3;
    const NSPoint a = in.direction, b = out.direction;
    const double cosine = a.x * b.x + a.y * b.y;
    return cosine > 0 && std::abs(a.x * b.y - a.y * b.x) <= kSameDirection * cosine;
  }
};

class Flattener {
 public:
  Flattener(const PathData& path, const CGAffineTransform& toDevice, const FlattenOptions& options,
            FlatPath& out)
      : path_(path), toDevice_(toDevice), options_(options), out_(out) {
    const size_t share = limits::kMaxFlattenedPoints / std::max<size_t>(1, path.verbs.size());
    maxSteps_ =
        std::clamp(static_cast<double>(share), 1.0, static_cast<double>(limits::kMaxCurveSteps));
  }

  bool run() {
    for (const PathVerb verb : path_.verbs) {
      const size_t count = static_cast<size_t>(pointCount(verb));
      if (path_.points.size() - next_ < count) return false;
      element(verb);
      next_ += count;
    }
    endSubpath(false);
    return finite_;
  }

 private:
  /// The point `index` of the current element on the device.
  NSPoint point(size_t index) {
    const NSPoint p = CGPointApplyAffineTransform(path_.points[next_ + index], toDevice_);
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) {
      finite_ = false;
      return {};
    }
    return {std::clamp(p.x, -kFarthestPixel, kFarthestPixel),
            std::clamp(p.y, -kFarthestPixel, kFarthestPixel)};
  }

  void element(PathVerb verb) {
    switch (verb) {
      case PathVerb::move:
        moveTo(point(0));
        break;
      case PathVerb::line:
        if (begin(point(0))) lineTo(point(0));
        break;
      case PathVerb::cubic:
        if (begin(point(2))) cubicTo(point(0), point(1), point(2));
        break;
      case PathVerb::quad:
        if (begin(point(1))) quadTo(point(0), point(1));
        break;
      case PathVerb::close:
        close();
        break;
    }
  }

  void moveTo(NSPoint p) {
    endSubpath(false);
    start_ = current_ = p;
    hasCurrent_ = true;
  }

  /// Starts a subpath at the current point when none is open. False when there is no current
  /// point: `end` becomes it.
  bool begin(NSPoint end) {
    if (!hasCurrent_) {
      moveTo(end);
      return false;
    }
    if (!open_) {
      isFirst_ = true;
      first_ = out_.points.size();
      out_.add(current_, false);
    }
    open_ = true;
    return true;
  }

  void lineTo(NSPoint p) {
    // A line without length is no corner.
    if (p == current_) return;
    leaveTowards(Tangent{vector(current_, p)});
    out_.add(p, false);
    current_ = p;
  }

  static NSPoint vector(NSPoint from, NSPoint to) { return {to.x - from.x, to.y - from.y}; }

  /// Notes the direction of a line, or the first of a curve, from the current point: the point is
  /// smooth when it goes on that of the element before.
  void leaveTowards(const Tangent& tangent) {
    if (isFirst_) {
      departure_ = tangent;
    } else if (Tangent::areOne(arrival_, tangent)) {
      out_.smooth.back() = 1;
    }
    isFirst_ = false;
    arrival_ = tangent;
  }

  /// The same where a closed subpath starts and ends.
  void joinEnds(size_t first) {
    if (isFirst_) return;
    const NSPoint rest = vector(out_.points.back(), out_.points[first]);
    const NSPoint p = out_.points[first];
    constexpr double kNoLength = 1e-6;
    const bool isShut = std::max(std::abs(rest.x), std::abs(rest.y)) <=
                        kNoLength * std::max({1.0, std::abs(p.x), std::abs(p.y)});
    if (!isShut) leaveTowards(Tangent{rest});
    if (!Tangent::areOne(arrival_, departure_)) return;
    out_.smooth[first] = 1;
    if (isShut) out_.smooth.back() = 1;
  }

  void close() {
    if (!hasCurrent_) return;
    begin(start_);
    endSubpath(true);
    current_ = start_;
  }

  void endSubpath(bool closed) {
    if (open_ && closed) joinEnds(first_);
    if (open_) out_.endSubpath(closed);
    open_ = false;
  }

  /// Whether points all lie beyond the same edge of the visible box.
  bool isBeyondOneEdge(std::initializer_list<NSPoint> points) const {
    if (!options_.visible) return false;
    DeviceBounds bounds;
    for (const NSPoint& p : points) bounds.add(p);
    const DeviceBounds& box = *options_.visible;
    return bounds.x1 < box.x0 || bounds.x0 > box.x1 || bounds.y1 < box.y0 || bounds.y0 > box.y1;
  }

  int steps(double distance) const {
    return static_cast<int>(
        std::clamp(std::ceil(std::sqrt(0.75 * distance / options_.tolerance)), 1.0, maxSteps_));
  }

  void quadTo(NSPoint control, NSPoint end) {
    // Degree elevation keeps the curve and its parameter.
    cubicTo(lerp(current_, control, 2.0 / 3), lerp(end, control, 2.0 / 3), end);
  }

  void cubicTo(NSPoint c1, NSPoint c2, NSPoint end) {
    const NSPoint p0 = current_;
    current_ = end;
    leaveTowards({vector(p0, c1 != p0 ? c1 : c2 != p0 ? c2 : end), true});
    arrival_.direction = vector(c2 != end ? c2 : c1 != end ? c1 : p0, end);
    const double distance = std::max(bend(p0, c1, c2), bend(c1, c2, end));
    const int n = steps(distance);
    if (n == 1) {
      out_.add(end, false);
    } else if (n > 3 && isBeyondOneEdge({p0, c1, c2, end})) {
      // The first and the last chord stay: the joins with what is visible depend on them.
      addChords(p0, c1, c2, end, n, n - 2);
    } else {
      addChords(p0, c1, c2, end, n, 1);
    }
  }

  /// The first of n - 1 interior points of the polynomial form ((a t + b) t + c) t + p0, each
  /// `stride`th one after it, and the end.
  void addChords(NSPoint p0, NSPoint c1, NSPoint c2, NSPoint end, int n, int stride) {
    const NSPoint c{3 * (c1.x - p0.x), 3 * (c1.y - p0.y)};
    const NSPoint b{3 * (c2.x - c1.x) - c.x, 3 * (c2.y - c1.y) - c.y};
    const NSPoint a{end.x - p0.x - c.x - b.x, end.y - p0.y - c.y - b.y};
    const size_t old = out_.points.size();
    const int count = 2 + (n - 2) / stride;
    out_.points.resize(old + static_cast<size_t>(count));
    out_.smooth.resize(old + static_cast<size_t>(count), 1);
    NSPoint* chord = out_.points.data() + old;
    const double step = 1.0 / n;
    for (int i = 1; i < n; i += stride) {
      const double t = i * step;
      *chord++ = {((a.x * t + b.x) * t + c.x) * t + p0.x, ((a.y * t + b.y) * t + c.y) * t + p0.y};
    }
    *chord = end;
    out_.smooth.back() = 0;
  }

  const PathData& path_;
  const CGAffineTransform& toDevice_;
  const FlattenOptions& options_;
  FlatPath& out_;
  double maxSteps_;
  size_t next_ = 0;
  NSPoint start_;
  NSPoint current_;
  bool hasCurrent_ = false;
  bool open_ = false;
  bool isFirst_ = false;  ///< the next element is the first of its subpath
  size_t first_ = 0;      ///< index of the subpath's first point
  Tangent departure_;     ///< of that point
  Tangent arrival_;       ///< at the current point
  bool finite_ = true;
};

}  // namespace

bool flattenPath(const PathData& path, const CGAffineTransform& toDevice,
                 const FlattenOptions& options, FlatPath& out) {
  out.clear();
  if (path.verbs.size() > limits::kMaxPathElements) return false;
  if (Flattener(path, toDevice, options, out).run()) return true;
  out.clear();
  return false;
}
