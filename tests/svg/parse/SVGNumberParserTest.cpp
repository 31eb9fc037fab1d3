#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "svg/SVGStringParser.h"
#include "svg/parse/SVGScanner.h"

using namespace SVGNative;
using namespace SVGNative::SVGStringParser;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

constexpr std::optional<float> kInvalid = std::nullopt;

struct NumberCase {
  std::string_view text;
  std::optional<float> number;
  std::optional<float> length;  // unit-less allowed, reference 200
  std::optional<float> alpha;
};

void PrintTo(const NumberCase& c, std::ostream* out) {
  *out << testing::PrintToString(c.text);
}

class NumberTest : public testing::TestWithParam<NumberCase> {};

TEST_P(NumberTest, ParsesAsNumberLengthAndAlpha) {
  const auto& [text, number, length, alpha] = GetParam();
  float value = -99.0f;
  EXPECT_EQ(ParseNumber(text, value), number.has_value());
  if (number) {
    EXPECT_FLOAT_EQ(value, *number);
  }
  EXPECT_EQ(ParseLengthOrPercentage(text, 200.0f, value, Unitless::allowed), length.has_value());
  if (length) {
    EXPECT_FLOAT_EQ(value, *length);
  }
  EXPECT_EQ(ParseAlphaValue(text, value), alpha.has_value());
  if (alpha) {
    EXPECT_FLOAT_EQ(value, *alpha);
  }
}

constexpr float kTwelve = 12.5f;

INSTANTIATE_TEST_SUITE_P(
    Texts, NumberTest,
    testing::Values(
        NumberCase{"  12.5 ", kTwelve, kTwelve, kTwelve},
        NumberCase{"\t\r\n12.5\n", 12.5f, 12.5f, 12.5f},
        NumberCase{"\v12.5", kInvalid, kInvalid, kInvalid},
        NumberCase{"12.5\f", kInvalid, kInvalid, kInvalid},
        NumberCase{"", kInvalid, kInvalid, kInvalid},
        NumberCase{" \t", kInvalid, kInvalid, kInvalid},
        NumberCase{"12.5px", kInvalid, 12.5f, kInvalid},
        NumberCase{"1e", kInvalid, kInvalid, kInvalid},
        NumberCase{"1e+", kInvalid, kInvalid, kInvalid},
        NumberCase{"-.5e-1", -0.05f, -0.05f, -0.05f}, NumberCase{"+7", 7.0f, 7.0f, 7.0f},
        NumberCase{"+", kInvalid, kInvalid, kInvalid},
        NumberCase{"-", kInvalid, kInvalid, kInvalid},
        NumberCase{"+-1", kInvalid, kInvalid, kInvalid},
        NumberCase{"1.", kInvalid, kInvalid, kInvalid},
        NumberCase{"1.e3", kInvalid, kInvalid, kInvalid},
        NumberCase{".", kInvalid, kInvalid, kInvalid},
        NumberCase{".e1", kInvalid, kInvalid, kInvalid}, NumberCase{".5", 0.5f, 0.5f, 0.5f},
        NumberCase{"2E2", 200.0f, 200.0f, 200.0f}, NumberCase{"3e0", 3.0f, 3.0f, 3.0f},
        NumberCase{"1e9999", kInvalid, kInvalid, kInvalid}, NumberCase{"1e-9999", 0.0f, 0.0f, 0.0f},
        NumberCase{"1e38", 1e38f, 1e38f, 1e38f}, NumberCase{"1e39", kInvalid, kInvalid, kInvalid},
        NumberCase{"1 2", kInvalid, kInvalid, kInvalid},
        NumberCase{"1,2", kInvalid, kInvalid, kInvalid},
        NumberCase{"nan", kInvalid, kInvalid, kInvalid},
        NumberCase{"inf", kInvalid, kInvalid, kInvalid},
        NumberCase{"0x10", kInvalid, kInvalid, kInvalid}, NumberCase{"50%", kInvalid, 100.0f, 0.5f},
        NumberCase{"50 %", kInvalid, kInvalid, kInvalid},
        NumberCase{" 25% ", kInvalid, 50.0f, 0.25f}, NumberCase{"-5%", kInvalid, -10.0f, -0.05f},
        NumberCase{"2in", kInvalid, 192.0f, kInvalid},
        NumberCase{"1CM", kInvalid, 37.795277f, kInvalid},
        NumberCase{"10mM", kInvalid, 37.795277f, kInvalid},
        NumberCase{"3pc", kInvalid, 48.0f, kInvalid}, NumberCase{"3pt\n", kInvalid, 4.0f, kInvalid},
        NumberCase{"10q", kInvalid, kInvalid, kInvalid},
        NumberCase{"10cq", kInvalid, kInvalid, kInvalid},
        NumberCase{"10p", kInvalid, kInvalid, kInvalid},
        NumberCase{"10pxx", kInvalid, kInvalid, kInvalid},
        NumberCase{"1em", kInvalid, kInvalid, kInvalid},
        NumberCase{"10 px", kInvalid, kInvalid, kInvalid},
        NumberCase{"3e38in", kInvalid, kInvalid, kInvalid}));

