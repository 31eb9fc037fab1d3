#include "platform/filters/light/PlanarPixels.h"

#include <bit>
#include <cstring>

#include "platform/filters/light/CodeKernelsAVX512.h"
#include "platform/machine/AVX512.h"
#include "platform/machine/TargetClones.h"

static_assert(std::endian::native == std::endian::little, "red is the lowest byte of a pixel");

namespace {

constexpr uint32_t kAlphaBits = 0xFF000000;

TARGET_CLONES void channelPlain(const uint32_t* __restrict pixels, size_t count, int shift,
                                uint8_t* __restrict codes) {
  for (size_t i = 0; i < count; ++i) codes[i] = static_cast<uint8_t>(pixels[i] >> shift);
}

TARGET_CLONES void joinPlain(const uint8_t* __restrict red, const uint8_t* __restrict green,
                             const uint8_t* __restrict blue, const uint8_t* __restrict alpha,
                             size_t count, uint32_t* __restrict pixels) {
  for (size_t i = 0; i < count; ++i) {
    pixels[i] = static_cast<uint32_t>(red[i]) | static_cast<uint32_t>(green[i]) << 8 |
                static_cast<uint32_t>(blue[i]) << 16 | static_cast<uint32_t>(alpha[i]) << 24;
  }
}

/// See straightCode and premultipliedCode.
TARGET_CLONES void unpremultiply(const uint8_t* __restrict alpha, uint8_t* __restrict codes) {
  for (size_t i = 0; i < kColorBatch; ++i) {
    const float divisor = alpha[i] > 0 ? static_cast<float>(alpha[i]) : 1.0F;
    const float code = static_cast<float>(codes[i]) * (255.0F / divisor) + 0.5F;
    const auto whole = static_cast<int32_t>(code < 255.0F ? code : 255.0F);
    codes[i] = static_cast<uint8_t>(alpha[i] > 0 ? whole : 0);
  }
}

TARGET_CLONES void premultiply(const uint8_t* __restrict alpha, uint8_t* __restrict codes) {
  for (size_t i = 0; i < kColorBatch; ++i) {
    const uint32_t product = static_cast<uint32_t>(codes[i]) * alpha[i];
    codes[i] = static_cast<uint8_t>((product + 127) / 255);
  }
}

void join(const PlanarPixels& codes, uint32_t* pixels) {
  const auto& [red, green, blue, alpha] = codes.channels;
  if (hasAVX512VBMI()) {
    joinChannelsAVX512({red, green, blue, alpha}, codes.count, pixels);
  } else {
    joinPlain(red, green, blue, alpha, codes.count, pixels);
  }
}

}  // namespace

TARGET_CLONES bool allOpaque(const uint32_t* pixels, size_t count) {
  uint32_t all = kAlphaBits;
  for (size_t i = 0; i < count; ++i) all &= pixels[i];
  return all == kAlphaBits;
}

void channelOf(const uint32_t* pixels, size_t count, int channel, uint8_t* codes) {
  if (hasAVX512VBMI()) {
    channelOfAVX512(pixels, count, channel, codes);
  } else {
    channelPlain(pixels, count, 8 * channel, codes);
  }
}

void splitPixels(const uint32_t* pixels, size_t count, PlanarPixels& codes) {
  codes.count = count;
  codes.opaque = allOpaque(pixels, count);
  if (count < kColorBatch) std::memset(codes.channels, 0, sizeof codes.channels);
  for (int c = 0; c < 3; ++c) channelOf(pixels, count, c, codes.channels[c]);
  if (codes.opaque) {
    std::memset(codes.channels[3], 255, kColorBatch);
    return;
  }
  channelOf(pixels, count, 3, codes.channels[3]);
  const uint8_t* const alpha = codes.channels[3];
  for (int c = 0; c < 3; ++c) unpremultiply(alpha, codes.channels[c]);
}

void joinPixels(const PlanarPixels& codes, uint32_t* pixels) {
  if (codes.opaque) return join(codes, pixels);
  PlanarPixels stored = codes;
  auto& [red, green, blue, alpha] = stored.channels;
  for (uint8_t* channel : {red, green, blue}) premultiply(alpha, channel);
  join(stored, pixels);
}

void roundTrip(PlanarPixels& codes) {
  if (codes.opaque) return;
  auto& [red, green, blue, alpha] = codes.channels;
  for (uint8_t* channel : {red, green, blue}) {
    premultiply(alpha, channel);
    unpremultiply(alpha, channel);
  }
}
