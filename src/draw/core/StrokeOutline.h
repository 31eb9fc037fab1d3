#pragma once

#include <memory>

#include "platform/graphics/path/CGPath.h"
#include "platform/graphics/path/NSBezierPath.h"

/// Outline of the stroked path (its width, cap and join; every miter a bevel; no dash), and the
/// same as a path to fill with the non-zero rule, of line width 1 and round joins.
CGPath copyStrokeOutlineCGPath(const NSBezierPath& path);
std::shared_ptr<NSBezierPath> strokeOutlinePath(const NSBezierPath& path);
