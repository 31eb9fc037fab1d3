#pragma once

#include <cstdint>
#include <span>

class PictureTarget;

/// Decodes a JPEG file as PictureCodec::decode says: baseline and progressive, grey, RGB, YCC, CMYK
/// and YCCK, with or without Adobe's inversion; ICC profiles and Exif orientations are passed on.
void readJPEG(std::span<const uint8_t> file, PictureTarget& target);
