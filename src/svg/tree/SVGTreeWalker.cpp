#include "svg/tree/SVGTreeWalker.h"

#include <cassert>
#include <utility>

#include "platform/foundation/Limits.h"

namespace SVGNative {

namespace {

// The viewport of a group, in the size that the reference to it asks for.
Viewport placedViewport(const Viewport& viewport, const Reference* placing) {
  Viewport placed = viewport;
  if (placing == nullptr) return placed;
  placed.frame.width = placing->width.value_or(placed.frame.width);
  placed.frame.height = placing->height.value_or(placed.frame.height);
  return placed;
}

}  // namespace

void SVGTreeWalker::TraverseTree(const Element& element) {
  walk(element);
  assert(visited_.empty());
}

void SVGTreeWalker::walk(const Element& element) {
  if (!element.displayed || depth_ == limits::kMaxSvgDepth) return;
  ++depth_;
  if (element.properties == nullptr) {
    element.Accept(*this);
  } else {
    const ComputedStyle outer = style_;
    style_.apply(*element.properties);
    element.Accept(*this);
    style_ = outer;
  }
  --depth_;
}

// Counts only what references multiply: everything else is bounded by the text.
bool SVGTreeWalker::spendWork(size_t work) {
  if (visited_.empty()) return true;
  work_ += work;
  return work_ <= limits::kMaxSvgReferencedWork;
}

void SVGTreeWalker::walkChildren(const Group& group) {
  for (const std::shared_ptr<const Element>& child : group.children) {
    if (!spendWork(1)) return;
    walk(*child);
  }
}

void SVGTreeWalker::Visit(const Group& group) {
  const Reference* placing = std::exchange(placing_, nullptr);
  renderer_.Save(group.style);
  if (group.viewport == nullptr) {
    walkChildren(group);
  } else if (auto styles = viewportStyles(placedViewport(*group.viewport, placing), renderer_)) {
    styles->content.hasSeveralParts = group.style.hasSeveralParts;
    renderer_.Save(styles->clip);
    renderer_.Save(styles->content);
    walkChildren(group);
    renderer_.Restore();
    renderer_.Restore();
  }
  renderer_.Restore();
}

void SVGTreeWalker::Visit(const Graphic& graphic) {
  placing_ = nullptr;
  if (style_.visibility == Visibility::hidden || !spendWork(graphic.pathBytes)) return;
  const ColorArray currentColor = resolver_.resolveColor(style_.color, kOpaqueBlack);
  FillStyleImpl fill = style_.fill;
  if (fill.hasFill) {
    fill.hasFill = resolver_.resolvePaint(fill.paint, currentColor, *graphic.path);
  }
  StrokeStyleImpl stroke = style_.stroke;
  if (stroke.hasStroke) {
    // A line without width is not drawn at all, rather than as thin as possible.
    stroke.hasStroke = stroke.lineWidth > 0.0f &&
                       resolver_.resolvePaint(stroke.paint, currentColor, *graphic.path);
  }
  if (fill.hasFill || stroke.hasStroke) {
    renderer_.DrawPath(*graphic.path, graphic.style, fill, stroke);
  }
}

void SVGTreeWalker::Visit(const Image& image) {
  placing_ = nullptr;
  if (style_.visibility == Visibility::hidden) return;
  renderer_.DrawImage(*image.image, image.style, image.clipArea, image.fillArea);
}

void SVGTreeWalker::Visit(const Reference& reference) {
  placing_ = nullptr;
  const auto target = elements_.find(reference.target);
  if (target == elements_.end() || ++references_ > limits::kMaxSvgReferences) return;
  if (!visited_.insert(&reference).second) return;
  renderer_.Save(reference.style);
  placing_ = &reference;
  walk(reference.content != nullptr ? *reference.content : *target->second);
  placing_ = nullptr;
  renderer_.Restore();
  visited_.erase(&reference);
}

}  // namespace SVGNative
