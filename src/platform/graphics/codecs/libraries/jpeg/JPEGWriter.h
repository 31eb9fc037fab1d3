#pragma once

#include <cstdint>
#include <vector>

struct PictureSource;

/// Encodes as PictureCodec::encode says; quality 1 is the library's 100. From 0.9 on colours keep
/// the full resolution.
bool writeJPEG(const PictureSource& picture, double quality, std::vector<uint8_t>& file);
