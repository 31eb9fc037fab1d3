#include "platform/graphics/resample/Resampler.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

AxisMapping horizontalAxis(const ResampleMapping& m) {
  return {m.source.origin.x, m.source.size.width, m.destination.origin.x, m.destination.size.width,
          m.mirroredX};
}

AxisMapping verticalAxis(const ResampleMapping& m) {
  return {m.source.origin.y, m.source.size.height, m.destination.origin.y,
          m.destination.size.height, m.mirroredY};
}

constexpr size_t kChannels = 4;

/// The kernels take weights in groups of this many.
constexpr size_t kTapGroup = 4;

}  // namespace

Resampler::Resampler(const NSBitmapImageRep& source, const ResampleMapping& mapping,
                     const PixelBox& visible)
    : source_(source),
      visible_(visible),
      horizontal_(horizontalAxis(mapping), source.pixelsWide()),
      vertical_(verticalAxis(mapping), source.pixelsHigh()) {
  if (visible.empty() || horizontal_.empty() || vertical_.empty()) return;
  findPaintedRows();
  if (painted_.empty()) return;
  buildColumns();
  const auto visibleBytes = static_cast<size_t>(visible.width()) * kChannels;
  const auto columnBytes = static_cast<size_t>(columnCount_) * kChannels;
  out_.resize(visibleBytes);
  columns_.resize(columnBytes + kTapGroup * kChannels);
  if (horizontal_.cellSize() > 1 || vertical_.cellSize() > 1) {
    const auto slots = static_cast<size_t>(vertical_.maxWindow());
    cells_.resize(slots * columnBytes);
    cellOfSlot_.assign(slots, -1);
  }
}

void Resampler::buildColumns() {
  copies_ = horizontal_.cellSize() == 1 && vertical_.cellSize() == 1;
  windows_.reserve(static_cast<size_t>(visible_.width()));
  // Windows do not follow one another strictly: where a pixel falls on a cell, the window is one
  // cell, and those of both its neighbours reach over it.
  firstColumn_ = std::numeric_limits<int64_t>::max();
  int64_t endColumn = 0;
  ResampleWindow window;
  for (int64_t x = 0; x < visible_.width(); ++x) {
    horizontal_.window(visible_.x0 + x, window);
    firstColumn_ = std::min(firstColumn_, window.first);
    endColumn = std::max(endColumn, window.end());
    copies_ = copies_ && window.weights.size() == 1 && window.first == firstColumn_ + x;
    const size_t padding = -window.weights.size() % kTapGroup;
    windows_.push_back({static_cast<uint32_t>(window.first),
                        static_cast<uint32_t>(window.weights.size() + padding),
                        static_cast<uint32_t>(columnWeights_.size())});
    columnWeights_.insert(columnWeights_.end(), window.weights.begin(), window.weights.end());
    columnWeights_.insert(columnWeights_.end(), padding, 0.0F);
  }
  columnCount_ = endColumn - firstColumn_;
  for (ColumnWindow& w : windows_) w.first -= static_cast<uint32_t>(firstColumn_);
}

/// The vertical cells that hold used rows of the bitmap.
RowRange Resampler::usedCells() const {
  const RowRange used = source_.usedRows();
  const int64_t first = std::max(used.first, vertical_.firstPixel()) - vertical_.firstPixel();
  const int64_t end = std::min(used.end, vertical_.endPixel()) - vertical_.firstPixel();
  if (first >= end) return {};
  return {first / vertical_.cellSize(), (end - 1) / vertical_.cellSize() + 1};
}

void Resampler::findPaintedRows() {
  const RowRange used = usedCells();
  const auto isPainted = [&](int64_t y) {
    vertical_.window(y, rowWindow_);
    return rowWindow_.first < used.end && rowWindow_.end() > used.first;
  };
  painted_ = {visible_.y0, visible_.y1};
  while (!painted_.empty() && !isPainted(painted_.first)) ++painted_.first;
  while (!painted_.empty() && !isPainted(painted_.end - 1)) --painted_.end;
}

const uint8_t* Resampler::row(int64_t y) {
  vertical_.window(y, rowWindow_);
  const RowRange used = usedCells();
  const int64_t first = std::max(rowWindow_.first, used.first);
  const int64_t end = std::min(rowWindow_.end(), used.end);
  auto& weights = rowWindow_.weights;
  weights.erase(weights.begin(), weights.begin() + (first - rowWindow_.first));
  // What is left of a window at the edge of the used rows may be a single one of less weight.
  if (copies_ && weights.size() == 1 && weights[0] == 1 << kFilterBits) return cellRow(first);

  rows_.clear();
  for (int64_t cell = first; cell < end; ++cell) rows_.push_back(cellRow(cell));
  weights.resize(rows_.size());
  while (rows_.size() % kTapGroup != 0) {
    rows_.push_back(rows_.back());
    weights.push_back(0);
  }
  weighRows(rows_.data(), weights.data(), rows_.size(), columns_.data(),
            static_cast<size_t>(columnCount_) * kChannels);
  weighColumns(columns_.data(), windows_.data(), columnWeights_.data(), out_.data(),
               windows_.size());
  return out_.data();
}

/// Row of cells, from cell firstColumn_ on.
const uint8_t* Resampler::cellRow(int64_t cell) {
  if (cells_.empty()) {
    return source_.row(vertical_.firstPixel() + cell) +
           static_cast<size_t>(horizontal_.firstPixel() + firstColumn_) * kChannels;
  }
  const size_t slot = static_cast<size_t>(cell) % cellOfSlot_.size();
  uint8_t* ring = cells_.data() + slot * static_cast<size_t>(columnCount_) * kChannels;
  if (cellOfSlot_[slot] != cell) {
    averageRow(cell, ring);
    cellOfSlot_[slot] = cell;
  }
  return ring;
}

void Resampler::averageRow(int64_t cell, uint8_t* out) {
  const int64_t top = vertical_.firstPixel() + cell * vertical_.cellSize();
  const int64_t bottom = std::min(top + vertical_.cellSize(), vertical_.endPixel());
  const int64_t left = horizontal_.firstPixel() + firstColumn_ * horizontal_.cellSize();
  const int64_t right =
      std::min(left + columnCount_ * horizontal_.cellSize(), horizontal_.endPixel());
  const auto pixels = static_cast<size_t>(right - left);
  const auto cellSize = static_cast<size_t>(horizontal_.cellSize());

  totals_.assign(static_cast<size_t>(columnCount_) * kChannels, 0);
  const RowRange used = source_.usedRows();
  const int64_t end = std::min(bottom, used.end);
  for (int64_t y = std::max(top, used.first); y < end; ++y) {
    sumCells(source_.row(y) + static_cast<size_t>(left) * kChannels, pixels, cellSize,
             totals_.data());
  }
  averageCells(totals_.data(), pixels, cellSize, static_cast<size_t>(bottom - top), out);
}

std::shared_ptr<NSBitmapImageRep> resampledPart(const NSBitmapImageRep& source, const NSRect& part,
                                                int64_t width, int64_t height) {
  auto result = NSBitmapImageRep::create(width, height);
  if (result == nullptr) return nullptr;
  const ResampleMapping mapping{part, {{0, 0}, result->size()}};
  Resampler resampler(source, mapping,
                      {0, 0, static_cast<int32_t>(width), static_cast<int32_t>(height)});
  const RowRange painted = resampler.paintedRows();
  for (int64_t y = painted.first; y < painted.end; ++y) {
    std::memcpy(result->writableRows(y, y + 1), resampler.row(y), result->bytesPerRow());
  }
  return result;
}
