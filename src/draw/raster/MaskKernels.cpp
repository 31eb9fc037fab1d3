#include "draw/raster/MaskKernels.h"

#include <algorithm>
#include <cstring>

#include "platform/machine/TargetClones.h"

namespace {

/// Masks are looked at in pieces of this many bytes, whose pixels take a page.
constexpr size_t kPiece = 1024;

bool isUniform(const uint8_t* mask, size_t count) {
  return std::memcmp(mask, mask + 1, count - 1) == 0;
}

TARGET_CLONES void fillAll(uint32_t* pixels, size_t count, uint32_t value) {
  for (size_t i = 0; i < count; ++i) pixels[i] = value;
}

TARGET_CLONES void fillSome(uint32_t* __restrict pixels, const uint8_t* __restrict mask,
                            size_t count, uint32_t value) {
  for (size_t i = 0; i < count; ++i) pixels[i] = mask[i] != 0 ? value : pixels[i];
}

TARGET_CLONES void copySome(uint32_t* __restrict pixels, const uint32_t* __restrict source,
                            const uint8_t* __restrict mask, size_t count) {
  for (size_t i = 0; i < count; ++i) pixels[i] = mask[i] != 0 ? source[i] : pixels[i];
}

}  // namespace

void fillMasked(uint32_t* pixels, const uint8_t* mask, size_t count, uint32_t value) {
  for (size_t x = 0; x < count; x += kPiece) {
    const size_t n = std::min(kPiece, count - x);
    if (!isUniform(mask + x, n)) {
      fillSome(pixels + x, mask + x, n, value);
    } else if (mask[x] != 0) {
      fillAll(pixels + x, n, value);
    }
  }
}

void copyMasked(uint32_t* pixels, const uint32_t* source, const uint8_t* mask, size_t count) {
  for (size_t x = 0; x < count; x += kPiece) {
    const size_t n = std::min(kPiece, count - x);
    if (!isUniform(mask + x, n)) {
      copySome(pixels + x, source + x, mask + x, n);
    } else if (mask[x] != 0) {
      std::memcpy(pixels + x, source + x, n * sizeof *pixels);
    }
  }
}
