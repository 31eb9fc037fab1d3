#pragma once

#include <cstdint>
#include <vector>

#include "platform/text/layout/TextItems.h"

/// A glyph with distances in points, before it has a place in a line.
struct ItemGlyph {
  uint32_t glyph = 0;
  uint32_t cluster = 0;  ///< first unit of its characters, counted from the item's start
  double advance = 0;
  float dx = 0;
  float dy = 0;
  bool unsafeToBreak = false;
};

/// An item with its glyphs in visual order.
struct ShapedItem {
  TextItem item;
  std::vector<ItemGlyph> glyphs;
  /// For each unit the advance of the glyphs whose cluster begins there.
  std::vector<double> advances;
  /// Width of the whole; for a tab, what the line made of it.
  double width = 0;
};

/// Glyphs of an item; `text` is the whole text and [paragraphStart, paragraphEnd) the context that
/// shapes depend on.
ShapedItem shapeItem(const TextItem& item, std::u16string_view text, size_t paragraphStart,
                     size_t paragraphEnd);

/// Glyphs of an inserted item: for characters that are not in the text (a hyphen, an ellipsis).
ShapedItem shapeInserted(const TextItem& item, std::u16string_view characters);

/// Horizontal scale of advances and outlines of a style set in a face.
double horizontalScale(const ResolvedFont& font, const TextStyle& style);

/// Cuts an item before a unit that is inside it. Shapes both sides again when the glyphs there
/// depend on each other.
struct SplitItem {
  ShapedItem before;
  ShapedItem after;
};
SplitItem splitItem(ShapedItem item, size_t unit, std::u16string_view text, size_t paragraphStart,
                    size_t paragraphEnd);
