#include "draw/image/PictureDrawing.h"

#include <cmath>

#include "draw/core/DrawBase.h"
#include "draw/core/InnerShadow.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/pictures/PictureSession.h"

namespace {

CGContext& port() {
  return *NSGraphicsContext::currentContext()->graphicsPort();
}

}  // namespace

bool mayShow(const NSRect& rect) {
  if (NSGraphicsContext::currentContext() == nullptr) return false;
  // Snapping to pixels stays within.
  const NSRect near = NSInsetRect(port().visibleCanvasRect(), -1, -1);
  const NSRect drawn = CGRectApplyAffineTransform(rect, port().state().transform);
  const bool isOutside = NSMaxX(drawn) < NSMinX(near) || NSMinX(drawn) > NSMaxX(near) ||
                         NSMaxY(drawn) < NSMinY(near) || NSMinY(drawn) > NSMaxY(near);
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
  paintInnerShadow(shadow, shadowAlpha(shadow) * fraction, bounds, path, [&] {
    drawInRect(image, bounds, NSZeroRect, NSCompositingOperation::destinationIn, fraction);
  });
}

void reportLeftOutPicture(const DrawBase& draw, PictureFailure failure) {
  PictureSession* const session = PictureSession::current();
  if (session == nullptr || failure == PictureFailure::none) return;
  session->leaveOut(&draw, {draw.layerTitle().value_or(""), draw.pictureKind(), describe(failure)});
}
