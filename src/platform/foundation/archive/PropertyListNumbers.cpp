#include "platform/foundation/archive/PropertyListNumbers.h"

#include <string>

#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/BinaryPropertyList.h"
#include "platform/foundation/values/NSNumber.h"

namespace {

using Kind = PropertyListObject::Kind;

[[noreturn]] void outOfRange(std::string_view key) {
  throw NSException(NSRangeException, "value for key (" + std::string(key) + ") is out of range");
}

int64_t truncated(double value, std::string_view key) {
  // The bounds are exact: -2^63 fits, 2^63 does not.
  if (!(value >= -0x1p63 && value < 0x1p63)) outOfRange(key);
  return static_cast<int64_t>(value);
}

}  // namespace

void throwWrongKind(std::string_view key, const char* wanted) {
  throw NSException(NSInvalidUnarchiveOperationException,
                    "value for key (" + std::string(key) + ") is not " + wanted);
}

int64_t integerFromPropertyList(const PropertyListObject& value, std::string_view key, int64_t low,
                                int64_t high) {
  int64_t number = 0;
  if (value.is(Kind::kBool)) {
    number = value.boolean() ? 1 : 0;
  } else if (value.is(Kind::kReal)) {
    number = truncated(value.real(), key);
  } else if (value.is(Kind::kInteger)) {
    const auto integer = value.int64();
    if (!integer) outOfRange(key);
    number = *integer;
  } else {
    throwWrongKind(key, "an integer number");
  }
  if (number < low || number > high) outOfRange(key);
  return number;
}

bool boolFromPropertyList(const PropertyListObject& value, std::string_view key) {
  if (value.is(Kind::kBool)) return value.boolean();
  const auto number = numberFromPropertyList(value);
  if (number == nullptr) throwWrongKind(key, "a boolean");
  return number->boolValue();
}

double doubleFromPropertyList(const PropertyListObject& value, std::string_view key) {
  if (value.is(Kind::kReal)) return value.real();
  const auto number = numberFromPropertyList(value);
  if (number == nullptr) throwWrongKind(key, "a number");
  return number->doubleValue();
}

std::shared_ptr<NSNumber> numberFromPropertyList(const PropertyListObject& value) {
  if (value.is(Kind::kBool)) return NSNumber::numberWithBool(value.boolean());
  if (value.is(Kind::kReal)) {
    return value.isSingle() ? NSNumber::numberWithFloat(static_cast<float>(value.real()))
                            : NSNumber::numberWithDouble(value.real());
  }
  if (!value.is(Kind::kInteger)) return nullptr;
  const auto integer = value.int64();
  return integer ? NSNumber::numberWithInteger(*integer)
                 : NSNumber::numberWithUnsignedInteger(*value.uint64());
}
