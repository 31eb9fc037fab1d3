#pragma once

#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"

class NSFont;

/// A colour from 0xRRGGBB.
std::shared_ptr<NSColor> colorWithHex(uint32_t hex, CGFloat alpha);
/// The gradient with every stop's alpha times `opacity`.
std::shared_ptr<NSGradient> gradientWithOpacity(const NSGradient& gradient, CGFloat opacity);

/// Comparisons of value objects as a user would see them. Two nulls are never equal.

/// Components within one step of 255 in calibrated RGB, alpha within 0.01; any two colours that are
/// all but invisible are equal.
bool zt_isEqualWithColor(const NSColor* a, const NSColor* b);
/// Equal colours at equal locations.
bool zt_isEqualWithGradient(const NSGradient* a, const NSGradient* b);
/// Equal offset, blur radius and colour.
bool zt_isEqualWithShadow(const NSShadow* a, const NSShadow* b);
/// Equal name, size, traits and weight.
bool zt_isEqualWithFont(const NSFont* a, const NSFont* b);
