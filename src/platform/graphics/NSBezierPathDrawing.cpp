// Paths painted and clipped in the current graphics context.
#include "platform/graphics/NSBezierPath.h"
#include "platform/graphics/NSGraphicsContext.h"

namespace {

CGContext* currentPort() {
  const auto& context = NSGraphicsContext::currentContext();
  return context != nullptr ? context->graphicsPort() : nullptr;
}

}  // namespace

void NSBezierPath::fill() const {
  if (CGContext* port = currentPort()) port->fill(data_, windingRule_);
}

void NSBezierPath::stroke() const {
  if (CGContext* port = currentPort()) port->stroke(data_, strokeStyle());
}

void NSBezierPath::addClip() const {
  if (CGContext* port = currentPort()) port->clip(data_, windingRule_);
}

StrokeStyle NSBezierPath::strokeStyle() const {
  return {lineWidth_, cap_, join_, miterLimit_, dash_, dashPhase_};
}
