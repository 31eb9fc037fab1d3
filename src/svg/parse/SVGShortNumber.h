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

/// Entry [k][c] is what the character c adds as fraction digit k; nothing, unless it is a digit.
inline constexpr size_t kShortFraction = 4;
using DigitTable = std::array<std::array<float, 256>, kShortFraction>;

constexpr DigitTable makeDigitTable() {
  DigitTable table{};
  for (size_t k = 0; k < table.size(); ++k) {
    for (size_t digit = 0; digit < 10; ++digit) table[k]['0' + digit] = kFraction[k][digit];
  }
  return table;
}

inline constexpr DigitTable kDigit = makeDigitTable();

inline float digitAt(size_t k, const char* text) {
  return kDigit[k][static_cast<unsigned char>(*text)];
}

inline constexpr uint64_t kOnes = 0x0101010101010101;
inline constexpr uint64_t kHigh = kOnes * 0x80;

inline constexpr std::array kSigns{1.0f, -1.0f};

/// Marks by the high bit of each byte, exact up to the first one in `ends`.
struct Marks {
  uint64_t ends;    ///< what no number contains
  uint64_t points;  ///< points, and slashes, which are next to them
};

constexpr Marks marksOf(uint64_t bytes) {
  const uint64_t low = bytes & ~kHigh;
  const uint64_t fromPoint = low + kOnes * (0x80 - '.');
  const uint64_t fromZero = low + kOnes * (0x80 - '0');
  const uint64_t beyondNine = low + kOnes * (0x7f - '9');
  return {(~fromPoint | beyondNine | bytes) & kHigh, fromPoint & ~fromZero & kHigh};
}

/// Number of bytes below the lowest byte that is marked.
inline size_t bytesBelow(uint64_t marks) {
  return static_cast<size_t>(std::countr_zero(marks)) / 8;
}

template <class T>
T load(const char* text) {
  T bytes = 0;
  std::memcpy(&bytes, text, sizeof bytes);
  return bytes;
}

/// The number that `count` digits make, up to 4 of them: with leading zeros they are four, which
/// are joined to pairs and then to one number. Four bytes are read.
inline uint32_t integerOf(const char* text, size_t count) {
  const uint64_t digits = load<uint32_t>(text) ^ static_cast<uint32_t>(kOnes * '0');
  const auto v = static_cast<uint32_t>(digits << (32 - 8 * count));
  const uint32_t pairs = (v * 10 + (v >> 8)) & 0x00ff00ff;
  return (pairs * ((100 << 16) + 1)) >> 16;
}

}  // namespace short_number

/// Scans a number of at most eight bytes, without a plus sign or an exponent, with at most four
/// digits on each side of the point. Returns its length; 0 for everything else, valid or not. Nine
/// bytes at `text` must be readable.
///
/// The next number waits for the length of this one and for nothing else. So that is found in few
/// steps: from the second byte on, whatever the first one is, and up to what no number contains.
inline size_t scanShortNumber(const char* text, float& number) {
  using namespace short_number;
  if constexpr (std::endian::native != std::endian::little) return 0;
  const Marks marks = marksOf(load<uint64_t>(text + 1));
  if (marks.ends == 0) return 0;
  size_t length = 1 + bytesBelow(marks.ends);
  // '-' is 0, '.' is 1, '/' is 2, digits are 3 to 12.
  const auto first = static_cast<uint32_t>(*text - '-');
  if (first > 12 || first == 2) return 0;
  const uint32_t sign = (first - 1) >> 31;
  uint64_t points = marks.points & (marks.ends - 1);
  size_t point = first == 1 ? 0 : length;
  if (first != 1 && points != 0) {
    point = 1 + bytesBelow(points);
    points &= points - 1;
  }
  // A second point belongs to the next number.
  if (points != 0) length = 1 + bytesBelow(points);
  const size_t integerDigits = point - sign;
  if (integerDigits > 4) return 0;
  auto value = static_cast<float>(integerOf(text + sign, integerDigits));
  if (point != length) {
    const size_t fractionDigits = length - point - 1;
    if (text[point] != '.' || fractionDigits == 0 || fractionDigits > 4) return 0;
    value += digitAt(0, text + point + 1);
    value += digitAt(1, text + point + 2);
    // A document has about the same number of digits everywhere, so this branch is foreseen.
    if (fractionDigits > 2) {
      value += digitAt(2, text + point + 3);
      value += digitAt(3, text + point + 4);
    }
  } else if (integerDigits == 0) {
    return 0;
  }
  if ((text[length] & 0xdf) == 'E') return 0;
  number = value * kSigns[sign];
  return length;
}

}  // namespace SVGNative
