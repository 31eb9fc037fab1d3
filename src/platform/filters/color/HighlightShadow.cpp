#include "platform/filters/color/HighlightShadow.h"

#include <algorithm>
#include <cmath>

#include "platform/filters/color/ColorStage.h"
#include "platform/filters/light/ChebyshevInterpolation.h"
#include "platform/filters/light/LinearLight.h"
#include "platform/filters/light/PowerFunctions.h"
#include "platform/machine/TargetClones.h"

// Written per pixel, the filter is
//
//     shade = mix(c, 0.65 s + 0.35 l, shadeIn)
//     high = mix(c, A h - B, highIn)
//     out = mix(mix(shade, c, root), mix(c, high, peak), root)
//
// and then contrast about one half. c is a channel, s its shadow curve, h its highlight curve, l
// the channel with the luma's shadow curve in its luma's place; peak is the greatest channel and
// root that one's square root. Channels and peaks are 8-bit codes, so that all functions of one of
// them are tables, and `out` is a weighted sum of c, s, l and h.

namespace {

/// (A - 1) / B: highlights gain contrast about a quarter.
constexpr float kHighSlope = 4;

/// A polynomial of degree 6.
using Series = std::array<float, 7>;

double smoothStep(double from, double to, double x) {
  const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

inline float atMost(float x, float most) {
  return x < most ? x : most;
}
inline float atLeast(float x, float least) {
  return x > least ? x : least;
}

ALWAYS_INLINE float evaluate(const Series& series, float x) {
  float value = series[6];
  for (int i = 5; i >= 0; --i) value = value * x + series[i];
  return value;
}

FloatTable makeTable(const std::function<float(int)>& function) {
  return makeFloatTable(TableBits::k24, function);
}

template <class Function>
Series makeSeries(double from, double to, const Function& function) {
  constexpr size_t kCount = std::tuple_size_v<Series>;
  const auto powers = interpolated<kCount>(from, to, function);
  Series series;
  for (size_t k = 0; k < kCount; ++k) series[k] = static_cast<float>(powers[k]);
  return series;
}

}  // namespace

struct HighlightShadowTables {
  /// Of the colour's warmth: how far shadows move, signed, and 2 to the power of its negative.
  Series lift;
  Series bend;
  float plain;     // how little of the shadow curve's shape is left: 1 for none
  float scale;     // what shadows are multiplied by before their power
  float contrast;  // added for a lift of 1

  // Of a channel. The shadow curve is 2 to the power of straight + bend * bent.
  FloatTable bent;       // logarithm of the scaled channel times 2 to the power of its negative
  FloatTable straight;   // the same logarithm times `plain`
  FloatTable highlight;  // highlight curve

