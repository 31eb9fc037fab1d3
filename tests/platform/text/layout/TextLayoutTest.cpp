#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/foundation/Limits.h"
#include "platform/text/TextSupport.h"
#include "platform/text/layout/TextLayout.h"

namespace {

class TextLayoutTest : public BoxFontTest {};

struct ExpectedLine {
  size_t start;
  size_t length;
  double x;
  double top;
  double height;
  double baseline;
  double used;
};

void expectLines(const TextLayout& layout, const std::vector<ExpectedLine>& expected) {
  ASSERT_EQ(layout.lines.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    SCOPED_TRACE("line " + std::to_string(i));
    const PlacedLine& line = layout.lines[i];
    EXPECT_EQ(line.start, expected[i].start);
    EXPECT_EQ(line.length, expected[i].length);
    EXPECT_NEAR(line.x, expected[i].x, 1e-9);
    EXPECT_NEAR(line.top, expected[i].top, 1e-9);
    EXPECT_NEAR(line.height, expected[i].height, 1e-9);
    EXPECT_NEAR(line.baseline, expected[i].baseline, 1e-9);
    EXPECT_NEAR(line.usedWidth, expected[i].used, 1e-9);
  }
}

struct LayoutCase {
  const char* name;
  std::u16string text;
  double width;
  EditParagraph edit;
  std::vector<ExpectedLine> lines;
};

void PrintTo(const LayoutCase& c, std::ostream* out) {
  *out << c.name;
}

using Style = NSMutableParagraphStyle;

bool isLow(char16_t unit) {
  return unit >= 0xdc00 && unit < 0xe000;
}

}  // namespace

class TextLayoutLines : public testing::TestWithParam<LayoutCase> {
 protected:
  static void SetUpTestSuite() { useBoxFonts(); }
};

TEST_P(TextLayoutLines, Match) {
  const LayoutCase& c = GetParam();
  expectLines(layoutBoxes(c.text, c.width, c.edit), c.lines);
}

