#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/resample/ResampleAxis.h"
#include "platform/graphics/resample/ResampleKernels.h"

/// How a picture is scaled. Both rectangles count rows from the top and may be fractional; the part
/// of `source` outside the bitmap repeats the bitmap's edge.
struct ResampleMapping {
  NSRect source;
  NSRect destination;
  bool mirroredX = false;
  bool mirroredY = false;
};

/// The one way pictures are scaled: a separable Catmull-Rom filter (ResampleAxis) over
/// premultiplied pixels, computed row by row for the wanted destination pixels only, in memory for
/// a few rows. Colours are clamped to alpha, uniform areas keep their exact value, and a mapping
/// that moves whole pixels copies them.
class Resampler {
 public:
  /// Destination pixels of `visible` will be asked for; those outside `mapping.destination` show
  /// the edge of the source. The bitmap must outlive the resampler and stay unchanged.
  Resampler(const NSBitmapImageRep& source, const ResampleMapping& mapping,
            const PixelBox& visible);

  /// Destination rows, within `visible`, that may hold anything but transparent pixels.
  RowRange paintedRows() const { return painted_; }

  /// The pixels of `visible` in destination row `y`, which must be one of paintedRows(). Valid
  /// until the next call. Rows may be asked for in any order; ascending or descending is cheapest.
  const uint8_t* row(int64_t y);

 private:
  void buildColumns();
  void findPaintedRows();
  RowRange usedCells() const;
  const uint8_t* cellRow(int64_t cell);
  void averageRow(int64_t cell, uint8_t* out);

  const NSBitmapImageRep& source_;
  PixelBox visible_;
  ResampleAxis horizontal_;
  ResampleAxis vertical_;
  RowRange painted_;

  std::vector<ColumnWindow> windows_;  ///< relative to firstColumn_
  std::vector<float> columnWeights_;
  int64_t firstColumn_ = 0;  ///< first cell that the visible columns need
  int64_t columnCount_ = 0;
  bool copies_ = true;  ///< columns are whole pixels in order

  ResampleWindow rowWindow_;
  std::vector<const uint8_t*> rows_;
  std::vector<float> columns_;
  std::vector<uint8_t> out_;

  std::vector<uint8_t> cells_;  ///< ring of averaged rows, when cells are not pixels
  std::vector<int64_t> cellOfSlot_;
  std::vector<uint32_t> totals_;
};

/// A part of a bitmap, in pixels with rows counted from the top, stretched to a new size; null when
/// that is too large for a bitmap.
std::shared_ptr<NSBitmapImageRep> resampledPart(const NSBitmapImageRep& source, const NSRect& part,
                                                int64_t width, int64_t height);

/// The whole bitmap stretched to a new size.
inline std::shared_ptr<NSBitmapImageRep> resampledBitmap(const NSBitmapImageRep& source,
                                                         int64_t width, int64_t height) {
  return resampledPart(source, {{0, 0}, source.size()}, width, height);
}
