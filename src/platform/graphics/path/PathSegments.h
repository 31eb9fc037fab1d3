#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/graphics/pixels/outline/PathData.h"

// The elements of a path as archives hold them: records of a kind (1 byte, a PathVerb) and a point
// (two big-endian floats).

/// Keeps what can be read: stops at a short tail, an unknown kind or an incomplete curve. A drawing
/// element before any move starts the path at its end point.
PathData pathFromSegments(std::span<const uint8_t> bytes);

std::vector<uint8_t> segmentsOfPath(const PathData& path);
