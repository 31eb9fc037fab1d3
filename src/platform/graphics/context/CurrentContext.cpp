#include "platform/graphics/context/CurrentContext.h"

#include <vector>

#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/color/PaintComponents.h"
#include "platform/graphics/context/GradientDrawing.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/graphics/path/NSBezierPath.h"

CGContext* currentPort() {
  const auto& context = NSGraphicsContext::currentContext();
  return context != nullptr ? context->graphicsPort() : nullptr;
}

void NSColor::set() const {
  setFill();
  setStroke();
}

void NSColor::setFill() const {
  if (CGContext* port = currentPort()) port->setFillColor(paintComponents(*this));
}

void NSColor::setStroke() const {
  if (CGContext* port = currentPort()) port->setStrokeColor(paintComponents(*this));
}

void NSShadow::set() const {
  CGContext* const port = currentPort();
  if (port == nullptr) return;
  const RGBAColor color = color_ != nullptr ? paintComponents(*color_) : RGBAColor{0, 0, 0, 0};
  port->setShadow({offset_, blurRadius_, color});
}

void NSBezierPath::fill() const {
  if (CGContext* port = currentPort()) port->fill(data_, windingRule_);
}

void NSBezierPath::stroke() const {
  if (CGContext* port = currentPort()) port->stroke(data_, strokeStyle());
}

void NSBezierPath::addClip() const {
  if (CGContext* port = currentPort()) port->clip(data_, windingRule_);
}

namespace {

CGGradient colorsOf(const NSGradient& gradient) {
  std::vector<GradientStop> stops;
  stops.reserve(gradient.numberOfColorStops());
  for (const auto& stop : gradient.stops()) {
    stops.push_back({stop.location, paintComponents(*stop.color)});
  }
  return CGGradient(std::move(stops));
}

}  // namespace

void NSGradient::drawInRect(const NSRect& rect, CGFloat angle) const {
  if (CGContext* port = currentPort()) drawGradientInRect(*port, colorsOf(*this), rect, angle);
}

void NSGradient::drawInBezierPath(const NSBezierPath& path, CGFloat angle) const {
  if (CGContext* port = currentPort()) {
    drawGradientInBezierPath(*port, colorsOf(*this), path.data(), path.windingRule(), angle);
  }
}

void NSGradient::drawInBezierPath(const NSBezierPath& path, NSPoint relativeCenterPosition) const {
  if (CGContext* port = currentPort()) {
    drawGradientInBezierPath(*port, colorsOf(*this), path.data(), path.windingRule(),
                             relativeCenterPosition);
  }
}

void NSGradient::drawInRect(const NSRect& rect, const NSBezierPath& axisPath, CGFloat angle) const {
  CGContext* const port = currentPort();
  const auto axis = linearAxis(axisPath.data(), angle);
  if (port != nullptr && axis) {
    port->fill(pathOfRect(rect), WindingRule::nonZero, colorsOf(*this), *axis);
  }
}

void NSGradient::drawInRect(const NSRect& rect, const NSBezierPath& axisPath,
                            NSPoint relativeCenterPosition) const {
  CGContext* const port = currentPort();
  const auto axis = radialAxis(axisPath.data(), relativeCenterPosition);
  if (port != nullptr && axis) {
    port->fill(pathOfRect(rect), WindingRule::nonZero, colorsOf(*this), *axis);
  }
}
