#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "platform/text/TextSupport.h"
#include "platform/text/fonts/FontRegistry.h"

namespace {

class FontRegistryTest : public BoxFontTest {};

}  // namespace

TEST_F(FontRegistryTest, IndexesExactlyTheGivenFiles) {
  const auto registry = FontRegistry::shared();
  const FontFaceInfo* box = registry->installedFace(kBoxFont);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->family, "Box");
  EXPECT_EQ(box->style, "Regular");
  EXPECT_EQ(box->weight, 400);
  EXPECT_FALSE(box->italic);
  EXPECT_EQ(registry->installedFamily("BoxTall").size(), 1u);
  EXPECT_EQ(registry->installedFace("LiberationSans"), nullptr);
}

TEST_F(FontRegistryTest, AnyFaceStandsInWhenThereIsNoBetterOne) {
  const auto bold = FontRegistry::shared()->resolve("Helvetica-BoldOblique", 12);
  ASSERT_NE(bold->face, nullptr);
  EXPECT_EQ(bold->bold, SyntheticBold::yes);
  EXPECT_GT(bold->slant, 0.2);
  EXPECT_NEAR(bold->metrics.ascent, 0.77, 0.0005) << "the host's, not the stand-in's";
  const auto unknown = FontRegistry::shared()->resolve("NoSuchFont", 12);
  EXPECT_EQ(unknown->bold, SyntheticBold::no);
  EXPECT_EQ(unknown->slant, 0);
}

TEST_F(FontRegistryTest, CondensedFacesHaveCondensedStandIns) {
  useBoxFonts({"NimbusSans", "NimbusSansNarrow"});
  const auto registry = FontRegistry::shared();
  const auto face = [&](const char* name) { return registry->resolve(name, 12)->face; };
  EXPECT_EQ(face("HelveticaNeue-CondensedBold"), face("NimbusSansNarrow-Bold"));
  EXPECT_EQ(face("HelveticaNeue-Bold"), face("NimbusSans-Bold"));
  EXPECT_NE(face("NimbusSans-Bold"), face("NimbusSansNarrow-Bold"));
  useBoxFonts();
}

TEST_F(FontRegistryTest, FallbackFindsTheFaceThatHasTheCharacter) {
  const auto registry = FontRegistry::shared();
  const FontStyle regular;
  const auto fallback = [&](std::u16string_view cluster) {
    return registry->fallback({ClusterForms(cluster), regular});
  };
  const auto hebrew = fallback(u"\u05d0");
  ASSERT_NE(hebrew, nullptr);
  EXPECT_EQ(hebrew->face, registry->resolve(kBoxFont, 10)->face);
  EXPECT_EQ(fallback(u"\u05d1"), hebrew) << "one font for a run of characters";
  EXPECT_EQ(fallback(u"\U00010330"), nullptr);
  EXPECT_EQ(registry->emoji(), nullptr);
}

TEST_F(FontRegistryTest, LettersWithAccentsFitIntoTheLinesOfStandIns) {
  useBoxFonts({"Low"});
  const HostMetrics unknown = FontRegistry::shared()->resolve("BookmanOldStyle", 10)->metrics;
  EXPECT_NEAR(unknown.ascent, 0.9, 1e-9) << "more than the 0.6 that the font tells";
  EXPECT_NEAR(unknown.descent + unknown.leading, 0.2, 1e-9) << "the line is as high as it was";
  EXPECT_NEAR(FontRegistry::shared()->resolve("Helvetica", 10)->metrics.ascent, 0.77, 0.0005);
  useBoxFonts();
}

TEST_F(FontRegistryTest, ChoicesDoNotDependOnTheOrderOfFiles) {
  std::vector<std::string> names{"FewTamil", "Tamil", "TwinItalic", "TwinRoman"};
  do {
    useBoxFonts(names);
    const auto registry = FontRegistry::shared();
    // One name for an upright and a slanted face.
    EXPECT_EQ(registry->resolve(".SFNSText", 10)->slant, 0);
    EXPECT_FALSE(registry->resolve("Inter-Regular", 10)->style.italic());
    const auto slanted = registry->resolve(".SFNSText-Italic", 10);
    EXPECT_EQ(slanted->slant, 0) << "it needs no slant of ours";
    EXPECT_NE(slanted->face, registry->resolve(".SFNSText", 10)->face);
    // Both faces have the letter, one has the letter with its mark and the letters around it too.
    for (const char16_t* cluster : {u"\u0baa", u"\u0baa\u0bcd"}) {
      EXPECT_EQ(registry->fallback({ClusterForms(cluster), {}})->faceName, "Tamil-Regular");
    }
  } while (std::next_permutation(names.begin(), names.end()));
  useBoxFonts();
}

TEST_F(FontRegistryTest, NamedFacesOfHeavyFamiliesAreBold) {
  useBoxFonts({"NimbusSansNarrow"});
  const auto impact = FontRegistry::shared()->resolve("Impact", 10);
  EXPECT_EQ(impact->style.weight, 700);
  EXPECT_EQ(impact->bold, SyntheticBold::no);
  useBoxFonts();
  EXPECT_EQ(FontRegistry::shared()->resolve("Haettenschweiler", 10)->faceName, kBoxFont);
}

TEST_F(FontRegistryTest, OutlinesAndMetricsOfAFace) {
  const auto face = FontRegistry::shared()->resolve(kBoxFont, 10)->face;
  EXPECT_EQ(face->metrics().unitsPerEm, 1000);
  EXPECT_EQ(face->metrics().descent, 200);
  EXPECT_EQ(face->metrics().xHeight, 500);
  const PathData& path = face->outline(face->glyphForCharacter('a'));
  ASSERT_EQ(path.points.size(), 5u);
  EXPECT_EQ(path.verbs.back(), PathVerb::close);
  EXPECT_EQ(path.points[0], NSMakePoint(50, 0));
  EXPECT_EQ(path.points[2], NSMakePoint(450, 700));
  EXPECT_EQ(face->glyphForCharacter(0x4e00), 0u);
  EXPECT_FALSE(face->hasColorBitmaps());
  EXPECT_FALSE(face->colorBitmap(3).has_value());
}

TEST_F(FontRegistryTest, FilesThatAreNoFontsAreLeftOut) {
  FontRegistry::useFontFiles(
      {sourcePath("CMakeLists.txt"), "/nonexistent/font.ttf", sourcePath("tests/fixtures/fonts")});
  EXPECT_EQ(FontRegistry::shared()->resolve("Helvetica", 12)->face, nullptr);
  const TextLayout layout = layoutBoxes(u"no fonts at all", 100);
  EXPECT_EQ(layout.lines.size(), 1u);
  EXPECT_TRUE(layout.glyphs.empty());
  useBoxFonts();
}

TEST_F(FontRegistryTest, SharedBetweenThreads) {
  const auto lay = [] {
    size_t glyphs = 0;
    for (int i = 0; i < 50; ++i) {
      glyphs += layoutBoxes(u"some words \u05d0\u05d1 and a fallback", 60).glyphs.size();
    }
    return glyphs;
  };
  const size_t expected = lay();
  std::vector<size_t> counted(4);
  std::vector<std::thread> threads;
  for (size_t& count : counted) threads.emplace_back([&count, &lay] { count = lay(); });
  for (std::thread& thread : threads) thread.join();
  for (const size_t count : counted) EXPECT_EQ(count, expected);
}
