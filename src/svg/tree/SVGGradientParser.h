#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "svg/SVGStringParser.h"
#include "svg/draw/SVGRenderer.h"
#include "svg/parse/SVGAttributes.h"
#include "svg/parse/SVGLength.h"

namespace SVGNative {

/// The gradients of a document. They may be referred to before they stand in the text, and take
/// from each other what they do not say themselves; so they are declared in a first walk over the
/// text, read in the second and completed at the end. Needs the XML document until then.
class SVGGradientParser {
 public:
  explicit SVGGradientParser(SVGRenderer& renderer) : renderer_(renderer) {}

  /// Makes the gradient known by its id; the first one of an id counts.
  void Declare(xml::XMLNode node);
  /// Reads the colour stops of a declared gradient, and keeps its attributes. `currentColor` is the
  /// one at the gradient; null for black.
  void ParseGradient(xml::XMLNode node, const AttributeSet& attributes,
                     const LengthContext& lengths,
                     const std::shared_ptr<const Color>& currentColor);
  /// Works out the attributes, after those of all gradients that each one refers to.
  void Complete();

  const GradientMap& Gradients() const { return gradients_; }

 private:
  // First those that gradients of one kind alone have.
  static constexpr size_t kOfOneKind = 9;
  static constexpr std::array kInherited{Attribute::cx,
                                         Attribute::cy,
                                         Attribute::fx,
                                         Attribute::fy,
                                         Attribute::r,
                                         Attribute::x1,
                                         Attribute::x2,
                                         Attribute::y1,
                                         Attribute::y2,
                                         Attribute::gradientTransform,
                                         Attribute::gradientUnits,
                                         Attribute::spreadMethod};
  struct Source {
    xml::XMLNode node;
    LengthContext lengths;
    std::string_view reference;
    std::array<std::string_view, kInherited.size()> values;  // without data where missing
  };

  void complete(GradientImpl& gradient, const Source& source);
  void inheritAttributes(GradientImpl& gradient, AttributeSet& attributes, const Source& source);
  void inheritAttributes(AttributeSet& attributes, const Source& source, bool isSameKind);

  SVGRenderer& renderer_;
  GradientMap gradients_;
  NameMap<Source> sources_;  // of every gradient
  size_t inheritedBytes_ = 0;
};

}  // namespace SVGNative
