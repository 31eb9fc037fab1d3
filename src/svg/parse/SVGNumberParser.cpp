// Numbers, lengths, and lists of them.
#include <cmath>
#include <iterator>
#include <optional>

#include "svg/SVGStringParser.h"
#include "svg/parse/SVGScanner.h"

namespace SVGNative::SVGStringParser {

namespace {

struct Unit {
  char name[2];
  float factor;
};

// User units per unit, at 96 user units to the inch (CSS 2.1, section 4.3.2).
constexpr Unit kUnits[] = {
    {{'c', 'm'}, 96.0f / 2.54f}, {{'m', 'm'}, 96.0f / 25.4f}, {{'i', 'n'}, 96.0f},
    {{'p', 'c'}, 16.0f},         {{'p', 't'}, 4.0f / 3.0f},   {{'p', 'x'}, 1.0f},
};

// The two letters at the cursor as a unit's factor; nothing when there is no such unit.
std::optional<float> scanUnit(Cursor& cursor) {
  if (cursor.end - cursor.pos < 2) return std::nullopt;
  for (const Unit& unit : kUnits) {
    if (toLower(cursor.pos[0]) == unit.name[0] && toLower(cursor.pos[1]) == unit.name[1]) {
      cursor.pos += 2;
      return unit.factor;
    }
  }
  return std::nullopt;
}

bool scanLength(Cursor& cursor, float reference, Unitless unitless, float& length) {
  if (!scanNumber(cursor, length)) return false;
  if (skipChar(cursor, '%')) {
    length = length / 100.0f * reference;
  } else if (!cursor.atEnd() && isLetter(*cursor.pos)) {
    const std::optional<float> factor = scanUnit(cursor);
    if (!factor) return false;
    length *= *factor;
  } else if (unitless == Unitless::refused) {
    return false;
  }
  return std::isfinite(length);
}

// One item and the whitespace around it, up to the end of the text.
template <class ScanItem>
bool parseWhole(std::string_view text, ScanItem scanItem) {
  Cursor cursor(text);
  skipSpace(cursor);
  if (!scanItem(cursor)) return false;
  skipSpace(cursor);
  return cursor.atEnd();
}

template <class ScanItem>
bool parseList(std::string_view text, Separators separators, ScanItem scanItem) {
  Cursor cursor(text);
  skipSpace(cursor);
  if (cursor.atEnd()) return true;
  for (;;) {
    if (!scanItem(cursor)) return false;
    const Separator separator = skipSeparator(cursor);
    if (cursor.atEnd()) return separator != Separator::comma;
    if (separator == Separator::none && separators == Separators::required) return false;
  }
}

}  // namespace

bool ParseNumber(std::string_view text, float& number) {
  return parseWhole(text, [&](Cursor& cursor) { return scanNumber(cursor, number); });
}

bool ParseLengthOrPercentage(std::string_view text, float reference, float& length,
                             Unitless unitless) {
  return parseWhole(
      text, [&](Cursor& cursor) { return scanLength(cursor, reference, unitless, length); });
}

bool ParseAlphaValue(std::string_view text, float& alpha) {
  return parseWhole(text, [&](Cursor& cursor) {
    if (!scanNumber(cursor, alpha)) return false;
    if (skipChar(cursor, '%')) alpha /= 100.0f;
    return true;
  });
}

bool ParseListOfNumbers(std::string_view text, std::vector<float>& numbers, Separators separators) {
  numbers.clear();
  return parseList(text, separators, [&](Cursor& cursor) {
    float number = 0.0f;
    if (!scanNumber(cursor, number)) return false;
    numbers.push_back(number);
    return true;
  });
}

bool ParseListOfLengthOrPercentage(std::string_view text, float reference,
                                   std::vector<float>& lengths, Separators separators) {
  lengths.clear();
  return parseList(text, separators, [&](Cursor& cursor) {
    float length = 0.0f;
    if (!scanLength(cursor, reference, Unitless::allowed, length)) return false;
    lengths.push_back(length);
    return true;
  });
}

bool ParseListOfStrings(std::string_view text, std::vector<std::string>& strings) {
  strings.clear();
  return parseList(text, Separators::required, [&](Cursor& cursor) {
    const char* start = cursor.pos;
    while (!cursor.atEnd() && !isSpace(*cursor.pos) && *cursor.pos != ',') ++cursor.pos;
    if (cursor.pos == start) return false;
    strings.emplace_back(start, cursor.pos);
    return true;
  });
}

}  // namespace SVGNative::SVGStringParser
