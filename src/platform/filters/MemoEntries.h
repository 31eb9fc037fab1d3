#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/TargetClones.h"

// What a colour filter makes of pixels, by pixel value.

/// Where a memo has an opaque pixel's result: the 24 bits of its colour, mixed, are the number of
/// an entry and the rest of what tells colours apart. An entry is a result with that mark in its
/// alpha's place; its highest bit is set, so that zero is none.
struct MemoPlace {
  uint32_t entry;
  uint32_t mark;
};
constexpr int kMemoBits = 17;
constexpr size_t kMemoEntries = size_t{1} << kMemoBits;
constexpr uint32_t kMemoFactor = 0x9E3779B1U;
constexpr uint32_t kMemoMark = 0xFF000000;
constexpr uint32_t kMemoSet = 0x80000000;
/// `Word` is uint32_t or a vector of them.
template <class Word>
INTO_CLONES constexpr void findMemoPlace(const Word& pixel, Word& entry, Word& mark) {
  const Word mixed = (pixel * kMemoFactor) << 8;
  entry = mixed >> (32 - kMemoBits);
  mark = (mixed << kMemoBits) >> 1 | kMemoSet;
}
constexpr MemoPlace memoPlace(uint32_t pixel) {
  MemoPlace place{};
  findMemoPlace(pixel, place.entry, place.mark);
  return place;
}

/// Writes what a memo of kMemoEntries has in the places of `count` pixels, opaque, whether it is
/// for them or not; results are not written over pixels. Answers how many it is not for, among them
/// all that are not opaque, and lists them and their numbers, counted from `first`; up to 16 more
/// places in these lists are overwritten.
size_t findEntries(const uint32_t* memo, const uint32_t* pixels, size_t count, uint32_t* results,
                   uint32_t first, uint32_t* missed, uint32_t* missedNumbers);
/// What that comes to on processors without wide look-ups.
size_t findEntriesPlain(const uint32_t* memo, const uint32_t* pixels, size_t count,
                        uint32_t* results, uint32_t first, uint32_t* missed,
                        uint32_t* missedNumbers);
