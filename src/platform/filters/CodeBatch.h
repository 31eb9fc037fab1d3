#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Pixels taken together by the operations on them.
constexpr size_t kColorBatch = 256;

/// Pixels as separate channels of straight codes: red, green, blue, alpha.
struct CodeBatch {
  size_t count = 0;
  uint8_t channels[4][kColorBatch];
};

using CodeTable = std::array<uint8_t, 256>;

bool allOpaque(const uint32_t* pixels, size_t count);

/// Premultiplied pixels, at most kColorBatch, as straight codes.
void splitPixels(const uint32_t* pixels, size_t count, CodeBatch& codes);
void joinPixels(const CodeBatch& codes, uint32_t* pixels);
/// What joining and splitting again does; nothing to opaque pixels.
void roundTrip(CodeBatch& codes);

/// Which of the bytes table lookups leave as they are.
enum class KeptBytes : uint8_t { kNone, kAlphas };
/// Each byte replaced by what the table has for it; bytes and results may be the same.
void lookUpBytes(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                 uint8_t* results);
/// The same byte by byte.
void lookUpBytesScalar(const CodeTable& table, KeptBytes kept, const uint8_t* bytes, size_t count,
                       uint8_t* results);
