#pragma once

#include <memory>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/GraphicsState.h"
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/pixels/CoverageShape.h"
#include "platform/graphics/pixels/PixelSurface.h"
#include "platform/graphics/pixels/RowSource.h"

/// Draws onto one bitmap. User space starts with its origin at the bitmap's bottom left corner, y
/// upwards, one unit per pixel.
///
/// Every painting call combines with the bitmap by the state's operation where its shape has
/// coverage inside the clip, in proportion to that coverage, and touches no other pixel. The
/// source is scaled by the state's alpha first. A shape that is not finite paints nothing; so does
/// everything under a transform without inverse.
///
/// Not to be used from two threads at once.
class CGContext {
 public:
  /// A null or empty bitmap makes a context that paints nothing.
  explicit CGContext(std::shared_ptr<NSBitmapImageRep> bitmap);
  CGContext(const CGContext&) = delete;
  CGContext& operator=(const CGContext&) = delete;

  /// Saves and restores everything in state(). A restore without a save inside the innermost
  /// transparency layer does nothing.
  void saveGState();
  void restoreGState();
  const GraphicsState& state() const { return state_; }

  void setAlpha(CGFloat alpha) { state_.alpha = alpha; }
  void setOperation(NSCompositingOperation operation) { state_.operation = operation; }
  void setShouldAntialias(bool antialias) { state_.antialias = antialias; }
  void setInterpolation(NSImageInterpolation quality) { state_.interpolation = quality; }
  void setFillColor(const RGBAColor& color) { state_.fillColor = color; }
  void setStrokeColor(const RGBAColor& color) { state_.strokeColor = color; }

  /// Applies `transform` to everything drawn from now on, before the transform in force.
  void concatenate(const CGAffineTransform& transform);

  /// Intersects the clip with a rectangle in user space.
  void clip(const NSRect& rect);

  void fill(const NSRect& rect, NSCompositingOperation operation);
  void fill(const NSRect& rect) { fill(rect, state_.operation); }

  /// Stretches the part `source` of a bitmap (bottom left origin, pixels; cut to the bitmap) over
  /// `destination` in user space, the bitmap's top at the rectangle's upper edge. Only pixels
  /// inside the destination rectangle are affected; pixels at the bitmap's border are extended
  /// rather than faded. `alpha` takes the place of the state's alpha.
  void draw(const NSBitmapImageRep& image, const NSRect& destination, const NSRect& source,
            NSCompositingOperation operation, CGFloat alpha);
  /// The whole bitmap with the state's operation and alpha.
  void draw(const NSBitmapImageRep& image, const NSRect& destination);

 private:
  PixelSurface& surface() { return surface_; }
  /// User space to device space: pixels, rows counted from the top.
  CGAffineTransform deviceTransform() const;
  Antialias antialias() const { return state_.antialias ? Antialias::on : Antialias::off; }
  FillStyle fillStyle(WindingRule winding) const;
  void paint(const CoverageShape& shape, const SpanPaint& paint, NSCompositingOperation operation) {
    paintInside(state_.clip, shape, paint, operation);
  }
  void paintInside(const ClipRegion& clip, const CoverageShape& shape, const SpanPaint& paint,
                   NSCompositingOperation operation);
  /// Paints with a source of which only the device rows `painted` can be anything but transparent.
  void paintRows(const RowRange& painted, const CoverageShape& shape, const SpanPaint& paint,
                 NSCompositingOperation operation);

  PathRenderer renderer_;
  PixelSurface surface_;
  GraphicsState state_;
  std::vector<GraphicsState> saved_;
};
