#pragma once

#include <cstddef>
#include <cstdint>

// Loops of the flood fill over all pixels, and over stretches of a row.

/// For each pixel the largest difference of any of its four bytes from those of `seed`; answers the
/// largest of all.
uint8_t colorDistances(uint8_t* distances, const uint32_t* pixels, size_t count, uint32_t seed);

/// 1 where the distance is greater than the tolerance, else 0.
void markBeyond(uint8_t* marks, const uint8_t* distances, size_t count, uint8_t tolerance);

/// 1 where the mark has the value, else 0.
void selectMarks(uint8_t* selected, const uint8_t* marks, size_t count, uint8_t value);

/// The first position in [from, end) that is 0; `end` when there is none, also for an empty range.
const uint8_t* firstZero(const uint8_t* from, const uint8_t* end);
/// The first position in [from, end) that is not 0; `end` when there is none.
const uint8_t* firstNonZero(const uint8_t* from, const uint8_t* end);
/// Where the stretch of zeros that ends at `end` begins, not before `begin`.
const uint8_t* startOfZeros(const uint8_t* begin, const uint8_t* end);
