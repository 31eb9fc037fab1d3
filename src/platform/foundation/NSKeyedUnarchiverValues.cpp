#include <cmath>

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/NSKeyedUnarchiver.h"
#include "platform/foundation/NSNumber.h"
#include "platform/foundation/NSString.h"

// The typed calls of the unarchiver: what each makes of the kind of value that is stored.

namespace {

using Kind = PropertyListObject::Kind;

[[noreturn]] void wrongKind(std::string_view key, const char* wanted) {
  throw NSException(NSInvalidUnarchiveOperationException,
                    "value for key (" + std::string(key) + ") is not " + wanted);
}

[[noreturn]] void outOfRange(std::string_view key) {
  throw NSException(NSRangeException, "value for key (" + std::string(key) + ") is out of range");
}

int64_t truncated(double value, std::string_view key) {
  // The bounds are exact: -2^63 fits, 2^63 does not.
  if (!(value >= -0x1p63 && value < 0x1p63)) outOfRange(key);
  return static_cast<int64_t>(value);
}

}  // namespace

/// Numbers of any kind serve as integers; reals are truncated toward zero.
int64_t NSKeyedUnarchiver::integerForKey(std::string_view key, int64_t low, int64_t high) const {
  const auto value = valueForKey(key);
  if (!value) return 0;
  int64_t number = 0;
  if (value->is(Kind::kBool)) {
    number = value->boolean() ? 1 : 0;
  } else if (value->is(Kind::kReal)) {
    number = truncated(value->real(), key);
  } else if (value->is(Kind::kInteger)) {
    const auto integer = value->int64();
    if (!integer) outOfRange(key);
    number = *integer;
  } else {
    wrongKind(key, "an integer number");
  }
  if (number < low || number > high) outOfRange(key);
  return number;
}

int32_t NSKeyedUnarchiver::decodeInt32ForKey(std::string_view key) {
  return static_cast<int32_t>(integerForKey(key, INT32_MIN, INT32_MAX));
}

int64_t NSKeyedUnarchiver::decodeInt64ForKey(std::string_view key) {
  return integerForKey(key, INT64_MIN, INT64_MAX);
}

bool NSKeyedUnarchiver::decodeBoolForKey(std::string_view key) {
  const auto value = valueForKey(key);
  if (!value) return false;
  if (value->is(Kind::kBool)) return value->boolean();
  const auto number = numberFromPropertyList(*value);
  if (number == nullptr) wrongKind(key, "a boolean");
  return number->boolValue();
}

double NSKeyedUnarchiver::decodeDoubleForKey(std::string_view key) {
  const auto value = valueForKey(key);
  if (!value) return 0;
  if (value->is(Kind::kReal)) return value->real();
  const auto number = numberFromPropertyList(*value);
  if (number == nullptr) wrongKind(key, "a number");
  return number->doubleValue();
}

float NSKeyedUnarchiver::decodeFloatForKey(std::string_view key) {
  return static_cast<float>(decodeDoubleForKey(key));
}

std::shared_ptr<NSNumber> NSKeyedUnarchiver::decodeNumberForKey(std::string_view key) {
  const auto value = valueForKey(key);
  if (!value) return nullptr;
  if (auto number = numberFromPropertyList(*value)) return number;
  return decodeObjectOfClass<NSNumber>(key);
}

std::shared_ptr<NSObject> NSKeyedUnarchiver::decodeObjectForKey(std::string_view key) {
  const auto value = valueForKey(key);
  const auto reference = value ? referenceIn(*value) : std::nullopt;
  return reference ? resolve(*reference) : nullptr;
}

std::optional<std::vector<std::shared_ptr<NSObject>>> NSKeyedUnarchiver::decodeObjectsForKey(
    std::string_view key) {
  const auto list = valueForKey(key);
  if (!list || !list->is(Kind::kArray)) return std::nullopt;
  charge(list->count() * sizeof(std::shared_ptr<NSObject>));
  std::vector<std::shared_ptr<NSObject>> objects;
  objects.reserve(list->count());
  for (size_t i = 0; i < list->count(); ++i) {
    const auto reference = referenceIn(list_->object(list_->element(*list, i)));
    const std::shared_ptr<NSObject> object = reference ? resolve(*reference) : nullptr;
    if (object == nullptr && !(reference && slots_[*reference].isLeftOut)) return std::nullopt;
    // Complete objects have a height, which is quicker to see.
    const bool isIncomplete =
        object != nullptr && slots_[*reference].height == 0 && isDecoding(*object);
    objects.push_back(isIncomplete ? nullptr : object);
  }
  return objects;
}

std::span<const uint8_t> NSKeyedUnarchiver::decodeBytesForKey(std::string_view key) {
  const auto value = valueForKey(key);
  if (!value) return {};
  std::span<const uint8_t> bytes;
  if (value->is(Kind::kData)) {
    bytes = value->data();
  } else {
    if (!referenceIn(*value)) wrongKind(key, "data");
    const auto object = decodeObjectForKey(key);
    const auto* data = dynamic_cast<const NSData*>(object.get());
    if (object != nullptr && data == nullptr) wrongKind(key, "data");
    if (data != nullptr) bytes = data->bytes();
  }
  // Who asks for bytes copies or parses them.
  charge(bytes.size());
  return bytes;
}

std::shared_ptr<NSData> NSKeyedUnarchiver::decodeDataForKey(std::string_view key) {
  const auto value = valueForKey(key);
  if (!value) return nullptr;
  if (value->is(Kind::kData)) return std::make_shared<NSData>(owner_, value->data());
  return decodeObjectOfClass<NSData>(key);
}

std::optional<std::string> NSKeyedUnarchiver::decodeStringForKey(std::string_view key) {
  const auto value = valueForKey(key);
  if (!value) return std::nullopt;
  if (value->isString()) return chargedText(*value);
  const auto object = decodeObjectForKey(key);
  const auto* text = dynamic_cast<const NSString*>(object.get());
  if (text == nullptr) return std::nullopt;
  charge(text->string().size());
  return text->string();
}

NSPoint NSKeyedUnarchiver::decodePointForKey(std::string_view key) {
  return NSPointFromString(decodeStringForKey(key).value_or(""));
}

NSSize NSKeyedUnarchiver::decodeSizeForKey(std::string_view key) {
  return NSSizeFromString(decodeStringForKey(key).value_or(""));
}

NSRect NSKeyedUnarchiver::decodeRectForKey(std::string_view key) {
  return NSRectFromString(decodeStringForKey(key).value_or(""));
}
