#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/outline/PathData.h"

/// One element of an outline in the unit box, y upwards.
struct OutlineElement {
  PathVerb verb;
  NSPoint points[3];
};

/// A pictogram: the draw class that archives name, its display name, the width for a height of 1
/// that it is designed for, and its outline.
struct FixedOutline {
  std::string_view className;
  std::string_view name;
  CGFloat width2HeightRatio;
  std::span<const OutlineElement> elements;
};

inline constexpr size_t kFixedOutlineCount = 19;

/// All pictograms, kFixedOutlineCount of them.
std::span<const FixedOutline> fixedOutlines();
