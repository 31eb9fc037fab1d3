#include "platform/foundation/values/NSNull.h"

const NSClass NSNull::kClass{"NSNull", &NSObject::kClass, NSAllocate<NSNull>};

const std::shared_ptr<NSNull>& NSNull::null() {
  static const std::shared_ptr<NSNull> instance = std::make_shared<NSNull>();
  return instance;
}
