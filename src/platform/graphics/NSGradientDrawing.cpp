// Gradients painted in the current graphics context.
#include "platform/graphics/GradientDrawing.h"
#include "platform/graphics/NSBezierPath.h"
#include "platform/graphics/NSColorDrawing.h"
#include "platform/graphics/NSGradient.h"
#include "platform/graphics/NSGraphicsContext.h"

namespace {

CGGradient colorsOf(const NSGradient& gradient) {
  std::vector<GradientStop> stops;
  stops.reserve(gradient.numberOfColorStops());
  for (const auto& stop : gradient.stops()) {
    stops.push_back({stop.location, paintComponents(*stop.color)});
  }
  return CGGradient(std::move(stops));
}

CGContext* currentPort() {
  const auto& context = NSGraphicsContext::currentContext();
  return context != nullptr ? context->graphicsPort() : nullptr;
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
