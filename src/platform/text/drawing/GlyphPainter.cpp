#include "platform/text/drawing/GlyphPainter.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <unordered_map>

#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/color/PaintComponents.h"
#include "platform/graphics/pixels/outline/PathBounds.h"
#include "platform/graphics/pixels/paint/SpanKernels.h"
#include "platform/text/drawing/RecordedGlyphs.h"
#include "platform/text/layout/ShapedItem.h"

namespace {

/// Strength of synthetic bold faces: the outline is widened by a line of this part of the size.
constexpr double kBoldWidth = 1.0 / 24;
/// The platform's limit for the corners of outlined text.
constexpr double kMiterLimit = 10;

RGBAColor colorOr(const NSColor* color, const RGBAColor& other) {
  return color == nullptr ? other : paintComponents(*color);
}

/// Glyph space (font units, y up) to points with y down, about the glyph's origin.
CGAffineTransform glyphTransform(const ResolvedFont& font, const TextStyle& style) {
  const CGAffineTransform& m = style.font->matrix();
  const double points = style.font->pointSize() * font.size / font.face->metrics().unitsPerEm;
  // The font's own matrix comes first; its a is part of the horizontal scale.
  const double x = points * horizontalScale(font, style);
  const double stretch = m.a == 0 ? 0 : x / m.a;
  const double slant = font.slant + style.obliqueness;
  return {x + slant * points * m.b,
          -points * m.b,
          stretch * m.c + slant * points * m.d,
          -points * m.d,
          0,
          0};
}

double strokeWidth(const TextStyle& style) {
  return std::abs(style.strokeWidth) / 100 * style.font->pointSize();
}

}  // namespace

/// What the glyphs of a run have in common.
struct GlyphPainter::GlyphPaint {
  CGAffineTransform transform;
  RGBAColor fill;
  RGBAColor stroke;
  StrokeStyle line;     ///< of the outline; a width of 0 means none
  StrokeStyle bold;     ///< of a synthetic bold face, in the fill colour; likewise
  double pictureAlpha;  ///< pictures have no outline: where only that is drawn they are shown whole

  GlyphPaint(const ResolvedFont& font, const TextStyle& style)
      : transform(glyphTransform(font, style)) {
    const RGBAColor foreground = colorOr(style.foreground.get(), {0, 0, 0, 1});
    stroke = colorOr(style.strokeColor.get(), foreground);
    fill = foreground;
    pictureAlpha = foreground.alpha;
    if (style.strokeWidth > 0) fill.alpha = 0;
    line.width = stroke.alpha > 0 ? strokeWidth(style) : 0;
    line.miterLimit = kMiterLimit;
    bold.width = 0;
    if (font.bold == SyntheticBold::yes && style.strokeWidth <= 0) {
      bold.width = style.font->pointSize() * kBoldWidth;
    }
    bold.join = LineJoin::round;
  }

  bool fillsOnly() const { return line.width == 0 && bold.width == 0; }
};

void GlyphPainter::record(const TextLayout& layout, const PlacedRun& run, NSPoint origin) {
  if (recordedFrom_ != &layout) {
    recorded_ = std::make_shared<const TextLayout>(layout);
    recordedFrom_ = &layout;
  }
  context_.record(std::make_shared<RecordedGlyphs>(recorded_, run, origin));
}

void GlyphPainter::paint(const TextLayout& layout, const PlacedRun& run, NSPoint origin) {
  if (run.font->face == nullptr) return;
  if (context_.recorder() != nullptr) return record(layout, run, origin);
  const FontFace& face = *run.font->face;
  const GlyphPaint pen(*run.font, *run.style);
  const Glyphs glyphs = Glyphs(layout.glyphs).subspan(run.firstGlyph, run.glyphCount);
  context_.setFillColor(pen.fill);
  if (!face.hasColorBitmaps() && pen.fillsOnly() && context_.state().antialias) {
    const CGAffineTransform toDevice =
        CGAffineTransformConcat(pen.transform, context_.deviceTransform());
    if (GlyphMasks::serves(face, toDevice)) {
      masks_.use(face, toDevice);
      return paintMasks(glyphs, pen, origin);
    }
  }
  if (face.hasColorBitmaps()) return paintPictures(face, glyphs, pen, origin);
  for (const PlacedGlyph& g : glyphs) {
    const NSPoint at{origin.x + static_cast<double>(g.x), origin.y - static_cast<double>(g.y)};
    paintOutline(face.outline(g.glyph), pen, at);
  }
}

