#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/foundation/PaintExport.h"
#include "platform/machine/ZeroedMemory.h"

/// A half-open range of rows, counted from the top.
struct RowRange {
  int64_t first = 0;
  int64_t end = 0;
  bool empty() const { return first >= end; }
};

/// The pixels of a bitmap: 8-bit R, G, B, A in that byte order, premultiplied, rows top first,
/// packed (4 x width bytes). New buffers are transparent.
///
/// Memory comes from the system zeroed and untouched, so a buffer costs what was painted on it;
/// the rows that may hold anything but zero are tracked, so that copying, scaling and clearing can
/// pass over the rest.
class PAINT_API PixelBuffer {
 public:
  /// Whether both sides are 0 or more and their product is at most limits::kMaxCanvasPixels.
  static bool canHold(int64_t width, int64_t height);

  PixelBuffer() = default;
  /// The sides must pass canHold. Throws std::bad_alloc when the system has no memory.
  PixelBuffer(int64_t width, int64_t height);
  /// Takes over memory that holds the pixels already: exactly 4 x width x height bytes.
  PixelBuffer(int64_t width, int64_t height, ZeroedMemory pixels);
  PixelBuffer(PixelBuffer&& other) noexcept { swap(other); }
  PixelBuffer& operator=(PixelBuffer&& other) noexcept {
    swap(other);
    return *this;
  }
  ~PixelBuffer() = default;
  void swap(PixelBuffer& other) noexcept;

  int64_t width() const { return width_; }
  int64_t height() const { return height_; }
  size_t bytesPerRow() const { return static_cast<size_t>(width_) * 4; }

  /// Row y starts at data() + y * bytesPerRow().
  const uint8_t* data() const { return memory_.data(); }
  const uint8_t* row(int64_t y) const {
    return memory_.data() + static_cast<size_t>(y) * bytesPerRow();
  }

  /// Announces that rows [first, end) are about to be written and returns the first byte of row
  /// `first`. The range must lie inside the buffer.
  uint8_t* writableRows(int64_t first, int64_t end);

  /// Every row outside this range is known to be transparent.
  RowRange usedRows() const { return used_; }

  /// Makes every pixel transparent; the memory of large buffers goes back to the system.
  void clear();

  PixelBuffer copy() const;

  /// False only for pictures that came without an alpha channel or were declared opaque; says
  /// nothing about the pixels.
  bool hasAlpha() const { return hasAlpha_; }
  void setHasAlpha(bool hasAlpha) { hasAlpha_ = hasAlpha; }

 private:
  int64_t width_ = 0;
  int64_t height_ = 0;
  ZeroedMemory memory_;
  RowRange used_;
  bool hasAlpha_ = true;
};
