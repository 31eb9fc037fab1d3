#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

/// Numbers as most texts have them ("-123.45") scanned eight bytes at a time, without a branch that
/// depends on how many digits there are or on the sign: byte by byte, mispredicted branches are
/// half of the cost of reading path data.
namespace SVGNative {

/// Entry [k][d] is d / 10^(k+1) in single precision. Ten to the 38th is the largest power of ten
/// there: later digits add nothing.
inline constexpr size_t kFractionDigits = 38;
using FractionTable = std::array<std::array<float, 10>, kFractionDigits>;

constexpr FractionTable makeFractionTable() {
  FractionTable table{};
  float scale = 1.0f;
  for (auto& row : table) {
    scale *= 10.0f;
    for (size_t digit = 0; digit < 10; ++digit) row[digit] = static_cast<float>(digit) / scale;
  }
  return table;
}

inline constexpr FractionTable kFraction = makeFractionTable();

namespace short_number {

inline constexpr uint64_t kOnes = 0x0101010101010101;
inline constexpr uint64_t kHigh = kOnes * 0x80;

/// The high bit of each byte that is not 0..9.
constexpr uint64_t nonDigits(uint64_t values) {
  return (((values & ~kHigh) + kOnes * 0x76) | values) & kHigh;
}

/// The high bit of each byte that is zero.
constexpr uint64_t zeros(uint64_t bytes) {
  return ~(((bytes & ~kHigh) + ~kHigh) | bytes) & kHigh;
}

/// Number of bytes below the lowest byte that is marked.
inline int bytesBelow(uint64_t marks) {
  return std::countr_zero(marks) / 8;
}

/// The number that the first `count` digits make, 0 to 4 of them: with leading zeros they are four,
/// which are joined to pairs and then to one number.
constexpr uint32_t integerOf(uint64_t digits, int count) {
  auto v = static_cast<uint32_t>(digits << (32 - 8 * count));
  v = (v * 10 + (v >> 8)) & 0x00ff00ff;
  return (v * 100 + (v >> 16)) & 0xffff;
}

/// Adds up to four fraction digits; those that are missing count as zeros.
inline void addFraction(uint64_t digits, int count, float& value) {
  digits &= (uint64_t{1} << (8 * count)) - 1;
  value += kFraction[0][digits & 0xff];
  value += kFraction[1][digits >> 8 & 0xff];
  // A document has about the same number of digits everywhere, so this branch is foreseen.
  if (count <= 2) return;
  value += kFraction[2][digits >> 16 & 0xff];
  value += kFraction[3][digits >> 24 & 0xff];
}

}  // namespace short_number

/// Scans a number of at most seven bytes after its sign, with at most four digits on each side of
/// the point and no exponent. Returns its length; 0 for everything else, valid or not. Nine bytes
/// at `text` must be readable.
inline int scanShortNumber(const char* text, float& number) {
  using namespace short_number;
  if constexpr (std::endian::native != std::endian::little) return 0;
  const int negative = static_cast<int>(*text == '-');
  const int sign = negative | static_cast<int>(*text == '+');
  uint64_t bytes = 0;
  std::memcpy(&bytes, text + sign, sizeof bytes);
  const uint64_t values = bytes ^ (kOnes * '0');
  const uint64_t points = zeros(bytes ^ (kOnes * '.'));
  const uint64_t point = points & (~points + 1);
  const uint64_t ends = nonDigits(values) & ~point;
  if (ends == 0) return 0;
  const int length = bytesBelow(ends);
  if ((bytes >> (8 * length) & 0xdf) == 'E') return 0;
  // A point behind the number belongs to something else.
  const bool hasPoint = (point & (ends - 1)) != 0;
  const int integerDigits = hasPoint ? bytesBelow(point) : length;
  if (integerDigits > 4) return 0;
  auto value = static_cast<float>(integerOf(values, integerDigits));
  if (hasPoint) {
    const int fractionDigits = length - integerDigits - 1;
    if (fractionDigits == 0 || fractionDigits > 4) return 0;
    addFraction(values >> 8 >> (8 * integerDigits), fractionDigits, value);
  } else if (length == 0) {
    return 0;
  }
  number =
      std::bit_cast<float>(std::bit_cast<uint32_t>(value) ^ static_cast<uint32_t>(negative) << 31);
  return sign + length;
}

}  // namespace SVGNative
