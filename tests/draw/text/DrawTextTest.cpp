#include <atomic>
#include <thread>
#include <vector>

#include "draw/core/PaintManagerContext.h"
#include "draw/text/DrawText.h"
#include "draw/text/TextDrawSupport.h"
#include "draw/text/TextOutlineCache.h"
#include "draw/text/TextSmallKits.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/codecs/PictureCache.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/text/host/NSTextStorage.h"

// The boxes of "text boxes" lie at (10, 20) and are 100 by 40 on a canvas 100 high: their text
// starts at column 10 and row 40.

namespace {

class DrawTextTest : public BoxTextTest {
 protected:
  std::shared_ptr<DrawText> box(const std::string& title) {
    static const std::shared_ptr<PaintManager> document = madeDocument("text boxes");
    auto text = std::dynamic_pointer_cast<DrawText>(drawTitled(*document, title));
    EXPECT_NE(text, nullptr) << title;
    return text;
  }

  static std::shared_ptr<DrawText> made(const NSRect& bounds, const NSAttributedString& text) {
    auto draw = std::make_shared<DrawText>();
    draw->init();
    draw->setBezierPathWithBounds(bounds);
    draw->setAttributedString(text);
    return draw;
  }

  static std::shared_ptr<DrawText> roundTrip(const std::shared_ptr<DrawText>& draw) {
    return std::dynamic_pointer_cast<DrawText>(
        DrawBase::drawFromEncodedData(DrawBase::encodedData(draw)));
  }
};

}  // namespace

TEST_F(DrawTextTest, TextHangsFromTheTopLeftCornerOfItsBox) {
  const auto draw = box("plain");
  const DrawnDraw p(*draw);
  EXPECT_EQ(p.at(11, 42), kBlack);
  EXPECT_EQ(p.at(18, 55), kBlack);
  EXPECT_EQ(p.at(21, 48), kBlack);
  EXPECT_EQ(p.at(10, 48), kNone);
  EXPECT_EQ(p.at(15, 41), kNone);
  EXPECT_EQ(p.at(15, 56), kNone);
  EXPECT_EQ(draw->textDrawRect(), NSMakeRect(0, 0, 100, 40));
  EXPECT_EQ(draw->drawRect(), NSMakeRect(10, 20, 100, 40));
  EXPECT_EQ(DrawnDraw(*box("mutable string")).at(11, 42), kBlack);
}

TEST_F(DrawTextTest, NothingIsDrawnWithoutTextOrRoom) {
  for (const char* title : {"no text", "text of another class", "empty", "too small"}) {
    const auto draw = box(title);
    EXPECT_FALSE(draw->makeSureHasValidTextImage()) << title;
    EXPECT_EQ(draw->textDrawRect(), NSZeroRect) << title;
    EXPECT_EQ(draw->drawRect(), NSZeroRect) << title;
    EXPECT_EQ(DrawnDraw(*draw).alpha(11, 42), 0) << title;
  }
  EXPECT_EQ(box("no text")->textStorage()->length(), 0u);
}

TEST_F(DrawTextTest, SidesAreRoundedAndTextIsCutAtTheBottom) {
  const auto rounded = box("rounded up");
  ASSERT_TRUE(rounded->makeSureHasValidTextImage());
  EXPECT_EQ(rounded->textDrawRect().size, NSMakeSize(100, 40));
  const auto cut = box("cut");
  const DrawnDraw p(*cut);
  EXPECT_EQ(cut->textImageRep()->pixelsHigh(), 40);
  EXPECT_EQ(p.at(11, 75), kBlack);
  EXPECT_EQ(p.at(11, 82), kNone) << "the third line is below the box";
}

