#include "platform/text/layout/TabStops.h"

#include <algorithm>
#include <cmath>

#include "platform/text/TextLengths.h"

std::optional<TabStop> tabStopAfter(const NSParagraphStyle& style, double x) {
  const NSParagraphStyle::TabStops& stops = style.tabStops();
  const auto next = std::upper_bound(
      stops.begin(), stops.end(), x + kPositionTolerance,
      [](double position, const auto& stop) { return position < stop->location(); });
  if (next != stops.end()) return TabStop{(*next)->location(), (*next)->tabStopType()};
  const double interval = layoutLength(style.defaultTabInterval());
  if (!(interval > kPositionTolerance)) return std::nullopt;
  return TabStop{(std::floor((x + kPositionTolerance) / interval) + 1) * interval,
                 NSTextTabType::left};
}

double startAfterTab(const TabStop& stop, double tabX, double width, double untilPoint) {
  switch (stop.type) {
    case NSTextTabType::right:
      return std::max(tabX, stop.location - width);
    case NSTextTabType::center:
      return std::max(tabX, stop.location - width / 2);
    case NSTextTabType::decimal:
      return std::max(tabX, stop.location - untilPoint);
    case NSTextTabType::left:
      break;
  }
  return std::max(tabX, stop.location);
}
