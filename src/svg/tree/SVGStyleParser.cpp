#include "svg/tree/SVGStyleParser.h"

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

#include "svg/parse/SVGScanner.h"

namespace SVGNative {

namespace {

using namespace SVGStringParser;

constexpr uint64_t maskOf(std::initializer_list<Attribute> attributes) {
  uint64_t mask = 0;
  for (const Attribute attribute : attributes) mask |= AttributeSet::bit(attribute);
  return mask;
}

// Most elements say nothing of most of these; asking for them together costs one test.
constexpr uint64_t kOfElement =
    maskOf({Attribute::opacity, Attribute::transform, Attribute::clipPath, Attribute::display});
constexpr uint64_t kGeneral = maskOf({Attribute::color, Attribute::visibility});
constexpr uint64_t kFill = maskOf({Attribute::fill, Attribute::fillOpacity, Attribute::fillRule});
constexpr uint64_t kLine =
    maskOf({Attribute::strokeLinecap, Attribute::strokeLinejoin, Attribute::strokeMiterlimit,
            Attribute::strokeDasharray, Attribute::strokeDashoffset});
constexpr uint64_t kStroke =
    kLine | maskOf({Attribute::stroke, Attribute::strokeOpacity, Attribute::strokeWidth});
constexpr uint64_t kInherited = kGeneral | kFill | kStroke;

// The readers of one element's attributes; each leaves its output alone when there is nothing
// valid to read.
struct StyleReader {
  const AttributeSet& attributes;
  const StyleContext& context;

