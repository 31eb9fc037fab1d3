#pragma once

#include <cassert>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/GraphicsRecorder.h"
#include "platform/graphics/context/GraphicsState.h"
#include "platform/graphics/gradient/CGGradient.h"
#include "platform/graphics/pixels/blur/DropShadow.h"
#include "platform/graphics/pixels/coverage/CanvasGrid.h"
#include "platform/graphics/pixels/coverage/CoverageShape.h"
#include "platform/graphics/pixels/coverage/PixelMask.h"
#include "platform/graphics/pixels/outline/PathData.h"
#include "platform/graphics/pixels/paint/GradientSource.h"
#include "platform/graphics/pixels/paint/PixelSurface.h"
#include "platform/graphics/pixels/paint/RowSource.h"
#include "platform/graphics/resample/PlacedImage.h"

class AlphaMask;

/// What of a canvas a bitmap shows, and how large.
struct CanvasView {
  NSSize canvas;      ///< in canvas units
  CGFloat scale = 1;  ///< device pixels a canvas unit
  /// Device position of the canvas's upper left corner.
  NSPoint corner{};
  /// Where the canvas ends inside of a device pixel, what ends with it ends with that pixel.
  bool fillsLastPixels = false;
  /// The device pixel that is the bitmap's upper left one.
  int32_t x = 0;
  int32_t y = 0;
};

/// Draws onto one bitmap. User space starts with its origin at the canvas's bottom left corner, y
/// upwards, in canvas units. At scale 1 those are pixels.
///
/// At another scale the picture is the same one, larger or smaller: lengths that are not in user
/// space (shadows, lines of width 0) are in canvas units, and so are the pixels that shapes without
/// antialiasing and pictures without interpolation are made of. What draws needs to know nothing of
/// it; bitmaps that are made to be drawn are made with OffscreenCanvas.
///
/// Every painting call combines with the bitmap by the state's operation where its shape has
/// coverage inside the clip, in proportion to that coverage, and touches no other pixel. The
/// source is scaled by the state's alpha first. With a shadow in force every call casts one, which
/// is painted first, by the same operation. A shape that is not finite paints nothing; so does
/// everything under a transform without inverse.
///
/// Not to be used from two threads at once.
class CGContext {
 public:
  /// A null or empty bitmap makes a context that paints nothing.
  explicit CGContext(const std::shared_ptr<NSBitmapImageRep>& bitmap);
  /// The bitmap shows a part of a canvas, whose device space is that of the whole. What is drawn
  /// outside is dropped; a scale that is not above 0 paints nothing.
  CGContext(const std::shared_ptr<NSBitmapImageRep>& bitmap, const CanvasView& view);
  /// Paints nothing: what it is told to goes to a recorder, for a canvas of that size at scale 1.
  CGContext(std::shared_ptr<GraphicsRecorder> recorder, NSSize canvas);
  CGContext(const CGContext&) = delete;
  CGContext& operator=(const CGContext&) = delete;

  /// Saves and restores everything in state(). A restore without a save inside the innermost
  /// transparency layer does nothing.
  void saveGState();
  void restoreGState();
  const GraphicsState& state() const { return state_; }
  /// User space to device space: pixels, rows counted from the top.
  CGAffineTransform deviceTransform() const { return toDevice(state_.transform); }
  /// What of the canvas can show, in canvas units: the box around the clip, and the two pixels
  /// beyond it from which interpolated pictures take colour.
  NSRect visibleCanvasRect() const;
  /// In whole units.
  NSSize canvasSize() const { return {grid_.width, grid_.height}; }
  /// Device pixels a canvas unit: what offscreen bitmaps are made with. Draws do not ask for it.
  CGFloat scale() const { return grid_.scale; }

  void setAlpha(CGFloat alpha) { state_.alpha = alpha; }
  CGFloat alpha() const { return state_.alpha; }
  void setOperation(NSCompositingOperation operation) { state_.operation = operation; }
  void setShadow(const ShadowStyle& shadow) { state_.shadow = shadow; }
  void setShouldAntialias(bool antialias) { state_.antialias = antialias; }
  void setInterpolation(NSImageInterpolation quality) { state_.interpolation = quality; }
  void setFillColor(const RGBAColor& color) { state_.fillColor = color; }
  void setStrokeColor(const RGBAColor& color) { state_.strokeColor = color; }
  /// The pen of replacePathWithStrokedPath.
  StrokeStyle& strokeStyle() { return state_.stroke; }

  /// Null unless the context records.
  const std::shared_ptr<GraphicsRecorder>& recorder() const { return recorder_; }
  /// Takes down glyphs; only of contexts that record.
  void record(std::shared_ptr<const GlyphRun> glyphs);

