#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <span>

#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/text/TextSupport.h"
#include "platform/text/drawing/TextDrawing.h"
#include "platform/text/host/NSAttributedString.h"
#include "platform/text/host/NSLayoutManager.h"
#include "platform/text/host/NSTextAttachment.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/host/TextAttributes.h"
#include "support/Bitmaps.h"

// Letters are boxes: at a size of 20, from 1 to 9 of an advance of 10 and 14 high on a baseline 16
// below the line's top, which itself is 20 high. So "a" at the top left covers columns 1 to 8 of
// rows 2 to 15.

namespace {

const Pixel kNone{0, 0, 0, 0};
const Pixel kBlack{0, 0, 0, 255};
const Pixel kRed{255, 0, 0, 255};
const Pixel kGreen{0, 255, 0, 255};

constexpr int64_t kSide = 60;

/// What the text "aa" looks like after `edit`, set at size 20.
struct Picture {
  using Edit = std::function<void(TextStyle&)>;

  explicit Picture(const Edit& edit = {}, const std::u16string& text = u"aa", double scale = 1)
      : bitmap(NSBitmapImageRep::create(kSide, kSide)), context(bitmap) {
    TextStyle style = boxStyle(20);
    if (edit) edit(style);
    draw({{text, style}}, scale);
  }
  explicit Picture(std::vector<StyledPiece> pieces)
      : bitmap(NSBitmapImageRep::create(kSide, kSide)), context(bitmap) {
    draw(std::move(pieces), 1);
  }

  Pixel at(int64_t x, int64_t y) const { return pixelAt(*bitmap, x, y); }
  int alpha(int64_t x, int64_t y) const { return at(x, y)[3]; }

  std::shared_ptr<NSBitmapImageRep> bitmap;
  CGContext context;

 private:
  void draw(std::vector<StyledPiece> pieces, double scale) {
    context.concatenate({1, 0, 0, -1, 0, kSide});
    context.concatenate(CGAffineTransformMakeScale(scale, scale));
    const TextLayout layout = layoutText(styledText(std::move(pieces)), {{1e9, 1e9}, 0});
    drawTextBackground(layout, {0, layout.end}, NSZeroPoint, context);
    drawTextGlyphs(layout, {0, layout.end}, NSZeroPoint, context);
  }
};

using TextDrawingTest = BoxFontTest;

}  // namespace

TEST_F(TextDrawingTest, GlyphsStandOnTheBaseline) {
  const Picture p([](TextStyle& s) { s.foreground = NSColor::redColor(); });
  for (const int64_t left : {1, 11}) {
    EXPECT_EQ(p.at(left, 2), kRed);
    EXPECT_EQ(p.at(left + 7, 15), kRed);
    EXPECT_EQ(p.at(left - 1, 8), kNone);
    EXPECT_EQ(p.at(left + 8, 8), kNone);
    EXPECT_EQ(p.at(left + 3, 1), kNone);
    EXPECT_EQ(p.at(left + 3, 16), kNone);
  }
  EXPECT_EQ(Picture().at(1, 2), kBlack);
}

// Small glyphs are painted through masks, large ones as paths: the same picture at three times the
// size must look the same.
TEST_F(TextDrawingTest, LargeGlyphsLookLikeSmallOnes) {
  const Picture p({}, u"a", 3);
  EXPECT_EQ(p.at(3, 6), kBlack);
  EXPECT_EQ(p.at(26, 47), kBlack);
  EXPECT_EQ(p.at(2, 20), kNone);
  EXPECT_EQ(p.at(27, 20), kNone);
  EXPECT_EQ(p.at(10, 5), kNone);
  EXPECT_EQ(p.at(10, 48), kNone);
}

TEST_F(TextDrawingTest, PositionsAreRoundedToQuartersOfPixels) {
  // The second glyph starts at 10 + kern.
  for (const auto& [kern, edge] : {std::pair{0.5, 128}, {0.25, 191}, {0.3, 191}, {0.12, 255}}) {
    const Picture p([kern = kern](TextStyle& s) { s.kern = kern; });
    EXPECT_NEAR(p.alpha(11, 8), edge, 1) << kern;
    EXPECT_NEAR(p.alpha(19, 8), 255 - edge, 1) << kern;
    EXPECT_EQ(p.alpha(1, 8), 255) << kern;
  }
}

