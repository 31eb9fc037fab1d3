#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/PaintExport.h"
#include "platform/graphics/ZeroedMemory.h"

class NSData;

/// Picture formats by the numbers that callers use.
enum class NSBitmapImageFileType : uint8_t { TIFF = 0, JPEG = 3, PNG = 4 };

/// A half-open range of rows, counted from the top.
struct RowRange {
  int64_t first = 0;
  int64_t end = 0;
  bool empty() const { return first >= end; }
};

/// A bitmap of 8-bit R, G, B, A in that byte order, premultiplied, rows top first, rows packed
/// (4 x width bytes). New bitmaps are transparent.
///
/// Memory comes from the system zeroed and untouched, so a bitmap costs what was painted on it;
/// the rows that may hold anything but zero are tracked, so that copying, scaling and clearing can
/// pass over the rest.
class PAINT_API NSBitmapImageRep : public NSObject {
 public:
  static const NSClass kClass;

  /// A transparent bitmap. Null when a side is negative, or when it would hold more pixels than
  /// limits::kMaxCanvasPixels; throws std::bad_alloc when the system has no memory for it.
  static std::shared_ptr<NSBitmapImageRep> create(int64_t pixelsWide, int64_t pixelsHigh);

  /// An empty bitmap of 0 by 0 pixels; archives allocate this before decoding.
  NSBitmapImageRep() = default;
  NSBitmapImageRep(const NSBitmapImageRep&) = delete;
  NSBitmapImageRep& operator=(const NSBitmapImageRep&) = delete;

  /// The picture in a PNG, JPEG, TIFF or WebP file: sRGB, upright, hasAlpha as in the file. Null
  /// when the data is none or too large.
  static std::shared_ptr<NSBitmapImageRep> imageRepWithData(const NSData& data);

  /// The bitmap as a file; null when it has no pixels or the format cannot hold it. The factor (0
  /// to 1) is JPEG's quality; JPEG shows translucent pixels over black.
  std::shared_ptr<NSData> representationUsingType(NSBitmapImageFileType type,
                                                  double compressionFactor = 0.9) const;
  std::shared_ptr<NSData> TIFFRepresentation() const {
    return representationUsingType(NSBitmapImageFileType::TIFF);
  }

  const NSClass& classInfo() const override { return kClass; }
  /// The record holds the bitmap as a TIFF file, or as any other picture that decodes; false when
  /// it holds none.
  bool initWithCoder(NSCoder& coder) override;
  /// Throws NSException (NSInvalidArchiveOperationException) for a bitmap without representation.
  void encodeWithCoder(NSCoder& coder) const override;

  int64_t pixelsWide() const { return width_; }
  int64_t pixelsHigh() const { return height_; }
  NSSize size() const { return {static_cast<CGFloat>(width_), static_cast<CGFloat>(height_)}; }
  size_t bytesPerRow() const { return static_cast<size_t>(width_) * 4; }

  /// The pixels, for reading. Row y starts at bitmapData() + y * bytesPerRow().
  const uint8_t* bitmapData() const { return memory_.data(); }
  const uint8_t* row(int64_t y) const {
    return memory_.data() + static_cast<size_t>(y) * bytesPerRow();
  }

  /// Announces that rows [first, end) are about to be written and returns the first byte of row
  /// `first`. The range must lie inside the bitmap.
  uint8_t* writableRows(int64_t first, int64_t end);

  /// False only for pictures that came without an alpha channel or were declared opaque; says
  /// nothing about the pixels.
  bool hasAlpha() const { return hasAlpha_; }
  void setHasAlpha(bool hasAlpha) { hasAlpha_ = hasAlpha; }

  /// Every row outside this range is known to be transparent.
  RowRange usedRows() const { return used_; }

  /// Makes every pixel transparent; the memory of large bitmaps goes back to the system.
  void clear();

  /// A copy of the pixels.
  std::shared_ptr<NSBitmapImageRep> copy() const;

 private:
  NSBitmapImageRep(int64_t width, int64_t height, ZeroedMemory memory)
      : width_(width), height_(height), memory_(std::move(memory)) {}
  void takePixels(NSBitmapImageRep& other);

  int64_t width_ = 0;
  int64_t height_ = 0;
  ZeroedMemory memory_;
  RowRange used_;
  bool hasAlpha_ = true;
};

/// Other representations of pictures that archives name. Those that hold a picture this engine
/// decodes become bitmaps; the rest (pages, drawing code) decode to nil.
std::span<const NSClass* const> otherImageRepClasses();
