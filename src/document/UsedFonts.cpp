#include "document/UsedFonts.h"

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

}  // namespace

std::vector<UsedFont> usedFonts(const PaintManager& document) {
  std::map<std::string, std::set<std::string>> byName;
  visitTexts(document.allDraws(), [&](const NSAttributedString& text) {
    const TextLayout layout = text.unlimitedLayout();
    for (const PlacedRun& run : layout.runs) {
      std::set<std::string>& faces = byName[run.style->font->fontName()];
      if (!run.font->faceName.empty()) faces.insert(run.font->faceName);
    }
  });
  std::vector<UsedFont> fonts;
  fonts.reserve(byName.size());
  for (auto& [name, faces] : byName) fonts.push_back({name, std::move(faces)});
  return fonts;
}

bool lacksAllFonts(const PaintManager& document) {
  bool hasText = false;
  visitTexts(document.allDraws(), [&](const NSAttributedString&) { hasText = true; });
  return hasText && FontRegistry::shared()->resolve(NSFont::defaultFont()->fontName(), 0)->face == nullptr;
}
