#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// What the samples of a pixel mean, in the order in which they are stored. Both kinds of L*a*b*
/// have 8 or 16 bits; they store a* and b* with a sign or 128 too large.
enum class TIFFColor : uint8_t { whiteIsZero, blackIsZero, rgb, palette, cmyk, signedLab, iccLab };

enum class TIFFAlpha : uint8_t { none, straight, premultiplied };

/// How a row of pixels is packed.
struct TIFFSampleLayout {
  TIFFColor color = TIFFColor::blackIsZero;
  /// 1 to 16, or 32, for each sample; 16, 32 or 64 for floating point, where 0 to 1 is the whole
  /// range. Samples of 16 bits and more are in the processor's byte order.
  int bits = 8;
  bool isFloat = false;
  size_t samples = 1;
  TIFFAlpha alpha = TIFFAlpha::none;  ///< of the sample after the colours
  /// Colours of a palette, R, G, B; one for each value of a sample.
  std::vector<std::array<uint8_t, 3>> palette;

  size_t colorSamples() const;
  size_t rowBytes(size_t pixelCount) const {
    return (pixelCount * samples * static_cast<size_t>(bits) + 7) / 8;
  }
};

/// Unpacks a row to four bytes for each pixel: R, G, B, A, or inks. `packed` has
/// layout.rowBytes(pixelCount) bytes. Values are scaled to bytes and rounded; L*a*b* becomes sRGB,
/// relative to its white. For inks with alpha, `alpha` gets that of every pixel and the inks become
/// straight; it is null for everything else.
void unpackRow(const TIFFSampleLayout& layout, const uint8_t* packed, size_t pixelCount,
               uint8_t* out, uint8_t* alpha);
