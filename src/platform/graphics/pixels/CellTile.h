#pragma once

#include <cstdint>
#include <vector>

#include "platform/graphics/PathData.h"
#include "platform/graphics/pixels/CoverageRun.h"
#include "platform/graphics/pixels/DeviceGrid.h"
#include "platform/graphics/pixels/PixelBox.h"

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

  /// Adds an edge in grid units (grid::kOne per pixel) relative to the tile's top left corner.
  /// Any part may lie outside. What it adds inside does not depend on the position of the tile
  /// on the grid, nor on the direction of the edge except for the sign.
  void addEdge(int64_t x0, int64_t y0, int64_t x1, int64_t y1);

  /// Hands every row with coverage to `sink`, pixel (0, 0) being device pixel (left, top), and
  /// leaves the tile empty.
  void sweep(int32_t left, int32_t top, const CoverRule& rule, CoverageSink& sink);

  /// Makes the tile empty without drawing it.
  void discard();

 private:
  struct Row {
    int64_t* cells;
    uint64_t* words;
  };

  Row row(int64_t y) { return {cells_.data() + y * stride_, touched_.data() + y * words_}; }
  void addRows(int64_t x0, int64_t y0, int64_t x1, int64_t y1, int64_t sign);
  void addPiece(const Row& row, int64_t xa, int64_t xb, int64_t cover);
  void addSlanted(const Row& row, int64_t low, int64_t high, int64_t cover);
  template <class ToCover>
  void sweepRows(int32_t left, int32_t top, ToCover toCover, CoverageSink& sink);
  template <class ToCover>
  void sweepRow(const Row& row, ToCover toCover);
  void addLevel(int64_t from, int64_t to, uint8_t level);
  void closeCovers(int64_t end);
  void pushCovers(int64_t from, int64_t end);
  void pushLevel(int64_t from, int64_t end, uint8_t level);

  int64_t width_ = 0;
  int64_t height_ = 0;
  int64_t stride_ = 0;  ///< cells per row
  int64_t words_ = 0;   ///< words of `touched_` per row
  std::vector<int64_t> cells_;
  std::vector<uint64_t> touched_;

  // The row being swept.
  std::vector<uint8_t> covers_;  ///< covers of touched pixels, at their column
  std::vector<CoverageRun> runs_;
  int64_t coversStart_ = -1;  ///< first column of the open run of covers; -1 when none is open
  int32_t left_ = 0;
};
