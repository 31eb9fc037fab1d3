#include "platform/foundation/values/NSDate.h"

#include <functional>

#include "platform/foundation/values/NSCoder.h"

const NSClass NSDate::kClass{"NSDate", &NSObject::kClass, NSAllocate<NSDate>};

std::shared_ptr<NSDate> NSDate::dateWithTimeIntervalSinceReferenceDate(double seconds) {
  auto date = std::make_shared<NSDate>();
  date->seconds_ = seconds;
  return date;
}

std::shared_ptr<NSDate> NSDate::dateWithTimeIntervalSince1970(double seconds) {
  return dateWithTimeIntervalSinceReferenceDate(seconds - kIntervalBetween1970AndReferenceDate);
}

bool NSDate::isEqual(const NSObject& other) const {
  const auto* date = dynamic_cast<const NSDate*>(&other);
  return date != nullptr && date->seconds_ == seconds_;
}

size_t NSDate::hash() const {
  return std::hash<double>{}(seconds_);
}

bool NSDate::initWithCoder(NSCoder& coder) {
  seconds_ = coder.decodeDoubleForKey("NS.time");
  return true;
}

void NSDate::encodeWithCoder(NSCoder& coder) const {
  coder.encodeDouble(seconds_, "NS.time");
}