void GlyphPainter::paintMasks(Glyphs glyphs, const GlyphPaint& pen, NSPoint origin) {
  if (!(pen.fill.alpha > 0)) return;
  const CGAffineTransform device = context_.deviceTransform();
  PixelBox all;
  placed_.clear();
  for (const PlacedGlyph& g : glyphs) {
    const NSPoint at{origin.x + static_cast<double>(g.x), origin.y - static_cast<double>(g.y)};
    const auto placed = masks_.place(g.glyph, CGPointApplyAffineTransform(at, device));
    if (!placed) continue;
    placed_.push_back(*placed);
    all = unionBox(all, placed->box());
  }
  const bool opaque = pen.fill.alpha * context_.state().alpha >= 1;
  all = intersection(all, context_.state().clip.box());
  if (!opaque) {
    // Where glyphs overlap, a translucent colour shows twice.
    for (const GlyphMasks::Placed& p : placed_) context_.fill(*p.mask, p.dx, p.dy);
    return;
  }
  AlphaMask together(all);
  for (const GlyphMasks::Placed& p : placed_) addMask(p, together);
  context_.fill(together, 0, 0);
}

void GlyphPainter::paintOutline(const PathData& outline, const GlyphPaint& pen, NSPoint at) {
  if (outline.empty()) return;
  CGAffineTransform place = pen.transform;
  place.tx = at.x;
  place.ty = at.y;
  if (pen.fillsOnly()) {
    if (pen.fill.alpha > 0) {
      const CGContextStateScope state(context_);
      context_.concatenate(place);
      context_.fill(outline, WindingRule::nonZero);
    }
    return;
  }
  // In the text's space: what the font's matrix does to shapes it does not do to pens.
  PathData path = outline;
  for (NSPoint& p : path.points) p = CGPointApplyAffineTransform(p, place);
  if (pen.fill.alpha > 0) context_.fill(path, WindingRule::nonZero);
  if (pen.fill.alpha > 0 && pen.bold.width > 0) {
    context_.setStrokeColor(pen.fill);
    context_.stroke(path, pen.bold);
  }
  if (pen.line.width > 0) {
    context_.setStrokeColor(pen.stroke);
    context_.stroke(path, pen.line);
  }
}

void GlyphPainter::paintPictures(const FontFace& face, Glyphs glyphs, const GlyphPaint& pen,
                                 NSPoint origin) {
  if (!(pen.pictureAlpha > 0)) return;
  const CGAffineTransform device = context_.deviceTransform();
  const bool nearest = context_.state().interpolation == NSImageInterpolation::none;
  std::vector<GlyphPictures::Placed> placed;
  for (const PlacedGlyph& g : glyphs) {
    const NSPoint at{origin.x + static_cast<double>(g.x), origin.y - static_cast<double>(g.y)};
    CGAffineTransform place = pen.transform;
    place.tx = at.x;
    place.ty = at.y;
    const auto small = nearest
                           ? std::nullopt
                           : pictures_.place(face, g.glyph, CGAffineTransformConcat(place, device),
                                             context_.state().interpolation);
    if (small) {
      placed.push_back(*small);
    } else {
      paintPicture(face, g.glyph, pen, at);
    }
  }
  const CGContextStateScope state(context_);
  context_.setAlpha(context_.state().alpha * pen.pictureAlpha);
  const bool opaque = context_.state().alpha >= 1 &&
                      context_.state().operation == NSCompositingOperation::sourceOver;
  if (opaque) return paintTogether(placed);
  // Where glyphs overlap, translucent ones show twice.
  for (const GlyphPictures::Placed& p : placed) context_.drawInDeviceSpace(*p.bitmap, p.x, p.y);
}

