#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/GraphicsClasses.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/text/TextSupport.h"
#include "platform/text/fonts/NSFontDescriptor.h"
#include "platform/text/host/NSAttributedString.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/host/TextAttributes.h"
#include "platform/text/host/TextClasses.h"
#include "platform/text/layout/TextRanges.h"
#include "support/Archives.h"

namespace {

class NSAttributedStringTest : public BoxFontTest {
 protected:
  void SetUp() override {
    registerTextClasses();
    registerGraphicsClasses();
  }
};

std::shared_ptr<NSNumber> number(double value) {
  return NSNumber::numberWithDouble(value);
}

std::shared_ptr<NSAttributedString> decoded(const std::string& name) {
  return std::dynamic_pointer_cast<NSAttributedString>(
      NSKeyedUnarchiver::unarchiveObjectWithData(madeArchive("text/" + name)));
}

/// The runs of equal kerning: "2:10 4:-" is two units with 10 and four without.
std::string kernRuns(const NSAttributedString& text) {
  std::string runs;
  text.enumerateAttribute(
      NSKernAttributeName, {0, text.length()},
      [&runs](const std::shared_ptr<NSObject>& value, const NSRange& range, bool*) {
        const auto kern = std::dynamic_pointer_cast<NSNumber>(value);
        if (!runs.empty()) runs += ' ';
        runs += std::to_string(range.length) + ':' +
                (kern == nullptr ? "-" : std::to_string(kern->integerValue()));
      });
  return runs;
}

/// Units 0 to 9, each with the kerning of its own number.
NSMutableAttributedString numbered() {
  NSMutableAttributedString text("0123456789");
  for (uint64_t i = 0; i < 10; ++i) {
    text.addAttribute(NSKernAttributeName, number(static_cast<double>(i)), {i, 1});
  }
  return text;
}

}  // namespace

TEST_F(NSAttributedStringTest, AttributesOfRanges) {
  NSMutableAttributedString text("abcdef");
  text.addAttribute(NSKernAttributeName, number(1), {1, 3});
  text.addAttribute(NSUnderlineStyleAttributeName, number(1), {2, 4});
  EXPECT_EQ(kernRuns(text), "1:- 3:1 2:-");
  NSRange run;
  EXPECT_NE(text.attribute(NSUnderlineStyleAttributeName, 3, &run), nullptr);
  EXPECT_EQ(run, (NSRange{2, 2}));
  EXPECT_EQ(text.attributesAtIndex(0), nullptr);
  EXPECT_EQ(text.attributesAtIndex(3)->count(), 2u);
  text.removeAttribute(NSUnderlineStyleAttributeName, {0, 6});
  EXPECT_EQ(kernRuns(text), "1:- 3:1 2:-");
  text.setAttributes(nullptr, {0, 6});
  EXPECT_EQ(kernRuns(text), "6:-");
  EXPECT_THROW(text.attributesAtIndex(6), NSException);
  EXPECT_THROW(text.addAttribute("x", number(1), {5, 2}), NSException);
  EXPECT_THROW(text.addAttribute("x", number(1), {7, UINT64_MAX - 3}), NSException);
}

TEST_F(NSAttributedStringTest, EnumerationJoinsEqualValuesAndStops) {
  NSMutableAttributedString text("abcd");
  text.addAttribute(NSKernAttributeName, number(1), {0, 4});
  text.addAttribute(NSLigatureAttributeName, number(0), {1, 1});
  EXPECT_EQ(kernRuns(text), "4:1");
  int visits = 0;
  numbered().enumerateAttribute(
      NSKernAttributeName, {2, 5},
      [&visits](const std::shared_ptr<NSObject>&, const NSRange& range, bool* stop) {
        EXPECT_EQ(range, (NSRange{static_cast<uint64_t>(visits + 2), 1}));
        *stop = ++visits == 3;
      });
  EXPECT_EQ(visits, 3);
}

