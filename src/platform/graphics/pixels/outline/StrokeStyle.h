#pragma once

#include <vector>

#include "platform/graphics/pixels/outline/PathData.h"

/// The pen of a stroke, in user space units.
struct StrokeStyle {
  double width = 1;  ///< 0: a canvas pixel. Negative ones and NaN draw nothing.
  LineCap cap = LineCap::butt;
  LineJoin join = LineJoin::miter;
  double miterLimit = 10;    ///< in widths; below 1 every miter is a bevel
  std::vector<double> dash;  ///< lengths of marks and gaps, see dashPattern(); empty: solid
  double dashPhase = 0;
  double canvasPixel = 1;  ///< how long a canvas pixel is on the device, in its pixels
};
