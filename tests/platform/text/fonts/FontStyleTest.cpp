#include <gtest/gtest.h>

#include "platform/text/fonts/FontStyle.h"

using Trait = NSFontTraitMask;

TEST(FontStyle, WordsOfStyleNames) {
  struct Case {
    const char* name;
    int managerWeight;
    int weight;
    Trait traits;
  };
  const Case cases[] = {
      {"Regular", 5, 400, Trait::none},
      {"Plain", 5, 400, Trait::none},
      {"W3", 4, 300, Trait::none},
      {"W6", 8, 600, Trait::none},
      {"Medium", 6, 500, Trait::none},
      {"DemiBold", 7, 600, Trait::none},
      {"Demi Bold Italic", 7, 600, Trait::italic},
      {"SemiBold", 8, 600, Trait::none},
      {"Bold", 9, 700, Trait::bold},
      {"BoldOblique", 9, 700, Trait::bold | Trait::italic},
      {"Condensed ExtraBold", 10, 800, Trait::bold | Trait::condensed},
      {"Heavy", 11, 800, Trait::bold},
      {"Black Italic", 12, 900, Trait::bold | Trait::italic},
      {"ExtraBlack", 14, 950, Trait::bold},
      {"Ultra Light", 1, 200, Trait::none},
      {"Thin", 2, 100, Trait::none},
      {"Book", 4, 375, Trait::none},
      {"", 5, 400, Trait::none},
      {"Italics and Boldness", 5, 400, Trait::none},
  };
  for (const Case& c : cases) {
    const FontStyle style = fontStyleNamed(c.name);
    EXPECT_EQ(style.managerWeight, c.managerWeight) << c.name;
    EXPECT_EQ(style.weight, c.weight) << c.name;
    EXPECT_EQ(style.traits, c.traits) << c.name;
  }
}

TEST(FontStyle, NumbersOfInstalledFaces) {
  EXPECT_EQ(fontStyleOf(400, 100, false, false).managerWeight, 5);
  EXPECT_EQ(fontStyleOf(400, 100, true, true).traits, Trait::italic | Trait::fixedPitch);
  EXPECT_EQ(fontStyleOf(700, 87, false, false).traits, Trait::bold | Trait::condensed);
  EXPECT_EQ(fontStyleOf(1, 100, false, false).managerWeight, 2);
  EXPECT_EQ(fontStyleOf(1000, 125, false, false).traits, Trait::bold | Trait::expanded);
}

TEST(FontStyle, PostScriptNamesComeApart) {
  struct Case {
    const char* name;
    const char* family;
    const char* style;
  };
  const Case cases[] = {
      {"GillSansMT-BoldItalic", "Gill Sans", "Bold Italic"},
      {"HelveticaNeue", "Helvetica Neue", "Regular"},
      {"TimesNewRomanPSMT", "Times New Roman", "Regular"},
      {"TimesNewRomanPS-BoldMT", "Times New Roman", "Bold"},
      {"MT", "MT", "Regular"},
      {"", "", "Regular"},
      {"-Bold", "", "Bold"},
      {"ITCFranklin-Demi", "ITC Franklin", "Demi"},
  };
  for (const Case& c : cases) {
    const FontNameParts parts = splitPostScriptName(c.name);
    EXPECT_EQ(parts.family, c.family) << c.name;
    EXPECT_EQ(parts.style, c.style) << c.name;
  }
}
