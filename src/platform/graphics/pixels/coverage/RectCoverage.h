#pragma once

#include <optional>

#include "platform/foundation/Geometry.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"
#include "platform/graphics/pixels/outline/DeviceGrid.h"
#include "platform/graphics/pixels/outline/PathData.h"

/// The device rectangle that filling `path` covers when that is what it is: one subpath of four
/// corners (the fourth side or the close may be left out), sides along the pixel rows and columns
/// after `toDevice`, lone moves aside. Nothing for other paths and for coordinates that are not
/// finite.
std::optional<DeviceBounds> deviceRectangle(const PathData& path,
                                            const CGAffineTransform& toDevice);

/// The coverage of a rectangle within `box`, the same as the scan converter's, without scan
/// conversion.
void emitRectangle(const DeviceBounds& rectangle, Antialias antialias, const PixelBox& box,
                   CoverageSink& sink);
