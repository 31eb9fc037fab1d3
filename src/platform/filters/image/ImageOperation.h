#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/filters/light/LinearLight.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

/// What lies around a picture.
enum class Surround { kTransparent, kNearestPixel };

/// A picture as an operation reads it. Its top left pixel has column `left` and lies below the
/// line y = `top`, in the image's own coordinates (y upwards, whole pixels).
struct OperationSource {
  std::shared_ptr<const NSBitmapImageRep> bitmap;
  int64_t left = 0;
  int64_t top = 0;
  Surround surround = Surround::kTransparent;
};

/// A transparent bitmap to be written, placed likewise.
struct OperationTarget {
  NSBitmapImageRep& bitmap;
  int64_t left = 0;
  int64_t top = 0;
};

/// One filter with its settings: pixels of a target from pixels of a source.
class ImageOperation {
 public:
  virtual ~ImageOperation() = default;
  /// Pixels by which the result is larger than an unextended source on each side; results with
  /// that surround are transparent beyond.
  virtual int64_t growth() const { return 0; }
  /// How far apart, in rows, a result pixel and a source pixel it depends on may be.
  virtual int64_t reach() const = 0;
  /// Writes the target's rows from `rows.first` to `rows.end`. All others come out transparent,
  /// because every source pixel in reach is.
  virtual void render(const OperationSource& source, const OperationTarget& target,
                      RowRange rows) const = 0;
};

/// The operation's result over the whole target.
void runOperation(const ImageOperation& operation, const OperationSource& source,
                  const OperationTarget& target);

/// Samples taken together.
constexpr size_t kSampleBatch = 64;

/// The source as seen from a target: rows counted from the target's top, columns from its left.
class SourceView {
 public:
  SourceView(const OperationSource& source, const OperationTarget& target);

  /// `count` pixels from (x, row) on, as linear light (see LinearLight.h).
  void decode(int64_t x, int64_t row, size_t count, float* out) const;
  /// One of red, green and blue (0 to 2), of a picture that is opaque everywhere.
  void decodeChannel(int64_t x, int64_t row, size_t count, size_t channel, float* out) const;
  void decodeLuma(int64_t x, int64_t row, size_t count, const LumaWeights& weights,
                  float* out) const;
  /// Bilinear samples between pixel centres, (0.5, 0.5) being that of the target's first pixel.
  /// Transparent outside an unextended picture. Writes 4 floats of linear light for
  /// each of `count` places.
  void sample(const double* x, const double* y, size_t count, float* out) const;
  /// Asks for a row that will be needed soon.
  void prefetchRow(int64_t row) const;
  /// The pixels of a row in several columns.
  void copyPixels(const std::vector<int64_t>& columns, int64_t row, uint32_t* out) const;

 private:
  template <class Decode>
  void decodeSpan(int64_t x, int64_t row, size_t count, size_t channels, float* out,
                  const Decode& decode) const;
  /// Of upper left, upper right, lower left and lower right ones.
  using CornerPixels = uint32_t[4][kSampleBatch];
  void copyCorners(int64_t column, int64_t row, CornerPixels& corners, size_t i) const;
  const uint8_t* pixel(int64_t column, int64_t row) const;
  void sampleBatch(const double* x, const double* y, size_t count, float* out) const;

  const NSBitmapImageRep& bitmap_;
  int64_t dx_;
  int64_t dy_;
  bool extended_;
};
