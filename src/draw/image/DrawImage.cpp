#include "draw/image/DrawImage.h"

#include <algorithm>
#include <utility>

#include "draw/image/DrawFilter.h"
#include "draw/image/DrawImage2.h"
#include "draw/image/PictureDrawing.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/context/NSGraphicsContext.h"

const NSClass DrawImage::kClass{"DrawImage", &DrawRectangle::kClass, NSAllocate<DrawImage>};

namespace {

constexpr const char* kImage = "Image";
constexpr const char* kOpacity = "Opacity";

}  // namespace

std::shared_ptr<NSBitmapImageRep> DrawImage::image() const {
  return image_ == nullptr && encoded_ != nullptr ? encoded_->bitmap() : image_;
}

void DrawImage::setImage(std::shared_ptr<NSBitmapImageRep> image) {
  image_ = std::move(image);
  encoded_ = nullptr;
  failure_ = PictureFailure::none;
}

CGFloat DrawImage::width2HeightRatioForShift() const {
  const auto shown = image();
  return shown == nullptr || shown->pixelsHigh() == 0 ? 1
                                                      : shown->size().width / shown->size().height;
}

float DrawImage::percent() const {
  // A fraction that is not a number counts as 0.
  return std::min(std::max(0.0F, fImageOpacity_), 1.0F) * static_cast<float>(opacity());
}

void DrawImage::convertInto(DrawImage2& draw) const {
  draw.copyCommonAttributesFrom(*this);
  if (!(draw.lineWidth() > 0)) draw.setEnableStroke(false);
  draw.setOpacity(static_cast<uint64_t>(percent()));
  if (image_ != nullptr) {
    draw.setImage(image_);
  } else {
    draw.setEncodedImage(encoded_);
  }
  if (failure_ != PictureFailure::none) draw.setImageUnreadable();
}

PictureFailure DrawImage::pictureFailure() {
  if (failure_ != PictureFailure::none || encoded_ == nullptr) return failure_;
  bool isTooLarge = false;
  if (encoded_->bitmap(&isTooLarge) != nullptr) return PictureFailure::none;
  return isTooLarge ? PictureFailure::tooLarge : PictureFailure::unreadable;
}

PictureFacts DrawImage::pictureFacts() {
  const auto bitmap = image();  // held, so that it is decoded once
  return {pictureFailure(), encoded_ == nullptr ? "" : encoded_->formatName(),
          bitmap == nullptr ? NSZeroSize : bitmap->size()};
}

std::shared_ptr<DrawImage2> DrawImage::convertedDraw() const {
  auto draw = std::make_shared<DrawImage2>();
  draw->init();
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
  encoded_ = coder.decodeObjectOfClass<EncodedBitmap>(kImage);
  if (encoded_ == nullptr && coder.containsValueForKey(kImage)) {
    failure_ = PictureFailure::unreadable;
  }
  fImageOpacity_ = coder.containsValueForKey(kOpacity) ? coder.decodeFloatForKey(kOpacity) : 1;
  if (bezierPath_ != nullptr) bezierPath_->setLineWidth(0);
  return true;
}

void DrawImage::encodeWithCoder(NSCoder& coder) const {
  DrawRectangle::encodeWithCoder(coder);
  coder.encodeObject(image(), kImage);
  coder.encodeFloat(fImageOpacity_, kOpacity);
}

std::shared_ptr<DrawBase> convertedLegacyDraw(const std::shared_ptr<DrawBase>& draw) {
  const bool legacy =
      draw->isMemberOfClass(DrawImage::kClass) || draw->isMemberOfClass(DrawFilter::kClass);
  return legacy ? static_cast<const DrawImage&>(*draw).convertedDraw() : nullptr;
}