TEST(LengthTest, UnitlessNumbersNeedTheirPermission) {
  float value = 0.0f;
  EXPECT_FALSE(ParseLengthOrPercentage("10", 1.0f, value, Unitless::refused));
  EXPECT_FALSE(ParseLengthOrPercentage("10 ", 1.0f, value, Unitless::refused));
  EXPECT_TRUE(ParseLengthOrPercentage("10%", 50.0f, value, Unitless::refused));
  EXPECT_FLOAT_EQ(value, 5.0f);
  EXPECT_TRUE(ParseLengthOrPercentage(" 1in ", 50.0f, value, Unitless::refused));
  EXPECT_FLOAT_EQ(value, 96.0f);
}

TEST(NumberArithmeticTest, IsSinglePrecisionDigitByDigit) {
  // 16777217 has no single-precision value: adding the last digit rounds to even.
  float value = 0.0f;
  ASSERT_TRUE(ParseNumber("16777217", value));
  EXPECT_EQ(value, 16777216.0f);
  // 0.1 + 0.02 + 0.003, each sum rounded.
  ASSERT_TRUE(ParseNumber("0.123", value));
  EXPECT_EQ(value, (0.1f + 2.0f / 100.0f) + 3.0f / 1000.0f);
  // A digit at a time, as one would on paper.
  ASSERT_TRUE(ParseNumber("123456789", value));
  float paper = 0.0f;
  for (int digit = 1; digit <= 9; ++digit) paper = paper * 10.0f + static_cast<float>(digit);
  EXPECT_EQ(value, paper);
}

TEST(NumberArithmeticTest, StaysNearTheTrueValueOnRandomTexts) {
  std::mt19937 random(7);
  for (int i = 0; i < 20000; ++i) {
    std::string text = std::to_string(static_cast<int>(random() % 200000) - 100000);
    if (random() % 4 != 0) text += "." + std::to_string(random());
    if (random() % 4 == 0) text += "e" + std::to_string(static_cast<int>(random() % 40) - 20);
    float value = 0.0f;
    ASSERT_TRUE(ParseNumber(text, value)) << text;
    const double expected = std::strtod(text.c_str(), nullptr);
    EXPECT_NEAR(value, expected, std::abs(expected) * 1e-6) << text;
  }
}

// Random texts of the bytes that matter, read the short way and byte by byte.
TEST(NumberArithmeticTest, ShortNumbersAreReadAsAllOthers) {
  constexpr std::string_view kBytes = "0123456789012345678900...---+eE, %x/:\xb0\xff";
  std::mt19937 random(11);
  int shortOnes = 0;
  for (int i = 0; i < 300000; ++i) {
    std::string text(12, ' ');
    for (char& c : text) c = kBytes[random() % kBytes.size()];
    float number = -1.0f;
    const size_t length = scanShortNumber(text.data(), number);
    if (length == 0) continue;
    ++shortOnes;
    float expected = -2.0f;
    ASSERT_EQ(scanAnyNumber(text, expected), length) << text;
    ASSERT_EQ(std::bit_cast<uint32_t>(number), std::bit_cast<uint32_t>(expected)) << text;
  }
  EXPECT_GT(shortOnes, 50000);
}

