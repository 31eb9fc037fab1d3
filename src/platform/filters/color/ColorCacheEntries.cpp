#include "platform/filters/color/ColorCacheEntries.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/filters/color/ColorCacheEntriesAVX512.h"
#include "platform/filters/light/PlanarPixels.h"
#include "platform/machine/AVX512.h"
#include "platform/machine/VectorWidthClones.h"

namespace {

/// The entries in the places of kColorBatch pixels, opaque; and what is not zero where they are not
/// the pixels' own.
template <size_t kMost>
ALWAYS_INLINE void compareEntriesBy(const uint32_t* cache, const uint32_t* pixels,
                                    uint32_t* results, uint32_t* differences) {
  constexpr size_t kLanes = std::min<size_t>(kMost, 8);  // more are slow to fill one by one
  using Vectors = VectorTypes<kLanes>;
  using Words = typename Vectors::Words;
  for (size_t i = 0; i < kColorBatch; i += kLanes) {
    Words pixel, number, mark;
    Vectors::load(pixels + i, pixel);
    findCacheSlot(pixel, number, mark);
    // One load for each: on many processors the instruction that gathers them takes longer.
    Words entry{};
#pragma GCC unroll 8
    for (size_t lane = 0; lane < kLanes; ++lane) entry[lane] = cache[number[lane]];
    const Words difference = ((entry ^ mark) | ~pixel) & kCacheTagMask;
    Vectors::store(entry | kCacheTagMask, results + i);
    Vectors::store(difference, differences + i);
  }
}
VECTOR_WIDTH_CLONES(compareEntries,
                    (const uint32_t* cache, const uint32_t* pixels, uint32_t* results,
                     uint32_t* differences),
                    compareEntriesBy, (cache, pixels, results, differences))

TARGET_CLONES void flagNonzero(const uint32_t* __restrict values, uint8_t* __restrict flags) {
  for (size_t i = 0; i < kColorBatch; ++i) flags[i] = values[i] != 0 ? 1 : 0;
}

/// Bit i is flag i.
uint64_t bitsOf(const uint8_t* flags) {
  uint64_t bits = 0;
  for (size_t i = 0; i < 64; i += 8) {
    uint64_t eight;
    std::memcpy(&eight, flags + i, sizeof eight);
    // Carries each flag to a place of its own in the highest byte.
    bits |= (eight * 0x0102040810204080) >> 56 << i;
  }
  return bits;
}

/// Flags those of up to kColorBatch pixels that are not found.
void findBatch(const uint32_t* cache, const uint32_t* pixels, size_t count, uint32_t* results,
               uint8_t* flags) {
  alignas(64) uint32_t differences[kColorBatch];
  if (count == kColorBatch) {
    compareEntries(cache, pixels, results, differences);
    return flagNonzero(differences, flags);
  }
  uint32_t padded[kColorBatch] = {};
  uint32_t paddedResults[kColorBatch];
  std::copy_n(pixels, count, padded);
  compareEntries(cache, padded, paddedResults, differences);
  std::copy_n(paddedResults, count, results);
  flagNonzero(differences, flags);
  std::fill(flags + count, flags + kColorBatch, uint8_t{0});
}

}  // namespace

size_t findEntriesPlain(const uint32_t* cache, const uint32_t* pixels, size_t count,
                        uint32_t* results, uint32_t first, uint32_t* missed,
                        uint32_t* missedNumbers) {
  size_t misses = 0;
  alignas(64) uint8_t flags[kColorBatch];
  for (size_t begin = 0; begin < count; begin += 64) {
    const size_t inBatch = begin % kColorBatch;
    if (inBatch == 0) {
      findBatch(cache, pixels + begin, std::min(kColorBatch, count - begin), results + begin,
                flags);
    }
    for (uint64_t bits = bitsOf(flags + inBatch); bits != 0; bits &= bits - 1) {
      const size_t i = begin + static_cast<size_t>(std::countr_zero(bits));
      missed[misses] = pixels[i];
      missedNumbers[misses++] = first + static_cast<uint32_t>(i);
    }
  }
  return misses;
}

size_t findEntries(const uint32_t* cache, const uint32_t* pixels, size_t count, uint32_t* results,
                   uint32_t first, uint32_t* missed, uint32_t* missedNumbers) {
  const auto find = hasAVX512VBMI() ? findEntriesAVX512 : findEntriesPlain;
  return find(cache, pixels, count, results, first, missed, missedNumbers);
}
