#include "draw/image/DrawFilter.h"
#include "draw/image/DrawImage.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/NSBitmapImageRep.h"

const NSClass DrawImage::kClass{"DrawImage", &DrawRectangle::kClass, NSAllocate<DrawImage>};
const NSClass DrawImage2::kClass{"DrawImage2", &DrawRoundRectangle::kClass, NSAllocate<DrawImage2>};
const NSClass DrawPDF::kClass{"DrawPDF", &DrawImage2::kClass, NSAllocate<DrawPDF>};
const NSClass DrawSVG::kClass{"DrawSVG", &DrawImage2::kClass, NSAllocate<DrawSVG>};

std::shared_ptr<DrawImage2> DrawImage2::initWithImage(std::shared_ptr<NSBitmapImageRep> image) {
  auto draw = std::make_shared<DrawImage2>();
  draw->initWithBitmap(std::move(image));
  return draw;
}

void DrawImage2::initWithBitmap(std::shared_ptr<NSBitmapImageRep> image) {
  init();
  if (image != nullptr) {
    setBezierPathWithBounds({NSZeroPoint, image->size()});
    setImage(std::move(image));
  }
  bezierPath()->setLineWidth(0);
}

std::shared_ptr<DrawImage2> DrawImage::convertedDraw() const {
  auto draw = DrawImage2::initWithImage(image_);
  draw->copyCommonAttributesFrom(*this);
  return draw;
}

std::shared_ptr<DrawBase> convertedLegacyDraw(const std::shared_ptr<DrawBase>& draw) {
  const bool legacy =
      draw->isMemberOfClass(DrawImage::kClass) || draw->isMemberOfClass(DrawFilter::kClass);
  return legacy ? static_cast<const DrawImage&>(*draw).convertedDraw() : nullptr;
}
