#include "platform/graphics/pixels/paint/GradientKernels.h"

#include <cmath>

#include "platform/foundation/Convert.h"
#include "platform/machine/TargetClones.h"

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

/// Pixel i of the result is at `first` + i.
template <class Location>
ALWAYS_INLINE void lookUp(uint32_t* __restrict out, int32_t first, int32_t n, GradientEntries table,
                          Location locationAt) {
  const uint32_t* __restrict const pixels = table.first;
  int32_t entries[kBlock];
  for (int32_t done = 0; done < n; done += kBlock) {
    const int32_t count = n - done < kBlock ? n - done : kBlock;
    for (int32_t i = 0; i < count; ++i)
      entries[i] = entry(locationAt(static_cast<float>(first + done + i)));
    if (table.startsWithEdge) [[unlikely]] {
      for (int32_t i = 0; i < count; ++i)
        entries[i] -= locationAt(static_cast<float>(first + done + i)) < 0;
    }
    for (int32_t i = 0; i < count; ++i) out[done + i] = pixels[entries[i]];
  }
}

}  // namespace

TARGET_CLONES void linearGradientRow(uint32_t* __restrict out, int32_t first, int32_t n,
                                     GradientEntries table, float start, float step) {
  lookUp(out, first, n, table, [=](float i) { return start + step * i; });
}

TARGET_CLONES void concentricGradientRow(uint32_t* __restrict out, int32_t first, int32_t n,
                                         GradientEntries table, const ConcentricRow& row) {
  lookUp(out, first, n, table, [r = row](float i) {
    const float x = r.x + r.dx * i;
    const float y = r.y + r.dy * i;
    return r.offset + std::sqrt(x * x + y * y);
  });
}

TARGET_CLONES void nestedCirclesGradientRow(uint32_t* __restrict out, int32_t first, int32_t n,
                                            GradientEntries table, const NestedCirclesRow& row) {
  const float scale = static_cast<float>(GradientTable::kSize - 1) / row.a;
  const float b0 = row.startRadius * row.growth;
  const float c0 = row.startRadius * row.startRadius;
  lookUp(out, first, n, table, [r = row, scale, b0, c0](float i) {
    const float x = r.x + r.dx * i;
    const float y = r.y + r.dy * i;
    const float b = x * r.moveX + y * r.moveY + b0;
    const float c = x * x + y * y - c0;
    return 0.5F + (b - std::sqrt(b * b - r.a * c)) * scale;
  });
}

namespace {

struct FloatColor {
  explicit FloatColor(const RGBAColor& c)
      : channels{static_cast<float>(c.red), static_cast<float>(c.green), static_cast<float>(c.blue),
                 static_cast<float>(c.alpha)} {}
  float channels[4];
};

inline float unitClamp(float v) {
  return v > 0 ? (v < 1 ? v : 1) : 0;
}

inline uint32_t byteOfUnit(float v) {
  return static_cast<uint32_t>(roundedHalfUp(v * 255));
}

}  // namespace

TARGET_CLONES void rampPixels(uint32_t* out, int32_t first, int32_t n, const GradientRamp& ramp) {
  const FloatColor from(ramp.from);
  const FloatColor to(ramp.to);
  // Locations in double precision: stops may lie as close together as they like.
  const double start = ramp.start;
  const double scale = ramp.end > start ? 1 / (ramp.end - start) : 0;
  const auto opacity = static_cast<float>(unitClamp(ramp.alpha));
  for (int32_t i = 0; i < n; ++i) {
    const double location = (first + i) / double{GradientTable::kSize - 1};
    const auto t = static_cast<float>((location - start) * scale);
    float mixed[4];
    for (int c = 0; c < 4; ++c) {
      mixed[c] = unitClamp(from.channels[c] + (to.channels[c] - from.channels[c]) * t);
    }
    const float alpha = mixed[3] * opacity;
    out[i] = byteOfUnit(mixed[0] * alpha) | byteOfUnit(mixed[1] * alpha) << 8 |
             byteOfUnit(mixed[2] * alpha) << 16 | byteOfUnit(alpha) << 24;
  }
}
