#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/graphics/pixels/coverage/CoverageRun.h"
#include "platform/graphics/pixels/coverage/RowRuns.h"
#include "platform/graphics/pixels/outline/DeviceGrid.h"
#include "platform/graphics/pixels/outline/PathData.h"
#include "platform/machine/ZeroedMemory.h"

/// How accumulated areas become coverage.
struct CoverRule {
  WindingRule winding = WindingRule::nonZero;
  Antialias antialias = Antialias::on;
};

/// Exact-area accumulation over a small box of pixels.
///
/// Every edge adds to the pixels that it crosses the change of covered area relative to the pixel
/// on the left, so that the running sum along a row is the signed area covered by the shape.
/// One bit per pixel tells the sweep which pixels were touched; between them the sum is constant.
/// Sums are 64 bits wide: no number of overlapping edges overflows them.
class CellTile {
 public:
  /// Memory that a tile of `width` x `height` pixels takes: a little over 8 bytes per pixel.
  static size_t bytesFor(int64_t width, int64_t height);

  /// Prepares an empty tile. Its memory is kept for the next one, unless it is very large.
  void reset(int64_t width, int64_t height);

  /// Adds the edges between successive points, relative to the tile's top left corner. Any part
  /// may lie outside. What an edge adds inside does not depend on the position of the tile on
  /// the grid, nor on the edge's direction except for the sign.
  void addPolyline(std::span<const GridPoint> points);
  void addEdge(GridPoint from, GridPoint to);

  /// Rows and columns that edges ran through since the last reset, where they left their pixel.
  int64_t work() const { return work_; }

  /// Hands every row with coverage to `sink`, pixel (0, 0) being device pixel (left, top), and
  /// leaves the tile empty.
  void sweep(int32_t left, int32_t top, const CoverRule& rule, CoverageSink& sink);

  /// Makes the tile empty without drawing it.
  void discard();

 private:
  template <class ToCover>
  void sweepRows(int32_t left, int32_t top, ToCover toCover, CoverageSink& sink);

  int64_t width_ = 0;
  int64_t height_ = 0;
  int64_t work_ = 0;
  /// The cells, then the bits: all zero between shapes.
  ZeroedMemory memory_;
  int64_t* cells_ = nullptr;
  uint64_t* touched_ = nullptr;
  RowRuns runs_;
};
