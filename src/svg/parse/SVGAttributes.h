#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "svg/parse/SVGXMLDocument.h"

namespace SVGNative {

/// The attributes that are read. Everything else
/// ("style" and "class" too: style sheets have no effect here) is passed over.
enum class Attribute : uint8_t {
  clipPath,
  clipRule,
  color,
  cx,
  cy,
  d,
  display,
  fill,
  fillOpacity,
  fillRule,
  fx,
  fy,
  gradientTransform,
  gradientUnits,
  height,
  href,  ///< plain, or else that of XLink
  id,
  offset,
  opacity,
  points,
  preserveAspectRatio,
  r,
  rx,
  ry,
  spreadMethod,
  stopColor,
  stopOpacity,
  stroke,
  strokeDasharray,
  strokeDashoffset,
  strokeLinecap,
  strokeLinejoin,
  strokeMiterlimit,
  strokeOpacity,
  strokeWidth,
  transform,
  viewBox,
  visibility,
  width,
  x,
  x1,
  x2,
  y,
  y1,
  y2,
};

inline constexpr size_t kAttributeCount = static_cast<size_t>(Attribute::y2) + 1;

/// The values of an element's attributes: views into the XML document.
class AttributeSet {
 public:
  AttributeSet() = default;
  explicit AttributeSet(xml::XMLNode node);

  bool has(Attribute attribute) const { return (present_ & bit(attribute)) != 0; }
  /// True when any attribute of a mask made of bit() is there.
  bool hasAny(uint64_t mask) const { return (present_ & mask) != 0; }
  static constexpr uint64_t bit(Attribute attribute) {
    return uint64_t{1} << static_cast<unsigned>(attribute);
  }

  /// Nothing when the attribute is missing.
  std::optional<std::string_view> get(Attribute attribute) const {
    if (!has(attribute)) return std::nullopt;
    return text(attribute);
  }
  /// Without data when the attribute is missing.
  std::string_view text(Attribute attribute) const {
    if (!has(attribute)) return {};
    const Value& value = values_[static_cast<size_t>(attribute)];
    return {value.data, value.size};
  }

  void set(Attribute attribute, std::string_view value) {
    present_ |= bit(attribute);
    values_[static_cast<size_t>(attribute)] = {value.data(), value.size()};
  }

 private:
  static_assert(kAttributeCount <= 64);

  struct Value {
    const char* data;
    size_t size;
  };

  uint64_t present_ = 0;
  // Meaningful where present_ says so. Not initialised: most attributes are missing.
  std::array<Value, kAttributeCount> values_;
};

/// The id that a reference within the document names: what follows the "#", empty for any other
/// reference.
std::string_view referencedId(std::string_view reference);

}  // namespace SVGNative
