#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/layout/StyledText.h"

// A text set in lines. Coordinates are points from the container's top left corner, y down; the
// offsets of single glyphs are y up.

/// A glyph at an offset from its run's origin on the baseline.
struct PlacedGlyph {
  uint32_t glyph = 0;
  float x = 0;
  float y = 0;
};

/// Glyphs of one face and style, side by side in a line.
struct PlacedRun {
  const ResolvedFont* font = nullptr;
  const TextStyle* style = nullptr;
  size_t start = 0;  ///< units [start, start + length) of the text
  size_t length = 0;
  double x = 0;
  double width = 0;
  double rise = 0;  ///< of the baseline above the line's, points
  uint32_t firstGlyph = 0;
  uint32_t glyphCount = 0;
};

struct PlacedLine {
  size_t start = 0;  ///< units, with the character that ends the paragraph
  size_t length = 0;
  double x = 0;
  double top = 0;
  double height = 0;
  double baseline = 0;     ///< from the line's top
  double usedWidth = 0;    ///< from x, with trailing white space as far as it fits
  double contentLeft = 0;  ///< extent without the white space that ends the line
  double contentRight = 0;
  uint32_t firstRun = 0;
  uint32_t runCount = 0;

  double bottom() const { return top + height; }
};

struct TextLayout {
  std::shared_ptr<const StyledText> text;
  std::vector<PlacedLine> lines;
  std::vector<PlacedRun> runs;  ///< of each line from left to right
  std::vector<PlacedGlyph> glyphs;
  std::vector<std::shared_ptr<const ResolvedFont>> fallbackFonts;
  /// Of the first paragraph.
  TextDirection direction = TextDirection::leftToRight;
  /// Units [0, end) have a place; the rest is below the area or beyond what one text may hold.
  size_t end = 0;
  /// From the leftmost line start to the rightmost end, and from 0 to the last line's bottom.
  NSRect used;
};

/// Whether the space that fonts ask for between lines counts.
enum class FontLeading : uint8_t { ignored, used };

/// Sides of at least this many points do not limit a text: it is neither wrapped nor aligned.
inline constexpr double kUnboundedSide = 1e7;

struct LayoutArea {
  NSSize size;
  double padding = 0;  ///< kept free at the left and the right
  FontLeading leading = FontLeading::used;
  /// What tells the language of a text that is a piece of another; empty: the text itself.
  std::u16string_view surroundings{};
};

/// Sets the text into the area, line by line, until the next line would end below it.
TextLayout layoutText(std::shared_ptr<const StyledText> text, const LayoutArea& area);
