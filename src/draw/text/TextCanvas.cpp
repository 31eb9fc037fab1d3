#include "draw/text/TextCanvas.h"

TextCanvas::TextCanvas(const NSSize& size, TextSmoothing smoothing,
                       const std::optional<NSRect>& part) {
  InitImageRep(size, &bitmap_);
  focus_.emplace(bitmap_);
  context().concatenate({1, 0, 0, -1, 0, size.height});
  context().setShouldAntialias(smoothing == TextSmoothing::on);
  if (part) context().clip(NSIntegralRect(*part));
}
