#include "platform/foundation/archive/NSKeyedArchiver.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/foundation/NSException.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"

NSKeyedArchiver::NSKeyedArchiver(std::shared_ptr<NSMutableData> data)
    : data_(std::move(data)), null_(writer_.addString("$null")), elements_{null_}, records_(1) {}

NSKeyedArchiver::~NSKeyedArchiver() = default;

std::shared_ptr<NSMutableData> NSKeyedArchiver::archivedDataWithRootObject(
    const std::shared_ptr<const NSObject>& object) {
  auto data = std::make_shared<NSMutableData>();
  NSKeyedArchiver archiver(data);
  archiver.encodeObject(object, "root");
  archiver.finishEncoding();
  return data;
}

void NSKeyedArchiver::setOutputFormat(int64_t format) {
  if (format != NSPropertyListBinaryFormat_v1_0) {
    throw NSException(NSInvalidArgumentException, "only the binary output format is written");
  }
}

void NSKeyedArchiver::finishEncoding() {
  if (records_.empty()) return;
  const Ref objects = writer_.addArray(elements_);
  const Ref top = writer_.addDictionary(records_[0].keys, records_[0].values);
  const Ref keys[] = {writer_.addString("$version"), writer_.addString("$archiver"),
                      writer_.addString("$top"), writer_.addString("$objects")};
  const Ref values[] = {writer_.addInteger(100000), writer_.addString("NSKeyedArchiver"), top,
                        objects};
  data_->setVector(writer_.finish(writer_.addDictionary(keys, values)));
  records_.clear();
}

// Keys and values

void NSKeyedArchiver::putRaw(std::string_view key, Ref value) {
  if (records_.empty()) {
    throw NSException(NSInvalidArchiveOperationException, "encoding has been finished");
  }
  Record& record = records_.back();
  const Ref name = writer_.addString(key);
  // Of two values under one key the later counts.
  const auto known = std::ranges::find(record.keys, name);
  if (known != record.keys.end()) {
    record.values[static_cast<size_t>(known - record.keys.begin())] = value;
  } else {
    record.keys.push_back(name);
    record.values.push_back(value);
  }
}

/// Keys of classes are kept apart from the archiver's own, which begin with "$".
void NSKeyedArchiver::put(std::string_view key, Ref value) {
  putRaw(key.starts_with('$') ? "$" + std::string(key) : std::string(key), value);
}

void NSKeyedArchiver::encodeBool(bool value, std::string_view key) {
  put(key, writer_.addBool(value));
}
void NSKeyedArchiver::encodeInt32(int32_t value, std::string_view key) {
  put(key, writer_.addInteger(value));
}
void NSKeyedArchiver::encodeInt64(int64_t value, std::string_view key) {
  put(key, writer_.addInteger(value));
}
void NSKeyedArchiver::encodeFloat(float value, std::string_view key) {
  put(key, writer_.addFloat(value));
}
void NSKeyedArchiver::encodeDouble(double value, std::string_view key) {
  put(key, writer_.addDouble(value));
}
void NSKeyedArchiver::encodeBytes(std::span<const uint8_t> bytes, std::string_view key) {
  put(key, writer_.addData(bytes));
}
void NSKeyedArchiver::encodeInlineText(std::string_view utf8, std::string_view key) {
  put(key, writer_.addString(utf8));
}
void NSKeyedArchiver::encodeInlineData(const NSData& data, std::string_view key) {
  put(key, writer_.addData(data.owner(), data.bytes()));
}

void NSKeyedArchiver::encodeObjects(std::span<const std::shared_ptr<NSObject>> objects,
                                    std::string_view key) {
  std::vector<Ref> uids;
  uids.reserve(objects.size());
  for (const auto& object : objects) uids.push_back(writer_.addUID(referenceTo(object)));
  put(key, writer_.addArray(uids));
}

void NSKeyedArchiver::encodeObject(const std::shared_ptr<const NSObject>& object,
                                   std::string_view key) {
  put(key, writer_.addUID(referenceTo(object)));
}

void NSKeyedArchiver::encodeConditionalObject(const std::shared_ptr<const NSObject>& object,
                                              std::string_view key) {
  put(key, writer_.addUID(object == nullptr ? 0 : slotFor(object).number));
}

// Objects

NSKeyedArchiver::Slot& NSKeyedArchiver::slotFor(const std::shared_ptr<const NSObject>& object) {
  const auto known = slots_.find(object.get());
  if (known != slots_.end()) return known->second;
  kept_.push_back(object);
  return slots_.emplace(object.get(), Slot{addElement(), false}).first->second;
}

/// Number of a new element, which is nil until it is filled.
uint32_t NSKeyedArchiver::addElement() {
  elements_.push_back(null_);
  return static_cast<uint32_t>(elements_.size() - 1);
}

/// The object's number; encodes it when it has not been begun. The number is taken first, so that
/// what is inside may refer back.
uint32_t NSKeyedArchiver::referenceTo(const std::shared_ptr<const NSObject>& object) {
  if (object == nullptr) return 0;
  Slot& slot = slotFor(object);
  const uint32_t number = slot.number;
  if (!slot.isBegun) {
    slot.isBegun = true;
    elements_[number] = elementOf(*object);
  }
  return number;
}

/// Strings, numbers and data that cannot change stand in the archive as they are, everything else
/// as a record.
BinaryPropertyListWriter::Ref NSKeyedArchiver::elementOf(const NSObject& object) {
  if (object.isMemberOfClass(NSString::kClass)) {
    const Ref text = writer_.addString(static_cast<const NSString&>(object).string());
    // That one text, standing plainly, would mean nil.
    if (text != null_) return text;
  }
  if (object.isMemberOfClass(NSData::kClass)) {
    const auto& data = static_cast<const NSData&>(object);
    return writer_.addData(data.owner(), data.bytes());
  }
  if (object.isMemberOfClass(NSNumber::kClass)) {
    return elementOfNumber(static_cast<const NSNumber&>(object));
  }
  records_.emplace_back();
  object.encodeWithCoder(*this);
  putRaw("$class", writer_.addUID(referenceToClass(object.classInfo())));
  const Ref element = writer_.addDictionary(records_.back().keys, records_.back().values);
  records_.pop_back();
  return element;
}

BinaryPropertyListWriter::Ref NSKeyedArchiver::elementOfNumber(const NSNumber& number) {
  switch (number.kind()) {
    case NSNumber::Kind::kBool:
      return writer_.addBool(number.boolValue());
    case NSNumber::Kind::kFloat:
      return writer_.addFloat(number.floatValue());
    case NSNumber::Kind::kDouble:
      return writer_.addDouble(number.doubleValue());
    case NSNumber::Kind::kInteger:
      return writer_.addInteger(number.integerValue());
    case NSNumber::Kind::kUnsigned:
      return writer_.addUnsigned(number.unsignedIntegerValue());
  }
  return null_;
}

/// The number of the record that names a class and all above it.
uint32_t NSKeyedArchiver::referenceToClass(const NSClass& cls) {
  const auto known = classes_.find(&cls);
  if (known != classes_.end()) return known->second;
  const uint32_t number = addElement();
  classes_.emplace(&cls, number);
  std::vector<Ref> chain;
  for (const NSClass* c = &cls; c != nullptr; c = c->superclass) {
    chain.push_back(writer_.addString(c->name));
  }
  const Ref keys[] = {writer_.addString("$classname"), writer_.addString("$classes")};
  const Ref values[] = {chain.front(), writer_.addArray(chain)};
  elements_[number] = writer_.addDictionary(keys, values);
  return number;
}
