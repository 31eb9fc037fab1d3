#include "platform/graphics/CGContext.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/graphics/pixels/AlphaMask.h"
#include "platform/graphics/pixels/SpanCompositor.h"

namespace {

constexpr PixelBox kEverywhere{-(1 << 30), -(1 << 30), 1 << 30, 1 << 30};

/// Shadows fall by whole pixels. Beyond the bound they cannot be seen on any bitmap.
int32_t wholePixels(double offset) {
  constexpr double kFarthest = 1 << 29;
  return std::isnan(offset)
             ? 0
             : static_cast<int32_t>(std::lround(std::clamp(offset, -kFarthest, kFarthest)));
}

PathData transformedPath(PathData path, const CGAffineTransform& transform) {
  for (NSPoint& p : path.points) p = CGPointApplyAffineTransform(p, transform);
  return path;
}

void append(const PathData& path, PathData& to) {
  to.verbs.insert(to.verbs.end(), path.verbs.begin(), path.verbs.end());
  to.points.insert(to.points.end(), path.points.begin(), path.points.end());
}

}  // namespace

CGContext::CGContext(std::shared_ptr<NSBitmapImageRep> bitmap) : bitmap_(std::move(bitmap), 0, 0) {
  state_.clip = ClipRegion(bitmap_.box());
}

void CGContext::saveGState() {
  saved_.push_back(state_);
}

void CGContext::restoreGState() {
  const size_t kept = layers_.empty() ? 0 : layers_.back().savedStates;
  if (saved_.size() <= kept) return;
  state_ = std::move(saved_.back());
  saved_.pop_back();
}

void CGContext::concatenate(const CGAffineTransform& transform) {
  state_.transform = CGAffineTransformConcat(transform, state_.transform);
}

CGAffineTransform CGContext::toDevice(const CGAffineTransform& toBitmap) const {
  const auto height = static_cast<CGFloat>(bitmap_.box().height());
  return CGAffineTransformConcat(toBitmap, {1, 0, 0, -1, 0, height});
}

FillStyle CGContext::fillStyle(WindingRule winding) const {
  return {winding, deviceTransform(), antialias()};
}

std::optional<DropShadow> CGContext::dropShadow() const {
  const ShadowStyle& shadow = state_.shadow;
  if (!shadow.visible()) return std::nullopt;
  return DropShadow{wholePixels(shadow.offset.width), -wholePixels(shadow.offset.height),
                    shadow.blur, shadow.color};
}

void CGContext::clip(const NSRect& rect) {
  state_.clip = renderer_.clipToRect(rect, deviceTransform(), antialias(), state_.clip);
}

void CGContext::clip(const PathData& path, WindingRule winding) {
  state_.clip = renderer_.clipToPath(path, winding, deviceTransform(), antialias(), state_.clip);
}

// --- Painting ---

void CGContext::castShadow(const CoverageShape& shape, const SpanPaint& paint,
                           NSCompositingOperation operation) {
  if (const auto shadow = dropShadow()) {
    paintShadow(surface(), state_.clip, shape, paint, operation, *shadow);
  }
}

void CGContext::composite(const ClipRegion& clip, const CoverageShape& shape,
                          const SpanPaint& paint, NSCompositingOperation operation) {
  ClipRegion area = clip;
  const bool nothing = paint.source == nullptr && paint.pixel == 0;
  if (nothing) {
    // No operation makes anything of nothing on nothing.
    const PixelBox used = surface().used();
    area = area.intersected(used);
    const bool erases = !keepsDestinationUnderNothing(operation) && area.isBox();
    if (erases && area.box() == used && shape.fills(used)) {
      surface().clear();
      return;
    }
  }
  if (area.isEmpty()) return;
  SpanCompositor compositor(surface(), operation, paint);
  shape.cover(area, compositor);
}

void CGContext::compositeNothing(const CoverageShape& shape, const PixelBox& box,
                                 NSCompositingOperation operation) {
  if (keepsDestinationUnderNothing(operation)) return;
  const PixelBox all = state_.clip.box();
  const PixelBox hole = intersection(box, all);
  const auto erase = [&](const PixelBox& part) {
    composite(state_.clip.intersected(part), shape, SpanPaint::solid(0), operation);
  };
  if (hole.empty()) {
    erase(all);
    return;
  }
  erase({all.x0, all.y0, all.x1, hole.y0});
  erase({all.x0, hole.y0, hole.x0, hole.y1});
  erase({hole.x1, hole.y0, all.x1, hole.y1});
  erase({all.x0, hole.y1, all.x1, all.y1});
}

void CGContext::paint(const CoverageShape& shape, const SpanPaint& paint,
                      NSCompositingOperation operation) {
  castShadow(shape, paint, operation);
  composite(state_.clip, shape, paint, operation);
}

