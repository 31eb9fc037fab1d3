#include "platform/filters/spatial/GaussianKernels.h"

#include <cstring>

#include "platform/machine/VectorWidthClones.h"

namespace {

/// One pixel's channels.
using Pixel4 = float __attribute__((vector_size(16)));

template <class Vector>
inline void load(const float* p, Vector& v) {
  std::memcpy(&v, p, sizeof v);
}

ALWAYS_INLINE float sumAt(const float* const* taps, const float* weights, size_t radius, size_t i) {
  float sum = weights[0] * taps[radius][i];
  for (size_t k = 1; k <= radius; ++k) {
    sum += weights[k] * (taps[radius - k][i] + taps[radius + k][i]);
  }
  return sum;
}

/// Sums of kSums vectors from element `i` on.
template <size_t kLanes, size_t kSums>
ALWAYS_INLINE void weighAt(const float* const* taps, const float* weights, size_t radius, size_t i,
                           float* out) {
  using Vectors = VectorTypes<kLanes>;
  typename Vectors::Floats sums[kSums];
#pragma GCC unroll 4
  for (size_t s = 0; s < kSums; ++s) {
    Vectors::load(taps[radius] + i + s * kLanes, sums[s]);
    sums[s] *= weights[0];
  }
  for (size_t k = 1; k <= radius; ++k) {
    const float* before = taps[radius - k] + i;
    const float* after = taps[radius + k] + i;
    for (size_t s = 0; s < kSums; ++s) {
      typename Vectors::Floats a, b;
      Vectors::load(before + s * kLanes, a);
      Vectors::load(after + s * kLanes, b);
      sums[s] += weights[k] * (a + b);
    }
  }
#pragma GCC unroll 4
  for (size_t s = 0; s < kSums; ++s) Vectors::store(sums[s], out + i + s * kLanes);
}

template <size_t kLanes>
ALWAYS_INLINE void weighIn(const float* const* taps, const float* weights, size_t radius,
                           float* out, size_t count) {
  // As many sums at a time as hide the time that an addition takes.
  constexpr size_t kSums = 4;
  size_t i = 0;
  for (; i + kSums * kLanes <= count; i += kSums * kLanes) {
    weighAt<kLanes, kSums>(taps, weights, radius, i, out);
  }
  for (; i + kLanes <= count; i += kLanes) weighAt<kLanes, 1>(taps, weights, radius, i, out);
  for (; i < count; ++i) out[i] = sumAt(taps, weights, radius, i);
}
VECTOR_WIDTH_CLONES(weighInLanes,
                    (const float* const* taps, const float* weights, size_t radius, float* out,
                     size_t count),
                    weighIn, (taps, weights, radius, out, count))

TARGET_CLONES void halveSingle(const float* __restrict in, float* __restrict out, size_t count) {
  const float* even = in;
  const float* odd = in - 1;
  for (size_t i = 0; i < count; ++i) {
    const float sides = even[2 * i - 2] + even[2 * i + 2];
    out[i] = (sides + 4 * (odd[2 * i] + odd[2 * i + 2]) + 6 * even[2 * i]) * (1.0F / 16);
  }
}

void halvePixels(const float* in, float* out, size_t count) {
  for (size_t i = 0; i < count; ++i, in += 8, out += 4) {
    Pixel4 a, b, c, d, e;
    load(in - 8, a);
    load(in - 4, b);
    load(in, c);
    load(in + 4, d);
    load(in + 8, e);
    const Pixel4 sum = ((a + e) + 4 * (b + d) + 6 * c) * (1.0F / 16);
    std::memcpy(out, &sum, sizeof sum);
  }
}

/// At an even position of a row being doubled, and right after it.
inline Pixel4 onPixel(const float* in) {
  Pixel4 a, b, c;
  load(in - 4, a);
  load(in, b);
  load(in + 4, c);
  return (a + c) * 0.125F + b * 0.75F;
}
inline Pixel4 betweenPixels(const float* in) {
  Pixel4 a, b;
  load(in, a);
  load(in + 4, b);
  return (a + b) * 0.5F;
}

void doublePixels(const float* in, size_t odd, float* out, size_t count) {
  for (size_t x = odd; x < count + odd; ++x, out += 4) {
    const float* p = in + (x / 2) * 4;
    const Pixel4 value = x % 2 == 0 ? onPixel(p) : betweenPixels(p);
    std::memcpy(out, &value, sizeof value);
  }
}

TARGET_CLONES void doublePairs(const float* __restrict in, float* __restrict out, size_t pairs) {
  const float* before = in - 1;
  for (size_t i = 0; i < pairs; ++i) {
    out[2 * i] = (before[i] + in[i + 1]) * 0.125F + in[i] * 0.75F;
    out[2 * i + 1] = (in[i] + in[i + 1]) * 0.5F;
  }
}

void doubleSingle(const float* in, size_t odd, float* out, size_t count) {
  if (count == 0) return;
  if (odd == 1) {
    *out++ = (in[0] + in[1]) * 0.5F;
    ++in;
    --count;
  }
  doublePairs(in, out, count / 2);
  const float* last = in + count / 2;
  if (count % 2 == 1) out[count - 1] = (last[-1] + last[1]) * 0.125F + last[0] * 0.75F;
}

}  // namespace

void weighSymmetricScalar(const float* const* taps, const float* weights, size_t radius, float* out,
                          size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = sumAt(taps, weights, radius, i);
}

void weighSymmetric(const float* const* taps, const float* weights, size_t radius, float* out,
                    size_t count) {
  weighInLanes(taps, weights, radius, out, count);
}

void halveRow(const float* in, size_t channels, float* out, size_t pixelCount) {
  (channels == 1 ? halveSingle : halvePixels)(in, out, pixelCount);
}

void doubleRow(const float* in, size_t channels, size_t odd, float* out, size_t pixelCount) {
  (channels == 1 ? doubleSingle : doublePixels)(in, odd, out, pixelCount);
}
