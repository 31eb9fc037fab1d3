#include "platform/graphics/context/OffscreenCanvas.h"

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

/// An area of the space in pixels of the grid, y downwards.
struct GridArea {
  CGFloat left, top, right, bottom;

  GridArea(const NSRect& area, const OffscreenGrid& grid)
      : left(grid.fraction.x + grid.scale * NSMinX(area)),
        top(grid.fraction.y - grid.scale * NSMaxY(area)),
        right(grid.fraction.x + grid.scale * NSMaxX(area)),
        bottom(grid.fraction.y - grid.scale * NSMinY(area)) {}

  GridArea wholePixels() const {
    constexpr CGFloat kNoise = CanvasGrid::kNoise;
    GridArea whole = *this;
    whole.left = std::floor(left + kNoise);
    whole.top = std::floor(top + kNoise);
    whole.right = std::ceil(right - kNoise);
    whole.bottom = std::ceil(bottom - kNoise);
    return whole;
  }
  NSSize size() const { return {right - left, bottom - top}; }
};

}  // namespace

CGFloat offscreenScale() {
  const auto& context = NSGraphicsContext::currentContext();
  return context == nullptr ? 1 : context->graphicsPort()->scale();
}

OffscreenGrid offscreenGridAt(NSPoint origin) {
  if (isRecordingDrawing()) {
    const GraphicsState& state = NSGraphicsContext::currentContext()->graphicsPort()->state();
    return {1, NSZeroPoint, OffscreenGrid::Recorded{origin, state.transform}};
  }
  const CGFloat scale = offscreenScale();
  if (scale == 1) return {};
  const CGContext& port = *NSGraphicsContext::currentContext()->graphicsPort();
  const NSPoint at = CGPointApplyAffineTransform(origin, port.deviceTransform());
  return {scale, {at.x - std::floor(at.x), at.y - std::floor(at.y)}, {}};
}

OffscreenCanvas::OffscreenCanvas(const NSRect& area, const OffscreenGrid& grid,
                                 const std::optional<NSRect>& part)
    : rect_(part ? wholePart(area, *part) : area) {
  if (grid.recorded && !NSIsEmptyRect(rect_)) {
    record(*grid.recorded);
    return;
  }
  CanvasView view{rect_.size, grid.scale};
  const NSPoint origin = rect_.origin;
  if (grid.scale != 1 && !NSIsEmptyRect(rect_)) {
    const GridArea exact(rect_, grid), whole = exact.wholePixels();
    view.corner = {exact.left - whole.left, exact.top - whole.top};
    rect_ = NSMakeRect((whole.left - grid.fraction.x) / grid.scale,
                       (grid.fraction.y - whole.bottom) / grid.scale,
                       whole.size().width / grid.scale, whole.size().height / grid.scale);
    InitImageRep(whole.size(), &bitmap_);
  } else if (!NSIsEmptyRect(rect_)) {
    InitImageRep(rect_.size, &bitmap_);
  }
  focus_.emplace(bitmap_, view);
  context().concatenate(CGAffineTransformMakeTranslation(-origin.x, -origin.y));
}

void OffscreenCanvas::record(const OffscreenGrid::Recorded& recorded) {
  GraphicsRecorder& recorder = *NSGraphicsContext::currentContext()->graphicsPort()->recorder();
  const auto offscreen = recorder.offscreen(rect_, recorded.origin, recorded.transform);
  bitmap_ = NSBitmapImageRep::create(1, 1);
  bitmap_->setSource(offscreen.picture);
  focus_.emplace(offscreen.recorder, rect_.size);
  context().concatenate(CGAffineTransformMakeTranslation(-NSMinX(rect_), -NSMinY(rect_)));
}
