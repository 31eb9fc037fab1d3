#pragma once

#include <bit>
#include <cstdint>

/// Arithmetic on one premultiplied pixel held in 32 bits, R in the lowest byte as in memory. Two
/// channels are worked on at once in 16-bit lanes, which plain loops over pixels keep when they
/// are vectorised. Products are rounded exactly: round(v * c / 255).

static_assert(std::endian::native == std::endian::little, "pixels are read as little-endian words");

inline constexpr uint32_t kEvenLanes = 0x00ff00ff;
inline constexpr uint32_t kHalfLanes = 0x00800080;

constexpr uint32_t alphaOf(uint32_t pixel) {
  return pixel >> 24;
}

/// round(v / 255) for v in 0..255*255.
constexpr uint32_t divideBy255(uint32_t v) {
  return (v + 128 + ((v + 128) >> 8)) >> 8;
}

/// Both lanes of `v` divided by 255 with rounding; the quotients are in the low bytes.
constexpr uint32_t divideLanes(uint32_t v) {
  v += kHalfLanes;
  return ((v + ((v >> 8) & kEvenLanes)) >> 8) & kEvenLanes;
}

/// Every channel times c / 255; c in 0..255.
constexpr uint32_t scaled(uint32_t pixel, uint32_t c) {
  return divideLanes((pixel & kEvenLanes) * c) | divideLanes(((pixel >> 8) & kEvenLanes) * c) << 8;
}

/// (a (255 - m) + b m) / 255 in every channel.
constexpr uint32_t mixed(uint32_t a, uint32_t b, uint32_t m) {
  const uint32_t n = 255 - m;
  return divideLanes((a & kEvenLanes) * n + (b & kEvenLanes) * m) |
         divideLanes(((a >> 8) & kEvenLanes) * n + ((b >> 8) & kEvenLanes) * m) << 8;
}

/// min(255, a + b) in every channel.
constexpr uint32_t addedSaturating(uint32_t a, uint32_t b) {
  uint32_t even = (a & kEvenLanes) + (b & kEvenLanes);
  uint32_t odd = ((a >> 8) & kEvenLanes) + ((b >> 8) & kEvenLanes);
  even |= 0x01000100 - ((even >> 8) & 0x00010001);
  odd |= 0x01000100 - ((odd >> 8) & 0x00010001);
  return (even & kEvenLanes) | (odd & kEvenLanes) << 8;
}

/// source + destination (1 - source alpha). The sum cannot overflow while no source channel
/// exceeds the source's alpha.
constexpr uint32_t sourceOver(uint32_t source, uint32_t destination) {
  return source + scaled(destination, 255 - alphaOf(source));
}

/// As sourceOver, for sources whose channels may exceed their alpha: sums saturate.
constexpr uint32_t sourceOverSaturating(uint32_t source, uint32_t destination) {
  return addedSaturating(source, scaled(destination, 255 - alphaOf(source)));
}
