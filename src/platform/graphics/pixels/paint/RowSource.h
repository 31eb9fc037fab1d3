#pragma once

#include <cstdint>

/// Paint that differs from pixel to pixel, asked for in pieces of rows in device space.
class RowSource {
 public:
  virtual ~RowSource() = default;

  /// True when every pixel it can give is opaque.
  virtual bool opaque() const { return false; }

  /// The premultiplied pixels [x, x + n) of row y: written to `buffer`, or in memory of its own
  /// that stays valid until the next call. n is at least 1.
  virtual const uint32_t* row(int32_t x, int32_t y, int32_t n, uint32_t* buffer) = 0;
};

/// What a shape is painted with: one premultiplied pixel, or rows scaled by `alpha` (0..255).
struct SpanPaint {
  static SpanPaint solid(uint32_t pixel) { return {pixel, nullptr, 255}; }
  static SpanPaint rows(RowSource& source, uint32_t alpha = 255) { return {0, &source, alpha}; }

  uint32_t pixel = 0;
  RowSource* source = nullptr;
  uint32_t alpha = 255;
};
