#pragma once

#include <cstdint>
#include <vector>

struct PictureSource;

/// Encodes as PictureCodec::encode says, without loss: premultiplied alpha, LZW with prediction.
bool writeTIFF(const PictureSource& picture, std::vector<uint8_t>& file);
