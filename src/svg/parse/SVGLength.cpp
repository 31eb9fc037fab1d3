#include "svg/parse/SVGLength.h"

#include <cmath>

#include "svg/SVGStringParser.h"

namespace SVGNative {

float LengthContext::RelativeLength(LengthType type) const {
  switch (type) {
    case LengthType::horizontal:
      return box_.width;
    case LengthType::vertical:
      return box_.height;
    case LengthType::diagonal:
      break;
  }
  return std::hypot(box_.width, box_.height);
}

std::optional<float> LengthContext::ParseLength(const AttributeSet& attributes, Attribute attribute,
                                                LengthType type) const {
  const std::optional<std::string_view> text = attributes.get(attribute);
  float length = 0.0f;
  if (!text || !SVGStringParser::ParseLengthOrPercentage(*text, RelativeLength(type), length,
                                                         SVGStringParser::Unitless::allowed)) {
    return std::nullopt;
  }
  return length;
}

}  // namespace SVGNative
