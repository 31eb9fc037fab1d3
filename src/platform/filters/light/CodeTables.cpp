#include "platform/filters/light/CodeTables.h"

#include <bit>
#include <cstring>

#include "platform/filters/light/CodeKernelsAVX512.h"
#include "platform/machine/AVX512.h"

FloatTable makeFloatTable(TableBits bits, const std::function<float(int)>& function) {
  FloatTable table;
  table.bits = bits;
  for (int code = 0; code < 256; ++code) {
    auto value = std::bit_cast<uint32_t>(function(code));
    if (bits == TableBits::k24) value = (value + 0x80) & 0xFFFFFF00;
    table.values[code] = std::bit_cast<float>(value);
    for (int k = 0; k < 4; ++k) table.bytes[k][code] = static_cast<uint8_t>(value >> (8 * k));
  }
  return table;
}

void lookUpBytesScalar(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                       uint8_t* results) {
  if (kept == KeptBytes::kNone) {
    for (size_t i = 0; i < count; ++i) results[i] = table[bytes[i]];
    return;
  }
  for (size_t i = 0; i < count; i += 4) {
    uint32_t pixel;
    std::memcpy(&pixel, bytes + i, sizeof pixel);
    pixel = (pixel & 0xFF000000) | table[pixel & 0xFF] |
            static_cast<uint32_t>(table[pixel >> 8 & 0xFF]) << 8 |
            static_cast<uint32_t>(table[pixel >> 16 & 0xFF]) << 16;
    std::memcpy(results + i, &pixel, sizeof pixel);
  }
}

void lookUpBytes(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                 uint8_t* results) {
  if (hasAVX512VBMI()) {
    lookUpBytesAVX512(table, kept, bytes, count, results);
  } else {
    lookUpBytesScalar(table, kept, bytes, count, results);
  }
}

void lookUpFloats(const FloatTable& table, const uint8_t* codes, size_t count, float* values) {
  if (hasAVX512VBMI()) {
    lookUpFloatsAVX512(table, codes, count, values);
  } else {
    for (size_t i = 0; i < count; ++i) values[i] = table.values[codes[i]];
  }
}
