#pragma once

#include <functional>

#include "platform/foundation/Geometry.h"

class NSBezierPath;
class NSShadow;

/// The alpha of a shadow's colour; 0 without one.
CGFloat shadowAlpha(const NSShadow& shadow);

/// Paints into the current context, inside `bounds`, the shadow that the surroundings of `shape`
/// cast into it. The shadow is painted opaque and fades as a whole by `alpha`. `paintMask` runs
/// with the operation destination-in and paints, in one step, what the shadow falls on.
void paintInnerShadow(const NSShadow& shadow, CGFloat alpha, const NSRect& bounds,
                      const NSBezierPath& shape, const std::function<void()>& paintMask);
