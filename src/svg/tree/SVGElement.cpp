#include "svg/tree/SVGElement.h"

namespace SVGNative {

namespace {

template <class T>
void assign(T& value, const std::optional<T>& said) {
  if (said) value = *said;
}

void assignPaint(bool& painted, Paint& paint, const std::optional<OptionalPaint>& said) {
  if (!said) return;
  painted = said->has_value();
  if (painted) paint = **said;
}

}  // namespace

void ComputedStyle::apply(const InheritedProperties& properties) {
  assign(color, properties.color);
  assign(visibility, properties.visibility);
  assignPaint(fill.hasFill, fill.paint, properties.fill);
  assign(fill.fillOpacity, properties.fillOpacity);
  assign(fill.fillRule, properties.fillRule);
  assignPaint(stroke.hasStroke, stroke.paint, properties.stroke);
  assign(stroke.strokeOpacity, properties.strokeOpacity);
  assign(stroke.lineWidth, properties.lineWidth);
  assign(stroke.lineCap, properties.lineCap);
  assign(stroke.lineJoin, properties.lineJoin);
  assign(stroke.miterLimit, properties.miterLimit);
  assign(stroke.dashArray, properties.dashArray);
  assign(stroke.dashOffset, properties.dashOffset);
}

}  // namespace SVGNative
