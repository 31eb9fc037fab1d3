#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// One object of a binary property list: its kind and a view of its bytes, which have been checked
/// to lie inside the object area. Cheap to copy; nothing is converted until it is asked for.
class PropertyListObject {
 public:
  /// kInvalid stands for anything malformed: a bad marker, width or length, a reference to an
  /// object that is not there.
  enum class Kind : uint8_t {
    kInvalid,
    kNull,
    kBool,
    kInteger,
    kReal,
    kDate,
    kData,
    kASCIIString,
    kUTF16String,
    kUID,
    kArray,
    kSet,
    kDictionary
  };

  PropertyListObject() = default;
  PropertyListObject(Kind kind, const uint8_t* payload, size_t count, size_t size)
      : kind_(kind), count_(count), size_(size), payload_(payload) {}

  Kind kind() const { return kind_; }
  bool is(Kind kind) const { return kind_ == kind; }
  bool isString() const { return is(Kind::kASCIIString) || is(Kind::kUTF16String); }
  /// Elements of an array or set, pairs of a dictionary, bytes of data and ASCII strings, 16-bit
  /// units of UTF-16 strings, bytes of a number.
  size_t count() const { return count_; }
  /// Bytes of the payload in the file.
  size_t byteCount() const { return size_; }
  std::span<const uint8_t> payload() const { return {payload_, size_}; }

  // Each of these may be asked only of its own kind.
  bool boolean() const { return (payload_[-1] & 1) != 0; }
  /// Nothing when the number does not fit. Of 16-byte integers the low 64 bits count, unsigned.
  std::optional<int64_t> int64() const;
  std::optional<uint64_t> uint64() const;
  /// True for a 4-byte real.
  bool isSingle() const { return count_ == 4; }
  /// Reals and dates (seconds since 2001-01-01 00:00 UTC); a 4-byte real is widened.
  double real() const;
  std::span<const uint8_t> data() const { return payload(); }
  uint32_t uid() const;

  /// Text of a string as UTF-8 (generalised for lone surrogates); nothing when this is no string
  /// or an ASCII string holds other bytes.
  std::optional<std::string> text() const;
  /// Whether this is a string of exactly that text. Reads only what it compares.
  bool isText(std::string_view utf8) const;

 private:
  friend class BinaryPropertyList;

  Kind kind_ = Kind::kInvalid;
  size_t count_ = 0;
  size_t size_ = 0;
  const uint8_t* payload_ = nullptr;
};

/// A binary property list ("bplist00") read in place: opening checks the trailer and the offset
/// table, an object is decoded when it is asked for by its index. Nothing is copied or expanded and
/// nothing here recurses, so nesting and sharing cost only what the caller follows.
class BinaryPropertyList {
 public:
  using Index = uint32_t;

  /// Nothing when the bytes are not a property list of exactly this length. The bytes must stay
  /// alive as long as the list and every object taken from it.
  static std::optional<BinaryPropertyList> open(std::span<const uint8_t> bytes);

  Index objectCount() const { return objectCount_; }
  Index topObject() const { return topObject_; }

  /// Any index may be asked for; one that is not there gives a kInvalid object.
  PropertyListObject object(Index index) const;

  /// Index of element `i` of an array or set, of key `i` or of value `i` of a dictionary;
  /// `i` must be below count(). The answer may be out of range, which object() notices.
  Index element(const PropertyListObject& container, size_t i) const { return ref(container, i); }
  Index key(const PropertyListObject& dictionary, size_t i) const { return ref(dictionary, i); }
  Index value(const PropertyListObject& dictionary, size_t i) const {
    return ref(dictionary, dictionary.count_ + i);
  }

  /// The value of the first pair whose key is that string; kInvalid when there is none or the
  /// object is not a dictionary. Looks at every key: meant for small or rarely asked dictionaries.
  PropertyListObject find(const PropertyListObject& dictionary, std::string_view key) const;

 private:
  BinaryPropertyList() = default;
  bool readTrailer();
  bool checkOffsets() const;
  Index ref(const PropertyListObject& container, size_t i) const;
  PropertyListObject number(PropertyListObject::Kind kind, size_t offset, size_t size) const;
  PropertyListObject counted(uint8_t marker, size_t offset) const;

  std::span<const uint8_t> bytes_;
  size_t offsetTable_ = 0;
  uint8_t offsetSize_ = 0;
  uint8_t refSize_ = 0;
  Index objectCount_ = 0;
  Index topObject_ = 0;
};
