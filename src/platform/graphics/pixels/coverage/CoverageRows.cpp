#include "platform/graphics/pixels/coverage/CoverageRows.h"

#include <algorithm>
#include <cstring>

namespace {

/// Covers are kept in blocks, which never move while runs point into them.
constexpr size_t kCoverBlock = 16384;

}  // namespace

std::span<const CoverageRun> CoverageRows::row(int32_t y) const {
  if (y < box_.y0 || y >= box_.y1) return {};
  const auto index = static_cast<size_t>(y - box_.y0);
  return std::span(runs_).subspan(rowStart_[index], rowStart_[index + 1] - rowStart_[index]);
}

CoverageRowsBuilder::CoverageRowsBuilder() : rows_(new CoverageRows) {}
CoverageRowsBuilder::~CoverageRowsBuilder() = default;

const uint8_t* CoverageRowsBuilder::keep(const uint8_t* covers, size_t count) {
  if (count > freeBytes_) {
    freeBytes_ = std::max(count, kCoverBlock);
    rows_->covers_.push_back(std::make_unique_for_overwrite<uint8_t[]>(freeBytes_));
    free_ = rows_->covers_.back().get();
  }
  const uint8_t* kept = free_;
  std::memcpy(free_, covers, count);
  free_ += count;
  freeBytes_ -= count;
  return kept;
}

void CoverageRowsBuilder::row(int32_t y, std::span<const CoverageRun> runs) {
  if (runs.empty()) return;
  const size_t first = rows_->runs_.size();
  for (CoverageRun run : runs) {
    if (run.covers) run.covers = keep(run.covers, static_cast<size_t>(run.length));
    rows_->runs_.push_back(run);
  }
  pieces_.push_back({y, first, rows_->runs_.size()});
  PixelBox& box = rows_->box_;
  const PixelBox piece{runs.front().x, y, runs.back().x + runs.back().length, y + 1};
  if (pieces_.size() == 1) {
    box = piece;
  } else {
    box = {std::min(box.x0, piece.x0), std::min(box.y0, piece.y0), std::max(box.x1, piece.x1),
           std::max(box.y1, piece.y1)};
  }
}

std::shared_ptr<const CoverageRows> CoverageRowsBuilder::finish() {
  const auto above = [](const Piece& a, const Piece& b) { return a.y < b.y; };
  const bool inOrder = std::is_sorted(pieces_.begin(), pieces_.end(), above);
  if (!inOrder) {
    std::stable_sort(pieces_.begin(), pieces_.end(), above);
    std::vector<CoverageRun> sorted;
    sorted.reserve(rows_->runs_.size());
    for (Piece& piece : pieces_) {
      const size_t first = sorted.size();
      sorted.insert(sorted.end(), rows_->runs_.begin() + static_cast<ptrdiff_t>(piece.first),
                    rows_->runs_.begin() + static_cast<ptrdiff_t>(piece.end));
      piece = {piece.y, first, sorted.size()};
    }
    rows_->runs_ = std::move(sorted);
  }
  const PixelBox& box = rows_->box_;
  rows_->rowStart_.assign(static_cast<size_t>(box.height()) + 1, 0);
  size_t next = 0;
  for (int64_t y = 0; y < box.height(); ++y) {
    rows_->rowStart_[static_cast<size_t>(y)] = next == 0 ? 0 : pieces_[next - 1].end;
    while (next < pieces_.size() && pieces_[next].y - box.y0 == y) ++next;
  }
  rows_->rowStart_.back() = rows_->runs_.size();
  pieces_.clear();
  freeBytes_ = 0;
  std::shared_ptr<const CoverageRows> done = std::move(rows_);
  rows_.reset(new CoverageRows);
  return done;
}
