#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"

/// Coverage kept as runs per row. Immutable once built, so that it can be shared.
class CoverageRows {
 public:
  CoverageRows(const CoverageRows&) = delete;
  CoverageRows& operator=(const CoverageRows&) = delete;

  /// Smallest box around all runs; empty when there are none.
  const PixelBox& box() const { return box_; }

  /// The runs of row y (any y), disjoint and in increasing x.
  std::span<const CoverageRun> row(int32_t y) const;

 private:
  friend class CoverageRowsBuilder;
  CoverageRows() = default;
  PixelBox box_;
  std::vector<CoverageRun> runs_;
  std::vector<size_t> rowStart_;                    ///< per row of box_, and the end
  std::vector<std::unique_ptr<uint8_t[]>> covers_;  ///< blocks that runs_ points into
};

/// A sink that keeps what it gets. Sweeps that lie side by side are joined.
class CoverageRowsBuilder : public CoverageSink {
 public:
  CoverageRowsBuilder();
  ~CoverageRowsBuilder() override;
  void row(int32_t y, std::span<const CoverageRun> runs) override;

  /// What was gathered; the builder starts again.
  std::shared_ptr<const CoverageRows> finish();

 private:
  struct Piece {
    int32_t y = 0;
    size_t first = 0;
    size_t end = 0;
  };
  const uint8_t* keep(const uint8_t* covers, size_t count);

  std::shared_ptr<CoverageRows> rows_;
  std::vector<Piece> pieces_;
  uint8_t* free_ = nullptr;  ///< rest of the last block of covers
  size_t freeBytes_ = 0;
};