INSTANTIATE_TEST_SUITE_P(
    Breaking, TextLayoutLines,
    testing::Values(
        LayoutCase{"wrapsAtSpaces",
                   u"aaa bbb cc",
                   32,
                   {},
                   {{0, 4, 0, 0, 10, 8, 17.5}, {4, 6, 0, 10, 10, 8, 27.5}}},
        LayoutCase{"trailingSpacesHang",
                   u"aaa bbb   cc",
                   40,
                   {},
                   {{0, 10, 0, 0, 10, 8, 40}, {10, 2, 0, 10, 10, 8, 10}}},
        LayoutCase{"hangingSpacesDoNotWidenBeyondTheEdge",
                   u"aaa      bb",
                   20,
                   {},
                   {{0, 9, 0, 0, 10, 8, 20}, {9, 2, 0, 10, 10, 8, 10}}},
        LayoutCase{"longWordBreaksBetweenCharacters",
                   u"aaaaaaa b",
                   22,
                   {},
                   {{0, 4, 0, 0, 10, 8, 20}, {4, 4, 0, 10, 10, 8, 17.5}, {8, 1, 0, 20, 10, 8, 5}}},
        LayoutCase{"longWordFirstMovesToItsOwnLine",
                   u"b aaaaa",
                   20,
                   {},
                   {{0, 2, 0, 0, 10, 8, 7.5}, {2, 4, 0, 10, 10, 8, 20}, {6, 1, 0, 20, 10, 8, 5}}},
        LayoutCase{"oneCharacterPerLineWhenNothingFits",
                   u"ab",
                   2,
                   {},
                   {{0, 1, 0, 0, 10, 8, 5}, {1, 1, 0, 10, 10, 8, 5}}},
        LayoutCase{"ligatureMovesAsAWhole",
                   u"aafi",
                   15,
                   {},
                   {{0, 2, 0, 0, 10, 8, 10}, {2, 2, 0, 10, 10, 8, 8}}},
        LayoutCase{"ligatureStays", u"aafi", 18, {}, {{0, 4, 0, 0, 10, 8, 18}}},
        LayoutCase{"charWrap",
                   u"aa bb",
                   15,
                   [](Style& s) { s.setLineBreakMode(NSLineBreakMode::byCharWrapping); },
                   {{0, 3, 0, 0, 10, 8, 12.5}, {3, 2, 0, 10, 10, 8, 10}}},
        LayoutCase{"clippingKeepsOneLine",
                   u"aaa bbb",
                   20,
                   [](Style& s) { s.setLineBreakMode(NSLineBreakMode::byClipping); },
                   {{0, 7, 0, 0, 10, 8, 32.5}}},
        LayoutCase{"tailTruncation",
                   u"aaaaaa",
                   20,
                   [](Style& s) { s.setLineBreakMode(NSLineBreakMode::byTruncatingTail); },
                   {{0, 6, 0, 0, 10, 8, 20}}},
        LayoutCase{"softHyphenAtTheEndOfALineIsSeen",
                   u"aa\u00adbb",
                   18,
                   {},
                   {{0, 3, 0, 0, 10, 8, 15}, {3, 2, 0, 10, 10, 8, 10}}},
        LayoutCase{"softHyphenInsideALineIsNot", u"aa\u00adbb", 40, {}, {{0, 5, 0, 0, 10, 8, 20}}},
        LayoutCase{"softHyphenThatDoesNotFitIsNoBreak",
                   u"b aa\u00adbb",
                   20,
                   {},
                   {{0, 2, 0, 0, 10, 8, 7.5}, {2, 5, 0, 10, 10, 8, 20}}},
        LayoutCase{"unboundedWidthDoesNotAlign",
                   u"aa\nb",
                   1.7976931348623157e308,
                   [](Style& s) { s.setAlignment(NSTextAlignment::center); },
                   {{0, 3, 0, 0, 10, 8, 10}, {3, 1, 0, 10, 10, 8, 5}}}),
    [](const auto& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Paragraphs, TextLayoutLines,
    testing::Values(LayoutCase{"centre",
                               u"aa\nbbbb",
                               40,
                               [](Style& s) { s.setAlignment(NSTextAlignment::center); },
                               {{0, 3, 15, 0, 10, 8, 10}, {3, 4, 10, 10, 10, 8, 20}}},
                    LayoutCase{"rightIgnoresTrailingSpaces",
                               u"aa  ",
                               40,
                               [](Style& s) { s.setAlignment(NSTextAlignment::right); },
                               {{0, 4, 30, 0, 10, 8, 10}}},
                    LayoutCase{"lineHeightMultipleAndSpacing",
                               u"aa\nbb",
                               40,
                               [](Style& s) {
                                 s.setLineHeightMultiple(1.5);
                                 s.setLineSpacing(3);
                               },
                               {{0, 3, 0, 0, 15, 13, 10}, {3, 2, 0, 18, 15, 13, 10}}},
                    LayoutCase{"indents",
                               u"aaa bbb ccc",
                               40,
                               [](Style& s) {
                                 s.setFirstLineHeadIndent(10);
                                 s.setHeadIndent(5);
                                 s.setTailIndent(-5);
                               },
                               {{0, 4, 10, 0, 10, 8, 17.5},
                                {4, 4, 5, 10, 10, 8, 17.5},
                                {8, 3, 5, 20, 10, 8, 15}}},
                    LayoutCase{"tailIndentFromTheHead",
                               u"aaa bbb",
                               100,
                               [](Style& s) { s.setTailIndent(20); },
                               {{0, 4, 0, 0, 10, 8, 17.5}, {4, 3, 0, 10, 10, 8, 15}}},
                    LayoutCase{"endOfParagraphLeavesALine",
                               u"aa\n",
                               40,
                               [](Style& s) {
                                 s.setLineSpacing(2);
                                 s.setParagraphSpacing(4);
                               },
                               {{0, 3, 0, 0, 10, 8, 10}, {3, 0, 0, 16, 10, 8, 0}}},
                    LayoutCase{"fixedLineHeight",
                               u"aa",
                               40,
                               [](Style& s) {
                                 s.setMinimumLineHeight(20);
                                 s.setMaximumLineHeight(20);
                               },
                               {{0, 2, 0, 0, 20, 18, 10}}},
                    LayoutCase{"lowLinesLoseTheirTop",
                               u"aa",
                               40,
                               [](Style& s) { s.setMaximumLineHeight(6); },
                               {{0, 2, 0, 0, 6, 4, 10}}},
                    LayoutCase{
                        "spacingBetweenParagraphsOnly",
                        u"a\nb\r\nc",
                        40,
                        [](Style& s) {
                          s.setParagraphSpacing(3);
                          s.setParagraphSpacingBefore(4);
                        },
                        {{0, 2, 0, 0, 10, 8, 5}, {2, 3, 0, 17, 10, 8, 5}, {5, 1, 0, 34, 10, 8, 5}}},
                    LayoutCase{"lineSeparatorKeepsTheParagraph",
                               u"a\u2028b\u2029c",
                               40,
                               [](Style& s) {
                                 s.setParagraphSpacing(3);
                                 s.setFirstLineHeadIndent(10);
                               },
                               {{0, 2, 10, 0, 10, 8, 5},
                                {2, 2, 0, 10, 10, 8, 5},
                                {4, 1, 10, 23, 10, 8, 5}}},
                    LayoutCase{
                        "emptyParagraphs",
                        u"\n\u0085a",
                        40,
                        {},
                        {{0, 1, 0, 0, 10, 8, 0}, {1, 1, 0, 10, 10, 8, 0}, {2, 1, 0, 20, 10, 8, 5}}},
                    LayoutCase{"emptyText", u"", 40, {}, {{0, 0, 0, 0, 10, 8, 0}}},
                    LayoutCase{
                        "formFeedEndsTheContainer", u"a\fb", 40, {}, {{0, 2, 0, 0, 10, 8, 5}}},
                    LayoutCase{"controlsAndAttachmentsTakeNoRoom",
                               u"a\u0001\ufffc\u007fb",
                               40,
                               {},
                               {{0, 5, 0, 0, 10, 8, 10}}},
                    LayoutCase{"naturalAlignmentOfRightToLeftText",
                               u"\u05d0\u05d1 ",
                               40,
                               [](Style& s) { s.setAlignment(NSTextAlignment::natural); },
                               {{0, 3, 27.5, 0, 10, 8, 12.5}}},
                    LayoutCase{"indentsOfRightToLeftText",
                               u"\u05d0\u05d1 \u05d2\u05d3",
                               30,
                               [](Style& s) {
                                 s.setAlignment(NSTextAlignment::natural);
                                 s.setFirstLineHeadIndent(10);
                                 s.setHeadIndent(2);
                               },
                               {{0, 3, 7.5, 0, 10, 8, 12.5}, {3, 2, 18, 10, 10, 8, 10}}}),
    [](const auto& test) { return test.param.name; });

namespace {

/// x of each glyph's cluster from the container's left edge, in visual order, blanks included.
std::vector<double> glyphPositions(const TextLayout& layout, size_t line = 0) {
  std::vector<double> positions;
  const PlacedLine& l = layout.lines[line];
  for (uint32_t r = l.firstRun; r < l.firstRun + l.runCount; ++r) {
    const PlacedRun& run = layout.runs[r];
    for (uint32_t g = run.firstGlyph; g < run.firstGlyph + run.glyphCount; ++g) {
      positions.push_back(run.x + static_cast<double>(layout.glyphs[g].x));
    }
  }
  return positions;
}

void expectPositions(const TextLayout& layout, const std::vector<double>& expected,
                     size_t line = 0) {
  const std::vector<double> positions = glyphPositions(layout, line);
  ASSERT_EQ(positions.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(positions[i], expected[i], 1e-4) << i;
}

NSParagraphStyle::TabStops stops(std::initializer_list<std::pair<NSTextTabType, double>> list) {
  NSParagraphStyle::TabStops result;
  for (const auto& [type, location] : list) {
    result.push_back(std::make_shared<NSTextTab>(type, location));
  }
  return result;
}

}  // namespace

TEST_F(TextLayoutTest, TabsAlignTheTextBehindThem) {
  using Type = NSTextTabType;
  struct Case {
    std::u16string text;
    NSParagraphStyle::TabStops tabs;
    std::vector<double> positions;
  };
  const Case cases[] = {
      {u"a\tb", stops({{Type::left, 20}}), {0, 20}},
      {u"aaaaa\tb",
       stops({{Type::left, 20}, {Type::left, 25}, {Type::left, 33}}),
       {0, 5, 10, 15, 20, 33}},
      {u"a\tbc", stops({{Type::right, 30}}), {0, 20, 25}},
      {u"a\tbc", stops({{Type::center, 30}}), {0, 25, 30}},
      {u"a\tb.c", stops({{Type::decimal, 30}}), {0, 25, 30, 35}},
      {u"a\tbc", stops({{Type::decimal, 30}}), {0, 20, 25}},
      {u"aaa\tbbbb", stops({{Type::right, 20}}), {0, 5, 10, 15, 20, 25, 30}},
      {u"\ta\tb", stops({{Type::right, 20}, {Type::left, 30}}), {15, 30}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.text.begin(), c.text.end()));
    expectPositions(layoutBoxes(c.text, 100, [&c](Style& s) { s.setTabStops(c.tabs); }),
                    c.positions);
  }
}

TEST_F(TextLayoutTest, TabsWithoutOwnStops) {
  expectPositions(layoutBoxes(u"\ta\tb", 100), {28, 56});
  const auto everyTen = [](Style& s) {
    s.setTabStops({});
    s.setDefaultTabInterval(10);
  };
  expectPositions(layoutBoxes(u"\ta\taaa\tb", 100, everyTen), {10, 20, 25, 30, 40});
  // No stop is left: the text goes on in the next line.
  const TextLayout wrapped = layoutBoxes(u"a\tb", 100, [](Style& s) { s.setTabStops({}); });
  ASSERT_EQ(wrapped.lines.size(), 2u);
  EXPECT_EQ(wrapped.lines[0].length, 2u);
  expectPositions(wrapped, {0}, 1);
}

TEST_F(TextLayoutTest, TabStopsAreMeasuredFromTheEdgeNotTheIndent) {
  const auto indented = [](Style& s) { s.setFirstLineHeadIndent(15); };
  expectPositions(layoutBoxes(u"\ta", 100, indented), {28});
}

TEST_F(TextLayoutTest, JustifiedLinesFillTheirWidth) {
  const auto justified = [](Style& s) { s.setAlignment(NSTextAlignment::justified); };
  // 5 + 2.5 + 5 + 2.5 + 5 = 20 of 26: three more on each of the two spaces.
  const TextLayout layout = layoutBoxes(u"a b c dddd", 26, justified);
  ASSERT_EQ(layout.lines.size(), 2u);
  expectPositions(layout, {0, 5, 10.5, 15.5, 21, 26});
  expectPositions(layout, {0, 5, 10, 15}, 1);
  EXPECT_NEAR(layout.lines[0].contentRight, 26, 1e-9);
  expectPositions(layoutBoxes(u"a b\u2028cc", 26, justified), {0, 5, 7.5});
  expectPositions(layoutBoxes(u"\ta b c", 50, justified), {28, 33, 35.5, 40.5, 43});
}

TEST_F(TextLayoutTest, RightToLeftRunsAreTurnedRound) {
  // Latin paragraph: a, then the Hebrew pair from right to left, then b.
  const TextLayout mixed = layoutBoxes(u"a\u05d0\u05d1 b", 100);
  expectPositions(mixed, {0, 5, 10, 15, 17.5});
  ASSERT_GE(mixed.runs.size(), 3u);
  EXPECT_EQ(mixed.runs[1].start, 1u);
  // Hebrew paragraph: its first word is at the right, a number inside keeps its order.
  const auto natural = [](Style& s) { s.setAlignment(NSTextAlignment::natural); };
  const TextLayout hebrew = layoutBoxes(u"\u05d0 12 \u05d1", 50, natural);
  ASSERT_EQ(hebrew.runs.size(), 3u);
  EXPECT_EQ(hebrew.runs[0].start, 4u);
  EXPECT_EQ(hebrew.runs[1].start, 2u);
  EXPECT_EQ(hebrew.runs[2].start, 0u);
  EXPECT_NEAR(hebrew.lines[0].x, 25, 1e-9);
}

TEST_F(TextLayoutTest, SpaceAtTheEndOfARightToLeftLineHangsLeft) {
  const auto natural = [](Style& s) { s.setAlignment(NSTextAlignment::natural); };
  const TextLayout layout = layoutBoxes(u"\u05d0\u05d1   \u05d2\u05d3", 15, natural);
  ASSERT_EQ(layout.lines.size(), 2u);
  EXPECT_NEAR(layout.lines[0].contentLeft, 5, 1e-9);
  EXPECT_NEAR(layout.lines[0].x, 0, 1e-9);
  EXPECT_NEAR(layout.lines[0].usedWidth, 15, 1e-9);
  EXPECT_NEAR(layout.lines[1].contentLeft, 5, 1e-9);
}

TEST_F(TextLayoutTest, SmallCapitalsAreCapitalsOfFourFifths) {
  TextStyle style = boxStyle();
  style.font = std::make_shared<NSFont>("Copperplate", 10);
  const TextLayout layout = layoutText(styledText({{u"AvAV", style}}), {{100, 100}, 0});
  ASSERT_EQ(layout.runs.size(), 3u);
  EXPECT_EQ(layout.glyphs[1].glyph, layout.glyphs[3].glyph) << "a v as a V";
  EXPECT_NEAR(layout.runs[1].width, 4, 1e-9);
  EXPECT_NEAR(layout.runs[2].x, 9, 1e-9);
  EXPECT_EQ(layout.text->text, u"AvAV");
}

TEST_F(TextLayoutTest, EmbeddingsOfRunsTurnThemRound) {
  const auto orderOf = [](const std::vector<TextEmbedding>& embeddings,
                          const std::u16string& text) {
    TextStyle embedded = boxStyle();
    embedded.embeddings = embeddings;
    const TextLayout layout = layoutText(
        styledText({{u"x", boxStyle()}, {text, embedded}, {u"y", boxStyle()}}), {{100, 100}, 0});
    std::vector<size_t> order;
    for (const PlacedRun& run : layout.runs) order.push_back(run.start);
    return order;
  };
  const TextEmbedding leftToRight{TextDirection::leftToRight};
  const TextEmbedding rightToLeft{TextDirection::rightToLeft};
  const TextEmbedding leftToRightOverride{TextDirection::leftToRight, true};
  using Order = std::vector<size_t>;
  const std::u16string mixed = u"a\u05d0";
  EXPECT_EQ(orderOf({}, mixed), (Order{0, 1, 2, 3}));
  EXPECT_EQ(orderOf({leftToRight}, mixed), (Order{0, 1, 2, 3}));
  EXPECT_EQ(orderOf({rightToLeft}, mixed), (Order{0, 2, 1, 3})) << "a stays a word of its own";
  EXPECT_EQ(orderOf({rightToLeft, leftToRight}, mixed), (Order{0, 1, 2, 3}));
  EXPECT_EQ(orderOf({leftToRightOverride}, u"\u05d0\u05d1"), (Order{0, 1, 3}));
  // The letters of an overridden run are in one run, the last one first.
  TextStyle overridden = boxStyle();
  overridden.embeddings = {{TextDirection::rightToLeft, true}};
  const TextLayout layout = layoutText(styledText({{u"ab", overridden}}), {{100, 100}, 0});
  const auto face = layout.runs[0].font->face;
  EXPECT_EQ(layout.glyphs[0].glyph, face->glyphForCharacter('b'));
}

TEST_F(TextLayoutTest, KerningOfTheFontAndOfTheText) {
  TextStyle style = boxStyle();
  const auto width = [&style](std::u16string text) {
    return layoutText(styledText({{std::move(text), style}}), {{1e9, 1e9}, 0}).used.size.width;
  };
  EXPECT_NEAR(width(u"AV"), 9, 1e-9);
  style.kern = 0;
  EXPECT_NEAR(width(u"AV"), 10, 1e-9) << "0 turns the font's own kerning off";
  style.kern = 2;
  EXPECT_NEAR(width(u"AV"), 13, 1e-9) << "on top of the font's, after each character";
  EXPECT_NEAR(width(u"\u05d0\u05d1"), 14, 1e-9);
  EXPECT_NEAR(width(u"fi"), 10, 1e-9) << "a ligature is one cluster";
  style.kern.reset();
  style.ligatures = Ligatures::required;
  EXPECT_NEAR(width(u"fi"), 10, 1e-9);
  style.expansion = std::log(2.0);
  EXPECT_NEAR(width(u"aa"), 20, 1e-9);
}

TEST_F(TextLayoutTest, LinesOfSeveralFontsTakeTheLargestOfEachPart) {
  TextStyle tall = boxStyle();
  tall.font = std::make_shared<NSFont>(kTallFont, 10);  // 12, 4, 3
  const TextStyle large = boxStyle(13);                 // 10 (10.4), 3 (2.6), 0
  const auto text = styledText({{u"a", large}, {u"B", tall}});
  const TextLayout layout = layoutText(text, {{100, 1e9}, 0});
  ASSERT_EQ(layout.lines.size(), 1u);
  EXPECT_EQ(layout.lines[0].height, 12 + 4 + 3);
  EXPECT_EQ(layout.lines[0].baseline, 12);
  const TextLayout bare = layoutText(text, {{100, 1e9}, 0, FontLeading::ignored});
  EXPECT_EQ(bare.lines[0].height, 12 + 4);
  // What Helvetica adds to its lines (3 at 16 points: 12, 4) goes on top of the other's ascent.
  TextStyle helvetica = boxStyle();
  helvetica.font = std::make_shared<NSFont>("Helvetica", 16);
  const TextStyle higher = boxStyle(20);  // 16, 4, 0
  const TextLayout legacy =
      layoutText(styledText({{u"a", helvetica}, {u"b", higher}}), {{100, 1e9}, 0});
  EXPECT_EQ(legacy.lines[0].baseline, 3 + 16);
  EXPECT_EQ(legacy.lines[0].height, 3 + 16 + 4);
  // A character that the font lacks brings its fallback's height.
  const TextLayout fallback = layoutText(styledText({{u"Bb", tall}}), {{100, 1e9}, 0});
  EXPECT_EQ(fallback.runs.size(), 2u);
  EXPECT_EQ(fallback.lines[0].height, 19);
}

TEST_F(TextLayoutTest, RaisedTextMakesItsLineHigher) {
  TextStyle raised = boxStyle();
  raised.baselineOffset = 4;
  TextStyle superscript = boxStyle();
  superscript.superscript = 1;
  TextStyle lowered = boxStyle();
  lowered.superscript = -1;
  const auto line = [](const TextStyle& style) {
    return layoutText(styledText({{u"a", boxStyle()}, {u"b", style}}), {{100, 1e9}, 0});
  };
  EXPECT_EQ(line(raised).lines[0].baseline, 12);
  EXPECT_EQ(line(raised).runs[1].rise, 4);
  EXPECT_EQ(line(superscript).runs[1].rise, 5) << "one x-height";
  EXPECT_EQ(line(lowered).runs[1].rise, -5);
  EXPECT_EQ(line(lowered).lines[0].height, 10);
}

TEST_F(TextLayoutTest, LinesBelowTheAreaAreNotSet) {
  const auto layout = [](double height) {
    return layoutText(styledText({{u"aa bb cc", boxStyle()}}), {{12, height}, 0});
  };
  EXPECT_EQ(layout(30).lines.size(), 3u);
  EXPECT_EQ(layout(29.5).lines.size(), 2u);
  EXPECT_EQ(layout(29.5).end, 6u);
  EXPECT_EQ(layout(29.5).glyphs.size(), 6u);
  EXPECT_EQ(layout(9).lines.size(), 0u);
  EXPECT_EQ(layout(9).end, 0u);
  EXPECT_EQ(layout(9).used, NSZeroRect);
}

TEST_F(TextLayoutTest, UsedRectangleAndPadding) {
  const TextLayout centred =
      layoutBoxes(u"aa\nbbbb", 40, [](Style& s) { s.setAlignment(NSTextAlignment::center); });
  EXPECT_EQ(centred.used, NSMakeRect(10, 0, 20, 20));
  const TextLayout padded = layoutText(styledText({{u"aaa bbb", boxStyle()}}), {{30, 1e9}, 5});
  ASSERT_EQ(padded.lines.size(), 2u);
  EXPECT_EQ(padded.lines[1].x, 5);
  EXPECT_EQ(padded.used, NSMakeRect(5, 0, 17.5, 20));
}

TEST_F(TextLayoutTest, TruncationLeavesTheNamedPart) {
  const auto starts = [](NSLineBreakMode mode) {
    const TextLayout layout =
        layoutBoxes(u"abcdefgh", 26, [mode](Style& s) { s.setLineBreakMode(mode); });
    std::vector<std::pair<size_t, size_t>> pieces;
    for (const PlacedRun& run : layout.runs) pieces.emplace_back(run.start, run.length);
    EXPECT_EQ(layout.lines.size(), 1u);
    EXPECT_EQ(layout.lines[0].length, 8u);
    EXPECT_NEAR(layout.used.size.width, 25, 1e-9);
    return pieces;
  };
  using Pieces = std::vector<std::pair<size_t, size_t>>;
  EXPECT_EQ(starts(NSLineBreakMode::byTruncatingTail), (Pieces{{0, 4}, {4, 0}}));
  EXPECT_EQ(starts(NSLineBreakMode::byTruncatingHead), (Pieces{{0, 0}, {4, 4}}));
  EXPECT_EQ(starts(NSLineBreakMode::byTruncatingMiddle), (Pieces{{0, 2}, {2, 0}, {6, 2}}));
}

TEST_F(TextLayoutTest, TruncationKeepsCharactersWholeAndLinesInTheirBoxes) {
  useBoxFonts({"Box", "BoxTall", "Composed"});
  TextStyle style = boxStyle();
  struct Case {
    const char* font;
    std::u16string text;
  };
  const Case cases[] = {
      {kBoxFont, u"a\u0301b\u0301c\u0301d\u0301e\u0301f\u0301"},
      {kBoxFont, u"fifififififi"},
      {kBoxFont, u"\u05d0\u05d1\u05d2 ab \u05d3\u05d4\u05d5"},
      {kBoxFont, u"\U0001f468\u200d\U0001f469\u200d\U0001f467ab\U0001f468\u200d\U0001f469cd"},
      {kTallFont, u"ABCDEFGHIJ"},  // without an ellipsis of its own
  };
  for (const Case& c : cases) {
    for (int mode = 3; mode <= 5; ++mode) {
      for (double width = 0; width < 29; width += 1.5) {
        SCOPED_TRACE(std::string(c.font) + std::to_string(c.text[0]) + " mode " +
                     std::to_string(mode) + " width " + std::to_string(width));
        NSMutableParagraphStyle paragraph;
        paragraph.setLineBreakMode(static_cast<NSLineBreakMode>(mode));
        style.font = std::make_shared<NSFont>(c.font, 10);
        style.paragraph = std::make_shared<NSMutableParagraphStyle>(paragraph);
        const TextLayout layout = layoutText(styledText({{c.text, style}}), {{width, 100}, 0});
        ASSERT_EQ(layout.lines.size(), 1u);
        EXPECT_LE(layout.used.size.width, width + 1e-6);
        size_t ellipses = 0;
        for (const PlacedRun& run : layout.runs) {
          if (run.length == 0) {
            ++ellipses;
            EXPECT_EQ(run.font->faceName, kBoxFont) << "it has an ellipsis";
          }
          // No run starts or ends inside a character.
          for (const size_t unit : {run.start, run.start + run.length}) {
            if (unit == 0 || unit >= c.text.size()) continue;
            EXPECT_TRUE(c.text[unit] != 0x301 && c.text[unit] != 0x200d && !isLow(c.text[unit]));
            EXPECT_NE(c.text[unit - 1], 0x200d);
          }
        }
        EXPECT_EQ(ellipses, width < 5 ? 0u : 1u);
      }
    }
  }
  useBoxFonts();
}

TEST_F(TextLayoutTest, EachLineOfATruncatedParagraphLosesItsOwnTail) {
  const TextLayout layout =
      layoutBoxes(u"abcdefgh\u2028abc \u05d0\u05d1 defgh\u2028ab", 26,
                  [](Style& s) { s.setLineBreakMode(NSLineBreakMode::byTruncatingTail); });
  ASSERT_EQ(layout.lines.size(), 3u);
  for (const size_t i : {0, 1, 2})
    EXPECT_EQ(layout.lines[i].start, (i == 0 ? 0u : i == 1 ? 9u : 22u));
  EXPECT_NEAR(layout.lines[1].usedWidth, 22.5, 1e-9) << "three letters, a blank, the ellipsis";
  EXPECT_NEAR(layout.lines[2].usedWidth, 10, 1e-9);
  EXPECT_EQ(layout.end, 24u);
}

TEST_F(TextLayoutTest, LongTextsHaveTheGlyphsOfShapingThemWhole) {
  std::u16string text;
  for (int i = 0; i < 3000; ++i) text += i % 7 == 3 ? u"AVf" : u"fi";
  const TextLayout layout = layoutBoxes(text, 1e300);
  const auto face = FontRegistry::shared()->resolve(kBoxFont, 10)->face;
  std::vector<ShapedGlyph> whole;
  ShapingRun run;
  run.paragraph = text;
  run.length = text.size();
  run.script = 'L' << 24 | 'a' << 16 | 't' << 8 | 'n';
  face->shape(run, whole);
  EXPECT_GT(layout.runs.size(), 1u) << "it is shaped in parts";
  ASSERT_EQ(layout.glyphs.size(), whole.size());
  for (size_t i = 0; i < whole.size(); ++i) ASSERT_EQ(layout.glyphs[i].glyph, whole[i].glyph) << i;
}

TEST_F(TextLayoutTest, FacesFollowTheClusterAndItsSurroundings) {
  useBoxFonts({"Box", "Composed", "CJKjp", "CJKsc", "Arabic"});
  struct Case {
    const char* font;
    std::u16string text;
    std::vector<std::string> faces;  // of the runs
  };
  const Case cases[] = {
      {"Composed-Regular", u"e\u0301e", {"Composed-Regular"}},
      {"Composed-Regular", u"\u00e9e", {"Composed-Regular"}},
      {kBoxFont, u"\u300c\u65e5\u672c\u300d\u3002", {"CJKsc-Regular"}},
      {kBoxFont, u"\u300c\u65e5\u3042\u300d\u3002", {"CJKjp-Regular", "CJKjp-Regular"}},
      // The second paragraph is in the language of the first, and the first in that of the second.
      {kBoxFont, u"\u3042\n\u65e5\u672c\u3002", {"CJKjp-Regular", "CJKjp-Regular"}},
      {kBoxFont, u"\u65e5\n\u3042", {"CJKjp-Regular", "CJKjp-Regular"}},
      {kBoxFont, u"\u0627\u060c\u0627", {"Arabic-Regular"}},
  };
  for (const Case& c : cases) {
    TextStyle style = boxStyle();
    style.font = std::make_shared<NSFont>(c.font, 10);
    std::vector<std::string> faces;
    const TextLayout layout = layoutText(styledText({{c.text, style}}), {{1e300, 1e300}, 0});
    for (const PlacedRun& run : layout.runs) faces.push_back(run.font->faceName);
    EXPECT_EQ(faces, c.faces) << testing::PrintToString(c.text);
  }
  useBoxFonts();
}

// Texts that would take minutes or gigabytes if the work for a line depended on the whole text.
TEST_F(TextLayoutTest, HugeTextsAreSetInBoundedTime) {
  constexpr size_t kUnits = size_t{1} << 17;
  const auto lines = [](const std::u16string& text, double width, const EditParagraph& edit = {}) {
    const TextLayout layout = layoutBoxes(text, width, edit);
    EXPECT_LE(layout.end, limits::kMaxLaidOutUnits);
    return layout.lines.size();
  };
  EXPECT_EQ(lines(std::u16string(limits::kMaxLaidOutUnits + 1, u'a'), 1e300), 1u)
      << "the rest is not set";
  EXPECT_EQ(lines(std::u16string(kUnits, u'a'), 50), kUnits / 10 + 1);
  EXPECT_EQ(lines(std::u16string(kUnits, u'\u0628'), 50), kUnits / 10 + 1);
  EXPECT_EQ(lines(std::u16string(kUnits, u'\n'), 50), kUnits + 1);
  EXPECT_EQ(lines(u"a" + std::u16string(limits::kMaxLaidOutUnits - 1, u'\u0301'), 50), 1u);
  EXPECT_EQ(lines(std::u16string(kUnits, u'\t'), 50, [](Style& s) { s.setTabStops({}); }), kUnits);
  NSParagraphStyle::TabStops million;
  for (int i = 0; i < 1000000; ++i) {
    million.push_back(std::make_shared<NSTextTab>(NSTextTabType::left, 1e-4 * (i % 1000)));
  }
  EXPECT_EQ(lines(u"\ta\tb", 50, [&million](Style& s) { s.setTabStops(million); }), 2u);
}

TEST_F(TextLayoutTest, SizesThatAreNoSizesDoNoHarm) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  for (const double value : {kNaN, 1e300, -1e300, std::numeric_limits<double>::infinity()}) {
    const auto odd = [value](Style& s) {
      s.setHeadIndent(value);
      s.setFirstLineHeadIndent(value);
      s.setTailIndent(value);
      s.setLineSpacing(value);
      s.setMinimumLineHeight(value);
      s.setDefaultTabInterval(value);
      s.setTabStops(stops({{NSTextTabType::left, value}, {NSTextTabType::right, 5}}));
    };
    const TextLayout layout = layoutBoxes(u"aa\tbb\ncc", 20, odd);
    for (const PlacedLine& line : layout.lines) {
      EXPECT_TRUE(std::isfinite(line.x) && std::isfinite(line.bottom())) << value;
    }
  }
  const auto huge = styledText({{u"a", boxStyle(1e9)}, {u"b", boxStyle(1e-9)}});
  EXPECT_EQ(layoutText(huge, {{100, 100}, 0}).lines.size(), 0u);
  EXPECT_EQ(layoutText(huge, {{1e300, 1e300}, 0}).used.size.height, 1e9);
}

