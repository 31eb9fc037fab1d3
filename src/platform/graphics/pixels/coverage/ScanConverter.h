#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CellTile.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"

/// Turns closed contours into coverage: exact areas on a grid of 1/256 pixel, or the touched
/// pixels.
///
/// Small boxes are accumulated as the points come. For larger ones the edges are held back and
/// drawn in bands of rows that stay in the processor's cache; when the edges would take more
/// memory than accumulating the whole box, the box it is. Geometry is never asked for twice.
/// Keeps its buffers between shapes; one converter serves one thread.
class ScanConverter {
 public:
  /// Starts a shape. Only what lies in `box` (not empty) is converted.
  void begin(const PixelBox& box, const CoverRule& rule);

  /// Continues the current contour, or starts one. Device coordinates of any size.
  void addPoints(std::span<const NSPoint> points);

  /// Closes the current contour; the next point starts another.
  void closeContour();

  /// Hands the coverage of everything added to `sink`: one sweep from top to bottom, or, for
  /// boxes wider than kStripWidth, one per strip from left to right.
  /// False, without drawing, when the shape went beyond what limits::kMaxEdgePixels and
  /// kMaxHeldEdges allow.
  bool finish(CoverageSink& sink);

  static constexpr int32_t kStripWidth = 65536;

 private:
  struct Edge {
    GridPoint from;
    GridPoint to;
  };

  void addPolyline(std::span<const GridPoint> points);
  void hold(const Edge& edge);
  bool isVisible(const Edge& edge);
  void accumulateHeld();
  void sortByBand(int64_t bandRows);
  void sweepStrip(int64_t x, int64_t width, int64_t bandRows, CoverageSink& sink);

  PixelBox box_;
  CoverRule rule_;
  CellTile tile_;
  bool holding_ = false;  ///< edges go to held_, not to the tile
  bool tooLarge_ = false;
  int64_t heldPixels_ = 0;     ///< that held edges run through
  int64_t maxEdgePixels_ = 0;  ///< that all edges may run through

  bool inContour_ = false;
  GridPoint start_;
  GridPoint current_;

  std::vector<Edge> held_;
  std::vector<uint32_t> bandStart_;  ///< per band the first index into order_
  std::vector<uint32_t> order_;      ///< held edges by the band that they start in
  std::vector<uint32_t> active_;     ///< edges that go on below the current band
};
