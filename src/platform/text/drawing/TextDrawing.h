#pragma once

#include "platform/foundation/Geometry.h"
#include "platform/text/layout/TextLayout.h"

class CGContext;

// Drawing of laid-out text. The context's user space has y running down; `at` is where the
// container's top left corner goes. Lines that begin inside the range of units are drawn, whole.

/// Fills the background colours behind the text, as high as the lines are.
void drawTextBackground(const TextLayout& layout, const NSRange& units, NSPoint at,
                        CGContext& context);

/// Everything that drawing may touch, from the container's corner.
NSRect drawnBounds(const TextLayout& layout);

/// How far the glyphs of the first line reach above it, and those of the last line below it, points
/// of at least 0 and at most the line's height (outlines may be of any width): fonts may have
/// letters that do not keep to their own line heights. Lines that are made lower than their text
/// are cut, as the platform does.
struct InkOverflow {
  double above = 0;
  double below = 0;
};
InkOverflow inkBeyondLines(const TextLayout& layout);

/// Draws the glyphs with their shadows, and the lines under and through them.
void drawTextGlyphs(const TextLayout& layout, const NSRange& units, NSPoint at, CGContext& context);
