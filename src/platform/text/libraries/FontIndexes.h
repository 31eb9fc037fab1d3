#pragma once

#include <span>

#include "platform/text/TextLibraries.h"

/// Faces in the font folders of this system; see TextLibraries::installedFonts.
std::shared_ptr<const FontIndex> indexInstalledFonts();

/// Faces of these files, in their order.
std::shared_ptr<const FontIndex> indexFontFiles(std::span<const std::string> files);
