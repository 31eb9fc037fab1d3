#include "platform/graphics/gradient/CGGradient.h"

#include <algorithm>

CGGradient CGGradientCreateWithColorComponents(std::span<const CGFloat> components,
                                               std::span<const CGFloat> locations) {
  size_t count = components.size() / 4;
  if (!locations.empty()) count = std::min(count, locations.size());
  std::vector<GradientStop> stops(count);
  for (size_t i = 0; i < count; ++i) {
    const auto color = components.subspan(4 * i, 4);
    stops[i].color = {color[0], color[1], color[2], color[3]};
    const CGFloat even = count > 1 ? static_cast<CGFloat>(i) / static_cast<CGFloat>(count - 1) : 0;
    stops[i].location = locations.empty() ? even : locations[i];
  }
  return CGGradient(std::move(stops));
}
