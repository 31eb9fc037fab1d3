#include "platform/foundation/values/NSNumber.h"

#include <functional>

#include "platform/foundation/Convert.h"
#include "platform/foundation/values/NSCoder.h"

const NSClass NSNumber::kClass{"NSNumber", &NSObject::kClass, NSAllocate<NSNumber>};

std::shared_ptr<NSNumber> NSNumber::numberWithBool(bool value) {
  auto number = numberWithInteger(value ? 1 : 0);
  number->kind_ = Kind::kBool;
  return number;
}

std::shared_ptr<NSNumber> NSNumber::numberWithInteger(int64_t value) {
  auto number = std::make_shared<NSNumber>();
  number->bits_ = static_cast<uint64_t>(value);
  return number;
}

std::shared_ptr<NSNumber> NSNumber::numberWithUnsignedInteger(uint64_t value) {
  auto number = std::make_shared<NSNumber>();
  number->bits_ = value;
  if (value >> 63 != 0) number->kind_ = Kind::kUnsigned;
  return number;
}

std::shared_ptr<NSNumber> NSNumber::numberWithFloat(float value) {
  auto number = numberWithDouble(static_cast<double>(value));
  number->kind_ = Kind::kFloat;
  return number;
}

std::shared_ptr<NSNumber> NSNumber::numberWithDouble(double value) {
  auto number = std::make_shared<NSNumber>();
  number->kind_ = Kind::kDouble;
  number->real_ = value;
  return number;
}

bool NSNumber::boolValue() const {
  return isReal() ? real_ != 0 : bits_ != 0;
}

int64_t NSNumber::integerValue() const {
  if (isReal()) return clampToInteger<int64_t>(real_);
  return kind_ == Kind::kUnsigned ? INT64_MAX : static_cast<int64_t>(bits_);
}

uint64_t NSNumber::unsignedIntegerValue() const {
  if (isReal()) return clampToInteger<uint64_t>(real_);
  return kind_ != Kind::kUnsigned && static_cast<int64_t>(bits_) < 0 ? 0 : bits_;
}

float NSNumber::floatValue() const {
  return static_cast<float>(doubleValue());
}

double NSNumber::doubleValue() const {
  if (isReal()) return real_;
  return kind_ == Kind::kUnsigned ? static_cast<double>(bits_)
                                  : static_cast<double>(static_cast<int64_t>(bits_));
}

bool NSNumber::isEqual(const NSObject& other) const {
  const auto* number = dynamic_cast<const NSNumber*>(&other);
  if (number == nullptr) return false;
  if (isReal() || number->isReal()) return doubleValue() == number->doubleValue();
  // Of equal bits one may be a negative, the other an unsigned number.
  return bits_ == number->bits_ && (kind_ == Kind::kUnsigned) == (number->kind_ == Kind::kUnsigned);
}

size_t NSNumber::hash() const {
  return std::hash<double>{}(doubleValue());
}

bool NSNumber::initWithCoder(NSCoder& coder) {
  // The archiver stores numbers plainly; these are the forms of other coders.
  for (const char* key : {"NS.number", "NS.intval", "NS.dblval", "NS.boolval"}) {
    if (const auto number = coder.decodeNumberForKey(key)) {
      *this = *number;
      return true;
    }
  }
  return false;
}
