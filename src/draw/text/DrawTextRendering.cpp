// Drawing of text boxes: the text image, tinted, outlined and shadowed.
#include <cmath>

#include "draw/core/InnerShadow.h"
#include "draw/text/DrawText.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/text/host/NSTextStorage.h"

namespace {

CGContext& port() {
  return *NSGraphicsContext::currentContext()->graphicsPort();
}

void clearShadow() {
  port().setShadow({NSZeroSize, 0, {0, 0, 0, 0}});
}

NSRect roundedRect(const NSRect& r) {
  return {{std::round(r.origin.x), std::round(r.origin.y)},
          {std::round(r.size.width), std::round(r.size.height)}};
}

}  // namespace

/// A text image, and where it and its text go on the canvas, before rotation.
struct DrawText::TextTarget {
  const NSBitmapImageRep& picture;
  NSRect text;
  NSRect image;
  WantedImage wanted;  ///< what the picture was asked for as
};

void DrawText::_draw(CastShadow cast) {
  if (_isNewCreated) return;
  if (isAutoResize() && bEdittingText_ && textStorage_->length() == 0) return;
  DrawRoundRectangle::_draw(cast);
  drawTextPart(cast);
}

void DrawText::drawTextPart(CastShadow cast) {
  if (opacity() == 0 || textStorage_->length() == 0 || bEdittingText_) return;
  const auto placed = [origin = pathBounds().origin](const NSRect& rect) {
    return NSOffsetRect(rect, origin.x, origin.y);
  };
  if (!isTooLargeToKeep()) {
    const auto image = validTextImage();
    if (image == nullptr) return;
    return drawText({*image, placed(rectText_), placed(imageRect_), {imageKey_.grid, {}}}, cast);
  }
  dropImages();
  const WantedImage wanted{imageGrid(), visiblePart()};
  const auto made = convertTextToImageWithOption(TextImageOption::text, wanted);
  if (!made || made->textImageRep == nullptr) return;
  drawText({*made->textImageRep, placed(made->textDrawRect), placed(made->imageRect), wanted},
           cast);
}

/// The part of the text image that the context can show, or a shadow in it.
NSRect DrawText::visiblePart() const {
  CGFloat reach = 0;
  for (const auto& shadow :
       {bEnableShadow_ ? shadow_ : nullptr, bEnableInnerShadow_ ? shadowInner_ : nullptr}) {
    if (shadow == nullptr) continue;
    const NSSize offset = shadow->shadowOffset();
    reach = std::max(reach, std::hypot(offset.width, offset.height) + shadow->shadowBlurRadius());
  }
  const CGAffineTransform toCanvas =
      CGAffineTransformConcat(transform().transformStruct(), port().state().transform);
  const NSRect seen = CGRectApplyAffineTransform(
      NSInsetRect(port().visibleCanvasRect(), -reach, -reach), CGAffineTransformInvert(toCanvas));
  const NSPoint origin = pathBounds().origin;
  return NSOffsetRect(seen, -origin.x, -origin.y);
}

void DrawText::drawText(const TextTarget& target, CastShadow cast) const {
  const NSGraphicsStateScope state;
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  context.setCompositingOperation(NSCompositingOperation::sourceOver);
  context.setImageInterpolation(NSImageInterpolation::high);
  context.setShouldAntialias(bSmooth_);
  port().concatenate(transform().transformStruct());
  port().setAlpha(static_cast<CGFloat>(opacity()) / 100);
  {
    const NSGraphicsStateScope shadowed;
    setShadowInForce(cast);
    if (hasGradient()) {
      CGTransparencyLayerScope layer(port());
      drawGradientText(target);
      layer.end();
    } else {
      port().draw(target.picture, target.image);
    }
  }
  if (bEnableInnerShadow_ && shadowInner_ != nullptr) drawInnerShadow(target);
}

/// The gradient where the text image is a mask for it, and the outlines on top; into a layer.
void DrawText::drawGradientText(const TextTarget& target) const {
  const NSGraphicsStateScope state;
  clearShadow();
  port().draw(target.picture, target.image);
  port().setOperation(NSCompositingOperation::sourceIn);
  if (_isRadialTextGradient) {
    _textGradient->drawInBezierPath(*NSBezierPath::bezierPathWithRect(target.text),
                                    relativeGradientCenter(target.text));
  } else {
    _textGradient->drawInRect(target.text, static_cast<CGFloat>(_textGradientDegree));
  }
  if (const auto outline = textOutlineImage(target.wanted)) {
    port().setOperation(NSCompositingOperation::sourceOver);
    port().draw(*outline, target.image);
  }
}

/// Centre of the radial gradient relative to the middle and the half sides of `target`. It is kept
/// relative to those of the box.
NSPoint DrawText::relativeGradientCenter(const NSRect& target) const {
  if (_textGradientCenter == NSZeroPoint) return NSZeroPoint;
  const NSRect box = pathBounds();
  const NSPoint center{NSMidX(box) + _textGradientCenter.x * NSWidth(box) / 2,
                       NSMidY(box) + _textGradientCenter.y * NSHeight(box) / 2};
  return {2 * (center.x - NSMidX(target)) / NSWidth(target),
          2 * (center.y - NSMidY(target)) / NSHeight(target)};
}

void DrawText::drawInnerShadow(const TextTarget& target) const {
  const CGFloat strength = hasLegacyOpacity() ? 1 : shadowAlpha(*shadowInner_);
  const CGFloat alpha = strength * static_cast<CGFloat>(opacity()) / 100;
  const auto box = NSBezierPath::bezierPathWithRect(target.text);
  paintInnerShadow(*shadowInner_, alpha, target.text, *box, [&] { drawShadowMask(target); });
}

/// The text as the inner shadow falls on it.
void DrawText::drawShadowMask(const TextTarget& target) const {
  CGTransparencyLayerScope mask(port());
  if (hasGradient()) {
    port().setShouldAntialias(bSmooth_);
    drawGradientText(target);
  } else {
    drawInRect(target.picture, target.image, NSZeroRect, NSCompositingOperation::sourceOver,
               static_cast<CGFloat>(fTextOpacity_));
  }
  mask.end();
}

NSRect DrawText::drawRect() const {
  placeTextImage();
  if (drawFill()) return DrawRoundRectangle::drawRect();
  if (!(NSWidth(rectText_) >= 1 && NSHeight(rectText_) >= 1)) return NSZeroRect;
  const NSPoint origin = pathBounds().origin;
  const auto outline =
      NSBezierPath::bezierPathWithRect(roundedRect(NSOffsetRect(rectText_, origin.x, origin.y)));
  outline->transformUsingAffineTransform(transform());
  return outline->bounds();
}
