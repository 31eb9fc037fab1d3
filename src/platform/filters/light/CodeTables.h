#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

/// Functions of 8-bit codes, tabulated.

using CodeTable = std::array<uint8_t, 256>;

/// Weights need fewer bits than light does: with 24, the lowest of a float's bytes being zero, they
/// are within 2^-16 of themselves and found faster.
enum class TableBits : uint8_t { k24, k32 };

struct FloatTable {
  TableBits bits;
  std::array<float, 256> values;
  /// Byte k of each value, lowest first, as bytes can be looked up many at a time.
  alignas(64) std::array<std::array<uint8_t, 256>, 4> bytes;
};
/// `function` answers the value of a code from 0 to 255, finite.
FloatTable makeFloatTable(TableBits bits, const std::function<float(int)>& function);

/// Which of the bytes table lookups leave as they are.
enum class KeptBytes : uint8_t { kNone, kAlphas };
/// Each byte replaced by what the table has for it; bytes and results may be the same. Where alphas
/// are kept, the bytes are whole pixels.
void lookUpBytes(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                 uint8_t* results);
/// The same byte by byte.
void lookUpBytesScalar(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                       uint8_t* results);
/// The value of each code.
void lookUpFloats(const FloatTable& table, const uint8_t* codes, size_t count, float* values);
