#include "platform/graphics/codecs/libraries/tiff/TIFFSamples.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/graphics/codecs/libraries/tiff/LabColors.h"

namespace {

/// 0 to 1 as a byte; what is no number is 0.
uint32_t byteOf(double value) {
  if (!(value > 0)) return 0;
  return static_cast<uint32_t>(std::lrint(std::min(value, 1.0) * 255));
}

/// IEEE 754 binary16, for numbers that are not negative.
double halfValue(uint16_t bits) {
  const int exponent = bits >> 10;
  const int fraction = bits & 0x3ff;
  if (bits >= 0x7c00) return bits == 0x7c00 ? 1 : 0;  // endless, no number, negative
  return exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(fraction + 0x400, exponent - 25);
}

/// Samples of one row, one after the other.
class SampleReader {
 public:
  SampleReader(const uint8_t* packed, const TIFFSampleLayout& layout)
      : packed_(packed),
        bits_(layout.bits),
        isWide_(layout.isFloat || layout.bits > 16),
        isFloat_(layout.isFloat) {}

  /// The largest value of a sample.
  uint32_t largest() const { return isWide_ ? 255 : (1U << bits_) - 1; }

  /// Samples of less than two bytes run from the high bits to the low ones.
  uint32_t next() {
    if (bits_ == 8) return *packed_++;
    if (isWide_) return wideSample();
    if (bits_ == 16) return take<uint16_t>();
    while (held_ < bits_) {
      bitBuffer_ = bitBuffer_ << 8 | *packed_++;
      held_ += 8;
    }
    held_ -= bits_;
    return bitBuffer_ >> held_ & ((1U << bits_) - 1);
  }

 private:
  template <class T>
  T take() {
    T value{};
    std::memcpy(&value, packed_, sizeof value);
    packed_ += sizeof value;
    return value;
  }

  /// What holds more than can be kept comes as bytes.
  uint32_t wideSample() {
    if (!isFloat_) return byteOf(take<uint32_t>() / 4294967295.0);
    if (bits_ == 16) return byteOf(halfValue(take<uint16_t>()));
    return byteOf(bits_ == 32 ? take<float>() : take<double>());
  }

  const uint8_t* packed_;
  int bits_;
  bool isWide_;
  bool isFloat_;
  uint32_t bitBuffer_ = 0;
  int held_ = 0;
};

class PixelUnpacker {
 public:
  PixelUnpacker(const TIFFSampleLayout& layout, const uint8_t* packed)
      : layout_(layout), reader_(packed, layout), max_(reader_.largest()) {}

  /// Answers the alpha.
  uint8_t next(uint8_t* out) {
    uint32_t values[4] = {};
    for (size_t i = 0; i < layout_.samples; ++i) {
      const uint32_t value = reader_.next();
      if (i < 4) values[i] = value;
      if (i == layout_.colorSamples() && layout_.alpha != TIFFAlpha::none) alpha_ = byte(value);
    }
    setColors(values, out);
    return alpha_;
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
      case TIFFColor::signedLab:
      case TIFFColor::iccLab:
        setLab(values, out);
        break;
      case TIFFColor::cmyk:
        for (int c = 0; c < 4; ++c) out[c] = ink(values[c]);
        return;
    }
    out[3] = alpha_;
  }

  /// TIFF 6.0, section 23, and its supplement for the ICC's encoding, which ends at 0xff00.
  void setLab(const uint32_t* values, uint8_t* out) const {
    const bool isSigned = layout_.color == TIFFColor::signedLab;
    const double unit = max_ == 255 ? 1 : 256;
    const double lightest = max_ == 255 ? 255 : isSigned ? 65535 : 65280;
    const auto chroma = [&](uint32_t value) {
      const double shifted = isSigned ? static_cast<double>(value) : value - 128 * unit;
      return (isSigned && value > max_ / 2 ? shifted - max_ - 1 : shifted) / unit;
    };
    setLabColor({values[0] / lightest * 100, chroma(values[1]), chroma(values[2])}, out);
  }

  uint8_t ink(uint32_t value) const {
    const uint32_t full = byte(value);
    const bool isMixed = layout_.alpha == TIFFAlpha::premultiplied && alpha_ > 0;
    if (!isMixed) return static_cast<uint8_t>(full);
    return static_cast<uint8_t>(std::min(255U, (full * 255 + alpha_ / 2U) / alpha_));
  }

  const TIFFSampleLayout& layout_;
  SampleReader reader_;
  uint32_t max_;
  uint8_t alpha_ = 255;
};

}  // namespace

size_t TIFFSampleLayout::colorSamples() const {
  if (color == TIFFColor::cmyk) return 4;
  const bool isGray = color == TIFFColor::whiteIsZero || color == TIFFColor::blackIsZero;
  return isGray || color == TIFFColor::palette ? 1 : 3;
}

void unpackRow(const TIFFSampleLayout& layout, const uint8_t* packed, size_t pixelCount,
               uint8_t* out, uint8_t* alpha) {
  const bool hasAlpha = layout.alpha != TIFFAlpha::none;
  const bool asTheyAre =
      layout.bits == 8 && layout.samples == 4 &&
      (layout.color == TIFFColor::cmyk || (layout.color == TIFFColor::rgb && hasAlpha));
  if (asTheyAre) {
    std::memcpy(out, packed, pixelCount * 4);
    return;
  }
  PixelUnpacker unpacker(layout, packed);
  for (size_t i = 0; i < pixelCount; ++i) {
    const uint8_t its = unpacker.next(out + i * 4);
    if (alpha != nullptr) alpha[i] = its;
  }
}
