#include "platform/foundation/Limits.h"
#include "platform/graphics/CGContext.h"
#include "platform/graphics/pixels/ImageSource.h"

namespace {

/// Without a bitmap for boxes that are empty or larger than any canvas.
PixelSurface surfaceFor(const PixelBox& box) {
  if (box.empty()) return PixelSurface(nullptr, 0, 0);
  return PixelSurface(NSBitmapImageRep::create(box.width(), box.height()), box.x0, box.y0);
}

}  // namespace

/// What shows through the clip; with a shadow also what casts it there.
PixelBox CGContext::layerBox() const {
  const PixelBox& visible = state_.clip.box();
  const auto shadow = dropShadow();
  return shadow ? unionBox(visible, castingBox(*shadow, visible)) : visible;
}

void CGContext::beginTransparencyLayer() {
  beginTransparencyLayer(layerBox());
}

void CGContext::beginTransparencyLayer(const NSRect& content) {
  DeviceBounds bounds;
  for (const NSPoint& corner : pathOfRect(content).points) {
    bounds.add(CGPointApplyAffineTransform(corner, deviceTransform()));
  }
  // Edges are snapped to a grid and may reach into the next pixel.
  bounds.grow(1);
  beginTransparencyLayer(pixelsTouched(bounds, layerBox()));
}

void CGContext::beginTransparencyLayer(const PixelBox& box) {
  PixelSurface surface = surfaceFor(box);
  if (surface.bitmap() == nullptr) {
    // What casts a shadow may lie beyond any canvas.
    surface = surfaceFor(intersection(box, state_.clip.box()));
  }
  saved_.push_back(state_);
  layers_.push_back({std::move(surface), saved_.size()});
  state_.alpha = 1;
  state_.shadow = {};
  state_.operation = NSCompositingOperation::sourceOver;
  state_.clip = ClipRegion(layers_.back().surface.box());
}

void CGContext::endTransparencyLayer() {
  if (layers_.empty()) return;
  const Layer layer = std::move(layers_.back());
  layers_.pop_back();
  saved_.resize(layer.savedStates);
  state_ = std::move(saved_.back());
  saved_.pop_back();
  paintLayer(layer.surface);
}

void CGContext::paintLayer(const PixelSurface& layer) {
  const NSCompositingOperation operation = state_.operation;
  const BoxShape content(layer.painted());
  if (layer.bitmap() != nullptr) {
    MovedImageSource pixels(*layer.bitmap(), -layer.box().x0, -layer.box().y0);
    const SpanPaint paint = SpanPaint::rows(pixels, unitToByte(state_.alpha));
    castShadow(content, paint, operation);
    composite(state_.clip, content, paint, operation);
  }
  compositeNothing(BoxShape(state_.clip.box()), layer.painted(), operation);
}
