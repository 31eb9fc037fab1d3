#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <tuple>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/GraphicsState.h"
#include "platform/graphics/pixels/PixelBox.h"
#include "platform/text/TextLibraries.h"

/// Coloured glyphs as the device shows them: decoded once, and scaled once for each of the
/// positions that masks have too (see GlyphMasks).
class GlyphPictures {
 public:
  /// Glyphs that are larger on the device are drawn from their pictures each time.
  static constexpr double kLargestSide = 64;

  /// A picture in a font, in the font's own size; a null bitmap where the glyph has none.
  struct Picture {
    std::shared_ptr<NSBitmapImageRep> bitmap;
    NSRect rect;  ///< font units, y up from the baseline
  };
  const Picture& picture(const FontFace& face, uint32_t glyph);

  /// A scaled picture and the device pixel of its upper left corner.
  struct Placed {
    std::shared_ptr<const NSBitmapImageRep> bitmap;
    int32_t x;
    int32_t y;

    PixelBox box() const {
      return {x, y, x + static_cast<int32_t>(bitmap->pixelsWide()),
              y + static_cast<int32_t>(bitmap->pixelsHigh())};
    }
  };
  /// The glyph under a transform from font units to device pixels; nothing for a glyph that has no
  /// picture or a larger one.
  std::optional<Placed> place(const FontFace& face, uint32_t glyph, CGAffineTransform toDevice,
                              NSImageInterpolation interpolation);

 private:
  using Key = std::tuple<const FontFace*, uint32_t, double, double, double, double, int64_t,
                         int64_t, NSImageInterpolation>;

  std::map<std::pair<const FontFace*, uint32_t>, Picture> pictures_;
  std::map<Key, Placed> scaled_;
};
