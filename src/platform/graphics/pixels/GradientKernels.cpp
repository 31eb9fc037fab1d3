#include "platform/graphics/pixels/GradientKernels.h"

#include <cmath>

#include "platform/TargetClones.h"
#include "platform/graphics/pixels/GradientTable.h"

namespace {

/// Entries are computed ahead for this many pixels: apart from the lookup, the arithmetic is
/// vectorised.
constexpr int32_t kBlock = 256;

/// Clamped before the conversion, which is undefined outside the range of int; NaN gives 0.
inline int32_t entry(float location) {
  constexpr auto kLast = static_cast<float>(GradientTable::kSize - 1);
  const float low = location > 0 ? location : 0;
  return static_cast<int32_t>(low < kLast ? low : kLast);
}

template <class Location>
INTO_CLONES void lookUp(uint32_t* __restrict out, int32_t n, const uint32_t* __restrict table,
                        Location locationAt) {
  int32_t entries[kBlock];
  for (int32_t done = 0; done < n; done += kBlock) {
    const int32_t count = n - done < kBlock ? n - done : kBlock;
    for (int32_t i = 0; i < count; ++i)
      entries[i] = entry(locationAt(static_cast<float>(done + i)));
    for (int32_t i = 0; i < count; ++i) out[done + i] = table[entries[i]];
  }
}

}  // namespace

VECTOR_CLONES void linearGradientRow(uint32_t* __restrict out, int32_t n,
                                     const uint32_t* __restrict table, float start, float step) {
  lookUp(out, n, table, [=](float i) { return start + step * i; });
}

VECTOR_CLONES void concentricGradientRow(uint32_t* __restrict out, int32_t n,
                                         const uint32_t* __restrict table,
                                         const ConcentricRow& row) {
  lookUp(out, n, table, [r = row](float i) {
    const float x = r.x + r.dx * i;
    const float y = r.y + r.dy * i;
    return r.offset + std::sqrt(x * x + y * y);
  });
}

VECTOR_CLONES void nestedCirclesGradientRow(uint32_t* __restrict out, int32_t n,
                                            const uint32_t* __restrict table,
                                            const NestedCirclesRow& row) {
  const float scale = static_cast<float>(GradientTable::kSize - 1) / row.a;
  const float b0 = row.startRadius * row.growth;
  const float c0 = row.startRadius * row.startRadius;
  lookUp(out, n, table, [r = row, scale, b0, c0](float i) {
    const float x = r.x + r.dx * i;
    const float y = r.y + r.dy * i;
    const float b = x * r.moveX + y * r.moveY + b0;
    const float c = x * x + y * y - c0;
    return 0.5F + (b - std::sqrt(b * b - r.a * c)) * scale;
  });
}
