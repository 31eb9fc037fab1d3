#include "platform/graphics/pixels/outline/PathBounds.h"

#include <algorithm>
#include <cmath>

namespace {

enum class Measure { curve, controlPoints };

/// Extent of one coordinate, a linear function of x and y, over a path.
class ExtentMeter {
 public:
  ExtentMeter(NSPoint direction, Measure measure) : direction_(direction), measure_(measure) {}

  std::optional<Extent> measure(const PathData& path) {
    size_t next = 0;
    for (const PathVerb verb : path.verbs) {
      const auto count = static_cast<size_t>(pointCount(verb));
      if (path.points.size() - next < count) return {};
      element(verb, path.points.data() + next);
      next += count;
    }
    if (!any_ || !std::isfinite(extent_.min) || !std::isfinite(extent_.max) || !finite_) return {};
    return extent_;
  }

 private:
  double along(NSPoint p) {
    const double v = p.x * direction_.x + p.y * direction_.y;
    finite_ = finite_ && std::isfinite(v);
    return v;
  }

  void element(PathVerb verb, const NSPoint* p) {
    if (verb == PathVerb::move) {
      start_ = current_ = along(p[0]);
      hasCurrent_ = true;
      return;
    }
    if (verb == PathVerb::close) {
      if (hasCurrent_) add(current_);
      current_ = start_;
      return;
    }
    const double end = along(p[pointCount(verb) - 1]);
    if (!hasCurrent_) {
      start_ = current_ = end;
      hasCurrent_ = true;
      return;
    }
    add(current_);
    if (verb == PathVerb::cubic) addCubic(along(p[0]), along(p[1]), end);
    if (verb == PathVerb::quad) addQuad(along(p[0]), end);
    add(end);
    current_ = end;
  }

  void add(double v) {
    extent_.min = any_ ? std::min(extent_.min, v) : v;
    extent_.max = any_ ? std::max(extent_.max, v) : v;
    any_ = true;
  }

  void addQuad(double c, double end) {
    if (measure_ == Measure::controlPoints) {
      add(c);
    } else if (c < std::min(current_, end) || c > std::max(current_, end)) {
      const double t = (current_ - c) / (current_ - 2 * c + end);
      const double s = 1 - t;
      add(s * s * current_ + 2 * s * t * c + t * t * end);
    }
  }

  void addCubic(double c1, double c2, double end) {
    if (measure_ == Measure::controlPoints) {
      add(c1);
      add(c2);
      return;
    }
    const double low = std::min(current_, end);
    const double high = std::max(current_, end);
    if (c1 >= low && c1 <= high && c2 >= low && c2 <= high) return;  // stays within its ends
    // The derivative is 3 (a t^2 + 2 b t + c).
    const double a = end - current_ + 3 * (c1 - c2);
    const double b = current_ - 2 * c1 + c2;
    const double c = c1 - current_;
    const double root = b * b - a * c;
    if (!(root >= 0)) return;
    // The form without cancellation; it also serves a = 0.
    const double q = -(b + std::copysign(std::sqrt(root), b));
    addCubicAt(c1, c2, end, q / a);
    addCubicAt(c1, c2, end, c / q);
  }

  void addCubicAt(double c1, double c2, double end, double t) {
    if (!(t > 0 && t < 1)) return;
    const double s = 1 - t;
    add(s * s * s * current_ + 3 * s * s * t * c1 + 3 * s * t * t * c2 + t * t * t * end);
  }

  NSPoint direction_;
  Measure measure_;
  Extent extent_;
  double start_ = 0;
  double current_ = 0;
  bool any_ = false;
  bool hasCurrent_ = false;
  bool finite_ = true;
};

std::optional<NSRect> boundsBy(const PathData& path, Measure measure) {
  const auto x = ExtentMeter({1, 0}, measure).measure(path);
  const auto y = ExtentMeter({0, 1}, measure).measure(path);
  if (!x || !y) return {};
  return NSMakeRect(x->min, y->min, x->max - x->min, y->max - y->min);
}

}  // namespace

std::optional<NSRect> tightPathBounds(const PathData& path) {
  return boundsBy(path, Measure::curve);
}

std::optional<NSRect> controlPointBounds(const PathData& path) {
  return boundsBy(path, Measure::controlPoints);
}

std::optional<Extent> pathExtentAlong(const PathData& path, NSPoint direction) {
  return ExtentMeter(direction, Measure::curve).measure(path);
}
