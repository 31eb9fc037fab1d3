// Composition of a document's draws into its two bitmaps.
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/NSBezierPath.h"
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/NSColor.h"
#include "platform/graphics/NSGraphicsContext.h"

std::shared_ptr<NSBitmapImageRep> PaintManager::fullImage() {
  if (image_ == nullptr || imageBuffer_ == nullptr || _imageRefreshControl != kImagesCurrent) {
    refreshImage();
  }
  return image_;
}

void PaintManager::refreshImage() {
  const bool newBuffer = imageBuffer_ == nullptr;
  if (newBuffer) InitImageRep(size_, &imageBuffer_);
  if (image_ == nullptr) InitImageRep(size_, &image_);
  if (imageBuffer_ == nullptr || image_ == nullptr) return clearMemeryBuffer();
  // Needed twice, so it is held: the draw itself does not keep what it decodes.
  const bool masked = drawBackground_ != nullptr && bMaskWithBackground_;
  const auto mask = masked ? drawBackground_->image() : nullptr;
  if (newBuffer || _imageRefreshControl == kRebuildBuffer) rebuildBuffer();
  composeFullImage(mask.get());
  _imageRefreshControl = kImagesCurrent;
}

void PaintManager::rebuildBuffer() {
  const ZTFocusScope focus(imageBuffer_);
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  if (_backgroundColor != nullptr && _backgroundColor->alphaComponent() > 0) {
    context.setCompositingOperation(NSCompositingOperation::copy);
    _backgroundColor->set();
    NSRectFill({NSZeroPoint, size_});
  } else {
    imageBuffer_->clear();
  }
  context.setCompositingOperation(NSCompositingOperation::sourceOver);
  for (size_t i = 0; i + 1 < aryDraw_.size(); ++i) {
    if (aryDraw_[i]->visible()) aryDraw_[i]->drawInImage(imageBuffer_.get());
    if (progressHandler_) progressHandler_(i + 1, aryDraw_.size());
  }
}

void PaintManager::composeFullImage(const NSBitmapImageRep* mask) {
  const ZTFocusScope focus(image_);
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  context.setCompositingOperation(NSCompositingOperation::copy);
  drawInRect(*imageBuffer_, {NSZeroPoint, imageBuffer_->size()});
  context.setCompositingOperation(NSCompositingOperation::sourceOver);
  if (!aryDraw_.empty() && aryDraw_.back()->visible()) aryDraw_.back()->drawInImage(image_.get());
  if (mask != nullptr) applyBackgroundMask(*mask);
}

void PaintManager::applyBackgroundMask(const NSBitmapImageRep& mask) {
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  const NSRect bounds = drawBackground_->controlBoundsBeforeRotation();
  context.setCompositingOperation(NSCompositingOperation::destinationIn);
  drawInRect(mask, bounds);
  // That changes its rectangle only; what lies around it is covered by no pixel of the mask.
  const NSRect canvas{NSZeroPoint, size_};
  const NSRect covered = NSIntersectionRect(canvas, bounds);
  if (covered == canvas) return;
  const auto around = NSBezierPath::bezierPathWithRect(canvas);
  around->appendBezierPathWithRect(covered);
  around->setWindingRule(WindingRule::evenOdd);
  context.setCompositingOperation(NSCompositingOperation::clear);
  around->fill();
}
