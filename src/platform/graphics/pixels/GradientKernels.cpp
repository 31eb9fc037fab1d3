#include "platform/graphics/pixels/GradientKernels.h"

#include <cmath>

#include "platform/TargetClones.h"
#include "platform/graphics/pixels/GradientTable.h"

namespace {

/// Clamped before the conversion, which is undefined outside the range of int; NaN gives 0.
inline int32_t entry(float location) {
  constexpr auto kLast = static_cast<float>(GradientTable::kSize - 1);
  const float low = location > 0 ? location : 0;
  return static_cast<int32_t>(low < kLast ? low : kLast);
}

}  // namespace

VECTOR_CLONES void linearGradientRow(uint32_t* out, int32_t n, const uint32_t* table, float start,
                                     float step) {
  for (int32_t i = 0; i < n; ++i) out[i] = table[entry(start + step * static_cast<float>(i))];
}

VECTOR_CLONES void concentricGradientRow(uint32_t* out, int32_t n, const uint32_t* table,
                                         const ConcentricRow& row) {
  const ConcentricRow r = row;
  for (int32_t i = 0; i < n; ++i) {
    const float x = r.x + r.dx * static_cast<float>(i);
    const float y = r.y + r.dy * static_cast<float>(i);
    out[i] = table[entry(r.offset + std::sqrt(x * x + y * y))];
  }
}

VECTOR_CLONES void nestedCirclesGradientRow(uint32_t* out, int32_t n, const uint32_t* table,
                                            const NestedCirclesRow& row) {
  const NestedCirclesRow r = row;
  const float scale = static_cast<float>(GradientTable::kSize - 1) / r.a;
  const float b0 = r.startRadius * r.growth;
  const float c0 = r.startRadius * r.startRadius;
  for (int32_t i = 0; i < n; ++i) {
    const float x = r.x + r.dx * static_cast<float>(i);
    const float y = r.y + r.dy * static_cast<float>(i);
    const float b = x * r.moveX + y * r.moveY + b0;
    const float c = x * x + y * y - c0;
    out[i] = table[entry(0.5F + (b - std::sqrt(b * b - r.a * c)) * scale)];
  }
}
