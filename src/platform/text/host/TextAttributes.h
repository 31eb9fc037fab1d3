#pragma once

#include <memory>

#include "platform/text/layout/StyledText.h"

class NSAttributedString;
class NSDictionary;

/// What attributes mean; null for none. Values of a wrong kind count as not set, numbers that are
/// not finite too.
TextStyle textStyle(const NSDictionary* attributes);

/// A copy of a text with its attributes understood.
std::shared_ptr<const StyledText> makeStyledText(const NSAttributedString& text);
