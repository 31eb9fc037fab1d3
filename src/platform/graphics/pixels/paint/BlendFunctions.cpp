#include "platform/graphics/pixels/paint/BlendFunctions.h"

// What each operation makes of a source and a destination pixel, over whole rows.
#include <algorithm>
#include <array>
#include <cmath>

#include "platform/foundation/Convert.h"
#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/paint/SpanKernels.h"
#include "platform/machine/TargetClones.h"

namespace {

// --- Porter and Duff, "Compositing Digital Images", and the two sums ---

TARGET_CLONES void clear(uint32_t* d, const uint32_t*, int32_t n) {
  for (int32_t i = 0; i < n; ++i) d[i] = 0;
}

TARGET_CLONES void copy(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) d[i] = s[i];
}

void over(uint32_t* d, const uint32_t* s, int32_t n) {
  overRow(d, n, s, 255);
}

TARGET_CLONES void sourceIn(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) d[i] = scaled(s[i], alphaOf(d[i]));
}

TARGET_CLONES void sourceOut(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) d[i] = scaled(s[i], 255 - alphaOf(d[i]));
}

TARGET_CLONES void sourceAtop(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    d[i] = addedSaturating(scaled(s[i], alphaOf(d[i])), scaled(d[i], 255 - alphaOf(s[i])));
  }
}

TARGET_CLONES void destinationOver(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) d[i] = sourceOverSaturating(d[i], s[i]);
}

TARGET_CLONES void destinationIn(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) d[i] = scaled(d[i], alphaOf(s[i]));
}

TARGET_CLONES void destinationOut(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) d[i] = scaled(d[i], 255 - alphaOf(s[i]));
}

TARGET_CLONES void destinationAtop(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    d[i] = addedSaturating(scaled(s[i], 255 - alphaOf(d[i])), scaled(d[i], alphaOf(s[i])));
  }
}

TARGET_CLONES void exclusiveOr(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    d[i] = addedSaturating(scaled(s[i], 255 - alphaOf(d[i])), scaled(d[i], 255 - alphaOf(s[i])));
  }
}

TARGET_CLONES void plusLighter(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) d[i] = addedSaturating(s[i], d[i]);
}

int32_t channel(uint32_t pixel, int shift) {
  return static_cast<int32_t>(pixel >> shift & 255);
}

// Darkness, the distance of a channel from its alpha, adds up.
void plusDarker(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    const int32_t sumOfAlphas = channel(s[i], 24) + channel(d[i], 24);
    const int32_t alpha = std::min(sumOfAlphas, 255);
    uint32_t result = static_cast<uint32_t>(alpha) << 24;
    for (int shift = 0; shift < 24; shift += 8) {
      const int32_t darkness = sumOfAlphas - channel(s[i], shift) - channel(d[i], shift);
      result |= static_cast<uint32_t>(std::clamp(alpha - darkness, 0, 255)) << shift;
    }
    d[i] = result;
  }
}

// --- Blend modes: W3C "Compositing and Blending Level 1", sections 9 and 10 ---

struct Straight {
  std::array<float, 3> color;
  float alpha;
};

Straight straight(uint32_t pixel) {
  const float alpha = static_cast<float>(alphaOf(pixel)) / 255;
  const float scale = alpha > 0 ? 1 / (255 * alpha) : 0;
  Straight result{{}, alpha};
  for (int c = 0; c < 3; ++c) {
    result.color[static_cast<size_t>(c)] =
        std::min(1.0F, static_cast<float>(channel(pixel, 8 * c)) * scale);
  }
  return result;
}

uint32_t byteOf(float unit) {
  return static_cast<uint32_t>(roundedHalfUp(std::clamp(unit, 0.0F, 1.0F) * 255));
}

// (1 - Sa) D + (1 - Da) S + Sa Da blended.
uint32_t combined(const Straight& s, const Straight& d, const std::array<float, 3>& blended) {
  uint32_t result = byteOf(s.alpha + d.alpha - s.alpha * d.alpha) << 24;
  for (size_t c = 0; c < 3; ++c) {
    const float value = (1 - s.alpha) * d.alpha * d.color[c] +
                        (1 - d.alpha) * s.alpha * s.color[c] + s.alpha * d.alpha * blended[c];
    result |= byteOf(value) << (8 * c);
  }
  return result;
}

float multiplied(float d, float s) {
  return d * s;
}

