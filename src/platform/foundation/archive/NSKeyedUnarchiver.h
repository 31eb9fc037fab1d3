#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/foundation/archive/BinaryPropertyList.h"
#include "platform/foundation/values/NSCoder.h"

class NSData;

/// Reads a keyed archive in binary property list form, in place and on demand: an object is decoded
/// when something asks for it, once, and then shared. Between objects the keys are those encoded
/// outside any object ("$top").
///
/// Malformed archives throw NSException: NSArchiverArchiveInconsistency where the archive
/// contradicts itself or wants more memory than its size can account for,
/// NSInvalidUnarchiveOperationException for unknown classes, wrong kinds and objects nested deeper
/// than limits::kMaxDecodingDepth.
class NSKeyedUnarchiver : public NSCoder {
 public:
  /// initForReadingWithData: throws NSException, NSInvalidArgumentException when the data is null,
  /// empty or no archive, NSArchiverArchiveInconsistency when its parts are missing.
  explicit NSKeyedUnarchiver(const std::shared_ptr<const NSData>& data);
  ~NSKeyedUnarchiver() override;
  NSKeyedUnarchiver(const NSKeyedUnarchiver&) = delete;
  NSKeyedUnarchiver& operator=(const NSKeyedUnarchiver&) = delete;

  /// The object under "root"; null when there is none. Throws like the constructor and decoding.
  static std::shared_ptr<NSObject> unarchiveObjectWithData(
      const std::shared_ptr<const NSData>& data);

  /// Nothing can be decoded afterwards (NSInvalidUnarchiveOperationException).
  void finishDecoding();

  bool containsValueForKey(std::string_view key) const override;
  std::shared_ptr<NSObject> decodeObjectForKey(std::string_view key) override;
  bool decodeBoolForKey(std::string_view key) override;
  int32_t decodeInt32ForKey(std::string_view key) override;
  int64_t decodeInt64ForKey(std::string_view key) override;
  float decodeFloatForKey(std::string_view key) override;
  double decodeDoubleForKey(std::string_view key) override;
  std::span<const uint8_t> decodeBytesForKey(std::string_view key) override;
  NSPoint decodePointForKey(std::string_view key) override;
  NSSize decodeSizeForKey(std::string_view key) override;
  NSRect decodeRectForKey(std::string_view key) override;
  std::optional<std::string> decodeStringForKey(std::string_view key) override;
  std::shared_ptr<NSData> decodeDataForKey(std::string_view key) override;
  std::shared_ptr<NSNumber> decodeNumberForKey(std::string_view key) override;
  std::optional<std::vector<std::shared_ptr<NSObject>>> decodeObjectsForKey(
      std::string_view key) override;
  std::vector<std::string> decodableKeys() const override;
  bool setLeavesOutUnknownClasses(bool leavesOut) override;
  bool isDecoding(const NSObject& object) const override;

 private:
  enum class State : uint8_t { kUntouched, kDecoding, kDecoded, kFailed };

  /// One element of "$objects" and what became of it.
  struct Slot {
    std::shared_ptr<NSObject> object;
    State state = State::kUntouched;
    // Objects below it, itself included, on the longest way down.
    uint16_t height = 0;
    // Nil for want of its class.
    bool isLeftOut = false;
  };

  /// The keys of a record in the order of their hashes: the hash in the upper half, the position
  /// in the dictionary in the lower.
  using Layout = std::vector<uint64_t>;

  /// A record whose keys can be asked for.
  struct Record {
    PropertyListObject dictionary;
    const Layout* keys = nullptr;
    const NSObject* object = nullptr;
    uint16_t height = 0;
  };

  class RecordScope;

  void openArchive();
  void indexKeys();
  Layout layoutOf(const PropertyListObject& dictionary) const;
  std::optional<PropertyListObject> storedValue(std::string_view key) const;
  std::optional<PropertyListObject> valueForKey(std::string_view key) const;
  std::optional<uint32_t> referenceIn(const PropertyListObject& value) const;
  const std::shared_ptr<NSObject>& resolve(uint32_t reference);
  void decodeSlot(Slot& slot, const PropertyListObject& element);
  void decodeInstance(Slot& slot, const PropertyListObject& element);
  std::shared_ptr<NSObject> plainObject(const PropertyListObject& element) const;
  const NSClass* classOfRecord();
  const NSClass* classInElement(const PropertyListObject& element) const;
  int64_t integerForKey(std::string_view key, int64_t low, int64_t high) const;
  void charge(uint64_t bytes) const;
  std::string chargedText(const PropertyListObject& value) const;

  // Keeps the bytes of the archive alive.
  std::shared_ptr<const void> owner_;
  std::optional<BinaryPropertyList> list_;
  PropertyListObject objects_;
  std::vector<Slot> slots_;
  std::unordered_map<uint32_t, const NSClass*> classes_;
  std::vector<Record> records_;
  // By the bytes that name the keys of a dictionary in the file.
  std::unordered_map<std::string_view, Layout> layouts_;
  // Objects being decoded inside each other.
  int depth_ = 0;
  bool leavesOutUnknownClasses_ = false;
  // What decoding may still copy or list, in bytes.
  mutable uint64_t budget_ = 0;
};
