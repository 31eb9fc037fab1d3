#include "svg/tree/SVGGradientParser.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/Limits.h"
#include "svg/parse/SVGScanner.h"
#include "svg/tree/SVGStyleParser.h"

namespace SVGNative {

namespace {

using namespace SVGStringParser;

// Offsets below 0 or above 1, or below that of the stop before, are moved there.
ColorStopImpl ParseColorStop(const AttributeSet& attributes, float previousOffset,
                             const std::shared_ptr<const Color>& currentColor) {
  ColorStopImpl stop;
  stop.currentColor = currentColorAt(attributes, currentColor);
  float value = 0.0f;
  if (ParseAlphaValue(attributes.text(Attribute::offset), value)) stop.offset = value;
  stop.offset = std::max(std::clamp(stop.offset, 0.0f, 1.0f), previousOffset);
  Color color;
  if (ParseColor(attributes.text(Attribute::stopColor), color, Variables::allowed)) {
    stop.color = std::move(color);
  }
  if (ParseAlphaValue(attributes.text(Attribute::stopOpacity), value)) {
    stop.opacity = std::clamp(value, 0.0f, 1.0f);
  }
  return stop;
}

std::vector<ColorStopImpl> ParseColorStops(xml::XMLNode gradient,
                                           const std::shared_ptr<const Color>& currentColor) {
  std::vector<ColorStopImpl> stops;
  for (xml::XMLNode node = gradient.FirstChild(); node; node = node.NextSibling()) {
    if (node.Name() != "stop") continue;
    const float previous = stops.empty() ? 0.0f : stops.back().offset;
    stops.push_back(ParseColorStop(AttributeSet(node), previous, currentColor));
  }
  return stops;
}

SpreadMethod spreadMethod(const AttributeSet& attributes) {
  const std::string_view text = trimmed(attributes.text(Attribute::spreadMethod));
  if (text == "reflect") return SpreadMethod::reflect;
  return text == "repeat" ? SpreadMethod::repeat : SpreadMethod::pad;
}

GradientUnits gradientUnits(const AttributeSet& attributes) {
  return trimmed(attributes.text(Attribute::gradientUnits)) == "userSpaceOnUse"
             ? GradientUnits::userSpaceOnUse
             : GradientUnits::objectBoundingBox;
}

// Percentages are of the view box, or plain fractions of the element's box.
class CoordinateReader {
 public:
  CoordinateReader(const AttributeSet& attributes, GradientUnits units,
                   const LengthContext& lengths)
      : attributes_(attributes),
        fractions_(units == GradientUnits::objectBoundingBox),
        lengths_(fractions_ ? LengthContext({0.0f, 0.0f, 1.0f, 1.0f}) : lengths) {}

  float percent(Attribute attribute, LengthType type, float percentage) const {
    const LengthType used = usedType(type);
    return read(attribute, type, lengths_.RelativeLength(used) * percentage / 100.0f);
  }
  float read(Attribute attribute, LengthType type, float defaultValue) const {
    return lengths_.ParseLengthFromAttr(attributes_, attribute, usedType(type), defaultValue);
  }

 private:
  LengthType usedType(LengthType type) const { return fractions_ ? LengthType::horizontal : type; }

