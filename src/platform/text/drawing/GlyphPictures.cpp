#include "platform/text/drawing/GlyphPictures.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/context/CGContext.h"

namespace {

/// Pictures kept while one text is painted; more are decoded at each occurrence.
constexpr size_t kMaxPictures = 256;
/// Scaled pictures kept, 16 kilobytes each at most.
constexpr size_t kMaxScaled = 2048;
/// Positions of a glyph inside a pixel, in each direction.
constexpr double kSteps = 4;

/// A device coordinate in whole steps. Far outside everything it may be any.
int64_t steps(double v) {
  constexpr double kFarthest = 1 << 28;
  return std::llround(std::clamp(v, -kFarthest, kFarthest) * kSteps);
}

}  // namespace

const GlyphPictures::Picture& GlyphPictures::picture(const FontFace& face, uint32_t glyph) {
  const auto known = pictures_.find({&face, glyph});
  if (known != pictures_.end()) return known->second;
  if (pictures_.size() >= kMaxPictures) pictures_.clear();
  Picture made;
  if (const auto found = face.colorBitmap(glyph)) made = {decodeImage(found->png), found->rect};
  return pictures_.emplace(std::pair{&face, glyph}, std::move(made)).first->second;
}

std::optional<GlyphPictures::Placed> GlyphPictures::place(const FontFace& face, uint32_t glyph,
                                                          CGAffineTransform toDevice,
                                                          NSImageInterpolation interpolation) {
  constexpr auto kWhole = static_cast<int64_t>(kSteps);
  const int64_t x = steps(toDevice.tx);
  const int64_t y = steps(toDevice.ty);
  const int64_t column = x & (kWhole - 1);
  const int64_t row = y & (kWhole - 1);
  const auto moved = [&](Placed placed) {
    placed.x += static_cast<int32_t>((x - column) / kWhole);
    placed.y += static_cast<int32_t>((y - row) / kWhole);
    return placed;
  };
  const Key key{&face,      glyph,  toDevice.a, toDevice.b,   toDevice.c,
                toDevice.d, column, row,        interpolation};
  const auto known = scaled_.find(key);
  if (known != scaled_.end()) return moved(known->second);

  const Picture& whole = picture(face, glyph);
  if (whole.bitmap == nullptr) return std::nullopt;
  toDevice.tx = static_cast<double>(column) / kSteps;
  toDevice.ty = static_cast<double>(row) / kSteps;
  const NSRect exact = CGRectApplyAffineTransform(whole.rect, toDevice);
  if (!(NSWidth(exact) <= kLargestSide && NSHeight(exact) <= kLargestSide)) return std::nullopt;
  const NSRect box = NSIntegralRect(exact);
  const auto bitmap = NSBitmapImageRep::create(static_cast<int64_t>(NSWidth(box)),
                                               static_cast<int64_t>(NSHeight(box)));
  if (bitmap == nullptr) return std::nullopt;
  CGContext context(bitmap);
  context.setInterpolation(interpolation);
  context.concatenate({1, 0, 0, -1, -NSMinX(box), NSMaxY(box)});
  context.concatenate(toDevice);
  context.draw(*whole.bitmap, whole.rect);
  if (scaled_.size() >= kMaxScaled) scaled_.clear();
  const Placed placed{bitmap, static_cast<int32_t>(NSMinX(box)), static_cast<int32_t>(NSMinY(box))};
  return moved(scaled_.emplace(key, placed).first->second);
}
