#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "platform/graphics/context/GraphicsRecorder.h"
#include "platform/text/layout/TextLayout.h"

/// A run of glyphs with all that is known of it: face, style, glyphs, positions, text.
class RecordedGlyphs final : public GlyphRun {
 public:
  /// `run` is one of the layout; the start of its baseline is at `origin`, in a user space with y
  /// running down.
  RecordedGlyphs(std::shared_ptr<const TextLayout> layout, const PlacedRun& run, NSPoint origin)
      : layout_(std::move(layout)), run_(run), origin_(origin) {}

  const TextLayout& layout() const { return *layout_; }
  const PlacedRun& run() const { return run_; }
  NSPoint origin() const { return origin_; }

  void paint(CGContext& context) const override;
  std::u16string_view text() const override {
    return std::u16string_view(layout_->text->text).substr(run_.start, run_.length);
  }

 private:
  std::shared_ptr<const TextLayout> layout_;
  PlacedRun run_;
  NSPoint origin_;
};
