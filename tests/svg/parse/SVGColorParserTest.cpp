#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>

#include "svg/SVGStringParser.h"
#include "svg/parse/SVGNamedColors.h"

using namespace SVGNative;
using namespace SVGNative::SVGStringParser;

namespace {

constexpr std::optional<ColorArray> kInvalid = std::nullopt;

constexpr ColorArray bytes(int red, int green, int blue) {
  return {static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f,
          static_cast<float>(blue) / 255.0f, 1.0f};
}

struct ColorCase {
  std::string_view text;
  std::optional<ColorArray> color;
};

void PrintTo(const ColorCase& c, std::ostream* out) {
  *out << testing::PrintToString(c.text);
}

class ColorTest : public testing::TestWithParam<ColorCase> {};

TEST_P(ColorTest, Parses) {
  const auto& [text, expected] = GetParam();
  Color color = ColorKeys::currentcolor;
  ASSERT_EQ(ParseColor(text, color, Variables::refused), expected.has_value());
  if (!expected) return;
  const ColorArray& actual = std::get<ColorArray>(color);
  for (size_t i = 0; i < 4; ++i) EXPECT_FLOAT_EQ(actual[i], (*expected)[i]) << i;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ColorTest,
    testing::Values(
        ColorCase{"#f80", bytes(255, 136, 0)}, ColorCase{"#FF8000", bytes(255, 128, 0)},
        ColorCase{" \t#0a141e", bytes(10, 20, 30)}, ColorCase{"#ff80", kInvalid},
        ColorCase{"#ff8000ff", kInvalid}, ColorCase{"#ffffffffffffffffffffffff", kInvalid},
        ColorCase{"#f", kInvalid}, ColorCase{"#f80 ", kInvalid},
        // Reading ends at the first byte that is no digit; what counts is the number of bytes.
        ColorCase{"#fg0", bytes(0, 0, 255)}, ColorCase{"#0x1", bytes(0, 0, 17)},
        ColorCase{"# ff", bytes(0, 255, 255)}, ColorCase{"#-12", bytes(0, 0, 0)},
        ColorCase{"#0xg", bytes(0, 0, 0)}, ColorCase{"rgb(255,128,0)", bytes(255, 128, 0)},
        ColorCase{" rgb( 10 20\t30 ) ", bytes(10, 20, 30)},
        ColorCase{"rgb(100%, 50%,0%)", ColorArray{1.0f, 0.5f, 0.0f, 1.0f}},
        ColorCase{"rgb(51 100% 2.55)", ColorArray{0.2f, 1.0f, 0.01f, 1.0f}},
        ColorCase{"rgb(300,-1,999%)", bytes(255, 0, 255)}, ColorCase{"rgb(1,2)", kInvalid},
        ColorCase{"rgb(1,2,3,4)", kInvalid}, ColorCase{"rgb(1,2,3", kInvalid},
        ColorCase{"rgb(1,,2,3)", kInvalid}, ColorCase{"rgb(1,2,3) x", kInvalid},
        ColorCase{"rgb (1,2,3)", kInvalid}, ColorCase{"rgba(1,2,3,1)", kInvalid},
        ColorCase{"red", bytes(255, 0, 0)}, ColorCase{"  RebeccaPurple\n", bytes(102, 51, 153)},
        ColorCase{"reds", kInvalid}, ColorCase{"re", kInvalid}, ColorCase{"red blue", kInvalid},
        ColorCase{"transparent", kInvalid}, ColorCase{"none", kInvalid}, ColorCase{"", kInvalid},
        ColorCase{"yellowgreen", bytes(154, 205, 50)}, ColorCase{"aliceblue", bytes(240, 248, 255)},
        ColorCase{"yellow", bytes(255, 255, 0)}, ColorCase{"var(--a,red)", kInvalid}));

TEST(ColorTest, CurrentColorInAnyCase) {
  Color color;
  ASSERT_TRUE(ParseColor(" currentColor ", color, Variables::refused));
  EXPECT_EQ(std::get<ColorKeys>(color), ColorKeys::currentcolor);
}

TEST(ColorTest, NoHexadecimalDigitThrows) {
  Color color;
  for (const char* text : {"#", "#xyz", "#-", "# ", "#rgb(1,2,3)"}) {
    EXPECT_THROW(ParseColor(text, color, Variables::refused), std::invalid_argument) << text;
  }
}

TEST(ColorTest, TheTableIsInOrderAndComplete) {
  EXPECT_TRUE(std::is_sorted(kNamedColors.begin(), kNamedColors.end(),
                             [](const auto& a, const auto& b) { return a.name < b.name; }));
  EXPECT_EQ(kNamedColors.front().name, "aliceblue");
  EXPECT_EQ(kNamedColors.back().name, "yellowgreen");
  for (const auto& [name, color] : kNamedColors) {
    EXPECT_EQ(color[3], 1.0f) << name;
    // Both spellings of grey are there and agree.
    std::string other(name);
    if (const size_t at = other.find("gray"); at != std::string::npos) {
      other.replace(at, 4, "grey");
      Color grey;
      ASSERT_TRUE(ParseColor(other, grey, Variables::refused)) << other;
      EXPECT_EQ(std::get<ColorArray>(grey), color) << name;
    }
  }
}

struct VariableCase {
  std::string_view text;
  std::optional<ColorVariable> variable;
};

void PrintTo(const VariableCase& c, std::ostream* out) {
  *out << testing::PrintToString(c.text);
}

class VariableTest : public testing::TestWithParam<VariableCase> {};

TEST_P(VariableTest, Parses) {
  const auto& [text, expected] = GetParam();
  Color color;
  ASSERT_EQ(ParseColor(text, color, Variables::allowed), expected.has_value());
  if (expected) {
    EXPECT_EQ(std::get<ColorVariable>(color), *expected);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, VariableTest,
    testing::Values(VariableCase{"var(--accent)", ColorVariable{"--accent", ""}},
                    VariableCase{" var( --a_B-9 ) ", ColorVariable{"--a_B-9", ""}},
                    VariableCase{"var(--a,red)", ColorVariable{"--a", "red"}},
                    VariableCase{"var(--a , rgb(1,2,3) )", ColorVariable{"--a", "rgb(1,2,3)"}},
                    VariableCase{"var(--a red)", std::nullopt},
                    VariableCase{"var(-a,red)", std::nullopt},
                    VariableCase{"var(--a,red", std::nullopt},
                    VariableCase{"var(--a", std::nullopt}, VariableCase{"var()", std::nullopt},
                    VariableCase{"var(--a.b)", std::nullopt}));

enum class Expected { color, gradient, key, other };

struct PaintCase {
  std::string_view text;
  PaintResult result;
  Expected paint = Expected::other;
};

void PrintTo(const PaintCase& c, std::ostream* out) {
  *out << testing::PrintToString(c.text);
}

class PaintTest : public testing::TestWithParam<PaintCase> {};

Expected kindOf(const Paint& paint) {
  if (std::holds_alternative<ColorArray>(paint)) return Expected::color;
  if (std::holds_alternative<GradientPaint>(paint)) return Expected::gradient;
  return std::holds_alternative<ColorKeys>(paint) ? Expected::key : Expected::other;
}

TEST_P(PaintTest, Parses) {
  const auto& [text, result, kind] = GetParam();
  GradientMap gradients;
  gradients["g"] = std::make_shared<GradientImpl>();
  Paint paint;
  EXPECT_EQ(ParsePaint(text, gradients, nullptr, paint), result);
  if (result == PaintResult::paint) {
    EXPECT_EQ(kindOf(paint), kind);
  }
  if (kind == Expected::gradient) {
    EXPECT_EQ(std::get<GradientPaint>(paint).gradient, gradients["g"]);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PaintTest,
    testing::Values(PaintCase{"", PaintResult::empty}, PaintCase{" \n", PaintResult::empty},
                    PaintCase{"none", PaintResult::none}, PaintCase{" none ", PaintResult::none},
                    PaintCase{"nones", PaintResult::invalid},
                    PaintCase{"red", PaintResult::paint, Expected::color},
                    PaintCase{"rad", PaintResult::invalid},
                    PaintCase{" #f80", PaintResult::paint, Expected::color},
                    PaintCase{"#f80 ", PaintResult::invalid},
                    PaintCase{"currentColor", PaintResult::paint, Expected::key},
                    PaintCase{"var(--a)", PaintResult::paint, Expected::other},
                    PaintCase{"url(#g)", PaintResult::paint, Expected::gradient},
                    PaintCase{"url(#g) red", PaintResult::paint, Expected::gradient},
                    PaintCase{" url(#g)", PaintResult::paint, Expected::gradient},
                    PaintCase{"url(#g)red", PaintResult::invalid},
                    PaintCase{"url(#g", PaintResult::invalid},
                    PaintCase{"url(g)", PaintResult::invalid},
                    PaintCase{"x url(#g)", PaintResult::invalid},
                    PaintCase{"url(#h)", PaintResult::unresolved},
                    PaintCase{"url(#h) blue", PaintResult::paint, Expected::color},
                    PaintCase{"url(#h) none", PaintResult::none},
                    PaintCase{"url(#h) blau", PaintResult::invalid},
                    PaintCase{"url(#)", PaintResult::unresolved}));

TEST(PaintTest, CurrentColorIsTheOneGiven) {
  const ColorArray green = bytes(0, 128, 0);
  Paint paint;
  EXPECT_EQ(ParsePaint("CURRENTCOLOR", {}, &green, paint), PaintResult::paint);
  EXPECT_EQ(std::get<ColorArray>(paint), green);
  EXPECT_EQ(ParsePaint("url(#h) currentcolor", {}, &green, paint), PaintResult::paint);
  EXPECT_EQ(std::get<ColorArray>(paint), green);
}

}  // namespace
