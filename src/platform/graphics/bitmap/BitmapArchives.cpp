#include "platform/graphics/bitmap/BitmapArchives.h"

#include <string>

#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

std::shared_ptr<NSBitmapImageRep> pictureInData(NSCoder& coder, std::string_view key) {
  const auto file = coder.decodeDataForKey(key);
  return file == nullptr ? nullptr : NSBitmapImageRep::imageRepWithData(*file);
}

std::shared_ptr<NSBitmapImageRep> pictureInAnyData(NSCoder& coder) {
  for (const std::string& key : coder.decodableKeys()) {
    if (auto picture = pictureInData(coder, key)) return picture;
  }
  return nullptr;
}

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
