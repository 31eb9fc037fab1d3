#pragma once

#include <cstdint>
#include <vector>

struct PictureSource;

/// Encodes as PictureCodec::encode says; quality 1 is lossless. Colours below an alpha of zero are
/// not kept.
bool writeWebP(const PictureSource& picture, double quality, std::vector<uint8_t>& file);
