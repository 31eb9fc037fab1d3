#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/filters/CodeTables.h"

/// Look-ups and conversions of many 8-bit codes at a time, with the byte permutations of AVX-512
/// VBMI. To be called only where the processor has them; each does what the function of nearly the
/// same name does that calls it.
inline bool hasWideCodes() {
#if defined(__x86_64__) && defined(__GNUC__) && !defined(PAINT_NO_AVX512)
  // Processors that have these have the other extensions as well that are used with them.
  return __builtin_cpu_supports("avx512vbmi") > 0 && __builtin_cpu_supports("avx512vl") > 0;
#else
  return false;
#endif
}

void wideLookUpBytes(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                     uint8_t* results);
void wideLookUpFloats(const FloatTable& table, const uint8_t* codes, size_t count, float* values);

/// A function of light from 2^-16 to 1, as cubics over halves of octaves: the upper ten bits of a
/// float, modulo 32, number the piece. powers[k] has the coefficients of light^k.
struct HalfOctaveCubics {
  alignas(64) std::array<std::array<float, 32>, 4> powers;
};
/// The nearest whole number to the function of each light, 0 to 255; lights are clamped, and the
/// least stands for no number.
void wideCodesOfLights(const HalfOctaveCubics& function, const float* lights, size_t count,
                       uint8_t* codes);

/// The bytes of one channel, 0 to 3, of `count` pixels; and pixels from the bytes
/// of four, of which there are 64 or a multiple however few count.
void wideChannel(const uint32_t* pixels, size_t count, int channel, uint8_t* codes);
void wideJoin(const std::array<const uint8_t*, 4>& channels, size_t count, uint32_t* pixels);

size_t wideFindEntries(const uint32_t* memo, const uint32_t* pixels, size_t count,
                       uint32_t* results, uint32_t first, uint32_t* missed,
                       uint32_t* missedNumbers);

/// The function of each light, clamped to the range that it is defined on.
void wideCurve(const HalfOctaveCubics& function, const float* lights, size_t count, float* values);
