#include "platform/filters/light/CodeKernelsAVX512.h"

#include <cstring>

#include "platform/filters/light/LinearLight.h"
#include "platform/machine/AVX512.h"

#ifdef PAINT_AVX512_KERNELS
#include <immintrin.h>

AVX512_UNDEFINED_REGISTERS

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
AVX512_INLINE ByteTable loadTable(const uint8_t* table) {
  return {{_mm512_loadu_si512(table), _mm512_loadu_si512(table + 64),
           _mm512_loadu_si512(table + 128), _mm512_loadu_si512(table + 192)}};
}
/// `upper` has the highest bits of the codes.
AVX512_INLINE __m512i found(const ByteTable& table, __m512i codes, __mmask64 upper) {
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
AVX512_INLINE __m512i inLaneOrder(__m512i bytes) {
  return _mm512_permutexvar_epi8(_mm512_load_si512(kLaneOrder.places), bytes);
}

/// Words of which bytes[k] has byte k, in lane order.
AVX512_INLINE void storeWords(const __m512i (&bytes)[4], void* words) {
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
AVX512_INLINE __m512 valueOf(const __m512 (&powers)[4][2], __m512 light) {
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
AVX512_INLINE __m512i channelPlaces(int channel) {
  const __m512i words = _mm512_setr_epi32(0x0C080400, 0x1C181410, 0x2C282420, 0x3C383430,  //
                                          0x4C484440, 0x5C585450, 0x6C686460, 0x7C787470,  //
                                          0x0C080400, 0x1C181410, 0x2C282420, 0x3C383430,  //
                                          0x4C484440, 0x5C585450, 0x6C686460, 0x7C787470);
  return _mm512_add_epi8(words, _mm512_set1_epi8(static_cast<char>(channel)));
}

/// One function for 64 bytes, codes or pixels at a time: see the functions named after them.
class ByteLookUp {
 public:
  AVX512_KERNEL ByteLookUp(const CodeTable& table, KeptBytes kept)
      : table_(loadTable(table.data())),
        keep_(kept == KeptBytes::kAlphas ? 0x8888888888888888U : 0U) {}
  AVX512_INLINE void operator()(const uint8_t* bytes, uint8_t* results) const {
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
  AVX512_KERNEL explicit FloatLookUp(const FloatTable& table) {
    for (int k = kFirst; k < 4; ++k) tables_[k] = loadTable(table.bytes[k].data());
  }
  AVX512_INLINE void operator()(const uint8_t* codes, float* values) const {
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
AVX512_KERNEL LoadedCubics loadCubics(const HalfOctaveCubics& function) {
  LoadedCubics loaded;
  for (int k = 0; k < 4; ++k) {
    loaded.powers[k][0] = _mm512_load_ps(function.powers[k].data());
    loaded.powers[k][1] = _mm512_load_ps(function.powers[k].data() + kFloats);
  }
  return loaded;
}

class CodesOfLights {
 public:
  AVX512_KERNEL explicit CodesOfLights(const HalfOctaveCubics& function)
      : cubics_(loadCubics(function)) {}
  AVX512_INLINE void operator()(const float* lights, uint8_t* codes) const {
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
  AVX512_KERNEL explicit Curve(const HalfOctaveCubics& function) : cubics_(loadCubics(function)) {}
  AVX512_INLINE void operator()(const float* lights, float* values) const {
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
  AVX512_KERNEL explicit ChannelOf(int channel) : places_(channelPlaces(channel)) {}
  AVX512_INLINE void operator()(const uint32_t* pixels, uint8_t* codes) const {
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
AVX512_INLINE void inBlocks(const Function& function, const In* in, size_t count, Out* out) {
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

AVX512_KERNEL void lookUpBytesAVX512(const CodeTable& table, KeptBytes kept, const uint8_t* bytes,
                                     size_t count, uint8_t* results) {
  inBlocks(ByteLookUp(table, kept), bytes, count, results);
}

AVX512_KERNEL void lookUpFloatsAVX512(const FloatTable& table, const uint8_t* codes, size_t count,
                                      float* values) {
  if (table.bits == TableBits::k24) {
    inBlocks(FloatLookUp<TableBits::k24>(table), codes, count, values);
  } else {
    inBlocks(FloatLookUp<TableBits::k32>(table), codes, count, values);
  }
}

AVX512_KERNEL void codesFromLinearAVX512(const HalfOctaveCubics& function, const float* lights,
                                         size_t count, uint8_t* codes) {
  inBlocks(CodesOfLights(function), lights, count, codes);
}

AVX512_KERNEL void evaluateCubicsAVX512(const HalfOctaveCubics& function, const float* lights,
                                        size_t count, float* values) {
  inBlocks(Curve(function), lights, count, values);
}

AVX512_KERNEL void channelOfAVX512(const uint32_t* pixels, size_t count, int channel,
                                   uint8_t* codes) {
  inBlocks(ChannelOf(channel), pixels, count, codes);
}

AVX512_KERNEL void joinChannelsAVX512(const std::array<const uint8_t*, 4>& channels, size_t count,
                                      uint32_t* pixels) {
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

#else

void evaluateCubicsAVX512(const HalfOctaveCubics&, const float*, size_t, float*) {}
void lookUpBytesAVX512(const CodeTable&, KeptBytes, const uint8_t*, size_t, uint8_t*) {}
void lookUpFloatsAVX512(const FloatTable&, const uint8_t*, size_t, float*) {}
void codesFromLinearAVX512(const HalfOctaveCubics&, const float*, size_t, uint8_t*) {}
void channelOfAVX512(const uint32_t*, size_t, int, uint8_t*) {}
void joinChannelsAVX512(const std::array<const uint8_t*, 4>&, size_t, uint32_t*) {}

#endif
