#include "platform/filters/spatial/PixellateOperation.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

/// One row of cells as one row of pixels.
class CellRow {
 public:
  CellRow(double scale, double centerX, int64_t width)
      : first_(std::floor((0.5 - centerX) / scale)) {
    // Cell n begins at the first pixel whose centre is not left of its edge.
    for (int64_t n = 0;; ++n) {
      const double edge = centerX + (first_ + static_cast<double>(n)) * scale;
      if (n > 0 && edge >= static_cast<double>(width) + 0.5) break;
      centers_.push_back(edge + 0.5 * scale);
      columns_.push_back(static_cast<int64_t>(std::floor(centers_.back())));
      onPixels_ = onPixels_ && isOnPixel(centers_.back());
      begins_.push_back(std::clamp(static_cast<int64_t>(std::ceil(edge - 0.5)), int64_t{0}, width));
    }
    begins_.push_back(width);
  }

  void write(const SourceView& view, double y, uint32_t* out) {
    colors_.resize(centers_.size());
    if (onPixels_ && isOnPixel(y)) {
      view.copyPixels(columns_, static_cast<int64_t>(std::floor(y)), colors_.data());
    } else {
      samplePixels(view, y);
    }
    for (size_t n = 0; n < colors_.size(); ++n) fill(n, out);
  }

 private:
  static bool isOnPixel(double x) { return x - 0.5 == std::floor(x); }

  /// Narrow cells are filled beyond their ends, which the next ones paint over.
  void fill(size_t n, uint32_t* out) const {
    constexpr int64_t kRun = 16;
    const int64_t begin = begins_[n];
    const int64_t end = begins_[n + 1];
    if (end - begin <= kRun && begin + kRun <= begins_.back()) {
      std::fill_n(out + begin, kRun, colors_[n]);
    } else {
      std::fill(out + begin, out + end, colors_[n]);
    }
  }

  void samplePixels(const SourceView& view, double y) {
    const size_t count = colors_.size();
    values_.resize(count * 4);
    rows_.assign(count, y);
    view.sample(centers_.data(), rows_.data(), count, values_.data());
    encodePixels(values_.data(), count, reinterpret_cast<uint8_t*>(colors_.data()));
  }

  double first_;
  bool onPixels_ = true;
  std::vector<double> centers_;
  std::vector<int64_t> columns_;
  std::vector<double> rows_;
  std::vector<int64_t> begins_;
  std::vector<float> values_;
  std::vector<uint32_t> colors_;
};

}  // namespace

int64_t PixellateOperation::growth() const {
  return static_cast<int64_t>(std::ceil(scale_ / 2));
}

int64_t PixellateOperation::reach() const {
  return static_cast<int64_t>(std::ceil(scale_)) + 1;
}

void PixellateOperation::render(const OperationSource& source, const OperationTarget& target,
                                RowRange rows) const {
  const SourceView view(source, target);
  const auto top = static_cast<double>(target.top);
  CellRow cells(scale_, center_.x - static_cast<double>(target.left), target.bitmap.pixelsWide());
  const uint8_t* previous = nullptr;
  double previousCell = 0;
  for (int64_t y = rows.first; y < rows.end; ++y) {
    const double cell = std::floor((top - static_cast<double>(y) - 0.5 - center_.y) / scale_);
    uint8_t* out = target.bitmap.writableRows(y, y + 1);
    if (previous != nullptr && cell == previousCell) {
      std::memcpy(out, previous, target.bitmap.bytesPerRow());
    } else {
      const double center = top - (center_.y + (cell + 0.5) * scale_);
      cells.write(view, center, reinterpret_cast<uint32_t*>(out));
      // The rows in between, which copies fill, are not read and nothing else would ask for it.
      view.prefetchRow(static_cast<int64_t>(std::floor(center + scale_)));
    }
    previous = out;
    previousCell = cell;
  }
}
