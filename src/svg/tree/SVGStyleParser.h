#pragma once

#include <memory>

#include "svg/SVGStringParser.h"
#include "svg/parse/SVGAttributes.h"
#include "svg/parse/SVGLength.h"
#include "svg/tree/SVGElement.h"

namespace SVGNative {

using ClippingPathMap = NameMap<std::shared_ptr<ClippingPath>>;

/// What values of presentation attributes may refer to.
struct StyleContext {
  const LengthContext& lengths;
  const GradientMap& gradients;
  const ClippingPathMap& clippingPaths;
  SVGRenderer& renderer;
  ElementMemory& memory;  ///< for what the element says
};

/// Reads the presentation attributes into the element's style, properties and display. An invalid
/// value leaves what was there, or is inherited.
void ParsePresentationAttributes(const AttributeSet& attributes, const StyleContext& context,
                                 Element& element);

/// The value of "transform", or of another attribute of its kind; null when there is none or it is
/// invalid.
std::shared_ptr<Transform> parseTransformAttr(const AttributeSet& attributes, Attribute attribute,
                                              SVGRenderer& renderer);

/// What "currentcolor" is at an element: its own "color", or the one around it. Null for black.
/// Throws as ParseColor does.
std::shared_ptr<const Color> currentColorAt(const AttributeSet& attributes,
                                            const std::shared_ptr<const Color>& outer);

/// The value of "fill-rule" or "clip-rule"; nothing when it is missing or invalid.
std::optional<WindingRule> parseWindingRule(const AttributeSet& attributes, Attribute attribute);

}  // namespace SVGNative
