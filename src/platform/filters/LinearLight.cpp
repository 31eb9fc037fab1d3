#include "platform/filters/LinearLight.h"

#include <algorithm>
#include <cmath>

#include "platform/TargetClones.h"

namespace {

constexpr size_t kBatch = 64;

LinearLightTables makeTables() {
  LinearLightTables tables{};
  size_t index = 0;
  for (int code = 0; code < 256; ++code) {
    tables.linear[code] = static_cast<float>(linearFromCoded(code / 255.0));
    tables.unpremultiply[code] = code > 0 ? 255.0F / static_cast<float>(code) : 0.0F;
    const double end = code < 255 ? 65535 * linearFromCoded((code + 0.5) / 255.0) : 65536;
    while (static_cast<double>(index) < end) tables.code[index++] = static_cast<uint8_t>(code);
  }
  return tables;
}

VECTOR_CLONES uint8_t leastAlpha(const uint8_t* pixels, size_t count) {
  uint8_t least = 255;
  for (size_t i = 0; i < count; ++i) least = std::min(least, pixels[i * 4 + 3]);
  return least;
}

void decodeOpaque(const LinearLightTables& tables, const uint8_t* in, size_t count, float* out) {
  for (size_t i = 0; i < count; ++i, in += 4, out += 4) {
    out[0] = tables.linear[in[0]];
    out[1] = tables.linear[in[1]];
    out[2] = tables.linear[in[2]];
    out[3] = 1;
  }
}

void decodeAny(const LinearLightTables& tables, const uint8_t* in, size_t count, float* out) {
  for (size_t i = 0; i < count; ++i, in += 4, out += 4) {
    const float alpha = static_cast<float>(in[3]) * (1.0F / 255);
    for (int c = 0; c < 3; ++c) {
      out[c] = alpha * tables.linear[straightCode(tables, in[c], in[3])];
    }
    out[3] = alpha;
  }
}

/// Alphas this close to 1 are opaque: sums of weights do not add up to 1 exactly.
constexpr float kOpaque = 0.9999F;

VECTOR_CLONES bool allOpaque(const float* values, size_t count) {
  float least = 1;
  for (size_t i = 0; i < count; ++i) least = std::min(least, values[i * 4 + 3]);
  return least >= kOpaque;
}

VECTOR_CLONES void indexOpaque(const float* __restrict values, size_t count,
                               int32_t* __restrict indexes) {
  for (size_t i = 0; i < count; ++i) indexes[i] = codeIndex(values[i]);
}

void encodeOpaque(const LinearLightTables& tables, const float* values, size_t count,
                  uint8_t* out) {
  int32_t indexes[kBatch * 4];
  indexOpaque(values, count * 4, indexes);
  for (size_t i = 0; i < count; ++i, out += 4) {
    for (size_t c = 0; c < 3; ++c) out[c] = tables.code[indexes[i * 4 + c]];
    out[3] = 255;
  }
}

void encodeAny(const LinearLightTables& tables, const float* values, size_t count, uint8_t* out) {
  for (size_t i = 0; i < count; ++i, values += 4, out += 4) {
    const float alpha = std::clamp(values[3], 0.0F, 1.0F);
    const auto alphaCode = static_cast<uint8_t>(alpha * 255.0F + 0.5F);
    const float scale = 1.0F / std::max(alpha, 0.00001F);
    for (size_t c = 0; c < 3; ++c) {
      out[c] = premultipliedCode(tables.code[codeIndex(values[c] * scale)], alphaCode);
    }
    out[3] = alphaCode;
  }
}

}  // namespace

double linearFromCoded(double value) {
  const double x = std::fabs(value);
  const double light = x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
  return std::copysign(light, value);
}

double codedFromLinear(double value) {
  const double x = std::fabs(value);
  const double coded = x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1 / 2.4) - 0.055;
  return std::copysign(coded, value);
}

const LinearLightTables& linearLightTables() {
  static const LinearLightTables tables = makeTables();
  return tables;
}

void decodePixels(const uint8_t* pixels, size_t count, float* out) {
  const LinearLightTables& tables = linearLightTables();
  for (size_t begin = 0; begin < count; begin += kBatch) {
    const size_t length = std::min(kBatch, count - begin);
    const uint8_t* in = pixels + begin * 4;
    const bool opaque = length == 1 ? in[3] == 255 : leastAlpha(in, length) == 255;
    (opaque ? decodeOpaque : decodeAny)(tables, in, length, out + begin * 4);
  }
}

void decodeLuma(const uint8_t* pixels, size_t count, const LumaWeights& weights, float* out) {
  float batch[kBatch * 4];
  for (size_t begin = 0; begin < count; begin += kBatch) {
    const size_t length = std::min(kBatch, count - begin);
    decodePixels(pixels + begin * 4, length, batch);
    for (size_t i = 0; i < length; ++i) {
      const float* p = batch + i * 4;
      out[begin + i] = weights[0] * p[0] + weights[1] * p[1] + weights[2] * p[2];
    }
  }
}

void encodePixels(const float* values, size_t count, uint8_t* out) {
  const LinearLightTables& tables = linearLightTables();
  for (size_t begin = 0; begin < count; begin += kBatch) {
    const size_t length = std::min(kBatch, count - begin);
    const float* in = values + begin * 4;
    (allOpaque(in, length) ? encodeOpaque : encodeAny)(tables, in, length, out + begin * 4);
  }
}
