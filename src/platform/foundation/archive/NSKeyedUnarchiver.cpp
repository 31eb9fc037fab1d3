#include "platform/foundation/archive/NSKeyedUnarchiver.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/Limits.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/FoundationClasses.h"
#include "platform/foundation/archive/PropertyListNumbers.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSDate.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"

namespace {

using Kind = PropertyListObject::Kind;

constexpr uint64_t kArchiveVersion = 100000;
constexpr uint64_t kBytesPerEntry = sizeof(std::shared_ptr<NSObject>);

[[noreturn]] void inconsistent(const std::string& reason) {
  throw NSException(NSArchiverArchiveInconsistency, reason);
}

std::string_view asText(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

uint64_t keyHash(std::string_view key) {
  return std::hash<std::string_view>{}(key) << 32;
}

}  // namespace

/// A record stays open as long as its object is being initialised.
class NSKeyedUnarchiver::RecordScope {
 public:
  RecordScope(NSKeyedUnarchiver& coder, const PropertyListObject& dictionary) : coder_(coder) {
    coder.records_.push_back({dictionary, nullptr, nullptr, 0});
  }
  RecordScope(const RecordScope&) = delete;
  RecordScope& operator=(const RecordScope&) = delete;
  ~RecordScope() { coder_.records_.pop_back(); }

