#include "platform/graphics/pixels/paint/FourTapKernels.h"

#include <array>
#include <cstring>

#include "platform/machine/TargetClones.h"

namespace {

/// Fraction bits of a weight. The absolute weights of a window sum to at most 1.25 squared, so that
/// its sums fit in 32 bits.
constexpr int kWeightBits = 11;
constexpr int kSumBits = 2 * kWeightBits;

using Weights = std::array<int16_t, 4>;
using Int4 = int32_t __attribute__((vector_size(16)));

constexpr int16_t rounded(double value) {
  return static_cast<int16_t>(value < 0 ? value - 0.5 : value + 0.5);
}

/// Of the pixels at -1, 0, 1 and 2, seen from t; they sum to one exactly.
constexpr Weights weightsAt(double t) {
  constexpr int kOne = 1 << kWeightBits;
  Weights weights{rounded((((-0.5 * t) + 1) * t - 0.5) * t * kOne),
                  rounded(((1.5 * t - 2.5) * t * t + 1) * kOne),
                  rounded((((-1.5 * t) + 2) * t + 0.5) * t * kOne),
                  rounded((0.5 * t - 0.5) * t * t * kOne)};
  int16_t& largest = t < 0.5 ? weights[1] : weights[2];
  const int left = kOne - (weights[0] + weights[1] + weights[2] + weights[3]);
  largest = static_cast<int16_t>(largest + left);
  return weights;
}

constexpr std::array<Weights, kFourTapSteps + 1> makeWeights() {
  std::array<Weights, kFourTapSteps + 1> all{};
  for (int i = 0; i <= kFourTapSteps; ++i) {
    all[static_cast<size_t>(i)] = weightsAt(static_cast<double>(i) / kFourTapSteps);
  }
  return all;
}

constexpr auto kWeights = makeWeights();

/// Red, green, blue and alpha times 1 << kSumBits.
ALWAYS_INLINE Int4 weighted(const FourTapWindow& window) {
  const Weights& down = kWeights[static_cast<size_t>(window.down)];
  const Weights& right = kWeights[static_cast<size_t>(window.right)];
  const void* const pixels = window.first;
  const auto* const row = static_cast<const uint8_t*>(pixels);
  const ptrdiff_t stride = window.stride * 4;
  int32_t columns[16];
  for (int k = 0; k < 16; ++k) {
    columns[k] = static_cast<int16_t>(row[k]) * down[0] +
                 static_cast<int16_t>(row[stride + k]) * down[1] +
                 static_cast<int16_t>(row[2 * stride + k]) * down[2] +
                 static_cast<int16_t>(row[3 * stride + k]) * down[3];
  }
  Int4 taps[4];
  std::memcpy(taps, columns, sizeof taps);
  return (taps[0] * right[0] + taps[1] * right[1]) + (taps[2] * right[2] + taps[3] * right[3]);
}

ALWAYS_INLINE uint32_t clampedPixel(Int4 sum) {
  constexpr Int4 kZero{};
  constexpr Int4 kOpaque{255, 255, 255, 255};
  sum = (sum + (1 << (kSumBits - 1))) >> kSumBits;
  sum = sum > kZero ? sum : kZero;
  sum = sum < kOpaque ? sum : kOpaque;
  const Int4 alpha{sum[3], sum[3], sum[3], sum[3]};
  sum = sum < alpha ? sum : alpha;
  return static_cast<uint32_t>(sum[0]) | static_cast<uint32_t>(sum[1]) << 8 |
         static_cast<uint32_t>(sum[2]) << 16 | static_cast<uint32_t>(sum[3]) << 24;
}

}  // namespace

TARGET_CLONES void fourTapPixels(const FourTapWindow* windows, int32_t count, uint32_t* out) {
  for (int32_t i = 0; i < count; ++i) out[i] = clampedPixel(weighted(windows[i]));
}
