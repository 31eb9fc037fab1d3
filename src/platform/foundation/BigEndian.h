#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Unsigned big-endian number of `size` bytes, 1 to 8.
inline uint64_t loadBigEndian(const uint8_t* bytes, size_t size) {
  // The usual widths of references and offsets, without a loop.
  if (size == 1) return bytes[0];
  if (size == 2) return static_cast<uint64_t>(bytes[0] << 8 | bytes[1]);
  if (size == 4) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
  }
  uint64_t value = 0;
  for (size_t i = 0; i < size; ++i) value = value << 8 | bytes[i];
  return value;
}

/// Appends the low `size` bytes of a value, most significant first.
inline void appendBigEndian(std::vector<uint8_t>& out, uint64_t value, size_t size) {
  for (size_t i = size; i-- > 0;) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

inline float loadBigEndianFloat(const uint8_t* bytes) {
  return std::bit_cast<float>(static_cast<uint32_t>(loadBigEndian(bytes, 4)));
}

inline double loadBigEndianDouble(const uint8_t* bytes) {
  return std::bit_cast<double>(loadBigEndian(bytes, 8));
}
