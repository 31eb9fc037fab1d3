#include "platform/graphics/pixels/coverage/ScanConverter.h"

#include <algorithm>
#include <array>

#include "platform/foundation/Limits.h"

using grid::kShift;

namespace {

/// Pixels accumulated at once: 128 KiB of cells, which the second-level cache holds with room to
/// spare.
constexpr int64_t kTilePixels = 16384;

/// Points are snapped to the grid and handed on in blocks.
constexpr size_t kPointBlock = 128;

/// Edges are held up to this number whatever the size of the box (32 MiB).
constexpr size_t kHeldAlways = size_t{1} << 20;

/// Held edges above this number give their memory back after the shape.
constexpr size_t kHeldKept = size_t{1} << 16;

}  // namespace

void ScanConverter::begin(const PixelBox& box, const CoverRule& rule) {
  box_ = box;
  rule_ = rule;
  inContour_ = false;
  tooLarge_ = false;
  heldPixels_ = 0;
  maxEdgePixels_ =
      std::max(limits::kMaxEdgePixels, limits::kMaxEdgesPerPixel * box.width() * box.height());
  held_.clear();
  holding_ = box.width() * box.height() > kTilePixels;
  if (!holding_) tile_.reset(box.width(), box.height());
}

void ScanConverter::addPoints(std::span<const NSPoint> points) {
  const GridPoint corner{int64_t{box_.x0} << kShift, int64_t{box_.y0} << kShift};
  std::array<GridPoint, kPointBlock> block;
  size_t count = 0;
  if (inContour_) block[count++] = current_;
  for (const NSPoint& p : points) {
    block[count++] = {grid::snap(p.x) - corner.x, grid::snap(p.y) - corner.y};
    if (!inContour_) start_ = block[0];
    inContour_ = true;
    if (count == kPointBlock) {
      addPolyline(block);
      block[0] = block.back();
      count = 1;
    }
  }
  addPolyline({block.data(), count});
  if (count > 0) current_ = block[count - 1];
}

void ScanConverter::closeContour() {
  if (inContour_) addPolyline(std::array{current_, start_});
  inContour_ = false;
}

void ScanConverter::addPolyline(std::span<const GridPoint> points) {
  if (tooLarge_) return;
  if (!holding_) {
    tile_.addPolyline(points);
    tooLarge_ = tile_.work() > maxEdgePixels_;
    return;
  }
  for (size_t i = 1; i < points.size(); ++i) hold({points[i - 1], points[i]});
}

/// Whether an edge matters to the box; adds up the pixels that visible ones run through.
bool ScanConverter::isVisible(const Edge& edge) {
  const int64_t width = box_.width() << kShift;
  const int64_t height = box_.height() << kShift;
  const auto [top, bottom] = std::minmax(edge.from.y, edge.to.y);
  const auto [left, right] = std::minmax(edge.from.x, edge.to.x);
  if (top == bottom || bottom <= 0 || top >= height || left >= width) return false;
  const int64_t across = std::min(right, width) - std::max<int64_t>(left, 0);
  heldPixels_ += (std::min(bottom, height) - std::max<int64_t>(top, 0)) >> kShift;
  heldPixels_ += std::max<int64_t>(across, 0) >> kShift;
  return true;
}

void ScanConverter::hold(const Edge& edge) {
  if (!holding_) {
    tile_.addEdge(edge.from, edge.to);
    return;
  }
  if (!isVisible(edge)) return;
  const size_t worthHolding = CellTile::bytesFor(box_.width(), box_.height()) / sizeof(Edge);
  if (held_.size() >= std::max(kHeldAlways, worthHolding)) {
    accumulateHeld();
    tile_.addEdge(edge.from, edge.to);
  } else if (held_.size() >= limits::kMaxHeldEdges || heldPixels_ > maxEdgePixels_) {
    tooLarge_ = true;
  } else {
    held_.push_back(edge);
  }
}

/// From bands to one tile over the whole box.
void ScanConverter::accumulateHeld() {
  tile_.reset(box_.width(), box_.height());
  for (const Edge& e : held_) tile_.addEdge(e.from, e.to);
  std::vector<Edge>().swap(held_);
  holding_ = false;
}

bool ScanConverter::finish(CoverageSink& sink) {
  closeContour();
  // Every strip looks at every held edge.
  heldPixels_ += static_cast<int64_t>(held_.size()) * (box_.width() / kStripWidth);
  tooLarge_ = tooLarge_ || heldPixels_ > maxEdgePixels_;
  if (!holding_) {
    if (tooLarge_) {
      tile_.discard();
    } else {
      tile_.sweep(box_.x0, box_.y0, rule_, sink);
    }
    return !tooLarge_;
  }
  if (tooLarge_) return false;
  const int64_t strip = std::min<int64_t>(box_.width(), kStripWidth);
  const int64_t bandRows = std::max<int64_t>(8, kTilePixels / strip);
  sortByBand(bandRows);
  for (int64_t x = 0; x < box_.width(); x += strip) {
    sweepStrip(x, std::min(strip, box_.width() - x), bandRows, sink);
  }
  if (held_.capacity() > kHeldKept) {
    std::vector<Edge>().swap(held_);
    std::vector<uint32_t>().swap(order_);
  }
  return true;
}

/// Counting sort of the held edges by the band of rows that they start in.
void ScanConverter::sortByBand(int64_t bandRows) {
  const auto bandOf = [&](const Edge& e) {
    const int64_t top = std::max<int64_t>(0, std::min(e.from.y, e.to.y)) >> kShift;
    return static_cast<size_t>(top / bandRows);
  };
  const auto bands = static_cast<size_t>((box_.height() + bandRows - 1) / bandRows);
  bandStart_.assign(bands + 1, 0);
  for (const Edge& e : held_) ++bandStart_[bandOf(e) + 1];
  for (size_t b = 0; b < bands; ++b) bandStart_[b + 1] += bandStart_[b];
  order_.resize(held_.size());
  // Filling moves each start to the next band's; the rotation below moves them back.
  for (size_t i = 0; i < held_.size(); ++i) {
    order_[bandStart_[bandOf(held_[i])]++] = static_cast<uint32_t>(i);
  }
  std::rotate(bandStart_.begin(), bandStart_.end() - 1, bandStart_.end());
  bandStart_[0] = 0;
}

void ScanConverter::sweepStrip(int64_t x, int64_t width, int64_t bandRows, CoverageSink& sink) {
  const int64_t left = x << kShift;
  active_.clear();
  for (int64_t y = 0, band = 0; y < box_.height(); y += bandRows, ++band) {
    const int64_t rows = std::min(bandRows, box_.height() - y);
    const int64_t top = y << kShift;
    const int64_t bottom = (y + rows) << kShift;
    for (uint32_t i = bandStart_[band]; i < bandStart_[band + 1]; ++i) active_.push_back(order_[i]);
    if (active_.empty()) continue;
    tile_.reset(width, rows);
    size_t kept = 0;
    for (const uint32_t index : active_) {
      const Edge& e = held_[index];
      tile_.addEdge({e.from.x - left, e.from.y - top}, {e.to.x - left, e.to.y - top});
      if (std::max(e.from.y, e.to.y) > bottom) active_[kept++] = index;
    }
    active_.resize(kept);
    tile_.sweep(box_.x0 + static_cast<int32_t>(x), box_.y0 + static_cast<int32_t>(y), rule_, sink);
  }
}
