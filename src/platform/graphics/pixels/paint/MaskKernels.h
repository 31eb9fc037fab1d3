#pragma once

#include <cstddef>
#include <cstdint>

// Loops over the pixels of one row under a mask of one byte per pixel (not 0: the pixel is in).
// Pixels outside the mask keep their value; long stretches without any mask are not touched at all,
// so that the empty pages of a canvas stay empty.

/// Gives the masked pixels one value.
void fillMasked(uint32_t* pixels, const uint8_t* mask, size_t count, uint32_t value);

/// The same for `rows` rows, of which the next begins so many pixels, or bytes of the mask, further
/// on. Large areas are filled by several threads.
void fillMaskedRows(uint32_t* pixels, int64_t stride, const uint8_t* mask, int64_t maskStride,
                    int64_t count, int64_t rows, uint32_t value);

/// Copies the masked pixels of another row.
void copyMasked(uint32_t* pixels, const uint32_t* source, const uint8_t* mask, size_t count);