TEST_F(DrawTextTest, LegacyOpacities) {
  struct Case {
    const char* title;
    float legacy;
    uint64_t opacity;
    bool applies;
  };
  for (const Case& c :
       {Case{"plain", 200, 100, true}, Case{"opacity half", 200, 50, true},
        Case{"opacity one", 200, 100, true}, Case{"opacity two", 200, 100, true},
        Case{"opacity half on a fill", 0.5F, 50, false}, Case{"half", 200, 50, true}}) {
    const auto draw = box(c.title);
    EXPECT_EQ(draw->legacyTextOpacity(), c.legacy) << c.title;
    EXPECT_EQ(draw->opacity(), c.opacity) << c.title;
    EXPECT_EQ(draw->shouldApplyOpacityToStokeAndFill(), c.applies) << c.title;
  }
  EXPECT_EQ(DrawnDraw(*box("opacity half")).alpha(11, 42), 128);
  const DrawnDraw onFill(*box("opacity half on a fill"));
  EXPECT_EQ(onFill.at(10, 42), kRed) << "the fill is opaque";
  EXPECT_NEAR(onFill.at(11, 42)[0], 127, 1);
  const auto draw = roundTrip(box("opacity half on a fill"));
  draw->setOpacity(25);
  EXPECT_EQ(draw->legacyTextOpacity(), 0.25F);
  EXPECT_EQ(draw->opacity(), 25u);
}

TEST_F(DrawTextTest, GradientsTintTheText) {
  const DrawnDraw p(*box("gradient"));
  EXPECT_EQ(p.at(11, 48), kRed) << "left of the middle of the box at column 60";
  EXPECT_EQ(p.at(10, 48), kNone);
  const auto wide = box("gradient");
  wide->setAttributedString(boxText("aaaaaaaa"));
  const DrawnDraw w(*wide);
  EXPECT_EQ(w.at(55, 48), kRed);
  EXPECT_EQ(w.at(62, 48), kGreen);
  EXPECT_EQ(w.at(60, 48), kNone);
  const DrawnDraw outlined(*box("outlined gradient"));
  EXPECT_EQ(outlined.at(15, 48), kRed);
  EXPECT_EQ(outlined.at(11, 48), kBlue) << "outlines keep their colour";
  EXPECT_EQ(DrawnDraw(*box("gradient unsaid")).at(11, 42), kBlack);
  EXPECT_EQ(DrawnDraw(*box("gradient off")).at(11, 42), kBlack);
  EXPECT_EQ(box("gradient off")->textGradient(), nullptr);
}

TEST_F(DrawTextTest, RadialGradientsHaveTheirCentreInTheBox) {
  const auto draw = box("radial");
  draw->setAttributedString(boxText("aaaaaaaaa"));
  // Half of the gradient is a disc about the centre, the rest is outside it.
  const DrawnDraw centred(*draw);
  EXPECT_EQ(centred.at(55, 52), kRed);
  EXPECT_EQ(centred.at(11, 43), kGreen);
  draw->setTextGradientCenter({-1, 1});
  const DrawnDraw corner(*draw);
  EXPECT_EQ(corner.at(11, 43), kRed);
  EXPECT_EQ(corner.at(95, 52), kGreen);
}

TEST_F(DrawTextTest, ShadowsFallFromTheLetters) {
  const DrawnDraw p(*box("shadow"));
  EXPECT_EQ(p.at(11, 42), kBlack);
  EXPECT_EQ(p.at(16, 60), kGreen);
  EXPECT_EQ(p.at(15, 60), kNone);
  EXPECT_EQ(p.at(20, 50), kGreen) << "between the letters";
}

TEST_F(DrawTextTest, InnerShadowsLieInsideTheLetters) {
  const DrawnDraw p(*box("inner shadow"));
  // From the upper left, two wide.
  EXPECT_EQ(p.at(11, 50), kBlue);
  EXPECT_EQ(p.at(12, 50), kBlue);
  EXPECT_EQ(p.at(13, 50), kRed);
  EXPECT_EQ(p.at(15, 43), kBlue);
  EXPECT_EQ(p.at(18, 55), kRed);
  EXPECT_EQ(p.at(10, 50), kNone);
}

TEST_F(DrawTextTest, TheBoxIsDrawnUnderTheText) {
  const auto draw = box("filled");
  const DrawnDraw p(*draw);
  EXPECT_EQ(p.at(11, 42), kBlack);
  EXPECT_EQ(p.at(100, 70), (Pixel{128, 128, 255, 255}));
  EXPECT_TRUE(draw->shouldCenterTextsVertically());
  EXPECT_FALSE(box("plain")->shouldCenterTextsVertically());
}

