#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Builds a binary property list: objects are added one by one, containers after what they hold,
/// and finish() lays out what the top object reaches in the order that the platform writes:
/// each container, its keys, its values, depth first. Equal short strings and numbers of the same
/// width are stored once; integers, references and offsets take the fewest bytes.
class BinaryPropertyListWriter {
 public:
  using Ref = uint32_t;

  Ref addBool(bool value);
  /// 1, 2 or 4 bytes when not negative and it fits, else 8.
  Ref addInteger(int64_t value);
  /// As addInteger; 16 bytes above the range of int64_t.
  Ref addUnsigned(uint64_t value);
  Ref addFloat(float value);
  Ref addDouble(double value);
  Ref addUID(uint32_t value);
  /// ASCII when possible, else UTF-16 (generalised UTF-8 becomes what it was).
  Ref addString(std::string_view utf8);
  /// A copy of the bytes.
  Ref addData(std::span<const uint8_t> bytes);
  /// The bytes are copied by finish(); `owner` keeps them until then.
  Ref addData(std::shared_ptr<const void> owner, std::span<const uint8_t> bytes);
  Ref addArray(std::span<const Ref> elements);
  /// As many values as keys; keys must be strings and differ.
  Ref addDictionary(std::span<const Ref> keys, std::span<const Ref> values);

  /// The whole file. Throws NSException (NSInvalidArchiveOperationException) when it would be
  /// larger than limits::kMaxFileBytes.
  std::vector<uint8_t> finish(Ref top) const;

 private:
  /// Encoded bytes in bytes_; then bytes that stand elsewhere (data), or references in refs_.
  struct Node {
    size_t begin = 0;
    size_t length = 0;
    std::span<const uint8_t> outside;
    size_t firstRef = 0;
    size_t refCount = 0;
  };

  size_t begin() const { return bytes_.size(); }
  Ref append(size_t begin);
  Ref appendScalar(size_t begin);
  Ref appendContainer(uint8_t kind, size_t count, size_t firstRef);
  void appendNumber(uint64_t value);
  void appendHeader(uint8_t kind, uint64_t count);
  std::vector<Ref> inPreorder(Ref top) const;

  std::vector<uint8_t> bytes_;
  std::vector<Ref> refs_;
  std::vector<Node> nodes_;
  std::vector<std::shared_ptr<const void>> owners_;
  // Scalars by the hash of their encoded bytes.
  std::unordered_multimap<size_t, Ref> scalars_;
};
