#include "platform/text/drawing/RecordedGlyphs.h"

#include "platform/text/drawing/GlyphPainter.h"

void RecordedGlyphs::paint(CGContext& context) const {
  GlyphPainter(context).paint(*layout_, run_, origin_);
}
