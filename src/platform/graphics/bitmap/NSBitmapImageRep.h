#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/PaintExport.h"
#include "platform/graphics/pixels/PixelBuffer.h"

class NSData;
class BitmapSource;

/// Picture formats by the numbers that callers use.
enum class NSBitmapImageFileType : uint8_t { TIFF = 0, JPEG = 3, PNG = 4 };

/// A bitmap that archives can name: a PixelBuffer as an object.
class PAINT_API NSBitmapImageRep : public NSObject {
 public:
  static const NSClass kClass;

  /// A transparent bitmap. Null when a side is negative, or when it would hold more pixels than
  /// limits::kMaxCanvasPixels; throws std::bad_alloc when the system has no memory for it.
  static std::shared_ptr<NSBitmapImageRep> create(int64_t pixelsWide, int64_t pixelsHigh);

  /// An empty bitmap of 0 by 0 pixels.
  NSBitmapImageRep() = default;
  explicit NSBitmapImageRep(PixelBuffer pixels) : pixels_(std::move(pixels)) {}
  NSBitmapImageRep(const NSBitmapImageRep&) = delete;
  NSBitmapImageRep& operator=(const NSBitmapImageRep&) = delete;

  /// The picture in a PNG, JPEG, TIFF or WebP file: sRGB, upright, hasAlpha as in the file. Null
  /// when the data is none or too large; `isTooLarge` may be null, and then takes which of them.
  static std::shared_ptr<NSBitmapImageRep> imageRepWithData(const NSData& data,
                                                            bool* isTooLarge = nullptr);

  /// The bitmap as a file; null when it has no pixels or the format cannot hold it. The factor (0
  /// to 1) is JPEG's quality; JPEG shows translucent pixels over black.
  std::shared_ptr<NSData> representationUsingType(NSBitmapImageFileType type,
                                                  double compressionFactor = 0.9) const;
  std::shared_ptr<NSData> TIFFRepresentation() const {
    return representationUsingType(NSBitmapImageFileType::TIFF);
  }

  const NSClass& classInfo() const override { return kClass; }
  /// As a TIFF file; what is read again is an EncodedBitmap. Throws NSException
  /// (NSInvalidArchiveOperationException) for a bitmap without representation.
  void encodeWithCoder(NSCoder& coder) const override;

  int64_t pixelsWide() const { return pixels_.width(); }
  int64_t pixelsHigh() const { return pixels_.height(); }
  NSSize size() const {
    return {static_cast<CGFloat>(pixels_.width()), static_cast<CGFloat>(pixels_.height())};
  }

  const PixelBuffer& pixels() const { return pixels_; }
  PixelBuffer& pixels() { return pixels_; }

  // As those of the pixels.
  size_t bytesPerRow() const { return pixels_.bytesPerRow(); }
  const uint8_t* bitmapData() const { return pixels_.data(); }
  const uint8_t* row(int64_t y) const { return pixels_.row(y); }
  uint8_t* writableRows(int64_t first, int64_t end) { return pixels_.writableRows(first, end); }
  RowRange usedRows() const { return pixels_.usedRows(); }
  bool hasAlpha() const { return pixels_.hasAlpha(); }
  void setHasAlpha(bool hasAlpha) { pixels_.setHasAlpha(hasAlpha); }
  void clear() { pixels_.clear(); }

  /// What stands for it in records of drawings: what it is made from. Null by default.
  const std::shared_ptr<const BitmapSource>& source() const { return source_; }
  void setSource(std::shared_ptr<const BitmapSource> source) { source_ = std::move(source); }

  /// A copy of the pixels.
  std::shared_ptr<NSBitmapImageRep> copy() const;

 private:
  PixelBuffer pixels_;
  std::shared_ptr<const BitmapSource> source_;
};

/// The pixels of a bitmap, which they keep alive; null for null.
inline std::shared_ptr<PixelBuffer> sharedPixels(const std::shared_ptr<NSBitmapImageRep>& bitmap) {
  return bitmap == nullptr ? nullptr : std::shared_ptr<PixelBuffer>(bitmap, &bitmap->pixels());
}
