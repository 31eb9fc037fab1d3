#include "platform/text/fonts/FontFamilies.h"

#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/fonts/HostFonts.h"

namespace {

FontStyle styleOf(const HostFamily& family, const HostFace& face) {
  FontStyle style = fontStyleNamed(face.style);
  if (family.kind == HostFontKind::fixedPitch) {
    style.traits = style.traits | NSFontTraitMask::fixedPitch;
  }
  return style;
}

FontStyle styleOf(const FontFaceInfo& face) {
  return fontStyleOf(face.weight, face.width, face.italic, face.fixedPitch);
}

}  // namespace

std::vector<FontMember> membersOfFontFamily(std::string_view name) {
  std::vector<FontMember> members;
  if (const HostFamily* family = hostFamilyNamed(name)) {
    for (const HostFace& face : family->faces) {
      members.push_back({std::string(face.postScriptName), styleOf(*family, face)});
    }
    return members;
  }
  for (const FontFaceInfo* face : FontRegistry::shared()->installedFamily(name)) {
    members.push_back({face->postScriptName, styleOf(*face)});
  }
  return members;
}

FontStyle styleOfFontNamed(std::string_view name) {
  if (const HostFaceMatch host = hostFaceNamed(name)) return styleOf(*host.family, *host.face);
  const FontFaceInfo* installed = FontRegistry::shared()->installedFace(name);
  return installed != nullptr ? styleOf(*installed)
                              : fontStyleNamed(splitPostScriptName(name).style);
}

std::string familyOfFontNamed(std::string_view name) {
  if (const HostFaceMatch host = hostFaceNamed(name)) return std::string(host.family->name);
  const FontFaceInfo* installed = FontRegistry::shared()->installedFace(name);
  return installed != nullptr ? installed->family : splitPostScriptName(name).family;
}
