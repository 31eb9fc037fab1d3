#include "platform/graphics/bitmap/NSImage.h"

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"

const NSClass NSImage::kClass{"NSImage", &NSObject::kClass, NSAllocate<NSImage>};

std::shared_ptr<NSBitmapImageRep> NSImage::representation() const {
  const auto pixels = [](const NSBitmapImageRep& b) { return b.pixelsWide() * b.pixelsHigh(); };
  auto best = representation_;
  for (const auto& encoded : encoded_) {
    auto bitmap = encoded->bitmap();
    const bool isLarger = bitmap != nullptr && (best == nullptr || pixels(*bitmap) > pixels(*best));
    if (isLarger) best = std::move(bitmap);
  }
  return best;
}

bool NSImage::initWithCoder(NSCoder& coder) {
  const auto add = [this](const std::shared_ptr<NSObject>& object) {
    auto bitmap = std::dynamic_pointer_cast<EncodedBitmap>(object);
    if (bitmap != nullptr) encoded_.push_back(std::move(bitmap));
  };
  if (const auto representations = coder.decodeObjectOfClass<NSArray>("NSReps")) {
    for (const auto& entry : *representations) {
      add(entry);
      // Usually a pair of a kind and the representation.
      const auto pair = std::dynamic_pointer_cast<NSArray>(entry);
      if (pair == nullptr) continue;
      for (const auto& part : *pair) add(part);
    }
  }
  if (!encoded_.empty()) return true;
  auto own = std::make_shared<EncodedBitmap>();
  if (own->initWithCoder(coder)) encoded_.push_back(std::move(own));
  return true;
}

void NSImage::encodeWithCoder(NSCoder& coder) const {
  // The picture has a size of its own, in points.
  constexpr int32_t kSizeIsSet = 0x20C00000;
  constexpr int64_t kRepresentationFollows = 0;
  const auto bitmap = representation();
  if (bitmap == nullptr) return;
  coder.encodeInt32(kSizeIsSet, "NSImageFlags");
  coder.encodeSize(bitmap->size(), "NSSize");
  coder.encodeObject(NSArray::arrayWithObjects({NSArray::arrayWithObjects(
                         {NSNumber::numberWithInteger(kRepresentationFollows), bitmap})}),
                     "NSReps");
}
