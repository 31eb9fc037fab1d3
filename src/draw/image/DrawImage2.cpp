#include "draw/image/DrawImage2.h"

#include <utility>

#include "draw/core/DrawAttributes.h"
#include "draw/image/BitmapHelpers.h"
#include "draw/image/BitmapSources.h"
#include "draw/image/DrawPDF.h"
#include "draw/image/DrawSVG.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/context/OffscreenCanvas.h"

const NSClass DrawImage2::kClass{"DrawImage2", &DrawRoundRectangle::kClass, NSAllocate<DrawImage2>};

namespace {

constexpr const char* kImageOpacityAttribute = "DAKeyImageOpacity";

}  // namespace

std::shared_ptr<DrawImage2> DrawImage2::drawWithData(const std::shared_ptr<NSData>& data) {
  if (data == nullptr || data->length() == 0) return nullptr;
  if (auto draw = DrawSVG::drawWithSVGData(data)) return draw;
  if (auto draw = DrawPDF::drawWithPDFData(data)) return draw;
  auto bitmap = NSBitmapImageRep::imageRepWithData(*data);
  return bitmap == nullptr ? nullptr : initWithImage(std::move(bitmap));
}

std::shared_ptr<DrawImage2> DrawImage2::initWithImage(std::shared_ptr<NSBitmapImageRep> image) {
  auto draw = std::make_shared<DrawImage2>();
  draw->initWithBitmap(std::move(image));
  return draw;
}

void DrawImage2::initWithBitmap(std::shared_ptr<NSBitmapImageRep> image) {
  init();
  if (image == nullptr) return;
  bezierPath()->setLineWidth(0);
  setBezierPathWithBounds({NSZeroPoint, image->size()});
  setImage(std::move(image));
}

std::shared_ptr<NSBitmapImageRep> DrawImage2::cachedImage() const {
  if (_image != nullptr) return _image;
  return madeScale_ == offscreenScale() ? madeImage_.lock() : nullptr;
}

std::shared_ptr<const BitmapSource> DrawImage2::pictureSource() const {
  if (_image != nullptr) return std::make_shared<HeldPicture>(_image);
  return encoded_ != nullptr ? std::make_shared<EncodedPicture>(encoded_) : nullptr;
}

std::shared_ptr<NSBitmapImageRep> DrawImage2::image() const {
  if (isRecordingDrawing()) {
    auto source = pictureSource();
    return source != nullptr ? bitmapToDraw(std::move(source)) : nullptr;
  }
  auto image = cachedImage();
  if (image == nullptr) {
    madeScale_ = offscreenScale();
    madeImage_ = image = makeImage(madeScale_, &failure_);
  }
  return image;
}

std::shared_ptr<NSBitmapImageRep> DrawImage2::makeImage(CGFloat, PictureFailure* failure) const {
  if (encoded_ == nullptr) return nullptr;
  bool isTooLarge = false;
  auto image = encoded_->bitmap(&isTooLarge);
  if (image == nullptr) {
    *failure = isTooLarge ? PictureFailure::tooLarge : PictureFailure::unreadable;
  }
  return image;
}

PictureFailure DrawImage2::pictureFailure() {
  return imageForDrawing() != nullptr ? PictureFailure::none : failure_;
}

PictureFacts DrawImage2::pictureFacts() {
  const auto bitmap = image();  // held, so that it is decoded once
  return {pictureFailure(), encoded_ == nullptr ? "" : encoded_->formatName(),
          bitmap == nullptr ? NSZeroSize : bitmap->size()};
}

void DrawImage2::setImage(std::shared_ptr<NSBitmapImageRep> image) {
  _image = std::move(image);
  madeImage_.reset();
  encoded_ = nullptr;
  failure_ = PictureFailure::none;
}

void DrawImage2::setEncodedImage(std::shared_ptr<const EncodedBitmap> image) {
  setImage(nullptr);
  encoded_ = std::move(image);
}

NSSize DrawImage2::originalSize() const {
  const auto bitmap = image();
  return bitmap == nullptr ? NSZeroSize : bitmap->size();
}

void DrawImage2::flip(bool horizontal) {
  setImage(ImageFliped(image(), horizontal));
}

uint64_t DrawImage2::opacity() const {
  if (!hasImageOpacity()) return DrawRoundRectangle::opacity();
  return static_cast<uint64_t>(fImageOpacity_ * 100);
}

void DrawImage2::setOpacity(uint64_t percent) {
  if (!hasImageOpacity()) return DrawRoundRectangle::setOpacity(percent);
  fImageOpacity_ = static_cast<float>(percent > 100 ? 100 : percent) / 100;
}

void DrawImage2::normalizeOpacity() {
  if (fImageOpacity_ >= 0 && fImageOpacity_ < 1) {
    if (drawStroke()) return;
    opacity_ = static_cast<uint8_t>(fImageOpacity_ * 100);
  }
  fImageOpacity_ = kNoImageOpacity;
}

std::shared_ptr<NSDictionary> DrawImage2::drawAttributes() const {
  auto attributes = DrawRoundRectangle::drawAttributes();
  if (!hasImageOpacity()) return attributes;
  auto extended = std::make_shared<NSMutableDictionary>(*attributes);
  extended->setObject(NSNumber::numberWithFloat(fImageOpacity_), kImageOpacityAttribute);
  return extended;
}

bool DrawImage2::setDrawAttributes(const NSDictionary& attributes) {
  if (!DrawRoundRectangle::setDrawAttributes(attributes)) return false;
  constexpr float kLowestReplaced = 0.001F;
  const auto number = attributes.objectOfClass<NSNumber>(kImageOpacityAttribute);
  if (number == nullptr || !hasImageOpacity() || !(fImageOpacity_ > kLowestReplaced)) return true;
  const float fraction = number->floatValue();
  if (fraction >= 0 && fraction <= 1) fImageOpacity_ = fraction;
  return true;
}
