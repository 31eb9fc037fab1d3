#pragma once

#include <string_view>
#include <vector>

#include "platform/foundation/Geometry.h"

/// The composed character sequences of a text, in order: what a reader sees as one character.
std::vector<NSRange> composedCharacterRanges(std::u16string_view text);

/// The lines of a text as its line and paragraph separators divide it, without these.
std::vector<NSRange> lineRanges(std::u16string_view text);
