#include "platform/graphics/pixels/coverage/CoverageScaler.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kShift = 16;
constexpr int64_t kOne = int64_t{1} << kShift;

int64_t fixed(double v) {
  return std::llrint(v * static_cast<double>(kOne));
}

}  // namespace

CoverageScaler::CoverageScaler(const CanvasGrid& grid, const PixelBox& box, CoverageSink& next)
    : grid_(grid), box_(box), next_(next) {
  changes_.resize(static_cast<size_t>(box.width()) + 2);
  covers_.resize(static_cast<size_t>(box.width()));
  first_ = box.width();
}

/// A stretch of device positions, as changes of the pixels that it begins and ends in.
void CoverageScaler::add(Fixed x0, Fixed x1, int64_t weight) {
  const Fixed left = Fixed{box_.x0} << kShift, width = box_.width() << kShift;
  const Fixed from = std::clamp<Fixed>(x0 - left, 0, width);
  const Fixed to = std::clamp<Fixed>(x1 - left, 0, width);
  if (from >= to) return;
  const auto change = [&](Fixed at, int64_t by) {
    const auto pixel = static_cast<size_t>(at >> kShift);
    const int64_t right = by * (at & (kOne - 1));
    changes_[pixel] += by * kOne - right;
    changes_[pixel + 1] += right;
  };
  change(from, weight);
  change(to, -weight);
  first_ = std::min(first_, from >> kShift);
  end_ = std::max(end_, (to + kOne - 1) >> kShift);
}

void CoverageScaler::add(std::span<const CoverageRun> runs, Fixed weight) {
  const auto stretch = [&](int32_t from, int32_t end, uint32_t cover) {
    if (cover == 0) return;
    add(fixed(grid_.deviceX(from)), fixed(grid_.deviceX(end)), weight * int64_t{cover});
  };
  for (const CoverageRun& run : runs) {
    if (run.covers == nullptr) {
      stretch(run.x, run.x + run.length, run.cover);
      continue;
    }
    for (int32_t i = 0; i < run.length;) {
      int32_t end = i + 1;
      while (end < run.length && run.covers[end] == run.covers[i]) ++end;
      stretch(run.x + i, run.x + end, run.covers[i]);
      i = end;
    }
  }
}

/// Adds to a device row of which other canvas rows may show a part, too.
void CoverageScaler::addPart(int32_t y, std::span<const CoverageRun> runs, Fixed weight) {
  if (pending_ != y) emitPending();
  pending_ = y;
  add(runs, weight);
}

void CoverageScaler::rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) {
  const auto within = [&](double v) {
    return std::clamp<Fixed>(fixed(v), Fixed{box_.y0} << kShift, Fixed{box_.y1} << kShift);
  };
  const Fixed top = within(grid_.deviceY(y0)), bottom = within(grid_.deviceY(y1));
  if (top >= bottom) return;
  auto y = static_cast<int32_t>(top >> kShift);
  const auto whole = static_cast<int32_t>(bottom >> kShift);
  if ((top & (kOne - 1)) != 0 || whole == y) {
    addPart(y, runs, std::min(bottom, Fixed{y + 1} << kShift) - top);
    ++y;
  }
  if (y < whole) {
    emitPending();
    add(runs, kOne);
    emit(y, whole);
    y = whole;
  }
  if (bottom > Fixed{y} << kShift) addPart(y, runs, bottom - (Fixed{y} << kShift));
}

void CoverageScaler::emitPending() {
  if (pending_) emit(*pending_, *pending_ + 1);
  pending_.reset();
}

/// Hands on the rows y0 to y1 - 1, which are alike, and starts with nothing.
void CoverageScaler::emit(int32_t y0, int32_t y1) {
  if (first_ >= end_) return;
  constexpr int64_t kHalf = kOne * kOne / 2;
  int64_t sum = 0;
  for (int64_t x = first_; x < end_; ++x) {
    sum += changes_[static_cast<size_t>(x)];
    covers_[static_cast<size_t>(x)] = static_cast<uint8_t>((sum + kHalf) >> (2 * kShift));
  }
  std::fill(changes_.begin() + first_, changes_.begin() + end_ + 2, 0);
  const PixelBox painted{box_.x0 + static_cast<int32_t>(first_), y0,
                         box_.x0 + static_cast<int32_t>(end_), y1};
  splitter_.rows(painted, covers_.data() + first_, next_);
  first_ = box_.width();
  end_ = 0;
}
