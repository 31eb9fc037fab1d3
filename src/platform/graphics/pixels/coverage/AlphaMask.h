#pragma once

#include <cstdint>
#include <vector>

#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CoverageShape.h"
#include "platform/machine/ZeroedMemory.h"

/// One byte of coverage per pixel of a box, zero at first. Memory that is never written costs
/// nothing.
class AlphaMask {
 public:
  AlphaMask() = default;
  explicit AlphaMask(const PixelBox& box);

  const PixelBox& box() const { return box_; }
  /// Row y from the box's first column on; y must lie inside the box.
  uint8_t* row(int32_t y) { return bytes_.data() + offset(y); }
  const uint8_t* row(int32_t y) const { return bytes_.data() + offset(y); }

 private:
  size_t offset(int32_t y) const {
    return static_cast<size_t>(int64_t{y} - box_.y0) * static_cast<size_t>(box_.width());
  }

  PixelBox box_;
  ZeroedMemory bytes_;
};

/// Hands rows of covers on as runs: what is long enough to be worth it becomes a constant run or is
/// left out, so that the middle of a shadow costs no more than a plain fill.
class CoverSplitter {
 public:
  /// One byte for each column of `box`, the same in all its rows.
  void rows(const PixelBox& box, const uint8_t* covers, CoverageSink& sink);

 private:
  enum class Kind : uint8_t { empty, full, mixed };
  void add(Kind kind, int32_t first, int32_t end, const uint8_t* covers);

  std::vector<uint8_t> lowest_;
  std::vector<uint8_t> highest_;
  std::vector<CoverageRun> runs_;
};

/// A mask as a shape, moved by whole pixels.
class MaskShape final : public CoverageShape {
 public:
  /// The mask must outlive the shape.
  MaskShape(const AlphaMask& mask, int32_t dx, int32_t dy) : mask_(mask), dx_(dx), dy_(dy) {}
  PixelBox bounds(const PixelBox& box) const override;
  void cover(const ClipRegion& clip, CoverageSink& sink) const override;
  bool fills(const PixelBox&) const override { return false; }

 private:
  const AlphaMask& mask_;
  int32_t dx_;
  int32_t dy_;
};
