#include <vector>

#include "draw/core/DrawAttributes.h"
#include "draw/core/ZTSmallKits.h"
#include "draw/text/TextDrawSupport.h"
#include "draw/text/ZTModifyTextAction.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/host/TextClasses.h"
#include "support/Archives.h"

namespace {

std::shared_ptr<NSFont> font(const char* name, CGFloat size) {
  return std::make_shared<NSFont>(name, size);
}

/// "aabb" with the first half in one font and colour and the second in others.
class DrawTextStylesTest : public BoxTextTest {
 protected:
  void SetUp() override {
    NSMutableAttributedString text("aabb");
    text.addAttribute(NSFontAttributeName, font("Helvetica", 12), {0, 2});
    text.addAttribute(NSFontAttributeName, font("Times-Bold", 20), {2, 2});
    text.addAttribute(NSForegroundColorAttributeName, NSColor::redColor(), {2, 2});
    draw_.init();
    draw_.setBezierPathWithBounds({{0, 0}, {100, 50}});
    draw_.setAttributedString(text);
  }

  /// Names and sizes of the fonts.
  std::string fonts() const {
    std::string all;
    for (const auto& f : draw_.textFonts()) {
      all += f->fontName() + " " + std::to_string(static_cast<int>(f->pointSize())) + ";";
    }
    return all;
  }

  DrawText draw_;
};

}  // namespace

TEST_F(DrawTextStylesTest, FontsOfAllRunsChange) {
  EXPECT_EQ(fonts(), "Helvetica 12;Times-Bold 20;");
  draw_.setTextFontSize(20.05);
  EXPECT_EQ(fonts(), "Helvetica 20;Times-Bold 20;");
  EXPECT_EQ(draw_.textFonts()[0]->pointSize(), 20.05);
  EXPECT_EQ(draw_.textFonts()[1]->pointSize(), 20) << "near enough";
  draw_.toggleTextFontTrait(NSFontTraitMask::bold);
  EXPECT_EQ(fonts(), "Helvetica-Bold 20;Times-Bold 20;") << "not all were bold";
  draw_.toggleTextFontTrait(NSFontTraitMask::bold);
  EXPECT_EQ(fonts(), "Helvetica 20;Times-Roman 20;");
  draw_.setTextFontTrait(NSFontTraitMask::italic);
  EXPECT_EQ(fonts(), "Helvetica-Oblique 20;Times-Italic 20;");
  draw_.setTextFontFamily("Georgia");
  EXPECT_EQ(fonts(), "Georgia-Italic 20;Georgia-Italic 20;") << "the sizes still differ";
  draw_.setTextFont(font("Menlo-Regular", 9));
  EXPECT_EQ(fonts(), "Menlo-Regular 9;");
}

TEST_F(DrawTextStylesTest, ColoursAndOutlines) {
  ASSERT_EQ(draw_.textColors().size(), 2u) << "black where none is set";
  EXPECT_EQ(draw_.textColors()[0]->redComponent(), 0);
  EXPECT_EQ(draw_.textColors()[1]->redComponent(), 1);
  draw_.setTextColor(NSColor::blueColor());
  ASSERT_EQ(draw_.textColors().size(), 1u);
  draw_.setTextColor(nullptr);
  EXPECT_EQ(draw_.textColors()[0]->blueComponent(), 0);
  EXPECT_EQ(draw_.textOutlineWidth(), 0);
  EXPECT_EQ(draw_.textOutlineColor(), nullptr);
  draw_.setTextOutlineWidth(-3, NSColor::redColor());
  EXPECT_EQ(draw_.textOutlineWidth(), -3);
  EXPECT_EQ(draw_.textOutlineColor()->redComponent(), 1);
}

TEST_F(DrawTextStylesTest, LinesAndParagraphs) {
  EXPECT_FALSE(draw_.underline());
  draw_.setTextUnderline(true);
  draw_.setTextStrikethrough(true);
  EXPECT_TRUE(draw_.underline() && draw_.strikethrough());
  draw_.setTextUnderline(false);
  EXPECT_FALSE(draw_.underline());
  EXPECT_EQ(draw_.textAlignment(), NSTextAlignment::natural);
  draw_.setTextAligment(NSTextAlignment::center);
  draw_.setTextLineHeight(1.5);
  EXPECT_EQ(draw_.textAlignment(), NSTextAlignment::center) << "the other setting stays";
  EXPECT_EQ(draw_.textLineHeight(), 1.5);
  DrawText empty;
  EXPECT_FALSE(empty.underline());
  EXPECT_EQ(empty.textAlignment(), NSTextAlignment::natural);
  EXPECT_TRUE(empty.textFonts().empty());
}

