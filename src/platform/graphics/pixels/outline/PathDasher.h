#pragma once

#include <optional>
#include <span>
#include <vector>

#include "platform/graphics/pixels/outline/DeviceGrid.h"
#include "platform/graphics/pixels/outline/FlatPath.h"

/// Lengths of marks and gaps in turn, starting with a mark.
struct DashPattern {
  std::vector<double> lengths;  ///< an even number, none negative, at least one gap above zero
  double total = 0;             ///< their sum, greater than zero
  double phase = 0;             ///< where the pattern starts, 0 to total
};

/// The pattern in a space where lengths are `scale` times as long. Odd counts are run through
/// twice; a phase of either sign is reduced to the pattern; a mark of length 0 becomes one unit
/// long, at the cost of the gap that follows.
/// Nothing, which means a solid line, for patterns without gaps, for lengths that are negative or
/// not finite, and for patterns shorter than 0.05 after scaling: those would be a grey line.
std::optional<DashPattern> dashPattern(std::span<const double> lengths, double phase, double scale);

enum class DashResult {
  dashed,
  tooMany,  ///< more than limits::kMaxDashes; draw it solid
};

/// Cuts `path` into the marks of `pattern`; each is an open subpath of `out`, also those of closed
/// subpaths. The pattern starts anew in every subpath. What lies outside `visible` may be left
/// out: there the pattern is only counted on.
DashResult dashPath(const FlatPath& path, const DashPattern& pattern, const DeviceBounds& visible,
                    FlatPath& out);
