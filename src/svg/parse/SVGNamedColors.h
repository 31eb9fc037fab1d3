#pragma once

#include <array>
#include <string_view>

#include "svg/draw/SVGColor.h"

namespace SVGNative {

struct NamedColor {
  std::string_view name;  ///< lower case
  ColorArray color;
};

/// The colour keywords of CSS Color Module Level 4, section 6.1, in alphabetical order.
/// "transparent" is not among them.
extern const std::array<NamedColor, 148> kNamedColors;

}  // namespace SVGNative