  // Of the peak.
  FloatTable fourthRoot;
  FloatTable shadeOut;    // (1 - root)^2, the weight of the shadow curve without shadeIn
  FloatTable highWeight;  // root peak highIn
  FloatTable highOffset;  // the same times B
};

namespace {

/// For warmths that colours can have: from 0.8 on, except next to black.
constexpr double kLeastWarmth = 0.2;

void makeShadows(double s, HighlightShadowTables& t) {
  const double plain = std::clamp(1 - std::pow(std::fabs(s / 0.3), 1.6), 0.0, 1.0);
  const double scale = 0.5 + 0.5 * smoothStep(0.5, 1, s);
  const auto lift = [=](double warmth) { return s * std::pow(warmth, 1 - s); };
  t.lift = makeSeries(kLeastWarmth, 1, lift);
  t.bend = makeSeries(kLeastWarmth, 1,
                      [=](double warmth) { return (1 - plain) * std::exp2(-lift(warmth)); });
  t.plain = static_cast<float>(plain);
  t.scale = static_cast<float>(scale);
  t.contrast = static_cast<float>(0.1 * (1 - plain));
  const auto logarithm = [=](double light) {
    return std::log2(std::max<double>(light * scale, kLeastLight));
  };
  t.bent = makeTable([=](int code) {
    const double light = linearFromCoded(code / 255.0);
    return static_cast<float>(logarithm(light) * std::exp2(-light));
  });
  t.straight = makeTable([=](int code) {
    return static_cast<float>(plain * logarithm(linearFromCoded(code / 255.0)));
  });
  t.fourthRoot = makeTable(
      [](int code) { return static_cast<float>(std::pow(linearFromCoded(code / 255.0), 0.25)); });
  t.shadeOut = makeTable([](int code) {
    const double root = std::sqrt(linearFromCoded(code / 255.0));
    return static_cast<float>((1 - root) * (1 - root));
  });
}

void makeHighlights(double h, HighlightShadowTables& t) {
  const double dim = 1 / std::max(1.0, 1.997 - 1 / (1 + std::exp(-6 * h)));
  const double spread = 1 + 0.4 * (1 - std::min(h + 0.3, 1.0));
  t.highlight = makeTable([=](int code) {
    return static_cast<float>(std::pow(linearFromCoded(code / 255.0) * dim, 2 - h));
  });
  const auto weight = [](int code) {
    const double peak = linearFromCoded(code / 255.0);
    const double root = std::sqrt(peak);
    return root * peak * smoothStep(0.2, 0.8, root);
  };
  t.highWeight = makeTable([=](int code) { return static_cast<float>(weight(code)); });
  // The contrast fades out near black.
  t.highOffset = makeTable([=](int code) {
    const double boost = std::min(30 * linearFromCoded(code / 255.0), 1.0) * (1 - h);
    return static_cast<float>(weight(code) * 0.25 * boost * (spread - 1));
  });
}

/// What the weighted sum is made of besides the channels' light.
struct alignas(64) Terms {
  float bent[3][kBatchStride];
  float straight[3][kBatchStride];
  float highlights[3][kBatchStride];
  float fourthRoots[kBatchStride];
  float shadeOut[kBatchStride];
  float highWeights[kBatchStride];
  float highOffsets[kBatchStride];
};

TARGET_CLONES void findPeaks(const PlanarPixels& __restrict codes, uint8_t* __restrict peaks) {
  for (size_t i = 0; i < kColorBatch; ++i) {
    const uint8_t red = codes.channels[0][i];
    const uint8_t green = codes.channels[1][i];
    const uint8_t blue = codes.channels[2][i];
    const uint8_t most = red > green ? red : green;
    peaks[i] = most > blue ? most : blue;
  }
}

void lookUpTerms(const HighlightShadowStage& stage, const PlanarPixels& codes, Terms& terms) {
  const HighlightShadowTables& t = *stage.tables;
  alignas(64) uint8_t peaks[kColorBatch];
  findPeaks(codes, peaks);
  for (int c = 0; c < 3; ++c) {
    const uint8_t* const channel = codes.channels[c];
    if (stage.shadows) lookUpFloats(t.bent, channel, kColorBatch, terms.bent[c]);
    if (t.plain > 0) lookUpFloats(t.straight, channel, kColorBatch, terms.straight[c]);
    if (stage.highlights) lookUpFloats(t.highlight, channel, kColorBatch, terms.highlights[c]);
  }
  if (stage.shadows) {
    lookUpFloats(t.fourthRoot, peaks, kColorBatch, terms.fourthRoots);
    lookUpFloats(t.shadeOut, peaks, kColorBatch, terms.shadeOut);
  }
  if (stage.highlights) {
    lookUpFloats(t.highWeight, peaks, kColorBatch, terms.highWeights);
    lookUpFloats(t.highOffset, peaks, kColorBatch, terms.highOffsets);
  }
}

/// 2^-light, off by less than 5e-6, for light from 0 to 1.
ALWAYS_INLINE float halvings(float light) {
  constexpr float kPowers[] = {0.999997377F, -0.693030179F, 0.239341065F, -0.0530740581F,
                               0.00676708017F};
  float value = kPowers[4];
  for (int i = 3; i >= 0; --i) value = value * light + kPowers[i];
  return value;
}

/// What shadows need of each pixel.
struct alignas(64) Shades {
  float bend[kBatchStride];
  float curve[kBatchStride];     // weight of the shadow curve
  float own[kBatchStride];       // weight it takes from the channels
  float luma[kBatchStride];      // what it adds to each channel for the change of luma
  float contrast[kBatchStride];  // about one half, 0 for none
};

// Loops with short chains of operations: a processor works on several turns of one at a time.

TARGET_CLONES void findWeights(const HighlightShadowTables& __restrict t,
                               const Terms& __restrict terms, const ColorBatch& __restrict batch,
                               Shades& __restrict shades) {
  for (size_t i = 0; i < kColorBatch; ++i) {
    const float r = batch.red[i];
    const float g = batch.green[i];
    const float b = batch.blue[i];
    const float warmth = atMost((r + 0.8F * g + 1.1F * b) / atLeast(r + g + b, 0.001F), 1);
    const float lift = evaluate(t.lift, warmth);
    const float in = atMost(atLeast(terms.fourthRoots[i] / (0.1F + lift), 0), 1);
    const float weight = terms.shadeOut[i] * in * in * (3 - 2 * in);
    const float restore = atMost(30 * atLeast(atLeast(r, g), b), 1);
    shades.bend[i] = evaluate(t.bend, warmth);
    shades.curve[i] = 1.3F * weight * (1 + lift);
    shades.own[i] = 0.65F * weight;
    shades.contrast[i] = t.contrast * std::fabs(lift) * restore;
  }
}

TARGET_CLONES void findLuma(const HighlightShadowTables& __restrict t,
                            const ColorBatch& __restrict batch, Shades& __restrict shades) {
  for (size_t i = 0; i < kColorBatch; ++i) {
    const float y = 0.299F * batch.red[i] + 0.587F * batch.green[i] + 0.114F * batch.blue[i];
    const float logarithm = log2Approximate(y * t.scale + kLeastLight);
    const float exponent = t.plain + shades.bend[i] * halvings(batch.red[i]);
    const float luma = 2 * exp2Approximate(exponent * logarithm);
    shades.luma[i] = 0.35F / 0.65F * shades.own[i] * (luma - y);
  }
}

/// `lights` is a channel, `moved` the same with its highlights moved already.
TARGET_CLONES void moveShadows(const Shades& __restrict shades, const float* __restrict lights,
                               const float* __restrict bent, const float* __restrict straight,
                               float lumaWeight, float* __restrict moved) {
  for (size_t i = 0; i < kColorBatch; ++i) {
    const float power = exp2Approximate(straight[i] + shades.bend[i] * bent[i]);
    const float out = moved[i] + shades.curve[i] * power + lumaWeight * shades.luma[i] -
                      shades.own[i] * lights[i];
    moved[i] = out + shades.contrast[i] * (out - 0.5F);
  }
}

TARGET_CLONES void moveHighlights(const Terms& __restrict terms, ColorBatch& __restrict batch) {
  for (size_t i = 0; i < kColorBatch; ++i) {
    const float offset = terms.highOffsets[i];
    const float own = 1 - terms.highWeights[i];
    const float high = terms.highWeights[i] + kHighSlope * offset;
    batch.red[i] = own * batch.red[i] + high * terms.highlights[0][i] - offset;
    batch.green[i] = own * batch.green[i] + high * terms.highlights[1][i] - offset;
    batch.blue[i] = own * batch.blue[i] + high * terms.highlights[2][i] - offset;
  }
}

}  // namespace

HighlightShadowStage makeHighlightShadow(double shadow, double highlight) {
  HighlightShadowStage stage{shadow != 0, highlight < 1, nullptr};
  auto tables = std::make_shared<HighlightShadowTables>();
  if (stage.shadows) makeShadows(shadow, *tables);
  if (stage.highlights) makeHighlights(highlight, *tables);
  stage.tables = std::move(tables);
  return stage;
}

void applyStage(const HighlightShadowStage& stage, PlanarPixels& codes) {
  if (!stage.shadows && !stage.highlights) return;
  const HighlightShadowTables& tables = *stage.tables;
  Terms terms;
  lookUpTerms(stage, codes, terms);
  ColorBatch batch;
  decodeBatch(codes, batch);
  if (!stage.shadows) {
    moveHighlights(terms, batch);
    return encodeBatch(batch, codes);
  }
  ColorBatch moved = batch;
  if (stage.highlights) moveHighlights(terms, moved);
  Shades shades;
  findWeights(tables, terms, batch, shades);
  findLuma(tables, batch, shades);
  static constexpr float kNone[kColorBatch] = {};
  const auto straight = [&](int c) { return tables.plain > 0 ? terms.straight[c] : kNone; };
  moveShadows(shades, batch.red, terms.bent[0], straight(0), 1.00048F, moved.red);
  moveShadows(shades, batch.green, terms.bent[1], straight(1), 0.999864F, moved.green);
  moveShadows(shades, batch.blue, terms.bent[2], straight(2), 0.999446F, moved.blue);
  encodeBatch(moved, codes);
}
