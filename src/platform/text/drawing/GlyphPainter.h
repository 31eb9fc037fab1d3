#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/graphics/context/CGContext.h"
#include "platform/text/drawing/GlyphMasks.h"
#include "platform/text/drawing/GlyphPictures.h"
#include "platform/text/layout/TextLayout.h"

/// Paints the glyphs of laid-out runs. The context's user space has y running down, as laid-out
/// text has: a context is y up, so the caller turns it over first.
///
/// Outlines are filled by the non-zero rule with the foreground colour; a stroke width is in
/// percent of the font's size, above 0 for the outline alone, below 0 for the outline on top of the
/// fill. Coloured glyphs are pictures as opaque as the foreground colour and have no outline.
class GlyphPainter {
 public:
  /// The context must outlive the painter.
  explicit GlyphPainter(CGContext& context) : context_(context) {}

  /// Paints the run's glyphs with the start of its baseline at `origin`.
  void paint(const TextLayout& layout, const PlacedRun& run, NSPoint origin);

 private:
  struct GlyphPaint;

  using Glyphs = std::span<const PlacedGlyph>;

  /// Small filled glyphs, through masks.
  void paintMasks(Glyphs glyphs, const GlyphPaint& pen, NSPoint origin);
  /// Coloured glyphs, small ones through pictures of their size.
  void paintPictures(const FontFace& face, Glyphs glyphs, const GlyphPaint& pen, NSPoint origin);
  void paintTogether(std::span<const GlyphPictures::Placed> placed);
  void paintPicture(const FontFace& face, uint32_t glyph, const GlyphPaint& pen, NSPoint at);
  void paintOutline(const PathData& outline, const GlyphPaint& pen, NSPoint at);

  void record(const TextLayout& layout, const PlacedRun& run, NSPoint origin);

  CGContext& context_;
  std::shared_ptr<const TextLayout> recorded_;  ///< a copy of the last layout that was recorded
  const TextLayout* recordedFrom_ = nullptr;
  GlyphMasks masks_;
  std::vector<GlyphMasks::Placed> placed_;
  GlyphPictures pictures_;
};

/// The box around a run's glyphs with their strokes, y down from the start of its baseline; empty
/// when it shows nothing.
NSRect glyphBounds(const TextLayout& layout, const PlacedRun& run);

/// How far a run's glyphs with their strokes reach above and below its baseline, points; negative
/// where they do not reach it. Nothing for a run that shows nothing.
struct InkHeight {
  double above = 0;
  double below = 0;
};
std::optional<InkHeight> inkHeight(const TextLayout& layout, const PlacedRun& run);
