#pragma once

#include <set>
#include <string>
#include <vector>

class PaintManager;

/// A font that a text names and what draws it here.
struct UsedFont {
  std::string wanted;  ///< PostScript name, as the document has it
  /// PostScript names of installed faces, those for characters that the first lacks included; empty
  /// when there is no font at all.
  std::set<std::string> faces;

  bool isDrawn() const { return !faces.empty(); }
};

/// The fonts of a document's visible texts, by their names. Sets every text.
std::vector<UsedFont> usedFonts(const PaintManager& document);

/// Whether a document has visible text and no font is installed to draw any with.
bool lacksAllFonts(const PaintManager& document);
