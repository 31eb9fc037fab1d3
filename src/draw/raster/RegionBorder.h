#pragma once

#include <memory>

class ImageMask;
class NSBezierPath;

/// The outline of a mask's region along the edges of its pixels, in the bitmap's coordinates: one
/// closed subpath around each part, counter-clockwise, and one around each hole, clockwise. Pixels
/// that touch only at a corner are not joined, so that a hole which touches the outside at a corner
/// is part of the outline there. Both winding rules fill just the region.
std::shared_ptr<NSBezierPath> regionBorder(const ImageMask& mask);
