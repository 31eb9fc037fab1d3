#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/layout/TextLayout.h"
#include "support/Fixtures.h"

/// Every advance is half an em, the space a quarter; ascent 0.8 em, descent 0.2 em.
inline constexpr const char* kBoxFont = "Box-Regular";
/// Capitals only; ascent 1.2 em, descent 0.4 em, leading 0.3 em.
inline constexpr const char* kTallFont = "BoxTall-Regular";

/// Makes the generated fonts, and nothing that happens to be installed, the fonts of the program.
inline void useBoxFonts(const std::vector<std::string>& names = {"Box", "BoxTall"}) {
  std::vector<std::string> files;
  for (const std::string& name : names) {
    files.push_back(sourcePath("tests/fixtures/fonts/" + name + ".ttf"));
  }
  FontRegistry::useFontFiles(std::move(files));
}

class BoxFontTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { useBoxFonts(); }
};

inline TextStyle boxStyle(double size = 10) {
  TextStyle style;
  style.font = std::make_shared<NSFont>(kBoxFont, size);
  return style;
}

using EditParagraph = std::function<void(NSMutableParagraphStyle&)>;

inline TextStyle boxStyle(const EditParagraph& edit) {
  TextStyle style = boxStyle();
  NSMutableParagraphStyle paragraph;
  if (edit) edit(paragraph);
  style.paragraph = std::make_shared<NSMutableParagraphStyle>(paragraph);
  return style;
}

/// A piece of text and its style.
struct StyledPiece {
  std::u16string text;
  TextStyle style;
};

inline std::shared_ptr<const StyledText> styledText(std::vector<StyledPiece> pieces) {
  auto styled = std::make_shared<StyledText>();
  for (StyledPiece& piece : pieces) {
    styled->text += piece.text;
    if (!piece.text.empty()) {
      styled->runs.push_back({styled->text.size(), static_cast<uint32_t>(styled->styles.size())});
    }
    styled->styles.push_back(std::move(piece.style));
  }
  return styled;
}

inline TextLayout layoutBoxes(std::u16string text, double width, const EditParagraph& edit = {}) {
  return layoutText(styledText({{std::move(text), boxStyle(edit)}}), {{width, 1e9}, 0});
}