float screened(float d, float s) {
  return d + s - d * s;
}

float hardLit(float d, float s) {
  return s <= 0.5F ? multiplied(d, 2 * s) : screened(d, 2 * s - 1);
}

float overlaid(float d, float s) {
  return hardLit(s, d);
}

float darker(float d, float s) {
  return std::min(d, s);
}

float lighter(float d, float s) {
  return std::max(d, s);
}

float dodged(float d, float s) {
  if (d <= 0) return 0;
  return s >= 1 ? 1 : std::min(1.0F, d / (1 - s));
}

float burned(float d, float s) {
  if (d >= 1) return 1;
  return s <= 0 ? 0 : 1 - std::min(1.0F, (1 - d) / s);
}

float softLit(float d, float s) {
  if (s <= 0.5F) return d - (1 - 2 * s) * d * (1 - d);
  const float root = d <= 0.25F ? ((16 * d - 12) * d + 4) * d : std::sqrt(d);
  return d + (2 * s - 1) * (root - d);
}

float differing(float d, float s) {
  return std::fabs(d - s);
}

float excluding(float d, float s) {
  return d + s - 2 * d * s;
}

template <float (*blend)(float, float)>
void separable(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    const Straight from = straight(s[i]);
    const Straight to = straight(d[i]);
    std::array<float, 3> blended;
    for (size_t c = 0; c < 3; ++c) blended[c] = blend(to.color[c], from.color[c]);
    d[i] = combined(from, to, blended);
  }
}

using Color = std::array<float, 3>;

float luminosityOf(const Color& c) {
  return 0.3F * c[0] + 0.59F * c[1] + 0.11F * c[2];
}

float saturationOf(const Color& c) {
  return std::max({c[0], c[1], c[2]}) - std::min({c[0], c[1], c[2]});
}

Color withLuminosity(Color c, float luminosity) {
  const float shift = luminosity - luminosityOf(c);
  for (float& v : c) v += shift;
  const float lowest = std::min({c[0], c[1], c[2]});
  const float highest = std::max({c[0], c[1], c[2]});
  for (float& v : c) {
    if (lowest < 0) v = luminosity + (v - luminosity) * luminosity / (luminosity - lowest);
    if (highest > 1) {
      v = luminosity + (v - luminosity) * (1 - luminosity) / (highest - luminosity);
    }
  }
  return c;
}

Color withSaturation(Color c, float saturation) {
  const float lowest = std::min({c[0], c[1], c[2]});
  const float range = saturationOf(c);
  for (float& v : c) v = range > 0 ? (v - lowest) * saturation / range : 0;
  return c;
}

Color hueOf(const Color& d, const Color& s) {
  return withLuminosity(withSaturation(s, saturationOf(d)), luminosityOf(d));
}

Color saturated(const Color& d, const Color& s) {
  return withLuminosity(withSaturation(d, saturationOf(s)), luminosityOf(d));
}

Color colored(const Color& d, const Color& s) {
  return withLuminosity(s, luminosityOf(d));
}

Color illuminated(const Color& d, const Color& s) {
  return withLuminosity(d, luminosityOf(s));
}

template <Color (*blend)(const Color&, const Color&)>
void nonSeparable(uint32_t* d, const uint32_t* s, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    const Straight from = straight(s[i]);
    const Straight to = straight(d[i]);
    d[i] = combined(from, to, blend(to.color, from.color));
  }
}

// In the order of NSCompositingOperation.
constexpr std::array<BlendFunction, 29> kBlendFunctions = {
    clear,
    copy,
    over,
    sourceIn,
    sourceOut,
    sourceAtop,
    destinationOver,
    destinationIn,
    destinationOut,
    destinationAtop,
    exclusiveOr,
    plusDarker,
    over,
    plusLighter,
    separable<multiplied>,
    separable<screened>,
    separable<overlaid>,
    separable<darker>,
    separable<lighter>,
    separable<dodged>,
    separable<burned>,
    separable<softLit>,
    separable<hardLit>,
    separable<differing>,
    separable<excluding>,
    nonSeparable<hueOf>,
    nonSeparable<saturated>,
    nonSeparable<colored>,
    nonSeparable<illuminated>,
};

}  // namespace

BlendFunction blendFunction(NSCompositingOperation operation) {
  const auto index = static_cast<size_t>(operation);
  return index < kBlendFunctions.size() ? kBlendFunctions[index] : over;
}
