#include <gtest/gtest.h>

#include "document/PaintManager.h"
#include "document/UsedFonts.h"
#include "draw/text/DrawText.h"
#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/fonts/NSFont.h"
#include "platform/text/host/NSTextStorage.h"
#include "support/Documents.h"
#include "support/Fixtures.h"

namespace {

std::shared_ptr<DrawText> textBox(const std::string& text, const std::string& font) {
  auto attributes = std::make_shared<NSMutableDictionary>();
  attributes->setObject(std::make_shared<NSFont>(font, 10), NSFontAttributeName);
  auto draw = std::make_shared<DrawText>();
  draw->init();
  draw->setBezierPathWithBounds({{0, 0}, {100, 100}});
  draw->setAttributedString(NSAttributedString(text, attributes));
  return draw;
}

}  // namespace

TEST(UsedFonts, AreThoseOfVisibleTextsWithTheirFallbacks) {
  const std::string folder = sourcePath("tests/fixtures/fonts/");
  FontRegistry::useFontFiles({folder + "Box.ttf", folder + "Low.ttf"});
  PaintManager document;
  document.setSize({100, 100});
  document.addDraw(textBox("A\u05d0", "BookmanOldStyle"));
  document.addDraw(textBox("A", "No\x1b[31mSuchFont"));
  const auto hidden = textBox("A", "Helvetica");
  hidden->setVisible(false);
  document.addDraw(hidden);
  const auto fonts = usedFonts(document);
  ASSERT_EQ(fonts.size(), 2u);
  EXPECT_EQ(fonts[0].wanted, "BookmanOldStyle");
  EXPECT_EQ(fonts[0].faces, (std::set<std::string>{"Box-Regular", "Low-Light"}));
  EXPECT_EQ(fonts[1].faces, std::set<std::string>{"Box-Regular"});
  EXPECT_FALSE(lacksAllFonts(document));
  FontRegistry::useFontFiles({});
  EXPECT_FALSE(lacksAllFonts(PaintManager())) << "without text";
  PaintManager bare;
  bare.addDraw(textBox("A", "Helvetica"));
  EXPECT_TRUE(lacksAllFonts(bare));
  EXPECT_FALSE(usedFonts(bare)[0].isDrawn());
}
