#pragma once

#include <cstdint>
#include <span>

class PictureTarget;

/// Decodes the first picture of a TIFF file as PictureCodec::decode says: strips and tiles, every
/// compression of the library, 1 to 16 and 32 bits, floating point, grey, palette, RGB, YCbCr,
/// CMYK, L*a*b*, either kind of alpha; ICC profiles and orientations are passed on.
void readTIFF(std::span<const uint8_t> file, PictureTarget& target);
