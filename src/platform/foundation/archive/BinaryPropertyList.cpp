#include "platform/foundation/archive/BinaryPropertyList.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/foundation/BigEndian.h"
#include "platform/foundation/Unicode.h"

namespace {

using Kind = PropertyListObject::Kind;

constexpr size_t kHeaderSize = 8;
constexpr size_t kTrailerSize = 32;
constexpr size_t kMinimumSize = kHeaderSize + 1 + kTrailerSize;

std::string_view asText(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// True when numbers of `size` bytes can hold every value up to `value`.
bool isWideEnough(uint8_t size, uint64_t value) {
  return size >= 1 && size <= 8 && (size == 8 || value >> (8 * size) == 0);
}

}  // namespace

std::optional<uint64_t> PropertyListObject::uint64() const {
  if (count_ == 8 && (payload_[0] & 0x80) != 0) return std::nullopt;
  return count_ == 16 ? loadBigEndian(payload_ + 8, 8) : loadBigEndian(payload_, count_);
}

std::optional<int64_t> PropertyListObject::int64() const {
  if (count_ == 8) return static_cast<int64_t>(loadBigEndian(payload_, 8));
  const uint64_t value = *uint64();
  if (value > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) return std::nullopt;
  return static_cast<int64_t>(value);
}

double PropertyListObject::real() const {
  return count_ == 4 ? static_cast<double>(loadBigEndianFloat(payload_))
                     : loadBigEndianDouble(payload_);
}

uint32_t PropertyListObject::uid() const {
  const size_t low = std::min<size_t>(size_, 4);
  return static_cast<uint32_t>(loadBigEndian(payload_ + size_ - low, low));
}

std::optional<std::string> PropertyListObject::text() const {
  if (is(Kind::kUTF16String)) return utf8FromBigEndianUTF16(payload());
  if (!is(Kind::kASCIIString) || !isASCII(asText(payload()))) return std::nullopt;
  return std::string(asText(payload()));
}

bool PropertyListObject::isText(std::string_view utf8) const {
  if (is(Kind::kASCIIString)) return asText(payload()) == utf8;
  return is(Kind::kUTF16String) && count_ <= utf8.size() &&
         utf8FromBigEndianUTF16(payload()) == utf8;
}

std::optional<BinaryPropertyList> BinaryPropertyList::open(std::span<const uint8_t> bytes) {
  // The last character of the magic is a revision that readers have ignored for long.
  if (bytes.size() < kMinimumSize || std::memcmp(bytes.data(), "bplist0", 7) != 0) {
    return std::nullopt;
  }
  BinaryPropertyList list;
  list.bytes_ = bytes;
  if (!list.readTrailer() || !list.checkOffsets()) return std::nullopt;
  return list;
}

/// Takes the trailer's numbers over when they account for every byte of the file.
bool BinaryPropertyList::readTrailer() {
  const uint8_t* trailer = bytes_.data() + bytes_.size() - kTrailerSize;
  offsetSize_ = trailer[6];
  refSize_ = trailer[7];
  const uint64_t count = loadBigEndian(trailer + 8, 8);
  const uint64_t top = loadBigEndian(trailer + 16, 8);
  const uint64_t table = loadBigEndian(trailer + 24, 8);
  const uint64_t end = bytes_.size() - kTrailerSize;
  if (table <= kHeaderSize || table >= end || top >= count) return false;
  if (count > std::numeric_limits<Index>::max()) return false;
  if (!isWideEnough(refSize_, count) || !isWideEnough(offsetSize_, table)) return false;
  if ((end - table) / offsetSize_ != count || (end - table) % offsetSize_ != 0) return false;
  objectCount_ = static_cast<Index>(count);
  topObject_ = static_cast<Index>(top);
  offsetTable_ = static_cast<size_t>(table);
  return true;
}

bool BinaryPropertyList::checkOffsets() const {
  const uint8_t* entry = bytes_.data() + offsetTable_;
  for (Index i = 0; i < objectCount_; ++i, entry += offsetSize_) {
    if (loadBigEndian(entry, offsetSize_) >= offsetTable_) return false;
  }
  return true;
}

PropertyListObject BinaryPropertyList::object(Index index) const {
  if (index >= objectCount_) return {};
  const uint8_t* entry = bytes_.data() + offsetTable_ + size_t{index} * offsetSize_;
  const size_t offset = static_cast<size_t>(loadBigEndian(entry, offsetSize_));
  if (offset < kHeaderSize) return {};
  const uint8_t marker = bytes_[offset];
  const unsigned low = marker & 15U;
  switch (marker >> 4) {
    case 0x0:
      if (marker == 0x00) return number(Kind::kNull, offset, 0);
      return marker == 0x08 || marker == 0x09 ? number(Kind::kBool, offset, 0)
                                              : PropertyListObject();
    case 0x1:
      return low <= 4 ? number(Kind::kInteger, offset, size_t{1} << low) : PropertyListObject();
    case 0x2:
      return low == 2 || low == 3 ? number(Kind::kReal, offset, size_t{1} << low)
                                  : PropertyListObject();
    case 0x3:
      return low == 3 ? number(Kind::kDate, offset, 8) : PropertyListObject();
    case 0x8:
      return number(Kind::kUID, offset, low + 1);
    default:
      return counted(marker, offset);
  }
}

/// An object whose marker tells its size.
PropertyListObject BinaryPropertyList::number(Kind kind, size_t offset, size_t size) const {
  if (size > offsetTable_ - offset - 1) return {};
  const uint8_t* payload = bytes_.data() + offset + 1;
  if (kind == Kind::kUID) {
    // Indices have 32 bits; anything above them is zero padding or nonsense.
    for (size_t i = 0; i + 4 < size; ++i) {
      if (payload[i] != 0) return {};
    }
  }
  return {kind, payload, size, size};
}

/// An object whose marker is followed by a count.
PropertyListObject BinaryPropertyList::counted(uint8_t marker, size_t offset) const {
  size_t position = offset + 1;
  uint64_t count = marker & 15U;
  if (count == 15) {
    if (position >= offsetTable_ || (bytes_[position] & 0xF0) != 0x10) return {};
    const size_t width = size_t{1} << (bytes_[position] & 15U);
    if (width > 8 || width > offsetTable_ - position - 1) return {};
    count = loadBigEndian(bytes_.data() + position + 1, width);
    position += 1 + width;
  }
  Kind kind = Kind::kInvalid;
  size_t unit = 1;
  switch (marker >> 4) {
    case 0x4:
      kind = Kind::kData;
      break;
    case 0x5:
      kind = Kind::kASCIIString;
      break;
    case 0x6:
      kind = Kind::kUTF16String;
      unit = 2;
      break;
    case 0xA:
      kind = Kind::kArray;
      unit = refSize_;
      break;
    case 0xC:
      kind = Kind::kSet;
      unit = refSize_;
      break;
    case 0xD:
      kind = Kind::kDictionary;
      unit = 2 * size_t{refSize_};
      break;
    default:
      return {};
  }
  if (count > (offsetTable_ - position) / unit) return {};
  const size_t size = static_cast<size_t>(count);
  return {kind, bytes_.data() + position, size, size * unit};
}

BinaryPropertyList::Index BinaryPropertyList::ref(const PropertyListObject& container,
                                                  size_t i) const {
  const uint64_t index = loadBigEndian(container.payload_ + i * refSize_, refSize_);
  return static_cast<Index>(std::min<uint64_t>(index, std::numeric_limits<Index>::max()));
}

PropertyListObject BinaryPropertyList::find(const PropertyListObject& dictionary,
                                            std::string_view key) const {
  if (!dictionary.is(Kind::kDictionary)) return {};
  for (size_t i = 0; i < dictionary.count(); ++i) {
    if (object(this->key(dictionary, i)).isText(key)) return object(value(dictionary, i));
  }
  return {};
}
