#pragma once

#include "platform/text/layout/LineFitting.h"
#include "platform/text/layout/TextLayout.h"

/// Horizontal room of a line, from the container's left edge.
struct LineRoom {
  double left = 0;
  double right = 0;
  bool bounded = true;

  double width() const { return right - left; }
};

/// How a line is set into its room.
struct LineSetting {
  NSTextAlignment alignment = NSTextAlignment::left;
  TextDirection direction = TextDirection::leftToRight;
};

/// Appends the line's runs and glyphs in visual order and answers where they are. Vertical
/// positions and the range of units are the caller's.
PlacedLine placeLine(FittedLine line, const LineRoom& room, const LineSetting& setting,
                     std::u16string_view text, TextLayout& layout);
