#include "platform/graphics/codecs/libraries/tiff/TIFFSamples.h"

#include <algorithm>
#include <cstring>

namespace {

/// Samples of one row, one after the other.
class SampleReader {
 public:
  SampleReader(const uint8_t* packed, int bits) : packed_(packed), bits_(bits) {}

  /// Samples of less than two bytes run from the high bits to the low ones.
  uint32_t next() {
    if (bits_ == 8) return *packed_++;
    if (bits_ == 16) {
      uint16_t value = 0;
      std::memcpy(&value, packed_, 2);
      packed_ += 2;
      return value;
    }
    while (held_ < bits_) {
      bitBuffer_ = bitBuffer_ << 8 | *packed_++;
      held_ += 8;
    }
    held_ -= bits_;
    return bitBuffer_ >> held_ & ((1U << bits_) - 1);
  }

 private:
  const uint8_t* packed_;
  int bits_;
  uint32_t bitBuffer_ = 0;
  int held_ = 0;
};

class PixelUnpacker {
 public:
  PixelUnpacker(const TIFFSampleLayout& layout, const uint8_t* packed)
      : layout_(layout), reader_(packed, layout.bits), max_((1U << layout.bits) - 1) {}

  void next(uint8_t* out) {
    uint32_t values[4] = {};
    for (size_t i = 0; i < layout_.samples; ++i) {
      const uint32_t value = reader_.next();
      if (i < 4) values[i] = value;
      if (i == layout_.colorSamples() && layout_.alpha) alpha_ = byte(value);
    }
    setColors(values, out);
  }

 private:
  uint8_t byte(uint32_t value) const {
    return static_cast<uint8_t>((value * 255 + max_ / 2) / max_);
  }

  void setColors(const uint32_t* values, uint8_t* out) const {
    switch (layout_.color) {
      case TIFFColor::whiteIsZero:
        std::fill_n(out, 3, byte(max_ - values[0]));
        break;
      case TIFFColor::blackIsZero:
        std::fill_n(out, 3, byte(values[0]));
        break;
      case TIFFColor::palette:
        std::copy_n(layout_.palette[values[0]].data(), 3, out);
        break;
      case TIFFColor::rgb:
        for (int c = 0; c < 3; ++c) out[c] = byte(values[c]);
        break;
      case TIFFColor::cmyk:
        for (int c = 0; c < 4; ++c) out[c] = byte(values[c]);
        return;
    }
    out[3] = alpha_;
  }

  const TIFFSampleLayout& layout_;
  SampleReader reader_;
  uint32_t max_;
  uint8_t alpha_ = 255;
};

}  // namespace

size_t TIFFSampleLayout::colorSamples() const {
  if (color == TIFFColor::cmyk) return 4;
  return color == TIFFColor::rgb ? 3 : 1;
}

void unpackRow(const TIFFSampleLayout& layout, const uint8_t* packed, size_t pixelCount,
               uint8_t* out) {
  const bool asTheyAre =
      layout.bits == 8 && layout.samples == 4 &&
      (layout.color == TIFFColor::cmyk || (layout.color == TIFFColor::rgb && layout.alpha));
  if (asTheyAre) {
    std::memcpy(out, packed, pixelCount * 4);
    return;
  }
  PixelUnpacker unpacker(layout, packed);
  for (size_t i = 0; i < pixelCount; ++i) unpacker.next(out + i * 4);
}
