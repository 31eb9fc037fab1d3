// Colours and paints.
#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <utility>

#include "svg/SVGStringParser.h"
#include "svg/parse/SVGNamedColors.h"
#include "svg/parse/SVGScanner.h"

namespace SVGNative::SVGStringParser {

namespace {

constexpr int8_t kNoDigit = -1;

constexpr std::array<int8_t, 256> makeHexDigits() {
  std::array<int8_t, 256> digits{};
  digits.fill(kNoDigit);
  for (int8_t i = 0; i < 16; ++i) {
    digits[static_cast<uint8_t>("0123456789abcdef"[i])] = i;
    digits[static_cast<uint8_t>("0123456789ABCDEF"[i])] = i;
  }
  return digits;
}

constexpr std::array<int8_t, 256> kHexDigits = makeHexDigits();

int hexDigitValue(char c) {
  return kHexDigits[static_cast<uint8_t>(c)];
}

// The standard conversion (std::stoi, base 16) on a range of bytes: leading whitespace of the
// C locale, a sign and a "0x" are accepted, and it ends at the first byte that is no digit.
int64_t hexInteger(Cursor cursor) {
  while (!cursor.atEnd() && (isSpace(*cursor.pos) || cursor.at('\v') || cursor.at('\f'))) {
    ++cursor.pos;
  }
  const bool negative = cursor.at('-');
  if (negative || cursor.at('+')) ++cursor.pos;
  if (cursor.end - cursor.pos > 2 && cursor.pos[0] == '0' && toLower(cursor.pos[1]) == 'x' &&
      hexDigitValue(cursor.pos[2]) != kNoDigit) {
    cursor.pos += 2;
  }
  if (cursor.atEnd() || hexDigitValue(*cursor.pos) == kNoDigit) {
    throw std::invalid_argument("colour without hexadecimal digits");
  }
  constexpr int64_t kTooLarge = int64_t{1} << 32;
  int64_t value = 0;
  for (; !cursor.atEnd() && value < kTooLarge; ++cursor.pos) {
    const int digit = hexDigitValue(*cursor.pos);
    if (digit == kNoDigit) break;
    value = value * 16 + digit;
  }
  return negative ? -value : value;
}

ColorArray colorFromParts(int64_t red, int64_t green, int64_t blue, float full) {
  const auto component = [full](int64_t part) {
    return std::clamp(static_cast<float>(part) / full, 0.0f, 1.0f);
  };
  return {component(red), component(green), component(blue), 1.0f};
}

// What follows the "#".
bool parseHexColor(Cursor cursor, ColorArray& color) {
  const int64_t value = hexInteger(cursor);
  switch (cursor.end - cursor.pos) {
    case 3:
      color = colorFromParts(value / 256, value / 16 % 16, value % 16, 15.0f);
      return true;
    case 6:
      color = colorFromParts(value / 65536, value / 256 % 256, value % 256, 255.0f);
      return true;
    default:
      return false;
  }
}

bool scanColorComponent(Cursor& cursor, float& component) {
  if (!scanNumber(cursor, component)) return false;
  component /= skipChar(cursor, '%') ? 100.0f : 255.0f;
  component = std::clamp(component, 0.0f, 1.0f);
  return true;
}

// What follows the "rgb(".
bool parseRgbColor(Cursor cursor, ColorArray& color) {
  skipSpace(cursor);
  for (size_t i = 0; i < 3; ++i) {
    if (i > 0 && skipSeparator(cursor) == Separator::none) return false;
    if (!scanColorComponent(cursor, color[i])) return false;
  }
  color[3] = 1.0f;
  skipSpace(cursor);
  if (!skipChar(cursor, ')')) return false;
  skipSpace(cursor);
  return cursor.atEnd();
}

bool isNameByte(char c) {
  return isLetter(c) || isDigit(c) || c == '-' || c == '_';
}

// What follows the "var(". The closing parenthesis is the last byte that is not whitespace, so
// that a fallback may hold parentheses of its own.
bool parseVariable(Cursor cursor, Color& color) {
  skipSpace(cursor);
  const char* start = cursor.pos;
  if (!skipWord(cursor, "--")) return false;
  while (!cursor.atEnd() && isNameByte(*cursor.pos)) ++cursor.pos;
  const std::string_view name(start, static_cast<size_t>(cursor.pos - start));
  skipSpace(cursor);
  const bool hasFallback = skipChar(cursor, ',');
  std::string_view rest = trimmed(cursor.rest());
  if (!rest.ends_with(')')) return false;
  rest = trimmed(rest.substr(0, rest.size() - 1));
  if (!hasFallback && !rest.empty()) return false;
  color = ColorVariable(name, rest);
  return true;
}

bool parseNamedColor(std::string_view name, ColorArray& color) {
  const auto* found = std::find_if(
      kNamedColors.begin(), kNamedColors.end(),
      [name](const NamedColor& entry) { return equalsIgnoringCase(name, entry.name); });
  if (found == kNamedColors.end()) return false;
  color = found->color;
  return true;
}

// What follows the closing parenthesis of a reference that could not be resolved.
PaintResult parseFallback(std::string_view text, const ColorArray* currentColor, Paint& paint) {
  const PaintResult result = ParsePaint(text, {}, currentColor, paint);
  return result == PaintResult::empty ? PaintResult::unresolved : result;
}

// The colour after a reference to a gradient that is there. Nobody may ever need it, so that it may
// be as damaged as it likes.
std::shared_ptr<const Color> fallbackOf(std::string_view text, const ColorArray* currentColor) {
  Color color;
  try {
    if (trimmed(text).empty() || !ParseColor(text, color, Variables::allowed)) return nullptr;
  } catch (const std::invalid_argument&) {
    return nullptr;
  }
  const bool isKey = std::holds_alternative<ColorKeys>(color);
  if (isKey && currentColor != nullptr) color = *currentColor;
  return std::make_shared<const Color>(std::move(color));
}

// What follows the "url(#".
PaintResult parseReference(std::string_view text, const GradientMap& gradients,
                           const ColorArray* currentColor, Paint& paint) {
  const size_t close = text.find(')');
  if (close == std::string_view::npos) return PaintResult::invalid;
  const std::string_view after = text.substr(close + 1);
  if (!after.empty() && !isSpace(after.front())) return PaintResult::invalid;
  const auto found = gradients.find(text.substr(0, close));
  if (found == gradients.end()) return parseFallback(after, currentColor, paint);
  paint = GradientPaint{found->second, fallbackOf(after, currentColor)};
  return PaintResult::paint;
}

struct ToPaint {
  const ColorArray* currentColor;
  Paint operator()(const ColorArray& color) const { return color; }
  Paint operator()(ColorVariable& variable) const { return std::move(variable); }
  Paint operator()(ColorKeys key) const {
    return currentColor != nullptr ? Paint(*currentColor) : Paint(key);
  }
};

}  // namespace

bool ParseColor(std::string_view text, Color& color, Variables variables) {
  Cursor cursor(text);
  skipSpace(cursor);
  ColorArray value{};
  bool valid = false;
  if (skipChar(cursor, '#')) {
    valid = parseHexColor(cursor, value);
  } else if (skipWord(cursor, "rgb(")) {
    valid = parseRgbColor(cursor, value);
  } else if (skipWord(cursor, "var(")) {
    return variables == Variables::allowed && parseVariable(cursor, color);
  } else if (equalsIgnoringCase(trimmed(cursor.rest()), "currentcolor")) {
    color = ColorKeys::currentcolor;
    return true;
  } else {
    valid = parseNamedColor(trimmed(cursor.rest()), value);
  }
  if (valid) color = value;
  return valid;
}

PaintResult ParsePaint(std::string_view text, const GradientMap& gradients,
                       const ColorArray* currentColor, Paint& paint) {
  const std::string_view word = trimmed(text);
  if (word.empty()) return PaintResult::empty;
  if (word == "none") return PaintResult::none;
  constexpr std::string_view kReference = "url(#";
  if (word.starts_with(kReference)) {
    return parseReference(word.substr(kReference.size()), gradients, currentColor, paint);
  }
  Color color;
  if (!ParseColor(text, color, Variables::allowed)) return PaintResult::invalid;
  paint = std::visit(ToPaint{currentColor}, color);
  return PaintResult::paint;
}

}  // namespace SVGNative::SVGStringParser
