#pragma once

#include "platform/graphics/pixels/outline/PathData.h"

/// Whether a point is inside the filled path; curves are taken as lines within 1/1000 unit. False
/// for paths with a coordinate that is not finite.
bool pathContains(const PathData& path, WindingRule rule, NSPoint p);