TEST_F(TextDrawingTest, StrokeWidthsArePercentOfTheSize) {
  const auto outlined = [](double percent) {
    return Picture([percent](TextStyle& s) {
      s.foreground = NSColor::redColor();
      s.strokeColor = NSColor::greenColor();
      s.strokeWidth = percent;
    });
  };
  // Two wide, half of it on either side of the edges at 1 and 9, 2 and 16.
  for (const double percent : {10.0, -10.0}) {
    const Picture p = outlined(percent);
    EXPECT_EQ(p.at(0, 1), kGreen) << percent;
    EXPECT_EQ(p.at(1, 8), kGreen) << percent;
    EXPECT_EQ(p.at(5, 16), kGreen) << percent;
    EXPECT_EQ(p.at(5, 17), kNone) << percent;
    EXPECT_EQ(p.at(5, 8), percent > 0 ? kNone : kRed) << percent;
  }
  const Picture plain([](TextStyle& s) {
    s.foreground = NSColor::redColor();
    s.strokeWidth = 10;
  });
  EXPECT_EQ(plain.at(0, 8), kRed) << "outlines are of the text's colour unless they have their own";
  const Picture clear([](TextStyle& s) {
    s.foreground = NSColor::clearColor();
    s.strokeColor = NSColor::greenColor();
    s.strokeWidth = -10;
  });
  EXPECT_EQ(clear.at(5, 8), kNone);
  EXPECT_EQ(clear.at(1, 8), kGreen);
}

TEST_F(TextDrawingTest, TranslucentOverlapsShowTwice) {
  const auto color = NSColor::colorWithSRGBRed(0, 0, 0, 0.5);
  const Picture p([&](TextStyle& s) {
    s.foreground = color;
    s.kern = -6;  // the second box covers columns 5 to 12
  });
  EXPECT_NEAR(p.alpha(2, 8), 128, 1);
  EXPECT_NEAR(p.alpha(6, 8), 191, 1);
  const Picture opaque([](TextStyle& s) { s.kern = -6; });
  EXPECT_EQ(opaque.alpha(6, 8), 255);
}

TEST_F(TextDrawingTest, ShapesAreSkewedStretchedAndRaised) {
  const Picture skewed([](TextStyle& s) { s.obliqueness = 0.5; });
  EXPECT_NEAR(skewed.alpha(1, 15), 191, 2) << "a quarter to the right, half a row up";
  EXPECT_NEAR(skewed.alpha(7, 2), 64, 2)
      << "between six and a half and seven to the right at the top";
  EXPECT_EQ(skewed.alpha(14, 2), 255);
  const Picture wide([](TextStyle& s) { s.expansion = std::log(2); });
  EXPECT_EQ(wide.alpha(2, 8), 255);
  EXPECT_EQ(wide.alpha(17, 8), 255);
  EXPECT_EQ(wide.alpha(19, 8), 0);
  EXPECT_EQ(wide.alpha(22, 8), 255);
  TextStyle raised = boxStyle(20);
  raised.baselineOffset = 3;
  const Picture p({{u"a", boxStyle(20)}, {u"a", raised}});
  // The line has grown by 3: its baseline is 19 below its top.
  EXPECT_EQ(p.alpha(4, 4), 0);
  EXPECT_EQ(p.alpha(4, 18), 255);
  EXPECT_EQ(p.alpha(14, 2), 255);
  EXPECT_EQ(p.alpha(14, 16), 0);
}