TEST_F(DrawTextTest, TextTurnsWithItsBox) {
  const auto draw = box("turned");
  const DrawnDraw p(*draw);
  // A quarter turn counter-clockwise about (60, 40): the box is 40 wide from 40 and 100 high from
  // -10. Its text runs up from the lower left corner; the second letter is the first on the canvas.
  EXPECT_EQ(draw->drawRect(), NSMakeRect(40, -10, 40, 100));
  EXPECT_EQ(p.alpha(48, 99), 0);
  EXPECT_EQ(p.at(48, 98), kBlack);
  EXPECT_EQ(p.at(48, 91), kBlack);
  EXPECT_EQ(p.alpha(48, 90), 0);
  EXPECT_EQ(p.alpha(41, 95), 0);
  EXPECT_EQ(p.at(42, 95), kBlack);
  EXPECT_EQ(p.alpha(56, 95), 0);
}

TEST_F(DrawTextTest, WithoutSmoothingPixelsAreWhole) {
  const DrawnDraw p(*box("jagged"));
  EXPECT_EQ(p.at(10, 48), kBlack);
  EXPECT_EQ(p.at(16, 48), kBlack);
  EXPECT_EQ(p.at(17, 48), kNone);
}

TEST_F(DrawTextTest, OldGradientsOfTheBoxAreThoseOfItsText) {
  const auto read = [](const char* name) {
    return std::dynamic_pointer_cast<DrawText>(drawTitled(*madeDocument(name), "text"));
  };
  const auto old = read("text of version 19");
  EXPECT_TRUE(old->useGradualText());
  EXPECT_EQ(old->textGradient()->numberOfColorStops(), 2u);
  EXPECT_TRUE(old->isRadialTextGradient());
  EXPECT_EQ(old->textGradientDegree(), 30);
  EXPECT_EQ(old->textGradientCenter(), NSMakePoint(0.25, -0.5));
  EXPECT_FALSE(old->useGradualFill());
  EXPECT_EQ(old->fillGradient(), nullptr);
  EXPECT_FALSE(old->useRadialFillGradient());
  EXPECT_EQ(old->fillGradientDegree(), 0);
  EXPECT_EQ(old->fillGradientCenter(), NSZeroPoint);
  EXPECT_FALSE(old->enableFill());
  EXPECT_FALSE(old->enableStroke());
  const auto recent = read("text of version 20");
  EXPECT_FALSE(recent->useGradualText());
  EXPECT_NE(recent->fillGradient(), nullptr);
  EXPECT_TRUE(recent->enableStroke());
  // Without a context the document is taken for an old one.
  const auto alone = std::dynamic_pointer_cast<DrawText>(NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(recent)));
  EXPECT_TRUE(alone->useGradualText());
}

TEST_F(DrawTextTest, SurvivesTheWayThroughAnArchive) {
  for (const char* title : {"plain", "gradient", "radial", "follows its text", "filled",
                            "opacity half on a fill", "outlined gradient"}) {
    const auto before = box(title);
    const auto after = roundTrip(before);
    ASSERT_NE(after, nullptr) << title;
    EXPECT_EQ(after->textStorage()->units(), before->textStorage()->units()) << title;
    EXPECT_EQ(after->legacyTextOpacity(), before->legacyTextOpacity()) << title;
    EXPECT_EQ(after->opacity(), before->opacity()) << title;
    EXPECT_EQ(after->isAutoResize(), before->isAutoResize()) << title;
    EXPECT_EQ(after->useGradualText(), before->useGradualText()) << title;
    EXPECT_EQ(after->isRadialTextGradient(), before->isRadialTextGradient()) << title;
    EXPECT_EQ(maxDifference(*DrawnDraw(*before).bitmap, *DrawnDraw(*after).bitmap), 0) << title;
  }
}

