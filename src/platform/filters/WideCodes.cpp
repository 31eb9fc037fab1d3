#include "platform/filters/WideCodes.h"

#include <cstring>

#include "platform/filters/MemoEntries.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>

#ifndef __clang__
// GCC 12's own headers pass registers on that they leave undefined on purpose.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#define WIDE_TARGET "avx512f,avx512bw,avx512vl,avx512dq,avx512vbmi"
#define WIDE __attribute__((target(WIDE_TARGET)))
#define INTO_WIDE WIDE __attribute__((always_inline)) inline

namespace {

constexpr size_t kBytes = 64;
constexpr size_t kFloats = 16;

/// Where a run of sixteen begins.
constexpr size_t placeOf(int run) {
  return kFloats * static_cast<size_t>(run);
}

/// 256 bytes in four registers.
struct ByteTable {
  __m512i quarters[4];
};
INTO_WIDE ByteTable loadTable(const uint8_t* table) {
  return {{_mm512_loadu_si512(table), _mm512_loadu_si512(table + 64),
           _mm512_loadu_si512(table + 128), _mm512_loadu_si512(table + 192)}};
}
/// `upper` has the highest bits of the codes.
INTO_WIDE __m512i found(const ByteTable& table, __m512i codes, __mmask64 upper) {
  const __m512i low = _mm512_permutex2var_epi8(table.quarters[0], codes, table.quarters[1]);
  const __m512i high = _mm512_permutex2var_epi8(table.quarters[2], codes, table.quarters[3]);
  return _mm512_mask_blend_epi8(upper, low, high);
}

/// Unpacking bytes and then words works within 16-byte lanes: codes in this order come out as four
/// runs of sixteen. Packing the runs again gives bytes in the same order, which undoes itself.
struct LaneOrder {
  alignas(64) uint8_t places[kBytes];
};
constexpr LaneOrder kLaneOrder = [] {
  LaneOrder order{};
  for (size_t lane = 0; lane < 4; ++lane) {
    for (size_t run = 0; run < 4; ++run) {
      for (size_t j = 0; j < 4; ++j) {
        order.places[16 * lane + 4 * run + j] = static_cast<uint8_t>(16 * run + 4 * lane + j);
      }
    }
  }
  return order;
}();
INTO_WIDE __m512i inLaneOrder(__m512i bytes) {
  return _mm512_permutexvar_epi8(_mm512_load_si512(kLaneOrder.places), bytes);
}

/// Words of which bytes[k] has byte k, in lane order.
INTO_WIDE void storeWords(const __m512i (&bytes)[4], void* words) {
  const __m512i low[] = {_mm512_unpacklo_epi8(bytes[0], bytes[1]),
                         _mm512_unpackhi_epi8(bytes[0], bytes[1])};
  const __m512i high[] = {_mm512_unpacklo_epi8(bytes[2], bytes[3]),
                          _mm512_unpackhi_epi8(bytes[2], bytes[3])};
  auto* const out = static_cast<uint8_t*>(words);
  _mm512_storeu_si512(out, _mm512_unpacklo_epi16(low[0], high[0]));
  _mm512_storeu_si512(out + kBytes, _mm512_unpackhi_epi16(low[0], high[0]));
  _mm512_storeu_si512(out + 2 * kBytes, _mm512_unpacklo_epi16(low[1], high[1]));
  _mm512_storeu_si512(out + 3 * kBytes, _mm512_unpackhi_epi16(low[1], high[1]));
}

/// The cubics' value for each light, clamped to their range.
INTO_WIDE __m512 valueOf(const __m512 (&powers)[4][2], __m512 light) {
  // The first operand gives way when it is no number.
  light = _mm512_max_ps(light, _mm512_set1_ps(1.0F / 65536));
  light = _mm512_min_ps(light, _mm512_set1_ps(0.99999994F));
  const __m512i piece = _mm512_srli_epi32(_mm512_castps_si512(light), 22);
  __m512 value = _mm512_permutex2var_ps(powers[3][0], piece, powers[3][1]);
  for (int k = 2; k >= 0; --k) {
    value =
        _mm512_fmadd_ps(value, light, _mm512_permutex2var_ps(powers[k][0], piece, powers[k][1]));
  }
  return value;
}

/// Places of one channel's bytes in two registers of pixels, for either half of the result.
INTO_WIDE __m512i channelPlaces(int channel) {
  const __m512i words = _mm512_setr_epi32(0x0C080400, 0x1C181410, 0x2C282420, 0x3C383430,  //
                                          0x4C484440, 0x5C585450, 0x6C686460, 0x7C787470,  //
                                          0x0C080400, 0x1C181410, 0x2C282420, 0x3C383430,  //
                                          0x4C484440, 0x5C585450, 0x6C686460, 0x7C787470);
  return _mm512_add_epi8(words, _mm512_set1_epi8(static_cast<char>(channel)));
}

/// One function for 64 bytes, codes or pixels at a time: see the functions named after them.
class ByteLookUp {
 public:
  WIDE ByteLookUp(const CodeTable& table, KeptBytes kept)
      : table_(loadTable(table.data())),
        keep_(kept == KeptBytes::kAlphas ? 0x8888888888888888U : 0U) {}
  INTO_WIDE void operator()(const uint8_t* bytes, uint8_t* results) const {
    const __m512i codes = _mm512_loadu_si512(bytes);
    const __m512i values = found(table_, codes, _mm512_movepi8_mask(codes));
    _mm512_storeu_si512(results, _mm512_mask_blend_epi8(keep_, values, codes));
  }

