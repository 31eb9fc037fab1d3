#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/filters/light/CodeTables.h"

struct HalfOctaveCubics;

// Look-ups and conversions of many 8-bit codes at a time, with the byte permutations of AVX-512
// VBMI. To be called only where hasAVX512VBMI(); CodeTables, PlanarPixels and LinearLight do.

void lookUpBytesAVX512(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                       uint8_t* results);
void lookUpFloatsAVX512(const FloatTable& table, const uint8_t* codes, size_t count, float* values);

/// The nearest whole number to the function of each light, 0 to 255; lights are clamped, and the
/// least stands for no number.
void codesFromLinearAVX512(const HalfOctaveCubics& function, const float* lights, size_t count,
                           uint8_t* codes);

/// The bytes of one channel, 0 to 3, of `count` pixels; and pixels from the bytes
/// of four, of which there are 64 or a multiple however few count.
void channelOfAVX512(const uint32_t* pixels, size_t count, int channel, uint8_t* codes);
void joinChannelsAVX512(const std::array<const uint8_t*, 4>& channels, size_t count,
                        uint32_t* pixels);

/// The function of each light, clamped to the range that it is defined on.
void evaluateCubicsAVX512(const HalfOctaveCubics& function, const float* lights, size_t count,
                          float* values);
