// The module's face to the engine.
#include <hb.h>
#include <unicode/uchar.h>

#include <utility>

#include "platform/machine/AddressSpace.h"
#include "platform/text/libraries/FontFile.h"
#include "platform/text/libraries/FontIndexes.h"
#include "platform/text/libraries/UnicodeText.h"

namespace {

class Libraries : public TextLibraries {
 public:
  void prepareThread() const override { prepareForExceptions(); }

  std::shared_ptr<const FontIndex> installedFonts() const override { return indexInstalledFonts(); }

  std::shared_ptr<const FontIndex> fontsInFiles(std::span<const std::string> files) const override {
    return indexFontFiles(files);
  }

  std::shared_ptr<const FontFace> openFace(const std::string& file, uint32_t index) const override {
    return openFontFace(file, index);
  }

  void findClusters(std::u16string_view text, std::vector<uint8_t>& starts) const override {
    findClusterStarts(text, starts);
  }

  void findLineBreaks(std::u16string_view text, std::vector<uint8_t>& breaks) const override {
    findLineStarts(text, breaks);
  }

  BidiLevels bidiLevels(std::u16string_view text, BaseDirection base) const override {
    return findBidiLevels(text, base);
  }

  BidiLevels bidiLevels(std::u16string_view text, uint8_t paragraph,
                        std::vector<uint8_t> explicitLevels) const override {
    return findBidiLevels(text, paragraph, std::move(explicitLevels));
  }

  uint32_t scriptOf(char32_t character) const override {
    return hb_script_to_iso15924_tag(hb_unicode_script(hb_unicode_funcs_get_default(), character));
  }

  std::vector<uint32_t> scriptExtensions(char32_t character) const override {
    return findScriptExtensions(character);
  }

  std::u16string normalized(std::u16string_view text, Normalization form) const override {
    return normalizeText(text, form);
  }

  char32_t capitalOf(char32_t character) const override {
    return static_cast<char32_t>(u_toupper(static_cast<UChar32>(character)));
  }

  bool hasCanonicalDecomposition(char32_t character) const override {
    return u_getIntPropertyValue(static_cast<UChar32>(character), UCHAR_DECOMPOSITION_TYPE) ==
           U_DT_CANONICAL;
  }

  bool hasEmojiPresentation(char32_t character) const override {
    return u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_EMOJI_PRESENTATION) != 0;
  }

  bool isDefaultIgnorable(char32_t character) const override {
    return u_hasBinaryProperty(static_cast<UChar32>(character),
                               UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const TextLibraries* paintTextLibraries() {
  static const Libraries libraries;
  return &libraries;
}
