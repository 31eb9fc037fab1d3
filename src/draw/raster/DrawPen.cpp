// Pen and eraser strokes.
#include <cmath>

#include "draw/raster/DrawBrushes.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/gradient/NSGradient.h"

const NSClass DrawPen::kClass{"DrawPen", &DrawBase::kClass, NSAllocate<DrawPen>};
const NSClass DrawEraser::kClass{"DrawEraser", &DrawPen::kClass, NSAllocate<DrawEraser>};

namespace {

constexpr const char* kVersion = "Version";

/// The width in whole pixels; widths beyond any canvas have none.
int64_t wholeWidth(CGFloat width) {
  constexpr CGFloat kWidest = 1e9;
  return width >= 1 && width < kWidest ? static_cast<int64_t>(width) : 0;
}

/// Both points of a path that is one move and one line.
bool readSegment(const NSBezierPath* path, NSPoint& from, NSPoint& to) {
  return path != nullptr && path->elementCount() == 2 &&
         path->elementAtIndex(0, &from) == NSMoveToBezierPathElement &&
         path->elementAtIndex(1) == NSLineToBezierPathElement &&
         (path->elementAtIndex(1, &to), true);
}

}  // namespace

void DrawPen::init() {
  DrawBase::init();
  bezierPath_->setLineCapStyle(LineCap::round);
}

bool DrawPen::isDot() const {
  NSPoint from, to;
  return readSegment(bezierPath_.get(), from, to) && from == to;
}

void DrawPen::_draw(CastShadow cast) {
  if (isDot() && drawStroke()) return drawDot();
  DrawBase::_draw(cast);
}

void DrawPen::drawDot() const {
  const auto color = !bStrokeWithGdt_                   ? colorStroke_
                     : gradientStroke_->stops().empty() ? nullptr
                                                        : gradientStroke_->stops().front().color;
  const int64_t n = wholeWidth(lineWidth());
  if (color == nullptr || n == 0) return;
  const NSGraphicsStateScope state;
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  CGContext& port = *context.graphicsPort();
  context.setCompositingOperation(copyWhenComposite() ? NSCompositingOperation::copy
                                                      : NSCompositingOperation::sourceOver);
  context.setShouldAntialias(shouldAntialias());
  // Odd widths are centred on a pixel, even ones between pixels: the dot covers whole pixels.
  if (n % 2 != 0) port.concatenate(CGAffineTransformMakeTranslation(0.5, 0.5));
  NSPoint center;
  bezierPath_->elementAtIndex(0, &center);
  center = pointAfterRotate(center);
  const auto side = static_cast<CGFloat>(n);
  const NSRect dot =
      NSMakeRect(std::floor(center.x) - side / 2, std::floor(center.y) - side / 2, side, side);
  color->setFill();
  if (bezierPath_->lineCapStyle() == LineCap::square) return port.fill(dot);
  // Small discs would not be round without antialiasing.
  constexpr CGFloat kSmall = 10;
  if (lineWidth() < kSmall) context.setShouldAntialias(true);
  NSBezierPath::bezierPathWithOvalInRect(dot)->fill();
}

void DrawPen::tryUpgradeFromOldVersion(int32_t version) {
  constexpr CGFloat kThin = 1.1;
  constexpr CGFloat kSamePlace = 1;
  if (version >= 1 || bezierPath_ == nullptr) return;
  if (bezierPath_->lineWidth() < kThin) bSmooth_ = false;
  NSPoint from, to;
  const bool isDot = readSegment(bezierPath_.get(), from, to) &&
                     std::fabs(from.x - to.x) < kSamePlace && std::fabs(from.y - to.y) < kSamePlace;
  const bool isSquare = isDot && !shouldAntialias();
  bezierPath_->setLineCapStyle(isSquare ? LineCap::square : LineCap::round);
  bezierPath_->setLineJoinStyle(isSquare ? LineJoin::miter : LineJoin::round);
}

bool DrawPen::initWithCoder(NSCoder& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  tryUpgradeFromOldVersion(coder.decodeInt32ForKey(kVersion));
  return true;
}

void DrawPen::encodeWithCoder(NSCoder& coder) const {
  DrawBase::encodeWithCoder(coder);
  coder.encodeInt32(penVersion(), kVersion);
}

void DrawEraser::init() {
  constexpr CGFloat kNewWidth = 3;
  DrawPen::init();
  bezierPath_->setLineWidth(kNewWidth);
  setStrokeColor(nullptr);
  bLocked_ = true;
}

void DrawEraser::setStrokeColor(std::shared_ptr<NSColor>) {
  colorStroke_ = NSColor::clearColor();
}

void DrawEraser::tryUpgradeFromOldVersion(int32_t version) {
  DrawPen::tryUpgradeFromOldVersion(version);
  if (version < 1) bSmooth_ = false;
}

bool DrawEraser::initWithCoder(NSCoder& coder) {
  if (!DrawPen::initWithCoder(coder)) return false;
  // Whatever paint the record names, an eraser has only one, and always draws with it.
  setStrokeColor(nullptr);
  bStrokeWithGdt_ = false;
  return true;
}
