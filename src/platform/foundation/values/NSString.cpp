#include "platform/foundation/values/NSString.h"

#include "platform/foundation/Unicode.h"
#include "platform/foundation/values/NSCoder.h"

const NSClass NSString::kClass{"NSString", &NSObject::kClass, NSAllocate<NSString>};
const NSClass NSMutableString::kClass{"NSMutableString", &NSString::kClass,
                                      NSAllocate<NSMutableString>};

size_t NSString::length() const {
  return utf16Length(utf8_);
}

bool NSString::isEqual(const NSObject& other) const {
  const auto* text = dynamic_cast<const NSString*>(&other);
  return text != nullptr && text->utf8_ == utf8_;
}

bool NSString::initWithCoder(NSCoder& coder) {
  if (auto text = coder.decodeStringForKey("NS.string")) {
    utf8_ = *std::move(text);
  } else {
    // Coders that do not know keyed archives leave UTF-8 bytes.
    const auto bytes = coder.decodeBytesForKey("NS.bytes");
    utf8_.assign(bytes.begin(), bytes.end());
  }
  return true;
}

void NSString::encodeWithCoder(NSCoder& coder) const {
  coder.encodeInlineText(utf8_, "NS.string");
}
