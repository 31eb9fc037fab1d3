#include <gtest/gtest.h>

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
  const std::string folder = sourcePath("tests/fixtures/fonts/");
  FontRegistry::useFontFiles({folder + "NimbusSans.ttf", folder + "NimbusSansNarrow.ttf"});
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
  const auto hebrew = registry->fallback(0x5d0, regular, "");
  ASSERT_NE(hebrew, nullptr);
  EXPECT_EQ(hebrew->face, registry->resolve(kBoxFont, 10)->face);
  EXPECT_EQ(registry->fallback(0x5d1, regular, ""), hebrew) << "one font for a run of characters";
  EXPECT_EQ(registry->fallback(0x10330, regular, ""), nullptr);
  EXPECT_EQ(registry->emoji(), nullptr);
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
