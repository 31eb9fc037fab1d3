#pragma once

#include <memory>

#include "platform/graphics/path/NSBezierPath.h"

/// The closed triangle at the end of the segment `from` - `to`, or null when the segment has no
/// room for it (a head smaller than twice the line width).
///
/// `sharedSegment`: a second head shares the segment. `endCanMove`: the segment is straight, the
/// tip is `to` and `*movedEnd` (unless null) receives where the line has to end inside the head;
/// otherwise the segment is the end of a curve, which stays, and the tip lies beyond `to`.
std::shared_ptr<NSBezierPath> GetArrowPathAndAdjustedEndPoint(bool sharedSegment, bool endCanMove,
                                                              NSPoint* movedEnd, NSPoint from,
                                                              NSPoint to, float lineWidth);
