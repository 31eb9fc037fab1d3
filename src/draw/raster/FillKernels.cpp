#include "draw/raster/FillKernels.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

#include "platform/machine/TargetClones.h"

namespace {

inline int32_t difference(uint32_t a, uint32_t b, int shift) {
  return std::abs(static_cast<int32_t>(a >> shift & 255) - static_cast<int32_t>(b >> shift & 255));
}

inline uint64_t eightAt(const uint8_t* p) {
  uint64_t word = 0;
  std::memcpy(&word, p, sizeof word);
  return word;
}

}  // namespace

TARGET_CLONES uint8_t colorDistances(uint8_t* distances, const uint32_t* pixels, size_t count,
                                     uint32_t seed) {
  int32_t largest = 0;
  for (size_t i = 0; i < count; ++i) {
    const uint32_t p = pixels[i];
    const int32_t d = std::max(std::max(difference(p, seed, 0), difference(p, seed, 8)),
                               std::max(difference(p, seed, 16), difference(p, seed, 24)));
    distances[i] = static_cast<uint8_t>(d);
    largest = std::max(largest, d);
  }
  return static_cast<uint8_t>(largest);
}

TARGET_CLONES void markBeyond(uint8_t* marks, const uint8_t* distances, size_t count,
                              uint8_t tolerance) {
  for (size_t i = 0; i < count; ++i) marks[i] = distances[i] > tolerance;
}

TARGET_CLONES void selectMarks(uint8_t* selected, const uint8_t* marks, size_t count,
                               uint8_t value) {
  for (size_t i = 0; i < count; ++i) selected[i] = marks[i] == value;
}

const uint8_t* firstZero(const uint8_t* from, const uint8_t* end) {
  // Most stretches are short; the library's search pays from here on.
  const uint8_t* shortEnd = from + std::min<std::ptrdiff_t>(end - from, 16);
  for (; from < shortEnd; ++from) {
    if (*from == 0) return from;
  }
  if (from >= end) return end;
  const void* found = std::memchr(from, 0, static_cast<size_t>(end - from));
  return found != nullptr ? static_cast<const uint8_t*>(found) : end;
}

const uint8_t* firstNonZero(const uint8_t* from, const uint8_t* end) {
  for (; end - from >= 8; from += 8) {
    const uint64_t word = eightAt(from);
    if (word != 0) return from + std::countr_zero(word) / 8;
  }
  while (from < end && *from == 0) ++from;
  return from;
}

const uint8_t* startOfZeros(const uint8_t* begin, const uint8_t* end) {
  for (; end - begin >= 8; end -= 8) {
    const uint64_t word = eightAt(end - 8);
    if (word != 0) return end - std::countl_zero(word) / 8;
  }
  while (end > begin && end[-1] == 0) --end;
  return end;
}
