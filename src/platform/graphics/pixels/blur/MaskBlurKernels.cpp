#include "platform/graphics/pixels/blur/MaskBlurKernels.h"

#include <algorithm>

#include "platform/machine/TargetClones.h"

namespace {

/// round(v w / 2^15), in the form that vector units have an instruction for.
ALWAYS_INLINE int16_t product(int16_t v, int16_t w) {
  return static_cast<int16_t>(((int32_t{v} * int32_t{w} >> 14) + 1) >> 1);
}

/// In 16 bits throughout: samples stay far enough below their limits.
ALWAYS_INLINE uint8_t byteOf(int16_t sample) {
  constexpr int16_t kHalf = 1 << (kBlurFraction - 1);
  const auto rounded = static_cast<int16_t>(static_cast<int16_t>(sample + kHalf) >> kBlurFraction);
  return static_cast<uint8_t>(std::clamp<int16_t>(rounded, 0, 255));
}

struct TapRows {
  const int16_t* a;
  const int16_t* b;
  int16_t weight;
  ALWAYS_INLINE int16_t at(int32_t i) const {
    return product(static_cast<int16_t>(a[i] + b[i]), weight);
  }
};

template <int shift>
struct CellSize {
  static constexpr int32_t kSize = 1 << shift;

  ALWAYS_INLINE static void average(int16_t* out, const uint16_t* sums, int32_t cells) {
    constexpr int32_t kHalf = 1 << (2 * shift - 1);
    for (int32_t i = 0; i < cells; ++i) {
      int32_t sum = 0;
      for (int32_t p = 0; p < kSize; ++p) sum += sums[i * kSize + p];
      out[i] = static_cast<int16_t>(((sum << kBlurFraction) + kHalf) >> (2 * shift));
    }
  }

  ALWAYS_INLINE static void interpolate(int16_t* out, const int16_t* samples, int32_t cells) {
    for (int32_t i = 0; i < cells; ++i) {
      const int32_t from = samples[i];
      const int32_t step = samples[i + 1] - from;
      for (int32_t p = 0; p < kSize; ++p) {
        out[i * kSize + p] = static_cast<int16_t>(from + (step * (2 * p + 1) >> (shift + 1)));
      }
    }
  }
};

/// Calls `function` with the CellSize for a shift known only now.
template <class Function>
ALWAYS_INLINE void withCellSize(int shift, Function function) {
  switch (shift) {
    case 1:
      return function(CellSize<1>());
    case 2:
      return function(CellSize<2>());
    case 3:
      return function(CellSize<3>());
    case 4:
      return function(CellSize<4>());
    case 5:
      return function(CellSize<5>());
    default:
      return function(CellSize<6>());
  }
}

}  // namespace

TARGET_CLONES void weighTaps(int16_t* sums, const int16_t* const* before,
                             const int16_t* const* after, const int16_t* weights, int taps,
                             int32_t n) {
  for (int t = 0; t < taps; t += kTapGroup) {
    const TapRows r0{before[t], after[t], weights[t]};
    const TapRows r1{before[t + 1], after[t + 1], weights[t + 1]};
    const TapRows r2{before[t + 2], after[t + 2], weights[t + 2]};
    const TapRows r3{before[t + 3], after[t + 3], weights[t + 3]};
    if (t == 0) {
      for (int32_t i = 0; i < n; ++i) {
        sums[i] = static_cast<int16_t>(r0.at(i) + r1.at(i) + r2.at(i) + r3.at(i));
      }
    } else {
      for (int32_t i = 0; i < n; ++i) {
        sums[i] = static_cast<int16_t>(sums[i] + r0.at(i) + r1.at(i) + r2.at(i) + r3.at(i));
      }
    }
  }
}

TARGET_CLONES void widenBytes(int16_t* out, const uint8_t* bytes, int32_t n) {
  for (int32_t i = 0; i < n; ++i) out[i] = static_cast<int16_t>(bytes[i] << kBlurFraction);
}

TARGET_CLONES void addBytes(uint16_t* sums, const uint8_t* bytes, int32_t n) {
  for (int32_t i = 0; i < n; ++i) sums[i] = static_cast<uint16_t>(sums[i] + bytes[i]);
}

TARGET_CLONES void mixSamples(uint8_t* out, const int16_t* a, const int16_t* b, int16_t weight,
                              int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    out[i] =
        byteOf(static_cast<int16_t>(a[i] + product(static_cast<int16_t>(b[i] - a[i]), weight)));
  }
}

TARGET_CLONES void narrowSamples(uint8_t* out, const int16_t* samples, int32_t n) {
  for (int32_t i = 0; i < n; ++i) out[i] = byteOf(samples[i]);
}

TARGET_CLONES void averageCells(int16_t* out, const uint16_t* sums, int shift, int32_t cells) {
  withCellSize(
      shift, [=](auto size) __attribute__((always_inline)) { size.average(out, sums, cells); });
}

TARGET_CLONES void interpolateCells(int16_t* out, const int16_t* samples, int shift,
                                    int32_t cells) {
  withCellSize(
      shift, [=](auto size)
                 __attribute__((always_inline)) { size.interpolate(out, samples, cells); });
}
