#pragma once

#include <cstdint>
#include <optional>
#include <unordered_set>

#include "svg/draw/SVGRenderer.h"
#include "svg/tree/SVGDocument.h"
#include "svg/tree/SVGElement.h"
#include "svg/tree/SVGPaintResolver.h"

namespace SVGNative {

/// Draws elements and what is in them, in document order. References are followed, but never into
/// themselves, and only as far as limits::kMaxSvgReferences and kMaxSvgReferencedWork go: what
/// lies beyond is left out.
class SVGTreeWalker : private ElementVisitor {
 public:
  SVGTreeWalker(SVGRenderer& renderer, const ElementMap& elements, const ColorMap& colors)
      : renderer_(renderer), elements_(elements), resolver_(renderer, colors) {}

  /// Draws the element as if it stood in an otherwise empty document.
  void TraverseTree(const Element& element);

 private:
  void walk(const Element& element);
  void walkChildren(const Group& group);
  void Visit(const Group& group) override;
  void Visit(const Graphic& graphic) override;
  void Visit(const Image& image) override;
  void Visit(const Reference& reference) override;
  bool spendWork(size_t work);

  SVGRenderer& renderer_;
  const ElementMap& elements_;
  PaintResolver resolver_;
  ComputedStyle style_;                         // at the element being walked
  std::unordered_set<const Element*> visited_;  // references being followed
  const Reference* placing_ = nullptr;          // the reference whose target comes next
  int depth_ = 0;
  int64_t references_ = 0;
  size_t work_ = 0;
};

}  // namespace SVGNative
