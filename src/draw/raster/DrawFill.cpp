#include "draw/raster/DrawFill.h"

#include <cmath>
#include <utility>

#include "draw/core/ZTBezierPathExtension.h"
#include "draw/raster/ImageMask.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"

const NSClass DrawFill::kClass{"DrawFill", &DrawBase::kClass, NSAllocate<DrawFill>};
const NSClass DrawClear::kClass{"DrawClear", &DrawBase::kClass, NSAllocate<DrawClear>};

namespace {

constexpr const char* kFillType = "FillType";
constexpr const char* kMask = "Mask";

/// A mask in a colour.
class MaskPicture final : public BitmapSource {
 public:
  MaskPicture(std::shared_ptr<const ImageMask> mask, std::shared_ptr<const NSColor> color)
      : mask_(std::move(mask)), color_(std::move(color)) {}
  std::shared_ptr<NSBitmapImageRep> bitmap(CGFloat) const override {
    return mask_->renderImageWithColor(color_.get());
  }

 private:
  std::shared_ptr<const ImageMask> mask_;
  std::shared_ptr<const NSColor> color_;
};

NSSize sizeDifference(const NSRect& a, const NSRect& b) {
  return {std::fabs(NSWidth(a) - NSWidth(b)), std::fabs(NSHeight(a) - NSHeight(b))};
}

/// Where a mask is drawn that is not as large as its path.
NSPoint drawnOrigin(const NSRect& path) {
  return {std::trunc(path.origin.x + 0.5), std::trunc(path.origin.y + 0.5)};
}

}  // namespace

std::shared_ptr<DrawFill> DrawFill::initWithImageMask(std::shared_ptr<ImageMask> mask) {
  if (mask == nullptr) return nullptr;
  auto draw = std::make_shared<DrawFill>();
  draw->init();
  draw->mask_ = std::move(mask);
  draw->resetPathTo(draw->mask_->maskRect());
  draw->useRectangleOfFullMask();
  draw->setPathStyle();
  draw->bezierPath_->setLineWidth(1);
  return draw;
}

std::shared_ptr<DrawFill> DrawFill::initWithBezierPath(const NSBezierPath& path) {
  auto draw = std::make_shared<DrawFill>();
  draw->init();
  draw->fillType_ = kPathFill;
  draw->setPathStyle();
  draw->bezierPath_->setLineWidth(1);
  if (::isPathClosed(path)) draw->bezierPath_->appendBezierPath(path);
  return draw;
}

void DrawFill::setPathStyle() {
  if (bezierPath_ == nullptr) return;
  bezierPath_->setLineCapStyle(LineCap::square);
  bezierPath_->setLineJoinStyle(LineJoin::miter);
}

void DrawFill::resetPathTo(const NSRect& rect) {
  if (bezierPath_ == nullptr) return;
  bezierPath_->removeAllPoints();
  bezierPath_->appendBezierPathWithRect(rect);
}

void DrawFill::useRectangleOfFullMask() {
  bool isPathOfLines = false;
  const auto path = mask_->bezierPathForFill(&isPathOfLines);
  if (path == nullptr || isPathOfLines) return;
  resetPathTo(mask_->maskRect());
  fillType_ = kPathFill;
  mask_ = nullptr;
}

uint64_t DrawFill::opacity() const {
  return colorFill_ ? static_cast<uint64_t>(colorFill_->alphaComponent() * 100) : 0;
}

void DrawFill::setOpacity(uint64_t percent) {
  if (colorFill_ == nullptr) return;
  const auto alpha = static_cast<CGFloat>(percent > 100 ? 100 : percent) / 100;
  setFillColor(colorFill_->colorWithAlphaComponent(alpha));
}

void DrawFill::moveMaskToPath() {
  if (mask_ == nullptr) return;
  mask_->setMaskStartPoint(pathBounds().origin);
  if (fillType_ != kMaskFill || !readsPathFromMask()) return;
  // Files keep neither another size than the mask's nor, of a turned fill, where it lies within a
  // pixel.
  const NSRect path = pathBounds();
  const NSRect rect = mask_->maskRect();
  const NSSize difference = sizeDifference(path, rect);
  const bool isScaled = difference.width >= 1 || difference.height >= 1;
  if (!isScaled && !isTurned()) return;
  auto scaled = isScaled ? mask_->imageMaskScaledByX(NSWidth(path) / NSWidth(rect),
                                                     NSHeight(path) / NSHeight(rect))
                         : mask_;
  if (scaled == nullptr) return;
  mask_ = std::move(scaled);
  mask_->setMaskStartPoint(drawnOrigin(path));
  resetPathTo(mask_->maskRect());
}

void DrawFill::setRotateDegree(float degrees) {
  DrawBase::setRotateDegree(degrees);
  moveMaskToPath();
}

void DrawFill::setBezierPathWithData(const std::shared_ptr<NSObject>& data) {
  DrawBase::setBezierPathWithData(data);
  moveMaskToPath();
}

void DrawFill::mapGeometry(const AxisMap& map) {
  DrawBase::mapGeometry(map);
  moveMaskToPath();
}

void DrawFill::flip(bool horizontal) {
  const NSPoint center = rotateCenter();
  mapGeometry(horizontal ? AxisMap{-1, 1, 2 * center.x, 0} : AxisMap{1, -1, 0, 2 * center.y});
  // The mirror image of a turn is the turn the other way.
  setRotateDegree(-fRotateDegree_);
  if (mask_ != nullptr) mask_->flip(horizontal);
}