TEST_F(NSAttributedStringTest, SubstringsAndReplacement) {
  NSMutableAttributedString text = numbered();
  EXPECT_EQ(kernRuns(*text.attributedSubstringFromRange({3, 4})), "1:3 1:4 1:5 1:6");
  EXPECT_EQ(text.attributedSubstringFromRange({10, 0})->length(), 0u);
  text.deleteCharactersInRange({1, 7});
  EXPECT_EQ(text.string(), "089");
  EXPECT_EQ(kernRuns(text), "1:0 1:8 1:9");
  text.replaceCharactersInRange({1, 1}, "xy");
  EXPECT_EQ(kernRuns(text), "1:0 2:8 1:9");
  text.replaceCharactersInRange({1, 0}, "z");
  EXPECT_EQ(kernRuns(text), "2:0 2:8 1:9") << "inserted text follows the unit before";
  text.appendAttributedString(text);
  EXPECT_EQ(text.string(), "0zxy90zxy9");
  EXPECT_EQ(kernRuns(text), "2:0 2:8 1:9 2:0 2:8 1:9");
  text.setAttributedString(NSAttributedString("p\xc3\xa4"));
  EXPECT_EQ(text.length(), 2u);
  EXPECT_EQ(kernRuns(text), "2:-");
}

TEST_F(NSAttributedStringTest, EqualityIsOfContents) {
  NSMutableAttributedString a = numbered();
  const NSMutableAttributedString b = numbered();
  EXPECT_TRUE(a.isEqual(b));
  EXPECT_EQ(a.hash(), b.hash());
  a.addAttribute(NSKernAttributeName, number(99), {9, 1});
  EXPECT_FALSE(a.isEqual(b));
  EXPECT_FALSE(b.isEqual(NSAttributedString("0123456789")));
}

TEST_F(NSAttributedStringTest, ReadsWhatThePlatformWrites) {
  const auto text = decoded("whole");
  ASSERT_NE(text, nullptr);
  EXPECT_TRUE(text->isMemberOfClass(NSTextStorage::kClass));
  EXPECT_EQ(text->string(), "0123456789");
  NSRange run;
  text->attributesAtIndex(4, &run);
  EXPECT_EQ(run, (NSRange{2, 5}));
  const TextStyle first = textStyle(text->attributesAtIndex(8).get());
  EXPECT_EQ(first.font->fontName(), "Helvetica-Bold");
  EXPECT_EQ(first.font->pointSize(), 18);
  EXPECT_EQ(first.strokeWidth, -3);
  EXPECT_EQ(first.paragraph->alignment(), NSTextAlignment::center);
  ASSERT_NE(first.foreground, nullptr);
  EXPECT_EQ(first.foreground->greenComponent(), first.foreground->blueComponent());
  const TextStyle second = textStyle(text->attributesAtIndex(3).get());
  EXPECT_EQ(second.underline, 9);
  EXPECT_EQ(second.kern, 1.5);
  EXPECT_EQ(second.foreground, nullptr);
  ASSERT_EQ(second.embeddings.size(), 2u) << "7 means nothing";
  EXPECT_TRUE(second.embeddings[0].overrides);
  EXPECT_EQ(second.embeddings[0].direction, TextDirection::rightToLeft);
  EXPECT_FALSE(second.embeddings[1].overrides);
  EXPECT_EQ(kernRuns(*decoded("recorded_runs")), "1:0 1:1 4:2 2:1 1:3 1:0");
}

TEST_F(NSAttributedStringTest, ReadsTheExampleOfTheFormat) {
  EXPECT_EQ(madeArchive("text/hello_world")->length(), 800u);
  const auto text = decoded("hello_world");
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text->string(), "Hello, world");
  NSRange run;
  const TextStyle plain = textStyle(text->attributesAtIndex(0, &run).get());
  EXPECT_EQ(run, (NSRange{0, 7}));
  EXPECT_EQ(plain.font->fontName(), "Helvetica");
  EXPECT_EQ(plain.font->pointSize(), 12);
  EXPECT_EQ(plain.underline, 0);
  EXPECT_EQ(plain.foreground, nullptr);
  const TextStyle bold = textStyle(text->attributesAtIndex(7, &run).get());
  EXPECT_EQ(run, (NSRange{7, 5}));
  EXPECT_EQ(bold.font->fontName(), "Helvetica-Bold");
  EXPECT_EQ(bold.underline, 1);
  EXPECT_EQ(bold.foreground->redComponent(), 1);
  EXPECT_EQ(bold.foreground->blueComponent(), 0);
}

