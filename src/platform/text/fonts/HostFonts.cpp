#include "platform/text/fonts/HostFonts.h"

#include <algorithm>

#include "platform/text/fonts/HostFontTable.h"

namespace {

constexpr std::string_view kPlainFamily = "Helvetica";

uint32_t packed(std::string_view code) {
  uint32_t value = 0;
  for (const char c : code) value = value << 8 | static_cast<uint8_t>(c);
  return value;
}

std::string_view ideographFace(std::string_view language) {
  if (language.starts_with("ja")) return "HiraginoSans-W3";
  if (language.starts_with("ko")) return "AppleSDGothicNeo-Regular";
  if (language.starts_with("zh-Hant")) return "PingFangTC-Regular";
  return "PingFangSC-Regular";
}

}  // namespace

std::span<const HostFamily> hostFamilies() {
  return kHostFamilies;
}

HostFaceMatch hostFaceNamed(std::string_view postScriptName) {
  for (const HostFamily& family : kHostFamilies) {
    for (const HostFace& face : family.faces) {
      if (face.postScriptName == postScriptName) return {&family, &face};
    }
  }
  return {};
}

const HostFamily* hostFamilyNamed(std::string_view name) {
  const auto found = std::lower_bound(
      kHostFamilies.begin(), kHostFamilies.end(), name,
      [](const HostFamily& family, std::string_view wanted) { return family.name < wanted; });
  return found != kHostFamilies.end() && found->name == name ? &*found : nullptr;
}

const HostFamily& hostFamilyLike(std::string_view postScriptName) {
  const auto hint = std::find_if(kHostNameHints.begin(), kHostNameHints.end(),
                                 [postScriptName](const HostNameHint& h) {
                                   return postScriptName.find(h.hint) != std::string_view::npos;
                                 });
  return *hostFamilyNamed(hint == kHostNameHints.end() ? kPlainFamily : hint->family);
}

std::string_view hostFaceForScript(uint32_t script, std::string_view language) {
  if (script == packed("Hani")) return ideographFace(language);
  const auto found = std::find_if(
      kHostScriptFaces.begin(), kHostScriptFaces.end(),
      [script](const HostScriptFace& entry) { return packed(entry.script) == script; });
  return found == kHostScriptFaces.end() ? std::string_view() : found->postScriptName;
}