bool DrawFill::isTurned() const {
  return !(std::fabs(fRotateDegree_) < 0.001F);
}

bool DrawFill::canWritePixels(const NSBitmapImageRep* image) const {
  const auto& context = NSGraphicsContext::currentContext();
  if (image == nullptr || isTurned()) return false;
  if (context != nullptr && !context->graphicsPort()->paintsWholeCanvas()) return false;
  const NSSize difference = sizeDifference(pathBounds(), mask_->maskRect());
  return difference.width < 1 && difference.height < 1;
}

void DrawFill::drawInImage(NSBitmapImageRep* image) {
  if (!bVisible_ || !bEnableFill_ || bezierPath_ == nullptr || bezierPath_->isEmpty()) return;
  if (fillType_ == kMaskFill && mask_ != nullptr && canWritePixels(image)) {
    const bool isPainting = NSGraphicsContext::currentContext() != nullptr;
    return isPainting ? mask_->fillCanvas(colorFill_.get())
                      : mask_->fillImage(image, colorFill_.get());
  }
  if (NSGraphicsContext::currentContext() == nullptr) return;
  if (fillType_ == kMaskFill) return _draw(CastShadow::no);
  const NSGraphicsStateScope state;
  NSGraphicsContext::currentContext()->setShouldAntialias(false);
  paintPath();
}

void DrawFill::_draw(CastShadow) {
  if (bezierPath_ == nullptr || bezierPath_->isEmpty()) return;
  const NSGraphicsStateScope state;
  NSGraphicsContext::currentContext()->setShouldAntialias(shouldAntialias());
  if (fillType_ == kMaskFill) {
    paintMask();
  } else {
    paintPath();
  }
}

void DrawFill::paintPath() const {
  if (colorFill_ == nullptr) return;
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  CGContext& port = *context.graphicsPort();
  context.setCompositingOperation(NSCompositingOperation::copy);
  port.concatenate(transform().transformStruct());
  if (fillType_ == kPathFill) {
    colorFill_->setFill();
    bezierPath_->fill();
  } else if (fillType_ == kLineFill) {
    // The lines name pixels by their lower left corners; through the centres they paint just those.
    port.concatenate(CGAffineTransformMakeTranslation(0.5, 0.5));
    colorFill_->setStroke();
    bezierPath_->stroke();
  }
}

void DrawFill::paintMask() const {
  if (mask_ == nullptr || colorFill_ == nullptr) return;
  // Made anew each time: kept, the bitmaps of a document's fills would take more than the canvas.
  const auto image =
      bitmapToDraw(std::make_shared<MaskPicture>(mask_, colorFill_->colorWithAlphaComponent(1)));
  if (image == nullptr) return;
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  CGContext& port = *context.graphicsPort();
  context.setImageInterpolation(NSImageInterpolation::none);
  port.concatenate(transform().transformStruct());
  const NSRect rect = pathBounds();
  const NSPoint origin = drawnOrigin(rect);
  port.concatenate(
      CGAffineTransformMakeTranslation(origin.x - rect.origin.x, origin.y - rect.origin.y));
  port.drawReplacing(*image, rect, colorFill_->alphaComponent());
}

void DrawFill::upgradeDecoded(bool typeIsKnown) {
  if (mask_ == nullptr) return;
  if (!typeIsKnown) return useRectangleOfFullMask();
  if (fillType_ == kLineFill) {
    fillType_ = kMaskFill;
    resetPathTo(mask_->maskRect());
  } else if (fillType_ == kMaskFill) {
    if (readsPathFromMask()) resetPathTo(mask_->maskRect());
  }
}

// What reading makes of the path of a fill that is held in its mask.
bool DrawFill::readsPathFromMask() const {
  // Paths of older records may be off by a line width.
  constexpr CGFloat kNearly = 1.1;
  const NSSize difference = sizeDifference(pathBounds(), mask_->maskRect());
  return !isTurned() || difference.width < kNearly || difference.height < kNearly;
}

bool DrawFill::initWithCoder(NSCoder& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  if (colorStroke_ != nullptr) colorFill_ = colorStroke_;
  mask_ = coder.decodeObjectOfClass<ImageMask>(kMask);
  fillType_ = coder.decodeIntegerForKey(kFillType);
  upgradeDecoded(coder.containsValueForKey(kFillType));
  setPathStyle();
  return true;
}

void DrawFill::encodeWithCoder(NSCoder& coder) const {
  // The fill colour travels as the stroke colour too.
  DrawFill record;
  record.copyCommonAttributesFrom(*this);
  record.colorStroke_ = colorFill_;
  record.DrawBase::encodeWithCoder(coder);
  coder.encodeInteger(fillType_, kFillType);
  if (fillType_ == kMaskFill && mask_ != nullptr) coder.encodeObject(mask_, kMask);
}

void DrawClear::init() {
  DrawBase::init();
  colorStroke_ = NSColor::clearColor();
  colorFill_ = NSColor::clearColor();
  bLocked_ = true;
}

void DrawClear::setStrokeColor(std::shared_ptr<NSColor>) {
  colorStroke_ = NSColor::clearColor();
}
