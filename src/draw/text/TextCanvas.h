#pragma once

#include <memory>
#include <optional>

#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/NSGraphicsContext.h"

enum class TextSmoothing : uint8_t { off, on };

/// A new bitmap that is drawn on for the length of a scope, in a space with y running down from its
/// top left corner.
class TextCanvas {
 public:
  /// `part`, in that space, is all that has to be painted.
  TextCanvas(const NSSize& size, TextSmoothing smoothing, const std::optional<NSRect>& part);
  TextCanvas(const TextCanvas&) = delete;
  TextCanvas& operator=(const TextCanvas&) = delete;

  /// Null when the size is beyond any bitmap; drawing then goes nowhere.
  const std::shared_ptr<NSBitmapImageRep>& bitmap() const { return bitmap_; }
  CGContext& context() const { return *NSGraphicsContext::currentContext()->graphicsPort(); }

 private:
  std::shared_ptr<NSBitmapImageRep> bitmap_;
  std::optional<ZTFocusScope> focus_;
};
