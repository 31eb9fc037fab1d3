#pragma once

#include <memory>
#include <optional>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"

enum class TextSmoothing : uint8_t { off, on };

/// A new bitmap for a part of a draw's space, drawn on in that space for the length of a scope.
class TextCanvas {
 public:
  /// `area` has whole sides. Of it only what lies in `part` is made.
  TextCanvas(const NSRect& area, TextSmoothing smoothing, const std::optional<NSRect>& part);
  TextCanvas(const TextCanvas&) = delete;
  TextCanvas& operator=(const TextCanvas&) = delete;

  /// Null when nothing is wanted or the size is beyond any bitmap; drawing then goes nowhere.
  const std::shared_ptr<NSBitmapImageRep>& bitmap() const { return bitmap_; }
  /// What the bitmap shows.
  const NSRect& rect() const { return rect_; }
  CGContext& context() const { return *NSGraphicsContext::currentContext()->graphicsPort(); }

 private:
  NSRect rect_;
  std::shared_ptr<NSBitmapImageRep> bitmap_;
  std::optional<ZTFocusScope> focus_;
};
