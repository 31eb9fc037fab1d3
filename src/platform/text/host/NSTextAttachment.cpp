#include "platform/text/host/NSTextAttachment.h"

#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"

namespace {

constexpr const char* kContentsKey = "NSContents";
constexpr const char* kBoundsKey = "NSBounds";

}  // namespace

const NSClass NSTextAttachment::kClass{"NSTextAttachment", &NSObject::kClass,
                                       NSAllocate<NSTextAttachment>};

std::shared_ptr<const EncodedBitmap> NSTextAttachment::picture() const {
  if (contents_ == nullptr) return nullptr;
  auto picture = std::make_shared<EncodedBitmap>(contents_);
  return picture->bitmap() == nullptr ? nullptr : picture;
}

bool NSTextAttachment::initWithCoder(NSCoder& coder) {
  contents_ = coder.decodeObjectOfClass<NSData>(kContentsKey);
  if (coder.containsValueForKey(kBoundsKey)) bounds_ = coder.decodeRectForKey(kBoundsKey);
  return true;
}

void NSTextAttachment::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObject(contents_, kContentsKey);
  if (!NSIsEmptyRect(bounds_)) coder.encodeRect(bounds_, kBoundsKey);
}
