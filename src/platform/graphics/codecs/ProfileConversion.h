#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "platform/graphics/codecs/PictureCodec.h"
#include "platform/graphics/color/ColorLibrary.h"

/// Pixels of an ICC profile to sRGB: relative colorimetric with black point compensation. Not to be
/// used by two threads at once.
class ProfileConversion {
 public:
  /// What one takes at most, with the library's tables.
  static constexpr size_t kBytes = size_t{1} << 20;

  /// Null for no profile, one that is malformed or made for another model, and one whose colours
  /// are those of sRGB already. Throws std::bad_alloc.
  static std::unique_ptr<ProfileConversion> create(std::span<const uint8_t> icc, ColorModel model);

  /// Converts pixels in place: R, G, B keep their fourth byte (greys are read from the first), inks
  /// become opaque R, G, B, A.
  void convert(uint8_t* pixels, size_t count) const;

 private:
  ProfileConversion(ColorModel model, std::unique_ptr<ColorTransform> transform)
      : model_(model), transform_(std::move(transform)) {}
  bool changesNothing() const;
  void tabulateGreys();

  ColorModel model_;
  std::unique_ptr<ColorTransform> transform_;
  std::array<std::array<uint8_t, 4>, 256> greys_{};
};
