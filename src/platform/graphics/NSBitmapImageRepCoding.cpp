// Bitmaps as files and in archives.
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/NSCoder.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSException.h"
#include "platform/graphics/BitmapArchives.h"
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/codecs/ImageDecoder.h"
#include "platform/graphics/codecs/PNGEncoder.h"

std::span<const NSClass* const> otherImageRepClasses() {
  static constexpr auto kind = [](std::string_view name) {
    return NSClass{name, &NSBitmapImageRep::kClass, NSAllocate<NSBitmapImageRep>};
  };
  // Kept off screen by old systems; pages; drawn by code.
  static const NSClass kKinds[] = {kind("NSCachedImageRep"), kind("NSPDFImageRep"),
                                   kind("NSEPSImageRep"), kind("NSCustomImageRep")};
  static const NSClass* const kClasses[] = {&kKinds[0], &kKinds[1], &kKinds[2], &kKinds[3]};
  return kClasses;
}

namespace {

constexpr const char* kTIFFRepresentation = "NSTIFFRepresentation";

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

std::shared_ptr<NSBitmapImageRep> pictureUnder(NSCoder& coder, const std::string& key) {
  const auto file = coder.decodeDataForKey(key);
  return file == nullptr ? nullptr : NSBitmapImageRep::imageRepWithData(*file);
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> pictureInAnyData(NSCoder& coder) {
  for (const std::string& key : coder.decodableKeys()) {
    if (auto picture = pictureUnder(coder, key)) return picture;
  }
  return nullptr;
}

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::imageRepWithData(const NSData& data) {
  return decodeImage(data.bytes());
}

std::shared_ptr<NSData> NSBitmapImageRep::representationUsingType(NSBitmapImageFileType type,
                                                                  double compressionFactor) const {
  auto file = encoded(*this, type, compressionFactor);
  return file.empty() ? nullptr : NSData::dataWithVector(std::move(file));
}

void NSBitmapImageRep::takePixels(NSBitmapImageRep& other) {
  std::swap(width_, other.width_);
  std::swap(height_, other.height_);
  std::swap(memory_, other.memory_);
  std::swap(used_, other.used_);
  std::swap(hasAlpha_, other.hasAlpha_);
}

bool NSBitmapImageRep::initWithCoder(NSCoder& coder) {
  auto picture = pictureUnder(coder, kTIFFRepresentation);
  if (picture == nullptr) picture = pictureInAnyData(coder);
  if (picture == nullptr) return false;
  takePixels(*picture);
  return true;
}

void NSBitmapImageRep::encodeWithCoder(NSCoder& coder) const {
  const auto file = TIFFRepresentation();
  if (file == nullptr) {
    throw NSException(NSInvalidArchiveOperationException, "a bitmap without TIFF representation");
  }
  coder.encodeObject(file, kTIFFRepresentation);
}