TEST_F(DrawTextTest, BoxesThatFollowTheirTextMakeRoomForWiderLetters) {
  // 110 wide in a box of 100.
  const auto left = box("wider than it was");
  const DrawnDraw p(*left);
  EXPECT_EQ(left->textDrawRect(), NSMakeRect(0, 0, 110, 40));
  EXPECT_EQ(p.at(111, 42), kBlack);
  EXPECT_EQ(p.at(11, 62), kNone) << "not broken into two lines";
  const auto right = box("wider and right");
  const DrawnDraw r(*right);
  EXPECT_EQ(right->textDrawRect(), NSMakeRect(-10, 0, 110, 40));
  EXPECT_EQ(r.at(1, 42), kBlack);
  EXPECT_EQ(r.at(108, 42), kBlack);
}

// 110 wide in a box of 100: the text keeps the edge that it is set from.
TEST_F(DrawTextTest, BoxesGrowAwayFromTheEdgeOfTheirText) {
  const std::string latin(11, 'a');
  std::string hebrew;
  for (int i = 0; i < 11; ++i) hebrew += "\u05d0";
  struct Case {
    const std::string& text;
    NSTextAlignment alignment;
    double left;
  };
  const Case cases[] = {
      {latin, NSTextAlignment::left, 0},       {latin, NSTextAlignment::right, -10},
      {latin, NSTextAlignment::center, -5},    {latin, NSTextAlignment::justified, 0},
      {latin, NSTextAlignment::natural, 0},    {hebrew, NSTextAlignment::left, 0},
      {hebrew, NSTextAlignment::right, -10},   {hebrew, NSTextAlignment::center, -5},
      {hebrew, NSTextAlignment::natural, -10}, {hebrew, NSTextAlignment::justified, -10},
  };
  for (const Case& c : cases) {
    const auto draw = made({{10, 20}, {100, 20}}, boxText(c.text));
    draw->setTextAligment(c.alignment);
    draw->setAutoResize(true);
    draw->setBezierPathWithBounds({{10, 20}, {100, 20}});
    draw->convertTextToImage();
    EXPECT_EQ(draw->textDrawRect(), NSMakeRect(c.left, 0, 110, 20))
        << c.text << static_cast<int>(c.alignment);
  }
}

TEST_F(DrawTextTest, LettersBeyondTheFirstLineAreSeen) {
  FontRegistry::useFontFiles({sourcePath("tests/fixtures/fonts/Low.ttf")});
  // Letters of 36 above a baseline 29 below the top: the picture begins 7 higher.
  auto attributes = std::make_shared<NSMutableDictionary>();
  attributes->setObject(std::make_shared<NSFont>("Palatino-Roman", 40), NSFontAttributeName);
  const auto draw = made({{10, 20}, {100, 40}}, NSAttributedString("A\u00c9\nA\nA", attributes));
  const DrawnDraw p(*draw);
  EXPECT_EQ(draw->textDrawRect(), NSMakeRect(0, 0, 100, 47));
  EXPECT_EQ(p.at(15, 33), kBlack);
  EXPECT_EQ(p.at(15, 32), kNone);
  EXPECT_EQ(p.at(15, 80), kNone) << "what does not fit below is cut";
  useBoxFont();
}

TEST_F(DrawTextTest, ImagesOfADocumentShareItsBudget) {
  PictureCache cache(3 * 100 * 40 * 4);
  std::vector<std::shared_ptr<DrawText>> draws;
  std::vector<std::shared_ptr<NSBitmapImageRep>> alone;
  for (int i = 0; i < 8; ++i) {
    draws.push_back(made({{10, 20}, {100, 40}}, boxText("aa")));
    alone.push_back(DrawnDraw(*draws.back()).bitmap);
    draws.back()->invalidTextImage();
  }
  const PictureCacheScope scope(cache);
  for (int round = 0; round < 2; ++round) {
    size_t kept = 0;
    for (size_t i = 0; i < draws.size(); ++i) {
      EXPECT_EQ(maxDifference(*DrawnDraw(*draws[i]).bitmap, *alone[i]), 0);
    }
    for (const auto& draw : draws) kept += draw->textImageRep() != nullptr ? 1 : 0;
    EXPECT_EQ(kept, 2u) << "what the cache has room for";
  }
}

