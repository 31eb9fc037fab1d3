#include "draw/core/ZTSmallKits.h"

#include <cmath>
#include <utility>
#include <vector>

#include "platform/text/fonts/NSFontManager.h"

namespace {

constexpr CGFloat kColorStep = 0.003922;
constexpr CGFloat kAlphaStep = 0.01;

bool near(CGFloat a, CGFloat b, CGFloat step) {
  return std::fabs(a - b) < step;
}

}  // namespace

std::shared_ptr<NSColor> colorWithHex(uint32_t hex, CGFloat alpha) {
  const auto channel = [hex](int shift) { return (hex >> shift & 0xff) / 255.0; };
  return NSColor::colorWithRed(channel(16), channel(8), channel(0), alpha);
}

std::shared_ptr<NSGradient> gradientWithOpacity(const NSGradient& gradient, CGFloat opacity) {
  std::vector<NSGradient::Stop> stops = gradient.stops();
  for (NSGradient::Stop& stop : stops) {
    stop.color = stop.color->colorWithAlphaComponent(stop.color->alphaComponent() * opacity);
  }
  return NSGradient::initWithStops(std::move(stops));
}

bool zt_isEqualWithColor(const NSColor* a, const NSColor* b) {
  if (a == nullptr || b == nullptr) return false;
  if (a == b) return true;
  if (a->alphaComponent() < kAlphaStep && b->alphaComponent() < kAlphaStep) return true;
  return near(a->redComponent(), b->redComponent(), kColorStep) &&
         near(a->greenComponent(), b->greenComponent(), kColorStep) &&
         near(a->blueComponent(), b->blueComponent(), kColorStep) &&
         near(a->alphaComponent(), b->alphaComponent(), kAlphaStep);
}

bool zt_isEqualWithGradient(const NSGradient* a, const NSGradient* b) {
  if (a == nullptr || b == nullptr) return false;
  if (a == b) return true;
  if (a->numberOfColorStops() != b->numberOfColorStops()) return false;
  for (size_t i = 0; i < a->numberOfColorStops(); ++i) {
    const auto& first = a->stops()[i];
    const auto& second = b->stops()[i];
    if (first.location != second.location) return false;
    if (!zt_isEqualWithColor(first.color.get(), second.color.get())) return false;
  }
  return true;
}

bool zt_isEqualWithShadow(const NSShadow* a, const NSShadow* b) {
  if (a == nullptr || b == nullptr) return false;
  if (a == b) return true;
  if (a->shadowOffset() != b->shadowOffset()) return false;
  if (a->shadowBlurRadius() != b->shadowBlurRadius()) return false;
  if (a->shadowColor() == b->shadowColor()) return true;
  return zt_isEqualWithColor(a->shadowColor().get(), b->shadowColor().get());
}

bool zt_isEqualWithFont(const NSFont* a, const NSFont* b) {
  if (a == nullptr || b == nullptr) return false;
  if (a == b) return true;
  const NSFontManager& manager = NSFontManager::sharedFontManager();
  return a->fontName() == b->fontName() && a->pointSize() == b->pointSize() &&
         manager.traitsOfFont(*a) == manager.traitsOfFont(*b) &&
         manager.weightOfFont(*a) == manager.weightOfFont(*b);
}
