#include "svg/SVGDocumentImpl.h"

#include <algorithm>
#include <utility>

#include "svg/parse/SVGAttributes.h"
#include "svg/parse/SVGLength.h"
#include "svg/tree/SVGDocumentParser.h"
#include "svg/tree/SVGTreeWalker.h"

namespace SVGNative {

namespace {

// Fractions are dropped; sizes that no bitmap can have stay far above what bitmaps can have.
int wholeUnits(float size) {
  constexpr float kMost = 1e9f;
  return static_cast<int>(std::clamp(size, -kMost, kMost));
}

}  // namespace

SVGDocumentImpl::SVGDocumentImpl(std::shared_ptr<SVGRenderer> renderer)
    : renderer_(std::move(renderer)), root_(memory_.makeShared<Group>()) {}

int SVGDocumentImpl::Width() const {
  return wholeUnits(frame_.width);
}

int SVGDocumentImpl::Height() const {
  return wholeUnits(frame_.height);
}

void SVGDocumentImpl::TraverseSVGTree(xml::XMLNode root) {
  if (root.Name() != "svg") return;
  const AttributeSet attributes(root);
  const std::optional<ViewBox> box = parseViewBox(attributes);
  if (box) {
    UpdateViewBox(*box);
    frame_.width = box->width;
    frame_.height = box->height;
  }
  frame_ = parseFrame(attributes, LengthContext(viewBox_), frame_);
  if (!box) UpdateViewBox({0.0f, 0.0f, frame_.width, frame_.height});
  ratio_ = parseAspectRatio(attributes.text(Attribute::preserveAspectRatio));
  SVGDocumentParser parser(*renderer_, memory_, elements_, LengthContext(viewBox_));
  root_ = parser.ParseRoot(root, attributes);
}

void SVGDocumentImpl::Render(const ColorMap& colors, float width, float height) const {
  RenderElement(*root_, colors, width, height);
}

void SVGDocumentImpl::Render(std::string_view id, const ColorMap& colors, float width,
                             float height) const {
  const auto found = elements_.find(id);
  if (found != elements_.end()) RenderElement(*found->second, colors, width, height);
}

// The exact natural size for the whole one, which it is then stretched to: laid into the whole one
// at once, the picture would keep its proportions and leave margins.
ViewBox SVGDocumentImpl::frameFor(float width, float height) const {
  const bool isNatural = width > 0.0f && height > 0.0f && width == static_cast<float>(Width()) &&
                         height == static_cast<float>(Height());
  return isNatural ? ViewBox{0.0f, 0.0f, frame_.width, frame_.height}
                   : ViewBox{0.0f, 0.0f, width, height};
}

void SVGDocumentImpl::RenderElement(const Element& element, const ColorMap& colors, float width,
                                    float height) const {
  const ViewBox frame = frameFor(width, height);
  std::optional<ViewportStyles> styles = viewportStyles({frame, viewBox_, ratio_}, *renderer_);
  if (!styles) return;
  if (frame.width != width || frame.height != height) {
    const std::shared_ptr<Transform> stretching = renderer_->CreateTransform();
    stretching->Scale(width / frame.width, height / frame.height);
    styles->clip.transform = stretching;
  }
  renderer_->Save(styles->clip);
  renderer_->Save(styles->content);
  SVGTreeWalker(*renderer_, elements_, colors).TraverseTree(element);
  renderer_->Restore();
  renderer_->Restore();
}

bool SVGDocumentImpl::GetBoundingBox(Rect& bounds) const {
  bounds = renderer_->GetBounds([this] { Render({}, NaturalWidth(), NaturalHeight()); });
  return !bounds.IsEmpty();
}

bool SVGDocumentImpl::GetBoundingBox(std::string_view id, Rect& bounds) const {
  bounds = renderer_->GetBounds([&] { Render(id, {}, NaturalWidth(), NaturalHeight()); });
  return !bounds.IsEmpty();
}

}  // namespace SVGNative
