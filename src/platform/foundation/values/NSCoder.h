#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

class NSData;
class NSNumber;

/// Keyed coding interface. An archiver implements the encode half, an unarchiver the decode half;
/// calling the other half throws NSException (NSInvalidArgumentException).
///
/// Decoding tolerates any of bool, integer and real where a number is asked for; an absent key
/// gives NO, 0, zero geometry or nil. A value of another kind under a number key throws
/// NSException (NSInvalidUnarchiveOperationException), an integer that does not fit the asked type
/// NSRangeException.
class NSCoder {
 public:
  virtual ~NSCoder() = default;

  // Encoding: kinds on disk are exact (bool, smallest integer, 4-byte and 8-byte real).
  virtual void encodeObject(const std::shared_ptr<const NSObject>& object, std::string_view key);
  virtual void encodeConditionalObject(const std::shared_ptr<const NSObject>& object,
                                       std::string_view key);
  virtual void encodeBool(bool value, std::string_view key);
  virtual void encodeInt32(int32_t value, std::string_view key);
  virtual void encodeInt64(int64_t value, std::string_view key);
  virtual void encodeFloat(float value, std::string_view key);
  virtual void encodeDouble(double value, std::string_view key);
  /// Bytes are stored inline in the object's own record.
  virtual void encodeBytes(std::span<const uint8_t> bytes, std::string_view key);
  void encodeInteger(int64_t value, std::string_view key) { encodeInt64(value, key); }
  void encodePoint(const NSPoint& value, std::string_view key);
  void encodeSize(const NSSize& value, std::string_view key);
  void encodeRect(const NSRect& value, std::string_view key);
  /// Encodes the text as an NSString object.
  void encodeString(std::string_view utf8, std::string_view key);
  // The contents of strings, data and collections, which stand inside their own record.
  virtual void encodeInlineText(std::string_view utf8, std::string_view key);
  /// The bytes are not copied before the archive is finished.
  virtual void encodeInlineData(const NSData& data, std::string_view key);
  virtual void encodeObjects(std::span<const std::shared_ptr<NSObject>> objects,
                             std::string_view key);

  // Decoding.
  virtual bool containsValueForKey(std::string_view key) const;
  /// The object (shared with every other reference to it), or null for nil and an absent key.
  /// While an object is being initialised a reference to it yields the incomplete object.
  virtual std::shared_ptr<NSObject> decodeObjectForKey(std::string_view key);
  virtual bool decodeBoolForKey(std::string_view key);
  virtual int32_t decodeInt32ForKey(std::string_view key);
  virtual int64_t decodeInt64ForKey(std::string_view key);
  virtual float decodeFloatForKey(std::string_view key);
  virtual double decodeDoubleForKey(std::string_view key);
  /// View of inline bytes, valid as long as the archive's data lives; also accepts a data object.
  /// Empty for nil and an absent key; other kinds throw NSException.
  virtual std::span<const uint8_t> decodeBytesForKey(std::string_view key);
  virtual NSPoint decodePointForKey(std::string_view key);
  virtual NSSize decodeSizeForKey(std::string_view key);
  virtual NSRect decodeRectForKey(std::string_view key);
  int32_t decodeIntForKey(std::string_view key) { return decodeInt32ForKey(key); }
  int64_t decodeIntegerForKey(std::string_view key) { return decodeInt64ForKey(key); }

  /// The object under the key when it is a T, else null.
  template <class T>
  std::shared_ptr<T> decodeObjectOfClass(std::string_view key) {
    return std::dynamic_pointer_cast<T>(decodeObjectForKey(key));
  }
  /// The text of a string object or of inline text, or nothing when the key is absent, nil or
  /// another kind.
  virtual std::optional<std::string> decodeStringForKey(std::string_view key);
  /// A data object, or inline bytes as one; null when absent, nil or another kind. It shares the
  /// archive's bytes and keeps them alive.
  virtual std::shared_ptr<NSData> decodeDataForKey(std::string_view key);
  /// A number object, or an inline number of the kind it was stored as; null otherwise.
  virtual std::shared_ptr<NSNumber> decodeNumberForKey(std::string_view key);
  /// The objects of an inline list of references, as collections store theirs. Nothing when the
  /// key is absent, holds something else, or an element is nil. A null entry stands for an object
  /// that is left out, or that is still being decoded: it leads back to an owner of the list, which
  /// must not own it.
  virtual std::optional<std::vector<std::shared_ptr<NSObject>>> decodeObjectsForKey(
      std::string_view key);
  /// The keys of the record being decoded, for classes whose keys differ between writers.
  virtual std::vector<std::string> decodableKeys() const;

  /// Whether objects of unknown classes are left out instead of ending the decoding: they are nil,
  /// and null entries of lists. Answers what was set before.
  virtual bool setLeavesOutUnknownClasses(bool leavesOut);

  /// True while `object` is allocated by this coder but its initWithCoder has not returned.
  /// Owners must not keep a strong reference to such an object: it would be a cycle.
  virtual bool isDecoding(const NSObject& object) const;

  /// Objects attached to the coder for the time of the coding, by key.
  void setAssociatedObject(std::string_view key, std::shared_ptr<NSObject> object);
  std::shared_ptr<NSObject> associatedObject(std::string_view key) const;

 private:
  std::map<std::string, std::shared_ptr<NSObject>, std::less<>> associatedObjects_;
};
