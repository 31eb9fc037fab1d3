#pragma once

#include <cstdint>
#include <span>

/// The orientation (1 to 8) in an Exif block, which starts with its TIFF header ("II" or "MM"); an
/// "Exif" prefix is passed over. 1 when there is none.
int exifOrientation(std::span<const uint8_t> exif);
