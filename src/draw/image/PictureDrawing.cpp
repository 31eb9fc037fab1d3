#include "draw/image/PictureDrawing.h"

#include <cmath>

#include "platform/graphics/NSBezierPath.h"
#include "platform/graphics/NSColorDrawing.h"
#include "platform/graphics/NSGraphicsContext.h"
#include "platform/graphics/NSShadow.h"

namespace {

CGContext& port() {
  return *NSGraphicsContext::currentContext()->graphicsPort();
}

}  // namespace

bool mayShow(const NSRect& rect) {
  if (NSGraphicsContext::currentContext() == nullptr) return false;
  // Snapping to pixels and antialiasing stay within.
  constexpr CGFloat kNear = 2;
  const NSRect device = CGRectApplyAffineTransform(rect, port().deviceTransform());
  const PixelBox& clip = port().state().clip.box();
  const bool isOutside = NSMaxX(device) < clip.x0 - kNear || NSMinX(device) > clip.x1 + kNear ||
                         NSMaxY(device) < clip.y0 - kNear || NSMinY(device) > clip.y1 + kNear;
  return !isOutside;
}

void preparePictureContext() {
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  context.setShouldAntialias(true);
  context.setCompositingOperation(NSCompositingOperation::sourceOver);
  context.setImageInterpolation(NSImageInterpolation::high);
}

void snapToPixels(const NSRect& bounds) {
  port().concatenate(
      CGAffineTransformMakeTranslation(std::trunc(NSMinX(bounds) + 0.5) - NSMinX(bounds),
                                       std::trunc(NSMinY(bounds) + 0.5) - NSMinY(bounds)));
}

void drawPicture(const NSBitmapImageRep& image, const NSRect& bounds, CGFloat fraction) {
  drawInRect(image, bounds, NSZeroRect, NSCompositingOperation::sourceOver, fraction);
}

void drawPictureInnerShadow(const NSBitmapImageRep& image, const NSRect& bounds,
                            const NSBezierPath& path, const NSShadow& shadow, CGFloat fraction) {
  const auto& color = shadow.shadowColor();
  if (color == nullptr) return;
  const auto opaque = color->colorWithAlphaComponent(1);
  const NSGraphicsStateScope state;
  NSRectClip(bounds);
  port().setShadow({});
  port().setAlpha(color->alphaComponent() * fraction);
  const CGTransparencyLayerScope whole(port());
  port().setShadow({shadow.shadowOffset(), shadow.shadowBlurRadius(), paintComponents(*opaque)});
  port().setOperation(NSCompositingOperation::sourceOut);
  const CGTransparencyLayerScope inverse(port());
  opaque->setFill();
  path.fill();
  drawInRect(image, bounds, NSZeroRect, NSCompositingOperation::destinationIn, fraction);
}
