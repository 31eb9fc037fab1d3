#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "draw/raster/DrawBrushes.h"
#include "platform/foundation/Convert.h"
#include "platform/foundation/Limits.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"

const NSClass DrawAirbrush::kClass{"DrawAirbrush", &DrawBase::kClass, NSAllocate<DrawAirbrush>};

namespace {

constexpr const char* kBrushWidth = "BrushWidth";
constexpr const char* kImage = "Image";
constexpr const char* kImageData = "ImageData";

/// A place for a dot in the disc, at random; nothing when chance or the disc holds none.
std::optional<NSPoint> dotInDisc(NSPoint center, CGFloat radius, int64_t span) {
  // A disc smaller than a pixel may hold no whole position at all.
  constexpr int kTries = 1000;
  for (int i = 0; i < kTries; ++i) {
    const NSPoint p{std::trunc(static_cast<CGFloat>(::random() % span) + (center.x - radius)),
                    std::trunc(static_cast<CGFloat>(::random() % span) + (center.y - radius))};
    if (std::hypot(p.x - center.x, p.y - center.y) <= radius) return p;
  }
  return std::nullopt;
}

}  // namespace

void DrawAirbrush::init() {
  DrawBase::init();
  bezierPath_->setLineCapStyle(LineCap::round);
  bezierPath_->setLineWidth(1);
}

std::shared_ptr<NSBitmapImageRep> DrawAirbrush::image() const {
  return image_ == nullptr && encoded_ != nullptr ? encoded_->bitmap() : image_;
}

std::shared_ptr<NSBezierPath> DrawAirbrush::sprayPathAtPoint(NSPoint point) const {
  constexpr CGFloat kAreaOfDot = 30;
  auto path = NSBezierPath::bezierPath();
  const CGFloat width = std::min(static_cast<CGFloat>(fBrushWidth_), limits::kMaxSprayWidth);
  if (!(width > 0)) return path;
  const int64_t rounded = roundedHalfUp(width);
  const int64_t span = rounded < 5 ? 4 : rounded;
  for (int i = 0; i < width * width / kAreaOfDot; ++i) {
    const auto dot = dotInDisc(point, width / 2, span);
    if (!dot) continue;
    path->moveToPoint(*dot);
    path->lineToPoint(*dot);
  }
  return path;
}

void DrawAirbrush::replaceBezierPathWithImageIfPossible() {
  if (bezierPath_ == nullptr || bezierPath_->elementCount() < kBakedElements) return;
  if (this->image() != nullptr) return;
  const NSRect bounds = bezierPath_->bounds();
  std::shared_ptr<NSBitmapImageRep> image;
  if (!InitImageRep(bounds.size, &image) || image->pixelsWide() == 0 || image->pixelsHigh() == 0) {
    return;
  }
  {
    // Colour, opacity, rotation and shadow are the business of drawing the bitmap.
    DrawAirbrush dots;
    dots.init();
    dots.bezierPath_ = bezierPath_;
    const ZTFocusScope focus(image);
    NSGraphicsContext& context = *NSGraphicsContext::currentContext();
    context.setShouldAntialias(false);
    context.graphicsPort()->concatenate(
        CGAffineTransformMakeTranslation(-NSMinX(bounds), -NSMinY(bounds)));
    dots.draw();
  }
  image_ = std::move(image);
  bezierPath_->removeAllPoints();
  bezierPath_->appendBezierPathWithRect(bounds);
}

void DrawAirbrush::_draw(CastShadow cast) {
  const auto baked = image();
  if (baked == nullptr) return DrawBase::_draw(cast);
  // Switching the stroke off hides dots, which are strokes, but no bitmap.
  if (!bezierPath_->isEmpty() && colorStroke_ != nullptr) drawBaked(*baked, cast);
}

void DrawAirbrush::drawBaked(const NSBitmapImageRep& image, CastShadow cast) const {
  const NSGraphicsStateScope state;
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  CGContext& port = *context.graphicsPort();
  context.setShouldAntialias(false);
  context.setCompositingOperation(NSCompositingOperation::sourceOver);
  context.setImageInterpolation(NSImageInterpolation::high);
  setShadowInForce(cast);
  port.concatenate(transform().transformStruct());
  NSRect rect = pathBounds();
  // Dots that lie on the canvas's pixels are those pixels.
  if (fRotateDegree_ == 0 && rect.size == image.size()) {
    context.setImageInterpolation(NSImageInterpolation::none);
  }
  rect.origin = {std::trunc(rect.origin.x + 0.5), std::trunc(rect.origin.y + 0.5)};
  // The bitmap's alpha cuts the colour, so that a baked spray can be recoloured.
  CGTransparencyLayerScope layer(port);
  colorStroke_->setFill();
  port.fill(rect);
  drawInRect(image, rect, NSZeroRect, NSCompositingOperation::destinationIn, 1);
  layer.end();
}

bool DrawAirbrush::initWithCoder(NSCoder& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  if (coder.containsValueForKey(kBrushWidth)) fBrushWidth_ = coder.decodeFloatForKey(kBrushWidth);
  encoded_ = decodeBitmapForKeys(coder, kImage, kImageData);
  if (!coder.containsValueForKey(kImage)) imageData_ = coder.decodeDataForKey(kImageData);
  replaceBezierPathWithImageIfPossible();
  return true;
}

void DrawAirbrush::encodeWithCoder(NSCoder& coder) const {
  DrawBase::encodeWithCoder(coder);
  coder.encodeFloat(fBrushWidth_, kBrushWidth);
  const auto baked = image();
  if (baked == nullptr) return;
  const bool isFile = image_ == nullptr && imageData_ != nullptr;
  if (isFile && imageFormatOf(imageData_->bytes()) == ImageFormat::png) {
    coder.encodeObject(imageData_, kImageData);
    return;
  }
  auto png = encodePNG(*baked);
  if (png.empty()) {
    coder.encodeObject(baked, kImage);
  } else {
    coder.encodeObject(NSData::dataWithVector(std::move(png)), kImageData);
  }
}
