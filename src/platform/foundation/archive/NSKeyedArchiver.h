#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/foundation/archive/BinaryPropertyListWriter.h"
#include "platform/foundation/values/NSCoder.h"

class NSMutableData;

/// The one output format: a binary property list.
inline constexpr int64_t NSPropertyListBinaryFormat_v1_0 = 200;

/// Writes a keyed archive in binary property list form. What is encoded outside any object goes to
/// the archive's top level. An object is written once, however often it is referred to; identity
/// decides, not equality.
class NSKeyedArchiver : public NSCoder {
 public:
  /// initForWritingWithMutableData: finishEncoding() replaces the contents of `data`.
  explicit NSKeyedArchiver(std::shared_ptr<NSMutableData> data);
  ~NSKeyedArchiver() override;
  NSKeyedArchiver(const NSKeyedArchiver&) = delete;
  NSKeyedArchiver& operator=(const NSKeyedArchiver&) = delete;

  /// The archive of one object, under the key "root".
  static std::shared_ptr<NSMutableData> archivedDataWithRootObject(
      const std::shared_ptr<const NSObject>& object);

  /// Throws NSException (NSInvalidArgumentException) for anything but the binary form (200).
  void setOutputFormat(int64_t format);

  /// Writes the archive. Encoding afterwards throws NSException
  /// (NSInvalidArchiveOperationException); finishing again changes nothing.
  void finishEncoding();

  void encodeObject(const std::shared_ptr<const NSObject>& object, std::string_view key) override;
  /// A reference that is nil unless the object is also encoded unconditionally, before or after.
  void encodeConditionalObject(const std::shared_ptr<const NSObject>& object,
                               std::string_view key) override;
  void encodeBool(bool value, std::string_view key) override;
  void encodeInt32(int32_t value, std::string_view key) override;
  void encodeInt64(int64_t value, std::string_view key) override;
  void encodeFloat(float value, std::string_view key) override;
  void encodeDouble(double value, std::string_view key) override;
  void encodeBytes(std::span<const uint8_t> bytes, std::string_view key) override;
  void encodeInlineText(std::string_view utf8, std::string_view key) override;
  void encodeInlineData(const NSData& data, std::string_view key) override;
  void encodeObjects(std::span<const std::shared_ptr<NSObject>> objects,
                     std::string_view key) override;

 private:
  using Ref = BinaryPropertyListWriter::Ref;

  /// The dictionary of the object being encoded.
  struct Record {
    std::vector<Ref> keys;
    std::vector<Ref> values;
  };

  /// Where an object stands among the elements; nil there until it is begun.
  struct Slot {
    uint32_t number;
    bool isBegun;
  };

  void put(std::string_view key, Ref value);
  void putRaw(std::string_view key, Ref value);
  Slot& slotFor(const std::shared_ptr<const NSObject>& object);
  uint32_t addElement();
  uint32_t referenceTo(const std::shared_ptr<const NSObject>& object);
  Ref elementOf(const NSObject& object);
  Ref elementOfNumber(const NSNumber& number);
  uint32_t referenceToClass(const NSClass& cls);

  std::shared_ptr<NSMutableData> data_;
  BinaryPropertyListWriter writer_;
  // The string "$null": element 0, and what stands in slots that nobody fills.
  Ref null_;
  std::vector<Ref> elements_;
  // Objects stay alive until the end, so that their addresses remain theirs.
  std::vector<std::shared_ptr<const NSObject>> kept_;
  std::unordered_map<const NSObject*, Slot> slots_;
  std::unordered_map<const NSClass*, uint32_t> classes_;
  std::vector<Record> records_;
};
