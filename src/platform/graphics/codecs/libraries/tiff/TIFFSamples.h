#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// What the samples of a pixel mean, in the order in which they are stored.
enum class TIFFColor : uint8_t { whiteIsZero, blackIsZero, rgb, palette, cmyk };

/// How a row of pixels is packed.
struct TIFFSampleLayout {
  TIFFColor color = TIFFColor::blackIsZero;
  int bits = 8;  ///< 1 to 16 for each sample; samples of 16 bits are in the processor's byte order
  size_t samples = 1;
  bool alpha = false;  ///< the sample after the colours is alpha
  /// Colours of a palette, R, G, B; one for each value of a sample.
  std::vector<std::array<uint8_t, 3>> palette;

  size_t colorSamples() const;
  size_t rowBytes(size_t pixelCount) const {
    return (pixelCount * samples * static_cast<size_t>(bits) + 7) / 8;
  }
};

/// Unpacks a row to four bytes for each pixel: R, G, B, A, or inks. `packed` has
/// layout.rowBytes(pixelCount) bytes. Values are scaled to bytes and rounded.
void unpackRow(const TIFFSampleLayout& layout, const uint8_t* packed, size_t pixelCount,
               uint8_t* out);
