#include "platform/graphics/pixels/coverage/ThinLines.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "platform/foundation/Limits.h"
#include "platform/graphics/pixels/outline/DeviceGrid.h"

namespace {

double snapped(double v) {
  return static_cast<double>(grid::snap(v)) / static_cast<double>(grid::kOne);
}

/// A line by its longer direction: `across` as a function of `along`.
struct Steps {
  double start = 0;
  double end = 0;
  double across = 0;  ///< at start
  double slope = 0;

  Steps(double a0, double c0, double a1, double c1) {
    if (a0 > a1) {
      std::swap(a0, a1);
      std::swap(c0, c1);
    }
    start = a0;
    end = a1;
    across = c0;
    slope = a1 > a0 ? (c1 - c0) / (a1 - a0) : 0;
  }

  /// Drops what certainly lies outside the half-open ranges.
  void keep(double low, double high, double acrossLow, double acrossHigh) {
    double from = std::max(start, low);
    double to = std::min(end, high);
    if (slope != 0) {
      const double ta = start + (acrossLow - 1 - across) / slope;
      const double tb = start + (acrossHigh + 1 - across) / slope;
      from = std::max(from, std::min(ta, tb));
      to = std::min(to, std::max(ta, tb));
    }
    first = static_cast<int64_t>(std::floor(std::clamp(from, low, high)));
    last = static_cast<int64_t>(std::ceil(std::clamp(to, low, high)));
  }

  int64_t acrossAt(int64_t pixel) const {
    const double centre = std::clamp(static_cast<double>(pixel) + 0.5, start, end);
    return static_cast<int64_t>(std::floor(across + slope * (centre - start)));
  }

  int64_t first = 0;  ///< pixels [first, last) along the line
  int64_t last = 0;
};

}  // namespace

void ThinLines::begin(const PixelBox& box) {
  box_ = box;
  pixels_ = 0;
  painted_.assign(static_cast<size_t>((box.width() * box.height() + 63) >> 6), 0);
}

inline void ThinLines::paint(int64_t x, int64_t y) {
  if (x < box_.x0 || x >= box_.x1 || y < box_.y0 || y >= box_.y1) return;
  const int64_t bit = (y - box_.y0) * box_.width() + x - box_.x0;
  painted_[static_cast<size_t>(bit >> 6)] |= uint64_t{1} << (bit & 63);
}

void ThinLines::addLine(NSPoint a, NSPoint b) {
  a = {snapped(a.x), snapped(a.y)};
  b = {snapped(b.x), snapped(b.y)};
  if (a == b) {
    paint(static_cast<int64_t>(std::floor(a.x)), static_cast<int64_t>(std::floor(a.y)));
    return;
  }
  const bool alongX = std::abs(b.x - a.x) >= std::abs(b.y - a.y);
  Steps steps = alongX ? Steps(a.x, a.y, b.x, b.y) : Steps(a.y, a.x, b.y, b.x);
  alongX ? steps.keep(box_.x0, box_.x1, box_.y0, box_.y1)
         : steps.keep(box_.y0, box_.y1, box_.x0, box_.x1);
  pixels_ += std::max<int64_t>(0, steps.last - steps.first);
  if (pixels_ > limits::kMaxEdgePixels) return;
  for (int64_t i = steps.first; i < steps.last; ++i) {
    alongX ? paint(i, steps.acrossAt(i)) : paint(steps.acrossAt(i), i);
  }
}

/// The first bit from `from` on that is `value`, at most `end`.
int64_t ThinLines::find(bool value, int64_t from, int64_t end) const {
  while (from < end) {
    const uint64_t word = painted_[static_cast<size_t>(from >> 6)];
    const uint64_t wanted = (value ? word : ~word) >> (from & 63);
    if (wanted != 0) return std::min(from + std::countr_zero(wanted), end);
    from = (from | 63) + 1;
  }
  return end;
}

void ThinLines::findRuns(int64_t rowStart) {
  const int64_t end = rowStart + box_.width();
  runs_.clear();
  for (int64_t from = find(true, rowStart, end); from < end;) {
    const int64_t to = find(false, from, end);
    runs_.push_back({box_.x0 + static_cast<int32_t>(from - rowStart),
                     static_cast<int32_t>(to - from), nullptr, 255});
    from = find(true, to, end);
  }
}

bool ThinLines::finish(CoverageSink& sink) {
  if (pixels_ > limits::kMaxEdgePixels) return false;
  for (int32_t y = box_.y0; y < box_.y1; ++y) {
    findRuns((int64_t{y} - box_.y0) * box_.width());
    if (!runs_.empty()) sink.row(y, runs_);
  }
  return true;
}
