#include "platform/graphics/pixels/coverage/RectCoverage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

using grid::kOne;
using grid::kShift;

namespace {

/// An interval on the grid cut into a partly covered first pixel, whole pixels, and a partly
/// covered last one; any of them may be missing.
struct GridInterval {
  struct Part {
    int64_t from = 0;
    int64_t end = 0;
    int64_t weight = 0;  ///< covered length of each pixel, of kOne
  };
  std::array<Part, 3> parts;
  int count = 0;

  GridInterval(double a, double b, Antialias antialias) {
    const int64_t low = grid::snap(a);
    const int64_t high = grid::snap(b);
    if (low >= high) return;
    const int64_t first = low >> kShift;
    const int64_t end = (high + kOne - 1) >> kShift;
    if (antialias == Antialias::off) {
      add(first, end, kOne);
    } else if (end - first == 1) {
      add(first, end, high - low);
    } else {
      const int64_t head = ((first + 1) << kShift) - low;
      const int64_t tail = high - ((end - 1) << kShift);
      const bool headWhole = head == kOne;
      const bool tailWhole = tail == kOne;
      if (!headWhole) add(first, first + 1, head);
      add(headWhole ? first : first + 1, tailWhole ? end : end - 1, kOne);
      if (!tailWhole) add(end - 1, end, tail);
    }
  }

  void add(int64_t from, int64_t end, int64_t weight) {
    if (from < end) parts[static_cast<size_t>(count++)] = {from, end, weight};
  }
  std::span<const Part> all() const { return {parts.data(), static_cast<size_t>(count)}; }
};

/// The part's pixels from `low` up to `high`.
GridInterval::Part within(const GridInterval::Part& part, int64_t low, int64_t high) {
  return {std::max(part.from, low), std::min(part.end, high), part.weight};
}

/// The elements up to and without lone moves at the end.
size_t drawnVerbs(const PathData& path) {
  size_t count = path.verbs.size();
  while (count > 0 && path.verbs[count - 1] == PathVerb::move) --count;
  return count;
}

/// Whether the path's elements are those of one four-cornered subpath.
bool hasFourCorners(const PathData& path) {
  size_t count = drawnVerbs(path);
  if (count < 4 || count > 6 || path.verbs[0] != PathVerb::move) return false;
  if (path.verbs[count - 1] == PathVerb::close) --count;
  if (count != 4 && count != 5) return false;
  for (size_t i = 1; i < count; ++i) {
    if (path.verbs[i] != PathVerb::line) return false;
  }
  if (path.points.size() < count) return false;
  return count == 4 || path.points[4] == path.points[0];
}

}  // namespace

std::optional<DeviceBounds> deviceRectangle(const PathData& path,
                                            const CGAffineTransform& toDevice) {
  if (!hasFourCorners(path)) return {};
  std::array<NSPoint, 4> p;
  for (size_t i = 0; i < 4; ++i) {
    p[i] = CGPointApplyAffineTransform(path.points[i], toDevice);
    if (!std::isfinite(p[i].x) || !std::isfinite(p[i].y)) return {};
  }
  const bool alongRows =
      p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x;
  const bool alongColumns =
      p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y;
  if (!alongRows && !alongColumns) return {};
  DeviceBounds bounds;
  bounds.add(p[0]);
  bounds.add(p[2]);
  return bounds;
}

void emitRectangle(const DeviceBounds& rectangle, Antialias antialias, const PixelBox& box,
                   CoverageSink& sink) {
  const GridInterval columns(rectangle.x0, rectangle.x1, antialias);
  const GridInterval rows(rectangle.y0, rectangle.y1, antialias);
  for (const GridInterval::Part& wholeRowPart : rows.all()) {
    const GridInterval::Part rowPart = within(wholeRowPart, box.y0, box.y1);
    std::array<CoverageRun, 3> runs;
    size_t count = 0;
    for (const GridInterval::Part& wholePart : columns.all()) {
      const GridInterval::Part part = within(wholePart, box.x0, box.x1);
      const uint8_t cover = grid::coverOfArea(2 * part.weight * rowPart.weight);
      if (part.from >= part.end || cover == 0) continue;
      runs[count++] = {static_cast<int32_t>(part.from), static_cast<int32_t>(part.end - part.from),
                       nullptr, cover};
    }
    if (count == 0 || rowPart.from >= rowPart.end) continue;
    sink.rows(static_cast<int32_t>(rowPart.from), static_cast<int32_t>(rowPart.end),
              {runs.data(), count});
  }
}
