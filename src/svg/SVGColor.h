#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace SVGNative {

/// Red, green, blue, alpha, each 0..1, not premultiplied, sRGB.
using ColorArray = std::array<float, 4>;

inline constexpr ColorArray kOpaqueBlack{0.0f, 0.0f, 0.0f, 1.0f};

/// A custom-property reference: the property's name, "--" included, and the text to use when the
/// property has no value (empty when the reference gives none).
using ColorVariable = std::pair<std::string, std::string>;

/// Colours that are only known from the element that uses them.
enum class ColorKeys : uint8_t { currentcolor };

using Color = std::variant<ColorArray, ColorVariable, ColorKeys>;

}  // namespace SVGNative
