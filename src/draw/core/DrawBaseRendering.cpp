// The rendering pipeline every draw goes through: opacity, reflection, rotation, fill, shadows,
// stroke, outline, arrow heads.
#include <algorithm>
#include <optional>
#include <vector>

#include "draw/core/DrawBase.h"
#include "draw/core/InnerShadow.h"
#include "draw/core/ReflectionLimits.h"
#include "draw/core/StrokeOutline.h"
#include "draw/core/ZTArrowPathInfo.h"
#include "draw/core/ZTBezierPathExtension.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"

namespace {

/// A colour fainter than this paints nothing.
constexpr CGFloat kFaintestAlpha = 0.01;

/// Never null here: drawing without a current context returns at the entry.
CGContext& port() {
  return *NSGraphicsContext::currentContext()->graphicsPort();
}

bool isVisibleColor(const NSColor* color) {
  return color != nullptr && color->alphaComponent() >= kFaintestAlpha;
}

/// Odd whole widths are moved half a pixel, so that their edges fall on pixel edges.
void alignOddLineWidth(const NSBezierPath& path) {
  if (hasOddLineWidth(path)) port().concatenate(CGAffineTransformMakeTranslation(0.5, 0.5));
}

void clearShadow() {
  port().setShadow({NSZeroSize, 0, {0, 0, 0, 0}});
}

/// A gradient centre on the canvas as a position relative to half the bounds.
NSPoint relativePosition(NSPoint center, const NSRect& bounds) {
  return {NSWidth(bounds) > 0 ? 2 * (center.x - NSMidX(bounds)) / NSWidth(bounds) : 0,
          NSHeight(bounds) > 0 ? 2 * (center.y - NSMidY(bounds)) / NSHeight(bounds) : 0};
}

std::shared_ptr<NSColor> blackWithAlpha(CGFloat alpha) {
  return NSColor::colorWithCalibratedWhite(0, alpha);
}

}  // namespace

bool DrawBase::drawStroke() const {
  if (!classDrawStroke() || !bEnableStroke_) return false;
  if (copyWhenComposite()) return true;
  if (opacity() == 0 && shouldApplyOpacityToStokeAndFill()) return false;
  return bStrokeWithGdt_ ? gradientStroke_ != nullptr : isVisibleColor(colorStroke_.get());
}

bool DrawBase::drawFill() const {
  if (!classDrawFill() || !bEnableFill_) return false;
  if (copyWhenComposite()) return true;
  if (opacity() == 0) return false;
  return bFillWithGdt_ ? gradientFill_ != nullptr : isVisibleColor(colorFill_.get());
}

void DrawBase::drawInImage(NSBitmapImageRep*) {
  if (isSelectTool() || bezierPath_ == nullptr || bezierPath_->isEmpty()) return;
  const bool appliesOpacity = shouldApplyOpacityToStokeAndFill();
  if (opacity() == 0 && appliesOpacity && !copyWhenComposite()) return;
  if (NSGraphicsContext::currentContext() == nullptr) return;
  const NSGraphicsStateScope state;
  port().setAlpha(appliesOpacity ? static_cast<CGFloat>(opacity()) / 100 : 1);
  if (bEnableReflection_ && fReflection_ > 0) drawReflection();
  _draw(CastShadow::yes);
}

void DrawBase::drawReflection() {
  NSRect strip = drawRect();
  const NSGraphicsStateScope state;
  const CGFloat distance = std::max(fReflectionDis_, kLowestReflectionDistance);
  port().concatenate({1, 0, 0, -1, 0, 2 * NSMinY(strip) - distance});
  strip.size.height *= static_cast<CGFloat>(std::min(fReflection_, 1.0F));
  NSRectClip(strip);
  CGTransparencyLayerScope picture(port());
  _draw(CastShadow::no);
  port().setOperation(NSCompositingOperation::destinationIn);
  CGTransparencyLayerScope fade(port());
  const auto strength = static_cast<CGFloat>(fReflection_);
  NSGradient::initWithStartingColor(blackWithAlpha(std::clamp(strength + 0.2, 0.4, 1.0)),
                                    blackWithAlpha(std::clamp(strength - 1, 0.0, 1.0)))
      ->drawInRect(strip, 90);
  fade.end();
  picture.end();
}

void DrawBase::setShadowInForce(CastShadow cast) const {
  if (cast == CastShadow::yes && hasShadowInForce()) shadow_->set();
}

void DrawBase::_draw(CastShadow cast) {
  const NSGraphicsStateScope state;
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  context.setCompositingOperation(copyWhenComposite() ? NSCompositingOperation::copy
                                                      : NSCompositingOperation::sourceOver);
  const bool hasShadow = cast == CastShadow::yes && hasShadowInForce();
  const auto path = bezierPath_->copy();
  path->transformUsingAffineTransform(transform());
  const bool strokes = drawStroke() || hasStrokeOutline();
  if (strokes) alignOddLineWidth(*path);
  context.setShouldAntialias(shouldAntialias());
  const bool fillDrawn = drawFillOfPath(*path, hasShadow);
  if (strokes) drawStrokeOfPath(*path, hasShadow, fillDrawn);
}