TEST_F(TextDrawingTest, LinesUnderAndThroughTextHaveItsColourOrTheirOwn) {
  const Picture p([](TextStyle& s) {
    s.foreground = NSColor::redColor();
    s.underline = 1;
    s.strikethrough = 1;
    s.strikethroughColor = NSColor::greenColor();
  });
  // One thick: a row below the baseline, and across the middle of the x-height of 10.
  EXPECT_EQ(p.at(0, 17), kRed);
  EXPECT_EQ(p.at(19, 17), kRed);
  EXPECT_EQ(p.at(20, 17), kNone);
  EXPECT_EQ(p.at(5, 18), kNone);
  EXPECT_EQ(p.at(0, 11), kGreen);
  EXPECT_EQ(p.at(5, 11), kGreen);
  EXPECT_EQ(p.at(5, 12), kRed);
}

TEST_F(TextDrawingTest, BackgroundsFillTheLineWithoutSeams) {
  TextStyle first = boxStyle(20), second = boxStyle(20);
  first.background = NSColor::colorWithSRGBRed(1, 0, 0, 0.5);
  second.background = NSColor::colorWithSRGBRed(1, 0, 0, 0.5);
  first.kern = second.kern = 0.25;
  second.foreground = first.foreground = NSColor::clearColor();
  const Picture p({{u"a", first}, {u"a ", second}});
  EXPECT_EQ(p.alpha(0, 0), 128);
  EXPECT_EQ(p.alpha(10, 19), 128) << "runs of one colour meet inside this column";
  EXPECT_EQ(p.alpha(24, 10), 128) << "blanks have a background too";
  EXPECT_EQ(p.alpha(26, 10), 0);
  EXPECT_EQ(p.alpha(5, 20), 0);
}

TEST_F(TextDrawingTest, ShadowsFallBehindRunsInTheAxesOfTheBitmap) {
  auto shadow = std::make_shared<NSShadow>();
  shadow->setShadowOffset({3, -4});
  shadow->setShadowColor(NSColor::greenColor());
  for (const double stroke : {0.0, -10.0}) {
    const Picture p([&](TextStyle& s) {
      s.shadow = shadow;
      s.strokeWidth = stroke;
    });
    const int64_t grown = stroke == 0 ? 0 : 1;
    EXPECT_EQ(p.at(4, 19), kGreen) << stroke;
    EXPECT_EQ(p.at(11 + 7 + 3 + grown, 19 + grown), kGreen) << stroke;
    EXPECT_EQ(p.at(4, 20 + grown), kNone) << stroke;
    EXPECT_EQ(p.at(11, 6), kBlack) << "no glyph's shadow falls on its neighbour: " << stroke;
  }
}

TEST_F(TextDrawingTest, WithoutAntialiasingPixelsAreWholeOrNot) {
  const auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  CGContext context(bitmap);
  context.setShouldAntialias(false);
  context.concatenate({1, 0, 0, -1, 0, kSide});
  TextStyle style = boxStyle(15);  // edges at .75 and 6.75
  const TextLayout layout = layoutText(styledText({{u"a", style}}), {{100, 100}, 0});
  drawTextGlyphs(layout, {0, 1}, NSZeroPoint, context);
  EXPECT_EQ(pixelAt(*bitmap, 0, 8), kBlack);
  EXPECT_EQ(pixelAt(*bitmap, 6, 8), kBlack);
  EXPECT_EQ(pixelAt(*bitmap, 7, 8), kNone);
}

TEST_F(TextDrawingTest, OnlyLinesThatBeginInTheRangeAreDrawn) {
  const auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  const ZTFocusScope focus(bitmap);
  CGContext& context = *NSGraphicsContext::currentContext()->graphicsPort();
  context.concatenate({1, 0, 0, -1, 0, kSide});
  auto attributes = std::make_shared<NSMutableDictionary>();
  attributes->setObject(std::make_shared<NSFont>(kBoxFont, 10), NSFontAttributeName);
  NSTextStorage text("aa\naa\naa", attributes);
  const auto manager = std::make_shared<NSLayoutManager>();
  const auto container = std::make_shared<NSTextContainer>(NSMakeSize(50, 50));
  container->setLineFragmentPadding(0);
  manager->addTextContainer(container);
  text.addLayoutManager(manager);
  manager->drawGlyphsForGlyphRange({3, 3}, {5, 20});
  EXPECT_EQ(pixelAt(*bitmap, 7, 24), kNone);
  EXPECT_EQ(pixelAt(*bitmap, 7, 34), kBlack);
  EXPECT_EQ(pixelAt(*bitmap, 7, 44), kNone);
}

