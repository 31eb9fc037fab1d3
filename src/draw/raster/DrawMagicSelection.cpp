#include "draw/raster/DrawSelections.h"
#include "draw/raster/ImageFill.h"
#include "draw/raster/ImageMask.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"

const NSClass DrawMagicSelection::kClass{"DrawMagicSelection", &DrawBase::kClass,
                                         NSAllocate<DrawMagicSelection>};

std::shared_ptr<DrawMagicSelection> DrawMagicSelection::initWithPoint(
    NSPoint point, uint32_t tolerance, const NSBitmapImageRep& fullImage) {
  auto fill = ImageFill::initWithImage(fullImage.copy(), point);
  if (fill == nullptr) return nullptr;
  fill->setFillColor(NSColor::blackColor().get());
  fill->fillWithTolerance(tolerance);
  auto selection = std::make_shared<DrawMagicSelection>();
  selection->init();
  selection->fill_ = std::move(fill);
  return selection;
}

std::shared_ptr<ImageMask> DrawMagicSelection::imageMaskForSelection() const {
  if (fill_ == nullptr) return nullptr;
  return _isInverted ? fill_->invertedImageMask() : fill_->imageMask();
}
