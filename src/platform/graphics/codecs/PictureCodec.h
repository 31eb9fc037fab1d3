#pragma once

#include <cstdint>
#include <new>
#include <span>
#include <vector>

#include "platform/machine/AddressSpace.h"

// Between picture files and bitmaps. A codec reads a file and hands four bytes for each pixel to a
// target, which owns the memory and finishes the pixels: profile, premultiplication, orientation.
// Codecs know nothing of bitmaps, so that those that few documents need can live in modules.

/// What the four bytes of a pixel are when the codec delivers them.
enum class PixelLayout : uint8_t {
  opaqueRGB,  ///< red, green, blue, 255
  straightRGBA,
  premultipliedRGBA,
  cmyk,       ///< inks, 255 is full ink
  cmykAlpha,  ///< inks, whose alpha comes apart: finishInks
};

/// What the file's own samples are, and so which profiles fit them. Grey pixels are delivered with
/// three equal colours.
enum class ColorModel : uint8_t { gray, rgb, cmyk };

struct PictureInfo {
  int64_t width = 0;
  int64_t height = 0;
  PixelLayout layout = PixelLayout::opaqueRGB;
  ColorModel model = ColorModel::rgb;
  /// As Exif counts orientations: 1 upright, 2 mirrored, 3 upside down ... 8. Others count as 1.
  int orientation = 1;
  // Both may be empty, and are read during the call of begin only.
  std::span<const uint8_t> profile;  ///< ICC profile of the samples
  std::span<const uint8_t> exif;  ///< Exif block; its orientation counts instead of the one above
};

class PictureTarget {
 public:
  virtual ~PictureTarget() = default;

  /// Memory for the picture, all zero: rows of 4 * width bytes, top first, without gaps. Null when
  /// a side is not positive, when the picture is larger than a canvas may be, or when there is no
  /// memory; the codec then gives up. Called at most once.
  virtual uint8_t* begin(const PictureInfo& info) = 0;

  /// Rows [first, end) hold their final samples. Each row is finished once or never; those that
  /// never are must have been left zero.
  virtual void finish(int64_t first, int64_t end) = 0;

  /// The same for inks with alpha: `alpha` has a byte for each pixel of the rows. The inks are
  /// straight.
  virtual void finishInks(int64_t first, int64_t end, const uint8_t* alpha) = 0;

  /// The codec was refused memory; the picture is not to be had. May be called at any time.
  virtual void lackMemory() noexcept = 0;
};

/// Premultiplied R, G, B, A to encode.
struct PictureSource {
  int64_t width = 0;
  int64_t height = 0;
  const uint8_t* pixels = nullptr;
  bool hasAlpha = true;
  double dotsPerInch = 0;  ///< 0 when nobody says; formats without a place for it leave it out
};

/// One file format. All functions may be called from any thread.
class PictureCodec {
 public:
  virtual ~PictureCodec() = default;

  /// Decodes as much of the file as is there and sound: a truncated picture leaves rows
  /// unfinished, a file that is none leaves the target untouched. Throws nothing: the target learns
  /// that memory was lacking.
  virtual void decode(std::span<const uint8_t> file, PictureTarget& target) const = 0;

  /// Makes the picture a file, which stays empty when the format cannot hold the picture.
  /// `quality` (0 to 1) is for formats that lose some; translucent pixels of formats without alpha
  /// appear over black. Answers false when there is no memory.
  virtual bool encode(const PictureSource& picture, double quality,
                      std::vector<uint8_t>& file) const = 0;
};

/// Calls what may throw std::bad_alloc, as a codec's functions may not; false when it did.
template <class Call>
bool withinMemory(Call call) noexcept {
  try {
    prepareForExceptions();
    call();
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

/// Name of the one function that each codec module exports, which answers its codec.
inline constexpr const char* kPictureCodecEntry = "paintPictureCodec";
