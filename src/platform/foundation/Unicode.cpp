#include "platform/foundation/Unicode.h"

#include <algorithm>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void appendUTF8(std::string& out, char32_t c) {
  const auto tail = [&](int shift) {
    out.push_back(static_cast<char>(0x80 | (c >> shift & 0x3F)));
  };
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | c >> 6));
    tail(0);
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | c >> 12));
    tail(6);
    tail(0);
  } else {
    out.push_back(static_cast<char>(0xF0 | c >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

bool isHighSurrogate(char32_t c) {
  return c >= 0xD800 && c < 0xDC00;
}
bool isLowSurrogate(char32_t c) {
  return c >= 0xDC00 && c < 0xE000;
}

/// UTF-8 of `count` units that `unit(i)` answers.
template <class Units>
std::string encodeUnits(size_t count, Units unit) {
  std::string out;
  out.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    char32_t c = unit(i);
    if (isHighSurrogate(c) && i + 1 < count && isLowSurrogate(unit(i + 1))) {
      c = 0x10000 + ((c - 0xD800) << 10) + (unit(i + 1) - 0xDC00);
      ++i;
    }
    appendUTF8(out, c);
  }
  return out;
}

struct Sequence {
  char32_t character;
  size_t length;
};

/// The first character of a text that is not empty; one byte and U+FFFD where it is not UTF-8.
Sequence firstCharacter(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || length > text.size()) return {kReplacement, 1};
  char32_t c = lead & (0xFF >> (length + 1));
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {kReplacement, 1};
    c = c << 6 | (byte(i) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (c < kSmallest[length] || c > 0x10FFFF) return {kReplacement, 1};
  return {c, length};
}

}  // namespace

std::string utf8FromBigEndianUTF16(std::span<const uint8_t> bytes) {
  return encodeUnits(bytes.size() / 2, [bytes](size_t i) -> char32_t {
    return static_cast<char32_t>(bytes[2 * i] << 8 | bytes[2 * i + 1]);
  });
}

std::string utf8FromUTF16(std::u16string_view units) {
  return encodeUnits(units.size(), [units](size_t i) -> char32_t { return units[i]; });
}

std::u16string utf16FromUTF8(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  while (!utf8.empty()) {
    const Sequence s = firstCharacter(utf8);
    utf8.remove_prefix(s.length);
    if (s.character < 0x10000) {
      out.push_back(static_cast<char16_t>(s.character));
    } else {
      out.push_back(static_cast<char16_t>(0xD7C0 + (s.character >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 | (s.character & 0x3FF)));
    }
  }
  return out;
}

size_t utf16Length(std::string_view utf8) {
  size_t units = 0;
  while (!utf8.empty()) {
    const Sequence s = firstCharacter(utf8);
    utf8.remove_prefix(s.length);
    units += s.character < 0x10000 ? 1 : 2;
  }
  return units;
}

bool isASCII(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<uint8_t>(c) < 128; });
}

bool isUTF8(std::string_view text) {
  while (!text.empty()) {
    const Sequence s = firstCharacter(text);
    const bool broken = s.character == kReplacement && s.length == 1;
    if (broken || isHighSurrogate(s.character) || isLowSurrogate(s.character)) return false;
    text.remove_prefix(s.length);
  }
  return true;
}
