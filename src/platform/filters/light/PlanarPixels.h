#pragma once

#include <cstddef>
#include <cstdint>

/// Pixels taken together by the operations on them.
constexpr size_t kColorBatch = 512;
/// Room for a batch of floats: arrays in a row are a line more than half a page apart, so that what
/// belongs together does not compete for the same places in a cache.
constexpr size_t kBatchStride = kColorBatch + 16;

/// Pixels as separate channels of straight codes: red, green, blue, alpha. Whatever is done to them
/// is done to all kColorBatch, so that loops have no remainders and every pixel goes through the
/// same instructions; those beyond `count` are zero at first and not joined.
struct alignas(64) PlanarPixels {
  size_t count = 0;
  bool opaque = false;
  alignas(64) uint8_t channels[4][kColorBatch];
};

bool allOpaque(const uint32_t* pixels, size_t count);

/// Asks for the next kColorBatch pixels while others are worked on, which takes longer. Addresses
/// beyond the picture do no harm.
inline void prefetchPixels(const uint32_t* pixels) {
  constexpr size_t kPixelsInLine = 16;
  for (size_t i = 0; i < kColorBatch; i += kPixelsInLine) __builtin_prefetch(pixels + i);
}

/// The bytes of one channel (0 to 3) of any number of pixels.
void channelOf(const uint32_t* pixels, size_t count, int channel, uint8_t* codes);

/// Premultiplied pixels, at most kColorBatch, as straight codes.
void splitPixels(const uint32_t* pixels, size_t count, PlanarPixels& codes);
void joinPixels(const PlanarPixels& codes, uint32_t* pixels);
/// What joining and splitting again does; nothing to opaque pixels.
void roundTrip(PlanarPixels& codes);
