// Composition of a document's draws into its two bitmaps.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

/// Copies a bitmap into another one, its lower left corner to a whole position.
void copyInto(const NSBitmapImageRep& part, NSPoint at, NSBitmapImageRep& whole) {
  const auto x = static_cast<size_t>(at.x);
  const int64_t top = whole.pixelsHigh() - static_cast<int64_t>(at.y) - part.pixelsHigh();
  uint8_t* row = whole.writableRows(top, top + part.pixelsHigh()) + x * 4;
  for (int64_t y = 0; y < part.pixelsHigh(); ++y, row += whole.bytesPerRow()) {
    std::memcpy(row, part.row(y), part.bytesPerRow());
  }
}

/// The pixels of a canvas that a rectangle touches; the zero rectangle for none, and for one that
/// is not a number.
NSRect wholePixelsOf(const NSRect& rect, NSSize canvas) {
  const CGFloat x0 = std::max(0.0, std::floor(NSMinX(rect)));
  const CGFloat y0 = std::max(0.0, std::floor(NSMinY(rect)));
  const CGFloat x1 = std::min(canvas.width, std::ceil(NSMaxX(rect)));
  const CGFloat y1 = std::min(canvas.height, std::ceil(NSMaxY(rect)));
  const bool isSomething = NSMinX(rect) < x1 && NSMinY(rect) < y1 && x0 < x1 && y0 < y1;
  return isSomething ? NSMakeRect(x0, y0, x1 - x0, y1 - y0) : NSZeroRect;
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> PaintManager::fullImage() {
  if (image_ == nullptr || imageBuffer_ == nullptr || _imageRefreshControl != kImagesCurrent) {
    refreshImage();
  }
  return image_;
}

std::shared_ptr<NSBitmapImageRep> PaintManager::composedImage() {
  return composedPart({NSZeroPoint, size_});
}

std::shared_ptr<NSBitmapImageRep> PaintManager::composedImage(const NSRect& part) {
  const NSRect shown = wholePixelsOf(part, size_);
  return NSIsEmptyRect(shown) ? nullptr : composedPart(shown);
}

std::shared_ptr<NSBitmapImageRep> PaintManager::composedPart(const NSRect& part) {
  std::shared_ptr<NSBitmapImageRep> image;
  if (!InitImageRep(part.size, &image)) return nullptr;
  const PictureSessionScope session(pictures_);
  pictures_.begin();
  const auto mask = backgroundMask();
  const ZTFocusScope focus = focusOnPart(image, part);
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
  for (const NSRect& part : parts) {
    if (!repaintPart(part)) return false;
  }
  return true;
}

bool PaintManager::repaintPart(const NSRect& part) {
  std::shared_ptr<NSBitmapImageRep> painted;
  if (!InitImageRep(part.size, &painted)) return false;
  {
    const ZTFocusScope focus = focusOnPart(painted, part);
    paintBackgroundColor(part);
    NSGraphicsContext::currentContext()->setCompositingOperation(
        NSCompositingOperation::sourceOver);
    for (size_t i = 0; i + 1 < aryDraw_.size(); ++i) {
      const bool paints = aryDraw_[i]->visible() && areas_.touches(i, {&part, 1});
      if (paints) aryDraw_[i]->drawInImage(painted.get());
    }
  }
  copyInto(*painted, part.origin, *imageBuffer_);
  return true;
}

ZTFocusScope PaintManager::focusOnPart(const std::shared_ptr<NSBitmapImageRep>& bitmap,
                                       const NSRect& part) const {
  return {bitmap, static_cast<int32_t>(NSMinX(part)),
          static_cast<int32_t>(size_.height - NSMaxY(part)), static_cast<int64_t>(size_.height)};
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
