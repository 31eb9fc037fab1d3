#include "platform/graphics/pixels/coverage/AlphaMask.h"

#include <algorithm>

#include "platform/machine/TargetClones.h"

namespace {

/// Covers that are looked at together.
constexpr int32_t kBlock = 64;

/// The lowest and the highest cover of each whole block.
TARGET_CLONES void blockRanges(const uint8_t* covers, int32_t blocks, uint8_t* lowest,
                               uint8_t* highest) {
  for (int32_t block = 0; block < blocks; ++block, covers += kBlock) {
    uint8_t low = covers[0];
    uint8_t high = covers[0];
    for (int32_t i = 0; i < kBlock; ++i) {
      low = covers[i] < low ? covers[i] : low;
      high = covers[i] > high ? covers[i] : high;
    }
    lowest[block] = low;
    highest[block] = high;
  }
}

}  // namespace

AlphaMask::AlphaMask(const PixelBox& box) {
  if (box.empty()) return;
  bytes_ = ZeroedMemory(static_cast<size_t>(box.width()) * static_cast<size_t>(box.height()));
  box_ = box;
}

void CoverSplitter::add(Kind kind, int32_t first, int32_t end, const uint8_t* covers) {
  if (kind == Kind::empty || first == end) return;
  runs_.push_back({first, end - first, kind == Kind::full ? nullptr : covers, 255});
}

void CoverSplitter::rows(const PixelBox& box, const uint8_t* covers, CoverageSink& sink) {
  const auto width = static_cast<int32_t>(box.width());
  const int32_t blocks = width / kBlock;
  lowest_.resize(static_cast<size_t>(blocks));
  highest_.resize(static_cast<size_t>(blocks));
  blockRanges(covers, blocks, lowest_.data(), highest_.data());
  runs_.clear();
  Kind kind = Kind::mixed;
  int32_t first = 0;
  const auto change = [&](Kind next, int32_t at) {
    if (next == kind) return;
    add(kind, box.x0 + first, box.x0 + at, covers + first);
    kind = next;
    first = at;
  };
  for (int32_t i = 0; i < blocks; ++i) {
    const auto block = static_cast<size_t>(i);
    change(highest_[block] == 0    ? Kind::empty
           : lowest_[block] == 255 ? Kind::full
                                   : Kind::mixed,
           i * kBlock);
  }
  if (width > blocks * kBlock) change(Kind::mixed, blocks * kBlock);
  add(kind, box.x0 + first, box.x1, covers + first);
  if (!runs_.empty()) sink.rows(box.y0, box.y1, runs_);
}

PixelBox MaskShape::bounds(const PixelBox& box) const {
  return intersection(movedAndGrown(mask_.box(), dx_, dy_, 0), box);
}

void MaskShape::cover(const ClipRegion& clip, CoverageSink& sink) const {
  const PixelBox box = bounds(clip.box());
  if (box.empty()) return;
  ClipSink clipped(clip, sink);
  CoverageSink& target = clip.isBox() ? sink : clipped;
  CoverSplitter splitter;
  for (int32_t y = box.y0; y < box.y1; ++y) {
    splitter.rows({box.x0, y, box.x1, y + 1}, mask_.row(y - dy_) + (box.x0 - dx_ - mask_.box().x0),
                  target);
  }
}