TEST_F(TextDrawingTest, AStringIsDrawnFromItsTopLeftCorner) {
  const auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  const ZTFocusScope focus(bitmap);
  CGContext& context = *NSGraphicsContext::currentContext()->graphicsPort();
  context.concatenate({1, 0, 0, -1, 0, kSide});
  auto attributes = std::make_shared<NSMutableDictionary>();
  attributes->setObject(std::make_shared<NSFont>(kBoxFont, 20), NSFontAttributeName);
  NSAttributedString("a", attributes).drawAtPoint({10, 30});
  EXPECT_EQ(pixelAt(*bitmap, 11, 32), kBlack);
  EXPECT_EQ(pixelAt(*bitmap, 18, 45), kBlack);
  EXPECT_EQ(pixelAt(*bitmap, 10, 40), kNone);
  EXPECT_EQ(pixelAt(*bitmap, 12, 31), kNone);
}

// A picture of 4 by 8, red over green: in its own size, and 12 wide, from 2 below the baseline to
// 20 above it.
TEST_F(TextDrawingTest, AttachmentsArePicturesAmongTheLetters) {
  const auto picture = NSBitmapImageRep::create(4, 8);
  for (int64_t y = 0; y < 8; ++y) {
    uint8_t* row = picture->writableRows(y, y + 1);
    for (int64_t x = 0; x < 4; ++x) std::copy_n((y < 4 ? kRed : kGreen).data(), 4, row + 4 * x);
  }
  const auto styled = [](const std::vector<uint8_t>& file, const NSRect& bounds) {
    const auto contents = NSData::dataWithBytes(file);
    auto attributes = std::make_shared<NSMutableDictionary>();
    attributes->setObject(std::make_shared<NSFont>(kBoxFont, 20), NSFontAttributeName);
    attributes->setObject(std::make_shared<NSTextAttachment>(contents, bounds),
                          NSAttachmentAttributeName);
    return textStyle(attributes.get());
  };
  const std::vector<uint8_t> file = encodePNG(*picture);
  const Picture p({{u"a", boxStyle(20)},
                   {u"\ufffc", styled(file, NSZeroRect)},
                   {u"\ufffc", styled(file, {{0, -2}, {12, 22}})},
                   {u"a", boxStyle(20)}});
  // The line's baseline is 20 below its top.
  EXPECT_EQ(p.at(1, 19), kBlack);
  EXPECT_EQ(p.at(10, 12), kRed) << "upright";
  EXPECT_EQ(p.at(13, 19), kGreen);
  EXPECT_EQ(p.at(10, 11), kNone);
  EXPECT_EQ(p.at(13, 20), kNone);
  EXPECT_EQ(p.at(14, 0), kRed);
  EXPECT_EQ(p.at(25, 21), kGreen);
  EXPECT_EQ(p.at(27, 19), kBlack) << "the letter behind";
  EXPECT_EQ(styled({1, 2}, NSZeroRect).attachment, nullptr);
}

// Glyphs of real fonts, and coloured ones. The packages that these come with are installed with
// those of the tests.
namespace {

class RealFontTest : public testing::Test {
 protected:
  static constexpr const char* kSans =
      "/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf";
  static constexpr const char* kEmoji = "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf";

  void SetUp() override {
    for (const char* file : {kSans, kEmoji}) {
      ASSERT_TRUE(std::filesystem::exists(file)) << "install the packages of the tests: ./dev test";
    }
    FontRegistry::useFontFiles({kSans, kEmoji});
  }

  static TextStyle style(double size) {
    TextStyle s;
    s.font = std::make_shared<NSFont>("LiberationSans", size);
    return s;
  }
};

/// Sum of the coverage of the columns [x0, x1) and rows [y0, y1), in pixels.
double ink(const Picture& p, int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
  double sum = 0;
  for (int64_t y = y0; y < y1; ++y) {
    for (int64_t x = x0; x < x1; ++x) sum += p.alpha(x, y) / 255.0;
  }
  return sum;
}

}  // namespace

