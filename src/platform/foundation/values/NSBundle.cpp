#include "platform/foundation/values/NSBundle.h"

#include "platform/foundation/values/NSString.h"

std::shared_ptr<NSString> mainBundleObjectForInfoDictionaryKey(std::string_view key) {
  if (key == "CFBundleName") return NSString::stringWithString("paintengine");
  if (key == "CFBundleShortVersionString" || key == "CFBundleVersion") {
    return NSString::stringWithString(PAINT_VERSION);
  }
  return nullptr;
}

std::string localizedStringForKey(std::string_view key, std::string_view value, std::string_view) {
  return std::string(value.empty() ? key : value);
}