TEST_F(NSAttributedStringTest, RunTablesThatLie) {
  struct Case {
    const char* name;
    const char* runs;
  };
  const Case cases[] = {
      {"one_style", "3:7"},
      {"empty", ""},
      {"runs_inline", "2:11 4:10"},
      {"runs_two_bytes", "300:11 10:10"},
      {"runs_too_long", "2:10 4:11"},
      {"runs_too_short", "2:10 4:-"},
      {"runs_index_outside", "2:10 2:- 2:11"},
      {"runs_odd", "2:10 4:-"},
      {"runs_unfinished", "2:10 4:-"},
      {"runs_empty_ones", "3:10 3:11"},
      {"runs_endless_number", "6:10"},
      {"runs_without_table", "3:10"},
      {"contains_itself", "1:3"},
      {"lone_surrogates", "4:7"},
  };
  for (const Case& c : cases) {
    const auto text = decoded(c.name);
    ASSERT_NE(text, nullptr) << c.name;
    EXPECT_EQ(kernRuns(*text), c.runs) << c.name;
  }
}

TEST_F(NSAttributedStringTest, ValuesOfOtherKindsCountAsNotSet) {
  const TextStyle style = textStyle(decoded("odd_values")->attributesAtIndex(0).get());
  EXPECT_EQ(style.font->fontName(), "Helvetica");
  EXPECT_EQ(style.foreground, nullptr);
  EXPECT_FALSE(style.kern.has_value());
  EXPECT_EQ(style.obliqueness, 0);
  EXPECT_EQ(style.superscript, 1);
  EXPECT_EQ(style.underline, 1);
  EXPECT_EQ(style.baselineOffset, 2.5);
  EXPECT_EQ(style.paragraph->alignment(), NSTextAlignment::natural);
}

TEST_F(NSAttributedStringTest, NamesOfConcreteClasses) {
  NSKeyedUnarchiver coder(madeArchive("text/concrete_classes"));
  for (const NSClass* cls :
       {&NSAttributedString::kClass, &NSMutableAttributedString::kClass, &NSTextStorage::kClass}) {
    const auto text = coder.decodeObjectOfClass<NSAttributedString>(cls->name);
    ASSERT_NE(text, nullptr) << cls->name;
    EXPECT_TRUE(text->isMemberOfClass(*cls)) << cls->name;
    EXPECT_EQ(kernRuns(*text), "3:7") << cls->name;
  }
}

TEST_F(NSAttributedStringTest, AttributesOfUnknownClassesAreLeftOut) {
  NSKeyedUnarchiver coder(madeArchive("text/unknown_attributes"));
  const auto text = coder.decodeObjectOfClass<NSAttributedString>("root");
  ASSERT_NE(text, nullptr);
  EXPECT_TRUE(text->isMemberOfClass(NSTextStorage::kClass));
  EXPECT_EQ(kernRuns(*text), "2:1 3:2 1:3");
  EXPECT_EQ(text->attributesAtIndex(0)->count(), 1U);
  EXPECT_EQ(text->attributesAtIndex(2)->count(), 2U);
  EXPECT_EQ(text->attributesAtIndex(2)->objectOfClass<NSArray>("NSPresentationIntent")->count(),
            0U);
  // They stay nil; what only others refer to is refused as ever.
  EXPECT_EQ(coder.decodeObjectForKey("note"), nullptr);
  EXPECT_EQ(coder.decodeObjectOfClass<NSArray>("cells")->count(), 0U);
  EXPECT_THROW(coder.decodeObjectForKey("other"), NSException);
}

TEST_F(NSAttributedStringTest, SurvivesTheWayThroughAnArchive) {
  NSTextStorage several("some text \xf0\x9f\x98\x80");
  several.addAttribute(NSFontAttributeName, std::make_shared<NSFont>("Georgia", 14), {0, 12});
  several.addAttribute(NSForegroundColorAttributeName, NSColor::redColor(), {2, 3});
  NSMutableParagraphStyle paragraph;
  paragraph.setAlignment(NSTextAlignment::right);
  paragraph.setTabStops({std::make_shared<NSTextTab>(NSTextTabType::decimal, 12.5)});
  several.addAttribute(NSParagraphStyleAttributeName,
                       std::make_shared<NSMutableParagraphStyle>(paragraph), {5, 4});
  const NSAttributedString bare("x");
  const NSAttributedString empty;
  for (const NSAttributedString* text :
       {static_cast<const NSAttributedString*>(&several), &bare, &empty}) {
    const std::shared_ptr<const NSObject> unowned(text, [](const NSObject*) {});
    const auto data = NSKeyedArchiver::archivedDataWithRootObject(unowned);
    const auto copy = std::dynamic_pointer_cast<NSAttributedString>(
        NSKeyedUnarchiver::unarchiveObjectWithData(data));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->className(), text->className());
    EXPECT_EQ(copy->string(), text->string());
    for (size_t i = 0; i < text->length(); ++i) {
      const TextStyle before = textStyle(text->attributesAtIndex(i).get());
      const TextStyle after = textStyle(copy->attributesAtIndex(i).get());
      EXPECT_TRUE(after.font->isEqual(*before.font)) << i;
      EXPECT_EQ(after.foreground == nullptr, before.foreground == nullptr) << i;
      EXPECT_EQ(after.paragraph->alignment(), before.paragraph->alignment()) << i;
      EXPECT_EQ(after.paragraph->tabStops().front()->location(),
                before.paragraph->tabStops().front()->location());
    }
  }
}

