#include "svg/parse/SVGScanner.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "svg/parse/SVGShortNumber.h"

namespace SVGNative {

namespace {

unsigned digitValue(char c) {
  return static_cast<unsigned>(c - '0');
}

bool digitAt(const Cursor& cursor) {
  return !cursor.atEnd() && isDigit(*cursor.pos);
}

float scanInteger(Cursor& cursor) {
  float value = 0.0f;
  for (; digitAt(cursor); ++cursor.pos) {
    value = value * 10.0f + static_cast<float>(digitValue(*cursor.pos));
  }
  return value;
}

void addFraction(Cursor& cursor, float& value) {
  for (size_t k = 0; digitAt(cursor); ++k, ++cursor.pos) {
    if (k < kFractionDigits) value += kFraction[k][digitValue(*cursor.pos)];
  }
}

// Sign and digits after the exponent letter. Far more than single precision can hold is enough:
// the value is then zero or not finite anyway.
bool scanExponent(Cursor& cursor, int& exponent) {
  const bool negative = cursor.at('-');
  if (negative || cursor.at('+')) ++cursor.pos;
  if (!digitAt(cursor)) return false;
  int value = 0;
  for (; digitAt(cursor); ++cursor.pos) {
    value = std::min(value * 10 + static_cast<int>(digitValue(*cursor.pos)), 9999);
  }
  exponent = negative ? -value : value;
  return true;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lower) {
  return text.size() == lower.size() && std::equal(text.begin(), text.end(), lower.begin(),
                                                   [](char a, char b) { return toLower(a) == b; });
}

size_t scanAnyNumber(std::string_view text, float& number) {
  Cursor scan(text);
  const bool negative = scan.at('-');
  if (negative || scan.at('+')) ++scan.pos;
  const bool hasInteger = digitAt(scan);
  float value = scanInteger(scan);
  if (skipChar(scan, '.')) {
    if (!digitAt(scan)) return 0;
    addFraction(scan, value);
  } else if (!hasInteger) {
    return 0;
  }
  if (skipChar(scan, 'e') || skipChar(scan, 'E')) {
    int exponent = 0;
    if (!scanExponent(scan, exponent)) return 0;
    if (exponent != 0) value *= std::pow(10.0f, static_cast<float>(exponent));
  }
  if (!std::isfinite(value)) return 0;
  number = negative ? -value : value;
  return static_cast<size_t>(scan.pos - text.data());
}

}  // namespace SVGNative
