#include "platform/foundation/archive/BinaryPropertyListWriter.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "platform/foundation/BigEndian.h"
#include "platform/foundation/Limits.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/Unicode.h"

namespace {

using Ref = BinaryPropertyListWriter::Ref;

constexpr uint8_t kData = 0x4;
constexpr uint8_t kASCIIString = 0x5;
constexpr uint8_t kUTF16String = 0x6;
constexpr uint8_t kUID = 0x8;
constexpr uint8_t kArray = 0xA;
constexpr uint8_t kDictionary = 0xD;
constexpr Ref kNoNumber = UINT32_MAX;

/// The smallest of 1, 2, 4 and 8 bytes that hold the value.
size_t widthOf(uint64_t value) {
  if (value <= UINT8_MAX) return 1;
  if (value <= UINT16_MAX) return 2;
  return value <= UINT32_MAX ? 4 : 8;
}

std::string_view asText(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

/// Adds the bytes encoded since `begin` as an object.
Ref BinaryPropertyListWriter::append(size_t begin) {
  nodes_.push_back({begin, bytes_.size() - begin, {}, 0, 0});
  return static_cast<Ref>(nodes_.size() - 1);
}

/// The same, unless an object of the same bytes is there already. Long texts are not looked for:
/// a reader may bound what it makes of a file by the file's size.
Ref BinaryPropertyListWriter::appendScalar(size_t begin) {
  constexpr size_t kLongestShared = 64;
  const auto encoded = std::span<const uint8_t>(bytes_).subspan(begin);
  if (encoded.size() > kLongestShared) return append(begin);
  const size_t hash = std::hash<std::string_view>{}(asText(encoded));
  const auto [first, last] = scalars_.equal_range(hash);
  for (auto candidate = first; candidate != last; ++candidate) {
    const Node& node = nodes_[candidate->second];
    if (std::ranges::equal(std::span(bytes_).subspan(node.begin, node.length), encoded)) {
      bytes_.resize(begin);
      return candidate->second;
    }
  }
  const Ref ref = append(begin);
  scalars_.emplace(hash, ref);
  return ref;
}

void BinaryPropertyListWriter::appendNumber(uint64_t value) {
  const size_t width = widthOf(value);
  bytes_.push_back(static_cast<uint8_t>(0x10 | std::countr_zero(width)));
  appendBigEndian(bytes_, value, width);
}

void BinaryPropertyListWriter::appendHeader(uint8_t kind, uint64_t count) {
  bytes_.push_back(static_cast<uint8_t>(kind << 4 | std::min<uint64_t>(count, 15)));
  if (count >= 15) appendNumber(count);
}

Ref BinaryPropertyListWriter::addBool(bool value) {
  const size_t begin = this->begin();
  bytes_.push_back(value ? 0x09 : 0x08);
  return appendScalar(begin);
}

Ref BinaryPropertyListWriter::addInteger(int64_t value) {
  const size_t begin = this->begin();
  appendNumber(static_cast<uint64_t>(value));
  return appendScalar(begin);
}

Ref BinaryPropertyListWriter::addUnsigned(uint64_t value) {
  if (value >> 63 == 0) return addInteger(static_cast<int64_t>(value));
  const size_t begin = this->begin();
  bytes_.push_back(0x14);
  appendBigEndian(bytes_, 0, 8);
  appendBigEndian(bytes_, value, 8);
  return appendScalar(begin);
}

Ref BinaryPropertyListWriter::addFloat(float value) {
  const size_t begin = this->begin();
  bytes_.push_back(0x22);
  appendBigEndian(bytes_, std::bit_cast<uint32_t>(value), 4);
  return appendScalar(begin);
}

Ref BinaryPropertyListWriter::addDouble(double value) {
  const size_t begin = this->begin();
  bytes_.push_back(0x23);
  appendBigEndian(bytes_, std::bit_cast<uint64_t>(value), 8);
  return appendScalar(begin);
}

Ref BinaryPropertyListWriter::addUID(uint32_t value) {
  const size_t begin = this->begin();
  const size_t width = widthOf(value);
  bytes_.push_back(static_cast<uint8_t>(kUID << 4 | (width - 1)));
  appendBigEndian(bytes_, value, width);
  return appendScalar(begin);
}

Ref BinaryPropertyListWriter::addString(std::string_view utf8) {
  const size_t begin = this->begin();
  if (isASCII(utf8)) {
    appendHeader(kASCIIString, utf8.size());
    bytes_.insert(bytes_.end(), utf8.begin(), utf8.end());
  } else {
    const std::u16string units = utf16FromUTF8(utf8);
    appendHeader(kUTF16String, units.size());
    for (const char16_t unit : units) appendBigEndian(bytes_, unit, 2);
  }
  return appendScalar(begin);
}

Ref BinaryPropertyListWriter::addData(std::span<const uint8_t> bytes) {
  const size_t begin = this->begin();
  appendHeader(kData, bytes.size());
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  return append(begin);
}

Ref BinaryPropertyListWriter::addData(std::shared_ptr<const void> owner,
                                      std::span<const uint8_t> bytes) {
  const size_t begin = this->begin();
  appendHeader(kData, bytes.size());
  const Ref ref = append(begin);
  nodes_[ref].outside = bytes;
  owners_.push_back(std::move(owner));
  return ref;
}

Ref BinaryPropertyListWriter::addArray(std::span<const Ref> elements) {
  const size_t firstRef = refs_.size();
  refs_.insert(refs_.end(), elements.begin(), elements.end());
  return appendContainer(kArray, elements.size(), firstRef);
}

Ref BinaryPropertyListWriter::addDictionary(std::span<const Ref> keys,
                                            std::span<const Ref> values) {
  const size_t firstRef = refs_.size();
  refs_.insert(refs_.end(), keys.begin(), keys.end());
  refs_.insert(refs_.end(), values.begin(), values.end());
  return appendContainer(kDictionary, keys.size(), firstRef);
}

Ref BinaryPropertyListWriter::appendContainer(uint8_t kind, size_t count, size_t firstRef) {
  const size_t begin = this->begin();
  appendHeader(kind, count);
  const Ref ref = append(begin);
  nodes_[ref].firstRef = firstRef;
  nodes_[ref].refCount = refs_.size() - firstRef;
  return ref;
}

/// What the top object reaches, each object once, in the order of the file.
std::vector<Ref> BinaryPropertyListWriter::inPreorder(Ref top) const {
  std::vector<Ref> order;
  std::vector<bool> seen(nodes_.size());
  std::vector<Ref> pending{top};
  while (!pending.empty()) {
    const Ref ref = pending.back();
    pending.pop_back();
    if (seen[ref]) continue;
    seen[ref] = true;
    order.push_back(ref);
    const Node& node = nodes_[ref];
    for (size_t i = node.refCount; i-- > 0;) pending.push_back(refs_[node.firstRef + i]);
  }
  return order;
}

std::vector<uint8_t> BinaryPropertyListWriter::finish(Ref top) const {
  const std::vector<Ref> order = inPreorder(top);
  const size_t refSize = widthOf(order.size());
  std::vector<Ref> numbers(nodes_.size(), kNoNumber);
  size_t table = 8;
  for (size_t i = 0; i < order.size(); ++i) {
    const Node& node = nodes_[order[i]];
    numbers[order[i]] = static_cast<Ref>(i);
    table += node.length + node.outside.size() + node.refCount * refSize;
  }
  const size_t offsetSize = widthOf(table);
  const size_t size = table + order.size() * offsetSize + 32;
  if (size > static_cast<uint64_t>(limits::kMaxFileBytes)) {
    throw NSException(NSInvalidArchiveOperationException, "property list too large");
  }
  std::vector<uint8_t> out;
  out.reserve(size);
  for (const char c : {'b', 'p', 'l', 'i', 's', 't', '0', '0'}) {
    out.push_back(static_cast<uint8_t>(c));
  }
  std::vector<size_t> offsets;
  offsets.reserve(order.size());
  for (const Ref ref : order) {
    const Node& node = nodes_[ref];
    offsets.push_back(out.size());
    const auto encoded = std::span(bytes_).subspan(node.begin, node.length);
    out.insert(out.end(), encoded.begin(), encoded.end());
    out.insert(out.end(), node.outside.begin(), node.outside.end());
    for (size_t i = 0; i < node.refCount; ++i) {
      appendBigEndian(out, numbers[refs_[node.firstRef + i]], refSize);
    }
  }
  for (const size_t offset : offsets) appendBigEndian(out, offset, offsetSize);
  appendBigEndian(out, 0, 6);
  out.push_back(static_cast<uint8_t>(offsetSize));
  out.push_back(static_cast<uint8_t>(refSize));
  appendBigEndian(out, order.size(), 8);
  appendBigEndian(out, 0, 8);
  appendBigEndian(out, table, 8);
  return out;
}
