#pragma once

#include <set>
#include <shared_mutex>
#include <string>
#include <tuple>
#include <unordered_map>

#include "platform/text/libraries/FontFile.h"

/// A face shaped and outlined by HarfBuzz.
class ShapedFace : public FontFace {
 public:
  explicit ShapedFace(HbFont font);

  const FaceMetrics& metrics() const override { return metrics_; }
  uint32_t glyphForCharacter(char32_t character) const override;
  bool hasColorBitmaps() const override { return hasColorBitmaps_; }
  const PathData& outline(uint32_t glyph) const override;
  std::optional<GlyphBitmap> colorBitmap(uint32_t glyph) const override;
  void shape(const ShapingRun& run, std::vector<ShapedGlyph>& glyphs) const override;

 private:
  using ShapingKind = std::tuple<uint32_t, TextDirection, Kerning, Ligatures, std::string>;
  void requireTables(const ShapingRun& run) const;

  HbFont font_;
  FaceMetrics metrics_;
  bool hasColorBitmaps_;
  mutable std::shared_mutex outlinesMutex_;
  mutable std::unordered_map<uint32_t, PathData> outlines_;
  mutable std::shared_mutex shapedMutex_;
  mutable std::set<ShapingKind> shaped_;  ///< what runs were shaped as before
};
