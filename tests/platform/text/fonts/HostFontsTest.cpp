#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

#include "platform/text/TextLibraries.h"
#include "platform/text/fonts/HostFontTable.h"
#include "platform/text/fonts/HostFonts.h"

namespace {

uint32_t code(std::string_view text) {
  uint32_t value = 0;
  for (const char c : text) value = value << 8 | static_cast<uint8_t>(c);
  return value;
}

}  // namespace

TEST(HostFonts, TableIsConsistent) {
  std::set<std::string_view> names;
  std::string_view before;
  for (const HostFamily& family : hostFamilies()) {
    EXPECT_LT(before, family.name) << "looked up by bisection";
    before = family.name;
    EXPECT_FALSE(family.faces.empty()) << family.name;
    EXPECT_FALSE(family.substitutes.empty()) << family.name;
    for (const HostFace& face : family.faces) {
      EXPECT_TRUE(names.insert(face.postScriptName).second) << face.postScriptName;
    }
    bool unconditional = false;
    for (const HostSubstitute& s : family.substitutes) {
      EXPECT_GE(s.xScale, 0.85) << family.name;
      EXPECT_LE(s.xScale, 1.15) << family.name;
      unconditional |= s.minimumWeight == 0 && s.maximumWeight == 1000 && s.minimumSize == 0;
    }
    EXPECT_TRUE(unconditional) << family.name << " has faces that nothing stands in for";
    if (family.metrics.known()) {
      EXPECT_GT(family.metrics.ascent + family.metrics.descent, 0.95) << family.name;
      const bool tall = family.name == "Zapfino" || family.name == "Papyrus";
      EXPECT_LT(family.metrics.ascent + family.metrics.descent, tall ? 3.5 : 1.5) << family.name;
    }
  }
  for (const HostNameHint& hint : kHostNameHints) EXPECT_NE(hostFamilyNamed(hint.family), nullptr);
  for (const HostScriptFace& face : kHostScriptFaces) {
    EXPECT_TRUE(hostFaceNamed(face.postScriptName)) << face.script;
  }
}

// Clones with the same line metrics; the package is installed with those of the tests.
TEST(HostFonts, MetricsAreThoseOfTheirClones) {
  for (const auto& [family, clone] : {std::pair{"Arial", "LiberationSans"},
                                      {"Times New Roman", "LiberationSerif"},
                                      {"Courier New", "LiberationMono"}}) {
    const auto face = textLibraries()->openFace(
        std::string("/usr/share/fonts/truetype/liberation2/") + clone + "-Regular.ttf", 0);
    ASSERT_NE(face, nullptr) << clone;
    const HostMetrics& host = hostFamilyNamed(family)->metrics;
    EXPECT_EQ(host.ascent, face->metrics().ascent / 2048.0);
    EXPECT_EQ(host.descent, face->metrics().descent / 2048.0);
    EXPECT_EQ(host.leading, face->metrics().leading / 2048.0);
  }
}

TEST(HostFonts, FamiliesOfFaces) {
  struct Case {
    const char* face;
    const char* family;
    const char* style;
  };
  const Case cases[] = {
      {"Helvetica-BoldOblique", "Helvetica", "Bold Oblique"},
      {"Zapfino", "Zapfino", "Regular"},
      {"SnellRoundhand-Black", "Snell Roundhand", "Black"},
      {"SignPainter-HouseScript", "SignPainter", "Regular"},
      {"Trattatello", "Trattatello", "Regular"},
      {"STHeitiSC-Medium", "Heiti SC", "Medium"},
      {".SFNS-Regular", ".AppleSystemUIFont", "Regular"},
  };
  for (const Case& c : cases) {
    const HostFaceMatch match = hostFaceNamed(c.face);
    ASSERT_TRUE(match) << c.face;
    EXPECT_EQ(match.family->name, c.family);
    EXPECT_EQ(match.face->style, c.style);
  }
  EXPECT_FALSE(hostFaceNamed("helvetica"));
  EXPECT_FALSE(hostFaceNamed(""));
  EXPECT_EQ(hostFamilyNamed("Nowhere"), nullptr);
}

TEST(HostFonts, UnknownNamesGoByTheirHints) {
  EXPECT_EQ(hostFamilyLike("SourceSerif-Bold").name, "Times");
  EXPECT_EQ(hostFamilyLike("OpenSansMono").name, "Menlo");
  EXPECT_EQ(hostFamilyLike("SourceHanSansSC").name, "Helvetica");
  EXPECT_EQ(hostFamilyLike("MyHandScript").name, "Apple Chancery");
  EXPECT_EQ(hostFamilyLike("").name, "Helvetica");
}

TEST(HostFonts, ScriptsGoByLanguage) {
  EXPECT_EQ(hostFaceForScript(code("Hani"), "zh-Hans"), "PingFangSC-Regular");
  EXPECT_EQ(hostFaceForScript(code("Hani"), "zh-Hant"), "PingFangTC-Regular");
  EXPECT_EQ(hostFaceForScript(code("Hani"), "ja"), "HiraginoSans-W3");
  EXPECT_EQ(hostFaceForScript(code("Hang"), ""), "AppleSDGothicNeo-Regular");
  EXPECT_EQ(hostFaceForScript(code("Latn"), ""), "");
}
