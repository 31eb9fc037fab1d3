#include "platform/graphics/pixels/outline/PathDasher.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/Limits.h"

namespace {

constexpr double kShortestPattern = 0.05;

/// A part of a segment by distance from its start; empty when from > to.
struct DistanceSpan {
  double from = 0;
  double to = 0;
};

struct LineSegment {
  NSPoint a;
  NSPoint b;
  double length = 0;

  LineSegment(NSPoint from, NSPoint to) : a(from), b(to) {
    const double x = b.x - a.x;
    const double y = b.y - a.y;
    length = std::sqrt(x * x + y * y);
  }
  NSPoint at(double distance) const {
    const double t = distance / length;
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
  }
};

/// The part of `s` inside `box` (Liang and Barsky).
DistanceSpan inside(const LineSegment& s, const DeviceBounds& box) {
  double t0 = 0, t1 = 1;
  const auto cut = [&](double start, double delta, double low, double high) {
    if (delta == 0) {
      if (start < low || start > high) t0 = 2;
      return;
    }
    const double ta = (low - start) / delta;
    const double tb = (high - start) / delta;
    t0 = std::max(t0, std::min(ta, tb));
    t1 = std::min(t1, std::max(ta, tb));
  };
  cut(s.a.x, s.b.x - s.a.x, box.x0, box.x1);
  cut(s.a.y, s.b.y - s.a.y, box.y0, box.y1);
  return {t0 * s.length, t1 * s.length};
}

template <class Visit>
void forEachSegment(const FlatPath& path, const FlatPath::Subpath& subpath, Visit visit) {
  const size_t count = subpath.closed ? subpath.count : subpath.count - 1;
  for (size_t i = 0; i < count; ++i) {
    const size_t from = subpath.first + i;
    const size_t to = subpath.first + (i + 1 < subpath.count ? i + 1 : 0);
    const LineSegment segment(path.points[from], path.points[to]);
    if (segment.length > 0) visit(segment, path.smooth[to] != 0);
  }
}

double visibleLength(const FlatPath& path, const DeviceBounds& visible) {
  double sum = 0;
  for (const FlatPath::Subpath& subpath : path.subpaths) {
    forEachSegment(path, subpath, [&](const LineSegment& s, bool) {
      const DistanceSpan seen = inside(s, visible);
      sum += std::max(0.0, seen.to - seen.from);
    });
  }
  return sum;
}

class Dasher {
 public:
  Dasher(const DashPattern& pattern, const DeviceBounds& visible, FlatPath& out)
      : pattern_(pattern), visible_(visible), out_(out) {}

  void dash(const FlatPath& path, const FlatPath::Subpath& subpath) {
    index_ = 0;
    left_ = pattern_.lengths[0];
    skip(pattern_.phase);
    forEachSegment(path, subpath, [&](const LineSegment& s, bool smooth) { dash(s, smooth); });
    endMark();
  }

 private:
  bool isMark() const { return index_ % 2 == 0; }

  void next() {
    index_ = index_ + 1 < pattern_.lengths.size() ? index_ + 1 : 0;
    left_ = pattern_.lengths[index_];
  }

  /// Counts on over `distance` without drawing.
  void skip(double distance) {
    distance = std::fmod(distance, pattern_.total);
    while (distance >= left_) {
      distance -= left_;
      next();
    }
    left_ -= distance;
  }

  void dash(const LineSegment& s, bool smooth) {
    DistanceSpan seen = inside(s, visible_);
    if (!(seen.from <= seen.to)) {
      endMark();
      skip(s.length);
      return;
    }
    if (seen.from > 0) {
      endMark();
      skip(seen.from);
    }
    dashSeen(s, seen);
    if (seen.to < s.length) {
      if (isMark()) extendMark(s.at(seen.to), false);
      endMark();
      skip(s.length - seen.to);
    } else if (isMark()) {
      extendMark(s.b, smooth);
    }
  }

  void dashSeen(const LineSegment& s, const DistanceSpan& seen) {
    // Counted from where the segment comes into sight: from its start, far away, a dash might be
    // less than a step between numbers.
    const double room = seen.to - seen.from;
    double done = 0;
    if (isMark() && !drawing_) beginMark(s.at(seen.from));
    while (left_ <= room - done) {
      done += left_;
      const NSPoint p = s.at(seen.from + done);
      if (isMark()) {
        extendMark(p, false);
        endMark();
      }
      next();
      if (isMark()) beginMark(p);
    }
    left_ -= room - done;
  }

  void beginMark(NSPoint p) {
    out_.add(p, false);
    drawing_ = true;
  }
  void extendMark(NSPoint p, bool smooth) { out_.add(p, smooth); }
  void endMark() {
    if (drawing_) out_.endSubpath(false);
    drawing_ = false;
  }

  const DashPattern& pattern_;
  const DeviceBounds& visible_;
  FlatPath& out_;
  size_t index_ = 0;  ///< of the current length
  double left_ = 0;   ///< what is left of it
  bool drawing_ = false;
};

}  // namespace

std::optional<DashPattern> dashPattern(std::span<const double> lengths, double phase,
                                       double scale) {
  DashPattern pattern;
  if (lengths.size() > limits::kMaxDashLengths) return {};
  for (int round = 0; round < (lengths.size() % 2 == 0 ? 1 : 2); ++round) {
    pattern.lengths.insert(pattern.lengths.end(), lengths.begin(), lengths.end());
  }
  double gaps = 0;
  for (size_t i = 0; i < pattern.lengths.size(); i += 2) {
    double& mark = pattern.lengths[i];
    double& gap = pattern.lengths[i + 1];
    if (!(mark >= 0 && gap >= 0)) return {};
    if (mark == 0) {
      mark = std::min(1.0, gap);
      gap -= mark;
    }
    mark *= scale;
    gap *= scale;
    gaps += gap;
    pattern.total += mark + gap;
  }
  if (!std::isfinite(pattern.total) || !(pattern.total >= kShortestPattern) || gaps == 0) return {};
  phase = std::isfinite(phase * scale) ? std::fmod(phase * scale, pattern.total) : 0;
  pattern.phase = phase < 0 ? phase + pattern.total : phase;
  return pattern;
}

DashResult dashPath(const FlatPath& path, const DashPattern& pattern, const DeviceBounds& visible,
                    FlatPath& out) {
  out.clear();
  const double perPattern = static_cast<double>(pattern.lengths.size()) / 2;
  if (visibleLength(path, visible) / pattern.total * perPattern > limits::kMaxDashes) {
    return DashResult::tooMany;
  }
  Dasher dasher(pattern, visible, out);
  for (const FlatPath::Subpath& subpath : path.subpaths) dasher.dash(path, subpath);
  return DashResult::dashed;
}
