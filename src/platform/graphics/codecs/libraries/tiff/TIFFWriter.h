#pragma once

#include <cstdint>
#include <vector>

struct PictureSource;

/// Encodes as PictureCodec::encode says, without loss: premultiplied alpha, LZW with prediction.
std::vector<uint8_t> writeTIFF(const PictureSource& picture);
