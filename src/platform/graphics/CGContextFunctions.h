#pragma once

#include <optional>
#include <span>

#include "platform/graphics/CGContext.h"

/// The drawing context under the names of its calls. Each does what the method of CGContext does
/// that it names, which says more; `context` must not be null.

inline void CGContextSaveGState(CGContext* context) {
  context->saveGState();
}
inline void CGContextRestoreGState(CGContext* context) {
  context->restoreGState();
}

inline void CGContextConcatCTM(CGContext* context, const CGAffineTransform& transform) {
  context->concatenate(transform);
}
inline void CGContextTranslateCTM(CGContext* context, CGFloat tx, CGFloat ty) {
  context->concatenate(CGAffineTransformMakeTranslation(tx, ty));
}
inline void CGContextScaleCTM(CGContext* context, CGFloat sx, CGFloat sy) {
  context->concatenate(CGAffineTransformMakeScale(sx, sy));
}
/// Radians, counter-clockwise.
inline void CGContextRotateCTM(CGContext* context, CGFloat angle) {
  context->concatenate(CGAffineTransformMakeRotation(angle));
}

inline void CGContextSetAlpha(CGContext* context, CGFloat alpha) {
  context->setAlpha(alpha);
}
inline void CGContextSetBlendMode(CGContext* context, CGBlendMode mode) {
  context->setOperation(operationForBlendMode(mode));
}
inline void CGContextSetShouldAntialias(CGContext* context, bool antialias) {
  context->setShouldAntialias(antialias);
}
/// Without a colour there is no shadow. The offset is in the bitmap's axes, y up.
inline void CGContextSetShadowWithColor(CGContext* context, const CGSize& offset, CGFloat blur,
                                        const std::optional<RGBAColor>& color) {
  context->setShadow({offset, blur, color.value_or(RGBAColor{0, 0, 0, 0})});
}
inline void CGContextSetRGBFillColor(CGContext* context, CGFloat red, CGFloat green, CGFloat blue,
                                     CGFloat alpha) {
  context->setFillColor({red, green, blue, alpha});
}
inline void CGContextSetRGBStrokeColor(CGContext* context, CGFloat red, CGFloat green, CGFloat blue,
                                       CGFloat alpha) {
  context->setStrokeColor({red, green, blue, alpha});
}

inline void CGContextSetLineWidth(CGContext* context, CGFloat width) {
  context->strokeStyle().width = width;
}
inline void CGContextSetLineCap(CGContext* context, LineCap cap) {
  context->strokeStyle().cap = cap;
}
inline void CGContextSetLineJoin(CGContext* context, LineJoin join) {
  context->strokeStyle().join = join;
}
inline void CGContextSetMiterLimit(CGContext* context, CGFloat limit) {
  context->strokeStyle().miterLimit = limit;
}
/// No lengths make solid lines.
inline void CGContextSetLineDash(CGContext* context, CGFloat phase,
                                 std::span<const CGFloat> lengths) {
  context->strokeStyle().dash.assign(lengths.begin(), lengths.end());
  context->strokeStyle().dashPhase = phase;
}

inline void CGContextBeginPath(CGContext* context) {
  context->beginPath();
}
inline void CGContextAddPath(CGContext* context, const PathData& path) {
  context->addPath(path);
}
inline void CGContextFillPath(CGContext* context) {
  context->fillPath(WindingRule::nonZero);
}
inline void CGContextEOFillPath(CGContext* context) {
  context->fillPath(WindingRule::evenOdd);
}
inline void CGContextStrokePath(CGContext* context) {
  context->strokePath();
}
inline void CGContextReplacePathWithStrokedPath(CGContext* context) {
  context->replacePathWithStrokedPath();
}
inline void CGContextClip(CGContext* context) {
  context->clipToPath(WindingRule::nonZero);
}
inline void CGContextEOClip(CGContext* context) {
  context->clipToPath(WindingRule::evenOdd);
}
inline void CGContextClipToRect(CGContext* context, const CGRect& rect) {
  context->clip(rect);
}

inline void CGContextFillRect(CGContext* context, const CGRect& rect) {
  context->fill(rect);
}
/// Makes the rectangle transparent, whatever the operation.
inline void CGContextClearRect(CGContext* context, const CGRect& rect) {
  context->fill(rect, NSCompositingOperation::clear);
}
inline void CGContextDrawImage(CGContext* context, const CGRect& rect,
                               const NSBitmapImageRep& image) {
  context->draw(image, rect);
}
inline void CGContextDrawLinearGradient(CGContext* context, const CGGradient& gradient,
                                        const CGPoint& start, const CGPoint& end,
                                        GradientExtent options) {
  context->draw(gradient, LinearAxis{start, end}, options);
}
inline void CGContextDrawRadialGradient(CGContext* context, const CGGradient& gradient,
                                        const CGPoint& startCenter, CGFloat startRadius,
                                        const CGPoint& endCenter, CGFloat endRadius,
                                        GradientExtent options) {
  context->draw(gradient, RadialAxis{startCenter, startRadius, endCenter, endRadius}, options);
}

inline void CGContextBeginTransparencyLayer(CGContext* context) {
  context->beginTransparencyLayer();
}
inline void CGContextBeginTransparencyLayerWithRect(CGContext* context, const CGRect& rect) {
  context->beginTransparencyLayer(rect);
}
inline void CGContextEndTransparencyLayer(CGContext* context) {
  context->endTransparencyLayer();
}