TEST_F(DrawTextTest, AutoResizingKeepsTheUpperLeftCorner) {
  const auto draw = made({{10, 20}, {100, 50}}, boxText("aaa\na"));
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(10, 20, 100, 50));
  draw->setAutoResize(true);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(10, 30, 30, 40));
  draw->setTextFontSize(10);
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(10, 50, 15, 20));
  draw->setAttributedString(boxText(""));
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(10, 65, 5, 5));
  draw->setAutoResize(false);
  draw->setAttributedString(boxText("aaaaa"));
  EXPECT_EQ(draw->pathBounds(), NSMakeRect(10, 65, 5, 5));
}

TEST_F(DrawTextTest, AutoResizingUnderTrialLeavesRoomForOverhangs) {
  setExperimentalFeatures(true);
  const auto widthIn = [](const char* font, NSTextAlignment alignment) {
    const auto draw = made({{0, 0}, {10, 10}}, boxText("aa \n", 10));
    draw->setTextFont(std::make_shared<NSFont>(font, 10));
    draw->setTextAligment(alignment);
    const NSSize plain = DrawText::drawSizeForAttributedString(*draw->textStorage(), 1e9);
    draw->setAutoResize(true);
    return draw->pathBounds().size.width - std::ceil(plain.width);
  };
  EXPECT_EQ(widthIn("Box-Regular", NSTextAlignment::left), 0);
  EXPECT_EQ(widthIn("Times-Italic", NSTextAlignment::left), 5) << "the width of the letter";
  EXPECT_EQ(widthIn("Times-Italic", NSTextAlignment::right), 0);
  EXPECT_GT(widthIn("SnellRoundhand", NSTextAlignment::right), 5) << "0.7 of its height";
  setExperimentalFeatures(false);
}

TEST_F(DrawTextTest, MeasuresTextInAColumn) {
  const auto size = [](const char* text, CGFloat width) {
    return DrawText::drawSizeForAttributedString(boxText(text), width);
  };
  EXPECT_EQ(size("aaa", 1e300), NSMakeSize(30, 20));
  EXPECT_EQ(size("aaa aa", 40), NSMakeSize(35, 40));
  EXPECT_EQ(size("", 40).width, 0);
}

TEST_F(DrawTextTest, EveryChangeThatShowsMakesANewImage) {
  const auto draw = made({{0, 0}, {100, 40}}, boxText("aa"));
  using Change = std::function<void(DrawText&)>;
  const std::pair<const char*, Change> changes[] = {
      {"text", [](DrawText& d) { d.setAttributedString(boxText("a")); }},
      {"color", [](DrawText& d) { d.setTextColor(NSColor::redColor()); }},
      {"font", [](DrawText& d) { d.setTextFontSize(15); }},
      {"outline", [](DrawText& d) { d.setTextOutlineWidth(-10, NSColor::blueColor()); }},
      {"smoothing", [](DrawText& d) { d.setSmooth(!d.smooth()); }},
      {"size",
       [](DrawText& d) {
         d.setBezierPathWithBounds({{0, 0}, {80, 40}});
       }},
      {"scale", [](DrawText& d) { d.scaleByX(2, 1, NSZeroPoint, ResizeLineWidth::no); }},
      {"path",
       [](DrawText& d) {
         d.setBezierPath(NSBezierPath::bezierPathWithRect({{0, 0}, {50, 50}}));
       }},
      {"gradient", [](DrawText& d) { d.setUseGradualText(true); }}};
  for (const auto& [what, change] : changes) {
    ASSERT_TRUE(draw->makeSureHasValidTextImage()) << what;
    const auto before = draw->textImageRep();
    draw->makeSureHasValidTextImage();
    EXPECT_EQ(draw->textImageRep(), before) << what;
    change(*draw);
    draw->makeSureHasValidTextImage();
    EXPECT_NE(draw->textImageRep(), before) << what;
  }
  const auto before = draw->textImageRep();
  draw->moveByX(5, 5);
  draw->setOpacity(30);
  draw->makeSureHasValidTextImage();
  EXPECT_EQ(draw->textImageRep(), before) << "moving does not change it";
}

