#include "draw/image/DrawImage.h"

#include <algorithm>

#include "draw/image/DrawFilter.h"
#include "draw/image/DrawImage2.h"
#include "draw/image/PictureDrawing.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"

const NSClass DrawImage::kClass{"DrawImage", &DrawRectangle::kClass, NSAllocate<DrawImage>};

namespace {

constexpr const char* kImage = "Image";
constexpr const char* kOpacity = "Opacity";

}  // namespace

CGFloat DrawImage::width2HeightRatioForShift() const {
  if (image_ == nullptr || image_->pixelsHigh() == 0) return 1;
  return image_->size().width / image_->size().height;
}

float DrawImage::percent() const {
  // A fraction that is not a number counts as 0.
  return std::min(std::max(0.0F, fImageOpacity_), 1.0F) * static_cast<float>(opacity());
}

void DrawImage::convertInto(DrawImage2& draw) const {
  draw.copyCommonAttributesFrom(*this);
  if (!(draw.lineWidth() > 0)) draw.setEnableStroke(false);
  draw.setOpacity(static_cast<uint64_t>(percent()));
  if (isImageUnreadable_) draw.setImageUnreadable();
}

PictureFailure DrawImage::pictureFailure() {
  return isImageUnreadable_ && image_ == nullptr ? PictureFailure::unreadable
                                                 : PictureFailure::none;
}

std::shared_ptr<DrawImage2> DrawImage::convertedDraw() const {
  auto draw = DrawImage2::initWithImage(image_);
  convertInto(*draw);
  return draw;
}

void DrawImage::_draw(CastShadow cast) {
  const auto image = bezierPath_ != nullptr ? imageForDrawing() : nullptr;
  if (image == nullptr) return reportLeftOutPicture(*this, pictureFailure());
  const NSGraphicsStateScope state;
  preparePictureContext();
  setShadowInForce(cast);
  NSGraphicsContext::currentContext()->graphicsPort()->concatenate(transform().transformStruct());
  const NSRect bounds = pathBounds();
  snapToPixels(bounds);
  const CGFloat fraction = static_cast<CGFloat>(percent()) / 100;
  drawPicture(*image, bounds, fraction);
  if (enableInnerShadow() && innerShadow() != nullptr) {
    drawPictureInnerShadow(*image, bounds, *bezierPath_, *innerShadow(), fraction);
  }
}

bool DrawImage::initWithCoder(NSCoder& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  setImage(coder.decodeObjectOfClass<NSBitmapImageRep>(kImage));
  isImageUnreadable_ = image_ == nullptr && coder.containsValueForKey(kImage);
  fImageOpacity_ = coder.containsValueForKey(kOpacity) ? coder.decodeFloatForKey(kOpacity) : 1;
  if (bezierPath_ != nullptr) bezierPath_->setLineWidth(0);
  return true;
}

void DrawImage::encodeWithCoder(NSCoder& coder) const {
  DrawRectangle::encodeWithCoder(coder);
  coder.encodeObject(image_, kImage);
  coder.encodeFloat(fImageOpacity_, kOpacity);
}

std::shared_ptr<DrawBase> convertedLegacyDraw(const std::shared_ptr<DrawBase>& draw) {
  const bool legacy =
      draw->isMemberOfClass(DrawImage::kClass) || draw->isMemberOfClass(DrawFilter::kClass);
  return legacy ? static_cast<const DrawImage&>(*draw).convertedDraw() : nullptr;
}
