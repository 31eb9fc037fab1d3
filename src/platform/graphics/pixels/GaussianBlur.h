#pragma once

#include "platform/graphics/pixels/AlphaMask.h"

/// Shadows reach at most this far beyond their shape, in pixels.
inline constexpr int kMaxBlurReach = 1000;

/// How far a blur reaches, in whole pixels: `blur` rounded, within 0..kMaxBlurReach; 0 for NaN.
int blurReach(double blur);

/// The mask convolved with a Gaussian of standard deviation blur / 2 that is cut off beyond
/// blurReach(blur) pixels and scaled to the sum 1, in both directions; the pixels outside the mask
/// count as 0. Only the part inside `wanted` is computed; the result may be smaller where it would
/// be 0. Rounded to nearest up to a reach of 16, within 1.5 of 255 of that definition beyond.
///
/// Up to a reach of 16 the sum is taken pixel by pixel. Larger ones are computed from means of
/// cells of 2 to 64 pixels a side, enough for a shape that smooth, and interpolated linearly; so
/// the cost per pixel does not grow with the blur.
AlphaMask gaussianBlur(const AlphaMask& mask, double blur, const PixelBox& wanted);