 private:
  ByteTable table_;
  __mmask64 keep_;
};

template <TableBits kBits>
class FloatLookUp {
 public:
  WIDE explicit FloatLookUp(const FloatTable& table) {
    for (int k = kFirst; k < 4; ++k) tables_[k] = loadTable(table.bytes[k].data());
  }
  INTO_WIDE void operator()(const uint8_t* codes, float* values) const {
    const __m512i code = inLaneOrder(_mm512_loadu_si512(codes));
    const __mmask64 upper = _mm512_movepi8_mask(code);
    __m512i bytes[4] = {};
    for (int k = kFirst; k < 4; ++k) bytes[k] = found(tables_[k], code, upper);
    storeWords(bytes, values);
  }

 private:
  static constexpr int kFirst = kBits == TableBits::k24 ? 1 : 0;
  ByteTable tables_[4];
};

struct LoadedCubics {
  __m512 powers[4][2];
};
WIDE LoadedCubics loadCubics(const HalfOctaveCubics& function) {
  LoadedCubics loaded;
  for (int k = 0; k < 4; ++k) {
    loaded.powers[k][0] = _mm512_load_ps(function.powers[k].data());
    loaded.powers[k][1] = _mm512_load_ps(function.powers[k].data() + kFloats);
  }
  return loaded;
}

class CodesOfLights {
 public:
  WIDE explicit CodesOfLights(const HalfOctaveCubics& function) : cubics_(loadCubics(function)) {}
  INTO_WIDE void operator()(const float* lights, uint8_t* codes) const {
    __m512i whole[4];
    for (int k = 0; k < 4; ++k) {
      const __m512 light = _mm512_loadu_ps(lights + placeOf(k));
      whole[k] = _mm512_cvtps_epi32(valueOf(cubics_.powers, light));
    }
    const __m512i packed = _mm512_packus_epi16(_mm512_packus_epi32(whole[0], whole[1]),
                                               _mm512_packus_epi32(whole[2], whole[3]));
    _mm512_storeu_si512(codes, inLaneOrder(packed));
  }

 private:
  LoadedCubics cubics_;
};

class Curve {
 public:
  WIDE explicit Curve(const HalfOctaveCubics& function) : cubics_(loadCubics(function)) {}
  INTO_WIDE void operator()(const float* lights, float* values) const {
    for (int k = 0; k < 4; ++k) {
      const __m512 light = _mm512_loadu_ps(lights + placeOf(k));
      _mm512_storeu_ps(values + placeOf(k), valueOf(cubics_.powers, light));
    }
  }

