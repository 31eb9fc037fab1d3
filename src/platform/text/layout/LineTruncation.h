#pragma once

#include <string_view>

#include "platform/text/layout/LineFitting.h"

/// How a line is truncated: its width is to be at most `available`.
struct TruncationSetting {
  NSLineBreakMode mode;
  double available;
  std::u16string_view text;
  TextItemizer& itemizer;
  const LineFitter& paragraph;
};

/// For lines of the truncating modes that are too wide: replaces the head, the tail or the middle
/// by an ellipsis, so that the line fits; a line without room for an ellipsis is left empty. Other
/// lines stay as they are. The line's range of units does not change, and user-perceived characters
/// stay whole.
void truncateLine(FittedLine& line, const TruncationSetting& setting);