  /// Takes the place of the transform in force: user space to the canvas.
  void setTransform(const CGAffineTransform& transform) { state_.transform = transform; }
  /// Applies `transform` to everything drawn from now on, before the transform in force.
  void concatenate(const CGAffineTransform& transform);

  /// Intersects the clip with a rectangle, or with the inside of a path, in user space. An empty
  /// path leaves nothing.
  void clip(const NSRect& rect);
  void clip(const PathData& path, WindingRule winding);

  void fill(const NSRect& rect, NSCompositingOperation operation);
  void fill(const NSRect& rect) { fill(rect, state_.operation); }
  void fill(const PathData& path, WindingRule winding);

  /// Paints the fill colour through a mask in device space, moved by whole pixels. Nothing of it
  /// can be recorded: what makes such masks records what it makes them of.
  void fill(const AlphaMask& mask, int32_t dx, int32_t dy);

  /// Gives canvas pixels one value, as it is and whatever the state but for the clip; only without
  /// a transform.
  void replacePixels(const PixelMask& mask, uint32_t pixel);
  /// Whether neither a transform nor a clip is in force.
  bool paintsWholeCanvas() const;

  /// Draws the line along a path. The pen is in user space units: the transform shapes it.
  void stroke(const PathData& path, const StrokeStyle& style);

  /// Paints a gradient over the whole clip, its axis in user space. Nothing for axes that
  /// linearGradientSource and radialGradientSource refuse.
  void draw(const CGGradient& gradient, const LinearAxis& axis, GradientExtent extent);
  void draw(const CGGradient& gradient, const RadialAxis& axis, GradientExtent extent);
  /// The same inside a path only, as if it had been the clip.
  void fill(const PathData& path, WindingRule winding, const CGGradient& gradient,
            const LinearAxis& axis);
  void fill(const PathData& path, WindingRule winding, const CGGradient& gradient,
            const RadialAxis& axis);

  /// Stretches the part `source` of a bitmap (bottom left origin, pixels; cut to the bitmap) over
  /// `destination` in user space, the bitmap's top at the rectangle's upper edge. Only pixels
  /// inside the destination rectangle are affected; pixels at the bitmap's border are extended
  /// rather than faded. `alpha` takes the place of the state's alpha.
  void draw(const NSBitmapImageRep& image, const NSRect& destination, const NSRect& source,
            NSCompositingOperation operation, CGFloat alpha);
  /// The whole bitmap with the state's operation and alpha.
  void draw(const NSBitmapImageRep& image, const NSRect& destination);
  /// Erases what lies under the bitmap, as far as that is opaque, and then paints it there: it
  /// replaces what was there however translucent `alpha` makes it.
  void drawReplacing(const NSBitmapImageRep& image, const NSRect& destination, CGFloat alpha);
  /// Pixel for pixel, whatever transform and scale: the bitmap's upper left corner comes to
  /// a pixel in device space.
  void drawInDeviceSpace(const NSBitmapImageRep& image, int64_t x, int64_t y);

  // The current path belongs to the context, not to its state. Its points are fixed by the
  // transform at the time they are added. Clipping to it empties it.
  void beginPath() { path_ = {}; }
  void addPath(const PathData& path);
  void clipToPath(WindingRule winding);
  /// The outline of the line along it, drawn with the state's pen and without dashes, becomes the
  /// current path.
  void replacePathWithStrokedPath();

  /// Starts a transparent layer that takes what is painted from now on. Inside it the state is as
  /// before, except for alpha 1, no shadow, source-over, and a clip that covers the whole layer:
  /// what the clip in force lets show, and what can cast a shadow there.
  void beginTransparencyLayer();
  /// The same for what lies inside `content` (in user space) only: what is painted elsewhere is
  /// lost, and the layer takes no more memory and time than that rectangle.
  void beginTransparencyLayer(const NSRect& content);
  /// Paints the innermost layer as a whole and restores the state at its beginning, with whose
  /// clip, alpha, shadow and operation it is painted. The operation applies to the whole clip, also
  /// where the layer is transparent. Does nothing without a layer.
  void endTransparencyLayer();
  /// Drops the innermost layer with what was painted into it and restores the state at its
  /// beginning. Does nothing without a layer.
  void discardTransparencyLayer() noexcept;

 private:
  struct Layer {
    PixelSurface surface;
    size_t savedStates;  ///< states below this count are not restored inside the layer
  };
  /// A path and the transform from its space to that of the bitmap.
  struct PlacedPath {
    PathData path;
    CGAffineTransform transform;
  };

