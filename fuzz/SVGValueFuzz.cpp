// Every parser of an attribute value but that of path data, on the same text.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "svg/SVGStringParser.h"

using namespace SVGNative::SVGStringParser;

namespace {

class IgnoringTransform : public SVGNative::Transform {
 public:
  void Set(float, float, float, float, float, float) override {}
  void Rotate(float) override {}
  void Translate(float, float) override {}
  void Scale(float, float) override {}
  void Concat(float, float, float, float, float, float) override {}
  void Concat(const Transform&) override {}
};

void check(bool condition) {
  if (!condition) std::abort();
}

void parseNumbers(std::string_view text) {
  float number = 0.0f;
  if (ParseNumber(text, number)) check(std::isfinite(number));
  if (ParseAlphaValue(text, number)) check(std::isfinite(number));
  if (ParseLengthOrPercentage(text, 1000.0f, number, Unitless::allowed)) {
    check(std::isfinite(number));
  }
  std::vector<float> numbers;
  if (ParseListOfNumbers(text, numbers, Separators::required)) {
    // What needs no separators accepts them too.
    const std::vector<float> separated = numbers;
    check(ParseListOfNumbers(text, numbers, Separators::optional) && numbers == separated);
  }
  ParseListOfLengthOrPercentage(text, 10.0f, numbers, Separators::optional);
  std::vector<std::string> strings;
  ParseListOfStrings(text, strings);
}

void parseColors(std::string_view text) {
  SVGNative::Color color;
  if (ParseColor(text, color, Variables::refused)) {
    if (const auto* components = std::get_if<SVGNative::ColorArray>(&color)) {
      for (const float component : *components) check(component >= 0.0f && component <= 1.0f);
    }
  }
  SVGNative::Paint paint;
  ParsePaint(text, {}, nullptr, paint);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  parseNumbers(text);
  IgnoringTransform transform;
  ParseTransform(text, transform);
  try {
    parseColors(text);
  } catch (const std::invalid_argument&) {
  }
  return 0;
}
