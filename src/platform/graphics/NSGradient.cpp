#include "platform/graphics/NSGradient.h"

#include <algorithm>
#include <cmath>

#include "platform/graphics/NSColor.h"

const NSClass NSGradient::kClass{"NSGradient", &NSObject::kClass, NSAllocate<NSGradient>};

std::shared_ptr<NSGradient> NSGradient::initWithStartingColor(
    std::shared_ptr<NSColor> startingColor, std::shared_ptr<NSColor> endingColor) {
  return initWithStops({{std::move(startingColor), 0}, {std::move(endingColor), 1}});
}

std::shared_ptr<NSGradient> NSGradient::initWithColors(
    const std::vector<std::shared_ptr<NSColor>>& colors) {
  std::vector<Stop> stops;
  stops.reserve(colors.size());
  const CGFloat last = colors.size() > 1 ? static_cast<CGFloat>(colors.size() - 1) : 1;
  for (size_t i = 0; i < colors.size(); ++i) {
    stops.push_back({colors[i], static_cast<CGFloat>(i) / last});
  }
  return initWithStops(std::move(stops));
}

std::shared_ptr<NSGradient> NSGradient::initWithStops(std::vector<Stop> stops) {
  std::erase_if(stops, [](const Stop& s) { return s.color == nullptr; });
  if (stops.empty()) return nullptr;
  for (Stop& s : stops) s.location = s.location > 0 ? std::min(s.location, 1.0) : 0;
  std::stable_sort(stops.begin(), stops.end(),
                   [](const Stop& a, const Stop& b) { return a.location < b.location; });
  auto gradient = std::make_shared<NSGradient>();
  gradient->stops_ = std::move(stops);
  return gradient;
}

CGFloat NSGradient::averageOpacity() const {
  CGFloat sum = 0;
  for (const Stop& s : stops_) sum += s.color->alphaComponent();
  return stops_.empty() ? 0 : sum / static_cast<CGFloat>(stops_.size());
}
