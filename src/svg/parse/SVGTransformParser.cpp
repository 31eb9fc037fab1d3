// Transform lists.
#include <algorithm>
#include <array>
#include <cmath>

#include "svg/SVGStringParser.h"
#include "svg/parse/SVGScanner.h"

namespace SVGNative::SVGStringParser {

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr size_t kMaxArguments = 6;

struct Arguments {
  std::array<float, kMaxArguments> values{};
  size_t count = 0;
  float operator[](size_t i) const { return values[i]; }
};

float radians(float degrees) {
  return static_cast<float>(degrees * kRadiansPerDegree);
}

float tangent(float degrees) {
  return static_cast<float>(std::tan(degrees * kRadiansPerDegree));
}

void applyMatrix(const Arguments& a, Transform& transform) {
  transform.Concat(a[0], a[1], a[2], a[3], a[4], a[5]);
}

void applyTranslate(const Arguments& a, Transform& transform) {
  transform.Translate(a[0], a.count > 1 ? a[1] : 0.0f);
}

void applyScale(const Arguments& a, Transform& transform) {
  transform.Scale(a[0], a.count > 1 ? a[1] : a[0]);
}

void applyRotate(const Arguments& a, Transform& transform) {
  if (a.count == 3) transform.Translate(a[1], a[2]);
  transform.Rotate(radians(a[0]));
  if (a.count == 3) transform.Translate(-a[1], -a[2]);
}

void applySkewX(const Arguments& a, Transform& transform) {
  transform.Concat(1.0f, 0.0f, tangent(a[0]), 1.0f, 0.0f, 0.0f);
}

void applySkewY(const Arguments& a, Transform& transform) {
  transform.Concat(1.0f, tangent(a[0]), 0.0f, 1.0f, 0.0f, 0.0f);
}

struct Function {
  std::string_view keyword;
  size_t counts[2];  // the numbers of arguments that it takes
  void (*apply)(const Arguments&, Transform&);
};

constexpr Function kFunctions[] = {
    {"matrix", {6, 6}, applyMatrix}, {"translate", {1, 2}, applyTranslate},
    {"scale", {1, 2}, applyScale},   {"rotate", {1, 3}, applyRotate},
    {"skewX", {1, 1}, applySkewX},   {"skewY", {1, 1}, applySkewY},
};

// "(", numbers, ")".
bool scanArguments(Cursor& cursor, Arguments& arguments) {
  skipSpace(cursor);
  if (!skipChar(cursor, '(')) return false;
  skipSpace(cursor);
  for (;;) {
    if (arguments.count == kMaxArguments) return false;
    if (!scanNumber(cursor, arguments.values[arguments.count++])) return false;
    const Separator separator = skipSeparator(cursor);
    if (cursor.at(')')) return separator != Separator::comma && skipChar(cursor, ')');
  }
}

bool scanFunction(Cursor& cursor, Transform& transform) {
  const auto* function =
      std::find_if(std::begin(kFunctions), std::end(kFunctions),
                   [&](const Function& f) { return skipWord(cursor, f.keyword); });
  if (function == std::end(kFunctions)) return false;
  Arguments arguments;
  if (!scanArguments(cursor, arguments)) return false;
  if (arguments.count != function->counts[0] && arguments.count != function->counts[1]) {
    return false;
  }
  function->apply(arguments, transform);
  return true;
}

}  // namespace

bool ParseTransform(std::string_view text, Transform& transform) {
  Cursor cursor(trimmed(text));
  while (!cursor.atEnd()) {
    if (!scanFunction(cursor, transform)) return false;
    Separator separator = skipSeparator(cursor);
    // SVG 1.1 allows any number of commas between functions.
    while (separator == Separator::comma) {
      if (cursor.atEnd()) return false;
      if (!cursor.at(',')) break;
      separator = skipSeparator(cursor);
    }
  }
  return true;
}

}  // namespace SVGNative::SVGStringParser
