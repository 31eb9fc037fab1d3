#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/text/fonts/FontStyle.h"

// Faces by family, as the documents' platform has them; families that only this system has are
// those that are installed.

struct FontMember {
  std::string postScriptName;
  FontStyle style;
};

/// The faces of a family, the plain one first where it has one. Empty for an unknown family.
std::vector<FontMember> membersOfFontFamily(std::string_view family);

/// Style of the face with that PostScript name; for unknown names what the name says.
FontStyle styleOfFontNamed(std::string_view postScriptName);

/// Family of the face with that PostScript name; for unknown names what the name says.
std::string familyOfFontNamed(std::string_view postScriptName);
