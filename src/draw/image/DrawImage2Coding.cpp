// Embedded bitmaps in archives.
#include "draw/image/DrawImage2.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"

namespace {

constexpr const char* kHasRerender = "HasRerender";
constexpr const char* kImage = "Image";
constexpr const char* kImageData = "ImageData";
constexpr const char* kOpacity = "Opacity";

constexpr double kJPEGQuality = 0.95;

/// The file that an archive holds: one of the engine's own bitmaps as PNG, or as JPEG when it has
/// no alpha channel; others in the form that loses nothing of them.
std::shared_ptr<NSData> archivedFile(const NSBitmapImageRep& bitmap, bool isOwn) {
  if (!isOwn) return bitmap.TIFFRepresentation();
  return bitmap.hasAlpha()
             ? bitmap.representationUsingType(NSBitmapImageFileType::PNG)
             : bitmap.representationUsingType(NSBitmapImageFileType::JPEG, kJPEGQuality);
}

}  // namespace

bool DrawImage2::initWithCoder(NSCoder& coder) {
  if (!DrawRoundRectangle::initWithCoder(coder)) return false;
  if (shouldEncodeImage()) initImageWithCoder(coder);
  fImageOpacity_ =
      coder.containsValueForKey(kOpacity) ? coder.decodeFloatForKey(kOpacity) : kNoImageOpacity;
  if (!(lineWidth() > 0)) setEnableStroke(false);
  normalizeOpacity();
  return true;
}

void DrawImage2::initImageWithCoder(NSCoder& coder) {
  _hasRerender = coder.decodeBoolForKey(kHasRerender);
  encoded_ = decodeBitmapForKeys(coder, kImage, kImageData);
  if (encoded_ == nullptr && coder.containsValueForKey(kImage)) setImageUnreadable();
}

void DrawImage2::encodeWithCoder(NSCoder& coder) const {
  DrawRoundRectangle::encodeWithCoder(coder);
  if (shouldEncodeImage()) encodeImage(coder);
  if (fImageOpacity_ >= 0 && fImageOpacity_ < 1) coder.encodeFloat(fImageOpacity_, kOpacity);
}

void DrawImage2::encodeImage(NSCoder& coder) const {
  auto bitmap = image();
  if (bitmap == nullptr) return;
  if (!_hasRerender) {
    if (auto fresh = bitmap->copy()) {
      _image = bitmap = std::move(fresh);
      _hasRerender = true;
    }
  }
  coder.encodeBool(_hasRerender, kHasRerender);
  if (const auto file = archivedFile(*bitmap, _hasRerender)) {
    coder.encodeObject(file, kImageData);
  } else {
    coder.encodeObject(bitmap, kImage);
  }
}