TEST(NumberArithmeticTest, AnyNumberOfDigitsIsRead) {
  float value = 0.0f;
  EXPECT_FALSE(ParseNumber(std::string(100000, '9'), value));
  EXPECT_TRUE(ParseNumber("0." + std::string(100000, '3'), value));
  EXPECT_FLOAT_EQ(value, 1.0f / 3.0f);
  EXPECT_TRUE(ParseNumber(std::string(100000, '0') + "5", value));
  EXPECT_EQ(value, 5.0f);
  EXPECT_FALSE(ParseNumber("1e" + std::string(100000, '9'), value));
}

struct ListCase {
  std::string_view text;
  std::optional<std::vector<float>> required;
  std::optional<std::vector<float>> optional;
};

void PrintTo(const ListCase& c, std::ostream* out) {
  *out << testing::PrintToString(c.text);
}

class ListTest : public testing::TestWithParam<ListCase> {};

TEST_P(ListTest, ParsesWithBothKindsOfSeparators) {
  const auto& [text, required, optional] = GetParam();
  std::vector<float> numbers{99.0f};
  EXPECT_EQ(ParseListOfNumbers(text, numbers, Separators::required), required.has_value());
  if (required) {
    EXPECT_THAT(numbers, ElementsAreArray(*required));
  }
  EXPECT_EQ(ParseListOfNumbers(text, numbers, Separators::optional), optional.has_value());
  if (optional) {
    EXPECT_THAT(numbers, ElementsAreArray(*optional));
  }
}

const std::vector<float> kEmpty;
using List = std::vector<float>;

INSTANTIATE_TEST_SUITE_P(Texts, ListTest,
                         testing::Values(ListCase{"", kEmpty, kEmpty},
                                         ListCase{" \n ", kEmpty, kEmpty},
                                         ListCase{"1,2 3", List{1, 2, 3}, List{1, 2, 3}},
                                         ListCase{" 1 , 2\t3 ", List{1, 2, 3}, List{1, 2, 3}},
                                         ListCase{"1,,2", std::nullopt, std::nullopt},
                                         ListCase{"1, ,2", std::nullopt, std::nullopt},
                                         ListCase{"1,2,", std::nullopt, std::nullopt},
                                         ListCase{"1,2 , ", std::nullopt, std::nullopt},
                                         ListCase{",1", std::nullopt, std::nullopt},
                                         ListCase{"1-2", std::nullopt, List{1, -2}},
                                         ListCase{"0.5.5", std::nullopt, List{0.5f, 0.5f}},
                                         ListCase{"1e1-1", std::nullopt, List{10, -1}},
                                         ListCase{"1 2 x", std::nullopt, std::nullopt},
                                         ListCase{"1 2px", std::nullopt, std::nullopt}));

TEST(ListTest, KeepsTheNumbersBeforeTheFaultyOne) {
  std::vector<float> numbers;
  EXPECT_FALSE(ParseListOfNumbers("1 2 three", numbers, Separators::required));
  EXPECT_THAT(numbers, ElementsAre(1, 2));
}

TEST(ListTest, OfLengths) {
  std::vector<float> lengths;
  EXPECT_TRUE(ParseListOfLengthOrPercentage("1in, 50% 3", 10.0f, lengths, Separators::required));
  EXPECT_THAT(lengths, ElementsAre(96, 5, 3));
  EXPECT_TRUE(ParseListOfLengthOrPercentage("1px2px", 10.0f, lengths, Separators::optional));
  EXPECT_THAT(lengths, ElementsAre(1, 2));
  EXPECT_FALSE(ParseListOfLengthOrPercentage("1px2px", 10.0f, lengths, Separators::required));
  EXPECT_FALSE(ParseListOfLengthOrPercentage("5 none", 10.0f, lengths, Separators::required));
}

TEST(ListTest, OfStrings) {
  std::vector<std::string> strings;
  EXPECT_TRUE(ParseListOfStrings(" a-b, c\td ", strings));
  EXPECT_THAT(strings, ElementsAre("a-b", "c", "d"));
  EXPECT_TRUE(ParseListOfStrings("  ", strings));
  EXPECT_THAT(strings, ElementsAre());
  EXPECT_FALSE(ParseListOfStrings("a,,b", strings));
  EXPECT_FALSE(ParseListOfStrings("a,", strings));
}

}  // namespace
