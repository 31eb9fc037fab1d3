// Colours and shadows in force in the current graphics context.
#include "platform/graphics/NSColorDrawing.h"

#include "platform/graphics/NSGraphicsContext.h"
#include "platform/graphics/NSShadow.h"

void NSColor::set() const {
  setFill();
  setStroke();
}

void NSColor::setFill() const {
  const auto& context = NSGraphicsContext::currentContext();
  if (context != nullptr) context->graphicsPort()->setFillColor(paintComponents(*this));
}

void NSColor::setStroke() const {
  const auto& context = NSGraphicsContext::currentContext();
  if (context != nullptr) context->graphicsPort()->setStrokeColor(paintComponents(*this));
}

void NSShadow::set() const {
  const auto& context = NSGraphicsContext::currentContext();
  if (context == nullptr) return;
  const RGBAColor color = color_ != nullptr ? paintComponents(*color_) : RGBAColor{0, 0, 0, 0};
  context->graphicsPort()->setShadow({offset_, blurRadius_, color});
}
