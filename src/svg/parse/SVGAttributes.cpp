#include "svg/parse/SVGAttributes.h"

#include "svg/parse/SVGScanner.h"

namespace SVGNative {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, kAttributeCount> kNames{"clip-path",
                                                               "clip-rule",
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

// A perfect hash of the names: its factors were found by trying, and names that collide do not
// compile.
constexpr size_t kSlots = 128;
constexpr uint8_t kNoAttribute = 0xff;

constexpr size_t slotOf(std::string_view name) {
  const auto byte = [name](size_t i) { return static_cast<size_t>(static_cast<uint8_t>(name[i])); };
  return (2 * name.size() + 4 * byte(0) + 2 * byte(name.size() - 1) + 7 * byte(name.size() / 2)) %
         kSlots;
}

consteval std::array<uint8_t, kSlots> makeSlots() {
  std::array<uint8_t, kSlots> slots{};
  slots.fill(kNoAttribute);
  for (size_t i = 0; i < kNames.size(); ++i) {
    uint8_t& slot = slots[slotOf(kNames[i])];
    if (slot != kNoAttribute) throw "two names in one slot";
    slot = static_cast<uint8_t>(i);
  }
  return slots;
}

constexpr std::array<uint8_t, kSlots> kAttributeSlots = makeSlots();

// `name` is not empty.
std::optional<Attribute> attributeNamed(std::string_view name) {
  const uint8_t index = kAttributeSlots[slotOf(name)];
  if (index == kNoAttribute || kNames[index] != name) return std::nullopt;
  return static_cast<Attribute>(index);
}

// A prefix that the document never declared stays a part of the name.
bool isXLinkReference(std::string_view nameSpace, std::string_view name) {
  return nameSpace.empty() ? name == "xlink:href"
                           : nameSpace == xml::kXLinkNamespace && name == "href";
}

}  // namespace

AttributeSet::AttributeSet(xml::XMLNode node) {
  for (xml::XMLAttribute attribute = node.FirstAttribute(); attribute;
       attribute = attribute.Next()) {
    const auto [name, nameSpace, value] = attribute.Text();
    if (!value) continue;
    std::optional<Attribute> known;
    if (isXLinkReference(nameSpace, name)) {
      if (!has(Attribute::href)) known = Attribute::href;
    } else if (nameSpace.empty()) {
      known = attributeNamed(name);
    }
    if (known) set(*known, *value);
  }
}

std::string_view referencedId(std::string_view reference) {
  reference = trimmed(reference);
  if (!reference.starts_with('#')) return {};
  return reference.substr(1);
}

}  // namespace SVGNative
