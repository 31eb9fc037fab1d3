// The rendering pipeline every draw goes through: opacity, reflection, rotation, fill, shadows,
// stroke, outline, arrow heads.
#include <algorithm>
#include <optional>
#include <vector>

#include "draw/core/DrawBase.h"
#include "draw/core/InnerShadow.h"
#include "draw/core/PaintedBounds.h"
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

std::shared_ptr<NSBitmapImageRep> DrawBase::renderedImage() {
  const NSRect rect = renderedRect();
  std::shared_ptr<NSBitmapImageRep> image;
  if (NSIsEmptyRect(rect) || !InitImageRep(rect.size, &image)) return nullptr;
  const ZTFocusScope focus(image);
  port().concatenate(CGAffineTransformMakeTranslation(-NSMinX(rect), -NSMinY(rect)));
  drawInImage(image.get());
  return image;
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
    return _drawStrokeWithPath(path, nullptr, hasShadow);
  }
  {
    // The stroke's shadow falls outside the filled shape only.
    const NSGraphicsStateScope state;
    shadow_->set();
    const auto outside = NSBezierPath::bezierPathWithRect(paintedBounds(*this));
    outside->appendBezierPath(path);
    outside->setWindingRule(WindingRule::evenOdd);
    outside->addClip();
    _drawStrokeWithPath(path, nullptr, true);
  }
  _drawStrokeWithPath(path, nullptr, false);
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

/// Adds the heads to an outline of the line, or to nothing. Turning the same way as what there is,
/// a head adds to it where they overlap.
void appendTurnedHeads(NSBezierPath& outline, const ZTArrowPathInfo* info) {
  for (const NSBezierPath* head : heads(info)) {
    const bool outlineTurnsLeft = signedArea(outline) > 0;
    const bool turnsLeft = signedArea(*head) > 0;
    outline.appendBezierPath(turnsLeft == outlineTurnsLeft ? *head
                                                           : *head->bezierPathByReversingPath());
  }
}

/// In one piece: the heads of a short line meet at their bases.
void fillHeads(const ZTArrowPathInfo* info) {
  if (info == nullptr) return;
  const auto path = NSBezierPath::bezierPath();
  appendTurnedHeads(*path, info);
  if (!path->isEmpty()) path->fill();
}

/// Where stroking the path paints at most. Its outline has neither the miters nor the caps that
/// dashes add.
NSRect strokeArea(const NSBezierPath& path, const NSBezierPath& outline) {
  constexpr CGFloat kSquareCap = 1.5;
  const bool miters = path.lineJoinStyle() == LineJoin::miter;
  const CGFloat reach =
      path.lineWidth() / 2 * std::max(kSquareCap, miters ? path.miterLimit() : 0) + 1;
  return NSInsetRect(outline.bounds(), -reach, -reach);
}

}  // namespace

void DrawBase::_drawStrokeWithPath(const NSBezierPath& path, const ZTArrowPathInfo* arrowPathInfo,
                                   bool hasShadow) const {
  if (!drawStroke()) return;
  if (bStrokeWithGdt_) return paintStrokeGradient(path, arrowPathInfo, hasShadow);
  if (arrowPathInfo != nullptr && colorStroke_->alphaComponent() < 1) {
    return paintTranslucentArrow(path, *arrowPathInfo);
  }
  colorStroke_->set();
  fillHeads(arrowPathInfo);
  path.stroke();
}

/// Line and heads overlap: they are painted opaque, and their picture is made translucent.
void DrawBase::paintTranslucentArrow(const NSBezierPath& path,
                                     const ZTArrowPathInfo& arrowPathInfo) const {
  const NSGraphicsStateScope state;
  CGContext& context = port();
  context.setAlpha(context.alpha() * colorStroke_->alphaComponent());
  NSRect area = strokeArea(path, path);
  for (const NSBezierPath* head : heads(&arrowPathInfo)) {
    area = NSUnionRect(area, NSInsetRect(head->bounds(), -1, -1));
  }
  CGTransparencyLayerScope layer(context, area);
  colorStroke_->colorWithAlphaComponent(1)->set();
  fillHeads(&arrowPathInfo);
  path.stroke();
  layer.end();
}

void DrawBase::paintStrokeGradient(const NSBezierPath& path, const ZTArrowPathInfo* arrowPathInfo,
                                   bool hasShadow) const {
  const auto outline = strokeOutlinePath(path);
  if (outline->isEmpty()) return;
  appendTurnedHeads(*outline, arrowPathInfo);
  // The outline knows neither dashes nor the pixels of a stroke without smoothing: these are
  // stroked, and the gradient takes their place.
  const bool takesPlace = !path.lineDash().empty() || !shouldAntialias();
  const NSRect area = strokeArea(path, *outline);
  std::optional<CGTransparencyLayerScope> layer;
  if (hasShadow || takesPlace) layer.emplace(port(), area);
  if (takesPlace) {
    NSColor::blackColor()->set();
    path.stroke();
    fillHeads(arrowPathInfo);
    NSGraphicsContext::currentContext()->setCompositingOperation(NSCompositingOperation::sourceIn);
  }
  const auto paint = [&](auto position) {
    takesPlace ? gradientStroke_->drawInRect(area, *outline, position)
               : gradientStroke_->drawInBezierPath(*outline, position);
  };
  if (!bStrokeRadialGdt_) {
    paint(static_cast<CGFloat>(fStrokeGdtDegree_ + fRotateDegree_));
  } else if (ptStrokeGdtCenter_ == NSZeroPoint) {
    paint(NSZeroPoint);
  } else {
    paint(relativePosition(strokeGradientCenterPointWithScale(1), path.bounds()));
  }
  if (layer) layer->end();
}

namespace {

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
  const bool outlined = hasStrokeOutline();
  std::optional<CGTransparencyLayerScope> layer;
  if (outlined && (info != nullptr || translucent)) layer.emplace(port());
  if (outlined) drawStrokeOutline(line, info.get(), translucent, layer.has_value());
  _drawStrokeWithPath(line, info.get(), hasShadow);
  if (layer) layer->end();
}

void DrawBase::drawStrokeOutline(const NSBezierPath& line, const ZTArrowPathInfo* info,
                                 bool translucent, bool insideLayer) const {
  // The erased area must not reach below the draw: it is erased from a layer.
  std::optional<CGTransparencyLayerScope> layer;
  const bool erases = translucent || !line.lineDash().empty();
  if (erases && !insideLayer) layer.emplace(port());
  const auto outline = strokeOutlinePath(line);
  appendTurnedHeads(*outline, info);
  outline->setLineWidth(2 * static_cast<CGFloat>(_strokeOutlineWidth));
  _strokeOutlineColor->setStroke();
  outline->stroke();
  if (erases) eraseStroke(line, info);
  if (layer) layer->end();
}