  const PixelSurface& surface() const { return layers_.empty() ? bitmap_ : layers_.back().surface; }
  PixelSurface& surface() { return layers_.empty() ? bitmap_ : layers_.back().surface; }
  bool isScaled() const { return grid_.scale != 1; }
  CGAffineTransform toDevice(const CGAffineTransform& toCanvas) const;
  CGAffineTransform toCanvasPixels(const CGAffineTransform& toCanvas) const;
  /// The current path in user space, which is left empty; nothing when user space is singular.
  PathData takePathInUserSpace();
  /// How shapes given in a space are covered: canvas pixel by canvas pixel where they have edges.
  CoverStyle coverStyle(const CGAffineTransform& toCanvas) const;
  ClipRegion clipped(const PathData& path, WindingRule winding, const CGAffineTransform& toCanvas);
  /// The pen with what it needs to know of the scale.
  StrokeStyle scaledPen(StrokeStyle style) const;
  void strokeWith(const PathData& path, const StrokeStyle& pen);
  PlacedImage placedPart(const NSBitmapImageRep& image, const NSRect& part,
                         const CGAffineTransform& toCanvas, const PixelBox& visible) const;
  void drawPart(const NSBitmapImageRep& image, const NSRect& part,
                const CGAffineTransform& toCanvas, NSCompositingOperation operation, CGFloat alpha);
  std::optional<DropShadow> dropShadow() const;
  PixelBox layerBox() const;
  void beginTransparencyLayer(const PixelBox& box);
  void beginRecordedLayer(const std::optional<NSRect>& content);

  void castShadow(const CoverageShape& shape, const SpanPaint& paint,
                  NSCompositingOperation operation);
  void composite(const ClipRegion& clip, const CoverageShape& shape, const SpanPaint& paint,
                 NSCompositingOperation operation);
  void paint(const CoverageShape& shape, const SpanPaint& paint, NSCompositingOperation operation);
  /// Paints transparency where the shape lies outside `box`.
  void compositeNothing(const CoverageShape& shape, const PixelBox& box,
                        NSCompositingOperation operation);
  uint32_t sourcePixel(const RGBAColor& color, NSCompositingOperation operation) const;
  std::unique_ptr<RowSource> gradientSource(const GradientTable& table, const LinearAxis& axis,
                                            GradientExtent extent) const;
  std::unique_ptr<RowSource> gradientSource(const GradientTable& table, const RadialAxis& axis,
                                            GradientExtent extent) const;
  template <class Axis>
  void paintGradient(const CoverageShape& shape, const CGGradient& gradient, const Axis& axis,
                     GradientExtent extent);
  template <class Axis>
  void fillWithGradient(const PathData& path, WindingRule winding, const CGGradient& gradient,
                        const Axis& axis);
  Layer takeLayer() noexcept;
  void paintLayer(const PixelSurface& layer);

  void recordPicture(const NSBitmapImageRep& image, const PictureOperation& operation,
                     NSCompositingOperation compositing, CGFloat alpha);
  template <class Axis>
  bool recordGradient(const CGGradient& gradient, const Axis& axis, GradientExtent extent,
                      const PathData* path, WindingRule winding);
  PixelBox canvasBox() const;
  void pushLayer(PixelSurface surface, ClipRegion clip);

  std::shared_ptr<GraphicsRecorder> recorder_;
  PathRenderer renderer_;
  PixelSurface bitmap_;
  CanvasGrid grid_;
  std::vector<Layer> layers_;
  GraphicsState state_;
  PlacedPath path_;
  std::vector<GraphicsState> saved_;
};

/// Saves the state of a context for the length of a scope.
class CGContextStateScope {
 public:
  explicit CGContextStateScope(CGContext& context) : context_(context) { context_.saveGState(); }
  CGContextStateScope(const CGContextStateScope&) = delete;
  CGContextStateScope& operator=(const CGContextStateScope&) = delete;
  ~CGContextStateScope() { context_.restoreGState(); }

 private:
  CGContext& context_;
};

/// A transparency layer, which end() paints: that allocates, so no destructor can do it. While an
/// exception passes, the layer is discarded.
class CGTransparencyLayerScope {
 public:
  explicit CGTransparencyLayerScope(CGContext& context) : context_(context) {
    context_.beginTransparencyLayer();
  }
  CGTransparencyLayerScope(CGContext& context, const NSRect& content) : context_(context) {
    context_.beginTransparencyLayer(content);
  }
  CGTransparencyLayerScope(const CGTransparencyLayerScope&) = delete;
  CGTransparencyLayerScope& operator=(const CGTransparencyLayerScope&) = delete;
  ~CGTransparencyLayerScope() {
    assert(!isOpen_ || std::uncaught_exceptions() > exceptions_);
    if (isOpen_) context_.discardTransparencyLayer();
  }

  /// Paints the layer as a whole. To be called once.
  void end() {
    isOpen_ = false;
    context_.endTransparencyLayer();
  }

 private:
  CGContext& context_;
  bool isOpen_ = true;
  int exceptions_ = std::uncaught_exceptions();  ///< at the beginning of the scope
};
