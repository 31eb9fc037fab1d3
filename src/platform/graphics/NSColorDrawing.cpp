// Colours as the paint of the current graphics context.
#include "platform/graphics/NSColor.h"
#include "platform/graphics/NSGraphicsContext.h"

namespace {

RGBAColor components(const NSColor& color) {
  return {color.redComponent(), color.greenComponent(), color.blueComponent(),
          color.alphaComponent()};
}

}  // namespace

void NSColor::set() const {
  setFill();
  setStroke();
}

void NSColor::setFill() const {
  const auto& context = NSGraphicsContext::currentContext();
  if (context != nullptr) context->graphicsPort()->setFillColor(components(*this));
}

void NSColor::setStroke() const {
  const auto& context = NSGraphicsContext::currentContext();
  if (context != nullptr) context->graphicsPort()->setStrokeColor(components(*this));
}
