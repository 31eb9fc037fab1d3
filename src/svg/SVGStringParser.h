#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "svg/draw/SVGColor.h"
#include "svg/draw/SVGRenderer.h"
#include "svg/parse/SVGNameMap.h"

namespace SVGNative {

using GradientMap = NameMap<std::shared_ptr<GradientImpl>>;

/// Texts of attribute values to values. Every function takes the whole value and answers whether
/// it is valid; what it then leaves in its output, where nothing else is said, is unspecified and
/// the caller keeps the attribute's default. Numbers are single precision. Whitespace around a
/// value is allowed everywhere but after a colour that begins with "#".
namespace SVGStringParser {

enum class Unitless { refused, allowed };
enum class Separators { required, optional };
enum class Variables { refused, allowed };

bool ParseNumber(std::string_view text, float& number);

/// A number with a unit (cm, mm, in, pc, pt, px in any case; 96 units to the inch) or with "%",
/// which counts in hundredths of `reference`. The result is in user units.
bool ParseLengthOrPercentage(std::string_view text, float reference, float& length,
                             Unitless unitless);

/// A number, or a percentage as a fraction. Not clamped.
bool ParseAlphaValue(std::string_view text, float& alpha);

/// Numbers apart by whitespace and at most one comma. With optional separators they may touch, as
/// in path data. A blank text is an empty list. `numbers` is replaced; after a failure it holds
/// the numbers before the faulty one.
bool ParseListOfNumbers(std::string_view text, std::vector<float>& numbers, Separators separators);

/// The same with lengths, unit-less ones included.
bool ParseListOfLengthOrPercentage(std::string_view text, float reference,
                                   std::vector<float>& lengths, Separators separators);

/// Items apart by whitespace and at most one comma. `strings` is replaced.
bool ParseListOfStrings(std::string_view text, std::vector<std::string>& strings);

/// #rgb, #rrggbb, rgb(), a colour name, "currentcolor", and var() where `variables` allows it.
/// Throws std::invalid_argument for a "#" without any hexadecimal digit: such a text is taken for
/// damaged as a whole, and whoever reads the document gives it up.
bool ParseColor(std::string_view text, Color& color, Variables variables);

enum class PaintResult {
  paint,       ///< `paint` is set
  none,        ///< the keyword: nothing is painted
  empty,       ///< a blank text: as if not given
  invalid,     ///< to be ignored
  unresolved,  ///< a gradient that does not exist, and no colour after it to fall back on
};

/// A colour as above (var() included), "none", or "url(#id)" of one of `gradients`, which may have
/// a colour or "none" after it, apart by whitespace, for when there is no such gradient; the paint
/// keeps the colour for where the gradient cannot be painted.
/// "currentcolor" becomes `*currentColor`; without one it stays a key, to be resolved when the
/// element is drawn. Throws as ParseColor does.
PaintResult ParsePaint(std::string_view text, const GradientMap& gradients,
                       const ColorArray* currentColor, Paint& paint);

/// Applies matrix, translate, scale, rotate, skewX and skewY functions in their order. An invalid
/// text leaves the functions before the faulty one applied.
bool ParseTransform(std::string_view text, Transform& transform);

/// Adds path data to `path`, in absolute coordinates. After an error the path holds all segments
/// before the faulty one, which SVG 1.1 (appendix F.2) wants drawn. Ends the process at an arc
/// that ArcToCurve does not support.
bool ParsePathString(std::string_view text, Path& path);

constexpr bool IsMoveCmd(char c) {
  return c == 'M' || c == 'm';
}
constexpr bool IsCloseCmd(char c) {
  return c == 'Z' || c == 'z';
}

}  // namespace SVGStringParser

}  // namespace SVGNative
