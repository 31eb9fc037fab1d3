// Composition of a document's draws into its two bitmaps.
#include <cstring>

#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

/// Copies the pixels in a rectangle of whole units, which lies inside both bitmaps.
void copyPart(const NSBitmapImageRep& from, const NSRect& part, NSBitmapImageRep& to) {
  const auto x = static_cast<size_t>(NSMinX(part)), width = static_cast<size_t>(NSWidth(part));
  const int64_t first = from.pixelsHigh() - static_cast<int64_t>(NSMaxY(part));
  const int64_t end = from.pixelsHigh() - static_cast<int64_t>(NSMinY(part));
  uint8_t* row = to.writableRows(first, end) + x * 4;
  for (int64_t y = first; y < end; ++y, row += to.bytesPerRow()) {
    std::memcpy(row, from.row(y) + x * 4, width * 4);
  }
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> PaintManager::fullImage() {
  if (image_ == nullptr || imageBuffer_ == nullptr || _imageRefreshControl != kImagesCurrent) {
    refreshImage();
  }
  return image_;
}

std::shared_ptr<NSBitmapImageRep> PaintManager::composedImage() {
  std::shared_ptr<NSBitmapImageRep> image;
  if (!InitImageRep(size_, &image)) return nullptr;
  const PictureSessionScope session(pictures_);
  pictures_.begin();
  const auto mask = backgroundMask();
  const ZTFocusScope focus(image);
  paintDraws(image.get(), aryDraw_.size());
  if (mask != nullptr) applyBackgroundMask(*mask);
  return image;
}

PictureFailure PaintManager::pictureFailure(DrawBase& draw) {
  const PictureSessionScope session(pictures_);
  return draw.pictureFailure();
}

std::shared_ptr<const NSBitmapImageRep> PaintManager::backgroundMask() const {
  return drawBackground_ != nullptr && bMaskWithBackground_ ? drawBackground_->image() : nullptr;
}

void PaintManager::refreshImage() {
  if (image_ == nullptr && !InitImageRep(size_, &image_)) return clearMemeryBuffer();
  const PictureSessionScope session(pictures_);
  pictures_.begin();
  const bool newBuffer = imageBuffer_ == nullptr;
  if (newBuffer) InitImageRep(size_, &imageBuffer_);
  // Needed twice, so it is held: the draw itself does not keep what it decodes.
  const auto mask = backgroundMask();
  if (newBuffer || _imageRefreshControl == kRebuildBuffer) rebuildBuffer();
  composeFullImage(mask.get());
  _imageRefreshControl = kImagesCurrent;
}

void PaintManager::paintBackgroundColor(const NSRect& rect) const {
  if (_backgroundColor == nullptr || !(_backgroundColor->alphaComponent() > 0)) return;
  _backgroundColor->set();
  NSRectFillUsingOperation(rect, NSCompositingOperation::copy);
}

void PaintManager::rebuildBuffer() {
  const auto stale = areas_.takeStaleRects(aryDraw_);
  if (stale && repaintBuffer(*stale)) return;
  const ZTFocusScope focus(imageBuffer_);
  imageBuffer_->clear();
  paintDraws(imageBuffer_.get(), aryDraw_.empty() ? 0 : aryDraw_.size() - 1);
  areas_.didPaintAll(aryDraw_);
}

void PaintManager::paintDraws(NSBitmapImageRep* bitmap, size_t count) const {
  paintBackgroundColor({NSZeroPoint, size_});
  NSGraphicsContext::currentContext()->setCompositingOperation(NSCompositingOperation::sourceOver);
  for (size_t i = 0; i < count; ++i) {
    if (aryDraw_[i]->visible()) aryDraw_[i]->drawInImage(bitmap);
    if (progressHandler_) progressHandler_(i + 1, aryDraw_.size());
  }
}

bool PaintManager::repaintBuffer(std::vector<NSRect> parts) {
  CGFloat pixels = 0;
  for (NSRect& part : parts) {
    part = NSIntersectionRect(part, {NSZeroPoint, size_});
    pixels += NSWidth(part) * NSHeight(part);
  }
  std::erase_if(parts, [](const NSRect& part) { return NSIsEmptyRect(part); });
  if (parts.empty()) return true;
  if (pixels > size_.width * size_.height / 2) return false;
  // Draws are painted whole on a canvas of their own, as clipping them would round their edges
  // differently.
  std::shared_ptr<NSBitmapImageRep> canvas;
  if (!InitImageRep(size_, &canvas)) return false;
  {
    const ZTFocusScope focus(canvas);
    for (const NSRect& part : parts) paintBackgroundColor(part);
    NSGraphicsContext::currentContext()->setCompositingOperation(
        NSCompositingOperation::sourceOver);
    for (size_t i = 0; i + 1 < aryDraw_.size(); ++i) {
      const bool paints = aryDraw_[i]->visible() && areas_.touches(i, parts);
      if (paints) aryDraw_[i]->drawInImage(canvas.get());
    }
  }
  for (const NSRect& part : parts) copyPart(*canvas, part, *imageBuffer_);
  return true;
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
