#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "svg/draw/Base64.h"

namespace {

std::string encode(std::string_view bytes) {
  return base64_encode(reinterpret_cast<const uint8_t*>(bytes.data()),
                       static_cast<uint32_t>(bytes.size()));
}

// The examples of RFC 4648, section 10.
TEST(Base64Test, PublishedExamples) {
  const std::pair<std::string_view, std::string_view> examples[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {"\xfb\xff", "+/8="},
  };
  for (const auto& [bytes, text] : examples) {
    EXPECT_EQ(encode(bytes), text);
    EXPECT_EQ(base64_decode(text), bytes);
  }
}

TEST(Base64Test, DecodingStopsAtTheFirstOtherCharacter) {
  const std::pair<std::string_view, std::string_view> examples[] = {
      {"QUJD", "ABC"}, {"QU JD", "A"},      {"QUJ\nD", "AB"},
      {" QUJD", ""},   {"QUJDQ", "ABC"},    {"QUJD=QUJD", "ABC"},
      {"Q", ""},       {"QUJDQU-", "ABCA"}, {"QUJD\xc3\xa4", "ABC"},
  };
  for (const auto& [text, bytes] : examples) EXPECT_EQ(base64_decode(text), bytes) << text;
  EXPECT_EQ(base64_decode(std::string_view("QU\0JD", 5)), "A");
}

TEST(Base64Test, RoundTrips) {
  std::mt19937 random(1);
  for (size_t length = 0; length < 100; ++length) {
    std::string bytes(length, ' ');
    for (char& c : bytes) c = static_cast<char>(random());
    const std::string text = encode(bytes);
    EXPECT_EQ(text.size(), (length + 2) / 3 * 4);
    EXPECT_EQ(base64_decode(text), bytes);
  }
}

}  // namespace
