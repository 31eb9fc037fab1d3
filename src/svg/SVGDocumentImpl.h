#pragma once

#include <memory>
#include <string_view>

#include "svg/SVGStringParser.h"
#include "svg/draw/SVGRenderer.h"
#include "svg/parse/SVGViewport.h"
#include "svg/parse/SVGXMLDocument.h"
#include "svg/tree/SVGDocument.h"
#include "svg/tree/SVGElement.h"

namespace SVGNative {

/// The tree of elements behind an SVGDocument.
class SVGDocumentImpl {
 public:
  explicit SVGDocumentImpl(std::shared_ptr<SVGRenderer> renderer);

  /// Builds the tree; keeps nothing of the XML. A root that is not "svg" leaves it empty. Throws
  /// what ParseColor throws.
  void TraverseSVGTree(xml::XMLNode root);

  int Width() const;
  int Height() const;
  float NaturalWidth() const { return frame_.width; }
  float NaturalHeight() const { return frame_.height; }
  const std::shared_ptr<SVGRenderer>& Renderer() const { return renderer_; }

  void Render(const ColorMap& colors, float width, float height) const;
  /// Draws one element as a reference to it would, without what its parents say.
  void Render(std::string_view id, const ColorMap& colors, float width, float height) const;
  bool GetBoundingBox(Rect& bounds) const;
  bool GetBoundingBox(std::string_view id, Rect& bounds) const;

 private:
  void UpdateViewBox(const ViewBox& box) { viewBox_ = box; }
  /// What the view box is laid into when the picture is asked for in a size.
  ViewBox frameFor(float width, float height) const;
  void RenderElement(const Element& element, const ColorMap& colors, float width,
                     float height) const;

  std::shared_ptr<SVGRenderer> renderer_;
  ViewBox viewBox_;
  ViewBox frame_;  ///< x, y, width and height of the root
  AspectRatio ratio_;
  ElementMemory memory_;
  std::shared_ptr<const Group> root_;
  ElementMap elements_;
};

}  // namespace SVGNative