/// In one operation, for what is inside the clip.
void GlyphPainter::paintTogether(std::span<const GlyphPictures::Placed> placed) {
  PixelBox all;
  for (const GlyphPictures::Placed& p : placed) all = unionBox(all, p.box());
  all = intersection(all, context_.state().clip.box());
  if (all.empty()) return;
  const auto together = NSBitmapImageRep::create(all.width(), all.height());
  if (together == nullptr) return;
  for (const GlyphPictures::Placed& p : placed) {
    const PixelBox box = intersection(p.box(), all);
    for (int32_t y = box.y0; y < box.y1; ++y) {
      auto* to = reinterpret_cast<uint32_t*>(together->writableRows(y - all.y0, y - all.y0 + 1)) +
                 (box.x0 - all.x0);
      const auto* from = reinterpret_cast<const uint32_t*>(p.bitmap->row(y - p.y)) + (box.x0 - p.x);
      overRow(to, static_cast<int32_t>(box.width()), from, 255);
    }
  }
  context_.drawInDeviceSpace(*together, all.x0, all.y0);
}

void GlyphPainter::paintPicture(const FontFace& face, uint32_t glyph, const GlyphPaint& pen,
                                NSPoint at) {
  const GlyphPictures::Picture& shown = pictures_.picture(face, glyph);
  if (shown.bitmap == nullptr) return;
  CGAffineTransform place = pen.transform;
  place.tx = at.x;
  place.ty = at.y;
  const CGContextStateScope state(context_);
  context_.concatenate(place);
  context_.setAlpha(context_.state().alpha * pen.pictureAlpha);
  context_.draw(*shown.bitmap, shown.rect);
}

NSRect glyphBounds(const TextLayout& layout, const PlacedRun& run) {
  if (run.font->face == nullptr) return NSZeroRect;
  const FontFace& face = *run.font->face;
  const CGAffineTransform transform = glyphTransform(*run.font, *run.style);
  // A miter reaches beyond its line by the limit, in half widths.
  const double reach =
      strokeWidth(*run.style) / 2 * kMiterLimit + run.style->font->pointSize() * kBoldWidth;
  NSRect all = NSZeroRect;
  for (const PlacedGlyph& g : std::span(layout.glyphs).subspan(run.firstGlyph, run.glyphCount)) {
    std::optional<NSRect> box;
    if (!face.hasColorBitmaps()) {
      box = controlPointBounds(face.outline(g.glyph));
    } else if (const auto found = face.colorBitmap(g.glyph)) {
      box = found->rect;
    }
    if (!box) continue;
    CGAffineTransform place = transform;
    place.tx = static_cast<double>(g.x);
    place.ty = -static_cast<double>(g.y);
    all = NSUnionRect(all, CGRectApplyAffineTransform(*box, place));
  }
  return NSIsEmptyRect(all) ? all : NSInsetRect(all, -reach, -reach);
}

std::optional<InkHeight> inkHeight(const TextLayout& layout, const PlacedRun& run) {
  if (run.font->face == nullptr) return std::nullopt;
  const FontFace& face = *run.font->face;
  const CGAffineTransform transform = glyphTransform(*run.font, *run.style);
  double reach = strokeWidth(*run.style) / 2;
  if (run.font->bold == SyntheticBold::yes) {
    reach = std::max(reach, run.style->font->pointSize() * kBoldWidth / 2);
  }
  std::unordered_map<uint32_t, std::optional<Extent>> known;
  const auto extentOf = [&](uint32_t glyph) -> std::optional<Extent> {
    if (!face.hasColorBitmaps()) {
      return pathExtentAlong(face.outline(glyph), {transform.b, transform.d});
    }
    const auto bitmap = face.colorBitmap(glyph);
    if (!bitmap) return std::nullopt;
    const NSRect box = CGRectApplyAffineTransform(bitmap->rect, transform);
    return Extent{NSMinY(box), NSMaxY(box)};
  };
  std::optional<InkHeight> all;
  for (const PlacedGlyph& g : std::span(layout.glyphs).subspan(run.firstGlyph, run.glyphCount)) {
    const auto [entry, isNew] = known.try_emplace(g.glyph);
    if (isNew) entry->second = extentOf(g.glyph);
    if (!entry->second) continue;
    const double y = static_cast<double>(g.y);
    const InkHeight ink{reach + y - entry->second->min, reach - y + entry->second->max};
    all = all ? InkHeight{std::max(all->above, ink.above), std::max(all->below, ink.below)} : ink;
  }
  return all;
}
