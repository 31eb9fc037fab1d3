#include "platform/graphics/pixels/GradientTable.h"

#include <algorithm>
#include <vector>

#include "platform/graphics/pixels/PixelMath.h"

namespace {

bool isBefore(const GradientStop& a, const GradientStop& b) {
  return a.location < b.location;
}

RGBAColor mixedColor(const RGBAColor& a, const RGBAColor& b, double t) {
  return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t,
          a.blue + (b.blue - a.blue) * t, a.alpha + (b.alpha - a.alpha) * t};
}

/// The colour at `location`, `next` being the index of the first stop beyond it.
RGBAColor colorBefore(std::span<const GradientStop> stops, size_t next, double location) {
  if (next == 0) return stops.front().color;
  if (next == stops.size()) return stops.back().color;
  const GradientStop& a = stops[next - 1];
  const GradientStop& b = stops[next];
  return mixedColor(a.color, b.color, (location - a.location) / (b.location - a.location));
}

}  // namespace

RGBAColor interpolatedColor(std::span<const GradientStop> sortedStops, double location) {
  if (sortedStops.empty()) return {0, 0, 0, 0};
  const auto next = std::upper_bound(sortedStops.begin(), sortedStops.end(),
                                     GradientStop{location, {}}, isBefore);
  return colorBefore(sortedStops, static_cast<size_t>(next - sortedStops.begin()), location);
}

GradientTable::GradientTable(std::span<const GradientStop> stops, double alpha) {
  if (stops.empty()) return;
  std::vector<GradientStop> sorted(stops.begin(), stops.end());
  for (GradientStop& stop : sorted) stop.location = unitClamp(stop.location);
  if (!std::is_sorted(sorted.begin(), sorted.end(), isBefore)) {
    std::stable_sort(sorted.begin(), sorted.end(), isBefore);
  }
  sample(sorted, alpha);
}

void GradientTable::sample(std::span<const GradientStop> sortedStops, double alpha) {
  size_t next = 0;
  opaque_ = true;
  for (size_t i = 0; i < pixels_.size(); ++i) {
    const double location = static_cast<double>(i) / (kSize - 1);
    while (next < sortedStops.size() && sortedStops[next].location <= location) ++next;
    pixels_[i] = premultipliedPixel(colorBefore(sortedStops, next, location), alpha);
    opaque_ = opaque_ && alphaOf(pixels_[i]) == 255;
  }
}
