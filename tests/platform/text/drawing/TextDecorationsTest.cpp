#include <gtest/gtest.h>

#include "platform/text/TextSupport.h"
#include "platform/text/drawing/TextDecorations.h"
#include "platform/text/layout/LineStyle.h"

namespace {

class TextDecorationsTest : public BoxFontTest {
 protected:
  static TextStyle decorated(int32_t underline, int32_t strikethrough = 0, double size = 10) {
    TextStyle style = boxStyle(size);
    style.underline = underline;
    style.strikethrough = strikethrough;
    return style;
  }

  static std::vector<NSRect> rects(const std::vector<StyledPiece>& pieces, double width = 1e9,
                                   DecorationKind kind = DecorationKind::underline) {
    const TextLayout layout = layoutText(styledText(pieces), {{width, 1e9}, 0});
    std::vector<NSRect> all;
    for (const PlacedLine& line : layout.lines) {
      for (const Decoration& d : lineDecorations(layout, line, kind)) {
        all.insert(all.end(), d.rects.begin(), d.rects.end());
      }
    }
    return all;
  }
};

using Rects = std::vector<NSRect>;

}  // namespace

// Baseline at 8; the thickness of 0.05 em is rounded up to 1.
TEST_F(TextDecorationsTest, UnderlinesLieBelowTheBaseline) {
  EXPECT_EQ(rects({{u"aaa", decorated(1)}}), (Rects{NSMakeRect(0, 9, 15, 1)}));
  EXPECT_EQ(rects({{u"aaa", decorated(0)}}), Rects{});
  EXPECT_EQ(rects({{u"aaa", decorated(kLineByWord | kLinePatternDot)}}), Rects{});
  EXPECT_EQ(rects({{u"a", decorated(kLineStyleThick, 0, 30)}}),
            (Rects{NSMakeRect(0, 24 + 3, 15, 3)}));
  EXPECT_EQ(rects({{u"a", decorated(kLineStyleDouble)}}),
            (Rects{NSMakeRect(0, 9, 5, 1), NSMakeRect(0, 11, 5, 1)}));
}

TEST_F(TextDecorationsTest, EdgesGoOutwardsToWholeUnits) {
  EXPECT_EQ(rects({{u"a ", boxStyle()}, {u"aa", decorated(1)}, {u" a", boxStyle()}}),
            (Rects{NSMakeRect(7, 9, 11, 1)}));
}

TEST_F(TextDecorationsTest, BlanksAtTheEndOfALineStayBare) {
  EXPECT_EQ(rects({{u"aa bb   cc", decorated(1)}}, 38),
            (Rects{NSMakeRect(0, 9, 23, 1), NSMakeRect(0, 19, 10, 1)}));
  EXPECT_EQ(rects({{u"a b", decorated(1 | kLineByWord)}}),
            (Rects{NSMakeRect(0, 9, 5, 1), NSMakeRect(7, 9, 6, 1)}));
}

TEST_F(TextDecorationsTest, RunsOfOneStyleShareALine) {
  EXPECT_EQ(rects({{u"a\u05d0\tb", decorated(1)}}), (Rects{NSMakeRect(0, 9, 33, 1)}));
}

TEST_F(TextDecorationsTest, DashesAreCountedInThicknesses) {
  EXPECT_EQ(rects({{u"aa", decorated(1 | kLinePatternDash)}}),
            (Rects{NSMakeRect(0, 9, 4, 1), NSMakeRect(6, 9, 4, 1)}));
  EXPECT_EQ(rects({{u"a", decorated(1 | kLinePatternDot)}}),
            (Rects{NSMakeRect(0, 9, 1, 1), NSMakeRect(2, 9, 1, 1), NSMakeRect(4, 9, 1, 1)}));
  EXPECT_EQ(rects({{u"aa", decorated(1 | kLinePatternDashDot)}}),
            (Rects{NSMakeRect(0, 9, 4, 1), NSMakeRect(6, 9, 1, 1), NSMakeRect(9, 9, 1, 1)}));
  TextStyle wide = decorated(1 | kLinePatternDot);
  wide.kern = 1e8;
  EXPECT_EQ(rects({{u"aa", wide}}, 1e300).size(), 1u) << "too many dashes: solid";
}

TEST_F(TextDecorationsTest, StrikethroughCrossesHalfTheXHeight) {
  EXPECT_EQ(rects({{u"a", decorated(0, 1)}}, 1e9, DecorationKind::strikethrough),
            (Rects{NSMakeRect(0, 5, 5, 1)}));
  TextStyle raised = decorated(0, 1);
  raised.baselineOffset = 3;
  EXPECT_EQ(rects({{u"a", raised}}, 1e9, DecorationKind::strikethrough),
            (Rects{NSMakeRect(0, 5, 5, 1)}))
      << "the line grew by what its text was raised";
}
