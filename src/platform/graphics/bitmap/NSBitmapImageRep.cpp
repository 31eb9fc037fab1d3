#include "platform/graphics/bitmap/NSBitmapImageRep.h"

#include <utility>
#include <vector>

#include "platform/foundation/NSException.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/BitmapArchives.h"
#include "platform/graphics/bitmap/ImageFiles.h"

namespace {

/// What bitmaps share with pages and the like; archives list it among a bitmap's classes.
constexpr NSClass kImageRepClass{"NSImageRep", &NSObject::kClass, nullptr};

std::vector<uint8_t> encoded(const NSBitmapImageRep& bitmap, NSBitmapImageFileType type,
                             double compressionFactor) {
  switch (type) {
    case NSBitmapImageFileType::TIFF:
      return encodeTIFF(bitmap);
    case NSBitmapImageFileType::JPEG:
      return encodeJPEG(bitmap, compressionFactor);
    case NSBitmapImageFileType::PNG:
      return encodePNG(bitmap, {.texts = {}, .alpha = PNGAlpha::asInBitmap});
  }
  return {};
}

}  // namespace

const NSClass NSBitmapImageRep::kClass{"NSBitmapImageRep", &kImageRepClass, nullptr};

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::create(int64_t pixelsWide, int64_t pixelsHigh) {
  if (!PixelBuffer::canHold(pixelsWide, pixelsHigh)) return nullptr;
  return std::make_shared<NSBitmapImageRep>(PixelBuffer(pixelsWide, pixelsHigh));
}

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::imageRepWithData(const NSData& data,
                                                                     bool* isTooLarge) {
  return decodeImage(data.bytes(), isTooLarge);
}

std::shared_ptr<NSData> NSBitmapImageRep::representationUsingType(NSBitmapImageFileType type,
                                                                  double compressionFactor) const {
  auto file = encoded(*this, type, compressionFactor);
  return file.empty() ? nullptr : NSData::dataWithVector(std::move(file));
}

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::copy() const {
  return std::make_shared<NSBitmapImageRep>(pixels_.copy());
}

void NSBitmapImageRep::encodeWithCoder(NSCoder& coder) const {
  const auto file = TIFFRepresentation();
  if (file == nullptr) {
    throw NSException(NSInvalidArchiveOperationException, "a bitmap without TIFF representation");
  }
  coder.encodeObject(file, kTIFFRepresentation);
}
