#pragma once

#include "svg/draw/SVGRenderer.h"
#include "svg/tree/SVGDocument.h"

namespace SVGNative {

/// Turns paints as documents say them into paints as renderers want them: plain colours, and
/// gradients in user units with plain colours.
class PaintResolver {
 public:
  PaintResolver(SVGRenderer& renderer, const ColorMap& colors)
      : renderer_(renderer), colors_(colors) {}

  /// A custom property becomes its value, else the colour after it, else black; "currentcolor"
  /// becomes `currentColor`.
  ColorArray resolveColor(const Color& color, const ColorArray& currentColor) const;

  /// Resolves `paint` in place, for an element with the geometry of `path`. A gradient in fractions
  /// of a box without area becomes the paint's fallback. False when it paints nothing: a gradient
  /// without stops, or no fallback.
  bool resolvePaint(Paint& paint, const ColorArray& currentColor, const Path& path) const;

 private:
  /// What a stop's own colour is, whatever element it paints.
  ColorArray resolveStop(const ColorStopImpl& stop) const;
  bool resolveGradient(const GradientPaint& source, const ColorArray& currentColor,
                       const Path& path, Paint& paint) const;
  bool toUserSpace(GradientImpl& gradient, const Path& path) const;

  SVGRenderer& renderer_;
  const ColorMap& colors_;
};

}  // namespace SVGNative
