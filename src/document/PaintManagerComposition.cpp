// Composition of a document's draws into its two bitmaps.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "document/PaintManager.h"
#include "draw/core/DrawPainting.h"
#include "draw/image/DrawImage2.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/path/NSBezierPath.h"
#include "platform/graphics/record/DrawingRecord.h"

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

/// The device pixels that show any of a part of a canvas at a scale; empty where there are none,
/// and for what is not a number.
PixelBox shownPixels(const NSRect& part, NSSize canvas, CGFloat scale) {
  constexpr CGFloat kFarthest = 1 << 30;
  const NSRect shared = NSIntersectionRect(part, {NSZeroPoint, canvas});
  const bool isScale = scale >= PaintManager::kSmallestScale &&
                       scale * std::max(canvas.width, canvas.height) <= kFarthest;
  if (!isScale || NSIsEmptyRect(shared)) return {};
  constexpr CGFloat kNoise = CanvasGrid::kNoise;
  const auto down = [&](CGFloat v) { return static_cast<int32_t>(std::floor(v * scale + kNoise)); };
  const auto up = [&](CGFloat v) { return static_cast<int32_t>(std::ceil(v * scale - kNoise)); };
  return {down(NSMinX(shared)), down(canvas.height - NSMaxY(shared)), up(NSMaxX(shared)),
          up(canvas.height - NSMinY(shared))};
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> PaintManager::fullImage() {
  if (image_ == nullptr || imageBuffer_ == nullptr || _imageRefreshControl != kImagesCurrent) {
    refreshImage();
  }
  return image_;
}

std::shared_ptr<NSBitmapImageRep> PaintManager::composedImage(CGFloat scale) {
  return composedImage({NSZeroPoint, size_}, scale);
}

std::shared_ptr<NSBitmapImageRep> PaintManager::composedImage(const NSRect& part, CGFloat scale) {
  const PixelBox shown = shownPixels(part, size_, scale);
  if (shown.empty()) return nullptr;
  auto image = NSBitmapImageRep::create(shown.width(), shown.height());
  if (image == nullptr) return nullptr;
  const PictureSessionScope session(pictures_);
  pictures_.begin();
  const ZTFocusScope focus(image, viewOf(shown, scale));
  const auto mask = backgroundMask();
  paintDraws(image.get(), aryDraw_.size());
  if (mask != nullptr) applyBackgroundMask(*mask);
  return image;
}

std::shared_ptr<const DrawingRecord> PaintManager::recordedDrawing() {
  auto record = std::make_shared<DrawingRecord>(size_);
  const PictureSessionScope session(pictures_);
  pictures_.begin();
  const ZTFocusScope focus(record, size_);
  const auto mask = backgroundMask();
  // Some draws ask whether they paint into the bitmap of the document.
  const auto none = NSBitmapImageRep::create(1, 1);
  paintDraws(none.get(), aryDraw_.size());
  if (mask != nullptr) applyBackgroundMask(*mask);
  return record;
}

PictureFailure PaintManager::pictureFailure(DrawBase& draw) {
  const PictureSessionScope session(pictures_);
  return draw.pictureFailure();
}

PictureFacts PaintManager::pictureFacts(DrawBase& draw) {
  const PictureSessionScope session(pictures_);
  return draw.pictureFacts();
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
    if (aryDraw_[i]->visible()) paintDraw(*aryDraw_[i], bitmap);
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
    const ZTFocusScope focus(painted, viewOf(shownPixels(part, size_, 1), 1));
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

CanvasView PaintManager::viewOf(const PixelBox& shown, CGFloat scale) const {
  CanvasView view{size_, scale};
  view.x = shown.x0;
  view.y = shown.y0;
  view.fillsLastPixels = scale != 1;
  return view;
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
