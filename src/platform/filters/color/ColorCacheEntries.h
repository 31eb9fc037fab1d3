#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/machine/TargetClones.h"

// What a colour filter makes of pixels, by pixel value.

/// Slot of an opaque colour in the direct-mapped cache: an invertible hash of the 24 colour bits
/// gives a 17-bit index and a 7-bit tag. An entry is a result with the tag in place of its alpha.
/// The highest bit of a tag is set, so that a zero entry is an empty one.
struct CacheSlot {
  uint32_t index;
  uint32_t tag;
};
constexpr int kCacheIndexBits = 17;
constexpr size_t kCacheEntries = size_t{1} << kCacheIndexBits;
constexpr uint32_t kCacheHashFactor = 0x9E3779B1U;
constexpr uint32_t kCacheTagMask = 0xFF000000;
constexpr uint32_t kCacheUsed = 0x80000000;
/// `Word` is uint32_t or a vector of them.
template <class Word>
ALWAYS_INLINE constexpr void findCacheSlot(const Word& pixel, Word& index, Word& tag) {
  const Word mixed = (pixel * kCacheHashFactor) << 8;
  index = mixed >> (32 - kCacheIndexBits);
  tag = (mixed << kCacheIndexBits) >> 1 | kCacheUsed;
}
constexpr CacheSlot cacheSlot(uint32_t pixel) {
  CacheSlot slot{};
  findCacheSlot(pixel, slot.index, slot.tag);
  return slot;
}

/// Looks `count` pixels up in a cache of kCacheEntries. results[i] is the cached colour, valid only
/// on a hit; results must not overlap the pixels. Returns the number of misses (translucent pixels
/// always miss) and appends each missed pixel and its index, counted from `first`, to the lists; up
/// to 16 elements beyond the end of the lists are overwritten.
size_t findEntries(const uint32_t* cache, const uint32_t* pixels, size_t count, uint32_t* results,
                   uint32_t first, uint32_t* missed, uint32_t* missedNumbers);
/// The form for processors without AVX-512 VBMI.
size_t findEntriesPlain(const uint32_t* cache, const uint32_t* pixels, size_t count,
                        uint32_t* results, uint32_t first, uint32_t* missed,
                        uint32_t* missedNumbers);
