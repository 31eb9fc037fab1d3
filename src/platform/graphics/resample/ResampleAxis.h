#pragma once

#include <cstdint>
#include <vector>

/// Filter weights are fixed-point numbers with this many fraction bits.
inline constexpr int kFilterBits = 14;

/// Where one direction of a scaled picture comes from: destination pixels of [destination,
/// destination + destinationLength) show source pixels of [source, source + sourceLength).
/// Positions are pixel edges, so pixel i spans i to i + 1; mirrored runs the source backwards.
struct AxisMapping {
  double source = 0;
  double sourceLength = 0;
  double destination = 0;
  double destinationLength = 0;
  bool mirrored = false;
};

/// Consecutive cells and their weights, which sum to exactly 1 << kFilterBits.
struct ResampleWindow {
  int64_t first = 0;
  std::vector<int16_t> weights;
  int64_t end() const { return first + static_cast<int64_t>(weights.size()); }
};

/// One direction of the resampling filter: Catmull-Rom, the cubic convolution kernel with
/// a = -1/2 (R. Keys, "Cubic Convolution Interpolation for Digital Image Processing", 1981),
/// widened by the reduction factor, centre-aligned. Near a border the window is cut and
/// renormalised, and positions outside the source count as its edge.
///
/// The filter works on cells. A cell is one source pixel unless the reduction is so strong that
/// averaging cellSize() neighbouring pixels first makes no visible difference; that bounds a window
/// to a few hundred cells whatever the reduction.
class ResampleAxis {
 public:
  /// `pixelCount` is the bitmap's extent in this direction. The axis is empty when nothing of the
  /// source lies in the bitmap or a number is not finite or a length not positive.
  ResampleAxis(const AxisMapping& mapping, int64_t pixelCount);

  bool empty() const { return cellCount_ == 0; }

  /// Source pixels per cell. Cell c averages the pixels from firstPixel() + c * cellSize(), as many
  /// as there are; only the last cell may hold fewer.
  int64_t cellSize() const { return cellSize_; }
  int64_t firstPixel() const { return firstPixel_; }
  int64_t endPixel() const { return endPixel_; }

  /// Cells that destination pixel `destination` (any integer) is made of. Not for empty axes.
  void window(int64_t destination, ResampleWindow& result) const;

  /// Upper bound on the cells in a window.
  int64_t maxWindow() const;

 private:
  double centre(int64_t destination) const;

  AxisMapping mapping_;
  double step_ = 1;   ///< source pixels per destination pixel
  double reach_ = 2;  ///< half the window, in cells
  int64_t cellSize_ = 1;
  int64_t cellCount_ = 0;
  int64_t firstPixel_ = 0;
  int64_t endPixel_ = 0;
};