 private:
  NSKeyedUnarchiver& coder_;
};

NSKeyedUnarchiver::NSKeyedUnarchiver(const std::shared_ptr<const NSData>& data) {
  registerFoundationClasses();
  if (data == nullptr) throw NSException(NSInvalidArgumentException, "no archive");
  owner_ = data->owner();
  list_ = BinaryPropertyList::open(data->bytes());
  budget_ = data->length() * limits::kMaxArchiveExpansion + limits::kArchiveAllowance;
  openArchive();
}

NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

void NSKeyedUnarchiver::openArchive() {
  const PropertyListObject top = list_ ? list_->object(list_->topObject()) : PropertyListObject();
  const PropertyListObject version = list_ ? list_->find(top, "$version") : PropertyListObject();
  if (!version.is(Kind::kInteger) || version.uint64() != kArchiveVersion) {
    throw NSException(NSInvalidArgumentException, "incomprehensible archive");
  }
  objects_ = list_->find(top, "$objects");
  const PropertyListObject roots = list_->find(top, "$top");
  if (!objects_.is(Kind::kArray) || !roots.is(Kind::kDictionary)) {
    inconsistent("archive without objects");
  }
  charge(objects_.count() * sizeof(Slot));
  slots_.resize(objects_.count());
  // Element 0 is nil whatever stands there.
  if (!slots_.empty()) slots_[0].state = State::kDecoded;
  records_.push_back({roots, nullptr, nullptr, 0});
  indexKeys();
}

std::shared_ptr<NSObject> NSKeyedUnarchiver::unarchiveObjectWithData(
    const std::shared_ptr<const NSData>& data) {
  NSKeyedUnarchiver unarchiver(data);
  return unarchiver.decodeObjectForKey("root");
}

void NSKeyedUnarchiver::finishDecoding() {
  list_.reset();
  slots_.clear();
  records_.clear();
  layouts_.clear();
}

// Records

/// Prepares the newest record for lookups. Records of one class mostly have the same keys in the
/// same order, and these are the same objects: such records share one index.
void NSKeyedUnarchiver::indexKeys() {
  const PropertyListObject& dictionary = records_.back().dictionary;
  charge(dictionary.count() * kBytesPerEntry);
  const auto refs = dictionary.payload().first(dictionary.byteCount() / 2);
  const std::string_view name = asText(refs);
  auto known = layouts_.find(name);
  if (known == layouts_.end()) known = layouts_.emplace(name, layoutOf(dictionary)).first;
  records_.back().keys = &known->second;
}

NSKeyedUnarchiver::Layout NSKeyedUnarchiver::layoutOf(const PropertyListObject& dictionary) const {
  Layout layout;
  layout.reserve(dictionary.count());
  for (size_t i = 0; i < dictionary.count(); ++i) {
    const PropertyListObject key = list_->object(list_->key(dictionary, i));
    if (key.is(Kind::kASCIIString)) {
      layout.push_back(keyHash(asText(key.payload())) | i);
    } else if (key.is(Kind::kUTF16String)) {
      layout.push_back(keyHash(chargedText(key)) | i);
    }
  }
  std::sort(layout.begin(), layout.end());
  return layout;
}

/// The value of a key as it stands in the file, of the first pair where several have the key.
std::optional<PropertyListObject> NSKeyedUnarchiver::storedValue(std::string_view key) const {
  const Record& record = records_.back();
  const uint64_t hash = keyHash(key);
  auto entry = std::lower_bound(record.keys->begin(), record.keys->end(), hash);
  for (; entry != record.keys->end() && (*entry ^ hash) >> 32 == 0; ++entry) {
    const size_t i = static_cast<uint32_t>(*entry);
    if (list_->object(list_->key(record.dictionary, i)).isText(key)) {
      return list_->object(list_->value(record.dictionary, i));
    }
  }
  return std::nullopt;
}

/// The value under a key that a class asks for. The archiver's own keys begin with "$"; those of
/// classes get one more.
std::optional<PropertyListObject> NSKeyedUnarchiver::valueForKey(std::string_view key) const {
  if (!list_) {
    throw NSException(NSInvalidUnarchiveOperationException, "decoding has been finished");
  }
  auto value = key.starts_with('$') ? storedValue("$" + std::string(key)) : storedValue(key);
  if (value && value->is(Kind::kInvalid)) inconsistent("malformed value");
  return value;
}

bool NSKeyedUnarchiver::containsValueForKey(std::string_view key) const {
  return valueForKey(key).has_value();
}

std::vector<std::string> NSKeyedUnarchiver::decodableKeys() const {
  std::vector<std::string> keys;
  const PropertyListObject& dictionary = records_.back().dictionary;
  charge(dictionary.count() * sizeof(std::string));
  for (size_t i = 0; i < dictionary.count(); ++i) {
    const PropertyListObject key = list_->object(list_->key(dictionary, i));
    if (!key.isString() || key.isText("$class")) continue;
    std::string text = chargedText(key);
    if (text.starts_with("$$")) text.erase(0, 1);
    keys.push_back(std::move(text));
  }
  return keys;
}

// References

/// The number in a UID, or in the dictionary that stands for one where an archive has been
/// through the XML form of property lists.
std::optional<uint32_t> NSKeyedUnarchiver::referenceIn(const PropertyListObject& value) const {
  if (value.is(Kind::kUID)) return value.uid();
  if (!value.is(Kind::kDictionary) || value.count() != 1) return std::nullopt;
  const PropertyListObject number = list_->find(value, "CF$UID");
  const auto uid = number.is(Kind::kInteger) ? number.uint64() : std::nullopt;
  if (!uid || *uid > UINT32_MAX) return std::nullopt;
  return static_cast<uint32_t>(*uid);
}

/// The object of that number, decoded when nobody has asked for it before.
const std::shared_ptr<NSObject>& NSKeyedUnarchiver::resolve(uint32_t reference) {
  if (reference >= slots_.size()) inconsistent("reference to an object that is not there");
  Slot& slot = slots_[reference];
  if (slot.state == State::kUntouched) {
    decodeSlot(slot, list_->object(list_->element(objects_, reference)));
  } else if (slot.state == State::kFailed) {
    inconsistent("reference to an object that could not be decoded");
  }
  uint16_t& height = records_.back().height;
  height = std::max(height, slot.height);
  return slot.object;
}

void NSKeyedUnarchiver::decodeSlot(Slot& slot, const PropertyListObject& element) {
  slot.state = State::kDecoding;
  ++depth_;
  State after = State::kDecoded;
  try {
    if (depth_ > limits::kMaxDecodingDepth) inconsistent("objects nested too deeply");
    if (!element.is(Kind::kDictionary)) {
      slot.object = plainObject(element);
      slot.height = 1;
    } else if (const auto other = referenceIn(element)) {
      slot.object = resolve(*other);
      slot.height = slots_[*other].height;
      slot.isLeftOut = slots_[*other].isLeftOut;
      // How high that object is shows only when it is complete.
      if (slots_[*other].state == State::kDecoding) after = State::kUntouched;
    } else {
      decodeInstance(slot, element);
    }
  } catch (...) {
    --depth_;
    slot.object = nullptr;
    slot.state = State::kFailed;
    throw;
  }
  --depth_;
  slot.state = after;
}

/// Allocates, makes the object known to references that lead back to it, then initialises.
void NSKeyedUnarchiver::decodeInstance(Slot& slot, const PropertyListObject& element) {
  const RecordScope scope(*this, element);
  indexKeys();
  const NSClass* const cls = classOfRecord();
  slot.isLeftOut = cls == nullptr;
  if (slot.isLeftOut) return;
  slot.object = cls->alloc();
  records_.back().object = slot.object.get();
  const std::shared_ptr<NSObject> object = slot.object;
  if (!object->initWithCoder(*this)) slot.object = nullptr;
  slot.height = static_cast<uint16_t>(records_.back().height + 1);
  // Also what was decoded from below is released, and perhaps walked, from above.
  if (slot.height > limits::kMaxDecodingDepth) inconsistent("objects nested too deeply");
}

std::shared_ptr<NSObject> NSKeyedUnarchiver::plainObject(const PropertyListObject& element) const {
  switch (element.kind()) {
    case Kind::kNull:
      return nullptr;
    case Kind::kBool:
    case Kind::kInteger:
    case Kind::kReal:
      return numberFromPropertyList(element);
    case Kind::kDate:
      return NSDate::dateWithTimeIntervalSinceReferenceDate(element.real());
    case Kind::kData:
      return std::make_shared<NSData>(owner_, element.data());
    case Kind::kASCIIString:
    case Kind::kUTF16String:
      // The place of an object that was offered and then not wanted by anyone.
      if (element.isText("$null")) return nullptr;
      return std::make_shared<NSString>(chargedText(element));
    default:
      inconsistent("malformed object");
  }
}

bool NSKeyedUnarchiver::isDecoding(const NSObject& object) const {
  return std::ranges::any_of(records_, [&](const Record& r) { return r.object == &object; });
}

// Classes

bool NSKeyedUnarchiver::setLeavesOutUnknownClasses(bool leavesOut) {
  return std::exchange(leavesOutUnknownClasses_, leavesOut);
}

/// Null for a class that is unknown and left out.
const NSClass* NSKeyedUnarchiver::classOfRecord() {
  const auto value = storedValue("$class");
  const auto reference = value ? referenceIn(*value) : std::nullopt;
  if (!reference || *reference == 0 || *reference >= slots_.size()) {
    inconsistent("object without a class");
  }
  const NSClass*& known = classes_[*reference];
  if (known == nullptr) {
    known = classInElement(list_->object(list_->element(objects_, *reference)));
  }
  return known;
}

/// The class that a class record names, or the first known one of its substitutes.
const NSClass* NSKeyedUnarchiver::classInElement(const PropertyListObject& element) const {
  if (element.is(Kind::kDictionary)) charge(element.count() * kBytesPerEntry);
  const PropertyListObject name = list_->find(element, "$classname");
  if (!name.isString()) inconsistent("class record without a name");
  const std::string text = chargedText(name);
  if (const NSClass* found = NSClassFromString(text)) return found;
  const PropertyListObject hints = list_->find(element, "$classhints");
  const size_t count = hints.is(Kind::kArray) ? hints.count() : 0;
  charge(count * kBytesPerEntry);
  for (size_t i = 0; i < count; ++i) {
    const PropertyListObject hint = list_->object(list_->element(hints, i));
    const NSClass* found = hint.isString() ? NSClassFromString(chargedText(hint)) : nullptr;
    if (found != nullptr) return found;
  }
  if (leavesOutUnknownClasses_) return nullptr;
  throw NSException(NSInvalidUnarchiveOperationException,
                    "cannot decode object of class (" + text.substr(0, 100) + ")");
}

// Bounds

/// Counts what is about to be copied or listed, so that an archive whose parts refer to the same
/// bytes over and over cannot make more of them than a real one of its size would.
void NSKeyedUnarchiver::charge(uint64_t bytes) const {
  if (bytes > budget_) inconsistent("archive expands beyond its size");
  budget_ -= bytes;
}

std::string NSKeyedUnarchiver::chargedText(const PropertyListObject& value) const {
  charge(2 * uint64_t{value.byteCount()});
  auto text = value.text();
  if (!text) inconsistent("malformed text");
  return *std::move(text);
}

// --- The typed calls: what each makes of the kind of value that is stored ---

int64_t NSKeyedUnarchiver::integerForKey(std::string_view key, int64_t low, int64_t high) const {
  const auto value = valueForKey(key);
  return value ? integerFromPropertyList(*value, key, low, high) : 0;
}

int32_t NSKeyedUnarchiver::decodeInt32ForKey(std::string_view key) {
  return static_cast<int32_t>(integerForKey(key, INT32_MIN, INT32_MAX));
}

int64_t NSKeyedUnarchiver::decodeInt64ForKey(std::string_view key) {
  return integerForKey(key, INT64_MIN, INT64_MAX);
}

bool NSKeyedUnarchiver::decodeBoolForKey(std::string_view key) {
  const auto value = valueForKey(key);
  return value && boolFromPropertyList(*value, key);
}

double NSKeyedUnarchiver::decodeDoubleForKey(std::string_view key) {
  const auto value = valueForKey(key);
  return value ? doubleFromPropertyList(*value, key) : 0;
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
    if (!referenceIn(*value)) throwWrongKind(key, "data");
    const auto object = decodeObjectForKey(key);
    const auto* data = dynamic_cast<const NSData*>(object.get());
    if (object != nullptr && data == nullptr) throwWrongKind(key, "data");
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
