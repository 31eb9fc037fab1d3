#pragma once

#include <string_view>

#include "platform/text/layout/LineFitting.h"

/// For lines of the truncating modes that are wider than `available`: replaces the head, the tail
/// or the middle by an ellipsis, so that the line fits. Other lines stay as they are. The line's
/// range of units does not change.
void truncateLine(FittedLine& line, NSLineBreakMode mode, double available,
                  std::u16string_view text);