// Stems of Liberation Sans in font units of 2048 to the em: "l" from 138 to 318, 1484 high;
// "H" has two stems of 191 and a bar of 156 between them. Its ascent is 1854.
TEST_F(RealFontTest, OutlinesHaveTheAreaOfTheGlyphs) {
  const double unit = 40 / 2048.0;
  const Picture p({{u"l", style(40)}});
  const double baseline = std::round(1854 * unit);
  EXPECT_NEAR(ink(p, 0, 0, kSide, kSide), 180 * unit * 1484 * unit, 0.6);
  EXPECT_EQ(ink(p, 0, 0, kSide, static_cast<int64_t>(baseline - 1484 * unit)), 0);
  EXPECT_EQ(ink(p, 0, static_cast<int64_t>(baseline), kSide, kSide), 0);
  EXPECT_EQ(p.alpha(4, 20), 255);
}

TEST_F(RealFontTest, HolesStayOpen) {
  const Picture p({{u"O", style(40)}});
  EXPECT_EQ(p.alpha(15, 22), 0);
  EXPECT_EQ(p.alpha(3, 22), 255);
}

TEST_F(RealFontTest, EmojiArePicturesAsOpaqueAsTheirText) {
  const auto emoji = [](const std::shared_ptr<NSColor>& color) {
    TextStyle s = style(40);
    s.foreground = color;
    return Picture({{u"\U0001F600", s}});
  };
  const Picture p = emoji(NSColor::blackColor());
  const Pixel middle = p.at(25, 20);
  EXPECT_EQ(middle[3], 255);
  EXPECT_GT(middle[0], 200) << "a yellow face";
  EXPECT_GT(middle[1], 120);
  EXPECT_LT(middle[2], 100);
  EXPECT_EQ(p.alpha(1, 1), 0) << "round";
  EXPECT_NEAR(emoji(NSColor::colorWithSRGBRed(0, 0, 0, 0.5)).alpha(25, 20), 128, 1);
  EXPECT_EQ(emoji(NSColor::clearColor()).alpha(25, 20), 0);
  TextStyle outlined = style(40);
  outlined.strokeWidth = 3;
  EXPECT_EQ(Picture({{u"\U0001F600", outlined}}).at(25, 20), middle) << "it has no outline";
}

TEST_F(RealFontTest, SmallEmojiAreTheirPicturesScaled) {
  for (const double size : {8.0, 20.0, 40.0}) {
    const TextLayout layout =
        layoutText(styledText({{u"\U0001F680\U0001F680", style(size)}}), {{500, 500}, 0});
    const ResolvedFont& font = *layout.runs[0].font;
    const auto shown = font.face->colorBitmap(layout.glyphs[1].glyph);
    const double points = size / font.face->metrics().unitsPerEm;
    const auto expected = NSBitmapImageRep::create(kSide, kSide);
    CGContext context(expected);
    // The device's rows count from the top; positions are rounded to quarters of a pixel.
    for (const PlacedGlyph& glyph : std::span(layout.glyphs).first(2)) {
      const CGContextStateScope state(context);
      const double x = std::round(static_cast<double>(glyph.x) * 4) / 4;
      context.concatenate({points, 0, 0, points, x, kSide - layout.lines[0].baseline});
      context.draw(*decodeImage(shown->png), shown->rect);
    }
    const Picture p({{u"\U0001F680\U0001F680", style(size)}});
    EXPECT_LE(maxDifference(*p.bitmap, *expected), 2) << size;
  }
}

TEST_F(RealFontTest, JoinedSymbolsAreEmoji) {
  // The text font has both signs, too.
  for (const auto& [text, isEmoji] :
       {std::pair{u"\u2642", false}, {u"\u2642\u2640", false}, {u"\u2642\u200d\u2640", true}}) {
    const TextLayout layout = layoutText(styledText({{text, style(40)}}), {{500, 500}, 0});
    ASSERT_EQ(layout.runs.size(), 1U);
    EXPECT_EQ(layout.runs[0].font->face->hasColorBitmaps(), isEmoji);
  }
}
