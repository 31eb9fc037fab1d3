#include "platform/text/fonts/NSFontDescriptor.h"

#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"

namespace {

constexpr const char* kNameAttribute = "NSFontNameAttribute";
constexpr const char* kSizeAttribute = "NSFontSizeAttribute";
constexpr const char* kAttributesKey = "NSFontDescriptorAttributes";

}  // namespace

const NSClass NSFontDescriptor::kClass{"NSFontDescriptor", &NSObject::kClass,
                                       NSAllocate<NSFontDescriptor>};

std::shared_ptr<NSFontDescriptor> NSFontDescriptor::fontDescriptorWithName(const std::string& name,
                                                                           CGFloat size) {
  auto attributes = std::make_shared<NSMutableDictionary>();
  attributes->setObject(NSString::stringWithString(name), kNameAttribute);
  attributes->setObject(NSNumber::numberWithDouble(size), kSizeAttribute);
  auto descriptor = std::make_shared<NSFontDescriptor>();
  descriptor->attributes_ = std::move(attributes);
  return descriptor;
}

std::string NSFontDescriptor::postscriptName() const {
  if (attributes_ == nullptr) return {};
  const auto name = attributes_->objectOfClass<NSString>(kNameAttribute);
  return name == nullptr ? std::string() : name->string();
}

CGFloat NSFontDescriptor::pointSize() const {
  if (attributes_ == nullptr) return 0;
  const auto size = attributes_->objectOfClass<NSNumber>(kSizeAttribute);
  return size == nullptr ? 0 : size->doubleValue();
}

bool NSFontDescriptor::initWithCoder(NSCoder& coder) {
  attributes_ = coder.decodeObjectOfClass<NSDictionary>(kAttributesKey);
  return true;
}

void NSFontDescriptor::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObject(attributes_, kAttributesKey);
}
