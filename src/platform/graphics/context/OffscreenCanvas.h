#pragma once

#include <memory>
#include <optional>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"

/// How the pixels of an offscreen bitmap lie in the space that it is drawn in, so that they become
/// pixels of the context that it is made for.
struct OffscreenGrid {
  CGFloat scale = 1;  ///< pixels a unit
  /// Where the space's origin lies inside of a pixel, y downwards. Zero at scale 1, where bitmaps
  /// begin with what they show.
  NSPoint fraction;
  /// Of bitmaps that are recorded: where in which user space that is drawn in.
  struct Recorded {
    NSPoint origin;
    CGAffineTransform transform;
    bool operator==(const Recorded&) const = default;
  };
  std::optional<Recorded> recorded;
  bool operator==(const OffscreenGrid&) const = default;
};

/// Pixels a unit for bitmaps that the current context is going to draw; 1 without a context.
CGFloat offscreenScale();

/// For what is going to be drawn into the current context from a point of its user space on; scale
/// 1 without a context.
OffscreenGrid offscreenGridAt(NSPoint origin);

/// A new bitmap for a part of a space, drawn on in that space for the length of a scope. This is
/// how draws make bitmaps that they draw: at the scale of the context, whatever it is.
class OffscreenCanvas {
 public:
  /// `area` has whole sides. Of it only what lies in `part` is made.
  OffscreenCanvas(const NSRect& area, const OffscreenGrid& grid, const std::optional<NSRect>& part);
  OffscreenCanvas(const OffscreenCanvas&) = delete;
  OffscreenCanvas& operator=(const OffscreenCanvas&) = delete;

  /// Null when nothing is wanted or the size is beyond any bitmap; drawing then goes nowhere.
  const std::shared_ptr<NSBitmapImageRep>& bitmap() const { return bitmap_; }
  /// What the bitmap shows: where it is to be drawn.
  const NSRect& rect() const { return rect_; }
  CGContext& context() const { return *NSGraphicsContext::currentContext()->graphicsPort(); }

 private:
  void record(const OffscreenGrid::Recorded& recorded);

  NSRect rect_;
  std::shared_ptr<NSBitmapImageRep> bitmap_;
  std::optional<ZTFocusScope> focus_;
};