TEST_F(DrawTextTest, TheImageMovesWithABoxThatKeepsItsLines) {
  for (const auto& [alignment, x] : {std::pair{NSTextAlignment::left, 0.0},
                                     {NSTextAlignment::right, 20.0},
                                     {NSTextAlignment::center, 10.0}}) {
    const auto draw = made({{0, 0}, {100, 40}}, boxText("aa"));
    draw->setTextAligment(alignment);
    draw->setMaxTextSize({1000, 1000});
    draw->makeSureHasValidTextImage();
    const auto image = draw->textImageRep();
    draw->setBezierPathWithBounds({{0, 0}, {120, 45}});
    draw->makeSureHasValidTextImage();
    EXPECT_EQ(draw->textImageRep(), image);
    EXPECT_EQ(draw->textDrawRect().origin, NSMakePoint(x, 5));
    // A larger box lays its text out anew.
    const NSSize most = draw->maxTextSize();
    EXPECT_EQ(most, NSMakeSize(1000, 1000));
    draw->setBezierPathWithBounds({NSZeroPoint, most});
    EXPECT_EQ(draw->textImageRep(), image);
    draw->setBezierPathWithBounds({NSZeroPoint, NSMakeSize(most.width + 1, most.height)});
    EXPECT_EQ(draw->textImageRep(), nullptr);
  }
}

TEST_F(DrawTextTest, OutlinesAreKeptUntilTheTextChanges) {
  const auto draw = made({{0, 0}, {100, 40}}, boxText("aa"));
  EXPECT_EQ(draw->textOutlineImage(), nullptr) << "no stroke width";
  draw->setTextOutlineWidth(0.5, NSColor::blueColor());
  EXPECT_EQ(draw->textOutlineImage(), nullptr) << "its integer value is 0";
  draw->setTextOutlineWidth(10, NSColor::blueColor());
  const auto outline = draw->textOutlineImage();
  ASSERT_NE(outline, nullptr);
  EXPECT_EQ(pixelAt(*outline, 1, 8), kBlue);
  EXPECT_EQ(pixelAt(*outline, 5, 8), kNone);
  EXPECT_EQ(draw->textOutlineImage(), outline);
  EXPECT_EQ(TextOutlineCache::shared().objectForKey(draw->hash()), outline);
  draw->invalidTextImage();
  EXPECT_EQ(TextOutlineCache::shared().objectForKey(draw->hash()), nullptr);
  const size_t key = made({{0, 0}, {100, 40}}, *draw->textStorage())->hash();
  EXPECT_EQ(TextOutlineCache::shared().objectForKey(key), nullptr) << "draws leave nothing behind";
}

TEST_F(DrawTextTest, AnEditorDrawsTheTextItself) {
  const auto draw = made({{10, 20}, {100, 40}}, boxText("aa"));
  draw->setIsEditingText(true);
  EXPECT_EQ(DrawnDraw(*draw).alpha(11, 42), 0);
  draw->setIsEditingText(false);
  draw->setEnableFill(true);
  draw->setFillColor(NSColor::redColor());
  draw->setIsNewCreated(true);
  EXPECT_EQ(DrawnDraw(*draw).alpha(50, 50), 0);
  draw->setIsNewCreated(false);
  EXPECT_EQ(DrawnDraw(*draw).at(50, 70), kRed);
}

TEST_F(DrawTextTest, LargeBoxesAreDrawnInPartAndNotKept) {
  // The box's top is at 2000; letters reach from 400 to 3200 below it, the third from 4200 to 5800
  // right of its left edge.
  const auto draw = made({{-4500, -7000}, {9000, 9000}}, boxText("aaaa", 4000));
  draw->setTextColor(NSColor::redColor());
  EXPECT_EQ(DrawnDraw(*draw).at(0, 50), kRed);
  EXPECT_EQ(draw->textImageRep(), nullptr);
  EXPECT_EQ(draw->drawRect(), NSMakeRect(-4500, -7000, 9000, 9000));
  draw->moveByX(500, 0);
  EXPECT_EQ(DrawnDraw(*draw).alpha(0, 50), 0) << "between two letters";
}

