#pragma once

#include <cstdint>
#include <span>

class PictureTarget;

/// Decodes a PNG file as PictureCodec::decode says: every depth and colour type, interlaced files,
/// transparent colours; iCCP profiles and eXIf orientations are passed on. Texts and other chunks
/// are skipped.
void readPNG(std::span<const uint8_t> file, PictureTarget& target);
