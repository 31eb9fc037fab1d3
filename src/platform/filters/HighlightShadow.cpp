#include <algorithm>
#include <cmath>

#include "platform/TargetClones.h"
#include "platform/filters/ColorStage.h"
#include "platform/filters/PowerFunctions.h"

namespace {

inline float mix(float a, float b, float t) {
  return a + (b - a) * t;
}
inline float atMost(float x, float most) {
  return x < most ? x : most;
}
inline float atLeast(float x, float least) {
  return x > least ? x : least;
}
inline float smoothStep(float from, float to, float x) {
  const float t = atMost(atLeast((x - from) / (to - from), 0), 1);
  return t * t * (3 - 2 * t);
}

/// What does not change from pixel to pixel.
struct Setup {
  float shadow;
  float highlight;
  float pull;      // how little of the shadow curve's shape is left: 1 for no shadow amount
  float dim;       // what highlights are multiplied by before their power
  float scale;     // what shadows are multiplied by
  float strength;  // 1 - highlight
};

Setup makeSetup(const HighlightShadowStage& stage) {
  const float s = stage.shadow;
  const float h = stage.highlight;
  const float pull = std::clamp(1 - std::pow(std::fabs(s / 0.3F), 1.6F), 0.0F, 1.0F);
  const float dim = 1 / std::max(1.0F, 1.997F - 1 / (1 + std::exp(-6 * h)));
  return {s, h, pull, dim, 0.5F + 0.5F * smoothStep(0.5F, 1, s), 1 - h};
}

/// Quantities of a pixel that all three channels use.
struct PixelTerms {
  float peak;     // greatest channel
  float root;     // its square root
  float lift;     // how far shadows move, signed
  float restore;  // fades the pivoting contrast out near black
  float shadeIn;  // weight of the shadow curve
  float highIn;   // weight of the highlight curve
  float boost;    // contrast added to highlights
};

inline PixelTerms termsOf(const Setup& k, float r, float g, float b) {
  PixelTerms t;
  t.peak = atLeast(atLeast(r, g), b);
  t.root = std::sqrt(t.peak);
  const float warmth = (r + 0.8F * g + 1.1F * b) / atLeast(r + g + b, 0.001F);
  t.lift = k.shadow * powerApproximate(atMost(warmth, 1), 1 - k.shadow);
  t.restore = atMost(30 * t.peak, 1);
  t.shadeIn = smoothStep(0, 0.1F + t.lift, std::sqrt(t.root));
  t.highIn = smoothStep(0.2F, 0.8F, t.root);
  t.boost = t.restore * k.strength;
  return t;
}

inline float shadowExponent(const Setup& k, const PixelTerms& t, float c) {
  const float curve = exp2Approximate(-t.lift - c);
  return mix(curve, 1, k.pull);
}

inline float channel(const Setup& k, const PixelTerms& t, float c, float exponent, float lumaOnly) {
  float shade = 2 * (1 + t.lift) * powerApproximate(c * k.scale, exponent);
  shade = mix(shade, lumaOnly, 0.35F);
  shade = mix(c, shade, t.shadeIn);
  shade = mix(shade, c, t.root);

  float high = powerApproximate(c * k.dim, 2 - k.highlight);
  const float spread = 1 + 0.4F * (1 - atMost(k.highlight + 0.3F, 1));
  high = mix(high, mix(0.25F, high, spread), t.boost);
  high = mix(c, high, t.highIn);
  high = mix(c, high, t.peak);

  const float out = mix(shade, high, atMost(t.root, 1));
  const float contrast = 1 + 0.1F * std::fabs(t.lift) * (1 - k.pull);
  return atLeast(mix(out, mix(0.5F, out, contrast), t.restore), 0);
}

VECTOR_CLONES void highlightShadow(const Setup& setup, float* __restrict red,
                                   float* __restrict green, float* __restrict blue, size_t count) {
  const Setup k = setup;
  for (size_t p = 0; p < count; ++p) {
    const float r = red[p];
    const float g = green[p];
    const float b = blue[p];
    const PixelTerms t = termsOf(k, r, g, b);
    const float exponentR = shadowExponent(k, t, r);
    const float y = 0.299F * r + 0.587F * g + 0.114F * b;
    const float i = 0.596F * r - 0.2755F * g - 0.321F * b;
    const float q = 0.212F * r - 0.523F * g + 0.311F * b;
    const float luma = 2 * powerApproximate(y * k.scale, exponentR);
    red[p] = channel(k, t, r, exponentR, 1.00048F * luma + 0.955558F * i + 0.619549F * q);
    green[p] =
        channel(k, t, g, shadowExponent(k, t, g), 0.999864F * luma - 0.271545F * i - 0.646786F * q);
    blue[p] =
        channel(k, t, b, shadowExponent(k, t, b), 0.999446F * luma - 1.10803F * i + 1.70542F * q);
  }
}

}  // namespace

void applyStage(const HighlightShadowStage& stage, ColorBatch& batch) {
  highlightShadow(makeSetup(stage), batch.red, batch.green, batch.blue, batch.count);
}