void DrawBase::paintFill(const NSBezierPath& path) const {
  if (!bFillWithGdt_) {
    colorFill_->setFill();
    path.fill();
  } else if (!bFillRadialGdt_) {
    gradientFill_->drawInBezierPath(path, static_cast<CGFloat>(fFillGdtDegree_ + fRotateDegree_));
  } else if (ptFillGdtCenter_ == NSZeroPoint) {
    gradientFill_->drawInBezierPath(path, NSZeroPoint);
  } else {
    gradientFill_->drawInBezierPath(
        path, relativePosition(fillGradientCenterPointWithScale(1), path.bounds()));
  }
}

bool DrawBase::drawFillOfPath(const NSBezierPath& path, bool hasShadow) const {
  const bool hasColor =
      copyWhenComposite() ? colorFill_ != nullptr : isVisibleColor(colorFill_.get());
  const bool hasPaint = bFillWithGdt_ ? gradientFill_ != nullptr : hasColor;
  if (!classDrawBezierPathFill() || !bEnableFill_ || !hasPaint) return false;
  if (hasShadow) {
    shadow_->set();
    if (bFillWithGdt_) {
      // The shadow is that of the painted whole.
      CGTransparencyLayerScope layer(port(), path.bounds());
      paintFill(path);
      layer.end();
    } else {
      paintFill(path);
    }
    clearShadow();
  } else {
    paintFill(path);
  }
  if (bEnableInnerShadow_ && shadowInner_ != nullptr) {
    paintInnerShadow(*shadowInner_, shadowAlpha(*shadowInner_), path.bounds(), path, [&] {
      CGTransparencyLayerScope mask(port());
      paintFill(path);
      mask.end();
    });
  }
  return true;
}

void DrawBase::drawStrokeOfPath(const NSBezierPath& path, bool hasShadow, bool fillDrawn) const {
  const bool plain = path.elementCount() < 2 || (arrowStyle() == 0 && !hasStrokeOutline());
  if (!plain) {
    if (hasShadow) shadow_->set();
    return _drawStrokeWithArrowAndOutline(path, hasShadow);
  }
  if (!hasShadow || !fillDrawn) {
    if (hasShadow) shadow_->set();
    return _drawStrokeWithPath(path, nullptr, nullptr, hasShadow);
  }
  {
    // The stroke's shadow falls outside the filled shape only.
    const NSGraphicsStateScope state;
    shadow_->set();
    const auto outside = NSBezierPath::bezierPathWithRect(renderedRect());
    outside->appendBezierPath(path);
    outside->setWindingRule(WindingRule::evenOdd);
    outside->addClip();
    _drawStrokeWithPath(path, nullptr, nullptr, true);
  }
  _drawStrokeWithPath(path, nullptr, nullptr, false);
}

namespace {

/// The heads that there are.
std::vector<const NSBezierPath*> heads(const ZTArrowPathInfo* info) {
  std::vector<const NSBezierPath*> paths;
  if (info == nullptr) return paths;
  for (const auto* head : {info->startArrowPath().get(), info->endArrowPath().get()}) {
    if (head != nullptr) paths.push_back(head);
  }
  return paths;
}

void appendHeads(NSBezierPath& path, const ZTArrowPathInfo* info) {
  for (const NSBezierPath* head : heads(info)) path.appendBezierPath(*head);
}

/// Area enclosed by the polygon of the path's end points, positive when it turns left.
CGFloat signedArea(const NSBezierPath& path) {
  CGFloat twice = 0;
  NSPoint start;
  NSPoint current;
  const auto edge = [&](NSPoint to) {
    twice += current.x * to.y - to.x * current.y;
    current = to;
  };
  for (int64_t i = 0; i < path.elementCount(); ++i) {
    NSPoint p[3];
    switch (path.elementAtIndex(i, p)) {
      case NSMoveToBezierPathElement:
        start = current = p[0];
        break;
      case NSLineToBezierPathElement:
        edge(p[0]);
        break;
      case NSCurveToBezierPathElement:
        edge(p[2]);
        break;
      case NSClosePathBezierPathElement:
        edge(start);
        break;
    }
  }
  return twice / 2;
}

void fillHeads(const ZTArrowPathInfo* info) {
  for (const NSBezierPath* head : heads(info)) head->fill();
}

}  // namespace

