#pragma once

#include <cstdint>
#include <span>

class PictureTarget;

/// Decodes as PictureCodec::decode says; of an animation its first frame.
void readWebP(std::span<const uint8_t> file, PictureTarget& target);
