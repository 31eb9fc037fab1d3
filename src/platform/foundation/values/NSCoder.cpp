#include "platform/foundation/values/NSCoder.h"

#include <utility>

#include "platform/foundation/NSException.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"

namespace {

[[noreturn]] void refuse(const char* half) {
  throw NSException(NSInvalidArgumentException, std::string("this coder does not ") + half);
}

[[noreturn]] void refuseEncoding() {
  refuse("encode");
}
[[noreturn]] void refuseDecoding() {
  refuse("decode");
}

}  // namespace

void NSCoder::encodeObject(const std::shared_ptr<const NSObject>&, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeConditionalObject(const std::shared_ptr<const NSObject>&, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeBool(bool, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeInt32(int32_t, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeInt64(int64_t, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeFloat(float, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeDouble(double, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeBytes(std::span<const uint8_t>, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeInlineText(std::string_view, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeInlineData(const NSData&, std::string_view) {
  refuseEncoding();
}
void NSCoder::encodeObjects(std::span<const std::shared_ptr<NSObject>>, std::string_view) {
  refuseEncoding();
}

void NSCoder::encodePoint(const NSPoint& value, std::string_view key) {
  encodeString(NSStringFromPoint(value), key);
}
void NSCoder::encodeSize(const NSSize& value, std::string_view key) {
  encodeString(NSStringFromSize(value), key);
}
void NSCoder::encodeRect(const NSRect& value, std::string_view key) {
  encodeString(NSStringFromRect(value), key);
}
void NSCoder::encodeString(std::string_view utf8, std::string_view key) {
  encodeObject(NSString::stringWithString(utf8), key);
}

bool NSCoder::containsValueForKey(std::string_view) const {
  refuseDecoding();
}
std::shared_ptr<NSObject> NSCoder::decodeObjectForKey(std::string_view) {
  refuseDecoding();
}
bool NSCoder::decodeBoolForKey(std::string_view) {
  refuseDecoding();
}
int32_t NSCoder::decodeInt32ForKey(std::string_view) {
  refuseDecoding();
}
int64_t NSCoder::decodeInt64ForKey(std::string_view) {
  refuseDecoding();
}
float NSCoder::decodeFloatForKey(std::string_view) {
  refuseDecoding();
}
double NSCoder::decodeDoubleForKey(std::string_view) {
  refuseDecoding();
}
std::span<const uint8_t> NSCoder::decodeBytesForKey(std::string_view) {
  refuseDecoding();
}
NSPoint NSCoder::decodePointForKey(std::string_view) {
  refuseDecoding();
}
NSSize NSCoder::decodeSizeForKey(std::string_view) {
  refuseDecoding();
}
NSRect NSCoder::decodeRectForKey(std::string_view) {
  refuseDecoding();
}
std::optional<std::string> NSCoder::decodeStringForKey(std::string_view) {
  refuseDecoding();
}
std::shared_ptr<NSData> NSCoder::decodeDataForKey(std::string_view) {
  refuseDecoding();
}
std::shared_ptr<NSNumber> NSCoder::decodeNumberForKey(std::string_view) {
  refuseDecoding();
}
std::optional<std::vector<std::shared_ptr<NSObject>>> NSCoder::decodeObjectsForKey(
    std::string_view) {
  refuseDecoding();
}
std::vector<std::string> NSCoder::decodableKeys() const {
  refuseDecoding();
}

bool NSCoder::setLeavesOutUnknownClasses(bool) {
  refuseDecoding();
}

bool NSCoder::isDecoding(const NSObject&) const {
  return false;
}

void NSCoder::setAssociatedObject(std::string_view key, std::shared_ptr<NSObject> object) {
  associatedObjects_.insert_or_assign(std::string(key), std::move(object));
}

std::shared_ptr<NSObject> NSCoder::associatedObject(std::string_view key) const {
  const auto found = associatedObjects_.find(key);
  return found == associatedObjects_.end() ? nullptr : found->second;
}