 private:
  LoadedCubics cubics_;
};

class ChannelOf {
 public:
  WIDE explicit ChannelOf(int channel) : places_(channelPlaces(channel)) {}
  INTO_WIDE void operator()(const uint32_t* pixels, uint8_t* codes) const {
    __m512i in[4];
    for (int k = 0; k < 4; ++k) in[k] = _mm512_loadu_si512(pixels + placeOf(k));
    const __m512i low = _mm512_permutex2var_epi8(in[0], places_, in[1]);
    const __m512i high = _mm512_permutex2var_epi8(in[2], places_, in[3]);
    _mm512_storeu_si512(codes, _mm512_mask_blend_epi64(0xF0, low, high));
  }

 private:
  __m512i places_;
};

/// Applies a function of 64 values to all; the last ones are padded.
template <class Function, class In, class Out>
INTO_WIDE void inBlocks(const Function& function, const In* in, size_t count, Out* out) {
  size_t i = 0;
  for (; i + kBytes <= count; i += kBytes) function(in + i, out + i);
  if (i == count) return;
  In last[kBytes] = {};
  Out results[kBytes];
  std::memcpy(last, in + i, (count - i) * sizeof(In));
  function(last, results);
  std::memcpy(out + i, results, (count - i) * sizeof(Out));
}

}  // namespace

WIDE void wideLookUpBytes(const CodeTable& table, KeptBytes kept, const uint8_t* bytes,
                          size_t count, uint8_t* results) {
  inBlocks(ByteLookUp(table, kept), bytes, count, results);
}

WIDE void wideLookUpFloats(const FloatTable& table, const uint8_t* codes, size_t count,
                           float* values) {
  if (table.bits == TableBits::k24) {
    inBlocks(FloatLookUp<TableBits::k24>(table), codes, count, values);
  } else {
    inBlocks(FloatLookUp<TableBits::k32>(table), codes, count, values);
  }
}

WIDE void wideCodesOfLights(const HalfOctaveCubics& function, const float* lights, size_t count,
                            uint8_t* codes) {
  inBlocks(CodesOfLights(function), lights, count, codes);
}

WIDE void wideCurve(const HalfOctaveCubics& function, const float* lights, size_t count,
                    float* values) {
  inBlocks(Curve(function), lights, count, values);
}

WIDE void wideChannel(const uint32_t* pixels, size_t count, int channel, uint8_t* codes) {
  inBlocks(ChannelOf(channel), pixels, count, codes);
}

WIDE void wideJoin(const std::array<const uint8_t*, 4>& channels, size_t count, uint32_t* pixels) {
  for (size_t i = 0; i < count; i += kBytes) {
    __m512i bytes[4];
    for (size_t c = 0; c < 4; ++c) {
      bytes[c] = inLaneOrder(_mm512_loadu_si512(channels[c] + i));
    }
    if (count - i >= kBytes) {
      storeWords(bytes, pixels + i);
    } else {
      uint32_t last[kBytes];
      storeWords(bytes, last);
      std::memcpy(pixels + i, last, (count - i) * sizeof(uint32_t));
    }
  }
}

