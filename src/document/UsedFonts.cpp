#include "document/UsedFonts.h"

#include <cmath>
#include <functional>
#include <map>

#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/text/DrawText.h"
#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/fonts/NSFont.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/layout/TextLayout.h"

namespace {

using VisitText = std::function<void(const NSAttributedString&)>;

void visitTexts(const DrawArray& draws, const VisitText& visit) {
  for (const auto& draw : draws) {
    if (!draw->visible()) continue;
    if (const auto* group = dynamic_cast<const DrawGroup*>(draw.get())) {
      visitTexts(group->draws(), visit);
    } else if (const auto* text = dynamic_cast<const DrawText*>(draw.get())) {
      if (text->textStorage()->length() > 0) visit(*text->textStorage());
    }
  }
}

using FontsByName = std::map<std::string, UsedFont>;

void addFonts(FontsByName& fonts, const NSAttributedString& text) {
  const TextLayout layout = text.unlimitedLayout();
  for (const PlacedRun& run : layout.runs) {
    UsedFont& font = fonts[run.style->font->fontName()];
    const double size = run.style->font->pointSize();
    if (std::isfinite(size)) font.sizes.insert(size);
    if (!run.font->faceName.empty()) font.faces.insert(run.font->faceName);
  }
}

std::vector<UsedFont> listed(FontsByName&& byName) {
  std::vector<UsedFont> fonts;
  fonts.reserve(byName.size());
  for (auto& [name, font] : byName) {
    font.wanted = name;
    fonts.push_back(std::move(font));
  }
  return fonts;
}

}  // namespace

std::vector<UsedFont> usedFonts(const PaintManager& document) {
  FontsByName fonts;
  visitTexts(document.allDraws(), [&](const NSAttributedString& text) { addFonts(fonts, text); });
  return listed(std::move(fonts));
}

std::optional<ShownText> shownText(const DrawBase& draw) {
  const auto* text = dynamic_cast<const DrawText*>(&draw);
  if (text == nullptr) return std::nullopt;
  FontsByName fonts;
  addFonts(fonts, *text->textStorage());
  return ShownText{text->textStorage()->string(), listed(std::move(fonts))};
}

bool lacksAllFonts(const PaintManager& document) {
  bool hasText = false;
  visitTexts(document.allDraws(), [&](const NSAttributedString&) { hasText = true; });
  return hasText &&
         FontRegistry::shared()->resolve(NSFont::defaultFont()->fontName(), 0)->face == nullptr;
}
