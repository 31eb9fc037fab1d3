#include "platform/graphics/codecs/PixelConversion.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/foundation/Convert.h"
#include "platform/machine/TargetClones.h"

static_assert(std::endian::native == std::endian::little, "red is the lowest byte of a pixel");

namespace {

/// Pixels worked on at a time, as whole numbers with red lowest.
constexpr size_t kBatch = 256;

// Both kernels work in place on their batch, which no other pointer can reach.

/// The colours of a pixel times a byte, over 255 and rounded, exactly (J. Blinn, "Three Wrongs Make
/// a Right", 1995); the fourth byte is zero.
inline uint32_t scaledColours(uint32_t pixel, uint32_t factor) {
  const auto scaled = [factor](uint32_t channel) {
    const uint32_t t = (channel & 255) * factor + 128;
    return (t + (t >> 8)) >> 8;
  };
  return scaled(pixel) | scaled(pixel >> 8) << 8 | scaled(pixel >> 16) << 16;
}

TARGET_CLONES void premultiply(uint32_t* pixels, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    pixels[i] = scaledColours(pixels[i], pixels[i] >> 24) | (pixels[i] & 0xff000000);
  }
}

TARGET_CLONES void inksToOpaque(uint32_t* pixels, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t paper = ~pixels[i];
    pixels[i] = scaledColours(paper, paper >> 24) | 0xff000000;
  }
}

TARGET_CLONES void unpremultiply(uint32_t* pixels, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t p = pixels[i];
    const auto a = static_cast<int32_t>(p >> 24);
    const auto divisor = static_cast<float>(a + (a == 0));
    // The quotient is rounded correctly and never near a half without being one.
    const auto straight = [a, divisor](uint32_t channel) {
      const int32_t c = std::min(static_cast<int32_t>(channel & 255), a);
      return static_cast<uint32_t>(roundedHalfUp(static_cast<float>(c * 255) / divisor));
    };
    pixels[i] = straight(p) | straight(p >> 8) << 8 | straight(p >> 16) << 16 | (p & 0xff000000);
  }
}

TARGET_CLONES uint32_t commonBits(const uint32_t* pixels, size_t count) {
  uint32_t bits = 0xffffffff;
  for (size_t i = 0; i < count; ++i) bits &= pixels[i];
  return bits;
}

template <class Kernel>
void inBatches(const uint8_t* in, uint8_t* out, size_t pixelCount, Kernel kernel) {
  uint32_t batch[kBatch];
  for (size_t begin = 0; begin < pixelCount; begin += kBatch) {
    const size_t count = std::min(kBatch, pixelCount - begin);
    std::memcpy(batch, in + begin * 4, count * 4);
    kernel(batch, count);
    std::memcpy(out + begin * 4, batch, count * 4);
  }
}

}  // namespace

void premultiplyRow(const uint8_t* in, uint8_t* out, size_t pixelCount) {
  inBatches(in, out, pixelCount, premultiply);
}

void unpremultiplyRow(const uint8_t* in, uint8_t* out, size_t pixelCount) {
  inBatches(in, out, pixelCount, unpremultiply);
}

void inksToOpaqueRow(const uint8_t* in, uint8_t* out, size_t pixelCount) {
  inBatches(in, out, pixelCount, inksToOpaque);
}

bool isOpaqueRow(const uint8_t* row, size_t pixelCount) {
  uint32_t batch[kBatch];
  uint32_t bits = 0xffffffff;
  for (size_t begin = 0; begin < pixelCount && bits >> 24 == 255; begin += kBatch) {
    const size_t count = std::min(kBatch, pixelCount - begin);
    std::memcpy(batch, row + begin * 4, count * 4);
    bits &= commonBits(batch, count);
  }
  return bits >> 24 == 255;
}
