#pragma once

#include <string>
#include <vector>

#include "document/PaintManager.h"

/// The pictures of a document's visible draws that cannot be drawn. Reads and draws each.
std::vector<LeftOutPicture> findLeftOutPictures(PaintManager& document);

/// What is told when a document has text and there is no font to draw it with.
inline constexpr const char* kNoFonts = "no font is installed: text is left out";

/// One clause for one line of a terminal, such as
/// "2 pictures left out: "Map" (PDF page: it cannot be read), SVG picture: it is too large"; empty
/// for none. Long lists are cut.
std::string leftOutText(const std::vector<LeftOutPicture>& pictures);
