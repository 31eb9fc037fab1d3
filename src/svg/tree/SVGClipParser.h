#pragma once

#include <memory>
#include <vector>

#include "svg/draw/SVGRenderer.h"
#include "svg/parse/SVGAttributes.h"
#include "svg/parse/SVGLength.h"
#include "svg/tree/SVGElement.h"
#include "svg/tree/SVGStyleParser.h"

namespace SVGNative {

/// The clip paths of a document. They may be referred to before they stand in the text, and refer
/// to shapes that follow them; so they are declared in a first walk over the text, noted in the
/// second and read at the end. Needs the XML document until then.
class SVGClipParser {
 public:
  explicit SVGClipParser(SVGRenderer& renderer) : renderer_(renderer) {}

  /// Makes the clip path known by its id; the first one of an id counts. Clip paths in fractions of
  /// the clipped element's box are not supported and stay unknown: they clip nothing.
  void Declare(xml::XMLNode node);
  /// Keeps what a declared clip path inherits.
  void ParseClipPath(xml::XMLNode node, const AttributeSet& attributes,
                     const LengthContext& lengths, WindingRule rule);
  /// Gathers the shapes of every clip path into one path each. The rule of the first one counts
  /// for all.
  void Complete(const ElementMap& elements);

  const ClippingPathMap& ClippingPaths() const { return clippingPaths_; }

 private:
  struct Source {
    xml::XMLNode node;
    LengthContext lengths;
  };
  struct Content;

  void complete(ClippingPath& clip, const Source& source, const ElementMap& elements);
  void addShape(xml::XMLNode node, const AttributeSet& attributes, Content& content);
  void addReference(const AttributeSet& attributes, Content& content);

  SVGRenderer& renderer_;
  ClippingPathMap clippingPaths_;
  NameMap<Source> sources_;  // of every clip path
  size_t referencedBytes_ = 0;
};

/// The matrix of a "use": its "transform", then its "x" and "y". Null when there is none of them.
std::shared_ptr<Transform> parsePlacement(const AttributeSet& attributes,
                                          const LengthContext& lengths, SVGRenderer& renderer);

}  // namespace SVGNative
