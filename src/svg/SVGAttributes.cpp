#include "svg/SVGAttributes.h"

#include <algorithm>

#include "svg/SVGScanner.h"

namespace SVGNative {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, kAttributeCount> kNames{"clip-path",
                                                               "clip-rule",
                                                               "clipPathUnits",
                                                               "color",
                                                               "cx",
                                                               "cy",
                                                               "d",
                                                               "display",
                                                               "fill",
                                                               "fill-opacity",
                                                               "fill-rule",
                                                               "fx",
                                                               "fy",
                                                               "gradientTransform",
                                                               "gradientUnits",
                                                               "height",
                                                               "href",
                                                               "id",
                                                               "offset",
                                                               "opacity",
                                                               "points",
                                                               "preserveAspectRatio",
                                                               "r",
                                                               "rx",
                                                               "ry",
                                                               "spreadMethod",
                                                               "stop-color",
                                                               "stop-opacity",
                                                               "stroke",
                                                               "stroke-dasharray",
                                                               "stroke-dashoffset",
                                                               "stroke-linecap",
                                                               "stroke-linejoin",
                                                               "stroke-miterlimit",
                                                               "stroke-opacity",
                                                               "stroke-width",
                                                               "transform",
                                                               "viewBox",
                                                               "visibility",
                                                               "width",
                                                               "x",
                                                               "x1",
                                                               "x2",
                                                               "y",
                                                               "y1",
                                                               "y2"};
static_assert(std::is_sorted(kNames.begin(), kNames.end()));

std::optional<Attribute> attributeNamed(std::string_view name) {
  const auto* found = std::lower_bound(kNames.begin(), kNames.end(), name);
  if (found == kNames.end() || *found != name) return std::nullopt;
  return static_cast<Attribute>(found - kNames.begin());
}

// A prefix that the document never declared stays a part of the name.
bool isXLinkReference(const xml::XMLAttribute& attribute) {
  return (attribute.Namespace() == xml::kXLinkNamespace && attribute.Name() == "href") ||
         attribute.Name() == "xlink:href";
}

}  // namespace

AttributeSet::AttributeSet(xml::XMLNode node) {
  for (xml::XMLAttribute attribute = node.FirstAttribute(); attribute;
       attribute = attribute.Next()) {
    const std::optional<std::string_view> value = attribute.Value();
    if (!value) continue;
    if (isXLinkReference(attribute)) {
      if (!has(Attribute::href)) set(Attribute::href, *value);
    } else if (attribute.Namespace().empty()) {
      if (const auto known = attributeNamed(attribute.Name())) set(*known, *value);
    }
  }
}

std::string_view referencedId(std::string_view reference) {
  reference = trimmed(reference);
  if (!reference.starts_with('#')) return {};
  return reference.substr(1);
}

}  // namespace SVGNative
