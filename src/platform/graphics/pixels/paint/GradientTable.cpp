#include "platform/graphics/pixels/paint/GradientTable.h"

#include <algorithm>
#include <vector>

#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/paint/GradientKernels.h"

namespace {

constexpr double kLastEntry = GradientTable::kSize - 1;

bool isBefore(const GradientStop& a, const GradientStop& b) {
  return a.location < b.location;
}

}  // namespace

RGBAColor interpolatedColor(std::span<const GradientStop> sortedStops, double location) {
  if (sortedStops.empty()) return {0, 0, 0, 0};
  const auto next = std::upper_bound(sortedStops.begin(), sortedStops.end(),
                                     GradientStop{location, {}}, isBefore);
  if (next == sortedStops.begin()) return sortedStops.front().color;
  if (next == sortedStops.end()) return sortedStops.back().color;
  const GradientStop& before = *(next - 1);
  return mixedColor(before.color, next->color,
                    (location - before.location) / (next->location - before.location));
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
  int32_t first = 0;
  const auto paint = [&](int32_t end, const GradientRamp& ramp) {
    if (end > first) rampPixels(pixels_.data() + 1 + first, first, end - first, ramp);
    first = end;
  };
  const RGBAColor start = sortedStops.front().color;
  rampPixels(pixels_.data(), -1, 1, {start, start, 0, 1, alpha});
  const GradientStop* before = nullptr;
  for (const GradientStop& stop : sortedStops) {
    // A stop counts from its own location on.
    int32_t end = first;
    while (end < kSize && end / kLastEntry < stop.location) ++end;
    const GradientStop& from = before == nullptr ? stop : *before;
    paint(end, {from.color, stop.color, from.location, stop.location, alpha});
    before = &stop;
  }
  paint(kSize, {before->color, before->color, 0, 1, alpha});
  opaque_ = std::all_of(pixels_.begin(), pixels_.end(),
                        [](uint32_t pixel) { return alphaOf(pixel) == 255; });
}
