#pragma once

#include <cstdint>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"
#include "platform/graphics/pixels/outline/StrokeGeometry.h"

/// Lines of one pixel without antialiasing: along its longer direction a line paints one pixel per
/// column (or row) that it passes through, the one that it is in at the column's centre.
/// Keeps a bit per pixel of the box.
class ThinLines final : public LineSink {
 public:
  /// Starts a set of lines; only pixels of `box` are painted.
  void begin(const PixelBox& box);

  /// Adds a line between device points of any size; a dot when both snap to the same place.
  void addLine(NSPoint a, NSPoint b) override;

  /// Hands the painted pixels to `sink` with full coverage. False, without drawing, when the lines
  /// went beyond limits::kMaxEdgePixels.
  bool finish(CoverageSink& sink);

 private:
  void paint(int64_t x, int64_t y);
  int64_t find(bool value, int64_t from, int64_t end) const;
  void findRuns(int64_t rowStart);

  PixelBox box_;
  int64_t pixels_ = 0;
  std::vector<uint64_t> painted_;  ///< bits, rows back to back
  std::vector<CoverageRun> runs_;
};
