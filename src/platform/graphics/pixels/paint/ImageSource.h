#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/PixelBuffer.h"
#include "platform/graphics/pixels/coverage/CanvasGrid.h"
#include "platform/graphics/pixels/paint/RowSource.h"

/// A bitmap moved by whole pixels: device position (x, y) shows its pixel (x + dx, y + dy), rows
/// counted from the top. Transparent outside the bitmap.
class MovedImageSource final : public RowSource {
 public:
  /// The bitmap must outlive the source and stay unchanged.
  MovedImageSource(const PixelBuffer& image, int32_t dx, int32_t dy)
      : image_(image), dx_(dx), dy_(dy) {}
  const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) override;

 private:
  const PixelBuffer& image_;
  int32_t dx_;
  int32_t dy_;
};

/// Paint of canvas pixels, for a device that shows the canvas at a scale: each device pixel has the
/// mean of what it shows, so canvas pixels are repeated where the canvas is enlarged.
class ScaledRowSource final : public RowSource {
 public:
  /// The canvas pixels that are asked for lie in `visible`.
  ScaledRowSource(std::unique_ptr<RowSource> canvas, const CanvasGrid& grid,
                  const PixelBox& visible)
      : canvas_(std::move(canvas)), grid_(grid), visible_(visible) {}
  const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) override;

 private:
  /// What a device pixel shows in one direction: whole pixels and parts of pixels.
  struct Shown {
    int32_t first;
    int32_t end;
    double from;
    double to;
    double weight(int32_t at) const { return std::fmin(to, at + 1) - std::fmax(from, at); }
  };
  Shown shown(double from, double to, int32_t low, int32_t high) const;

  std::unique_ptr<RowSource> canvas_;
  CanvasGrid grid_;
  PixelBox visible_;
  std::vector<uint32_t> pixels_;
  std::vector<double> sums_;
};

/// Columns [x0, x1) and rows [y0, y1), from the top, of a bitmap.
using ImagePart = PixelBox;

/// True when `deviceToImage` only moves, by whole pixels up to rounding noise; `dx`, `dy` receive
/// what is added to a device position to get the image position.
bool movesWholePixels(const CGAffineTransform& deviceToImage, int32_t* dx, int32_t* dy);

enum class SamplingFilter : uint8_t { nearest, bilinear, fourTap };

/// Part of a bitmap under any affine mapping, sampled at pixel centres. Positions outside the part
/// show its edge pixels.
class TransformedImageSource final : public RowSource {
 public:
  /// `deviceToImage` maps device positions to positions in the bitmap, both in pixels with rows
  /// counted from the top; its entries must be finite. `part` must not be empty and must lie in the
  /// bitmap, which must outlive the source.
  TransformedImageSource(const PixelBuffer& image, const ImagePart& part,
                         const CGAffineTransform& deviceToImage, SamplingFilter filter);
  const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) override;

 private:
  void nearestRow(NSPoint position, int32_t n, uint32_t* out) const;
  void bilinearRow(NSPoint position, int32_t n, uint32_t* out) const;
  void fourTapRow(int32_t x, int32_t y, int32_t n, uint32_t* out) const;

  const PixelBuffer& image_;
  ImagePart part_;
  CGAffineTransform deviceToImage_;
  SamplingFilter filter_;
};