// Only the beginning of a text that is too long for its area is laid out.
TEST_F(TextLayoutTest, TheBeginningOfALongTextIsSetLikeTheWhole) {
  std::u16string text;
  for (int i = 0; text.size() < 100000; ++i) text += std::u16string(1 + i * 7 % 11, u'a') + u' ';
  const auto justified = [](Style& s) { s.setAlignment(NSTextAlignment::justified); };
  for (const double width : {47.0, 333.0, 3000.0}) {
    const auto styled = styledText({{text, boxStyle(justified)}});
    const TextLayout whole = layoutText(styled, {{width, 1e300}, 0});
    for (const double height : {5.0, 200.0, 1000.0, 20000.0}) {
      const TextLayout part = layoutText(styled, {{width, height}, 0});
      ASSERT_EQ(part.lines.size(), std::min(whole.lines.size(), static_cast<size_t>(height / 10)));
      for (size_t i = 0; i < part.lines.size(); ++i) {
        EXPECT_EQ(part.lines[i].start, whole.lines[i].start);
        EXPECT_EQ(part.lines[i].usedWidth, whole.lines[i].usedWidth);
      }
      EXPECT_EQ(part.end,
                part.lines.empty() ? 0 : part.lines.back().start + part.lines.back().length);
    }
  }
}
