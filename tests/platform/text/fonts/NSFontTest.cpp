#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/values/NSData.h"
#include "platform/text/TextSupport.h"
#include "platform/text/fonts/NSFont.h"
#include "platform/text/fonts/NSFontManager.h"
#include "platform/text/layout/LineMetrics.h"

namespace {

class NSFontTest : public BoxFontTest {};

std::shared_ptr<NSFont> font(const char* name, double size = 12) {
  return std::make_shared<NSFont>(name, size);
}

std::string converted(const char* from, NSFontTraitMask traits) {
  return NSFontManager::sharedFontManager().convertFont(font(from), traits)->fontName();
}

std::string inFamily(const char* from, const char* family) {
  return NSFontManager::sharedFontManager().convertFont(font(from), family)->fontName();
}

using Trait = NSFontTraitMask;

}  // namespace

TEST_F(NSFontTest, SizesThatCannotBeSetMeanTwelve) {
  for (const double size : {0.0, -5.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(NSFont("Helvetica", size).pointSize(), 12) << size;
  }
  EXPECT_EQ(NSFont("Helvetica", 1e9).pointSize(), 1e9);
  EXPECT_EQ(NSFont().fontName(), "Helvetica");
}

TEST_F(NSFontTest, KnownByTheHostOrInstalled) {
  EXPECT_NE(NSFont::fontWithName("Palatino-Italic", 10), nullptr);
  EXPECT_NE(NSFont::fontWithName(kBoxFont, 10), nullptr);
  EXPECT_EQ(NSFont::fontWithName("NoSuchFont", 10), nullptr);
}

// Printed by the documents' platform: heights of lines with all four parts.
TEST_F(NSFontTest, LineHeightsAreTheHosts) {
  struct Case {
    const char* name;
    double size;
    double legacyLeading;
    double ascent;
    double descent;
    double leading;
  };
  const Case cases[] = {
      {"TimesNewRomanPSMT", 96, 0, 86, 21, 4}, {"Helvetica", 96, 19, 74, 22, 0},
      {"Helvetica", 17, 3, 13, 4, 0},          {"Helvetica", 12, 2, 9, 3, 0},
      {"Menlo-Regular", 12, 0, 11, 3, 0},      {"ArialMT", 48, 0, 43, 10, 2},
  };
  for (const Case& c : cases) {
    TextStyle style;
    style.font = font(c.name, c.size);
    const LineMetrics m = lineMetrics(*style.font->resolved(), style, FontLeading::used);
    EXPECT_EQ(m.legacyLeading, c.legacyLeading) << c.name << c.size;
    EXPECT_EQ(m.ascent, c.ascent) << c.name << c.size;
    EXPECT_EQ(m.descent, c.descent) << c.name << c.size;
    EXPECT_EQ(m.leading, c.leading) << c.name << c.size;
    EXPECT_EQ(lineMetrics(*style.font->resolved(), style, FontLeading::ignored).leading, 0);
  }
}

TEST_F(NSFontTest, MetricsInPoints) {
  const NSFont box(kBoxFont, 20);
  EXPECT_EQ(box.ascender(), 16);
  EXPECT_EQ(box.descender(), -4);
  EXPECT_EQ(box.leading(), 0);
  EXPECT_EQ(box.xHeight(), 10);
  EXPECT_EQ(box.capHeight(), 14);
  EXPECT_EQ(box.underlineThickness(), 1);
  EXPECT_EQ(box.familyName(), "Box");
  EXPECT_FALSE(box.isFixedPitch());
  EXPECT_TRUE(NSFont("CourierNewPSMT", 9).isFixedPitch());
  EXPECT_EQ(NSFont("FooBarMT-Light", 9).familyName(), "Foo Bar");
}

TEST_F(NSFontTest, TraitConversions) {
  EXPECT_EQ(converted("Helvetica", Trait::bold), "Helvetica-Bold");
  EXPECT_EQ(converted("Helvetica", Trait::italic), "Helvetica-Oblique");
  EXPECT_EQ(converted("Helvetica", Trait::bold | Trait::italic), "Helvetica-BoldOblique");
  EXPECT_EQ(converted("Helvetica-BoldOblique", Trait::unbold), "Helvetica-Oblique");
  EXPECT_EQ(converted("Helvetica-BoldOblique", Trait::unitalic), "Helvetica-Bold");
  EXPECT_EQ(converted("Helvetica-Bold", Trait::bold), "Helvetica-Bold");
  EXPECT_EQ(converted("HelveticaNeue-MediumItalic", Trait::unitalic), "HelveticaNeue-Medium");
  EXPECT_EQ(converted("HelveticaNeue-Light", Trait::bold), "HelveticaNeue-Bold");
  EXPECT_EQ(converted("HelveticaNeue", Trait::condensed), "HelveticaNeue") << "only in bold";
  EXPECT_EQ(converted("Monaco", Trait::bold), "Monaco") << "no such face";
  EXPECT_EQ(converted("NoSuchFont", Trait::bold), "NoSuchFont");
  const NSFontManager& manager = NSFontManager::sharedFontManager();
  EXPECT_EQ(manager.convertFontToNotHaveTrait(font("Georgia-BoldItalic"), Trait::bold)->fontName(),
            "Georgia-Italic");
}

TEST_F(NSFontTest, FamilyConversionsKeepTheStyle) {
  EXPECT_EQ(inFamily("Helvetica-BoldOblique", "Times New Roman"), "TimesNewRomanPS-BoldItalicMT");
  EXPECT_EQ(inFamily("Times-Italic", "Courier"), "Courier-Oblique");
  EXPECT_EQ(inFamily("HelveticaNeue-Light", "Avenir Next"), "AvenirNext-Regular");
  EXPECT_EQ(inFamily("Helvetica", "Avenir Next"), "AvenirNext-Regular");
  EXPECT_EQ(inFamily("Helvetica-Bold", "Monaco"), "Monaco");
  EXPECT_EQ(inFamily("Helvetica-Bold", "No Such Family"), "Helvetica-Bold");
}

TEST_F(NSFontTest, WeightsAndSizes) {
  const NSFontManager& manager = NSFontManager::sharedFontManager();
  const auto medium = font("HelveticaNeue-Medium", 30);
  EXPECT_EQ(manager.weightOfFont(*medium), 6);
  EXPECT_EQ(manager.traitsOfFont(*font("Courier-Bold")), Trait::bold | Trait::fixedPitch);
  EXPECT_EQ(manager.convertWeight(NSFontWeightChange::heavier, medium)->fontName(),
            "HelveticaNeue-Bold");
  EXPECT_EQ(manager.convertWeight(NSFontWeightChange::lighter, medium)->fontName(),
            "HelveticaNeue");
  EXPECT_EQ(manager.convertWeight(NSFontWeightChange::heavier, font("Helvetica-Bold"))->fontName(),
            "Helvetica-Bold");
  const auto resized = manager.convertFont(medium, 31.0);
  EXPECT_EQ(resized->pointSize(), 31);
  EXPECT_EQ(resized->fontName(), medium->fontName());
  EXPECT_EQ(manager.convertFont(medium, 30.0), medium);
  EXPECT_EQ(manager.fontWithFamily("Georgia", Trait::italic, 5, 8)->fontName(), "Georgia-Italic");
  EXPECT_EQ(manager.fontWithFamily("Monaco", Trait::italic, 5, 8), nullptr);
}
