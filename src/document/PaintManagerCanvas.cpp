// New documents, and documents in another size.
#include <cmath>
#include <optional>

#include "document/PaintManager.h"
#include "draw/image/DrawSVG.h"
#include "platform/foundation/Limits.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/bitmap/NSImage.h"

namespace {

/// The size in whole pixels; nothing when a canvas cannot have it.
std::optional<NSSize> canvasSize(NSSize size) {
  const NSSize whole{std::trunc(size.width), std::trunc(size.height)};
  const bool fits = whole.width >= 1 && whole.height >= 1 &&
                    whole.width * whole.height <= static_cast<CGFloat>(limits::kMaxCanvasPixels);
  return fits ? std::optional(whole) : std::nullopt;
}

bool touch(const NSRect& a, const NSRect& b) {
  return NSMinX(a) < NSMaxX(b) && NSMinX(b) < NSMaxX(a) && NSMinY(a) < NSMaxY(b) &&
         NSMinY(b) < NSMaxY(a);
}

}  // namespace

std::shared_ptr<PaintManager> PaintManager::initWithSize(NSSize size) {
  const auto whole = canvasSize(size);
  if (!whole) return nullptr;
  auto document = std::make_shared<PaintManager>();
  document->setSize(*whole);
  return document;
}

std::shared_ptr<PaintManager> PaintManager::initWithImageRep(
    const std::shared_ptr<NSBitmapImageRep>& image) {
  auto document = image != nullptr ? initWithSize(image->size()) : nullptr;
  if (document != nullptr) document->setBackgroundImage(image);
  return document;
}

std::shared_ptr<PaintManager> PaintManager::initWithImage(const std::shared_ptr<NSImage>& image) {
  return image != nullptr ? initWithImageRep(image->representation()) : nullptr;
}

std::shared_ptr<PaintManager> PaintManager::initWithSVG(const std::shared_ptr<NSData>& data) {
  return initWithBackgroundDraw(DrawSVG::drawWithSVGData(data));
}

std::shared_ptr<PaintManager> PaintManager::initWithBackgroundDraw(
    const std::shared_ptr<DrawImage2>& draw) {
  if (draw == nullptr) return nullptr;
  const NSRect bounds = draw->pathBounds();
  auto document = initWithSize({std::round(NSWidth(bounds)), std::round(NSHeight(bounds))});
  if (document == nullptr) return nullptr;
  draw->moveByX(-NSMinX(bounds), -NSMinY(bounds));
  document->setBackgroundDraw(draw);
  return document;
}

void PaintManager::setBackgroundImage(const std::shared_ptr<NSBitmapImageRep>& image) {
  if (image == nullptr) return setBackgroundDraw(nullptr);
  const auto own = image->copy();
  if (drawBackground_ == nullptr) return setBackgroundDraw(DrawImage2::initWithImage(own));
  drawBackground_->setImage(own);
  drawBackground_->setBezierPathWithBounds({NSZeroPoint, image->size()});
  const std::shared_ptr<DrawBase> changed = drawBackground_;
  respondToChangeOfDraws({&changed, 1});
}

DrawArray PaintManager::drawsInRect(const NSRect& rect) const {
  DrawArray found;
  for (const auto& draw : aryDraw_) {
    if (draw->visible() && touch(draw->drawRect(), rect)) found.push_back(draw);
  }
  return found;
}

bool PaintManager::cropWithRect(const NSRect& rect) {
  const auto size = canvasSize(rect.size);
  if (!size || !std::isfinite(NSMinX(rect)) || !std::isfinite(NSMinY(rect))) return false;
  for (const auto& draw : aryDraw_) draw->moveByX(-NSMinX(rect), -NSMinY(rect));
  setSize(*size);
  return true;
}

bool PaintManager::resizeToSize(NSSize size, ResampleLayer resampleLayer, NSPoint anchorPoint) {
  const auto whole = canvasSize(size);
  if (!whole || !std::isfinite(anchorPoint.x) || !std::isfinite(anchorPoint.y)) return false;
  const NSSize old = size_;
  setSize(*whole);
  for (const auto& draw : aryDraw_) {
    if (resampleLayer == ResampleLayer::yes) {
      // A canvas without area has nothing that could be scaled.
      if (old.width <= 0 || old.height <= 0) break;
      draw->scaleByX(whole->width / old.width, whole->height / old.height, NSZeroPoint,
                     ResizeLineWidth::yes);
    } else {
      draw->moveByX((whole->width - old.width) * anchorPoint.x,
                    (whole->height - old.height) * anchorPoint.y);
    }
  }
  return true;
}

std::shared_ptr<PaintManager> PaintManager::scaledPaintWithSize(NSSize size,
                                                                ScaleDrawing scaleDrawing) const {
  const auto whole = canvasSize(size);
  if (!whole) return nullptr;
  try {
    // Reading back what would be saved shares nothing with this document.
    auto copy = paintMgrWithPaintData(paintDataWithResolution(0), nullptr, nullptr);
    if (copy == nullptr) return nullptr;
    const auto resample =
        scaleDrawing == ScaleDrawing::yes ? ResampleLayer::yes : ResampleLayer::no;
    // Scaled or not, the lower left corner stays where it is.
    copy->resizeToSize(*whole, resample, NSZeroPoint);
    return copy;
  } catch (const NSException&) {
    return nullptr;
  }
}
