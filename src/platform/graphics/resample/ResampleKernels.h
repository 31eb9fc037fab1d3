#pragma once

#include <cstddef>
#include <cstdint>

/// Inner loops of the resampler. Weights have kFilterBits fraction bits and the weights of one
/// window sum to one, their absolute values to less than 1.5.

/// Vertical pass: columns[i] = sum of weights[r] * rows[r][i] for r below `rowCount`, for i below
/// `count`; exact integers. `rowCount` is a positive multiple of 4 (callers repeat a row with
/// weight 0).
void weighRows(const uint8_t* const* rows, const int16_t* weights, size_t rowCount, float* columns,
               size_t count);

/// A window of the horizontal pass: the pixels from `first` on, weighted by the `count` weights
/// from `weight` on. `count` is a positive multiple of 4 (callers add weights of 0).
struct ColumnWindow {
  uint32_t first = 0;
  uint32_t count = 0;
  uint32_t weight = 0;
};

/// Horizontal pass: each output pixel is the weighted sum of the pixels of its window, as a
/// fraction of the product of two units, rounded, its alpha clamped to 0 to 255 and its colours to
/// 0 to alpha. Every pixel of a window must be readable and finite.
void weighColumns(const float* columns, const ColumnWindow* windows, const float* weights,
                  uint8_t* out, size_t pixelCount);

/// Adds up the RGBA pixels of one row cell by cell: totals[4 * i + c] grows by the sum of channel c
/// over the pixels of cell i. Cells have `cellSize` pixels, the last one what is left.
void sumCells(const uint8_t* row, size_t pixelCount, size_t cellSize, uint32_t* totals);

/// The mean pixel of each cell, from the totals of `rowCount` rows.
void averageCells(const uint32_t* totals, size_t pixelCount, size_t cellSize, size_t rowCount,
                  uint8_t* out);
