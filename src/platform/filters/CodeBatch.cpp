#include "platform/filters/CodeBatch.h"

#include <bit>

#include "platform/TargetClones.h"
#include "platform/filters/LinearLight.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#endif

static_assert(std::endian::native == std::endian::little, "red is the lowest byte of a pixel");

namespace {

constexpr uint32_t kAlphaBits = 0xFF000000;

VECTOR_CLONES void split(const uint32_t* __restrict pixels, size_t count, uint8_t* __restrict red,
                         uint8_t* __restrict green, uint8_t* __restrict blue,
                         uint8_t* __restrict alpha) {
  for (size_t i = 0; i < count; ++i) {
    red[i] = static_cast<uint8_t>(pixels[i]);
    green[i] = static_cast<uint8_t>(pixels[i] >> 8);
    blue[i] = static_cast<uint8_t>(pixels[i] >> 16);
    alpha[i] = static_cast<uint8_t>(pixels[i] >> 24);
  }
}

VECTOR_CLONES void join(const uint8_t* __restrict red, const uint8_t* __restrict green,
                        const uint8_t* __restrict blue, const uint8_t* __restrict alpha,
                        uint32_t* __restrict pixels, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    pixels[i] = static_cast<uint32_t>(red[i]) | static_cast<uint32_t>(green[i]) << 8 |
                static_cast<uint32_t>(blue[i]) << 16 | static_cast<uint32_t>(alpha[i]) << 24;
  }
}

/// See straightCode and premultipliedCode.
VECTOR_CLONES void unpremultiply(const uint8_t* __restrict alpha, uint8_t* __restrict codes,
                                 size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const float divisor = alpha[i] > 0 ? static_cast<float>(alpha[i]) : 1.0F;
    const float code = static_cast<float>(codes[i]) * (255.0F / divisor) + 0.5F;
    const auto whole = static_cast<int32_t>(code < 255.0F ? code : 255.0F);
    codes[i] = static_cast<uint8_t>(alpha[i] > 0 ? whole : 0);
  }
}

VECTOR_CLONES void premultiply(const uint8_t* __restrict alpha, uint8_t* __restrict codes,
                               size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t product = static_cast<uint32_t>(codes[i]) * alpha[i];
    codes[i] = static_cast<uint8_t>((product + 127) / 255);
  }
}

bool isOpaque(const CodeBatch& codes) {
  uint8_t all = 255;
  for (size_t i = 0; i < codes.count; ++i) all &= codes.channels[3][i];
  return all == 255;
}

#if defined(__x86_64__) && defined(__GNUC__)

/// Four registers hold the table, and 64 bytes are looked up at a time. Answers how many were.
__attribute__((target("avx512f,avx512bw,avx512vbmi"))) size_t lookUpWide(
    const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count, uint8_t* results) {
  const __m512i quarters[] = {
      _mm512_loadu_si512(table.data()), _mm512_loadu_si512(table.data() + 64),
      _mm512_loadu_si512(table.data() + 128), _mm512_loadu_si512(table.data() + 192)};
  const __mmask64 keep = kept == KeptBytes::kAlphas ? 0x8888888888888888U : 0U;
  size_t i = 0;
  for (; i + 64 <= count; i += 64) {
    const __m512i index = _mm512_loadu_si512(bytes + i);
    const __m512i lower = _mm512_permutex2var_epi8(quarters[0], index, quarters[1]);
    const __m512i upper = _mm512_permutex2var_epi8(quarters[2], index, quarters[3]);
    const __m512i found = _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), lower, upper);
    _mm512_storeu_si512(results + i, _mm512_mask_blend_epi8(keep, found, index));
  }
  return i;
}

bool hasWideLookUp() {
  static const bool has =
      __builtin_cpu_supports("avx512bw") > 0 && __builtin_cpu_supports("avx512vbmi") > 0;
  return has;
}

#else

size_t lookUpWide(const CodeTable&, KeptBytes, const uint8_t*, size_t, uint8_t*) {
  return 0;
}
bool hasWideLookUp() {
  return false;
}

#endif

}  // namespace

bool allOpaque(const uint32_t* pixels, size_t count) {
  uint32_t all = kAlphaBits;
  for (size_t i = 0; i < count; ++i) all &= pixels[i];
  return all == kAlphaBits;
}

void splitPixels(const uint32_t* pixels, size_t count, CodeBatch& codes) {
  codes.count = count;
  auto& [red, green, blue, alpha] = codes.channels;
  split(pixels, count, red, green, blue, alpha);
  if (isOpaque(codes)) return;
  for (uint8_t* channel : {red, green, blue}) unpremultiply(alpha, channel, count);
}

void joinPixels(const CodeBatch& codes, uint32_t* pixels) {
  if (isOpaque(codes)) {
    join(codes.channels[0], codes.channels[1], codes.channels[2], codes.channels[3], pixels,
         codes.count);
    return;
  }
  CodeBatch stored = codes;
  auto& [red, green, blue, alpha] = stored.channels;
  for (uint8_t* channel : {red, green, blue}) premultiply(alpha, channel, codes.count);
  join(red, green, blue, alpha, pixels, codes.count);
}

void roundTrip(CodeBatch& codes) {
  if (isOpaque(codes)) return;
  auto& [red, green, blue, alpha] = codes.channels;
  for (uint8_t* channel : {red, green, blue}) {
    premultiply(alpha, channel, codes.count);
    unpremultiply(alpha, channel, codes.count);
  }
}

void lookUpBytesScalar(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                       uint8_t* results) {
  for (size_t i = 0; i < count; ++i) {
    const bool keep = kept == KeptBytes::kAlphas && i % 4 == 3;
    results[i] = keep ? bytes[i] : table[bytes[i]];
  }
}

void lookUpBytes(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                 uint8_t* results) {
  const size_t done = hasWideLookUp() ? lookUpWide(table, kept, bytes, count, results) : 0;
  lookUpBytesScalar(table, kept, bytes + done, count - done, results + done);
}