TEST_F(DrawTextStylesTest, ActionsCallTheSetters) {
  const auto apply = [this](ZTTextAttribute attribute, std::shared_ptr<NSObject> value,
                            std::shared_ptr<NSObject> value2 = nullptr) {
    auto action = ZTModifyTextAction::modifyTextActionWithAttribute(attribute, std::move(value));
    action.value2 = std::move(value2);
    draw_.applyModifyTextAction(action);
  };
  const auto number = [](double v) { return NSNumber::numberWithDouble(v); };
  apply(ZTTextAttribute::font, font("Helvetica", 10));
  apply(ZTTextAttribute::fontSize, number(30));
  apply(ZTTextAttribute::fontFamily, NSString::stringWithString("Times"));
  apply(ZTTextAttribute::fontTrait, number(2));
  EXPECT_EQ(fonts(), "Times-Bold 30;");
  apply(ZTTextAttribute::color, NSColor::greenColor());
  EXPECT_EQ(draw_.textColors()[0]->greenComponent(), 1);
  apply(ZTTextAttribute::underline, number(1));
  apply(ZTTextAttribute::strikethrough, number(1));
  EXPECT_TRUE(draw_.underline() && draw_.strikethrough());
  apply(ZTTextAttribute::alignment, number(1));
  EXPECT_EQ(draw_.textAlignment(), NSTextAlignment::right);
  apply(ZTTextAttribute::lineHeight, number(2));
  EXPECT_EQ(draw_.textLineHeight(), 2);
  apply(ZTTextAttribute::outline, number(4), NSColor::blueColor());
  EXPECT_EQ(draw_.textOutlineWidth(), 4);
  EXPECT_EQ(draw_.textOutlineColor()->blueComponent(), 1);
  apply(ZTTextAttribute::fontFamily, number(1));
  EXPECT_EQ(fonts(), "Times-Bold 30;") << "a value of another kind changes nothing";
}

TEST(TextSmallKits, ComparesFontsAsAUserDoes) {
  const auto equal = [](const char* a, CGFloat sizeA, const char* b, CGFloat sizeB) {
    return zt_isEqualWithFont(font(a, sizeA).get(), font(b, sizeB).get());
  };
  EXPECT_TRUE(equal("Helvetica", 12, "Helvetica", 12));
  EXPECT_FALSE(equal("Helvetica", 12, "Helvetica", 12.5));
  EXPECT_FALSE(equal("Helvetica", 12, "Helvetica-Bold", 12));
  EXPECT_FALSE(zt_isEqualWithFont(font("Helvetica", 12).get(), nullptr));
  EXPECT_FALSE(zt_isEqualWithFont(nullptr, nullptr));

  // The old document does not say what kind of font it is.
  registerTextClasses();
  NSKeyedUnarchiver archive(madeArchive("text/fonts"));
  const auto old = archive.decodeObjectOfClass<NSFont>("old");
  const auto with = [](std::shared_ptr<NSFont> font) {
    auto attributes = std::make_shared<NSMutableDictionary>();
    attributes->setObject(std::move(font), "Font");
    return attributes;
  };
  EXPECT_TRUE(IsEqualDrawAttributes(with(old).get(), with(font("Times-Roman", 20)).get()));
  EXPECT_FALSE(IsEqualDrawAttributes(with(old).get(), with(font("Times-Roman", 21)).get()));
}

TEST(TextSmallKits, ColoursFromNumbersAndFainterGradients) {
  const auto color = colorWithHex(0x336699, 0.25);
  EXPECT_EQ(color->redComponent(), 51 / 255.0);
  EXPECT_EQ(color->greenComponent(), 102 / 255.0);
  EXPECT_EQ(color->blueComponent(), 153 / 255.0);
  EXPECT_EQ(color->alphaComponent(), 0.25);
  const auto gradient = NSGradient::initWithStops(
      {{NSColor::redColor(), 0}, {colorWithHex(0xff, 0.5), 0.3}, {NSColor::clearColor(), 1}});
  EXPECT_EQ(gradient->averageOpacity(), 0.5);
  const auto faint = gradientWithOpacity(*gradient, 0.5);
  EXPECT_EQ(faint->averageOpacity(), 0.25);
  EXPECT_EQ(faint->stops()[1].location, 0.3);
  EXPECT_EQ(faint->stops()[1].color->blueComponent(), 1);
}
