#pragma once

#include <cstddef>
#include <string_view>

// Characters with a meaning for layout.
inline constexpr char16_t kNextLine = 0x85;
inline constexpr char16_t kLineSeparator = 0x2028;
inline constexpr char16_t kParagraphSeparator = 0x2029;
inline constexpr char16_t kFormFeed = 0x0c;
inline constexpr char16_t kSoftHyphen = 0xad;
inline constexpr char16_t kObjectReplacement = 0xfffc;

constexpr bool endsParagraph(char16_t c) {
  return c == '\n' || c == '\r' || c == kNextLine || c == kParagraphSeparator;
}

/// White space that hangs over the end of a line: it neither forces a break nor moves an
/// aligned line.
constexpr bool hangs(char16_t c) {
  return c == ' ' || c == '\t' || c == 0x1680 || (c >= 0x2000 && c <= 0x200a && c != 0x2007) ||
         c == 0x205f || c == 0x3000 || c == kLineSeparator;
}

constexpr bool isHighSurrogate(char16_t c) {
  return c >= 0xd800 && c < 0xdc00;
}
constexpr bool isLowSurrogate(char16_t c) {
  return c >= 0xdc00 && c < 0xe000;
}

/// The character at a unit and the number of its units; a surrogate without its partner is itself.
struct CharacterAt {
  char32_t character;
  size_t units;
};
constexpr CharacterAt characterAt(std::u16string_view text, size_t i) {
  if (isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
    const char32_t high = static_cast<char32_t>(text[i]) - 0xd800;
    return {0x10000 + (high << 10) + (static_cast<char32_t>(text[i + 1]) - 0xdc00), 2};
  }
  return {text[i], 1};
}
