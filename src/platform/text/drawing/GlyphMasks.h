#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>

#include "platform/graphics/pixels/coverage/AlphaMask.h"
#include "platform/graphics/pixels/coverage/PathRenderer.h"
#include "platform/text/TextLibraries.h"

/// Coverage of small glyphs, made once for all their occurrences in a text. Origins are rounded to
/// quarters of a pixel, which the eye cannot tell and the documents' platform does too.
class GlyphMasks {
 public:
  /// Glyphs whose em is higher than this on the device are drawn as paths.
  static constexpr double kLargestEm = 48;

  /// Whether the glyphs of a face under that transform (font units, y up, to device pixels; its
  /// translation does not count) are of the kind that masks are made for: small, on a horizontal
  /// baseline.
  static bool serves(const FontFace& face, const CGAffineTransform& toDevice);

  /// A mask and where it belongs.
  struct Placed {
    const AlphaMask* mask;  ///< valid until the next call of use()
    int32_t dx;
    int32_t dy;

    PixelBox box() const {
      const PixelBox& own = mask->box();
      return {own.x0 + dx, own.y0 + dy, own.x1 + dx, own.y1 + dy};
    }
  };

  /// The glyphs asked for from now on.
  void use(const FontFace& face, const CGAffineTransform& toDevice);
  /// The glyph with its origin at a device position; nothing when it is blank.
  std::optional<Placed> place(uint32_t glyph, NSPoint origin);

 private:
  struct Key {
    const FontFace* face;
    double a, b, c, d;
    auto operator<=>(const Key&) const = default;
  };
  using Masks = std::unordered_map<uint64_t, AlphaMask>;

  AlphaMask make(uint32_t glyph, NSPoint fraction);

  PathRenderer renderer_;
  std::map<Key, Masks> sets_;
  size_t made_ = 0;
  const FontFace* face_ = nullptr;
  CGAffineTransform toDevice_;
  Masks* current_ = nullptr;
};

/// Adds a mask to another one, cut to its box, as painting both one after the other would.
void addMask(const GlyphMasks::Placed& placed, AlphaMask& to);
