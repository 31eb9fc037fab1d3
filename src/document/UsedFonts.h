#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

class DrawBase;
class PaintManager;

/// A font that a text names and what draws it here.
struct UsedFont {
  std::string wanted;  ///< PostScript name, as the document has it
  /// PostScript names of installed faces, those for characters that the first lacks included; empty
  /// when there is no font at all.
  std::set<std::string> faces;
  std::set<double> sizes;  ///< points

  bool isDrawn() const { return !faces.empty(); }
};

/// The fonts of a document's visible texts, by their names. Sets every text.
std::vector<UsedFont> usedFonts(const PaintManager& document);

/// A text and the fonts of it alone, by their names.
struct ShownText {
  std::string string;
  std::vector<UsedFont> fonts;
};

/// What a draw writes; nothing for draws that write none. Sets the text.
std::optional<ShownText> shownText(const DrawBase& draw);

/// Whether a document has visible text and no font is installed to draw any with.
bool lacksAllFonts(const PaintManager& document);
