#include "draw/raster/MaskKernels.h"

#include <algorithm>
#include <cstring>

#include "platform/TargetClones.h"

namespace {

/// Masks are looked at in pieces of this many bytes: most pieces of a real mask are all in or all
/// out, and then the pixels need not be read.
constexpr size_t kPiece = 64;

enum class Piece : uint8_t { out, in, mixed };

inline Piece pieceAt(const uint8_t* mask) {
  constexpr uint64_t kIn = 0x0101010101010101;
  uint64_t any = 0;
  uint64_t differs = 0;
  for (size_t i = 0; i < kPiece; i += sizeof(uint64_t)) {
    uint64_t word = 0;
    std::memcpy(&word, mask + i, sizeof word);
    any |= word;
    differs |= word ^ kIn;
  }
  return any == 0 ? Piece::out : differs == 0 ? Piece::in : Piece::mixed;
}

}  // namespace

VECTOR_CLONES void fillMasked(uint32_t* pixels, const uint8_t* mask, size_t count, uint32_t value) {
  size_t x = 0;
  for (; x + kPiece <= count; x += kPiece) {
    const Piece piece = pieceAt(mask + x);
    if (piece == Piece::out) continue;
    if (piece == Piece::in) {
      for (size_t i = 0; i < kPiece; ++i) pixels[x + i] = value;
    } else {
      for (size_t i = 0; i < kPiece; ++i) pixels[x + i] = mask[x + i] != 0 ? value : pixels[x + i];
    }
  }
  for (; x < count; ++x) pixels[x] = mask[x] != 0 ? value : pixels[x];
}

VECTOR_CLONES void copyMasked(uint32_t* pixels, const uint32_t* source, const uint8_t* mask,
                              size_t count) {
  for (size_t x = 0; x < count; x += kPiece) {
    const size_t n = std::min(kPiece, count - x);
    if (n == kPiece && pieceAt(mask + x) == Piece::out) continue;
    for (size_t i = x; i < x + n; ++i) pixels[i] = mask[i] != 0 ? source[i] : pixels[i];
  }
}
