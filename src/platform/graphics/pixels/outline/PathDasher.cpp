#include "platform/graphics/pixels/outline/PathDasher.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

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

/// Every place where the pattern turns is computed from the start of its segment, and marks are
/// whole, however little of them is visible: what shows does not depend on what else does.
class Dasher {
 public:
  Dasher(const DashPattern& pattern, const DeviceBounds& visible, FlatPath& out)
      : total_(pattern.total), phase_(pattern.phase), visible_(visible), out_(out) {
    double end = 0;
    for (size_t i = 0; i < pattern.lengths.size(); i += 2) {
      marks_.push_back({end, end + pattern.lengths[i]});
      end += pattern.lengths[i] + pattern.lengths[i + 1];
    }
  }

  void dash(const FlatPath& path, const FlatPath::Subpath& subpath) {
    offset_ = phase_;
    forEachSegment(path, subpath, [&](const LineSegment& s, bool smooth) { dash(s, smooth); });
    endMark();
  }

 private:
  /// A mark of the pattern's repetition `round`, by distance from the start of a segment.
  DistanceSpan markOn(double round, const DistanceSpan& mark) const {
    const double start = round * total_ - offset_;
    return {start + mark.from, start + mark.to};
  }

  void dash(const LineSegment& s, bool smooth) {
    seen_ = inside(s, visible_);
    if (!drawing_ && markAt(offset_) != nullptr) beginMark(s.a);
    if (drawing_ && !finishMark(s, smooth)) return;
    const double last = std::floor((s.length + offset_) / total_);
    addMarksInside(s, last);
    // What goes on with the next segment begins here, seen or not.
    const double rest = s.length + offset_ - last * total_;
    if (const DistanceSpan* mark = markAt(rest)) {
      const double start = markOn(last, *mark).from;
      if (start > 0) {
        beginMark(s.at(start));
        extendMark(start, s.length, s.b, smooth);
      }
    }
    offset_ = rest;
  }

  /// The mark that holds a place of the pattern; null in gaps.
  const DistanceSpan* markAt(double place) const {
    for (const DistanceSpan& mark : marks_) {
      if (place >= mark.from && place < mark.to) return &mark;
    }
    return nullptr;
  }

  /// Goes on with the mark from the segment before. False when it reaches beyond this one.
  bool finishMark(const LineSegment& s, bool smooth) {
    const DistanceSpan* const mark = markAt(offset_);
    const double end = mark == nullptr ? 0 : markOn(0, *mark).to;
    if (end > s.length) {
      extendMark(0, s.length, s.b, smooth);
      offset_ += s.length;
      return false;
    }
    if (end > 0) extendMark(0, end, s.at(end), false);
    endMark();
    return true;
  }

  /// The visible marks that begin and end on the segment.
  void addMarksInside(const LineSegment& s, double lastRound) {
    if (!(seen_.from <= seen_.to)) return;
    const double first = std::max(0.0, std::floor((seen_.from + offset_) / total_) - 1);
    const double end = std::min(lastRound, std::floor((seen_.to + offset_) / total_) + 1);
    const auto lastSeen = static_cast<int64_t>(end);
    for (auto round = static_cast<int64_t>(first); round <= lastSeen; ++round) {
      for (const DistanceSpan& mark : marks_) {
        const DistanceSpan span = markOn(static_cast<double>(round), mark);
        if (!(span.from > 0 && span.to <= s.length && touchesSeen(span.from, span.to))) continue;
        beginMark(s.at(span.from));
        extendMark(span.from, span.to, s.at(span.to), false);
        endMark();
      }
    }
  }

  bool touchesSeen(double from, double to) const { return from <= seen_.to && to >= seen_.from; }

  void beginMark(NSPoint p) {
    firstPoint_ = out_.points.size();
    isSeen_ = false;
    out_.add(p, false);
    drawing_ = true;
  }

  /// Adds the part of the segment from one distance to another, which ends at `p`.
  void extendMark(double from, double to, NSPoint p, bool smooth) {
    isSeen_ = isSeen_ || (seen_.from <= seen_.to && touchesSeen(from, to));
    out_.add(p, smooth);
  }

  void endMark() {
    if (drawing_ && isSeen_) {
      out_.endSubpath(false);
    } else if (drawing_) {
      out_.dropPointsFrom(firstPoint_);
    }
    drawing_ = false;
  }

  double total_;
  double phase_;
  std::vector<DistanceSpan> marks_;  ///< within the pattern
  const DeviceBounds& visible_;
  FlatPath& out_;
  double offset_ = 0;  ///< of the segment's start in the pattern, below its total
  DistanceSpan seen_;  ///< of the segment
  bool drawing_ = false;
  bool isSeen_ = false;  ///< anything of the mark that is drawn
  size_t firstPoint_ = 0;
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