TEST_F(NSAttributedStringTest, ArchivedFonts) {
  NSKeyedUnarchiver archive(madeArchive("text/fonts"));
  struct Case {
    const char* key;
    std::string name;
    double size;
  };
  const Case cases[] = {
      {"plain", "Georgia-Italic", 14.5},
      {"zero", "Georgia", 12},
      {"negative", "Georgia", 12},
      {"nan", "Georgia", 12},
      {"huge", "Georgia", 1e9},
      {"long name", std::string(10000, 'x'), 10},
      {"system", ".AppleSystemUIFont", 13},
      {"bold system", ".AppleSystemUIFontBold", 13},
      {"other system", ".SFOther-Regular", 20},
      {"nothing", "Helvetica", 12},
      {"old", "Times-Roman", 20},
      {"flat matrix", "Times-Roman", 10},
  };
  for (const Case& c : cases) {
    const auto font = archive.decodeObjectOfClass<NSFont>(c.key);
    ASSERT_NE(font, nullptr) << c.key;
    EXPECT_EQ(font->fontName(), c.name) << c.key;
    EXPECT_EQ(font->pointSize(), c.size) << c.key;
    EXPECT_EQ(font->matrix(), CGAffineTransform{}) << c.key;
  }
  const auto slanted = archive.decodeObjectOfClass<NSFont>("matrix");
  EXPECT_EQ(slanted->matrix(), (CGAffineTransform{2, 0, 0.25, 1, 0, 0}));
  const auto copy = std::dynamic_pointer_cast<NSFont>(NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(slanted)));
  EXPECT_TRUE(copy->isEqual(*slanted));
  const auto descriptor = archive.decodeObjectOfClass<NSFontDescriptor>("descriptor");
  const auto described = NSFont::fontWithDescriptor(*descriptor, 0);
  EXPECT_EQ(described->fontName(), "Didot");
  EXPECT_EQ(described->pointSize(), 30);
  EXPECT_EQ(described->fontDescriptor()->postscriptName(), "Didot");
}

TEST_F(NSAttributedStringTest, SystemFontsOfUnknownNamesAreDrawnAsOne) {
  NSKeyedUnarchiver archive(madeArchive("text/fonts"));
  struct Case {
    const char* key;
    double ascent;
    int weight;
  };
  constexpr double kSystemAscent = 0.9521, kHelveticaAscent = 0.77, kMenloAscent = 0.928;
  for (const Case& c :
       {Case{"other system", kSystemAscent, 400}, Case{"other bold system", kSystemAscent, 700},
        Case{"other small bold system", kSystemAscent, 700},
        Case{"other small system", kSystemAscent, 400},
        Case{"other mini system", kSystemAscent, 400}, Case{"other label", kSystemAscent, 400},
        Case{"other menu", kSystemAscent, 400}, Case{"other", kHelveticaAscent, 700},
        Case{"plain system", kMenloAscent, 400}}) {
    const auto font = archive.decodeObjectOfClass<NSFont>(c.key);
    EXPECT_NEAR(font->ascender(), 20 * c.ascent, 0.01) << c.key;
    EXPECT_EQ(font->resolved()->style.weight, c.weight) << c.key;
  }
}

