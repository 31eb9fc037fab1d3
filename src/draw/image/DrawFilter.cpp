#include "draw/image/DrawFilter.h"

#include "draw/image/DrawFilter2.h"
#include "platform/foundation/collections/NSDictionary.h"

const NSClass DrawFilter::kClass{"DrawFilter", &DrawImage::kClass, NSAllocate<DrawFilter>};

std::shared_ptr<DrawImage2> DrawFilter::convertedDraw() const {
  auto draw = std::make_shared<DrawFilter2>();
  draw->init();
  convertInto(*draw);
  draw->setFilterMembers(*this);
  return draw;
}

void DrawFilter::setImage(std::shared_ptr<NSBitmapImageRep> image) {
  DrawImage::setImage(std::move(image));
  dropEffect();
}

std::shared_ptr<NSBitmapImageRep> DrawFilter::imageForDrawing() {
  return effectOf(image(), pathBounds().size,
                  keepsImage() ? KeepEffect::always : KeepEffect::whileUsed);
}

std::shared_ptr<NSDictionary> DrawFilter::drawAttributes() const {
  auto attributes = std::make_shared<NSMutableDictionary>(*DrawImage::drawAttributes());
  putFilterAttributes(*attributes);
  return attributes;
}

bool DrawFilter::setDrawAttributes(const NSDictionary& attributes) {
  if (!canSetDrawAttributes(&attributes)) return false;
  const bool applied = DrawImage::setDrawAttributes(attributes);
  return applyFilterAttributes(attributes) || applied;
}

bool DrawFilter::initWithCoder(NSCoder& coder) {
  if (!DrawImage::initWithCoder(coder)) return false;
  decodeFilter(coder);
  return true;
}

void DrawFilter::encodeWithCoder(NSCoder& coder) const {
  DrawImage::encodeWithCoder(coder);
  encodeFilter(coder);
}
