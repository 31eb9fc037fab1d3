#include "svg/tree/SVGPaintResolver.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "svg/SVGStringParser.h"

namespace SVGNative {

namespace {

ColorArray fallbackColor(const std::string& text, const ColorArray& currentColor) {
  Color color;
  try {
    if (!SVGStringParser::ParseColor(text, color, SVGStringParser::Variables::refused)) {
      return kOpaqueBlack;
    }
  } catch (const std::invalid_argument&) {
    return kOpaqueBlack;
  }
  const auto* plain = std::get_if<ColorArray>(&color);
  return plain != nullptr ? *plain : currentColor;
}

bool isPlain(const ColorStopImpl& stop) {
  return std::holds_alternative<ColorArray>(stop.color);
}

// SVG 1.1, sections 13.2.2 and 13.2.3: a gradient without extent paints its last colour, and so
// does one that has no other.
bool isSolid(const GradientImpl& gradient) {
  if (gradient.stops->size() == 1) return true;
  if (gradient.type == GradientType::radial) return gradient.r == 0.0f;
  return gradient.x1 == gradient.x2 && gradient.y1 == gradient.y2;
}

}  // namespace

ColorArray PaintResolver::resolveColor(const Color& color, const ColorArray& currentColor) const {
  if (const auto* plain = std::get_if<ColorArray>(&color)) return *plain;
  const auto* variable = std::get_if<ColorVariable>(&color);
  if (variable == nullptr) return currentColor;
  const auto found = colors_.find(variable->name());
  return found != colors_.end() ? found->second : fallbackColor(variable->fallback(), currentColor);
}

ColorArray PaintResolver::resolveStop(const ColorStopImpl& stop) const {
  const bool isBlack = stop.currentColor == nullptr;
  return resolveColor(stop.color,
                      isBlack ? kOpaqueBlack : resolveColor(*stop.currentColor, kOpaqueBlack));
}

bool PaintResolver::resolvePaint(Paint& paint, const ColorArray& currentColor,
                                 const Path& path) const {
  if (std::holds_alternative<ColorArray>(paint)) return true;
  if (auto* gradient = std::get_if<GradientPaint>(&paint)) {
    return resolveGradient(GradientPaint(*gradient), currentColor, path, paint);
  }
  const auto* variable = std::get_if<ColorVariable>(&paint);
  paint = variable != nullptr ? resolveColor(*variable, currentColor) : currentColor;
  return true;
}

bool PaintResolver::resolveGradient(const GradientPaint& source, const ColorArray& currentColor,
                                    const Path& path, Paint& paint) const {
  const GradientImpl& gradient = *source.gradient;
  if (gradient.stops == nullptr || gradient.stops->empty()) return false;
  if (isSolid(gradient)) {
    const ColorStopImpl& last = gradient.stops->back();
    ColorArray color = resolveStop(last);
    color[3] *= last.opacity;
    paint = color;
    return true;
  }
  const bool plain = std::all_of(gradient.stops->begin(), gradient.stops->end(), isPlain);
  if (plain && gradient.units == GradientUnits::userSpaceOnUse) return true;
  GradientImpl resolved = gradient;
  if (!plain) {
    std::vector<ColorStopImpl> stops = *gradient.stops;
    for (ColorStopImpl& stop : stops) stop.color = resolveStop(stop);
    resolved.stops = std::make_shared<const std::vector<ColorStopImpl>>(std::move(stops));
  }
  if (gradient.units == GradientUnits::objectBoundingBox && !toUserSpace(resolved, path)) {
    if (source.fallback == nullptr) return false;
    paint = resolveColor(*source.fallback, currentColor);
    return true;
  }
  paint = GradientPaint{std::make_shared<const GradientImpl>(std::move(resolved)), nullptr};
  return true;
}

// Puts the mapping from the unit square to the geometry's box around the gradient's own transform.
bool PaintResolver::toUserSpace(GradientImpl& gradient, const Path& path) const {
  const Rect box = path.Bounds();
  if (!(box.Width() > 0.0f && box.Height() > 0.0f)) return false;
  std::shared_ptr<Transform> transform = renderer_.CreateTransform();
  transform->Set(box.Width(), 0.0f, 0.0f, box.Height(), box.x.min, box.y.min);
  if (gradient.transform != nullptr) transform->Concat(*gradient.transform);
  gradient.transform = std::move(transform);
  gradient.units = GradientUnits::userSpaceOnUse;
  return true;
}

}  // namespace SVGNative
