#include "platform/graphics/resample/ResampleKernels.h"

#include <algorithm>
#include <cstring>

#include "platform/foundation/Convert.h"
#include "platform/graphics/resample/ResampleAxis.h"
#include "platform/machine/TargetClones.h"

namespace {

/// Bytes per strip of the vertical pass: its sums stay in the first-level cache.
constexpr size_t kStrip = 2048;

TARGET_CLONES void addFourRows(const uint8_t* __restrict r0, const uint8_t* __restrict r1,
                               const uint8_t* __restrict r2, const uint8_t* __restrict r3,
                               const int16_t* weights, int32_t* __restrict sums, size_t count) {
  const int16_t w0 = weights[0];
  const int16_t w1 = weights[1];
  const int16_t w2 = weights[2];
  const int16_t w3 = weights[3];
  for (size_t i = 0; i < count; ++i) {
    sums[i] += static_cast<int16_t>(r0[i]) * w0 + static_cast<int16_t>(r1[i]) * w1 +
               static_cast<int16_t>(r2[i]) * w2 + static_cast<int16_t>(r3[i]) * w3;
  }
}

TARGET_CLONES void toFloat(const int32_t* __restrict sums, float* __restrict out, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = static_cast<float>(sums[i]);
}

/// One pixel's channels.
using Float4 = float __attribute__((vector_size(16)));
using Int4 = int32_t __attribute__((vector_size(16)));

/// Pixels of the horizontal pass between two narrowing steps.
constexpr size_t kPixelBatch = 64;

Float4 load(const float* p) {
  Float4 v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

/// Alpha clamped to 0 to 255, the colours to 0 to alpha, rounded.
void storeClamped(Float4 sum, int32_t* out) {
  constexpr float kUnit = 1.0F / (1 << (2 * kFilterBits));
  constexpr Float4 kZero{};
  constexpr Float4 kOpaque{255, 255, 255, 255};
  sum *= kUnit;
  sum = sum > kZero ? sum : kZero;
  sum = sum < kOpaque ? sum : kOpaque;
  const Float4 alpha{sum[3], sum[3], sum[3], sum[3]};
  sum = sum < alpha ? sum : alpha;
  const auto rounded = __builtin_convertvector(sum + 0.5F, Int4);
  std::memcpy(out, &rounded, sizeof rounded);
}

TARGET_CLONES void weighBatch(const float* columns, const ColumnWindow* windows,
                              const float* weights, int32_t* out, size_t pixelCount) {
  for (size_t i = 0; i < pixelCount; ++i) {
    const float* pixel = columns + size_t{windows[i].first} * 4;
    const float* weight = weights + windows[i].weight;
    // Four sums, because each addition waits for the one before.
    Float4 sums[4] = {};
    for (size_t tap = 0; tap < windows[i].count; tap += 4) {
      for (size_t k = 0; k < 4; ++k) sums[k] += load(pixel + (tap + k) * 4) * weight[tap + k];
    }
    storeClamped((sums[0] + sums[1]) + (sums[2] + sums[3]), out + i * 4);
  }
}

TARGET_CLONES void narrow(const int32_t* __restrict values, uint8_t* __restrict out, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = static_cast<uint8_t>(values[i]);
}

}  // namespace

void weighRows(const uint8_t* const* rows, const int16_t* weights, size_t rowCount, float* columns,
               size_t count) {
  int32_t sums[kStrip];
  for (size_t begin = 0; begin < count; begin += kStrip) {
    const size_t length = std::min(kStrip, count - begin);
    std::fill_n(sums, length, 0);
    for (size_t r = 0; r < rowCount; r += 4) {
      addFourRows(rows[r] + begin, rows[r + 1] + begin, rows[r + 2] + begin, rows[r + 3] + begin,
                  weights + r, sums, length);
    }
    toFloat(sums, columns + begin, length);
  }
}

void weighColumns(const float* columns, const ColumnWindow* windows, const float* weights,
                  uint8_t* out, size_t pixelCount) {
  int32_t batch[kPixelBatch * 4];
  for (size_t begin = 0; begin < pixelCount; begin += kPixelBatch) {
    const size_t length = std::min(kPixelBatch, pixelCount - begin);
    weighBatch(columns, windows + begin, weights, batch, length);
    narrow(batch, out + begin * 4, length * 4);
  }
}

TARGET_CLONES void sumCells(const uint8_t* row, size_t pixelCount, size_t cellSize,
                            uint32_t* totals) {
  for (size_t begin = 0; begin < pixelCount; begin += cellSize, totals += 4) {
    const size_t end = std::min(begin + cellSize, pixelCount);
    uint32_t sums[4] = {};
    for (size_t i = begin; i < end; ++i) {
      for (size_t c = 0; c < 4; ++c) sums[c] += row[i * 4 + c];
    }
    for (size_t c = 0; c < 4; ++c) totals[c] += sums[c];
  }
}

void averageCells(const uint32_t* totals, size_t pixelCount, size_t cellSize, size_t rowCount,
                  uint8_t* out) {
  for (size_t begin = 0; begin < pixelCount; begin += cellSize, totals += 4, out += 4) {
    const size_t pixels = std::min(cellSize, pixelCount - begin) * rowCount;
    const double scale = 1.0 / static_cast<double>(pixels);
    for (size_t c = 0; c < 4; ++c) {
      out[c] = static_cast<uint8_t>(roundedHalfUp(static_cast<double>(totals[c]) * scale));
    }
  }
}