  std::string_view word(Attribute attribute) const { return trimmed(attributes.text(attribute)); }
  void readOpacity(Attribute attribute, std::optional<float>& opacity) const;
  void readPaint(Attribute attribute, std::optional<OptionalPaint>& paint) const;
  void ParseGraphicsProperties(Element& element) const;
  void ParseInheritedProperties(InheritedProperties& properties) const;
  void parseGeneralProperties(InheritedProperties& properties) const;
  void ParseFillProperties(InheritedProperties& properties) const;
  void ParseStrokeProperties(InheritedProperties& properties) const;
  void parseLineStyle(InheritedProperties& properties) const;
  void parseDashes(InheritedProperties& properties) const;
  std::shared_ptr<const ClippingPath> clippingPath() const;
};

void StyleReader::readOpacity(Attribute attribute, std::optional<float>& opacity) const {
  float value = 0.0f;
  if (ParseAlphaValue(attributes.text(attribute), value)) {
    opacity = std::clamp(value, 0.0f, 1.0f);
  }
}

void StyleReader::readPaint(Attribute attribute, std::optional<OptionalPaint>& paint) const {
  Paint value;
  switch (ParsePaint(attributes.text(attribute), context.gradients, nullptr, value)) {
    case PaintResult::paint:
      paint.emplace(std::move(value));
      break;
    case PaintResult::none:
    case PaintResult::unresolved:
      paint.emplace(std::nullopt);
      break;
    case PaintResult::empty:
    case PaintResult::invalid:
      break;
  }
}

std::shared_ptr<const ClippingPath> StyleReader::clippingPath() const {
  std::string_view text = word(Attribute::clipPath);
  if (!text.starts_with("url(#") || !text.ends_with(')')) return nullptr;
  text = text.substr(5, text.size() - 6);
  const auto found = context.clippingPaths.find(text);
  return found == context.clippingPaths.end() ? nullptr : found->second;
}

void StyleReader::ParseGraphicsProperties(Element& element) const {
  std::optional<float> opacity;
  readOpacity(Attribute::opacity, opacity);
  element.style.opacity = opacity.value_or(1.0f);
  element.style.transform = parseTransformAttr(attributes, Attribute::transform, context.renderer);
  element.style.clippingPath = clippingPath();
  element.displayed = word(Attribute::display) != "none";
}

void StyleReader::ParseInheritedProperties(InheritedProperties& properties) const {
  if (attributes.hasAny(kGeneral)) parseGeneralProperties(properties);
  if (attributes.hasAny(kFill)) ParseFillProperties(properties);
  if (attributes.hasAny(kStroke)) ParseStrokeProperties(properties);
}

void StyleReader::parseGeneralProperties(InheritedProperties& properties) const {
  if (const auto color = currentColorAt(attributes, nullptr)) properties.color = *color;
  const std::string_view visibility = word(Attribute::visibility);
  if (visibility == "visible") properties.visibility = Visibility::visible;
  if (visibility == "hidden" || visibility == "collapse") {
    properties.visibility = Visibility::hidden;
  }
}

void StyleReader::ParseFillProperties(InheritedProperties& properties) const {
  readPaint(Attribute::fill, properties.fill);
  readOpacity(Attribute::fillOpacity, properties.fillOpacity);
  properties.fillRule = parseWindingRule(attributes, Attribute::fillRule);
}

void StyleReader::ParseStrokeProperties(InheritedProperties& properties) const {
  readPaint(Attribute::stroke, properties.stroke);
  readOpacity(Attribute::strokeOpacity, properties.strokeOpacity);
  const std::optional<float> width =
      context.lengths.ParseLength(attributes, Attribute::strokeWidth, LengthType::diagonal);
  if (width && *width >= 0.0f) properties.lineWidth = width;
  if (!attributes.hasAny(kLine)) return;
  parseLineStyle(properties);
  parseDashes(properties);
}

void StyleReader::parseLineStyle(InheritedProperties& properties) const {
  if (attributes.has(Attribute::strokeLinecap)) {
    const std::string_view cap = word(Attribute::strokeLinecap);
    properties.lineCap = cap == "round"    ? LineCap::round
                         : cap == "square" ? LineCap::square
                                           : LineCap::butt;
  }
  if (attributes.has(Attribute::strokeLinejoin)) {
    const std::string_view join = word(Attribute::strokeLinejoin);
    properties.lineJoin = join == "round"   ? LineJoin::round
                          : join == "bevel" ? LineJoin::bevel
                                            : LineJoin::miter;
  }
  float limit = 0.0f;
  if (ParseNumber(attributes.text(Attribute::strokeMiterlimit), limit) && limit >= 1.0f) {
    properties.miterLimit = limit;
  }
}

void StyleReader::parseDashes(InheritedProperties& properties) const {
  properties.dashOffset =
      context.lengths.ParseLength(attributes, Attribute::strokeDashoffset, LengthType::diagonal);
  if (!attributes.has(Attribute::strokeDasharray)) return;
  if (word(Attribute::strokeDasharray) == "none") {
    properties.dashArray.emplace(nullptr);
    return;
  }
  std::vector<float> dashes;
  if (ParseListOfLengthOrPercentage(attributes.text(Attribute::strokeDasharray),
                                    context.lengths.RelativeLength(LengthType::diagonal), dashes,
                                    Separators::required)) {
    properties.dashArray = std::make_shared<const std::vector<float>>(std::move(dashes));
  }
}

}  // namespace

void ParsePresentationAttributes(const AttributeSet& attributes, const StyleContext& context,
                                 Element& element) {
  const StyleReader reader{attributes, context};
  if (attributes.hasAny(kOfElement)) reader.ParseGraphicsProperties(element);
  if (!attributes.hasAny(kInherited)) return;
  element.properties = context.memory.makeUnique<InheritedProperties>();
  reader.ParseInheritedProperties(*element.properties);
}

std::shared_ptr<Transform> parseTransformAttr(const AttributeSet& attributes, Attribute attribute,
                                              SVGRenderer& renderer) {
  if (!attributes.has(attribute)) return nullptr;
  std::shared_ptr<Transform> transform = renderer.CreateTransform();
  return ParseTransform(attributes.text(attribute), *transform) ? transform : nullptr;
}

std::shared_ptr<const Color> currentColorAt(const AttributeSet& attributes,
                                            const std::shared_ptr<const Color>& outer) {
  Color color;
  const bool isSaid = attributes.has(Attribute::color) &&
                      ParseColor(attributes.text(Attribute::color), color, Variables::allowed) &&
                      !std::holds_alternative<ColorKeys>(color);
  return isSaid ? std::make_shared<const Color>(std::move(color)) : outer;
}

std::optional<WindingRule> parseWindingRule(const AttributeSet& attributes, Attribute attribute) {
  const std::string_view text = trimmed(attributes.text(attribute));
  if (text == "nonzero") return WindingRule::nonZero;
  if (text == "evenodd") return WindingRule::evenOdd;
  return std::nullopt;
}

}  // namespace SVGNative
