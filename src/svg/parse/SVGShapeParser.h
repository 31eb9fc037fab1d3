#pragma once

#include <string_view>

#include "svg/draw/SVGRenderer.h"
#include "svg/parse/SVGAttributes.h"
#include "svg/parse/SVGLength.h"

namespace SVGNative {

/// True for "rect", "ellipse", "circle", "line", "polygon", "polyline" and "path".
bool isShape(std::string_view elementName);

/// Adds the geometry of a shape element to the path. A shape without extent, or with an invalid
/// list of points, adds nothing; path data adds what stands before its first error.
void ParseGeometry(std::string_view elementName, const AttributeSet& attributes,
                   const LengthContext& lengths, Path& path);

}  // namespace SVGNative
