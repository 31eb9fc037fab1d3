#pragma once

#include "svg/draw/SVGRenderer.h"

namespace SVGNative {

enum class LargeArc { no, yes };
enum class Sweep { no, yes };

/// Adds an elliptical arc of path data to `path` as cubic curves, from (startX, startY), where the
/// path stands, to (endX, endY); (currentX, currentY) becomes the end point. Only circular arcs are
/// supported: an angle other than 0, or radii that differ, end the process with a failed assertion.
/// Radii too small to reach the end point are enlarged, a radius of 0 gives a straight line, equal
/// end points give nothing (SVG 1.1, appendix F.6).
void ArcToCurve(Path& path, float startX, float startY, float radiusX, float radiusY, float angle,
                LargeArc largeArc, Sweep sweep, float endX, float endY, float& currentX,
                float& currentY);

/// Rotated arcs are not supported: always ends the process with a failed assertion.
[[noreturn]] void RotatePoint(float x, float y, float angle);

}  // namespace SVGNative
