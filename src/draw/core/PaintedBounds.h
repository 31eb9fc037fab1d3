#pragma once

#include "platform/foundation/Geometry.h"

class DrawBase;

/// Where a draw may change pixels, on the canvas: its path or picture with everything that the
/// stroke, mitres, caps, arrow heads, the outline around them and moves to whole pixels add, the
/// shadow and the reflection. Holds for draws that paint their path, along it, or a picture in its
/// bounds; groups and draws that flow or fill beyond their path are not asked. Zero for a draw
/// without a path. What the format calls the rendered rectangle is not a bound: it leaves out
/// mitres and the turned lines under arrow heads, and mirrors another rectangle than is painted.
NSRect paintedBounds(const DrawBase& draw);
