#include "platform/text/layout/NSTextTab.h"

#include "platform/foundation/values/NSCoder.h"
#include "platform/text/TextLengths.h"

namespace {

NSTextTabType typeOfAlignment(int32_t alignment) {
  switch (static_cast<NSTextAlignment>(alignment)) {
    case NSTextAlignment::right:
      return NSTextTabType::right;
    case NSTextAlignment::center:
      return NSTextTabType::center;
    default:
      return NSTextTabType::left;
  }
}

NSTextTabType typeOfNumber(int32_t number) {
  return number >= 0 && number <= 3 ? static_cast<NSTextTabType>(number) : NSTextTabType::left;
}

}  // namespace

const NSClass NSTextTab::kClass{"NSTextTab", &NSObject::kClass, NSAllocate<NSTextTab>};

NSTextTab::NSTextTab(NSTextTabType type, CGFloat location)
    : type_(type), location_(layoutLength(location)) {}

bool NSTextTab::initWithCoder(NSCoder& coder) {
  location_ = layoutLength(coder.decodeDoubleForKey("NSLocation"));
  type_ = typeOfNumber(coder.decodeIntForKey("NSType"));
  // Newer systems write an alignment, and a decimal tab as a right one with a column terminator.
  if (coder.containsValueForKey("NSTextAlignment") && type_ != NSTextTabType::decimal) {
    type_ = typeOfAlignment(coder.decodeIntForKey("NSTextAlignment"));
  }
  return true;
}

void NSTextTab::encodeWithCoder(NSCoder& coder) const {
  coder.encodeDouble(location_, "NSLocation");
  if (type_ != NSTextTabType::left) coder.encodeInt32(static_cast<int32_t>(type_), "NSType");
}
