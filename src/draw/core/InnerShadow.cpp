#include "draw/core/InnerShadow.h"

#include "platform/graphics/color/PaintComponents.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/path/NSBezierPath.h"

CGFloat shadowAlpha(const NSShadow& shadow) {
  return shadow.shadowColor() != nullptr ? shadow.shadowColor()->alphaComponent() : 0;
}

void paintInnerShadow(const NSShadow& shadow, CGFloat alpha, const NSRect& bounds,
                      const NSBezierPath& shape, const std::function<void()>& paintMask) {
  if (shadow.shadowColor() == nullptr) return;
  // Its alpha must not scale it twice.
  const auto opaque = shadow.shadowColor()->colorWithAlphaComponent(1);
  CGContext& port = *NSGraphicsContext::currentContext()->graphicsPort();
  const NSGraphicsStateScope state;
  NSRectClip(bounds);
  port.setShadow({});
  port.setAlpha(alpha);
  CGTransparencyLayerScope whole(port);
  port.setShadow({shadow.shadowOffset(), shadow.shadowBlurRadius(), paintComponents(*opaque)});
  port.setOperation(NSCompositingOperation::sourceOut);
  CGTransparencyLayerScope inverse(port);
  opaque->setFill();
  shape.fill();
  port.setOperation(NSCompositingOperation::destinationIn);
  paintMask();
  inverse.end();
  whole.end();
}
