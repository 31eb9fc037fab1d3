#include "platform/graphics/bitmap/BitmapArchives.h"

#include <string>

#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/bitmap/ImageFiles.h"

std::vector<std::shared_ptr<const NSData>> pictureFiles(NSCoder& coder) {
  std::vector<std::shared_ptr<const NSData>> files;
  const auto add = [&](std::string_view key) {
    const auto data = coder.decodeDataForKey(key);
    if (data != nullptr && imageFormatOf(data->bytes()) != ImageFormat::unknown) {
      files.push_back(data);
    }
  };
  add(kTIFFRepresentation);
  for (const std::string& key : coder.decodableKeys()) {
    if (key != kTIFFRepresentation) add(key);
  }
  return files;
}

std::span<const NSClass* const> otherImageRepClasses() {
  static constexpr auto kind = [](std::string_view name) {
    return NSClass{name, &EncodedBitmap::kClass, NSAllocate<EncodedBitmap>};
  };
  // Kept off screen by old systems; pages; drawn by code.
  static const NSClass kKinds[] = {kind("NSCachedImageRep"), kind("NSPDFImageRep"),
                                   kind("NSEPSImageRep"), kind("NSCustomImageRep")};
  static const NSClass* const kClasses[] = {&kKinds[0], &kKinds[1], &kKinds[2], &kKinds[3]};
  return kClasses;
}
