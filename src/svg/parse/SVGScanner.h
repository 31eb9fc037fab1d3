#pragma once

#include <cstddef>
#include <string_view>

#include "svg/parse/SVGShortNumber.h"

/// What every value parser is built from: a position in a text, and functions that move it on.
namespace SVGNative {

struct Cursor {
  explicit Cursor(std::string_view text) : pos(text.data()), end(text.data() + text.size()) {}

  bool atEnd() const { return pos == end; }
  bool at(char c) const { return pos != end && *pos == c; }
  std::string_view rest() const { return {pos, static_cast<size_t>(end - pos)}; }

  const char* pos;
  const char* end;
};

/// Space, tab, line feed, carriage return. Form feed and vertical tab are not whitespace.
constexpr bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr char toLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline void skipSpace(Cursor& cursor) {
  while (!cursor.atEnd() && isSpace(*cursor.pos)) ++cursor.pos;
}

/// Moves over `c` when it is next.
inline bool skipChar(Cursor& cursor, char c) {
  if (!cursor.at(c)) return false;
  ++cursor.pos;
  return true;
}

/// Moves over `word` when it is next, byte for byte.
inline bool skipWord(Cursor& cursor, std::string_view word) {
  if (!cursor.rest().starts_with(word)) return false;
  cursor.pos += word.size();
  return true;
}

/// What stood between two items of a list: nothing, whitespace only, or one comma with any
/// whitespace around it.
enum class Separator { none, space, comma };

inline Separator skipSeparator(Cursor& cursor) {
  const char* start = cursor.pos;
  skipSpace(cursor);
  if (!skipChar(cursor, ',')) return cursor.pos == start ? Separator::none : Separator::space;
  skipSpace(cursor);
  return Separator::comma;
}

/// `text` without whitespace at either end.
std::string_view trimmed(std::string_view text);

/// True when both are equal but for the case of ASCII letters; `lower` is in lower case already.
bool equalsIgnoringCase(std::string_view text, std::string_view lower);

/// Scans one number: sign, digits, fraction, exponent; nothing around it. A point must be followed
/// by a digit, an exponent letter by an (optionally signed) digit, and the value must be finite.
/// The arithmetic is single precision, digit by digit. On success the cursor stands on the first
/// byte that does not belong to the number; on failure it does not move.
inline bool scanNumber(Cursor& cursor, float& number);

/// The same byte by byte, for numbers of every kind: the length of the number that `text` begins
/// with, 0 for none.
size_t scanAnyNumber(std::string_view text, float& number);

inline bool scanNumber(Cursor& cursor, float& number) {
  constexpr ptrdiff_t kReadable = 9;
  size_t length = 0;
  if (cursor.end - cursor.pos >= kReadable) length = scanShortNumber(cursor.pos, number);
  if (length == 0) length = scanAnyNumber(cursor.rest(), number);
  cursor.pos += length;
  return length != 0;
}

}  // namespace SVGNative
