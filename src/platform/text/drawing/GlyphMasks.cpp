#include "platform/text/drawing/GlyphMasks.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/graphics/pixels/PixelMath.h"
#include "platform/graphics/pixels/paint/MaskSink.h"
#include "platform/machine/TargetClones.h"

namespace {

/// Positions of a glyph inside a pixel, in each direction.
constexpr int64_t kSteps = 4;
/// Distance from a glyph's origin that masks may reach, in ems: further ones are cut there.
constexpr int32_t kReach = static_cast<int32_t>(16 * GlyphMasks::kLargestEm);
/// Masks kept at a time, a few kilobytes each at most but for very wide glyphs.
constexpr size_t kMaxMasks = 8192;

/// A device coordinate in whole steps. Far outside everything it may be any.
int64_t steps(double v) {
  constexpr double kFarthest = 1 << 28;
  return std::llround(std::clamp(v, -kFarthest, kFarthest) * static_cast<double>(kSteps));
}

TARGET_CLONES void addRow(uint8_t* to, const uint8_t* row, int32_t n) {
  for (int32_t i = 0; i < n; ++i) {
    const uint32_t a = to[i];
    const uint32_t b = row[i];
    to[i] = static_cast<uint8_t>(a + b - divideBy255(a * b));
  }
}

}  // namespace

bool GlyphMasks::serves(const FontFace& face, const CGAffineTransform& toDevice) {
  const double em = face.metrics().unitsPerEm;
  const double reach = std::max(std::abs(toDevice.a), std::abs(toDevice.c) + std::abs(toDevice.d));
  return toDevice.b == 0 && em * reach <= kLargestEm;
}

void GlyphMasks::use(const FontFace& face, const CGAffineTransform& toDevice) {
  face_ = &face;
  toDevice_ = toDevice;
  if (made_ >= kMaxMasks) {
    sets_.clear();
    made_ = 0;
  }
  current_ = &sets_[{&face, toDevice.a, toDevice.b, toDevice.c, toDevice.d}];
}

AlphaMask GlyphMasks::make(uint32_t glyph, NSPoint fraction) {
  ++made_;
  CGAffineTransform place = toDevice_;
  place.tx = fraction.x;
  place.ty = fraction.y;
  const PathData& outline = face_->outline(glyph);
  const PixelBox box = fillBox(outline, place, {-kReach, -kReach, kReach, kReach});
  AlphaMask mask(box);
  if (mask.box().empty()) return mask;
  MaskSink sink(mask, nullptr);
  renderer_.fillPath(outline, WindingRule::nonZero, place, Antialias::on, ClipRegion(box), sink);
  return mask;
}

std::optional<GlyphMasks::Placed> GlyphMasks::place(uint32_t glyph, NSPoint origin) {
  const int64_t x = steps(origin.x);
  const int64_t y = steps(origin.y);
  const auto column = static_cast<uint64_t>(x & (kSteps - 1));
  const auto row = static_cast<uint64_t>(y & (kSteps - 1));
  const uint64_t key = (uint64_t{glyph} * kSteps + row) * kSteps + column;
  auto found = current_->find(key);
  if (found == current_->end()) {
    auto made =
        make(glyph, {static_cast<double>(column) / kSteps, static_cast<double>(row) / kSteps});
    found = current_->emplace(key, std::move(made)).first;
  }
  const AlphaMask& mask = found->second;
  if (mask.box().empty()) return std::nullopt;
  return Placed{&mask, static_cast<int32_t>(x >> 2), static_cast<int32_t>(y >> 2)};
}

void addMask(const GlyphMasks::Placed& placed, AlphaMask& to) {
  const PixelBox whole = placed.box();
  const PixelBox box = intersection(whole, to.box());
  for (int32_t y = box.y0; y < box.y1; ++y) {
    addRow(to.row(y) + (box.x0 - to.box().x0),
           placed.mask->row(y - placed.dy) + (box.x0 - whole.x0),
           static_cast<int32_t>(box.width()));
  }
}
