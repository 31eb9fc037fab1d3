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

/// Draws the glyphs with their shadows, and the lines under and through them.
void drawTextGlyphs(const TextLayout& layout, const NSRange& units, NSPoint at, CGContext& context);