namespace {

/// The memo's entries of sixteen numbers. One load for each: on many processors the instruction
/// that gathers them takes longer.
INTO_WIDE __m512i entriesAt(const uint32_t* memo, __m512i numbers) {
  alignas(64) uint32_t at[kFloats];
  _mm512_store_si512(at, numbers);
  __m128i fours[4];
  for (int k = 0; k < 4; ++k) {
    const auto entry = [&](int i) { return static_cast<int>(memo[at[4 * k + i]]); };
    fours[k] = _mm_cvtsi32_si128(entry(0));
    fours[k] = _mm_insert_epi32(fours[k], entry(1), 1);
    fours[k] = _mm_insert_epi32(fours[k], entry(2), 2);
    fours[k] = _mm_insert_epi32(fours[k], entry(3), 3);
  }
  const __m512i low = _mm512_castsi256_si512(_mm256_set_m128i(fours[1], fours[0]));
  return _mm512_inserti64x4(low, _mm256_set_m128i(fours[3], fours[2]), 1);
}

/// Sixteen pixels of `wideFindEntries`, of which `wanted` count.
INTO_WIDE size_t findSixteen(const uint32_t* memo, const uint32_t* pixels, __mmask16 wanted,
                             uint32_t* results, uint32_t first, uint32_t* missed,
                             uint32_t* missedNumbers) {
  const __m512i lanes = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  const __m512i factor = _mm512_set1_epi32(static_cast<int>(kMemoFactor));
  const __m512i alpha = _mm512_set1_epi32(static_cast<int>(kMemoMark));
  const __m512i set = _mm512_set1_epi32(static_cast<int>(kMemoSet));
  const __m512i pixel = _mm512_loadu_si512(pixels);
  const __m512i mixed = _mm512_slli_epi32(_mm512_mullo_epi32(pixel, factor), 8);
  const __m512i entry = entriesAt(memo, _mm512_srli_epi32(mixed, 32 - kMemoBits));
  const __m512i mark =
      _mm512_or_si512(_mm512_srli_epi32(_mm512_slli_epi32(mixed, kMemoBits), 1), set);
  _mm512_storeu_si512(results, _mm512_or_si512(entry, alpha));
  // Zero where the mark is the pixel's and the pixel is opaque.
  const __m512i difference =
      _mm512_or_si512(_mm512_xor_si512(entry, mark), _mm512_xor_si512(pixel, alpha));
  const __mmask16 unknown = _mm512_mask_test_epi32_mask(wanted, difference, alpha);
  const __m512i number = _mm512_add_epi32(lanes, _mm512_set1_epi32(static_cast<int>(first)));
  _mm512_storeu_si512(missed, _mm512_maskz_compress_epi32(unknown, pixel));
  _mm512_storeu_si512(missedNumbers, _mm512_maskz_compress_epi32(unknown, number));
  return static_cast<size_t>(__builtin_popcount(unknown));
}

}  // namespace

WIDE size_t wideFindEntries(const uint32_t* memo, const uint32_t* pixels, size_t count,
                            uint32_t* results, uint32_t first, uint32_t* missed,
                            uint32_t* missedNumbers) {
  size_t misses = 0;
  size_t i = 0;
  for (; i + kFloats <= count; i += kFloats) {
    misses += findSixteen(memo, pixels + i, 0xFFFF, results + i, first + static_cast<uint32_t>(i),
                          missed + misses, missedNumbers + misses);
  }
  if (i == count) return misses;
  uint32_t last[kFloats] = {};
  uint32_t lastResults[kFloats];
  std::memcpy(last, pixels + i, (count - i) * sizeof(uint32_t));
  misses += findSixteen(memo, last, static_cast<__mmask16>((1U << (count - i)) - 1), lastResults,
                        first + static_cast<uint32_t>(i), missed + misses, missedNumbers + misses);
  std::memcpy(results + i, lastResults, (count - i) * sizeof(uint32_t));
  return misses;
}

#else

size_t wideFindEntries(const uint32_t*, const uint32_t*, size_t, uint32_t*, uint32_t, uint32_t*,
                       uint32_t*) {
  return 0;
}
void wideCurve(const HalfOctaveCubics&, const float*, size_t, float*) {}
void wideLookUpBytes(const CodeTable&, KeptBytes, const uint8_t*, size_t, uint8_t*) {}
void wideLookUpFloats(const FloatTable&, const uint8_t*, size_t, float*) {}
void wideCodesOfLights(const HalfOctaveCubics&, const float*, size_t, uint8_t*) {}
void wideChannel(const uint32_t*, size_t, int, uint8_t*) {}
void wideJoin(const std::array<const uint8_t*, 4>&, size_t, uint32_t*) {}

#endif
