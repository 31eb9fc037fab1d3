#include "platform/filters/color/ColorCacheEntriesAVX512.h"

#include <cstring>

#include "platform/filters/color/ColorCacheEntries.h"
#include "platform/machine/AVX512.h"

#ifdef PAINT_AVX512_KERNELS
#include <immintrin.h>

AVX512_UNDEFINED_REGISTERS

namespace {

constexpr size_t kPixels = 16;

/// The cache's entries of sixteen numbers. One load for each: on many processors the instruction
/// that gathers them takes longer.
AVX512_INLINE __m512i entriesAt(const uint32_t* cache, __m512i numbers) {
  alignas(64) uint32_t at[kPixels];
  _mm512_store_si512(at, numbers);
  __m128i fours[4];
  for (int k = 0; k < 4; ++k) {
    const auto entry = [&](int i) { return static_cast<int>(cache[at[4 * k + i]]); };
    fours[k] = _mm_cvtsi32_si128(entry(0));
    fours[k] = _mm_insert_epi32(fours[k], entry(1), 1);
    fours[k] = _mm_insert_epi32(fours[k], entry(2), 2);
    fours[k] = _mm_insert_epi32(fours[k], entry(3), 3);
  }
  const __m512i low = _mm512_castsi256_si512(_mm256_set_m128i(fours[1], fours[0]));
  return _mm512_inserti64x4(low, _mm256_set_m128i(fours[3], fours[2]), 1);
}

/// Sixteen pixels of `findEntriesAVX512`, of which `wanted` count.
AVX512_INLINE size_t findSixteen(const uint32_t* cache, const uint32_t* pixels, __mmask16 wanted,
                                 uint32_t* results, uint32_t first, uint32_t* missed,
                                 uint32_t* missedNumbers) {
  const __m512i lanes = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  const __m512i factor = _mm512_set1_epi32(static_cast<int>(kCacheHashFactor));
  const __m512i alpha = _mm512_set1_epi32(static_cast<int>(kCacheTagMask));
  const __m512i set = _mm512_set1_epi32(static_cast<int>(kCacheUsed));
  const __m512i pixel = _mm512_loadu_si512(pixels);
  const __m512i mixed = _mm512_slli_epi32(_mm512_mullo_epi32(pixel, factor), 8);
  const __m512i entry = entriesAt(cache, _mm512_srli_epi32(mixed, 32 - kCacheIndexBits));
  const __m512i mark =
      _mm512_or_si512(_mm512_srli_epi32(_mm512_slli_epi32(mixed, kCacheIndexBits), 1), set);
  _mm512_storeu_si512(results, _mm512_or_si512(entry, alpha));
  // Zero where the tag is the pixel's and the pixel is opaque.
  const __m512i difference =
      _mm512_or_si512(_mm512_xor_si512(entry, mark), _mm512_xor_si512(pixel, alpha));
  const __mmask16 unknown = _mm512_mask_test_epi32_mask(wanted, difference, alpha);
  const __m512i number = _mm512_add_epi32(lanes, _mm512_set1_epi32(static_cast<int>(first)));
  _mm512_storeu_si512(missed, _mm512_maskz_compress_epi32(unknown, pixel));
  _mm512_storeu_si512(missedNumbers, _mm512_maskz_compress_epi32(unknown, number));
  return static_cast<size_t>(__builtin_popcount(unknown));
}

}  // namespace

AVX512_KERNEL size_t findEntriesAVX512(const uint32_t* cache, const uint32_t* pixels, size_t count,
                                       uint32_t* results, uint32_t first, uint32_t* missed,
                                       uint32_t* missedNumbers) {
  size_t misses = 0;
  size_t i = 0;
  for (; i + kPixels <= count; i += kPixels) {
    misses += findSixteen(cache, pixels + i, 0xFFFF, results + i, first + static_cast<uint32_t>(i),
                          missed + misses, missedNumbers + misses);
  }
  if (i == count) return misses;
  uint32_t last[kPixels] = {};
  uint32_t lastResults[kPixels];
  std::memcpy(last, pixels + i, (count - i) * sizeof(uint32_t));
  misses += findSixteen(cache, last, static_cast<__mmask16>((1U << (count - i)) - 1), lastResults,
                        first + static_cast<uint32_t>(i), missed + misses, missedNumbers + misses);
  std::memcpy(results + i, lastResults, (count - i) * sizeof(uint32_t));
  return misses;
}

#else

size_t findEntriesAVX512(const uint32_t*, const uint32_t*, size_t, uint32_t*, uint32_t, uint32_t*,
                         uint32_t*) {
  return 0;
}

#endif
