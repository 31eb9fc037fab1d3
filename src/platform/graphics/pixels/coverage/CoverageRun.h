#pragma once

#include <cstdint>
#include <span>

/// A horizontal run of pixels with their coverage by a shape, in device pixels (x to the right).
struct CoverageRun {
  int32_t x = 0;
  int32_t length = 0;
  /// `length` bytes, one per pixel; null when every pixel has the coverage `cover`.
  const uint8_t* covers = nullptr;
  /// 1 to 255 for constant runs; unused when `covers` is set.
  uint8_t cover = 255;
};

/// Consumer of coverage, row by row. Rows are device rows counted from the top of the bitmap.
class CoverageSink {
 public:
  virtual ~CoverageSink() = default;
  /// Runs are disjoint and in increasing x. They and the bytes they point at are valid during the
  /// call only. Rows come in increasing y within one sweep; rows without coverage are left out.
  /// A shape comes as one sweep, or, when it is wider than ScanConverter::kStripWidth, as several
  /// that lie side by side.
  virtual void row(int32_t y, std::span<const CoverageRun> runs) = 0;

  /// The same runs in every row from y0 to y1 - 1: the insides of rectangles. Sinks that can do
  /// better than row by row override this.
  virtual void rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) {
    for (int32_t y = y0; y < y1; ++y) row(y, runs);
  }
};
