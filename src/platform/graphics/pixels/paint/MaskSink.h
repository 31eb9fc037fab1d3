#pragma once

#include <cstdint>
#include <vector>

#include "platform/graphics/pixels/coverage/AlphaMask.h"
#include "platform/graphics/pixels/paint/RowSource.h"

/// Writes coverage into a mask: as it is for solid paint, times the alpha of the pixels for paint
/// from rows (whose own scale does not count). Runs must lie inside the mask.
class MaskSink final : public CoverageSink {
 public:
  /// `source` may be null for solid paint.
  MaskSink(AlphaMask& mask, RowSource* source) : mask_(mask), source_(source) {}
  void row(int32_t y, std::span<const CoverageRun> runs) override;

 private:
  AlphaMask& mask_;
  RowSource* source_;
  std::vector<uint32_t> buffer_;
};
