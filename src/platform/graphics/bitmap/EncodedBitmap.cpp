#include "platform/graphics/bitmap/EncodedBitmap.h"

#include <string>

#include "platform/foundation/NSException.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/BitmapArchives.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/codecs/PictureCache.h"

const NSClass EncodedBitmap::kClass{"NSBitmapImageRep", &NSBitmapImageRep::kClass,
                                    NSAllocate<EncodedBitmap>};

size_t pixelBytes(const NSBitmapImageRep& bitmap) {
  return bitmap.bytesPerRow() * static_cast<size_t>(bitmap.pixelsHigh());
}

std::shared_ptr<NSBitmapImageRep> decodedBitmap(const std::shared_ptr<const NSData>& file,
                                                bool* isTooLarge) {
  const PictureKey key{PictureKey::Kind::bitmap, {}, file->bytes(), file};
  const auto decode = [&] {
    bool tooLarge = false;
    auto bitmap = NSBitmapImageRep::imageRepWithData(*file, &tooLarge);
    if (tooLarge && isTooLarge != nullptr) *isTooLarge = true;
    return bitmap;
  };
  return remembered<NSBitmapImageRep>(key, PictureCache::Keep::whenRepeated, decode, pixelBytes);
}

std::shared_ptr<const EncodedBitmap> decodeBitmapForKeys(NSCoder& coder, std::string_view bitmapKey,
                                                         std::string_view fileKey) {
  auto encoded = coder.decodeObjectOfClass<EncodedBitmap>(bitmapKey);
  const auto file = coder.decodeDataForKey(fileKey);
  if (file == nullptr) return encoded;
  // Draws may share the record of their bitmap.
  encoded = encoded == nullptr ? std::make_shared<EncodedBitmap>()
                               : std::make_shared<EncodedBitmap>(*encoded);
  encoded->addFile(file);
  return encoded;
}

std::shared_ptr<NSBitmapImageRep> EncodedBitmap::bitmap(bool* isTooLarge) const {
  if (isTooLarge != nullptr) *isTooLarge = false;
  if (auto known = decoded_.lock()) return known;
  for (const auto& file : files_) {
    if (auto bitmap = decodedBitmap(file, isTooLarge)) {
      decoded_ = bitmap;
      return bitmap;
    }
  }
  return nullptr;
}

const char* EncodedBitmap::formatName() const {
  if (files_.empty()) return "";
  const NSData* shown = files_.front().get();
  for (size_t i = 0; files_.size() > 1 && i < files_.size(); ++i) {
    if (decodedBitmap(files_[i], nullptr) == nullptr) continue;
    shown = files_[i].get();
    break;
  }
  return nameOf(imageFormatOf(shown->bytes()));
}

bool EncodedBitmap::initWithCoder(NSCoder& coder) {
  files_ = pictureFiles(coder);
  return !files_.empty();
}

void EncodedBitmap::encodeWithCoder(NSCoder& coder) const {
  const auto decoded = bitmap();
  if (decoded == nullptr) {
    throw NSException(NSInvalidArchiveOperationException, "a bitmap that cannot be decoded");
  }
  decoded->encodeWithCoder(coder);
}
