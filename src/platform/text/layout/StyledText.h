#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/text/TextLibraries.h"
#include "platform/text/fonts/NSFont.h"
#include "platform/text/layout/NSParagraphStyle.h"

class EncodedBitmap;
class NSColor;
class NSShadow;

/// How a run stands in the text around it.
struct TextEmbedding {
  TextDirection direction = TextDirection::leftToRight;
  bool overrides = false;  ///< every character runs so, whatever it is
};

/// What a run's attributes mean for layout and drawing, with the defaults filled in.
struct TextStyle {
  std::shared_ptr<const NSFont> font = NSFont::defaultFont();
  std::shared_ptr<const NSParagraphStyle> paragraph = NSParagraphStyle::defaultParagraphStyle();
  std::optional<double> kern;  ///< points after each cluster; 0 also turns the font's kerning off
  Ligatures ligatures = Ligatures::standard;
  int32_t superscript = 0;    ///< levels up
  double baselineOffset = 0;  ///< points up
  double obliqueness = 0;     ///< x += y * obliqueness
  double expansion = 0;       ///< natural logarithm of the horizontal scale
  /// Embeddings and overrides that the run is in, the outermost first.
  std::vector<TextEmbedding> embeddings;
  /// A picture in the place of the run's attachment characters, null for none, and where it goes
  /// from the baseline, y up.
  std::shared_ptr<const EncodedBitmap> attachment;
  NSRect attachmentBounds;
  double strokeWidth = 0;  ///< percent of the size; above 0: no fill, below: fill and stroke
  int32_t underline = 0;   ///< style bits, see LineStyle.h
  int32_t strikethrough = 0;
  // Null colours: foreground black, background none, the rest as the foreground.
  std::shared_ptr<const NSColor> foreground;
  std::shared_ptr<const NSColor> background;
  std::shared_ptr<const NSColor> underlineColor;
  std::shared_ptr<const NSColor> strikethroughColor;
  std::shared_ptr<const NSColor> strokeColor;
  std::shared_ptr<const NSShadow> shadow;
};

/// Units [start of the run, end) share a style.
struct StyleRun {
  size_t end = 0;
  uint32_t style = 0;  ///< index into StyledText::styles
};

/// A text as the layout reads it: UTF-16, with runs that cover it from the start to the end.
struct StyledText {
  std::u16string text;
  std::vector<TextStyle> styles;  ///< never empty: the style of an empty text is the first
  std::vector<StyleRun> runs;

  /// Position in `runs` of the run that holds the unit; the last run for the end of the text.
  size_t runAt(size_t unit) const;
  const TextStyle& styleAt(size_t unit) const;
};
