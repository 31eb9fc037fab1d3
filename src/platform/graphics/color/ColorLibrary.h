#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

// What colours and pictures take from the colour management library, which lives in a module: most
// documents hold no profile, and need not load it.

/// How the samples of a colour are stored. Bytes are full at 255, numbers at 1, inks as numbers at
/// 100.
enum class SampleForm : uint8_t {
  grayBytes,
  rgbaBytes,
  cmykBytes,
  grayNumbers,
  rgbNumbers,
  cmykNumbers
};

/// From one ICC profile to sRGB: relative colorimetric with black point compensation.
class ColorTransform {
 public:
  virtual ~ColorTransform() = default;
  /// Converts `count` colours: bytes to R, G, B, A, whose alpha is written for rgbaBytes only, and
  /// then as it was; numbers (double) to R, G, B. `from` may be `to` where both are of four bytes.
  /// With bytes not to be called by two threads at once.
  virtual void convert(const void* from, void* to, size_t count) const = 0;
};

class ColorLibrary {
 public:
  virtual ~ColorLibrary() = default;
  /// See openColorTransform.
  virtual std::unique_ptr<ColorTransform> open(std::span<const uint8_t> icc,
                                               SampleForm form) const = 0;
};

/// Null for a profile that is malformed or of another colour space than the samples, and without
/// the library. Throws std::bad_alloc.
std::unique_ptr<ColorTransform> openColorTransform(std::span<const uint8_t> icc, SampleForm form);

/// Name of the module's one exported function, which answers its library.
inline constexpr const char* kColorLibraryEntry = "paintColorLibrary";
