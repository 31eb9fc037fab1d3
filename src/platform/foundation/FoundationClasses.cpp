#include "platform/foundation/FoundationClasses.h"

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSDate.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSNull.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSSet.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/NSURL.h"
#include "platform/foundation/NSValue.h"

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
