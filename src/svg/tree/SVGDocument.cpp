#include "svg/tree/SVGDocument.h"

#include <new>
#include <utility>

#include "platform/foundation/Limits.h"
#include "svg/SVGDocumentImpl.h"
#include "svg/parse/SVGXMLDocument.h"

namespace SVGNative {

SVGDocument::SVGDocument(std::unique_ptr<SVGDocumentImpl> impl) : impl_(std::move(impl)) {}

SVGDocument::~SVGDocument() = default;

std::unique_ptr<SVGDocument> SVGDocument::CreateSVGDocument(const std::string& text,
                                                            std::shared_ptr<SVGRenderer> renderer) {
  if (renderer == nullptr || text.size() > limits::kMaxSvgBytes) return nullptr;
  try {
    const std::unique_ptr<xml::XMLDocument> xml = xml::XMLDocument::CreateXMLDocument(text.c_str());
    if (xml == nullptr) return nullptr;
    auto impl = std::make_unique<SVGDocumentImpl>(std::move(renderer));
    impl->TraverseSVGTree(xml->Root());
    return std::unique_ptr<SVGDocument>(new SVGDocument(std::move(impl)));
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return nullptr;
  }
}

int SVGDocument::Width() const {
  return impl_->Width();
}

int SVGDocument::Height() const {
  return impl_->Height();
}

const std::shared_ptr<SVGRenderer>& SVGDocument::Renderer() const {
  return impl_->Renderer();
}

void SVGDocument::Render() const {
  Render(ColorMap{});
}

void SVGDocument::Render(float width, float height) const {
  impl_->Render({}, width, height);
}

void SVGDocument::Render(const ColorMap& colors) const {
  impl_->Render(colors, impl_->NaturalWidth(), impl_->NaturalHeight());
}

void SVGDocument::Render(const ColorMap& colors, float width, float height) const {
  impl_->Render(colors, width, height);
}

void SVGDocument::Render(std::string_view id) const {
  Render(id, ColorMap{});
}

void SVGDocument::Render(std::string_view id, float width, float height) const {
  impl_->Render(id, {}, width, height);
}

void SVGDocument::Render(std::string_view id, const ColorMap& colors) const {
  impl_->Render(id, colors, impl_->NaturalWidth(), impl_->NaturalHeight());
}

void SVGDocument::Render(std::string_view id, const ColorMap& colors, float width,
                         float height) const {
  impl_->Render(id, colors, width, height);
}

bool SVGDocument::GetBoundingBox(Rect& bounds) const {
  return impl_->GetBoundingBox(bounds);
}

bool SVGDocument::GetBoundingBox(std::string_view id, Rect& bounds) const {
  return impl_->GetBoundingBox(id, bounds);
}

}  // namespace SVGNative
