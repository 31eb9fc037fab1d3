#include "platform/graphics/pixels/paint/MaskKernels.h"

#include <algorithm>
#include <cstring>

#include "platform/machine/ParallelRows.h"
#include "platform/machine/TargetClones.h"

namespace {

/// Masks are looked at in pieces of this many bytes, whose pixels take a page.
constexpr size_t kPiece = 1024;

/// Pixels from which rows are filled in parallel. One thread fills 32 million in 5 milliseconds;
/// on two busy processors a second one gained nothing below that, and nearly half at 64 million.
constexpr int64_t kParallelPixels = 32'000'000;

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

void fillMaskedRows(uint32_t* pixels, int64_t stride, const uint8_t* mask, int64_t maskStride,
                    int64_t count, int64_t rows, uint32_t value) {
  const auto fill = [&](int64_t first, int64_t end) {
    for (int64_t y = first; y < end; ++y) {
      fillMasked(pixels + y * stride, mask + y * maskStride, static_cast<size_t>(count), value);
    }
  };
  if (count * rows < kParallelPixels) {
    fill(0, rows);
  } else {
    inParallel(rows, fill);
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
