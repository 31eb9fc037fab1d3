#include "platform/graphics/context/CGContext.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/graphics/pixels/blur/GaussianBlur.h"
#include "platform/graphics/pixels/coverage/AlphaMask.h"
#include "platform/graphics/pixels/paint/ImageSource.h"
#include "platform/graphics/pixels/paint/MaskKernels.h"
#include "platform/graphics/pixels/paint/SpanCompositor.h"

namespace {

constexpr PixelBox kEverywhere{-(1 << 30), -(1 << 30), 1 << 30, 1 << 30};

/// Shadows fall by whole pixels. Beyond the bound they cannot be seen on any bitmap.
int32_t wholePixelOffset(double offset) {
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

/// Image positions to the user space in which `source`, given from the bottom left, covers
/// `destination`.
CGAffineTransform imageToUser(const NSBitmapImageRep& image, const NSRect& source,
                              const NSRect& destination) {
  const CGFloat sx = NSWidth(destination) / NSWidth(source);
  const CGFloat sy = NSHeight(destination) / NSHeight(source);
  const CGFloat top = static_cast<CGFloat>(image.pixelsHigh()) - NSMaxY(source);
  return {sx, 0, 0, -sy, NSMinX(destination) - NSMinX(source) * sx, NSMaxY(destination) + top * sy};
}

ImageQuality qualityFor(NSImageInterpolation interpolation) {
  switch (interpolation) {
    case NSImageInterpolation::none:
      return ImageQuality::nearest;
    case NSImageInterpolation::low:
      return ImageQuality::bilinear;
    default:
      return ImageQuality::filtered;
  }
}

/// Without pixels for boxes that are empty or larger than any canvas.
PixelSurface surfaceFor(const PixelBox& box) {
  if (box.empty() || !PixelBuffer::canHold(box.width(), box.height())) {
    return PixelSurface(nullptr, 0, 0);
  }
  return PixelSurface(std::make_shared<PixelBuffer>(box.width(), box.height()), box.x0, box.y0);
}

}  // namespace

CGContext::CGContext(const std::shared_ptr<NSBitmapImageRep>& bitmap)
    : CGContext(bitmap, CanvasView{bitmap == nullptr ? NSZeroSize : bitmap->size()}) {}

CGContext::CGContext(const std::shared_ptr<NSBitmapImageRep>& bitmap, const CanvasView& view)
    : bitmap_(sharedPixels(view.scale > 0 ? bitmap : nullptr), view.x, view.y),
      grid_{view.scale,        view.corner.x,      view.corner.y,
            view.canvas.width, view.canvas.height, view.fillsLastPixels} {
  state_.clip = ClipRegion(bitmap_.box());
  if (view.fillsLastPixels) renderer_.setCanvasEnd({grid_.right(), grid_.bottom()});
}

CGContext::CGContext(std::shared_ptr<GraphicsRecorder> recorder, NSSize canvas)
    : recorder_(std::move(recorder)),
      bitmap_(nullptr, 0, 0),
      grid_{1, 0, 0, canvas.width, canvas.height} {
  state_.clip = ClipRegion(canvasBox());
}

PixelBox CGContext::canvasBox() const {
  return {0, 0, static_cast<int32_t>(grid_.width), static_cast<int32_t>(grid_.height)};
}

void CGContext::record(std::shared_ptr<const GlyphRun> glyphs) {
  recorder_->add(state_, GlyphOperation{std::move(glyphs)});
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

CGAffineTransform CGContext::toDevice(const CGAffineTransform& toCanvas) const {
  return CGAffineTransformConcat(toCanvas,
                                 {grid_.scale, 0, 0, -grid_.scale, grid_.x, grid_.bottom()});
}

/// To the canvas's own pixels, which are those of the device at scale 1.
CGAffineTransform CGContext::toCanvasPixels(const CGAffineTransform& toCanvas) const {
  return CGAffineTransformConcat(toCanvas, {1, 0, 0, -1, 0, grid_.height});
}

NSRect CGContext::visibleCanvasRect() const {
  constexpr CGFloat kReach = 2;
  const PixelBox& box = state_.clip.box();
  const NSRect device =
      NSMakeRect(box.x0 - kReach, box.y0 - kReach, static_cast<CGFloat>(box.width()) + 2 * kReach,
                 static_cast<CGFloat>(box.height()) + 2 * kReach);
  return CGRectApplyAffineTransform(device, CGAffineTransformInvert(toDevice({})));
}

CoverStyle CGContext::coverStyle(const CGAffineTransform& toCanvas) const {
  if (state_.antialias) return {toDevice(toCanvas), Antialias::on};
  if (!isScaled()) return {toDevice(toCanvas), Antialias::off};
  return {toCanvasPixels(toCanvas), Antialias::off, &grid_};
}

StrokeStyle CGContext::scaledPen(StrokeStyle style) const {
  if (state_.antialias) style.canvasPixel = grid_.scale;
  return style;
}

std::optional<DropShadow> CGContext::dropShadow() const {
  const ShadowStyle& shadow = state_.shadow;
  if (!shadow.visible()) return std::nullopt;
  const CGFloat scale = grid_.scale;
  return DropShadow{wholePixelOffset(shadow.offset.width) * scale,
                    -wholePixelOffset(shadow.offset.height) * scale,
                    std::min<CGFloat>(shadow.blur, kMaxBlurReach) * scale, shadow.color};
}

ClipRegion CGContext::clipped(const PathData& path, WindingRule winding,
                              const CGAffineTransform& toCanvas) {
  const CoverStyle style = coverStyle(toCanvas);
  if (recorder_ != nullptr) {
    state_.recordedClip = std::make_shared<const RecordedClip>(
        RecordedClip{state_.recordedClip, path, winding, toCanvas, state_.antialias});
    return ClipRegion(fillBox(path, style.toDevice, state_.clip.box()));
  }
  if (style.grid == nullptr) {
    return renderer_.clipToPath(path, winding, style.toDevice, style.antialias, state_.clip);
  }
  CoverageRowsBuilder builder;
  FillShape(renderer_, path, winding, style).cover(state_.clip, builder);
  return ClipRegion(builder.finish());
}

void CGContext::clip(const NSRect& rect) {
  clip(pathOfRect(rect), WindingRule::nonZero);
}

void CGContext::clip(const PathData& path, WindingRule winding) {
  state_.clip = clipped(path, winding, state_.transform);
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
  if (recorder_ != nullptr) {
    const CGContextStateScope state(*this);
    state_.operation = operation;
    return fill(path, WindingRule::nonZero);
  }
  paint(FillShape(renderer_, path, WindingRule::nonZero, coverStyle(state_.transform)),
        SpanPaint::solid(sourcePixel(state_.fillColor, operation)), operation);
}

void CGContext::fill(const PathData& path, WindingRule winding) {
  if (recorder_ != nullptr) return recorder_->add(state_, FillOperation{path, winding});
  paint(FillShape(renderer_, path, winding, coverStyle(state_.transform)),
        SpanPaint::solid(sourcePixel(state_.fillColor, state_.operation)), state_.operation);
}

void CGContext::fill(const AlphaMask& mask, int32_t dx, int32_t dy) {
  paint(MaskShape(mask, dx, dy), SpanPaint::solid(sourcePixel(state_.fillColor, state_.operation)),
        state_.operation);
}

bool CGContext::paintsWholeCanvas() const {
  if (state_.transform != CGAffineTransform()) return false;
  if (recorder_ != nullptr) return state_.recordedClip == nullptr;
  return state_.clip.isBox() && state_.clip.box() == surface().box();
}

void CGContext::replacePixels(const PixelMask& mask, uint32_t pixel) {
  if (state_.transform != CGAffineTransform()) return;
  if (recorder_ != nullptr) {
    PixelOperation operation{{}, mask.box, pixel};
    for (int32_t y = mask.box.y0; y < mask.box.y1; ++y) {
      const uint8_t* const row = mask.at(mask.box.x0, y);
      operation.mask.insert(operation.mask.end(), row, row + mask.box.width());
    }
    return recorder_->add(state_, std::move(operation));
  }
  if (isScaled() || !state_.clip.isBox()) {
    composite(state_.clip, PixelMaskShape(mask, grid_), SpanPaint::solid(pixel),
              NSCompositingOperation::copy);
    return;
  }
  const PixelBox box = intersection(mask.box, state_.clip.box());
  if (box.empty()) return;
  fillMaskedRows(surface().pixels(box.x0, box.y0), surface().stride(), mask.at(box.x0, box.y0),
                 mask.bytesPerRow, box.width(), box.height(), pixel);
  surface().announcePainted(box);
}

void CGContext::stroke(const PathData& path, const StrokeStyle& style) {
  if (recorder_ != nullptr) return recorder_->add(state_, StrokeOperation{path, style});
  if (isScaled() && (style.width == 0 || style.join == LineJoin::miter)) {
    const StrokeStyle pen = scaledPen(style);
    strokeWith(path, pen);
  } else {
    strokeWith(path, style);
  }
}

void CGContext::strokeWith(const PathData& path, const StrokeStyle& pen) {
  paint(StrokeShape(renderer_, path, pen, coverStyle(state_.transform)),
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
  state_.clip = clipped(placed.path, winding, placed.transform);
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
  path_ = {renderer_.strokeOutline(path, scaledPen(state_.stroke), deviceTransform()),
           state_.transform};
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

/// Answers whether the context records.
template <class Axis>
bool CGContext::recordGradient(const CGGradient& gradient, const Axis& axis, GradientExtent extent,
                               const PathData* path, WindingRule winding) {
  if (recorder_ == nullptr) return false;
  GradientOperation operation{gradient, axis, extent, {}, winding};
  if (path != nullptr) operation.path = *path;
  recorder_->add(state_, std::move(operation));
  return true;
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
  if (recordGradient(gradient, axis, GradientExtent::both, &path, winding)) return;
  if (!state_.shadow.visible()) {
    paintGradient(FillShape(renderer_, path, winding, coverStyle(state_.transform)), gradient, axis,
                  GradientExtent::both);
    return;
  }
  // The gradient that casts the shadow is not bounded by the path.
  const CGContextStateScope state(*this);
  clip(path, winding);
  draw(gradient, axis, GradientExtent::both);
}

void CGContext::draw(const CGGradient& gradient, const LinearAxis& axis, GradientExtent extent) {
  if (recordGradient(gradient, axis, extent, nullptr, WindingRule::nonZero)) return;
  paintGradient(BoxShape(kEverywhere), gradient, axis, extent);
}

void CGContext::draw(const CGGradient& gradient, const RadialAxis& axis, GradientExtent extent) {
  if (recordGradient(gradient, axis, extent, nullptr, WindingRule::nonZero)) return;
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

// --- Pictures ---

void CGContext::draw(const NSBitmapImageRep& image, const NSRect& destination) {
  draw(image, destination, NSZeroRect, state_.operation, state_.alpha);
}

void CGContext::draw(const NSBitmapImageRep& image, const NSRect& destination, const NSRect& source,
                     NSCompositingOperation operation, CGFloat alpha) {
  if (recorder_ != nullptr) {
    return recordPicture(image, {nullptr, destination, source}, operation, alpha);
  }
  if (&image.pixels() == surface().buffer().get()) {
    // What is drawn is the bitmap as it was.
    const auto frozen = image.copy();
    if (frozen != nullptr) draw(*frozen, destination, source, operation, alpha);
    return;
  }
  const NSRect whole{{}, image.size()};
  const NSRect wanted = source == NSZeroRect ? whole : source;
  const NSRect part = NSIntersectionRect(whole, wanted);
  if (NSIsEmptyRect(part) || NSIsEmptyRect(destination)) return;
  drawPart(image, {{NSMinX(part), NSHeight(whole) - NSMaxY(part)}, part.size},
           CGAffineTransformConcat(imageToUser(image, wanted, destination), state_.transform),
           operation, alpha);
}

/// A bitmap without a source stands for itself, as it is now.
void CGContext::recordPicture(const NSBitmapImageRep& image, const PictureOperation& operation,
                              NSCompositingOperation compositing, CGFloat alpha) {
  const CGContextStateScope state(*this);
  state_.operation = compositing;
  state_.alpha = alpha;
  PictureOperation recorded = operation;
  recorded.picture =
      image.source() != nullptr ? image.source() : std::make_shared<HeldPicture>(image.copy());
  recorder_->add(state_, std::move(recorded));
}

void CGContext::drawReplacing(const NSBitmapImageRep& image, const NSRect& destination,
                              CGFloat alpha) {
  if (recorder_ != nullptr) {
    return recordPicture(image,
                         {nullptr, destination, NSZeroRect, PictureOperation::Manner::replace},
                         state_.operation, alpha);
  }
  if (!isScaled()) {
    draw(image, destination, NSZeroRect, NSCompositingOperation::destinationOut, 1);
    draw(image, destination, NSZeroRect, NSCompositingOperation::sourceOver, alpha);
    return;
  }
  // A device pixel may show the bitmap in a part of it: in the rest the ground stays whole, so what
  // is painted is added to what was left.
  beginTransparencyLayer(destination);
  draw(image, destination, NSZeroRect, NSCompositingOperation::sourceOver, 1);
  const Layer layer = takeLayer();
  const CGContextStateScope state(*this);
  state_.shadow = {};
  state_.alpha = 1;
  state_.operation = NSCompositingOperation::destinationOut;
  paintLayer(layer.surface);
  state_.alpha = alpha;
  state_.operation = NSCompositingOperation::plusLighter;
  paintLayer(layer.surface);
}

/// `part` and `toCanvas` are in image positions.
void CGContext::drawPart(const NSBitmapImageRep& image, const NSRect& part,
                         const CGAffineTransform& toCanvas, NSCompositingOperation operation,
                         CGFloat alpha) {
  const PathData outline = pathOfRect(part);
  const FillShape shape(renderer_, outline, WindingRule::nonZero, coverStyle(toCanvas));
  PixelBox visible = shape.bounds(state_.clip.box());
  if (const auto shadow = dropShadow()) {
    visible = unionBox(visible, shape.bounds(castingBox(*shadow, state_.clip.box())));
  }
  const PlacedImage placed = placedPart(image, part, toCanvas, visible);
  if (placed.source == nullptr) return;
  const SpanPaint paint = SpanPaint::rows(*placed.source, unitToByte(alpha));
  castShadow(shape, paint, operation);
  const PixelBox& all = state_.clip.box();
  const PixelBox rows{all.x0, static_cast<int32_t>(std::max<int64_t>(all.y0, placed.rows.first)),
                      all.x1, static_cast<int32_t>(std::min<int64_t>(all.y1, placed.rows.end))};
  composite(state_.clip.intersected(rows), shape, paint, operation);
  compositeNothing(shape, rows, operation);
}

PlacedImage CGContext::placedPart(const NSBitmapImageRep& image, const NSRect& part,
                                  const CGAffineTransform& toCanvas,
                                  const PixelBox& visible) const {
  const ImageQuality quality = qualityFor(state_.interpolation);
  if (quality != ImageQuality::nearest || !isScaled()) {
    return placeImage(image, {part, toDevice(toCanvas)}, quality, visible);
  }
  // Its pixels are those of the canvas, as far as it covers them.
  const CGAffineTransform toPixels = toCanvasPixels(toCanvas);
  const NSRect covered = CGRectApplyAffineTransform(part, toPixels);
  DeviceBounds bounds(NSMinX(covered), NSMinY(covered), NSMaxX(covered), NSMaxY(covered));
  bounds.grow(-1.0 / static_cast<double>(2 * grid::kOne));  // what is less is rounding noise
  const PixelBox pixels = pixelsTouched(bounds, grid_.canvasBox(visible));
  PlacedImage placed = placeImage(image, {part, toPixels}, quality, pixels);
  if (placed.source == nullptr) return placed;
  return {std::make_unique<ScaledRowSource>(std::move(placed.source), grid_, pixels),
          {visible.y0, visible.y1}};
}

void CGContext::drawInDeviceSpace(const NSBitmapImageRep& image, int64_t x, int64_t y) {
  if (recorder_ != nullptr) {
    // What was made for a device of pixels is as large as those of the canvas.
    const CGContextStateScope scope(*this);
    state_.transform = {};
    const NSSize size = image.size();
    const CGFloat bottom = grid_.height - static_cast<CGFloat>(y) - size.height;
    return draw(image, {{static_cast<CGFloat>(x), bottom}, size});
  }
  const CGAffineTransform placement =
      CGAffineTransformMakeTranslation(static_cast<CGFloat>(x), static_cast<CGFloat>(y));
  const CGAffineTransform toDevicePixels = toDevice({});
  drawPart(image, {NSZeroPoint, image.size()},
           CGAffineTransformConcat(placement, CGAffineTransformInvert(toDevicePixels)),
           state_.operation, state_.alpha);
}

// --- Transparency layers ---

/// What shows through the clip; with a shadow also what casts it there.
PixelBox CGContext::layerBox() const {
  const PixelBox& visible = state_.clip.box();
  const auto shadow = dropShadow();
  return shadow ? unionBox(visible, castingBox(*shadow, visible)) : visible;
}

void CGContext::beginTransparencyLayer() {
  if (recorder_ != nullptr) return beginRecordedLayer({});
  beginTransparencyLayer(layerBox());
}

void CGContext::beginRecordedLayer(const std::optional<NSRect>& content) {
  recorder_->beginLayer(state_, content);
  pushLayer(PixelSurface(nullptr, 0, 0), ClipRegion(canvasBox()));
}

void CGContext::beginTransparencyLayer(const NSRect& content) {
  if (recorder_ != nullptr) return beginRecordedLayer(content);
  DeviceBounds bounds;
  for (const NSPoint& corner : pathOfRect(content).points) {
    bounds.add(CGPointApplyAffineTransform(corner, deviceTransform()));
  }
  // Edges are snapped to a grid and may reach into the next pixel, without antialiasing into that
  // of the canvas.
  bounds.grow(1 + (isScaled() ? grid_.scale : 0));
  beginTransparencyLayer(pixelsTouched(bounds, layerBox()));
}

void CGContext::beginTransparencyLayer(const PixelBox& box) {
  PixelSurface surface = surfaceFor(box);
  if (surface.buffer() == nullptr) {
    // What casts a shadow may lie beyond any canvas.
    surface = surfaceFor(intersection(box, state_.clip.box()));
  }
  ClipRegion clip(surface.box());
  pushLayer(std::move(surface), std::move(clip));
}

void CGContext::pushLayer(PixelSurface surface, ClipRegion clip) {
  // Everything that allocates comes first: a layer is begun wholly or not at all.
  layers_.reserve(layers_.size() + 1);
  saved_.push_back(state_);
  layers_.push_back({std::move(surface), saved_.size()});
  state_.alpha = 1;
  state_.shadow = {};
  state_.operation = NSCompositingOperation::sourceOver;
  state_.clip = std::move(clip);
  state_.recordedClip = nullptr;
}

/// Takes the innermost layer off, with the states saved inside it.
CGContext::Layer CGContext::takeLayer() noexcept {
  Layer layer = std::move(layers_.back());
  layers_.pop_back();
  saved_.erase(saved_.begin() + static_cast<ptrdiff_t>(layer.savedStates), saved_.end());
  state_ = std::move(saved_.back());
  saved_.pop_back();
  return layer;
}

void CGContext::endTransparencyLayer() {
  if (layers_.empty()) return;
  const Layer layer = takeLayer();
  recorder_ != nullptr ? recorder_->endLayer() : paintLayer(layer.surface);
}

void CGContext::discardTransparencyLayer() noexcept {
  if (layers_.empty()) return;
  takeLayer();
  if (recorder_ != nullptr) recorder_->discardLayer();
}

void CGContext::paintLayer(const PixelSurface& layer) {
  const NSCompositingOperation operation = state_.operation;
  const BoxShape content(layer.painted());
  if (layer.buffer() != nullptr) {
    MovedImageSource pixels(*layer.buffer(), -layer.box().x0, -layer.box().y0);
    const SpanPaint paint = SpanPaint::rows(pixels, unitToByte(state_.alpha));
    castShadow(content, paint, operation);
    composite(state_.clip, content, paint, operation);
  }
  compositeNothing(BoxShape(state_.clip.box()), layer.painted(), operation);
}
