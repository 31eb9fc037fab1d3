#pragma once

#include <optional>

#include "platform/text/layout/NSParagraphStyle.h"

/// The stop that a tab advances to.
struct TabStop {
  double location = 0;  ///< from the edge where lines start
  NSTextTabType type = NSTextTabType::left;
};

/// The first stop of the style beyond x; nothing when there is none and no default interval.
std::optional<TabStop> tabStopAfter(const NSParagraphStyle& style, double x);

/// Where the text after a tab starts: the tab stands at `tabX`, the text up to the next tab or the
/// line's end is `width` wide, of which `untilPoint` before its first decimal point.
double startAfterTab(const TabStop& stop, double tabX, double width, double untilPoint);
