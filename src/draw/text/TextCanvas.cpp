#include "draw/text/TextCanvas.h"

#include <cmath>

namespace {

/// The smallest part of `area` in whole units from its corner that holds all it shares with `part`.
NSRect wholePart(const NSRect& area, const NSRect& part) {
  const NSRect shared = NSIntersectionRect(area, part);
  if (NSIsEmptyRect(shared)) return NSZeroRect;
  const CGFloat x0 = std::floor(NSMinX(shared) - NSMinX(area));
  const CGFloat y0 = std::floor(NSMinY(shared) - NSMinY(area));
  const CGFloat x1 = std::ceil(NSMaxX(shared) - NSMinX(area));
  const CGFloat y1 = std::ceil(NSMaxY(shared) - NSMinY(area));
  return NSMakeRect(NSMinX(area) + x0, NSMinY(area) + y0, x1 - x0, y1 - y0);
}

}  // namespace

TextCanvas::TextCanvas(const NSRect& area, TextSmoothing smoothing,
                       const std::optional<NSRect>& part)
    : rect_(part ? wholePart(area, *part) : area) {
  if (!NSIsEmptyRect(rect_)) InitImageRep(rect_.size, &bitmap_);
  focus_.emplace(bitmap_);
  context().concatenate(CGAffineTransformMakeTranslation(-NSMinX(rect_), -NSMinY(rect_)));
  context().setShouldAntialias(smoothing == TextSmoothing::on);
}