TEST_F(NSAttributedStringTest, ArchivedParagraphStyles) {
  NSKeyedUnarchiver archive(madeArchive("text/paragraph_styles"));
  const auto style = [&archive](const char* key) {
    return archive.decodeObjectOfClass<NSParagraphStyle>(key);
  };
  EXPECT_EQ(style("empty")->alignment(), NSTextAlignment::left);
  EXPECT_EQ(style("empty")->tabStops().size(), 12u);
  EXPECT_EQ(style("empty")->tabStops().back()->location(), 336);
  EXPECT_EQ(style("natural")->alignment(), NSTextAlignment::natural);
  EXPECT_TRUE(style("no tabs")->tabStops().empty());
  const auto strange = style("strange");
  EXPECT_EQ(strange->alignment(), NSTextAlignment::left);
  EXPECT_EQ(strange->lineBreakMode(), NSLineBreakMode::byWordWrapping);
  EXPECT_EQ(strange->baseWritingDirection(), NSWritingDirection::natural);

  const auto expectFull = [](const NSParagraphStyle& full) {
    EXPECT_EQ(full.alignment(), NSTextAlignment::justified);
    EXPECT_EQ(full.lineBreakMode(), NSLineBreakMode::byTruncatingMiddle);
    EXPECT_EQ(full.baseWritingDirection(), NSWritingDirection::rightToLeft);
    const double values[] = {
        full.lineSpacing(),       full.paragraphSpacing(),    full.paragraphSpacingBefore(),
        full.headIndent(),        full.firstLineHeadIndent(), full.tailIndent(),
        full.minimumLineHeight(), full.maximumLineHeight(),   full.lineHeightMultiple(),
        full.defaultTabInterval()};
    EXPECT_THAT(values, testing::ElementsAre(1.5, 2, 3.25, 4, 5, -6, 7, 8, 1.25, 36));
    EXPECT_EQ(full.hyphenationFactor(), 0.5f);
    std::vector<std::pair<double, NSTextTabType>> tabs;
    for (const auto& tab : full.tabStops()) tabs.emplace_back(tab->location(), tab->tabStopType());
    using Type = NSTextTabType;
    EXPECT_THAT(tabs,
                testing::ElementsAre(std::pair(0, Type::left), std::pair(30, Type::left),
                                     std::pair(60, Type::decimal), std::pair(75, Type::center),
                                     std::pair(90, Type::right)));
  };
  const auto full = style("full");
  expectFull(*full);
  const auto copy =
      std::dynamic_pointer_cast<NSParagraphStyle>(NSKeyedUnarchiver::unarchiveObjectWithData(
          NSKeyedArchiver::archivedDataWithRootObject(full)));
  expectFull(*copy);
}

TEST_F(NSAttributedStringTest, SizeIsThatOfTheSetText) {
  NSMutableAttributedString text("aa a  ");
  text.addAttribute(NSFontAttributeName, std::make_shared<NSFont>(kBoxFont, 10), {0, 6});
  EXPECT_EQ(text.size(), NSMakeSize(22.5, 10)) << "with the blanks at the end";
  text.addAttribute(NSFontAttributeName, std::make_shared<NSFont>(kTallFont, 10), {0, 1});
  EXPECT_EQ(text.size().height, 10) << "small letters come from the other font";
  text.replaceCharactersInRange({0, 1}, "A\n");
  EXPECT_EQ(text.size().height, 16 + 10) << "without the leading of the font";
  EXPECT_EQ(NSAttributedString("").size().width, 0);
}

TEST(TextRanges, ComposedCharacters) {
  useBoxFonts();
  const auto lengths = [](std::u16string_view text) {
    std::string out;
    for (const NSRange& range : composedCharacterRanges(text)) {
      out += std::to_string(range.length) + ' ';
    }
    return out;
  };
  EXPECT_EQ(lengths(u""), "");
  EXPECT_EQ(lengths(u"abc"), "1 1 1 ");
  EXPECT_EQ(lengths(u"a\r\nb"), "1 2 1 ");
  EXPECT_EQ(lengths(u"e\u0301x"), "2 1 ");
  EXPECT_EQ(lengths(u"\U0001F468\u200D\U0001F469\u200D\U0001F467"), "8 ");
  EXPECT_EQ(lengths(u"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7"), "4 4 ");
  EXPECT_EQ(lengths(u"\u2764\uFE0F\U0001F44D\U0001F3FD1\uFE0F\u20E3"), "2 4 3 ");
  EXPECT_EQ(lengths(u"\u1112\u1161\u11AB"), "3 ");
  EXPECT_EQ(lengths(u"\u0915\u094D\u0937\u093F"), "4 ");
  EXPECT_EQ(lengths(u"\xd800x\xdc00"), "1 1 1 ");
}

TEST(TextRanges, Lines) {
  const auto lines = lineRanges(u"ab\r\nc\n\nd\u2028e\u2029");
  const std::vector<NSRange> expected = {{0, 2}, {4, 1}, {6, 0}, {7, 1}, {9, 1}};
  EXPECT_EQ(lines, expected);
  EXPECT_TRUE(lineRanges(u"").empty());
}
