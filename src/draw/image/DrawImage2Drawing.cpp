// Embedded bitmaps on the canvas.
#include <algorithm>

#include "draw/core/PaintedBounds.h"
#include "draw/core/ZTBezierPathExtension.h"
#include "draw/image/DrawImage2.h"
#include "draw/image/PictureDrawing.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"

namespace {

CGContext& port() {
  return *NSGraphicsContext::currentContext()->graphicsPort();
}

}  // namespace

void DrawImage2::drawInImage(NSBitmapImageRep* image) {
  // Cropped documents keep the pictures that fell outside; they are not decoded.
  if (!mayShow(paintedBounds(*this))) return;
  // A reflection draws the picture twice; it is made once.
  const auto shown = enableReflection() ? imageForDrawing() : nullptr;
  DrawRoundRectangle::drawInImage(image);
}

void DrawImage2::_draw(CastShadow cast) {
  if (bezierPath_ == nullptr) return;
  const auto image = imageForDrawing();
  if (image == nullptr) reportLeftOutPicture(*this, failure_);
  const NSGraphicsStateScope state;
  preparePictureContext();
  if (drawStroke() && hasOddLineWidth(*bezierPath_)) {
    port().concatenate(CGAffineTransformMakeTranslation(0.5, 0.5));
  }
  setShadowInForce(cast);
  port().concatenate(transform().transformStruct());
  const NSRect bounds = pathBounds();
  snapToPixels(bounds);
  if (image != nullptr) drawImage(*image, bounds);
  if (drawStroke() && lineWidth() > 0) drawStrokeAround(cast);
  constexpr float kFaintest = 0.01F;
  if (image == nullptr || !(fImageOpacity_ >= kFaintest)) return;
  if (!enableInnerShadow() || innerShadow() == nullptr) return;
  drawPictureInnerShadow(*image, bounds, *bezierPath_, *innerShadow(),
                         static_cast<CGFloat>(opacity()) / 100);
}

void DrawImage2::drawImage(const NSBitmapImageRep& image, const NSRect& bounds) const {
  const NSGraphicsStateScope state;
  if (xRadius() >= 1 && yRadius() >= 1) bezierPath_->addClip();
  drawPicture(image, bounds, static_cast<CGFloat>(opacity()) / 100);
}

void DrawImage2::drawStrokeAround(CastShadow cast) {
  if (cast == CastShadow::yes && hasShadowInForce()) {
    // The line's shadow falls outside the picture only.
    const NSGraphicsStateScope state;
    if (shouldApplyOpacityToStokeAndFill()) {
      port().setAlpha(static_cast<CGFloat>(opacity()) / 100);
    }
    const auto outside = NSBezierPath::bezierPathWithRect(paintedBounds(*this));
    outside->appendBezierPath(*bezierPath_);
    outside->setWindingRule(WindingRule::evenOdd);
    outside->addClip();
    (strokeColor() != nullptr ? strokeColor() : NSColor::blackColor())->setStroke();
    bezierPath_->stroke();
  }
  port().setShadow({});
  _drawStrokeWithPath(*bezierPath_, nullptr, false);
}