void DrawBase::_drawStrokeWithPath(const NSBezierPath& path, const ZTArrowPathInfo* arrowPathInfo,
                                   const NSBezierPath* clipPath, bool hasShadow) const {
  if (!drawStroke()) return;
  if (bStrokeWithGdt_) return paintStrokeGradient(path, arrowPathInfo, hasShadow);
  colorStroke_->set();
  fillHeads(arrowPathInfo);
  if (clipPath != nullptr && !clipPath->isEmpty()) clipPath->addClip();
  path.stroke();
}

void DrawBase::paintStrokeGradient(const NSBezierPath& path, const ZTArrowPathInfo* arrowPathInfo,
                                   bool hasShadow) const {
  const auto outline = strokeOutlinePath(path);
  if (outline->isEmpty()) return;
  const bool dashed = !path.lineDash().empty();
  std::optional<CGTransparencyLayerScope> layer;
  if (hasShadow || dashed) layer.emplace(port());
  if (dashed) {
    // The gradient lands on the dashes only.
    NSColor::blackColor()->set();
    path.stroke();
    fillHeads(arrowPathInfo);
    NSGraphicsContext::currentContext()->setCompositingOperation(NSCompositingOperation::sourceIn);
  }
  const bool outlineTurnsLeft = signedArea(*outline) > 0;
  for (const NSBezierPath* head : heads(arrowPathInfo)) {
    // Turning the same way as the outline, a head adds to it where they overlap.
    const bool turnsLeft = signedArea(*head) > 0;
    outline->appendBezierPath(turnsLeft == outlineTurnsLeft ? *head
                                                            : *head->bezierPathByReversingPath());
  }
  if (!bStrokeRadialGdt_) {
    const float degrees = fStrokeGdtDegree_ + fRotateDegree_;
    gradientStroke_->drawInBezierPath(*outline, static_cast<CGFloat>(degrees));
  } else {
    const NSPoint center =
        ptStrokeGdtCenter_ == NSZeroPoint
            ? NSZeroPoint
            : relativePosition(strokeGradientCenterPointWithScale(1), path.bounds());
    gradientStroke_->drawInBezierPath(*outline, center);
  }
  if (layer) layer->end();
}

namespace {

/// Everything around the heads: where a translucent line may be painted so that it does not show
/// through them.
std::shared_ptr<NSBezierPath> clipAroundHeads(const NSBezierPath& path,
                                              const ZTArrowPathInfo& info) {
  const CGFloat width = path.lineWidth();
  auto clip = NSBezierPath::bezierPathWithRect(NSInsetRect(path.bounds(), -width, -width));
  appendHeads(*clip, &info);
  clip->setWindingRule(WindingRule::evenOdd);
  return clip;
}

/// Erases the area of the line and its heads.
void eraseStroke(const NSBezierPath& path, const ZTArrowPathInfo* info) {
  NSGraphicsContext& context = *NSGraphicsContext::currentContext();
  NSColor::clearColor()->set();
  context.setCompositingOperation(NSCompositingOperation::copy);
  fillHeads(info);
  const auto solid = path.copy();
  solid->setLineDash({}, 0);
  solid->stroke();
  context.setCompositingOperation(NSCompositingOperation::sourceOver);
}

}  // namespace

void DrawBase::_drawStrokeWithArrowAndOutline(const NSBezierPath& path, bool hasShadow) const {
  const bool translucent = bStrokeWithGdt_
                               ? gradientStroke_ && gradientStroke_->averageOpacity() < 1
                               : colorStroke_ && colorStroke_->alphaComponent() < 1;
  const auto info = getArrowInfoWithStyle(path, arrowStyle());
  const NSBezierPath& line = info != nullptr ? *info->adjustedBezierPath() : path;
  std::shared_ptr<NSBezierPath> clip;
  if (info != nullptr && translucent) clip = clipAroundHeads(line, *info);

  const bool outlined = hasStrokeOutline();
  std::optional<CGTransparencyLayerScope> layer;
  if (outlined && (info != nullptr || translucent)) layer.emplace(port());
  if (outlined) drawStrokeOutline(line, info.get(), translucent, layer.has_value());
  _drawStrokeWithPath(line, info.get(), clip.get(), hasShadow);
  if (layer) layer->end();
}

void DrawBase::drawStrokeOutline(const NSBezierPath& line, const ZTArrowPathInfo* info,
                                 bool translucent, bool insideLayer) const {
  // The erased area must not reach below the draw: it is erased from a layer.
  std::optional<CGTransparencyLayerScope> layer;
  const bool erases = translucent || !line.lineDash().empty();
  if (erases && !insideLayer) layer.emplace(port());
  const auto outline = strokeOutlinePath(line);
  appendHeads(*outline, info);
  outline->setLineWidth(2 * static_cast<CGFloat>(_strokeOutlineWidth));
  _strokeOutlineColor->setStroke();
  outline->stroke();
  if (erases) eraseStroke(line, info);
  if (layer) layer->end();
}
