#include "platform/foundation/archive/FoundationClasses.h"

#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSDate.h"
#include "platform/foundation/values/NSNull.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/foundation/values/NSURL.h"
#include "platform/foundation/values/NSValue.h"

void registerFoundationClasses() {
  static const bool registered = [] {
    static constexpr const NSClass* kClasses[] = {&NSObject::kClass,
                                                  &NSString::kClass,
                                                  &NSMutableString::kClass,
                                                  &NSData::kClass,
                                                  &NSMutableData::kClass,
                                                  &NSNumber::kClass,
                                                  &NSValue::kClass,
                                                  &NSArray::kClass,
                                                  &NSMutableArray::kClass,
                                                  &NSSet::kClass,
                                                  &NSMutableSet::kClass,
                                                  &NSOrderedSet::kClass,
                                                  &NSDictionary::kClass,
                                                  &NSMutableDictionary::kClass,
                                                  &NSDate::kClass,
                                                  &NSNull::kClass,
                                                  &NSURL::kClass};
    NSRegisterClasses(kClasses);
    return true;
  }();
  static_cast<void>(registered);
}