  const AttributeSet& attributes_;
  bool fractions_;
  LengthContext lengths_;
};

void readLinear(const CoordinateReader& reader, GradientImpl& gradient) {
  gradient.x1 = reader.percent(Attribute::x1, LengthType::horizontal, 0.0f);
  gradient.y1 = reader.percent(Attribute::y1, LengthType::vertical, 0.0f);
  gradient.x2 = reader.percent(Attribute::x2, LengthType::horizontal, 100.0f);
  gradient.y2 = reader.percent(Attribute::y2, LengthType::vertical, 0.0f);
}

void readRadial(const CoordinateReader& reader, GradientImpl& gradient) {
  gradient.cx = reader.percent(Attribute::cx, LengthType::horizontal, 50.0f);
  gradient.cy = reader.percent(Attribute::cy, LengthType::vertical, 50.0f);
  gradient.r = std::max(0.0f, reader.percent(Attribute::r, LengthType::diagonal, 50.0f));
  gradient.fx = reader.read(Attribute::fx, LengthType::horizontal, gradient.cx);
  gradient.fy = reader.read(Attribute::fy, LengthType::vertical, gradient.cy);
}

}  // namespace

void SVGGradientParser::Declare(xml::XMLNode node) {
  const std::optional<std::string_view> id = node.GetAttribute("id");
  if (!id || id->empty() ||
      !sources_.try_emplace(std::string(*id), Source{node, {}, {}, {}}).second) {
    return;
  }
  auto gradient = std::make_shared<GradientImpl>();
  if (node.Name() == "radialGradient") gradient->type = GradientType::radial;
  gradients_.emplace(std::string(*id), std::move(gradient));
}

void SVGGradientParser::ParseGradient(xml::XMLNode node, const AttributeSet& attributes,
                                      const LengthContext& lengths,
                                      const std::shared_ptr<const Color>& currentColor) {
  const auto found = sources_.find(attributes.text(Attribute::id));
  if (found == sources_.end() || found->second.node != node) return;
  Source& source = found->second;
  source.lengths = lengths;
  source.reference = referencedId(attributes.text(Attribute::href));
  std::transform(kInherited.begin(), kInherited.end(), source.values.begin(),
                 [&](Attribute attribute) { return attributes.text(attribute); });
  std::vector<ColorStopImpl> stops = ParseColorStops(node, currentColor);
  if (stops.empty()) return;
  gradients_.find(found->first)->second->stops =
      std::make_shared<const std::vector<ColorStopImpl>>(std::move(stops));
}

void SVGGradientParser::Complete() {
  for (const auto& [id, source] : sources_) complete(*gradients_.find(id)->second, source);
}

// An inherited value is read again for every gradient that inherits it, hence the limit. Attributes
// that a gradient's kind does not have mean nothing there, to others neither.
void SVGGradientParser::inheritAttributes(AttributeSet& attributes, const Source& source,
                                          bool isSameKind) {
  for (size_t i = isSameKind ? 0 : kOfOneKind; i < kInherited.size(); ++i) {
    const std::string_view value = source.values[i];
    if (value.data() == nullptr || attributes.has(kInherited[i])) continue;
    inheritedBytes_ += value.size();
    if (inheritedBytes_ > limits::kMaxSvgInheritedBytes) return;
    attributes.set(kInherited[i], value);
  }
}

// Takes what is missing, attributes and stops, from the gradients that this one refers to, the
// nearest first.
void SVGGradientParser::inheritAttributes(GradientImpl& gradient, AttributeSet& attributes,
                                          const Source& source) {
  std::string_view reference = source.reference;
  for (int i = 0; i < limits::kMaxSvgGradientChain && !reference.empty(); ++i) {
    const auto next = sources_.find(reference);
    if (next == sources_.end()) return;
    const GradientImpl& inherited = *gradients_.find(reference)->second;
    if (gradient.stops == nullptr) gradient.stops = inherited.stops;
    inheritAttributes(attributes, next->second, inherited.type == gradient.type);
    reference = next->second.reference;
  }
}

void SVGGradientParser::complete(GradientImpl& gradient, const Source& source) {
  AttributeSet attributes;
  for (size_t i = 0; i < kInherited.size(); ++i) {
    if (source.values[i].data() != nullptr) attributes.set(kInherited[i], source.values[i]);
  }
  inheritAttributes(gradient, attributes, source);
  gradient.spread = spreadMethod(attributes);
  gradient.units = gradientUnits(attributes);
  gradient.transform = parseTransformAttr(attributes, Attribute::gradientTransform, renderer_);
  const CoordinateReader reader(attributes, gradient.units, source.lengths);
  if (gradient.type == GradientType::linear) {
    readLinear(reader, gradient);
  } else {
    readRadial(reader, gradient);
  }
}

}  // namespace SVGNative