void CGContext::fill(const NSRect& rect, NSCompositingOperation operation) {
  const PathData path = pathOfRect(rect);
  paint(FillShape(renderer_, path, fillStyle(WindingRule::nonZero)),
        SpanPaint::solid(sourcePixel(state_.fillColor, operation)), operation);
}

void CGContext::fill(const PathData& path, WindingRule winding) {
  paint(FillShape(renderer_, path, fillStyle(winding)),
        SpanPaint::solid(sourcePixel(state_.fillColor, state_.operation)), state_.operation);
}

void CGContext::fill(const AlphaMask& mask, int32_t dx, int32_t dy) {
  paint(MaskShape(mask, dx, dy), SpanPaint::solid(sourcePixel(state_.fillColor, state_.operation)),
        state_.operation);
}

void CGContext::stroke(const PathData& path, const StrokeStyle& style) {
  paint(StrokeShape(renderer_, path, style, deviceTransform(), antialias()),
        SpanPaint::solid(sourcePixel(state_.strokeColor, state_.operation)), state_.operation);
}

uint32_t CGContext::sourcePixel(const RGBAColor& color, NSCompositingOperation operation) const {
  return operation == NSCompositingOperation::clear ? 0 : premultipliedPixel(color, state_.alpha);
}

// --- The current path ---

void CGContext::addPath(const PathData& path) {
  if (path_.path.empty()) {
    path_ = {path, state_.transform};
    return;
  }
  if (path_.transform != state_.transform) {
    path_ = {transformedPath(path_.path, path_.transform), {}};
  }
  const bool sameSpace = path_.transform == state_.transform;
  append(sameSpace ? path : transformedPath(path, state_.transform), path_.path);
}

void CGContext::clipToPath(WindingRule winding) {
  const PlacedPath placed = std::exchange(path_, {});
  state_.clip = renderer_.clipToPath(placed.path, winding, toDevice(placed.transform), antialias(),
                                     state_.clip);
}

PathData CGContext::takePathInUserSpace() {
  PlacedPath placed = std::exchange(path_, {});
  if (placed.transform == state_.transform) return std::move(placed.path);
  if (CGAffineTransformDeterminant(state_.transform) == 0) return {};
  return transformedPath(
      placed.path,
      CGAffineTransformConcat(placed.transform, CGAffineTransformInvert(state_.transform)));
}

void CGContext::replacePathWithStrokedPath() {
  const PathData path = takePathInUserSpace();
  path_ = {renderer_.strokeOutline(path, state_.stroke, deviceTransform()), state_.transform};
}

// --- Gradients ---

std::unique_ptr<RowSource> CGContext::gradientSource(const GradientTable& table,
                                                     const LinearAxis& axis,
                                                     GradientExtent extent) const {
  return linearGradientSource(table, axis, extent, deviceTransform());
}

std::unique_ptr<RowSource> CGContext::gradientSource(const GradientTable& table,
                                                     const RadialAxis& axis,
                                                     GradientExtent extent) const {
  return radialGradientSource(table, axis, extent, deviceTransform());
}

template <class Axis>
void CGContext::paintGradient(const CoverageShape& shape, const CGGradient& gradient,
                              const Axis& axis, GradientExtent extent) {
  const GradientTable table(gradient.stops(), state_.alpha);
  if (const auto source = gradientSource(table, axis, extent)) {
    paint(shape, SpanPaint::rows(*source), state_.operation);
  }
}

template <class Axis>
void CGContext::fillWithGradient(const PathData& path, WindingRule winding,
                                 const CGGradient& gradient, const Axis& axis) {
  if (!state_.shadow.visible()) {
    paintGradient(FillShape(renderer_, path, fillStyle(winding)), gradient, axis,
                  GradientExtent::both);
    return;
  }
  // The gradient that casts the shadow is not bounded by the path.
  const CGContextStateScope state(*this);
  clip(path, winding);
  draw(gradient, axis, GradientExtent::both);
}

void CGContext::draw(const CGGradient& gradient, const LinearAxis& axis, GradientExtent extent) {
  paintGradient(BoxShape(kEverywhere), gradient, axis, extent);
}

void CGContext::draw(const CGGradient& gradient, const RadialAxis& axis, GradientExtent extent) {
  paintGradient(BoxShape(kEverywhere), gradient, axis, extent);
}

void CGContext::fill(const PathData& path, WindingRule winding, const CGGradient& gradient,
                     const LinearAxis& axis) {
  fillWithGradient(path, winding, gradient, axis);
}

void CGContext::fill(const PathData& path, WindingRule winding, const CGGradient& gradient,
                     const RadialAxis& axis) {
  fillWithGradient(path, winding, gradient, axis);
}
