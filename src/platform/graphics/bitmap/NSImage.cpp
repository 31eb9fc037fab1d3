#include "platform/graphics/bitmap/NSImage.h"

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/bitmap/BitmapArchives.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

const NSClass NSImage::kClass{"NSImage", &NSObject::kClass, NSAllocate<NSImage>};

namespace {

using BitmapPointer = std::shared_ptr<NSBitmapImageRep>;

void keepLarger(BitmapPointer& best, const std::shared_ptr<NSObject>& object) {
  const auto bitmap = std::dynamic_pointer_cast<NSBitmapImageRep>(object);
  if (bitmap == nullptr) return;
  const auto pixels = [](const NSBitmapImageRep& b) { return b.pixelsWide() * b.pixelsHigh(); };
  if (best == nullptr || pixels(*bitmap) > pixels(*best)) best = bitmap;
}

}  // namespace

bool NSImage::initWithCoder(NSCoder& coder) {
  if (const auto representations = coder.decodeObjectOfClass<NSArray>("NSReps")) {
    for (const auto& entry : *representations) {
      keepLarger(representation_, entry);
      // Usually a pair of a kind and the representation.
      const auto pair = std::dynamic_pointer_cast<NSArray>(entry);
      if (pair == nullptr) continue;
      for (const auto& part : *pair) keepLarger(representation_, part);
    }
  }
  if (representation_ == nullptr) representation_ = pictureInAnyData(coder);
  return true;
}

void NSImage::encodeWithCoder(NSCoder& coder) const {
  // The picture has a size of its own, in points.
  constexpr int32_t kSizeIsSet = 0x20C00000;
  constexpr int64_t kRepresentationFollows = 0;
  if (representation_ == nullptr) return;
  coder.encodeInt32(kSizeIsSet, "NSImageFlags");
  coder.encodeSize(representation_->size(), "NSSize");
  coder.encodeObject(NSArray::arrayWithObjects({NSArray::arrayWithObjects(
                         {NSNumber::numberWithInteger(kRepresentationFollows), representation_})}),
                     "NSReps");
}