TEST_F(DrawTextTest, AttributesTravelFromBoxToBox) {
  const auto source = box("outlined gradient");
  const auto target = made({{10, 20}, {100, 40}}, boxText("aa", 12));
  EXPECT_TRUE(target->setDrawAttributes(*source->drawAttributes()));
  EXPECT_TRUE(target->useGradualText());
  EXPECT_NE(target->textGradient(), nullptr);
  EXPECT_EQ(target->textFonts().front()->pointSize(), 20);
  EXPECT_EQ(target->textOutlineWidth(), -10);
  EXPECT_EQ(maxDifference(*DrawnDraw(*source).bitmap, *DrawnDraw(*target).bitmap), 0);
  const auto old = box("opacity half on a fill")->drawAttributes();
  EXPECT_EQ(old->objectOfClass<NSNumber>("DAKeyTextOpacity")->floatValue(), 0.5F);
  EXPECT_EQ(box("plain")->drawAttributes()->objectForKey("DAKeyTextOpacity"), nullptr);
}

TEST_F(DrawTextTest, ATextInManyBoxesIsCopiedWhenOneChangesIt) {
  const auto first = box("plain"), second = box("turned");
  ASSERT_EQ(first->textStorage(), second->textStorage());
  EXPECT_EQ(box("mutable string")->textStorage(), box("the same mutable string")->textStorage());
  const auto copy = roundTrip(first);
  second->setTextColor(NSColor::redColor());
  EXPECT_EQ(DrawnDraw(*first).at(11, 42), kBlack);
  EXPECT_EQ(maxDifference(*DrawnDraw(*copy).bitmap, *DrawnDraw(*first).bitmap), 0);
}

TEST_F(DrawTextTest, SeveralThreadsDrawAtOnce) {
  const auto drawAll = [] {
    std::vector<std::shared_ptr<NSBitmapImageRep>> pictures;
    for (const char* name : {"text boxes", "curved text"}) {
      pictures.push_back(madeDocument(name)->fullImage());
    }
    return pictures;
  };
  const auto expected = drawAll();
  std::vector<std::thread> threads;
  std::atomic<int> different{0};
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      const auto pictures = drawAll();
      for (size_t k = 0; k < expected.size(); ++k) {
        if (maxDifference(*pictures[k], *expected[k]) != 0) ++different;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(different, 0);
}

TEST(LayoutManagerForDrawText, IsOneOnTheMainThreadAndPrivateElsewhere) {
  const auto shared = LayoutManagerForDrawText();
  EXPECT_EQ(LayoutManagerForDrawText(), shared);
  ASSERT_EQ(shared->textContainers().size(), 1u);
  EXPECT_EQ(shared->textContainers()[0]->lineFragmentPadding(), 0);
  EXPECT_EQ(DrawText::textContainerlineFragmentPadding(), 0);
  std::thread([&] {
    const auto mine = LayoutManagerForDrawText();
    EXPECT_NE(mine, shared);
    EXPECT_NE(LayoutManagerForDrawText(), mine);
  }).join();
}

TEST(TextOutlineCache, LetsGoOfWhatWasNotUsedForLongest) {
  TextOutlineCache cache(4 * 100);
  const auto bitmap = [](int64_t pixels) { return NSBitmapImageRep::create(pixels, 1); };
  cache.setObject(bitmap(40), 1);
  cache.setObject(bitmap(40), 2);
  cache.objectForKey(1);
  cache.setObject(bitmap(40), 3);
  EXPECT_EQ(cache.objectForKey(2), nullptr);
  EXPECT_NE(cache.objectForKey(1), nullptr);
  EXPECT_NE(cache.objectForKey(3), nullptr);
  cache.setObject(bitmap(10), 1);
  cache.setObject(bitmap(40), 4);
  EXPECT_NE(cache.objectForKey(3), nullptr) << "a replaced bitmap costs nothing";
  cache.setObject(bitmap(101), 5);
  EXPECT_EQ(cache.objectForKey(5), nullptr) << "beyond the limit by itself";
  cache.removeObjectForKey(77);
}
